// tessio salvage: what can be kept of a damaged record file.
#include "Commands.h"
#include "Document.h"
#include "Failure.h"
#include "Location.h"
#include "OneFile.h"
#include "Outcome.h"
#include "Output.h"
#include "Progress.h"
#include "Target.h"
#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Salvage/Salvage.h>
#include <tessio/Records/Tree/FileOrder.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <array>
#include <memory>

namespace TOOL
{
namespace
{
using KORVA::int64;

constexpr std::array kFates = {Fate::Type::kKept, Fate::Type::kRepaired, Fate::Type::kPartial,
                               Fate::Type::kOpaque, Fate::Type::kLost};

struct Arguments
{
    Input source;
    std::string out;
    std::string report;
};

int64 BytesOf(Salvaged const& salvaged, Fate::Type type)
{
    int64 bytes = 0;
    for (Fate const& fate : salvaged.fates)
        bytes += fate.type == type ? fate.length : 0;
    return bytes;
}

std::string Totals(Salvaged const& salvaged, int64 size)
{
    std::string text = ByteCount(size) + ":";
    for (Fate::Type const type : kFates)
        text += fmt::format(" {} {}{}", BytesOf(salvaged, type), FateName(type),
                            type == Fate::Type::kLost ? "" : ",");
    return text + "\n";
}

/// Is given the report piece by piece.
using Sink = TextSink;

void ReportText(Sink const& put, Salvaged const& salvaged, std::string const& file, std::string const& out,
                int64 size)
{
    put(fmt::format("{} -> {}\n", Escaped(file), Escaped(out)));
    put(fmt::format("{:>10} {:>10}  {:<8}  {}\n", "offset", "length", "fate", "where in the result"));
    for (Fate const& fate : salvaged.fates)
        put(fmt::format("{:>10} {:>10}  {:<8}{}{}{}\n", fate.offset, fate.length, FateName(fate.type),
                        fate.path.IsFile() ? "" : "  " + fate.path.Text(), fate.words.empty() ? "" : ": ",
                        fate.words));
    put(Totals(salvaged, size));
}

void ReportJson(Sink const& put, Salvaged const& salvaged, std::string const& file, std::string const& out,
                int64 size)
{
    JsonPrinter json(put);
    json.BeginObject();
    Json totals = Json::object();
    for (Fate::Type const type : kFates)
        totals[FateName(type)] = BytesOf(salvaged, type);
    json.Members({{"schema", kSchema}, {"file", file}, {"result", out}, {"size", size}, {"bytes", totals}});
    json.Key("fates");
    json.BeginList();
    for (Fate const& fate : salvaged.fates)
    {
        Json one = {{"offset", fate.offset}, {"length", fate.length}, {"fate", FateName(fate.type)}};
        if (!fate.path.IsFile())
            one["path"] = fate.path.Text();
        if (!fate.words.empty())
            one["words"] = fate.words;
        json.Value(one);
    }
    json.End();
    json.End();
    json.Finish();
}

Salvaged SalvageFile(Bytes const& content, std::string const& file, Order order, Limits const& limits)
{
    Progress progress("searching " + Quoted(file), static_cast<int64>(content.size()));
    return ValueOf(Salvage(content, order, {limits, progress.Watcher()}), Quoted(file) + ": ");
}

void Run(Common const& common, Arguments const& arguments)
{
    std::string const& file = arguments.source.file;
    if (arguments.out == "-" && (arguments.report.empty() || arguments.report == "-"))
        throw Failure(Exit::kUsage,
                      "only one of result and report can go to standard output: name a file with --report");
    Session const session(common);
    // The damaged file may be all that is left.
    CheckOther(session, arguments.out, file);
    if (!arguments.report.empty() && arguments.report != "-")
    {
        CheckOther(session, arguments.report, file);
        if (arguments.out != "-" && AreOneFile(session, arguments.report, arguments.out))
            throw Failure(Exit::kUsage, "result and report can't both be " + Quoted(arguments.out));
    }
    Bytes const content = ReadInput(session, common, file);
    std::optional<Order> const order = OrderArgument(arguments.source.endian);
    auto const size = static_cast<int64>(content.size());
    Salvaged const salvaged = SalvageFile(
        content, file, order ? *order : ValueOf(OrderOf(content), Quoted(file) + " "), common.limits);
    // Nothing is no result, and what stands at its place may be the better one.
    bool const isSaved = !salvaged.content.empty();
    if (isSaved)
        WriteOutput(session, arguments.out, salvaged.content);
    auto const report = [&](Sink const& put) {
        (common.json ? ReportJson : ReportText)(put, salvaged, file, arguments.out, size);
    };
    std::string const place = arguments.out == "-" ? "standard output" : Quoted(arguments.out);
    if (arguments.report.empty() || arguments.report == "-")
        report(&Print);
    else
    {
        Bytes bytes;
        report([&](std::string_view piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); });
        if (auto const why = TryReplaceContent(session, arguments.report, bytes); !why.empty())
            throw Failure(Exit::kInputOutput,
                          fmt::format("cannot write {}: {}; {}", Quoted(arguments.report), why,
                                      isSaved ? "the result is in " + place : "nothing could be saved"));
    }
    if (!isSaved)
        throw Failure(
            Exit::kNotARecordFile,
            fmt::format("nothing in {} could be saved; nothing is written to {}", Quoted(file), place));
}
} // namespace

void AddSalvageCommand(Command const& app, Common const& common)
{
    Command const command =
        app.Add("salvage", "Write everything that is whole in a damaged record file to a new one");
    auto const arguments = std::make_shared<Arguments>();
    AddSource(command, arguments->source);
    command.Option("-o,--output", arguments->out, "The file to write; - for standard output")
        .Names("OUT")
        .Required();
    command
        .Option("--report", arguments->report,
                "Where what became of every byte is written; standard output when not given")
        .Names("FILE");
    command.Runs([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
