// The pages name files, tests and names that are there, and lead nowhere else.
#include "Integration/Page.h"
#include "Support/RowName.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;
using ::testing::IsEmpty;
using List = std::vector<std::string>;

fs::path const kRoot = TESSIO_SOURCE_DIR;

/// The project's pages by their paths in it.
std::map<std::string, Page> Pages()
{
    std::map<std::string, Page> pages;
    for (char const* const name : {"README.md", "SECURITY.md", "CONTRIBUTING.md", "CHANGELOG.md"})
        pages.emplace(name, Page(Content(kRoot / name)));
    for (fs::path const& file : fs::directory_iterator(kRoot / "Docs"))
        if (file.extension() == ".md")
            pages.emplace("Docs/" + file.filename().string(), Page(Content(file)));
    return pages;
}

/// File names and contents of all test sources.
std::multimap<std::string, std::string> TestSources()
{
    std::multimap<std::string, std::string> sources;
    for (fs::directory_entry const& file : fs::recursive_directory_iterator(kRoot / "Tests"))
        if (file.path().extension() == ".cpp")
            sources.emplace(file.path().filename().string(), Content(file.path()));
    return sources;
}

std::vector<HeaderNames> SDKHeaders()
{
    std::vector<HeaderNames> headers;
    for (fs::directory_entry const& file : fs::recursive_directory_iterator(kRoot / "SDK"))
        if (file.path().extension() == ".h")
            headers.emplace_back(Content(file.path()));
    return headers;
}

TEST(Pages, NameFilesAndFoldersThatAreThere)
{
    std::set<std::string> const paths = PathsOfTheProject();
    for (auto const& [file, page] : Pages())
        EXPECT_THAT(UnknownPaths(page, paths), IsEmpty()) << file;
}

TEST(Pages, LinkToWhatIsThere)
{
    std::set<std::string> const paths = PathsOfTheProject();
    std::map<std::string, Page> const pages = Pages();
    for (auto const& [file, page] : pages)
        EXPECT_THAT(BrokenLinks(page, file, pages, paths), IsEmpty()) << file;
}

TEST(Pages, NameTargetsThatAreThere)
{
    std::set<std::string> words;
    for (std::string const& path : PathsOfTheProject())
        if (path.ends_with("CMakeLists.txt") || path.ends_with(".cmake"))
            for (std::string const& word : WordsOf(fs::exists(kRoot / path) ? Content(kRoot / path) : ""))
                words.insert(word);
    for (auto const& [file, page] : Pages())
        EXPECT_THAT(UnknownTargets(page, words), IsEmpty()) << file;
}

TEST(Quirks, QuoteTestsThatAreThere)
{
    EXPECT_THAT(UnknownTests(Pages().at("Docs/Quirks.md"), TestSources()), IsEmpty());
}

TEST(Quirks, UseNamesThatTheHeadersHave)
{
    EXPECT_THAT(UnknownNames(Pages().at("Docs/Quirks.md"), SDKHeaders()), IsEmpty());
}

TEST(Quirks, AreEachToldToTheEnd)
{
    Page const page = Pages().at("Docs/Quirks.md");
    EXPECT_GE(page.entries.size(), 100u);
    EXPECT_THAT(UnfinishedEntries(page), IsEmpty());
}

// The rules themselves, on pages and trees made up here.

struct PathRow
{
    char const* name;
    char const* page;
    List unknown;
};

class PathRule : public ::testing::TestWithParam<PathRow>
{
};

TEST_P(PathRule, IsKept)
{
    std::set<std::string> const paths{"Docs", "Docs/A.md", "Tools/t/B.h", "Tools/t", "Tools", "Dxh"};
    EXPECT_EQ(UnknownPaths(Page(GetParam().page), paths), GetParam().unknown);
}

PathRow const kPaths[] = {
    {"File", "see `Docs/A.md`", {}},
    {"MissingFile", "see `Docs/C.md`", {"Docs/C.md"}},
    {"FromTheRootHere", "run `./Docs/A.md`", {}},
    {"Folder", "`Tools/t/` and `Tools/`", {}},
    {"MissingFolder", "`Tools/u/`", {"Tools/u/"}},
    {"EndOfAPath", "`t/B.h` or `B.h`", {}},
    {"EndOfAName", "`ools/t/B.h`", {"ools/t/B.h"}},
    {"MissingHeader", "`C.h`", {"C.h"}},
    {"DotIsADot", "`D.h`", {"D.h"}},
    {"Ellipsis", "`Tools/\u2026/B.h` `Tools/\u2026/C.h`", {"Tools/\u2026/C.h"}},
    {"Alternatives", "`Tools/t/{B,C}.h` `Tools/{u,v}`", {"Tools/{u,v}"}},
    {"AnyOfThem", "`Tools/X` `Docs2/X`", {"Docs2/X"}},
    {"NotOfTheProject", "`/etc/C.h` `../C.h` `http://h/C.h` `build/x` `a/b` `x y/C.h` `N::C.h`", {}},
    {"AcrossLines", "`Docs/A.md`\n`C.h`", {"C.h"}},
};
INSTANTIATE_TEST_SUITE_P(Rows, PathRule, ::testing::ValuesIn(kPaths), RowName());

struct LinkRow
{
    char const* name;
    char const* page;
    List broken;
};

class LinkRule : public ::testing::TestWithParam<LinkRow>
{
};

TEST_P(LinkRule, IsKept)
{
    std::map<std::string, Page> pages;
    pages.emplace("Docs/A.md", Page(std::string("## It's `one` (2)\n") + GetParam().page));
    pages.emplace("README.md", Page("# Top\n"));
    std::set<std::string> const paths{"Docs", "Docs/A.md", "README.md", "Tools"};
    EXPECT_EQ(BrokenLinks(pages.at("Docs/A.md"), "Docs/A.md", pages, paths), GetParam().broken);
}

LinkRow const kLinks[] = {
    {"Heading", "[x](#its-one-2)", {}},
    {"MissingHeading", "[x](#its-one)", {"#its-one"}},
    {"FromThePage", "[x](../README.md) [y](A.md) [z](../Tools/)", {}},
    {"MissingPage", "[x](README.md)", {"README.md"}},
    {"HeadingOfAnother", "[x](../README.md#top)", {}},
    {"MissingHeadingOfAnother", "[x](../README.md#its-one-2)", {"../README.md#its-one-2"}},
    {"Elsewhere", "[x](https://h.example/y) [y](mailto:a@h.example)", {}},
    {"InCode", "`[x](y)`", {}},
};
INSTANTIATE_TEST_SUITE_P(Rows, LinkRule, ::testing::ValuesIn(kLinks), RowName());

TEST(PageRules, BlocksAreNoPartOfAPage)
{
    Page const page("```sh\n# No\n### Nor\n[x](y)\n```\n# Yes\n[z](w)\n");
    EXPECT_EQ(page.anchors, std::set<std::string>{"yes"});
    EXPECT_THAT(page.entries, IsEmpty());
    EXPECT_EQ(page.links, List{"w"});
}

TEST(PageRules, QuotedTestsNeedTheirFile)
{
    std::multimap<std::string, std::string> const sources{
        {"A.cpp", "TEST(One, Is)\nTEST_F(Two,\n       Are)"},
        {"A.cpp", "TEST_P(Three, Are)"},
        {"B.cpp", "// One.Was\n"}};
    Page const page("`One.Is` (`A.cpp`), `Two.Are`\n(`A.cpp`), `Three.Are` (`A.cpp`), `One.Is` (`B.cpp`), "
                    "`One.Was` (`B.cpp`), `Two.Is` (`A.cpp`), `One.Is`, `Header.h`");
    EXPECT_EQ(UnknownTests(page, sources),
              (List{"`One.Is` (`B.cpp`)", "`One.Was` (`B.cpp`)", "`Two.Is` (`A.cpp`)", "`One.Is`"}));
}

TEST(PageRules, NamesNeedAHeader)
{
    std::vector<HeaderNames> const headers{
        HeaderNames("namespace KORVA::IO\n{\nclass ISome { int Run(); }; // kGone\n}"),
        HeaderNames("namespace KORVA\n{\nconstexpr int kThere = IID_THERE;\nint Other();\n}")};
    Page const page("`KORVA::IO::ISome::Run` `KORVA::Other()` `ISome::Run(kThere)` `IID_THERE` kNobody "
                    "`KORVA::IO::Other` `KORVA::Run` `ISome::Other` `kGone` `IID_GONE` `IPERSISTENT_X`");
    EXPECT_EQ(UnknownNames(page, headers),
              (List{"KORVA::IO::Other", "KORVA::Run", "ISome::Other", "kGone", "IID_GONE", "IPERSISTENT_X"}));
}

TEST(PageRules, TargetsNeedABuildFile)
{
    EXPECT_EQ(UnknownTargets(Page("`tessio_a` `b_tests` `tessio_c` `d_tests` `e`"), {"tessio_a", "b_tests"}),
              (List{"tessio_c", "d_tests"}));
}

TEST(PageRules, EntriesNeedAllTheirParts)
{
    std::string const whole = "- **Why care:** a\n- **Instead:** b\n- **Pinned by** `C.D` (`E.cpp`)\n";
    EXPECT_THAT(UnfinishedEntries(Page("[x](#one)\n### One\n" + whole)), IsEmpty());
    EXPECT_EQ(UnfinishedEntries(Page("### One\n" + whole)), List{"One: not in the index"});
    EXPECT_EQ(UnfinishedEntries(Page("[x](#one)\n### One\n- **Why care:** a\n## Next\n" + whole)),
              (List{"One: no **Instead:** ", "One: no **Pinned by** `"}));
}
} // namespace
} // namespace KORVA::TESTS
