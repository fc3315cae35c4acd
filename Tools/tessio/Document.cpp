#include "Document.h"

#include "Failure.h"
#include "Location.h"
#include "Outcome.h"
#include "Output.h"
#include "PlugInClasses.h"
#include "Progress.h"
#include <tessio/Records/Tree/FileOrder.h>

#include <fmt/format.h>

#include <cstdio>

namespace TOOL
{
namespace
{
using namespace KORVA;

Bytes ReadStandardInput(int64 limit)
{
    Bytes content;
    unsigned char piece[65536];
    while (std::size_t const count = std::fread(piece, 1, sizeof piece, stdin))
    {
        content.insert(content.end(), piece, piece + count);
        if (static_cast<int64>(content.size()) > limit)
            throw Failure(Exit::kLimit, fmt::format("standard input is larger than {} bytes", limit));
    }
    if (std::ferror(stdin) != 0)
        throw Failure(Exit::kInputOutput, "cannot read standard input");
    return content;
}

DecodeOptions Options(Common const& common, Order order, ClassReader const& classes)
{
    DecodeOptions options;
    options.order = order;
    options.work.limits = common.limits;
    options.classes = &classes;
    return options;
}

Finding const* FirstDamage(std::vector<Finding> const& findings)
{
    for (Finding const& finding : findings)
        if (finding.severity == Severity::kError)
            return &finding;
    return nullptr;
}
} // namespace

void AddSource(Command const& command, Source& source)
{
    command.Option("FILE", source.file, "The record file; - for standard input").Required();
    command.Option("--endian", source.endian, "The byte order; found out when not given")
        .Names("big|little")
        .OneOf({"big", "little"});
}

std::optional<Order> OrderArgument(std::string const& endian)
{
    if (endian.empty())
        return std::nullopt;
    return endian == "big" ? IO::IDataProvider::kBigEndian : IO::IDataProvider::kLittleEndian;
}

Bytes ReadInput(Session const& session, Common const& common, std::string const& location)
{
    if (location == "-")
        return ReadStandardInput(common.limits.bytes);
    auto const stream = OpenToRead(session, location);
    int64 const size = stream->GetDataProvider()->Size();
    if (size > common.limits.bytes)
        throw Failure(Exit::kLimit, fmt::format("{} is {} bytes, more than {}", Quoted(location), size,
                                                common.limits.bytes));
    return ReadWhole(session, *stream, location);
}

Document LoadDocument(Session const& session, Common const& common, Source const& source)
{
    Document document{source.file, ReadInput(session, common, source.file), {}};
    PlugInClasses const classes(session);
    std::optional<Order> const order = OrderArgument(source.endian);
    DecodeOptions options = Options(
        common, order ? *order : ValueOf(OrderOf(document.content), Quoted(source.file) + " "), classes);
    Progress progress("reading " + Quoted(source.file), static_cast<int64>(document.content.size()));
    options.work.progress = progress.Watcher();
    document.tree = ValueOf(Decode(document.content, options), Quoted(source.file) + ": ");
    return document;
}

std::vector<LayoutRow> LayoutOf(Session const& session, Common const& common, Document const& document)
{
    PlugInClasses const classes(session);
    return ValueOf(LayoutOf(document.content, Options(common, document.tree.order, classes), &Painted));
}

Path PathArgument(std::string const& text) { return ValueOf(ParsePath(text)); }

Node const& NodeNamed(Document const& document, std::string const& path)
{
    return *ValueOf(NodeAt(document.tree, PathArgument(path)), Quoted(document.file) + " ");
}

void WriteOutput(Session const& session, std::string const& location, Bytes const& content)
{
    if (location == "-")
        Print({reinterpret_cast<char const*>(content.data()), content.size()});
    else
        ReplaceContent(session, location, content);
}

void FailWhenDamaged(Document const& document)
{
    std::string words;
    Walk(document.tree, [&](Node const& node, std::string const& path, int) {
        if (words.empty() && !Problem(node).empty())
            words = fmt::format("{} at offset {} is damaged: {}", path, node.offset, Problem(node));
    });
    if (Finding const* const damage = FirstDamage(document.tree.findings); words.empty() && damage)
        words = damage->words;
    if (!words.empty())
        throw Failure(Exit::kNotARecordFile, fmt::format("{}: {}", Quoted(document.file), words));
}
} // namespace TOOL
