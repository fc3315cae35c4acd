// tessio cat: prints files.
#include "Blocks.h"
#include "Commands.h"
#include "CountingProvider.h"
#include "Failure.h"
#include "Location.h"
#include "Output.h"
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IBufferedDataProvider.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

namespace TOOL
{
namespace
{
using namespace KORVA;
using IO::IDataProvider;

constexpr int64 kLargestBuffered = std::numeric_limits<int32>::max();

struct Arguments
{
    std::vector<std::string> locations;
    std::string user;
    bool async = false;
    uint64 buffer = 0;
};

/// From `done`, where the provider stands, to its end, in pieces.
void PrintFrom(Session const& session, IDataProvider& provider, int64 done, std::size_t pieceSize,
               std::string const& location)
{
    std::vector<char> piece(pieceSize);
    int64 const size = provider.Size();
    for (;;)
    {
        auto count = static_cast<int32>(pieceSize);
        static_cast<void>(provider.Read(piece.data(), count));
        if (count <= 0)
            break;
        Print({piece.data(), static_cast<std::size_t>(count)});
        done += count;
    }
    // Not every file tells its size beforehand.
    std::string reason = session.Failures().Take();
    if (reason.empty())
        reason = ReadFailureOf(provider);
    if (!reason.empty() || done < size)
        CutShort(location, reason, done, std::max(size, provider.Size()));
}

/// Many reads under way, printed in their order: what is slow to come is asked for early.
void PrintAhead(Session const& session, IDataProvider& provider, IO::IAsyncReader& reader,
                std::string const& location)
{
    int64 const size = provider.Size();
    constexpr auto kPiece = static_cast<int64>(Block::kSize);
    int64 const pieces = (size + kPiece - 1) / kPiece;
    std::array<Block, kBlocks> blocks;
    constexpr auto kAhead = static_cast<int64>(kBlocks);
    for (int64 i = 0; i < pieces + kAhead; ++i)
    {
        Block& block = blocks[static_cast<std::size_t>(i % kAhead)];
        if (i >= kAhead && i - kAhead < pieces)
        {
            if (!block.Wait())
            {
                // What became shorter, or never was as long as it said, is read as far as it goes.
                int64 const done = (i - kAhead) * kPiece;
                static_cast<void>(provider.SetPosition(done, IDataProvider::kFromStart));
                return PrintFrom(session, provider, done, Block::kSize, location);
            }
            Print({block.Data(), block.Length()});
        }
        if (i < pieces && !block.BeginRead(reader, i * kPiece,
                                           static_cast<std::size_t>(std::min(kPiece, size - i * kPiece))))
            CutShort(location, {}, 0, size);
    }
}

/// Small pieces through a buffer of the size asked for, in front of the file.
void PrintBuffered(Session const& session, TInterfacePtr<IDataProvider> const& provider,
                   std::string const& location, Arguments const& arguments, Common const& common)
{
    constexpr std::size_t kPiece = 512;
    if (provider->Size() > kLargestBuffered)
        throw Failure(Exit::kUsage,
                      "cannot read " + Quoted(location) + " through a buffer: it has 2 GiB or more");
    TInterfacePtr<CountingProvider> counting;
    counting.Adopt(new CountingProvider(provider));
    auto const buffered = session.Create<IO::IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
    static_cast<void>(buffered->Init(*counting.Get(), static_cast<int>(arguments.buffer), IO::kBufferReads));
    PrintFrom(session, *buffered, 0, kPiece, location);
    if (common.verbose)
        std::fprintf(stderr, "tessio: %s: %llu %s of the file for %llu bytes\n", Quoted(location).c_str(),
                     counting->Reads(), counting->Reads() == 1 ? "read" : "reads", counting->BytesRead());
}

void Run(Common const& common, Arguments const& arguments)
{
    constexpr std::size_t kPiece = std::size_t{256} << 10;
    Session const session(common, arguments.user);
    for (std::string const& location : arguments.locations)
    {
        // The system's own files tell no size, nor do some servers; these are read to their end.
        uint64 size = 0;
        bool const isBuffered =
            arguments.buffer > 0 && FileOf(session, location)->GetSize(size) == kNoError && size > 0;
        auto const stream = OpenToRead(session, location);
        TInterfacePtr<IDataProvider> const provider = stream->GetDataProvider();
        IO::IAsyncReader* const reader = arguments.async ? ReaderOf(*provider) : nullptr;
        if (isBuffered)
            PrintBuffered(session, provider, location, arguments, common);
        else if (reader && provider->Size() > 0)
            PrintAhead(session, *provider, *reader, location);
        else
            PrintFrom(session, *provider, 0, kPiece, location);
    }
}
} // namespace

void AddCatCommand(Command const& app, Common const& common)
{
    Command const command = app.Add("cat", "Print files");
    auto const arguments = std::make_shared<Arguments>();
    command.Option("LOCATION", arguments->locations, "Paths or URLs of files").Required();
    CommandOption const async = command.Flag("--async", arguments->async,
                                             "Read ahead, many pieces at once: for slow disks and networks");
    command
        .Size("--buffer", arguments->buffer, static_cast<uint64>(kLargestBuffered),
              "Read 512 bytes at a time through a buffer of this size (64K, 1M, ...); with --verbose, "
              "tell how often the file was read")
        .Excludes(async);
    AddUserOption(command, arguments->user);
    command.Runs([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
