// tessio salvage: what can be kept of a damaged record file.
#include "Commands.h"
#include "Failure.h"
#include "Output.h"
#include "Records/Document.h"
#include "Records/Salvage.h"
#include "Target.h"

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
    Source source;
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
    std::string text = fmt::format("{} bytes:", size);
    for (Fate::Type const type : kFates)
        text += fmt::format(" {} {}{}", BytesOf(salvaged, type), FateName(type),
                            type == Fate::Type::kLost ? "" : ",");
    return text + "\n";
}

std::string ReportText(Salvaged const& salvaged, std::string const& file, std::string const& out, int64 size)
{
    std::string text = fmt::format("{} -> {}\n", Escaped(file), Escaped(out));
    text += fmt::format("{:>10} {:>10}  {:<8}  {}\n", "offset", "length", "fate", "where in the result");
    for (Fate const& fate : salvaged.fates)
        text += fmt::format("{:>10} {:>10}  {:<8}{}{}{}\n", fate.offset, fate.length, FateName(fate.type),
                            fate.path.empty() ? "" : "  " + fate.path, fate.words.empty() ? "" : ": ",
                            fate.words);
    return text + Totals(salvaged, size);
}

Json ReportJson(Salvaged const& salvaged, std::string const& file, std::string const& out, int64 size)
{
    Json fates = Json::array();
    for (Fate const& fate : salvaged.fates)
    {
        Json json = {{"offset", fate.offset}, {"length", fate.length}, {"fate", FateName(fate.type)}};
        if (!fate.path.empty())
            json["path"] = fate.path;
        if (!fate.words.empty())
            json["words"] = fate.words;
        fates.push_back(std::move(json));
    }
    Json totals = Json::object();
    for (Fate::Type const type : kFates)
        totals[FateName(type)] = BytesOf(salvaged, type);
    return {{"file", file}, {"result", out}, {"size", size}, {"bytes", totals}, {"fates", fates}};
}

void Run(Common const& common, Arguments const& arguments)
{
    std::string const& file = arguments.source.file;
    // The damaged file may be all that is left.
    CheckOther(arguments.out, file);
    CheckOther(arguments.report, file);
    if (arguments.report == arguments.out && arguments.out != "-")
        throw Failure(Exit::kUsage, "result and report can't both be " + Quoted(arguments.out));
    if (arguments.out == "-" && (arguments.report.empty() || arguments.report == "-"))
        throw Failure(Exit::kUsage,
                      "only one of result and report can go to standard output: name a file with --report");
    Session const session(common);
    Bytes const content = ReadInput(session, common, file);
    std::optional<Order> const order = OrderArgument(arguments.source.endian);
    auto const size = static_cast<int64>(content.size());
    Progress progress("searching " + Quoted(file), size);
    Salvaged const salvaged = Salvage(content, order ? *order : OrderOf(content, file), &progress);
    WriteOutput(session, arguments.out, salvaged.content);
    if (common.json && (arguments.report.empty() || arguments.report == "-"))
        PrintJson(ReportJson(salvaged, file, arguments.out, size));
    else
    {
        std::string const report = common.json
                                       ? ReportJson(salvaged, file, arguments.out, size).dump(2) + "\n"
                                       : ReportText(salvaged, file, arguments.out, size);
        WriteOutput(session, arguments.report.empty() ? "-" : arguments.report,
                    Bytes(report.begin(), report.end()));
    }
}
} // namespace

void AddSalvageCommand(CLI::App& app, Common const& common)
{
    CLI::App* const command =
        app.add_subcommand("salvage", "Write everything that is whole in a damaged record file to a new one");
    auto const arguments = std::make_shared<Arguments>();
    AddSource(*command, arguments->source);
    command->add_option("-o,--output", arguments->out, "The file to write; - for standard output")
        ->type_name("OUT")
        ->required();
    command
        ->add_option("--report", arguments->report,
                     "Where what became of every byte is written; standard output when not given")
        ->type_name("FILE");
    command->callback([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
