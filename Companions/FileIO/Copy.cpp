#include "Copy.h"

#include "AtomicFile.h"
#include "CoreRegistry/CoreRegistry.h"
#include "Descriptor.h"
#include "FileIO/ICopyProgress.h"
#include "FileStatus.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace KORVA::FILE_SYS
{
namespace
{
/// Small enough to hear of progress, large enough not to count.
constexpr std::size_t kPiece = std::size_t{8} << 20;

/// Where the kernel copies nothing itself. Small pieces: such files are small.
ssize_t CopyByHand(int from, int to)
{
    char piece[65536];
    ssize_t const count = read(from, piece, sizeof piece);
    for (ssize_t done = 0; done < count;)
    {
        ssize_t const written = write(to, piece + done, static_cast<std::size_t>(count - done));
        if (written < 0)
            return written;
        done += written;
    }
    return count;
}

/// Moves up to `count` bytes between the descriptors' positions, in the kernel where it can: sharing blocks,
/// or else through the page cache.
ssize_t CopyPiece(int from, int to, std::size_t count)
{
    ssize_t const copied = copy_file_range(from, nullptr, to, nullptr, count, 0);
    bool const unsupported = copied < 0 && (errno == EXDEV || errno == EINVAL || errno == ENOSYS ||
                                            errno == EOPNOTSUPP || errno == EPERM || errno == EBADF);
    // Files of the kernel's own (under /proc, say) claim the size 0 and copy nothing this way.
    if (!unsupported && copied != 0)
        return copied;
    ssize_t const sent = sendfile(to, from, nullptr, count);
    return sent < 0 && (errno == EINVAL || errno == ENOSYS) ? CopyByHand(from, to) : sent;
}
} // namespace

ErrCode CopyFile(std::string const& source, std::string const& target)
{
    Descriptor const from(open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    if (!from || fstat(from.Get(), &status) != 0)
        return StatusOfErrno();
    struct stat existing;
    bool const sameFile = stat(target.c_str(), &existing) == 0 && existing.st_dev == status.st_dev &&
                          existing.st_ino == status.st_ino;
    if (!S_ISREG(status.st_mode) || sameFile)
        return kFailed;

    AtomicFile copy(target, 0600);
    if (copy.Status() != kDone)
        return copy.Status();
    auto const total = static_cast<uint64>(status.st_size);
    auto const progress = COREREGISTRY::CreateObject<ICopyProgress>(IID_COPY_PROGRESS);
    uint64 done = 0;
    for (;;)
    {
        ssize_t const copied = CopyPiece(from.Get(), copy.Get(), kPiece);
        if (copied < 0 && errno == EINTR)
            continue;
        if (copied < 0)
            return StatusOfErrno();
        done += static_cast<uint64>(copied);
        if (progress && !progress->OnCopied(done, std::max(done, total)))
            return kCancelled;
        if (copied != 0)
            continue;
        // A source that was cut meanwhile must not replace a whole target. One that never had what it says,
        // as the kernel's own may, is copied as far as it goes.
        struct stat now;
        if (done < total && (fstat(from.Get(), &now) != 0 || now.st_size != status.st_size))
            return kFailed;
        break;
    }
    timespec const times[2] = {status.st_atim, status.st_mtim};
    // Set-user and set-group bits are not carried to a file that may have another owner.
    if (fchmod(copy.Get(), status.st_mode & 0777) != 0 || futimens(copy.Get(), times) != 0)
        return StatusOfErrno();
    return copy.Commit();
}
} // namespace KORVA::FILE_SYS
