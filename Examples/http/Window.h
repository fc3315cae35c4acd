// The piece of a file that is in memory.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace HTTP
{
/// Consecutive bytes of a file, never more than fit. Bytes come in at the end and may be read again and
/// again, until they have to make room.
class Window
{
public:
    static constexpr std::size_t kSize = std::size_t{256} << 10;
    /// What is kept behind a reader: records are peeked at and read again.
    static constexpr std::size_t kHistory = std::size_t{4} << 10;

    Window() : mBytes(kSize) {}

    /// Forgets everything; what comes next stands at `start` in the file.
    void Restart(KORVA::int64 start)
    {
        mStart = start;
        mLength = 0;
    }

    KORVA::int64 Start() const { return mStart; }
    KORVA::int64 End() const { return mStart + static_cast<KORVA::int64>(mLength); }
    bool Has(KORVA::int64 position) const { return position >= mStart && position < End(); }

    /// Copies what there is from `position` on, at most `count` bytes; how many it was.
    std::size_t Copy(KORVA::int64 position, char* to, std::size_t count) const
    {
        if (!Has(position))
            return 0;
        std::size_t const from = static_cast<std::size_t>(position - mStart);
        count = std::min(count, mLength - from);
        std::memcpy(to, mBytes.data() + from, count);
        return count;
    }

    /// Makes room by forgetting everything but the last bytes.
    void Forget()
    {
        std::size_t const kept = std::min(mLength, kHistory);
        std::memmove(mBytes.data(), mBytes.data() + mLength - kept, kept);
        mStart += static_cast<KORVA::int64>(mLength - kept);
        mLength = kept;
    }

    /// False, and nothing taken, where they don't fit.
    bool Append(char const* bytes, std::size_t count)
    {
        if (count > kSize - mLength)
            return false;
        std::memcpy(mBytes.data() + mLength, bytes, count);
        mLength += count;
        return true;
    }

private:
    std::vector<char> mBytes;
    std::size_t mLength = 0;
    KORVA::int64 mStart = 0;
};
} // namespace HTTP
