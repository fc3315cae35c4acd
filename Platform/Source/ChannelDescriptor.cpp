#include "ChannelDescriptor.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>

namespace KORVA::PLATFORM
{
namespace
{
/// What one call of the system moves at most.
constexpr std::size_t kLargestTransfer = 0x7FFFF000;
constexpr std::size_t kPieceOfUnknown = 1 << 20;

/// Keeps a write beyond the size limit from ending the process: the error tells.
class NoSizeLimitSignal
{
public:
    NoSizeLimitSignal()
    {
        sigemptyset(&mLimit);
        sigaddset(&mLimit, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &mLimit, &mBefore);
    }
    NoSizeLimitSignal(NoSizeLimitSignal const&) = delete;
    NoSizeLimitSignal& operator=(NoSizeLimitSignal const&) = delete;
    ~NoSizeLimitSignal() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }

    /// Takes back the signal that the last write has raised.
    void Discard() const
    {
        if (sigismember(&mBefore, SIGXFSZ) == 1)
            return;
        timespec const now{};
        sigtimedwait(&mLimit, nullptr, &now);
    }

private:
    sigset_t mLimit;
    sigset_t mBefore;
};

/// Repeats `transfer(position, moved, left)`, a call as of pread, until all is moved or it moves nothing.
template <class Transfer>
ChannelDescriptor::Outcome Repeat(std::int64_t offset, std::size_t length, Transfer transfer)
{
    if (offset < 0)
        return {0, EINVAL};
    std::size_t moved = 0;
    while (moved < length)
    {
        std::size_t const left = std::min(length - moved, kLargestTransfer);
        ssize_t const count = transfer(static_cast<off_t>(offset) + static_cast<off_t>(moved), moved, left);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {moved, errno};
        if (count == 0)
            break;
        moved += static_cast<std::size_t>(count);
    }
    return {moved, 0};
}
} // namespace

Ref<ChannelDescriptor> ChannelDescriptor::Duplicate(int descriptor)
{
    int const own = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (own < 0)
        return errno == EBADF ? Ref<ChannelDescriptor>(new ChannelDescriptor(-1, EBADF))
                              : Ref<ChannelDescriptor>();
    struct stat status;
    // Asked for the error alone: a file without positions can't be read and written at positions.
    int error = lseek(own, 0, SEEK_CUR) < 0 ? errno : 0;
    if (fstat(own, &status) == 0 && S_ISDIR(status.st_mode))
        error = EISDIR;
    return Ref<ChannelDescriptor>(new ChannelDescriptor(own, error));
}

ChannelDescriptor::ChannelDescriptor(int descriptor, int error) : mDescriptor(descriptor), mError(error) {}

ChannelDescriptor::~ChannelDescriptor()
{
    if (mDescriptor >= 0)
        close(mDescriptor);
}

ChannelDescriptor::Outcome ChannelDescriptor::Read(std::int64_t offset, std::size_t length,
                                                   std::byte* destination) const
{
    return Repeat(offset, length, [&](off_t position, std::size_t moved, std::size_t left) {
        return pread(mDescriptor, destination + moved, left, position);
    });
}

ChannelDescriptor::Outcome ChannelDescriptor::Write(std::int64_t offset, std::byte const* source,
                                                    std::size_t length) const
{
    NoSizeLimitSignal const noSignal;
    Outcome outcome = Repeat(offset, length, [&](off_t position, std::size_t moved, std::size_t left) {
        return pwrite(mDescriptor, source + moved, left, position);
    });
    if (outcome.error == EFBIG)
        noSignal.Discard();
    if (outcome.error == 0 && outcome.moved < length)
        outcome.error = EIO;
    return outcome;
}

void ChannelDescriptor::BeginWrite() { ++mWrites; }

void ChannelDescriptor::EndWrite()
{
    if (--mWrites == 0 && mUnlocksAfterWrites)
        Unlock();
}

void ChannelDescriptor::UnlockAfterWrites()
{
    mUnlocksAfterWrites = true;
    if (mWrites == 0)
        Unlock();
}

/// Duplicates share one lock, and giving it up through one of them gives it up for all.
void ChannelDescriptor::Unlock()
{
    if (mDescriptor >= 0)
        flock(mDescriptor, LOCK_UN);
}

std::size_t ChannelDescriptor::Expected(std::int64_t offset, std::size_t length) const
{
    struct stat status;
    if (offset < 0 || fstat(mDescriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return std::min(length, kPieceOfUnknown);
    return std::min(length, static_cast<std::size_t>(std::max<off_t>(status.st_size - offset, 0)));
}
} // namespace KORVA::PLATFORM
