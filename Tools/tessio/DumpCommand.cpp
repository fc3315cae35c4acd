// tessio dump and build: a record file as text, and back.
#include "Commands.h"
#include "Document.h"
#include "Failure.h"
#include "Outcome.h"
#include "Output.h"
#include "Target.h"
#include <tessio/Records/Dump/JsonDump.h>
#include <tessio/Records/Dump/Text.h>

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
    std::string format = "text";
    std::string out = "-";
};

void Dump(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    CheckOther(session, arguments.out, arguments.source.file);
    OpenDocument document(session, common, arguments.source);
    Reader& records = document.Records();
    std::string const format = common.json ? "json" : arguments.format;
    std::string text;
    bool const isPrinted = arguments.out == "-";
    TextSink const sink = [&](std::string_view piece) { isPrinted ? Print(piece) : void(text += piece); };
    if (format == "json")
    {
        JsonPrinter json(sink);
        static_cast<void>(document.Value(WriteJson(json, records)));
    }
    else
        static_cast<void>(
            document.Value(format == "jsonl" ? WriteJsonLines(records, sink) : WriteText(records, sink)));
    if (!isPrinted)
        WriteOutput(session, arguments.out, Bytes(text.begin(), text.end()));
}

/// Ends the command, naming the line, for a text that is no dump.
Bytes BytesOfDump(std::string_view text, std::string const& name, bool isJson)
{
    Result<Bytes> bytes = isJson ? ReadJson(text) : ReadText(text);
    if (bytes)
        return *std::move(bytes);
    Error const& error = bytes.error();
    std::string const line = error.offset == kNoOffset ? "" : fmt::format(":{}", LineAt(text, error.offset));
    throw Failure(ExitOf(error.code), fmt::format("{}{}: {}", Escaped(name), line, error.words));
}

void Build(Common const& common, Arguments const& arguments)
{
    std::string const& file = arguments.source.file;
    Session const session(common);
    CheckOther(session, arguments.out, file);
    Bytes const content = ReadInput(session, common, file);
    std::string_view const text(reinterpret_cast<char const*>(content.data()), content.size());
    std::size_t const start = text.find_first_not_of(" \t\r\n");
    bool const isJson = start != std::string_view::npos && text[start] == '{';
    std::string const name = file == "-" ? "standard input" : file;
    WriteOutput(session, arguments.out, BytesOfDump(text, name, isJson));
}
} // namespace

void AddDumpCommands(Command const& app, Common const& common)
{
    auto const arguments = std::make_shared<Arguments>();
    Command const dump = app.Add("dump", "Write every byte of a record file as text that build reads");
    AddSource(dump, arguments->source);
    dump.Option("--format", arguments->format, "text, json, or jsonl: a line for each record")
        .OneOf({"text", "json", "jsonl"})
        .Names("FORMAT");
    dump.Option("-o,--output", arguments->out, "The file to write; - for standard output").Names("OUT");
    dump.Runs([&common, arguments] { Dump(common, *arguments); });
    Command const build = app.Add(
        "build", "Make a record file from what dump wrote, in any of its formats; lengths are computed anew");
    build.Option("TEXT", arguments->source.file, "What dump wrote; - for standard input").Required();
    build.Option("-o,--output", arguments->out, "The record file to write; - for standard output")
        .Names("OUT")
        .Required();
    build.Runs([&common, arguments] { Build(common, *arguments); });
}
} // namespace TOOL
