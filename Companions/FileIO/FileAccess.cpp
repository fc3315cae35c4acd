#include "FileAccess.h"

#include "FileStatus.h"
#include "SystemPath.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace KORVA::FILE_SYS
{
namespace
{
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Short against the time that a save takes: who lets go and comes back at once must not always be first.
constexpr std::chrono::microseconds kPause{250};
/// Whoever saves waits for the disk, which may take long, and then lets go; a writer may stay for hours.
constexpr int kMostWaits = 30;
constexpr int kMostLinks = 40;
constexpr int kAnyOpening = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// The directory in which a file made under that name would be. Links that lead to nothing are followed.
fs::path DirectoryOf(fs::path path)
{
    std::error_code error;
    for (int links = 0; links < kMostLinks; ++links)
    {
        fs::path const target = fs::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / target;
    }
    fs::path const directory = path.parent_path();
    return directory.empty() ? fs::path(".") : directory;
}

bool IsSameFile(struct stat const& a, struct stat const& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// What is locked for a name: its file, or the directory where there is no file yet.
class Lockable
{
public:
    explicit Lockable(std::string const& name)
        : mDescriptor(open(name.c_str(), O_RDWR | kAnyOpening)), mPlace(name)
    {
        // A program that runs can be replaced, not written.
        if (!mDescriptor && errno == ETXTBSY)
            mDescriptor = Descriptor(open(name.c_str(), O_RDONLY | kAnyOpening));
        if (!mDescriptor && errno == ENOENT)
        {
            mIsDirectory = true;
            mPlace = DirectoryOf(name);
            mDescriptor = Descriptor(open(mPlace.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        }
        mError = mDescriptor && fstat(mDescriptor.Get(), &mStatus) == 0 ? 0 : errno;
    }

    /// The system's number of why there is nothing to lock, or 0.
    int Error() const { return mError; }
    bool IsDirectory() const { return mIsDirectory; }

    /// Whether the name still leads here.
    bool IsCurrent(std::string const& name) const
    {
        struct stat status;
        if (mIsDirectory && (stat(name.c_str(), &status) == 0 || errno != ENOENT))
            return false;
        return stat(mPlace.c_str(), &status) == 0 && IsSameFile(status, mStatus);
    }

    /// 0, or the system's number.
    int TryLock() { return flock(mDescriptor.Get(), LOCK_EX | LOCK_NB) == 0 ? 0 : errno; }

    /// Whether it is somebody with a lock to share who keeps us away: one that has opened the file to write.
    bool IsShared()
    {
        bool const isShared = flock(mDescriptor.Get(), LOCK_SH | LOCK_NB) == 0;
        if (isShared)
            flock(mDescriptor.Get(), LOCK_UN);
        return isShared;
    }

    Descriptor Take() { return std::move(mDescriptor); }

private:
    Descriptor mDescriptor;
    fs::path mPlace;
    struct stat mStatus = {};
    int mError = 0;
    bool mIsDirectory = false;
};
} // namespace

ErrCode FileAccess::Failed(int systemError)
{
    mSystemError = errno = systemError;
    return StatusOfErrno();
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
        int const error = target.TryLock();
        if (error != 0 && error != EWOULDBLOCK && error != EINTR)
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
        flock(mLocked.Get(), LOCK_UN);
    mLocked = Descriptor(-1);
}

ErrCode FileAccess::TryOpen(STRING::CoreString const& path, bool8 forWriting)
{
    std::string const name = SystemPath(path);
    if (name.empty())
        return Failed(ENOENT);
    mSystemError = 0;
    Descriptor const opened(open(name.c_str(), (forWriting ? O_RDWR : O_RDONLY) | kAnyOpening));
    return opened ? kDone : Failed(errno);
}
} // namespace KORVA::FILE_SYS
