#include "System/CopyData.h"

#include "../Posix/Retry.h"
#include "System/Transfer.h"

#include <sys/sendfile.h>
#include <unistd.h>

#include <algorithm>

namespace KORVA::SYSTEM
{
namespace
{
/// What a call of the kernel's copied, or `-errno`.
template <class Call>
ssize_t Copied(Call call)
{
    ssize_t const copied = Uninterrupted(call);
    return copied >= 0 ? copied : -errno;
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
    ssize_t copied = Copied([&] { return copy_file_range(from, nullptr, to, nullptr, wanted, 0); });
    bool const isRefused = copied == -EXDEV || copied == -EINVAL || copied == -ENOSYS ||
                           copied == -EOPNOTSUPP || copied == -EPERM || copied == -EBADF;
    // Files of the kernel's own (under /proc, say) claim the size 0 and copy nothing this way.
    if (isRefused || copied == 0)
        copied = Copied([&] { return sendfile(to, from, nullptr, wanted); });
    if (copied == -EINVAL || copied == -ENOSYS)
        return CopyThroughMemory(from, to, count);
    count = copied < 0 ? 0 : static_cast<std::uint64_t>(copied);
    return copied < 0 ? static_cast<ErrorNumber>(-copied) : 0;
}
} // namespace KORVA::SYSTEM
