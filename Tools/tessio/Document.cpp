#include "Document.h"

#include "Failure.h"
#include "Location.h"
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

} // namespace

void AddSource(Command const& command, Input& source)
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

OpenDocument::OpenDocument(Session const& session, Common const& common, Input const& source)
    : mFile(source.file), mContent(ReadInput(session, common, source.file)), mSource(mContent),
      mClasses(session), mProgress("reading " + Quoted(source.file), static_cast<int64>(mContent.size()))
{
    std::optional<Order> const order = OrderArgument(source.endian);
    mOptions.order = order ? *order : ValueOf(OrderOf(mContent), Quoted(mFile) + " ");
    mOptions.classes = &mClasses;
    mOptions.work = {common.limits, mProgress.Watcher()};
    Limits const none;
    if (common.limits.count != none.count || common.limits.depth != none.depth)
    {
        // Before anything is printed.
        Reader reader(mSource, mOptions);
        static_cast<void>(Value(Walk(reader, [](Node const&, std::string const&) { return true; })));
    }
    mOptions.work.limits = none;
    mReader.emplace(mSource, mOptions);
}

Node OpenDocument::Find(std::string const& path)
{
    return ValueOf(mReader->Find(PathArgument(path)), Quoted(mFile) + " ");
}

RecordTree OpenDocument::Tree() { return Value(ReadTree(mSource, mOptions)); }

void OpenDocument::FailWhenDamaged()
{
    std::string words;
    int64 const end = Value(Walk(*mReader, [&](Node const& node, std::string const& path) {
        if (std::string const problem = words.empty() ? Problem(node) : ""; !problem.empty())
            words = fmt::format("{} at offset {} is damaged: {}", path, node.offset, problem);
        return words.empty();
    }));
    if (auto const leftOver = LeftOver(end, mReader->Size()); words.empty() && leftOver)
        words = leftOver->words;
    if (!words.empty())
        throw Failure(Exit::kNotARecordFile, fmt::format("{}: {}", Quoted(mFile), words));
}

Document LoadDocument(Session const& session, Common const& common, Input const& source)
{
    OpenDocument document(session, common, source);
    return {document.File(), document.Content(), document.Tree()};
}

Path PathArgument(std::string const& text) { return ValueOf(ParsePath(text)); }

void WriteOutput(Session const& session, std::string const& location, Bytes const& content)
{
    if (location == "-")
        Print({reinterpret_cast<char const*>(content.data()), content.size()});
    else
        ReplaceContent(session, location, content);
}
} // namespace TOOL
