#include "Page/Page.h"

#include "Failure.h"
#include "Output.h"
#include "Page/Template.h"
#include <tessio/Records/Dump/Json.h>
#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Tree/Layout.h>
#include <tessio/Records/Tree/Summary.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace TOOL
{
namespace
{
using KORVA::int64;

std::string Base64(ByteView bytes)
{
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3)
    {
        std::size_t const left = bytes.size() - at;
        unsigned const group = static_cast<unsigned>(bytes[at] << 16) |
                               static_cast<unsigned>(left > 1 ? bytes[at + 1] << 8 : 0) |
                               static_cast<unsigned>(left > 2 ? bytes[at + 2] : 0);
        text += kDigits[group >> 18];
        text += kDigits[group >> 12 & 63];
        text += left > 1 ? kDigits[group >> 6 & 63] : '=';
        text += left > 2 ? kDigits[group & 63] : '=';
    }
    return text;
}

/// Appends JSON so that it can stand in a script element, whatever texts are in it.
void AppendForScript(std::string& text, std::string_view json)
{
    for (char const c : json)
        c == '<' ? text += "\\u003c" : text += c;
}

std::string ForMarkup(std::string_view text)
{
    std::string result;
    for (char const c : text)
        result += c == '<'   ? std::string("&lt;")
                  : c == '&' ? std::string("&amp;")
                  : c == '"' ? std::string("&quot;")
                             : std::string(1, c);
    return result;
}

void Replace(std::string& text, std::string_view mark, std::string const& by)
{
    text.replace(text.find(mark), mark.size(), by);
}

Json RowJson(LayoutRow const& row)
{
    Json json = {{"o", row.field.offset}, {"l", row.field.length}, {"d", row.depth}};
    if (row.record)
    {
        json["p"] = row.place.Last();
        json["v"] = Summary(*row.record);
        Json findings = Json::array();
        for (Finding const& finding : row.record->findings)
            findings.push_back({{"severity", SeverityName(finding.severity)}, {"words", finding.words}});
        if (!findings.empty())
            json["f"] = std::move(findings);
        return json;
    }
    json["r"] = RoleName(row);
    json["n"] = row.field.name;
    json["v"] = row.field.value;
    return json;
}
} // namespace

void AddPage(Command const& command, std::string& out)
{
    command
        .Option("--html", out,
                "Write a page for a browser instead: records beside their bytes; - for standard output")
        .Names("FILE");
}

std::string PageOf(OpenDocument& document)
{
    std::string data;
    JsonPrinter json([&](std::string_view piece) { AppendForScript(data, piece); },
                     JsonPrinter::Layout::kOneLine);
    Reader& records = document.Records();
    json.BeginObject();
    json.Members({{"schema", 1},
                  {"file", document.File()},
                  {"order", OrderName(document.GetOrder())},
                  {"size", records.Size()},
                  {"bytes", Base64(document.Content())}});
    json.Key("findings");
    json.BeginList();
    if (auto const finding = LeftOver(document.Value(EndOfRecords(records)), records.Size()))
        json.Value(ToJson(*finding, "/"));
    json.End();
    json.Key("rows");
    json.BeginList();
    static_cast<void>(
        document.Value(Layout(records, [&](LayoutRow const& row) { json.Value(RowJson(row)); })));
    json.End();
    json.End();
    json.Finish();
    std::string page = kPageTemplate;
    Replace(page, "{{title}}", ForMarkup(Escaped(document.File())));
    Replace(page, "{{data}}", data);
    return page;
}

void WritePage(Session const& session, OpenDocument& document, std::string const& out)
{
    if (int64 const size = document.Records().Size(); size > kLargestPage)
        throw Failure(Exit::kLimit, fmt::format("{} is {} bytes; a page takes {} at most",
                                                Quoted(document.File()), size, kLargestPage));
    std::string const page = PageOf(document);
    WriteOutput(session, out, Bytes(page.begin(), page.end()));
}
} // namespace TOOL
