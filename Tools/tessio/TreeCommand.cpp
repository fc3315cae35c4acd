// tessio tree: every record of a file, where it is and what it holds.
#include "Commands.h"
#include "Failure.h"
#include "Location.h"
#include "ObjectModel/GUIDText.h"
#include "RecordTree.h"

#include <fmt/format.h>

#include <memory>

namespace TOOL
{
namespace
{
using KORVA::IO::IDataProvider;

struct Arguments
{
    std::string file;
    bool bigEndian = false;
};

constexpr std::size_t kShownBytes = 48;

/// Long values are cut in the tree; `dict get` shows them whole.
std::string Cut(std::string text)
{
    if (text.size() <= 3 * kShownBytes)
        return text;
    std::size_t end = 3 * kShownBytes;
    while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end) + " ...";
}

std::string Content(Node const& node)
{
    switch (node.kind)
    {
    case Node::Kind::kDictionary:
    case Node::Kind::kStrings:
        return fmt::format("{}, {}", ClassName(node.classId), Entries(node));
    case Node::Kind::kValue:
        return Cut("DictValue " + node.value.type +
                   (node.value.content.index() == 0 ? "" : " " + Shown(node.value)));
    case Node::Kind::kStringEntry:
        return Cut(Quoted(node.text));
    case Node::Kind::kURI:
        return Cut("URI " + Quoted(node.text));
    case Node::Kind::kRelativeURI:
        return Cut("RelativeURI " + node.directory + " " + Quoted(node.text));
    case Node::Kind::kUnknownClass:
        break;
    }
    return "unknown class " + KORVA::GUIDToText(node.classId) + ", skipped";
}

void AppendNode(std::string& text, Node const& node, std::size_t depth)
{
    text += fmt::format("{:>8} {:>8}  {:{}}", node.offset, node.length, "", 2 * depth);
    if (!node.label.empty() || node.kind == Node::Kind::kStringEntry)
        text += Escaped(node.label) + (node.kind == Node::Kind::kStringEntry ? " = " : ": ");
    text += Content(node) + "\n";
    if (!node.problem.empty())
        text += fmt::format("{:>8} {:>8}  {:{}}! {}\n", "", "", "", 2 * depth, node.problem);
    for (Node const& child : node.children)
        AppendNode(text, child, depth + 1);
}

/// The first thing that is wrong anywhere in the tree; null when all is well. Unknown classes are not wrong.
Node const* FirstProblem(std::vector<Node> const& nodes)
{
    for (Node const& node : nodes)
    {
        if (!node.problem.empty())
            return &node;
        if (Node const* const found = FirstProblem(node.children))
            return found;
    }
    return nullptr;
}

void PrintTree(RecordTree const& tree, Common const& common)
{
    char const* const order = tree.order == IDataProvider::kBigEndian ? "big-endian" : "little-endian";
    if (common.json)
    {
        Json records = Json::array();
        for (Node const& node : tree.records)
            records.push_back(ToJson(node));
        Json document = {{"order", order}, {"records", records}};
        if (!tree.problem.empty())
            document["problem"] = {{"offset", tree.end}, {"what", tree.problem}};
        PrintJson(document);
        return;
    }
    std::string text = fmt::format("{:>8} {:>8}  {}\n", "offset", "length", order);
    for (Node const& node : tree.records)
        AppendNode(text, node, 0);
    Print(text);
}

void Run(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    std::vector<unsigned char> const content =
        ReadWhole(*OpenToRead(session, arguments.file), arguments.file);
    // Asked for in any case: a file that is none in either order must not be printed as if it were one.
    IDataProvider::Endian order = OrderOf(session, content, arguments.file);
    if (arguments.bigEndian)
        order = IDataProvider::kBigEndian;
    RecordTree const tree = ReadTree(session, content, order);
    PrintTree(tree, common);
    if (Node const* const node = FirstProblem(tree.records))
        throw Failure(Exit::kNotARecordFile,
                      fmt::format("{}: the record at offset {} is damaged: {}", Quoted(arguments.file),
                                  node->offset, node->problem));
    if (!tree.problem.empty())
        throw Failure(Exit::kNotARecordFile, fmt::format("{}: {}", Quoted(arguments.file), tree.problem));
}
} // namespace

void AddTreeCommand(CLI::App& app, Common const& common)
{
    CLI::App* const command =
        app.add_subcommand("tree", "Show every record of a file with offset and length");
    auto const arguments = std::make_shared<Arguments>();
    command->add_option("FILE", arguments->file, "The record file")->required();
    command->add_flag("--big-endian", arguments->bigEndian,
                      "Take the file as big-endian; found out when not given");
    command->callback([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
