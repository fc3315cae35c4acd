#include "System/Transfer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace KORVA::SYSTEM
{
namespace
{
/// No more is asked for at once: some systems refuse larger counts.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
} // namespace

ErrorNumber WriteAll(int descriptor, void const* data, std::size_t count)
{
    auto const* from = static_cast<char const*>(data);
    while (count > 0)
    {
        ssize_t const written = write(descriptor, from, std::min(count, kMostAtOnce));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return errno;
        // Nothing taken and nothing said: asking again could go on for ever.
        if (written == 0)
            return ENOSPC;
        from += written;
        count -= static_cast<std::size_t>(written);
    }
    return 0;
}

ErrorNumber ReadSome(int descriptor, void* data, std::size_t& count)
{
    std::size_t const wanted = std::min(count, kMostAtOnce);
    count = 0;
    for (;;)
    {
        ssize_t const came = read(descriptor, data, wanted);
        if (came < 0 && errno == EINTR)
            continue;
        if (came < 0)
            return errno;
        count = static_cast<std::size_t>(came);
        return 0;
    }
}

ErrorNumber ReadAll(int descriptor, void* data, std::size_t& count)
{
    std::size_t const wanted = count;
    count = 0;
    while (count < wanted)
    {
        std::size_t came = wanted - count;
        if (ErrorNumber const error = ReadSome(descriptor, static_cast<char*>(data) + count, came))
            return error;
        if (came == 0)
            break;
        count += came;
    }
    return 0;
}

ErrorNumber FlushToDevice(int descriptor)
{
    while (fsync(descriptor) != 0)
        if (errno != EINTR)
            return errno;
    return 0;
}
} // namespace KORVA::SYSTEM
