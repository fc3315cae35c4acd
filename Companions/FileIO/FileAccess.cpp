#include "FileAccess.h"

#include "FileStatus.h"
#include "System/Files.h"
#include "System/Locks.h"
#include "System/Paths.h"
#include "System/Status.h"
#include "SystemPath.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

namespace KORVA::FILE_SYS
{
namespace
{
using Clock = std::chrono::steady_clock;
using SYSTEM::ErrorNumber;

/// Short against the time that a save takes: who lets go and comes back at once must not always be first.
constexpr std::chrono::microseconds kPause{250};
/// Whoever saves waits for the disk, which may take long, and then lets go; a writer may stay for hours.
constexpr int kMostWaits = 30;

/// What is locked for a name: its file, or the directory where there is no file yet.
class Lockable
{
public:
    explicit Lockable(std::string const& name)
        : mDescriptor(SYSTEM::OpenFile(name, SYSTEM::Access::kReadWrite, mError)), mPlace(name)
    {
        // A program that runs can be replaced, not written.
        if (mError == ETXTBSY)
            mDescriptor = SYSTEM::OpenFile(name, SYSTEM::Access::kRead, mError);
        if (mError == ENOENT)
        {
            mIsDirectory = true;
            mPlace = SYSTEM::DirectoryOf(SYSTEM::FollowLinks(name));
            mDescriptor = SYSTEM::OpenDirectory(mPlace, mError);
        }
        if (mError == 0)
            mError = SYSTEM::ReadStatus(mDescriptor.Get(), mStatus);
    }

    /// Why there is nothing to lock, or 0.
    ErrorNumber Error() const { return mError; }
    bool IsDirectory() const { return mIsDirectory; }

    /// Whether the name still leads here.
    bool IsCurrent(std::string const& name) const
    {
        SYSTEM::Status status;
        if (mIsDirectory && SYSTEM::ReadStatus(name, status) != ENOENT)
            return false;
        return SYSTEM::ReadStatus(mPlace, status) == 0 && status.identity == mStatus.identity;
    }

    ErrorNumber TryLock() { return SYSTEM::TryLock(mDescriptor.Get(), SYSTEM::LockKind::kExclusive); }

    /// Whether it is somebody with a lock to share who keeps us away: one that has opened the file to write.
    bool IsShared()
    {
        bool const isShared = SYSTEM::TryLock(mDescriptor.Get(), SYSTEM::LockKind::kShared) == 0;
        if (isShared)
            SYSTEM::Unlock(mDescriptor.Get());
        return isShared;
    }

    SYSTEM::Descriptor Take() { return std::move(mDescriptor); }

private:
    ErrorNumber mError = 0;
    SYSTEM::Descriptor mDescriptor;
    std::string mPlace;
    SYSTEM::Status mStatus;
    bool mIsDirectory = false;
};
} // namespace

ErrCode FileAccess::Failed(ErrorNumber systemError)
{
    mSystemError = systemError;
    return StatusOf(systemError);
}

ErrCode FileAccess::Lock(STRING::CoreString const& path, uint32 waitMilliseconds)
{
    Unlock();
    std::string const name = SystemPath(path);
    if (name.empty())
        return Failed(ENOENT);
    mSystemError = 0;
    std::chrono::milliseconds const wait(waitMilliseconds);
    Clock::time_point const end = Clock::now() + kMostWaits * wait;
    Clock::time_point writerEnd = Clock::now() + wait;
    for (Lockable target(name);;)
    {
        if (target.Error() != 0)
        {
            ErrCode const status = Failed(target.Error());
            return target.IsDirectory() && status == kNotPermitted ? kNoLocks : status;
        }
        ErrorNumber const error = target.TryLock();
        if (error != 0 && error != EWOULDBLOCK)
        {
            mSystemError = error;
            return kNoLocks;
        }
        bool const isCurrent = target.IsCurrent(name);
        if (error == 0 && isCurrent)
        {
            mLocked = target.Take();
            return kDone;
        }
        if (!isCurrent || !target.IsShared())
            writerEnd = Clock::now() + wait;
        if (Clock::now() >= std::min(end, writerEnd))
            return kLockedByOthers;
        if (isCurrent)
            std::this_thread::sleep_for(kPause);
        else
            target = Lockable(name);
    }
}

void FileAccess::Unlock()
{
    // A forked process shares the descriptor, and with it the lock.
    if (mLocked)
        SYSTEM::Unlock(mLocked.Get());
    mLocked = SYSTEM::Descriptor();
}

ErrCode FileAccess::TryOpen(STRING::CoreString const& path, bool8 forWriting)
{
    std::string const name = SystemPath(path);
    if (name.empty())
        return Failed(ENOENT);
    mSystemError = 0;
    SYSTEM::Access const access = forWriting ? SYSTEM::Access::kReadWrite : SYSTEM::Access::kRead;
    ErrorNumber error = 0;
    SYSTEM::Descriptor const opened = SYSTEM::OpenFile(name, access, error);
    return opened ? kDone : Failed(error);
}
} // namespace KORVA::FILE_SYS
