#include "File.h"

#include "FileStatus.h"
#include "System/CopyFile.h"
#include "System/Files.h"
#include "System/Replacement.h"
#include "System/Status.h"
#include "System/Times.h"
#include "System/Transfer.h"
#include "SystemPath.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/FileIO/ICopyProgress.h>
#include <tessio/Logger/LogSite.h>

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

ErrCode DateFrom(SYSTEM::Date const& from, uint64& date)
{
    constexpr uint64 kNanosecondsPerSecond = 1'000'000'000;
    if (from.seconds < 0 ||
        static_cast<uint64>(from.seconds) > std::numeric_limits<uint64>::max() / kNanosecondsPerSecond - 1)
        return kFailed;
    date = static_cast<uint64>(from.seconds) * kNanosecondsPerSecond + from.nanoseconds;
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
    SYSTEM::Status status;
    return SYSTEM::ReadStatus(mPath, status) == 0;
}

ErrCode File::QueryFlag(uchar& flag)
{
    SYSTEM::Status status;
    if (SYSTEM::ErrorNumber const error = SYSTEM::ReadStatus(mPath, status))
        return StatusOf(error);
    std::string const trimmed = mPath.substr(0, mPath.find_last_not_of('/') + 1);
    std::string const name = trimmed.substr(trimmed.rfind('/') + 1);
    flag = name.starts_with('.') && name != "." && name != ".." ? 1 : 0;
    return kDone;
}

ErrCode File::ReadPermissions(uchar (&permissions)[3])
{
    SYSTEM::Status status;
    if (SYSTEM::ErrorNumber const error = SYSTEM::ReadStatus(mPath, status))
        return StatusOf(error);
    permissions[0] = static_cast<uchar>((status.permissions >> 6) & 7);
    permissions[1] = static_cast<uchar>((status.permissions >> 3) & 7);
    permissions[2] = static_cast<uchar>(status.permissions & 7);
    return kDone;
}

ErrCode File::Create() { return StatusOf(SYSTEM::MakeFile(mPath)); }

ErrCode File::Delete() { return StatusOf(SYSTEM::RemoveFile(mPath)); }

ErrCode File::GetSize(uint64& size)
{
    SYSTEM::Status status;
    if (SYSTEM::ErrorNumber const error = SYSTEM::ReadStatus(mPath, status))
        return StatusOf(error);
    size = status.size;
    return kDone;
}

ErrCode File::GetModificationDate(uint64& date)
{
    SYSTEM::Status status;
    if (SYSTEM::ErrorNumber const error = SYSTEM::ReadStatus(mPath, status))
        return StatusOf(error);
    return DateFrom(status.modified, date);
}

ErrCode File::SetModificationDate(uint64& date) { return StatusOf(SYSTEM::SetModified(mPath, date)); }

ErrCode File::GetCreationDate(uint64& date)
{
    SYSTEM::Date created;
    if (SYSTEM::ErrorNumber const error = SYSTEM::ReadCreationDate(mPath, created))
        return StatusOf(error);
    return DateFrom(created, date);
}

ErrCode File::SetCreationDate(uint64&)
{
    SYSTEM::Status status;
    SYSTEM::ErrorNumber const error = SYSTEM::ReadStatus(mPath, status);
    return error == 0 ? kFailed : StatusOf(error);
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
    return StatusOf(SYSTEM::RenameFile(mPath, SystemPath(target)));
}

ErrCode File::Sync()
{
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file = SYSTEM::OpenFile(mPath, SYSTEM::Access::kRead, error);
    if (error == 0)
        error = SYSTEM::FlushToDevice(file.Get());
    if (error == 0)
        error = SYSTEM::FlushDirectoryOf(mPath);
    return StatusOf(error);
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
