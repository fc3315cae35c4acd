#include "AtomicFile.h"

#include "FileStatus.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <random>

namespace KORVA::FILE_SYS
{
namespace
{
constexpr int kNameAttempts = 100;
constexpr int kMostLinks = 40;

std::string DirectoryOf(std::string const& path)
{
    std::size_t const slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// The path behind symbolic links, whether a file is there or not.
std::string Followed(std::string path)
{
    char target[PATH_MAX];
    for (int links = 0; links < kMostLinks; ++links)
    {
        ssize_t const length = readlink(path.c_str(), target, sizeof target);
        if (length <= 0)
            break;
        std::string const next(target, static_cast<std::size_t>(length));
        path = next.starts_with('/') ? next : DirectoryOf(path) + "/" + next;
    }
    return path;
}
} // namespace

AtomicFile::AtomicFile(std::string const& target, mode_t permissions) : mTarget(Followed(target))
{
    std::size_t const slash = mTarget.rfind('/');
    std::size_t const nameAt = slash == std::string::npos ? 0 : slash + 1;
    struct stat status;
    bool const replaces = stat(mTarget.c_str(), &status) == 0;
    if (!replaces && errno == ELOOP)
    {
        mStatus = kFailed;
        return;
    }
    if (nameAt == mTarget.size() || (replaces && !S_ISREG(status.st_mode)))
    {
        mStatus = kNotPermitted;
        return;
    }
    std::random_device random;
    for (int attempt = 0; attempt < kNameAttempts; ++attempt)
    {
        char suffix[16];
        std::snprintf(suffix, sizeof suffix, ".%08x", static_cast<unsigned>(random()));
        // A long name is cut so that the temporary's stays within the system's bound.
        mTemporary = mTarget.substr(0, nameAt) + "." + mTarget.substr(nameAt, 200) + suffix;
        mDescriptor = Descriptor(
            open(mTemporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, replaces ? 0600 : permissions));
        mStatus = mDescriptor ? kDone : StatusOfErrno();
        if (mStatus != kAlreadyThere)
            break;
    }
    if (!mDescriptor)
        mTemporary.clear();
}

AtomicFile::~AtomicFile()
{
    if (!mTemporary.empty())
        unlink(mTemporary.c_str());
}

ErrCode AtomicFile::KeepPermissions()
{
    struct stat status;
    if (stat(mTarget.c_str(), &status) != 0)
        return kDone;
    // Only a privileged user can give a file away; for others the file becomes theirs, as with any editor.
    if (fchown(mDescriptor.Get(), status.st_uid, status.st_gid) != 0)
    {
        status.st_mode &= static_cast<mode_t>(~(S_ISUID | S_ISGID));
        // What the file's group might, the user's own group is not to do instead. Who was in the former is
        // now one of the others, and may do no more for that.
        if (fchown(mDescriptor.Get(), static_cast<uid_t>(-1), status.st_gid) != 0)
        {
            mode_t const both = status.st_mode & (status.st_mode >> 3) & mode_t{S_IRWXO};
            status.st_mode = (status.st_mode & ~mode_t{S_IRWXG | S_IRWXO}) | both << 3 | both;
        }
    }
    return fchmod(mDescriptor.Get(), status.st_mode & 07777) == 0 ? kDone : StatusOfErrno();
}

ErrCode AtomicFile::Commit()
{
    if (fsync(mDescriptor.Get()) != 0 || !mDescriptor.Close())
        return StatusOfErrno();
    if (rename(mTemporary.c_str(), mTarget.c_str()) != 0)
        return StatusOfErrno();
    mTemporary.clear();
    return SyncDirectoryOf(mTarget);
}

ErrCode SyncDirectoryOf(std::string const& path)
{
    Descriptor const directory(open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory)
        return StatusOfErrno();
    // Some file systems can't flush directories; they order renames themselves.
    if (fsync(directory.Get()) != 0 && errno != EINVAL && errno != EROFS)
        return StatusOfErrno();
    return kDone;
}
} // namespace KORVA::FILE_SYS
