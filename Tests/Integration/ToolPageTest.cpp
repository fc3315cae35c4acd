// The page of a record file, in a browser: what it shows, and how keys and clicks move in it.
#include "Integration/ToolRun.h"
#include "Support/Bytes.h"
#include "Support/RowName.h"

namespace KORVA::TESTS
{
namespace
{
// A dictionary with the 32-bit integer 7 under key 1.
constexpr char kSeven[] = "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  3C 00 00 00 00 00 00 00"
                          "01 00 00 00  01 00 00 00"
                          "21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  18 00 00 00 00 00 00 00"
                          "56 32 33 53  07 00 00 00 00 00 00 00  00 00 00 00 00 00 1C 40  00 00 00 00"
                          "00 00 00 00";

// A string dictionary: "k" is "</script><b>&".
constexpr char kMarkup[] = "56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53  2C 00 00 00 00 00 00 00"
                           "01 00 00 00  02 00 00 00 6B 00  1A 00 00 00"
                           "3C 00 2F 00 73 00 63 00 72 00 69 00 70 00 74 00 3E 00 3C 00 62 00 3E 00 26 00"
                           "00 00 00 00";

/// What scripts of the rows may use.
constexpr char kHelpers[] = R"(
function press(pane, keys) {
  keys.split(' ').forEach(function (key) {
    document.getElementById(pane).dispatchEvent(
      new KeyboardEvent('keydown', {key: key === 'Space' ? ' ' : key, bubbles: true, cancelable: true}));
  });
}
function click(selector) { document.querySelector(selector).dispatchEvent(new MouseEvent('click', {bubbles: true})); }
function text(selector) { return document.querySelector(selector).textContent; }
function status() { return text('#status'); }
function count(selector) { return document.querySelectorAll(selector).length; }
)";

struct PageRow
{
    char const* name;
    char const* bytes;
    /// An expression in the page, once it is there.
    char const* script;
    char const* result;
};

class ToolPage : public ToolRun, public ::testing::WithParamInterface<PageRow>
{
protected:
    /// What the script answers when the page runs it.
    std::string InBrowser(std::string page, std::string const& script) const
    {
        std::string const end = "</body>";
        page.insert(page.rfind(end), std::string("<script>") + kHelpers +
                                         "var result = document.createElement('pre'); result.id = 'result';"
                                         "result.textContent = String((function () { " +
                                         script + " })()); document.body.appendChild(result);</script>");
        std::string const file = directory.File("tested.html", page).string();
        Outcome const outcome = RunProgram(
            {"/usr/bin/chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--disable-sync", "--user-data-dir=" + Path("browser").string(), "--dump-dom", "file://" + file},
            directory.Path().string());
        std::string const open = "<pre id=\"result\">";
        std::size_t const from = outcome.out.find(open);
        if (from == std::string::npos)
            return "no result: " + outcome.out + outcome.err;
        std::size_t const start = from + open.size();
        return outcome.out.substr(start, outcome.out.find("</pre>", start) - start);
    }
};

TEST_P(ToolPage, AnswersKeysAndClicks)
{
    Bytes const bytes = Hex(GetParam().bytes);
    directory.File("d", std::string(bytes.begin(), bytes.end()));
    Do({"tree", "d", "--html", "page.html"});
    EXPECT_EQ(InBrowser(Content(Path("page.html")), GetParam().script), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolPage,
    ::testing::Values(
        PageRow{
            "Start", kSeven, "return text('#file') + '|' + text('#about') + '|' + status();",
            "d|84 bytes, little-endian, no damage found|/0  PersistentDictionary, 1 entry  — 84 bytes at 0 "
            "(0x0)"},
        PageRow{"DownTheRows", kSeven,
                "press('tree', 'ArrowDown ArrowDown'); return status() + '|' + count('.b.picked');",
                "/0  length 60  — 8 bytes at 16 (0x10)|8"},
        PageRow{"OpensWithRightAndGoesIn", kSeven,
                "var before = count('#tree .row'); press('tree', 'End ArrowUp ArrowRight');"
                "var after = count('#tree .row'); press('tree', 'ArrowRight ArrowDown ArrowDown');"
                "return before + ' ' + after + '|' + status();",
                "7 13|/0/dict[1]  type int32  — 4 bytes at 56 (0x38)"},
        PageRow{"LeftClosesAndGoesUp", kSeven,
                "press('tree', 'ArrowDown ArrowLeft'); var up = status(); press('tree', 'ArrowLeft');"
                "return up + '|' + count('#tree .row');",
                "/0  PersistentDictionary, 1 entry  — 84 bytes at 0 (0x0)|1"},
        PageRow{"SpaceClosesAndOpens", kSeven,
                "press('tree', 'Space'); var closed = count('#tree .row'); press('tree', 'Enter');"
                "return closed + ' ' + count('#tree .row');",
                "1 7"},
        PageRow{"ClickOnAByteShowsItsField", kSeven,
                "click('[data-offset=\"62\"]'); return status() + '|' + text('#tree .row.picked');",
                "/0/dict[1]  as a whole number 7  — 8 bytes at 60 (0x3c)|      as a whole number  7  @60 +8"},
        PageRow{
            "KeysMoveAmongTheBytes", kSeven,
            "press('bytes', 'ArrowDown ArrowRight ArrowRight'); var one = status(); press('bytes', 'End');"
            "return one + '|' + status() + '|' + document.querySelector('.b.cursor').dataset.offset;",
            "/0  length 60  — 8 bytes at 16 (0x10)|/0  aggregates 0  — 4 bytes at 80 (0x50)|83"},
        PageRow{"ClickOnARowShowsItsBytes", kSeven,
                "click('#tree .row:nth-of-type(6)'); return status() + '|' + count('.b.picked');",
                "/0  key 1  — 4 bytes at 28 (0x1c)|4"},
        PageRow{
            "Damage",
            "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  3C 00 00 00 00 00 00 00  01 00 00 00 01 00",
            "press('tree', 'End'); return text('#about') + '|' + text('#tree .row .bad') + '|' + status();",
            "30 bytes, little-endian, 2 errors|! |/0  unexplained  — 2 bytes at 28 (0x1c)"},
        PageRow{"MarkupStaysText", kMarkup,
                "press('tree', 'End ArrowUp'); return count('b') + count('img') + '|' + status();",
                "0|/0  value \"&lt;/script&gt;&lt;b&gt;&amp;\"  — 26 bytes at 38 (0x26)"}),
    RowName());

TEST_F(ToolPage, OfADamagedFileIsWrittenAndSaidSo)
{
    directory.File("d", std::string("\0", 1));
    Fails({"tree", "d", "--html", "page.html"}, 4, "tessio: \"d\" is not a record file\n");
    EXPECT_EQ(Names(), "d");
}
} // namespace
} // namespace KORVA::TESTS
