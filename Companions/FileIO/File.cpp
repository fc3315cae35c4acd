#include "File.h"

#include "AtomicFile.h"
#include "Copy.h"
#include "Descriptor.h"
#include "FileStatus.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <limits>
#include <optional>

namespace KORVA::FILE_SYS
{
namespace
{
constexpr uint64 kNanosecondsPerSecond = 1'000'000'000;

/// A path in the system's form; empty for a text that can't be one.
std::string SystemPath(STRING::CoreString const& path)
{
    if (!path.IsWellFormed() || path.find(u'\0') != STRING::CoreString::npos)
        return {};
    return path.ToUTF8();
}

ErrCode DateFrom(int64 seconds, uint32 nanoseconds, uint64& date)
{
    if (seconds < 0 ||
        static_cast<uint64>(seconds) > std::numeric_limits<uint64>::max() / kNanosecondsPerSecond - 1)
        return kFailed;
    date = static_cast<uint64>(seconds) * kNanosecondsPerSecond + nanoseconds;
    return kDone;
}

ErrCode WriteWhole(int descriptor, void const* data, uint64 count)
{
    auto const* from = static_cast<char const*>(data);
    while (count > 0)
    {
        ssize_t const written = write(descriptor, from, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return StatusOfErrno();
        from += written;
        count -= static_cast<uint64>(written);
    }
    return kDone;
}
} // namespace

bool File::BindPath(STRING::CoreString const& path)
{
    mPath = SystemPath(path);
    return !mPath.empty();
}

bool File::Exists()
{
    struct stat status;
    return stat(mPath.c_str(), &status) == 0;
}

ErrCode File::QueryFlag(uchar& flag)
{
    if (!Exists())
        return kNotFound;
    std::string const trimmed = mPath.substr(0, mPath.find_last_not_of('/') + 1);
    std::string const name = trimmed.substr(trimmed.rfind('/') + 1);
    flag = name.starts_with('.') && name != "." && name != ".." ? 1 : 0;
    return kDone;
}

ErrCode File::ReadPermissions(uchar (&permissions)[3])
{
    struct stat status;
    if (stat(mPath.c_str(), &status) != 0)
        return StatusOfErrno();
    permissions[0] = static_cast<uchar>((status.st_mode >> 6) & 7);
    permissions[1] = static_cast<uchar>((status.st_mode >> 3) & 7);
    permissions[2] = static_cast<uchar>(status.st_mode & 7);
    return kDone;
}

ErrCode File::Create()
{
    Descriptor created(open(mPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    return created ? kDone : StatusOfErrno();
}

ErrCode File::Delete() { return unlink(mPath.c_str()) == 0 ? kDone : StatusOfErrno(); }

ErrCode File::GetSize(uint64& size)
{
    struct stat status;
    if (stat(mPath.c_str(), &status) != 0)
        return StatusOfErrno();
    size = static_cast<uint64>(status.st_size);
    return kDone;
}

ErrCode File::GetModificationDate(uint64& date)
{
    struct stat status;
    if (stat(mPath.c_str(), &status) != 0)
        return StatusOfErrno();
    return DateFrom(status.st_mtim.tv_sec, static_cast<uint32>(status.st_mtim.tv_nsec), date);
}

ErrCode File::SetModificationDate(uint64& date)
{
    timespec times[2] = {};
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = static_cast<time_t>(date / kNanosecondsPerSecond);
    times[1].tv_nsec = static_cast<long>(date % kNanosecondsPerSecond);
    return utimensat(AT_FDCWD, mPath.c_str(), times, 0) == 0 ? kDone : StatusOfErrno();
}

ErrCode File::GetCreationDate(uint64& date)
{
    struct statx status;
    if (statx(AT_FDCWD, mPath.c_str(), 0, STATX_BTIME, &status) != 0)
        return StatusOfErrno();
    if ((status.stx_mask & STATX_BTIME) == 0)
        return kFailed;
    return DateFrom(status.stx_btime.tv_sec, status.stx_btime.tv_nsec, date);
}

ErrCode File::SetCreationDate(uint64&) { return Exists() ? kFailed : kNotFound; }

ErrCode File::CopyTo(STRING::CoreString const& target)
{
    std::string const targetPath = SystemPath(target);
    return targetPath.empty() ? kNotFound : CopyFile(mPath, targetPath);
}

ErrCode File::MoveTo(STRING::CoreString const& target)
{
    std::string const targetPath = SystemPath(target);
    return rename(mPath.c_str(), targetPath.c_str()) == 0 ? kDone : StatusOfErrno();
}

ErrCode File::Sync()
{
    Descriptor const file(open(mPath.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file || fsync(file.Get()) != 0)
        return StatusOfErrno();
    return SyncDirectoryOf(mPath);
}

ErrCode File::Replace(void const* data, uint64 count)
{
    if (mPath.empty())
        return kNotFound;
    AtomicFile file(mPath);
    ErrCode status = file.Status();
    if (status == kDone)
        status = WriteWhole(file.Get(), data, count);
    if (status == kDone)
        status = file.KeepPermissions();
    return status == kDone ? file.Commit() : status;
}
} // namespace KORVA::FILE_SYS
