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
    Input source;
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

struct Tally
{
    int64 topLevel = 0;
    int64 records = 0;
    int64 texts = 0;
    int depth = 0;
    std::map<std::string, int64> classes;
};

/// What one walk through a file finds.
struct Survey
{
    Findings findings;
    Tally tally;

    int64 Count(Severity severity) const { return findings.bySeverity[static_cast<std::size_t>(severity)]; }
};

void Add(Tally& tally, Node const& node)
{
    if (node.kind == Kind::kStringEntry)
    {
        ++tally.texts;
        return;
    }
    ++tally.records;
    tally.topLevel += node.depth == 0 ? 1 : 0;
    tally.depth = std::max(tally.depth, node.depth + 1);
    std::string const name = ClassName(node.classId);
    ++tally.classes[name.empty() ? GUIDToText(node.classId) : name];
}

Survey SurveyOf(OpenDocument& document)
{
    Survey survey;
    int64 const end = document.Value(Walk(document.Records(), [&](Node const& node, std::string const& path) {
        for (Finding const& finding : node.findings)
            survey.findings.Add(finding, path);
        Add(survey.tally, node);
        return true;
    }));
    if (auto const finding = LeftOver(end, document.Records().Size()))
        survey.findings.Add(*finding, "/");
    return survey;
}

std::string Count(int64 count, char const* one, char const* many)
{
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string FindingCounts(Survey const& survey)
{
    return Count(survey.Count(Severity::kError), "error", "errors") + ", " +
           Count(survey.Count(Severity::kWarning), "warning", "warnings") + ", " +
           Count(survey.Count(Severity::kNote), "note", "notes");
}

Style StyleOf(Severity severity)
{
    return severity == Severity::kError     ? Style::kDamage
           : severity == Severity::kWarning ? Style::kWarning
                                            : Style::kDim;
}

void PrintFindings(Survey const& survey, std::string const& file)
{
    std::string text;
    for (auto const& [finding, path] : survey.findings.named)
        text += fmt::format(
            "{}  {} at {}: {}: {}\n",
            Styled(StyleOf(finding.severity), fmt::format("{:<7}", SeverityName(finding.severity))),
            Styled(Style::kKey, path), finding.offset, finding.code, finding.words);
    for (auto const& [code, count] : survey.findings.counts)
        if (count > kNamed)
            text += fmt::format("{} more of {}, not named\n", count - kNamed, code);
    text +=
        fmt::format("{}: {} and {}; {}\n", Escaped(file), Count(survey.tally.records, "record", "records"),
                    Count(survey.tally.texts, "text entry", "text entries"), FindingCounts(survey));
    Print(text);
}

void Verify(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    CheckOther(session, arguments.page, arguments.source.file);
    OpenDocument document(session, common, arguments.source);
    Survey const survey = SurveyOf(document);
    if (!arguments.page.empty())
        WritePage(session, document, arguments.page);
    else if (common.json)
    {
        Json list = Json::array();
        for (auto const& [finding, path] : survey.findings.named)
            list.push_back(ToJson(finding, path));
        Json whole = {{"file", document.File()},
                      {"order", OrderName(document.GetOrder())},
                      {"records", survey.tally.records},
                      {"errors", survey.Count(Severity::kError)},
                      {"warnings", survey.Count(Severity::kWarning)},
                      {"notes", survey.Count(Severity::kNote)},
                      {"findings", list}};
        for (auto const& [code, count] : survey.findings.counts)
            if (count > kNamed)
                whole["notNamed"][code] = count - kNamed;
        PrintJson(whole);
    }
    else
        PrintFindings(survey, document.File());
    if (survey.Count(Severity::kError) > 0)
        throw Failure(Exit::kNotARecordFile, Quoted(document.File()) + " is damaged");
    if (arguments.strict && survey.Count(Severity::kWarning) > 0)
        throw Failure(Exit::kNotARecordFile, Quoted(document.File()) + " is not what the library writes");
}

void Info(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    OpenDocument document(session, common, arguments.source);
    Survey const survey = SurveyOf(document);
    if (common.json)
    {
        Json classes = Json::object();
        for (auto const& [name, count] : survey.tally.classes)
            classes[name] = count;
        PrintJson({{"file", document.File()},
                   {"size", document.Records().Size()},
                   {"order", OrderName(document.GetOrder())},
                   {"topLevel", survey.tally.topLevel},
                   {"records", survey.tally.records},
                   {"texts", survey.tally.texts},
                   {"depth", survey.tally.depth},
                   {"classes", classes},
                   {"errors", survey.Count(Severity::kError)},
                   {"warnings", survey.Count(Severity::kWarning)},
                   {"notes", survey.Count(Severity::kNote)}});
        return;
    }
    std::string text = Escaped(document.File()) + "\n";
    auto const row = [&](char const* name, std::string const& value) {
        text += fmt::format("  {:<10} {}\n", name, value);
    };
    row("size", ByteCount(document.Records().Size()));
    row("order", OrderName(document.GetOrder()));
    row("records", fmt::format("{} at the top, {} in all", survey.tally.topLevel, survey.tally.records));
    row("depth", std::to_string(survey.tally.depth));
    for (auto const& [name, count] : survey.tally.classes)
        text += fmt::format("  {:<10} {} {}\n", text.find("  classes") == std::string::npos ? "classes" : "",
                            count, name);
    row("findings", survey.findings.IsEmpty() ? "none" : FindingCounts(survey) + "; verify names them");
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

std::vector<ClassRow> ClassesIn(Session const& session, OpenDocument& document)
{
    PlugInClasses const makers(session);
    std::map<GUID, ClassRow> rows;
    static_cast<void>(document.Value(Walk(document.Records(), [&](Node const& node, std::string const&) {
        if (node.kind == Kind::kStringEntry)
            return true;
        ClassRow& row = rows[node.classId];
        row.id = node.classId;
        ++row.count;
        row.bytes += node.length;
        return true;
    })));
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
    {
        OpenDocument document(session, common, arguments.source);
        rows = ClassesIn(session, document);
    }
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
