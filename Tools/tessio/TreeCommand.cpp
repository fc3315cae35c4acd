// tessio tree: every record of a file, where it is and what it holds.
#include "Commands.h"
#include "Directories.h"
#include "Document.h"
#include "Output.h"
#include "Page/Page.h"
#include "Target.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Dump/Json.h>
#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Tree/Summary.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace TOOL
{
namespace
{
using KORVA::int64;

struct Arguments
{
    Input source;
    std::string path;
    std::string page;
    bool bigEndian = false;
};

std::string LabelInFront(Node const& node)
{
    switch (node.label.type)
    {
    case Label::Type::kIndex:
        break;
    case Label::Type::kKey:
        return Styled(Style::kKey, std::to_string(node.label.number)) + ": ";
    case Label::Type::kText:
        return Styled(Style::kKey, Escaped(node.label.text)) + " = ";
    case Label::Type::kInterface:
        return Styled(Style::kKey, "aggregate " + KORVA::GUIDToText(node.label.id)) + ": ";
    case Label::Type::kPart:
        return Styled(Style::kKey, fmt::format("record {}", node.label.number)) + ": ";
    }
    return "";
}

void PrintNode(Node const& node, int depth)
{
    std::string text = Styled(Style::kDim, fmt::format("{:>8} {:>8}", node.offset, node.length));
    text += fmt::format("  {:{}}{}{}\n", "", Indent(depth), LabelInFront(node), Summary(node, &Painted));
    if (std::string const problem = Problem(node); !problem.empty())
        text += fmt::format("{:>8} {:>8}  {:{}}{}\n", "", "", "", Indent(depth),
                            Styled(Style::kDamage, "! " + problem));
    Print(text);
}

/// `only` is what a path named; nothing stands for the whole file.
void PrintTree(OpenDocument& document, std::optional<Node> const& only)
{
    Print(Styled(Style::kDim,
                 fmt::format("{:>8} {:>8}  {}", "offset", "length", OrderName(document.GetOrder()))) +
          "\n");
    int const top = only ? only->depth : 0;
    auto const print = [top](Node const& node, std::string const&) {
        PrintNode(node, node.depth - top);
        return true;
    };
    if (only)
        static_cast<void>(document.Value(Walk(document.Records(), *only, "", print)));
    else
        static_cast<void>(document.Value(Walk(document.Records(), print)));
}

void PrintJsonTree(OpenDocument& document, std::optional<Node> const& only, std::string const& path)
{
    PrintJson([&](JsonPrinter& json) {
        json.Member("order", OrderName(document.GetOrder()));
        json.Key("records");
        json.BeginList();
        Reader& records = document.Records();
        int64 end = records.Size();
        if (only)
            static_cast<void>(document.Value(WriteNode(json, records, *only, path)));
        else
            end = document.Value(WriteNodes(json, records));
        json.End();
        if (only)
            end = document.Value(EndOfRecords(records));
        if (auto const finding = LeftOver(end, records.Size()))
            json.Member("problem", {{"offset", finding->offset}, {"what", finding->words}});
    });
}

void Run(Common const& common, Arguments const& arguments)
{
    if (!arguments.path.empty())
        static_cast<void>(PathArgument(arguments.path));
    Session const session(common);
    CheckOther(session, arguments.page, arguments.source.file);
    Input source = arguments.source;
    if (arguments.bigEndian)
        source.endian = "big";
    OpenDocument document(session, common, source);
    std::optional<Node> only;
    if (!arguments.path.empty())
        only = document.Find(arguments.path);
    if (!arguments.page.empty())
        WritePage(session, document, arguments.page);
    else if (common.json)
        PrintJsonTree(document, only, arguments.path);
    else
        PrintTree(document, only);
    document.FailWhenDamaged();
}
} // namespace

void AddTreeCommand(Command const& app, Common const& common)
{
    Command const command = app.Add("tree", "Show every record of a file with offset and length");
    auto const arguments = std::make_shared<Arguments>();
    AddSource(command, arguments->source);
    command.Option("PATH", arguments->path, "Only what is there: /0/dict[42]");
    command.Flag("--big-endian", arguments->bigEndian, "The same as --endian big");
    AddPage(command, arguments->page);
    command.Runs([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
