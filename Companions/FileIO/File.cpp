#include "File.h"

#include "Descriptor.h"
#include "FileStatus.h"
#include "System/CopyFile.h"
#include "System/Files.h"
#include "System/Replacement.h"
#include "SystemPath.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/FileIO/ICopyProgress.h>
#include <tessio/Logger/LogSite.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <limits>
#include <string_view>

namespace KORVA::FILE_SYS
{
namespace
{
constexpr char kSource[] = "Companions/FileIO/File";
constexpr LogSite kSiteCopyTo{
    kSource, "virtual ErrCode KORVA::FILE_SYS::File::CopyTo(const STRING::CoreString &)", 0, 1, 1};
constexpr LogSite kSiteReplace{
    kSource, "virtual ErrCode KORVA::FILE_SYS::File::Replace(const void *, uint64)", 0, 1, 1};

constexpr uint64 kNanosecondsPerSecond = 1'000'000'000;

ErrCode DateFrom(int64 seconds, uint32 nanoseconds, uint64& date)
{
    if (seconds < 0 ||
        static_cast<uint64>(seconds) > std::numeric_limits<uint64>::max() / kNanosecondsPerSecond - 1)
        return kFailed;
    date = static_cast<uint64>(seconds) * kNanosecondsPerSecond + nanoseconds;
    return kDone;
}

STRING::CoreString Text(std::string_view utf8) { return STRING::CoreString(utf8); }

ErrCode StatusOfOutcome(SYSTEM::Outcome const& outcome)
{
    return outcome.state == SYSTEM::Saved::kNewNotFlushed ? kNotFlushed : StatusOf(outcome.error);
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
    struct stat status;
    if (stat(mPath.c_str(), &status) != 0)
        return StatusOfErrno();
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

ErrCode File::SetCreationDate(uint64&)
{
    struct stat status;
    return stat(mPath.c_str(), &status) == 0 ? kFailed : StatusOfErrno();
}

ErrCode File::CopyTo(STRING::CoreString const& target)
{
    std::string const targetPath = SystemPath(target);
    if (targetPath.empty())
        return kNotFound;
    auto const progress = COREREGISTRY::CreateObject<ICopyProgress>(IID_COPY_PROGRESS);
    SYSTEM::CopyWatch watch;
    if (progress)
        watch = [&progress](std::uint64_t done, std::uint64_t total) {
            return progress->OnCopied(done, total);
        };
    SYSTEM::NotKept notKept;
    SYSTEM::Outcome const outcome = SYSTEM::CopyFile(mPath, targetPath, watch, notKept);
    if (outcome.state != SYSTEM::Saved::kOld)
        for (std::string const& what : notKept)
            Log(kSiteCopyTo, Text(targetPath), L": its ", Text(what), L" could not be kept");
    return StatusOfOutcome(outcome);
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
    return StatusOf(SYSTEM::FlushDirectoryOf(mPath));
}

ErrCode File::Replace(void const* data, uint64 count)
{
    if (mPath.empty())
        return kNotFound;
    SYSTEM::NotKept notKept;
    SYSTEM::Outcome const outcome = SYSTEM::ReplaceFile(mPath, data, count, notKept);
    if (outcome.state != SYSTEM::Saved::kOld)
        for (std::string const& what : notKept)
            Log(kSiteReplace, Text(mPath), L": its ", Text(what), L" could not be kept");
    return StatusOfOutcome(outcome);
}
} // namespace KORVA::FILE_SYS
