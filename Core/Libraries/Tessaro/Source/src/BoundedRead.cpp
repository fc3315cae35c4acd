#include "BoundedRead.h"

#include "ReadingEffort.h"

#include <algorithm>

namespace KORVA::IO
{
namespace
{
constexpr int32 kStep = 1024 * 1024;

/// One read at `done`; what a provider claims to have delivered beyond the request does not count.
int32 ReadAt(IDataProvider& provider, GrowingBuffer& buffer, int32 done, int32 count)
{
    unsigned char* const address =
        buffer.Grow(static_cast<std::size_t>(done) + static_cast<std::size_t>(count));
    int32 delivered = count;
    static_cast<void>(provider.Read(address + done, delivered));
    delivered = std::clamp(delivered, 0, count);
    ReadingEffort::CountBytes(provider, delivered);
    return delivered;
}
} // namespace

int32 ReadBounded(IDataProvider& provider, int32 length, GrowingBuffer& buffer)
{
    ReadingEffort::ExpectBytes(provider, length);
    if (length <= kStep || provider.Size() - provider.GetPosition() >= length)
        return ReadAt(provider, buffer, 0, length);
    int32 done = 0;
    while (done < length)
    {
        int32 const step = std::min(kStep, length - done);
        int32 const delivered = ReadAt(provider, buffer, done, step);
        done += delivered;
        if (delivered < step)
            break;
    }
    return done;
}
} // namespace KORVA::IO
