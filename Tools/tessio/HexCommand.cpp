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
    Source source;
    std::string where;
    bool whole = false;
};

/// The bytes to show, and the one that was asked for, if it was one.
struct Extent
{
    int64 from = 0;
    int64 to = 0;
    int64 asked = -1;
};

Extent InnermostAround(std::vector<LayoutRow> const& rows, int64 offset)
{
    Extent extent{0, 0, offset};
    for (LayoutRow const& row : rows)
        if (row.isRecord && row.field.offset <= offset && offset < row.field.offset + row.field.length)
            extent = {row.field.offset, row.field.offset + row.field.length, offset};
    if (extent.to > 0)
        return extent;
    // Behind the last record.
    for (LayoutRow const& row : rows)
        if (row.isUnexplained && row.field.offset <= offset)
            extent = {row.field.offset, row.field.offset + row.field.length, offset};
    return extent;
}

Extent ExtentOf(Arguments const& arguments, Document const& document, std::vector<LayoutRow> const& rows)
{
    int64 const size = document.tree.size;
    if (arguments.where.empty())
        return {0, size, -1};
    if (!arguments.where.starts_with('@'))
    {
        Node const& node = NodeNamed(document, arguments.where);
        return {node.offset, node.End(), -1};
    }
    auto const number = NumberOf(std::string_view(arguments.where).substr(1));
    if (!number)
        throw Failure(Exit::kUsage, Quoted(arguments.where) + " is no offset: write @60 or @0x3C");
    if (*number >= static_cast<KORVA::uint64>(size))
        throw Failure(Exit::kNotFound, fmt::format("{} has {}, there is none at offset {}",
                                                   Quoted(arguments.source.file), ByteCount(size), *number));
    auto const offset = static_cast<int64>(*number);
    return InnermostAround(rows, offset);
}

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

void AppendField(std::string& text, LayoutRow const& row, ByteView content, Extent const& extent, bool whole)
{
    int64 const end = row.field.offset + row.field.length;
    int64 const lines = (row.field.length + kPerLine - 1) / kPerLine;
    int64 const shown = whole || lines <= kShownLines + 1 ? lines : kShownLines;
    for (int64 line = 0; line < shown; ++line)
    {
        int64 const from = row.field.offset + line * kPerLine;
        text += Line(content, from, std::min(end, from + kPerLine), StyleOf(row));
        if (line == 0)
            text += fmt::format("  {:{}}{}", "", Indent(row.depth), Meaning(row, extent.asked));
        text += '\n';
    }
    if (shown < lines)
        text += Styled(Style::kDim, fmt::format("          {} more; --whole shows them",
                                                ByteCount(row.field.length - shown * kPerLine))) +
                "\n";
}

void PrintText(std::vector<LayoutRow> const& rows, ByteView content, Extent const& extent, bool whole)
{
    for (LayoutRow const& row : rows)
    {
        if (row.field.offset < extent.from || row.field.offset + row.field.length > extent.to)
            continue;
        std::string text;
        if (!row.isRecord)
            AppendField(text, row, content, extent, whole);
        else
        {
            text = fmt::format("{}  {}\n", Styled(Style::kKey, row.place.Text()), row.field.value);
            for (Finding const& finding : row.findings)
                if (finding.severity == Severity::kError)
                    text += "  " + Styled(Style::kDamage, "! " + finding.words) + "\n";
        }
        Print(text);
    }
}

void PrintFields(JsonPrinter& json, std::vector<LayoutRow> const& rows, ByteView content,
                 Extent const& extent)
{
    for (LayoutRow const& row : rows)
        if (!row.isRecord && row.field.offset >= extent.from &&
            row.field.offset + row.field.length <= extent.to)
            json.Value(
                {{"offset", row.field.offset},
                 {"length", row.field.length},
                 {"path", row.place.Text()},
                 {"role", RoleName(row)},
                 {"name", row.field.name},
                 {"value", row.field.value},
                 {"bytes",
                  fmt::format("{:02x}", fmt::join(content.subspan(static_cast<std::size_t>(row.field.offset),
                                                                  static_cast<std::size_t>(row.field.length)),
                                                  ""))}});
}

void Run(Common const& common, Arguments const& arguments)
{
    if (!arguments.where.empty() && !arguments.where.starts_with('@'))
        static_cast<void>(PathArgument(arguments.where));
    Session const session(common);
    Document const document = LoadDocument(session, common, arguments.source);
    std::vector<LayoutRow> const rows = LayoutOf(session, common, document);
    Extent const extent = ExtentOf(arguments, document, rows);
    if (common.json)
        PrintJson([&](JsonPrinter& json) {
            json.Member("order", OrderName(document.tree.order));
            json.Key("fields");
            json.BeginList();
            PrintFields(json, rows, document.content, extent);
            json.End();
        });
    else
        PrintText(rows, document.content, extent, arguments.whole);
    FailWhenDamaged(document);
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
