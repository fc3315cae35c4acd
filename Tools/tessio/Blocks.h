// Pieces of a file on their way.
#pragma once

#include "Names.h"
#include <tessio/TessIO/IAsyncReader.h>
#include <tessio/TessIO/IAsyncWriter.h>
#include <tessio/TessIO/IDataProvider.h>

#include <cstddef>
#include <vector>

namespace TOOL
{
/// The asynchronous reader of a provider, borrowed; null when it has none.
KORVA::IO::IAsyncReader* ReaderOf(KORVA::IO::IDataProvider const& provider);
KORVA::IO::IAsyncWriter* WriterOf(KORVA::IO::IDataProvider const& provider);

/// A buffer with at most one operation under way. Stays until that has ended.
class Block
{
public:
    static constexpr std::size_t kSize = std::size_t{256} << 10;

    Block() : mBytes(kSize) {}
    Block(Block const&) = delete;
    Block& operator=(Block const&) = delete;
    ~Block() { static_cast<void>(Wait()); }

    /// At most `kSize` bytes. False when it can't even begin.
    bool BeginRead(KORVA::IO::IAsyncReader& reader, KORVA::int64 offset, std::size_t length);
    /// Writes what was read, to the same place of another file.
    bool BeginWrite(KORVA::IO::IAsyncWriter& writer);

    /// Waits for what is under way. False when it failed.
    bool Wait();

    char const* Data() const { return mBytes.data(); }
    std::size_t Length() const { return mLength; }

private:
    std::vector<char> mBytes;
    KORVA::int64 mOffset = 0;
    std::size_t mLength = 0;
    KORVA::IO::IAsyncTaskPtr mTask;
};

/// How many are under way at once.
inline constexpr std::size_t kBlocks = 32;
} // namespace TOOL
