#include "System/CopyFile.h"

#include "System/CopyData.h"
#include "System/Files.h"
#include "System/Times.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace KORVA::SYSTEM
{
namespace
{
/// Small enough to hear of progress, large enough not to count.
constexpr std::uint64_t kPiece = std::uint64_t{8} << 20;

ErrorNumber CopyContent(int from, int to, struct stat const& status, CopyWatch const& watch)
{
    auto const total = static_cast<std::uint64_t>(status.st_size);
    std::uint64_t done = 0;
    for (;;)
    {
        std::uint64_t copied = kPiece;
        if (ErrorNumber const error = CopySome(from, to, copied))
            return error;
        done += copied;
        if (watch && !watch(done, std::max(done, total)))
            return ECANCELED;
        if (copied == 0)
            break;
    }
    // A source that was cut meanwhile must not replace a whole target. One that never had what it says, as
    // the kernel's own may, is copied as far as it goes.
    struct stat now;
    if (done < total && (fstat(from, &now) != 0 || now.st_size != status.st_size))
        return ENODATA;
    return 0;
}
} // namespace

Outcome CopyFile(std::string const& source, std::string const& target, CopyWatch const& watch,
                 NotKept& notKept)
{
    ErrorNumber error = 0;
    Descriptor const from = OpenFile(source, Access::kRead, error);
    struct stat status;
    if (!from || fstat(from.Get(), &status) != 0)
        return {Saved::kOld, from ? errno : error};
    struct stat existing;
    bool const isSameFile = stat(target.c_str(), &existing) == 0 && existing.st_dev == status.st_dev &&
                            existing.st_ino == status.st_ino;
    if (!S_ISREG(status.st_mode) || isSameFile)
        return {Saved::kOld, EINVAL};
    Replacement copy(target, Replacement::Temporary::kUserAlone);
    error = copy.Error();
    if (error == 0)
        error = CopyContent(from.Get(), copy.Get(), status, watch);
    if (error == 0)
        error = CopyDates(from.Get(), copy.Get());
    if (error == 0)
        error = CopyPermissions(from.Get(), copy.Get(), notKept);
    return error == 0 ? copy.Commit() : Outcome{Saved::kOld, error};
}
} // namespace KORVA::SYSTEM
