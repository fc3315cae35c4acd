#include "System/CopyData.h"

#include "System/Transfer.h"

#include <sys/sendfile.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace KORVA::SYSTEM
{
namespace
{
/// What a call of the kernel's copied, or `-errno`. Never interrupted.
template <class Call>
ssize_t Repeated(Call call)
{
    for (;;)
    {
        ssize_t const copied = call();
        if (copied >= 0)
            return copied;
        if (errno != EINTR)
            return -errno;
    }
}

/// Where the kernel copies nothing itself. Small pieces: such files are small.
ErrorNumber CopyThroughMemory(int from, int to, std::uint64_t& count)
{
    char piece[65536];
    std::size_t came = static_cast<std::size_t>(std::min<std::uint64_t>(count, sizeof piece));
    count = 0;
    if (ErrorNumber const error = ReadSome(from, piece, came))
        return error;
    if (ErrorNumber const error = WriteAll(to, piece, came))
        return error;
    count = came;
    return 0;
}
} // namespace

ErrorNumber CopySome(int from, int to, std::uint64_t& count)
{
    auto const wanted = static_cast<std::size_t>(count);
    ssize_t copied = Repeated([&] { return copy_file_range(from, nullptr, to, nullptr, wanted, 0); });
    bool const isRefused = copied == -EXDEV || copied == -EINVAL || copied == -ENOSYS ||
                           copied == -EOPNOTSUPP || copied == -EPERM || copied == -EBADF;
    // Files of the kernel's own (under /proc, say) claim the size 0 and copy nothing this way.
    if (isRefused || copied == 0)
        copied = Repeated([&] { return sendfile(to, from, nullptr, wanted); });
    if (copied == -EINVAL || copied == -ENOSYS)
        return CopyThroughMemory(from, to, count);
    count = copied < 0 ? 0 : static_cast<std::uint64_t>(copied);
    return copied < 0 ? static_cast<ErrorNumber>(-copied) : 0;
}
} // namespace KORVA::SYSTEM
