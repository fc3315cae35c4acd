#include "Records/Document.h"

#include "Failure.h"
#include "Location.h"
#include "Output.h"
#include "Records/PlugInClasses.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
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

/// How many class ids of known classes stand in the bytes, in that order.
std::size_t KnownIds(ByteView content, Order order)
{
    std::size_t count = 0;
    for (KnownClass const& known : KnownClasses())
    {
        auto const id = StoredId(known.id, order);
        for (auto at = content.begin();; ++at, ++count)
        {
            at = std::search(at, content.end(), id.begin(), id.end());
            if (at == content.end())
                break;
        }
    }
    return count;
}

Finding const* FirstDamage(std::vector<Finding> const& findings)
{
    for (Finding const& finding : findings)
        if (finding.severity == Severity::kError)
            return &finding;
    return nullptr;
}
} // namespace

void AddSource(CLI::App& command, Source& source)
{
    command.add_option("FILE", source.file, "The record file; - for standard input")->required();
    command.add_option("--endian", source.endian, "The byte order; found out when not given")
        ->type_name("big|little")
        ->check(CLI::IsMember({"big", "little"}));
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
    return ReadWhole(*stream, location);
}

Order OrderOf(ByteView content, std::string const& location)
{
    if (std::optional<Order> const order = FindOrder(content))
        return *order;
    std::size_t const little = KnownIds(content, IO::IDataProvider::kLittleEndian);
    std::size_t const big = KnownIds(content, IO::IDataProvider::kBigEndian);
    if (little == 0 && big == 0)
        throw Failure(Exit::kNotARecordFile,
                      Quoted(location) + " is not a record file" + (content.empty() ? ": it is empty" : ""));
    return big > little ? IO::IDataProvider::kBigEndian : IO::IDataProvider::kLittleEndian;
}

Document LoadDocument(Session const& session, Common const& common, Source const& source)
{
    Document document{source.file, ReadInput(session, common, source.file), {}};
    PlugInClasses const classes(session);
    DecodeOptions options;
    std::optional<Order> const order = OrderArgument(source.endian);
    options.order = order ? *order : OrderOf(document.content, source.file);
    options.limits = common.limits;
    options.classes = &classes;
    Progress progress("reading " + Quoted(source.file), static_cast<int64>(document.content.size()));
    options.progress = &progress;
    try
    {
        document.tree = Decode(document.content, options);
    }
    catch (Failure const& failure)
    {
        throw Failure(failure.Code(), Quoted(source.file) + ": " + failure.what());
    }
    return document;
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
