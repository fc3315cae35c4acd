// tessio hex: every byte of a record file beside what it is.
#include "Commands.h"
#include "Document.h"
#include "Failure.h"
#include "Output.h"
#include "Values.h"
#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Tree/Layout.h>
#include <tessio/Records/Tree/Path.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace TOOL
{
namespace
{
using KORVA::int64;

constexpr int64 kPerLine = 16;
/// Of a long field only so many lines are shown, unless all are asked for.
constexpr int64 kShownLines = 4;

struct Arguments
{
    Input source;
    std::string where;
    bool whole = false;
};

Style StyleOf(LayoutRow const& row)
{
    if (row.isUnexplained)
        return Style::kDamage;
    switch (row.field.role)
    {
    case Role::kClass:
        return Style::kName;
    case Role::kLength:
    case Role::kCount:
        return Style::kNumber;
    case Role::kKey:
        return Style::kKey;
    case Role::kTag:
        return Style::kWarning;
    case Role::kValue:
        return Style::kText;
    case Role::kOpaque:
        break;
    }
    return Style::kPlain;
}

std::string Line(ByteView content, int64 from, int64 to, Style style)
{
    std::string hex;
    std::string text;
    for (int64 i = 0; i < kPerLine; ++i)
    {
        if (i == kPerLine / 2)
            hex += ' ';
        if (from + i >= to)
        {
            hex += "   ";
            text += ' ';
            continue;
        }
        unsigned char const byte = content[static_cast<std::size_t>(from + i)];
        hex += fmt::format("{:02x} ", byte);
        text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
    }
    return fmt::format("{}  {} {}", Styled(Style::kDim, fmt::format("{:08x}", from)), Styled(style, hex),
                       Styled(style, text));
}

/// What stands at the right of the field's first line.
std::string Meaning(LayoutRow const& row, int64 asked)
{
    Field const& field = row.field;
    std::string text = row.isUnexplained ? "? unexplained" : field.name;
    if (!field.value.empty())
        text += " " + field.value;
    if (field.length > kPerLine && field.value != ByteCount(field.length))
        text += fmt::format(" ({} bytes)", field.length);
    if (asked >= field.offset && asked < field.offset + field.length)
        text += " <- here";
    return Styled(row.isUnexplained ? Style::kDamage : Style::kPlain, text);
}

class Printer
{
public:
    Printer(ByteView content, int64 asked, bool whole) : mContent(content), mAsked(asked), mWhole(whole) {}

    void Text(LayoutRow const& row) const
    {
        std::string text;
        if (row.record)
            AppendRecord(text, row);
        else
            AppendField(text, row);
        Print(text);
    }

    void Member(JsonPrinter& json, LayoutRow const& row) const
    {
        if (row.record)
            return;
        ByteView const bytes = mContent.subspan(static_cast<std::size_t>(row.field.offset),
                                                static_cast<std::size_t>(row.field.length));
        json.Value({{"offset", row.field.offset},
                    {"length", row.field.length},
                    {"path", row.place.Text()},
                    {"role", RoleName(row)},
                    {"name", row.field.name},
                    {"value", row.field.value},
                    {"bytes", fmt::format("{:02x}", fmt::join(bytes, ""))}});
    }

private:
    static void AppendRecord(std::string& text, LayoutRow const& row)
    {
        text = fmt::format("{}  {}\n", Styled(Style::kKey, row.place.Text()), Summary(*row.record, &Painted));
        for (Finding const& finding : row.record->findings)
            if (finding.severity == Severity::kError)
                text += "  " + Styled(Style::kDamage, "! " + finding.words) + "\n";
    }

    void AppendField(std::string& text, LayoutRow const& row) const
    {
        int64 const end = row.field.offset + row.field.length;
        int64 const lines = (row.field.length + kPerLine - 1) / kPerLine;
        int64 const shown = mWhole || lines <= kShownLines + 1 ? lines : kShownLines;
        for (int64 line = 0; line < shown; ++line)
        {
            int64 const from = row.field.offset + line * kPerLine;
            text += Line(mContent, from, std::min(end, from + kPerLine), StyleOf(row));
            if (line == 0)
                text += fmt::format("  {:{}}{}", "", Indent(row.depth), Meaning(row, mAsked));
            text += '\n';
        }
        if (shown < lines)
            text += Styled(Style::kDim, fmt::format("          {} more; --whole shows them",
                                                    ByteCount(row.field.length - shown * kPerLine))) +
                    "\n";
    }

    ByteView mContent;
    int64 mAsked;
    bool mWhole;
};

/// The offset that was asked for; -1 for a path or nothing.
int64 OffsetAsked(Arguments const& arguments, int64 size)
{
    if (!arguments.where.starts_with('@'))
        return -1;
    auto const number = NumberOf(std::string_view(arguments.where).substr(1));
    if (!number)
        throw Failure(Exit::kUsage, Quoted(arguments.where) + " is no offset: write @60 or @0x3C");
    if (*number >= static_cast<KORVA::uint64>(size))
        throw Failure(Exit::kNotFound, fmt::format("{} has {}, there is none at offset {}",
                                                   Quoted(arguments.source.file), ByteCount(size), *number));
    return static_cast<int64>(*number);
}

/// Hands on the rows of what was asked for.
void LayOut(OpenDocument& document, Arguments const& arguments, int64 asked, RowSink const& sink)
{
    Reader& records = document.Records();
    if (arguments.where.empty())
        return static_cast<void>(document.Value(Layout(records, sink)));
    Path const path = asked < 0 ? PathArgument(arguments.where) : document.Value(PathAt(records, asked));
    if (!path.empty())
        return static_cast<void>(ValueOf(LayoutOf(records, path, sink), Quoted(document.File()) + " "));
    // Behind the last record.
    static_cast<void>(document.Value(Layout(records, [&](LayoutRow const& row) {
        if (row.isUnexplained && row.place.IsFile())
            sink(row);
    })));
}

void Run(Common const& common, Arguments const& arguments)
{
    bool const isPath = !arguments.where.empty() && !arguments.where.starts_with('@');
    if (isPath)
        static_cast<void>(PathArgument(arguments.where));
    Session const session(common);
    OpenDocument document(session, common, arguments.source);
    int64 const asked = OffsetAsked(arguments, document.Records().Size());
    // Before anything is printed.
    if (isPath)
        static_cast<void>(document.Find(arguments.where));
    Printer const printer(document.Content(), asked, arguments.whole);
    if (common.json)
        PrintJson([&](JsonPrinter& json) {
            json.Member("order", OrderName(document.GetOrder()));
            json.Key("fields");
            json.BeginList();
            LayOut(document, arguments, asked, [&](LayoutRow const& row) { printer.Member(json, row); });
            json.End();
        });
    else
        LayOut(document, arguments, asked, [&](LayoutRow const& row) { printer.Text(row); });
    document.FailWhenDamaged();
}
} // namespace

void AddHexCommand(Command const& app, Common const& common)
{
    Command const command = app.Add("hex", "Show every byte of a record file and what it is");
    auto const arguments = std::make_shared<Arguments>();
    AddSource(command, arguments->source);
    command.Option("WHERE", arguments->where,
                   "A path (/0/dict[42]), or @ and an offset: the record around it");
    command.Flag("--whole", arguments->whole, "Show long values to their end");
    command.Runs([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
