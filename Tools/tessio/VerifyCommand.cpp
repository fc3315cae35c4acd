// tessio verify, info and classes: whether a record file is whole, and what is in it.
#include "Commands.h"
#include "Document.h"
#include "Failure.h"
#include "Output.h"
#include "Page/Page.h"
#include "PlugInClasses.h"
#include "Target.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Dump/Json.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <array>
#include <map>
#include <memory>

namespace TOOL
{
namespace
{
using namespace KORVA;

struct Arguments
{
    Source source;
    std::string page;
    bool strict = false;
};

struct FindingAt
{
    Finding finding;
    std::string path;
};

/// So many of each code are named; a file may have one for each of its records.
constexpr int64 kNamed = 1000;

struct Findings
{
    /// In the order of the file, `kNamed` of each code at most.
    std::vector<FindingAt> named;
    /// Of each code, how many there are.
    std::map<std::string, int64> counts;
    /// Of each severity.
    std::array<int64, 3> bySeverity{};

    bool IsEmpty() const { return counts.empty(); }

    void Add(Finding const& finding, std::string const& path)
    {
        ++bySeverity[static_cast<std::size_t>(finding.severity)];
        if (++counts[finding.code] <= kNamed)
            named.push_back({finding, path});
    }
};

Findings AllFindings(RecordTree const& tree)
{
    Findings all;
    Walk(tree, [&](Node const& node, std::string const& path, int) {
        for (Finding const& finding : node.findings)
            all.Add(finding, path);
    });
    for (Finding const& finding : tree.findings)
        all.Add(finding, "/");
    return all;
}

struct Tally
{
    std::array<int64, 3> findings{};
    int64 records = 0;
    int64 texts = 0;
    int depth = 0;
    std::map<std::string, int64> classes;

    int64 Count(Severity severity) const { return findings[static_cast<std::size_t>(severity)]; }
};

Tally TallyOf(RecordTree const& tree, Findings const& findings)
{
    Tally tally;
    Walk(tree, [&](Node const& node, std::string const&, int depth) {
        if (node.kind == Kind::kStringEntry)
        {
            ++tally.texts;
            return;
        }
        ++tally.records;
        tally.depth = std::max(tally.depth, depth + 1);
        std::string const name = ClassName(node.classId);
        ++tally.classes[name.empty() ? GUIDToText(node.classId) : name];
    });
    tally.findings = findings.bySeverity;
    return tally;
}

std::string Count(int64 count, char const* one, char const* many)
{
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string FindingCounts(Tally const& tally)
{
    return Count(tally.Count(Severity::kError), "error", "errors") + ", " +
           Count(tally.Count(Severity::kWarning), "warning", "warnings") + ", " +
           Count(tally.Count(Severity::kNote), "note", "notes");
}

Style StyleOf(Severity severity)
{
    return severity == Severity::kError     ? Style::kDamage
           : severity == Severity::kWarning ? Style::kWarning
                                            : Style::kDim;
}

void PrintFindings(Findings const& findings, std::string const& file, Tally const& tally)
{
    std::string text;
    for (auto const& [finding, path] : findings.named)
        text += fmt::format(
            "{}  {} at {}: {}: {}\n",
            Styled(StyleOf(finding.severity), fmt::format("{:<7}", SeverityName(finding.severity))),
            Styled(Style::kKey, path), finding.offset, finding.code, finding.words);
    for (auto const& [code, count] : findings.counts)
        if (count > kNamed)
            text += fmt::format("{} more of {}, not named\n", count - kNamed, code);
    text += fmt::format("{}: {} and {}; {}\n", Escaped(file), Count(tally.records, "record", "records"),
                        Count(tally.texts, "text entry", "text entries"), FindingCounts(tally));
    Print(text);
}

void Verify(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    CheckOther(session, arguments.page, arguments.source.file);
    Document const document = LoadDocument(session, common, arguments.source);
    Findings const findings = AllFindings(document.tree);
    Tally const tally = TallyOf(document.tree, findings);
    if (!arguments.page.empty())
        WritePage(session, common, document, arguments.page);
    else if (common.json)
    {
        Json list = Json::array();
        for (auto const& [finding, path] : findings.named)
            list.push_back(ToJson(finding, path));
        Json whole = {{"file", document.file},
                      {"order", OrderName(document.tree.order)},
                      {"records", tally.records},
                      {"errors", tally.Count(Severity::kError)},
                      {"warnings", tally.Count(Severity::kWarning)},
                      {"notes", tally.Count(Severity::kNote)},
                      {"findings", list}};
        for (auto const& [code, count] : findings.counts)
            if (count > kNamed)
                whole["notNamed"][code] = count - kNamed;
        PrintJson(whole);
    }
    else
        PrintFindings(findings, document.file, tally);
    if (tally.Count(Severity::kError) > 0)
        throw Failure(Exit::kNotARecordFile, Quoted(document.file) + " is damaged");
    if (arguments.strict && tally.Count(Severity::kWarning) > 0)
        throw Failure(Exit::kNotARecordFile, Quoted(document.file) + " is not what the library writes");
}

void Info(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    Document const document = LoadDocument(session, common, arguments.source);
    Findings const findings = AllFindings(document.tree);
    Tally const tally = TallyOf(document.tree, findings);
    if (common.json)
    {
        Json classes = Json::object();
        for (auto const& [name, count] : tally.classes)
            classes[name] = count;
        PrintJson({{"file", document.file},
                   {"size", document.tree.size},
                   {"order", OrderName(document.tree.order)},
                   {"topLevel", document.tree.records.size()},
                   {"records", tally.records},
                   {"texts", tally.texts},
                   {"depth", tally.depth},
                   {"classes", classes},
                   {"errors", tally.Count(Severity::kError)},
                   {"warnings", tally.Count(Severity::kWarning)},
                   {"notes", tally.Count(Severity::kNote)}});
        return;
    }
    std::string text = Escaped(document.file) + "\n";
    auto const row = [&](char const* name, std::string const& value) {
        text += fmt::format("  {:<10} {}\n", name, value);
    };
    row("size", ByteCount(document.tree.size));
    row("order", OrderName(document.tree.order));
    row("records", fmt::format("{} at the top, {} in all", document.tree.records.size(), tally.records));
    row("depth", std::to_string(tally.depth));
    for (auto const& [name, count] : tally.classes)
        text += fmt::format("  {:<10} {} {}\n", text.find("  classes") == std::string::npos ? "classes" : "",
                            count, name);
    row("findings", findings.IsEmpty() ? "none" : FindingCounts(tally) + "; verify names them");
    Print(text);
}

struct ClassRow
{
    GUID id{};
    std::string name;
    std::string by;
    int64 count = 0;
    int64 bytes = 0;
};

std::vector<ClassRow> ClassesIn(Session const& session, Document const& document)
{
    PlugInClasses const makers(session);
    std::map<GUID, ClassRow> rows;
    Walk(document.tree, [&](Node const& node, std::string const&, int) {
        if (node.kind == Kind::kStringEntry)
            return;
        ClassRow& row = rows[node.classId];
        row.id = node.classId;
        ++row.count;
        row.bytes += node.length;
    });
    std::vector<ClassRow> list;
    for (auto& [id, row] : rows)
    {
        row.name = ClassName(id);
        row.by = !row.name.empty() ? "library" : makers.Makes(id) ? "plug-in" : "unknown";
        list.push_back(row);
    }
    return list;
}

void Classes(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    bool const ofFile = !arguments.source.file.empty();
    std::vector<ClassRow> rows;
    if (ofFile)
        rows = ClassesIn(session, LoadDocument(session, common, arguments.source));
    else
        for (KnownClass const& known : KnownClasses())
            rows.push_back({known.id, known.name, "library", 0, 0});
    if (common.json)
    {
        Json list = Json::array();
        for (ClassRow const& row : rows)
        {
            Json json = {{"classId", GUIDToText(row.id)},
                         {"class", row.name.empty() ? Json(nullptr) : Json(row.name)},
                         {"by", row.by}};
            if (ofFile)
                json.update({{"count", row.count}, {"bytes", row.bytes}});
            list.push_back(json);
        }
        return PrintJson({{"classes", list}});
    }
    std::string text;
    for (ClassRow const& row : rows)
        text += ofFile ? fmt::format("{}  {:<7}  {:>6} {:>10}  {}\n", GUIDToText(row.id), row.by, row.count,
                                     row.bytes, row.name)
                       : fmt::format("{}  {}\n", GUIDToText(row.id), row.name);
    Print(text);
}
} // namespace

void AddVerifyCommands(Command const& app, Common const& common)
{
    auto const arguments = std::make_shared<Arguments>();
    Command const info = app.Add("info", "Tell size, byte order and classes of a record file");
    AddSource(info, arguments->source);
    info.Runs([&common, arguments] { Info(common, *arguments); });
    Command const classes =
        app.Add("classes", "List the classes in a record file, or those that the library knows");
    AddSource(classes, arguments->source);
    classes.Find("FILE").Required(false);
    classes.Runs([&common, arguments] { Classes(common, *arguments); });
    Command const verify = app.Add("verify", "Name everything in a record file that is damaged or unusual");
    AddSource(verify, arguments->source);
    verify.Flag("--strict", arguments->strict, "Take warnings for damage too");
    AddPage(verify, arguments->page);
    verify.Runs([&common, arguments] { Verify(common, *arguments); });
}
} // namespace TOOL
