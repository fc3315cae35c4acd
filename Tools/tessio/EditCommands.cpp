// tessio get, set, convert and extract: single places of record files.
#include "EditCommands.h"

#include "Commands.h"
#include "Directories.h"
#include "Document.h"
#include "Failure.h"
#include "Outcome.h"
#include "Output.h"
#include "RecordFile.h"
#include "Target.h"
#include "Values.h"
#include <tessio/Records/Dump/Json.h>
#include <tessio/Records/Edit/Edit.h>
#include <tessio/Records/Tree/Summary.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>

namespace TOOL
{
namespace
{
struct Arguments
{
    Input source;
    std::string path;
    std::string type;
    std::string value;
    std::string order;
    Target target;
    bool raw = false;
};

/// The content of a value and nothing around it. Ends the command for what has none.
Bytes RawContent(Node const& node, std::string const& path)
{
    if (auto const* const bytes = std::get_if<Bytes>(&node.value.content))
        return *bytes;
    std::string text;
    if (auto const* const units = std::get_if<std::u16string>(&node.value.content))
        text = KORVA::STRING::CoreString(*units).ToUTF8();
    else if (node.kind == Kind::kStringEntry || node.kind == Kind::kURI || node.kind == Kind::kRelativeURI)
        text = node.text.ToUTF8();
    else
        throw Failure(Exit::kUsage, path + " is neither bytes nor text: --raw takes only these");
    return {text.begin(), text.end()};
}

/// For one line; of a record that holds others one line for each of these.
void PrintValue(OpenDocument& document, Node const& node)
{
    Reader& records = document.Records();
    switch (node.kind)
    {
    case Kind::kValue:
        return Print(Shown(node.value) + "\n");
    case Kind::kStringEntry:
    case Kind::kURI:
        return Print(Escaped(node.text) + "\n");
    case Kind::kRelativeURI:
        return Print(DirectoryName(node.directory) + ":" + Escaped(node.text) + "\n");
    case Kind::kDictionary:
    case Kind::kStrings:
    case Kind::kObject: {
        std::string text;
        for (Part const& part : node.parts)
            if (part.type != "record")
            {
                Bytes const bytes = document.Value(records.BytesAt(part.offset, part.length));
                text += part.type + " " + ShownPart(bytes, part, document.GetOrder()) + "\n";
            }
        Print(text);
        Cursor children = records.Children(node);
        Node child;
        while (document.Value(children.Next(child)))
        {
            static_cast<void>(document.Value(records.Complete(child)));
            Print(Styled(Style::kKey, Segment(child.label)) + " " + Summary(child, &Painted) + "\n");
        }
        return;
    }
    case Kind::kUnknownClass:
        break;
    }
    Print(Summary(node, &Painted) + "\n");
}

void Get(Common const& common, Arguments const& arguments)
{
    static_cast<void>(PathArgument(arguments.path));
    Session const session(common);
    OpenDocument document(session, common, arguments.source);
    Node const node = document.Find(arguments.path);
    if (std::string const problem = Problem(node); !problem.empty())
        throw Failure(Exit::kNotARecordFile,
                      fmt::format("{}: {} is damaged: {}", Quoted(document.File()), arguments.path, problem));
    if (arguments.raw)
        WriteOutput(session, "-", RawContent(node, arguments.path));
    else if (common.json)
        PrintJson([&](JsonPrinter& json) {
            json.Key("entry");
            static_cast<void>(document.Value(
                WriteNode(json, document.Records(), node, PathText(PathArgument(arguments.path)))));
        });
    else
        PrintValue(document, node);
}

/// The one record in a file, to be put into another.
Bytes RecordFrom(Session const& session, Common const& common, std::string const& file, Order order)
{
    OpenDocument document(session, common, {file, ""});
    RecordTree const tree = document.Tree();
    if (tree.records.size() != 1 || tree.end != tree.size)
        throw Failure(Exit::kUsage,
                      fmt::format("{} should hold one record, it has {}", Quoted(file), tree.records.size()));
    return document.GetOrder() == order ? document.Content()
                                        : ValueOf(WithOrder(document.Records(), file, order));
}

/// Asks the classes that the session knows.
ObjectProof ProofBy(Session const& session)
{
    return [&session](ByteView record, Order order) { return IsWrittenAsRead(session, record, order); };
}

Bytes NewContent(Session const& session, Common const& common, Arguments const& arguments, Order order)
{
    Path const path = PathArgument(arguments.path);
    if (path.back().type == Label::Type::kText)
    {
        if (arguments.type != "text")
            throw Failure(Exit::kUsage, "a string dictionary holds text only, not " + Quoted(arguments.type));
        return StringEntry(path.back().text, TextArgument(arguments.value, "text"), order);
    }
    if (arguments.type == "record")
        return RecordFrom(session, common, arguments.value, order);
    return ValueRecord(session, arguments.type, arguments.value, order);
}

void Set(Common const& common, Arguments const& arguments)
{
    static_cast<void>(PathArgument(arguments.path));
    Session const session(common);
    CheckTarget(session, arguments.target, arguments.source.file);
    if ((arguments.type == "record" || arguments.type == "file") && !arguments.target.inPlace)
        CheckOther(session, arguments.target.out, arguments.value);
    Document const document = LoadDocument(session, common, arguments.source);
    Bytes const content = NewContent(session, common, arguments, document.tree.order);
    WriteTarget(
        session, arguments.target, document,
        ValueOf(WithPlaced(document.Original(), PathArgument(arguments.path), content, ProofBy(session))));
}

void Convert(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    CheckTarget(session, arguments.target, arguments.source.file);
    OpenDocument document(session, common, {arguments.source.file, ""});
    Order const order = *OrderArgument(arguments.order);
    Bytes const content = order == document.GetOrder()
                              ? document.Content()
                              : ValueOf(WithOrder(document.Records(), document.File(), order));
    WriteTarget(session, arguments.target, {document.File(), document.Content(), {}}, content);
}

void Extract(Common const& common, Arguments const& arguments)
{
    static_cast<void>(PathArgument(arguments.path));
    Session const session(common);
    CheckOther(session, arguments.target.out, arguments.source.file);
    OpenDocument document(session, common, arguments.source);
    Node const node = document.Find(arguments.path);
    if (arguments.raw)
        return WriteOutput(session, arguments.target.out, RawContent(node, arguments.path));
    if (node.kind == Kind::kStringEntry)
        throw Failure(Exit::kUsage, arguments.path + " is a text and no record: use --raw");
    WriteOutput(session, arguments.target.out,
                document.Value(document.Records().BytesAt(node.offset, node.length)));
}
} // namespace

void RemovePlace(Common const& common, std::string const& file, std::string const& path, Target const& target)
{
    Session const session(common);
    CheckTarget(session, target, file);
    Document const document = LoadDocument(session, common, {file, ""});
    WriteTarget(session, target, document,
                ValueOf(WithoutPlace(document.Original(), PathArgument(path), ProofBy(session))));
}

void AddEditCommands(Command const& app, Common const& common)
{
    auto const arguments = std::make_shared<Arguments>();
    auto const add = [&](char const* name, char const* about, void (*run)(Common const&, Arguments const&)) {
        Command const command = app.Add(name, about);
        command.Runs([&common, arguments, run] { run(common, *arguments); });
        return command;
    };
    auto const addPlace = [&](Command const& command) {
        AddSource(command, arguments->source);
        command
            .Option("PATH", arguments->path,
                    "What tree --json shows: /0/dict[42]/dict[7], /0/{GUID}, /1/strings[\"NAME\"]")
            .Required();
    };
    Command const get = add("get", "Print what a path of a record file names", &Get);
    addPlace(get);
    get.Flag("--raw", arguments->raw, "Print bytes or text as they are");
    Command const set = add("set", "Set what a path of a record file names", &Set);
    addPlace(set);
    set.Option("TYPE", arguments->type,
               fmt::format("{}, or record: the one in a file", fmt::join(ValueTypes(), " ")))
        .Required();
    set.Option("VALUE", arguments->value, "As dict set takes it; of a record the file that it is in");
    AddTarget(set, arguments->target);
    Command const convert = add("convert", "Write a record file in the other byte order", &Convert);
    convert.Option("FILE", arguments->source.file, "The record file; - for standard input").Required();
    convert.Option("--endian", arguments->order, "The order of the result")
        .Names("big|little")
        .OneOf({"big", "little"})
        .Required();
    AddTarget(convert, arguments->target);
    Command const extract = add("extract", "Write one record as a file of its own", &Extract);
    addPlace(extract);
    extract.Option("-o,--output", arguments->target.out, "The file to write; - for standard output")
        .Names("OUT")
        .Required();
    extract.Flag("--raw", arguments->raw, "Only the bytes or the text that it holds");
}
} // namespace TOOL
