#include "System/Times.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace KORVA::SYSTEM
{
namespace
{
/// The two dates that the system takes, of which the first stays.
struct ModificationDate
{
    explicit ModificationDate(std::uint64_t date)
    {
        constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
        both[0].tv_nsec = UTIME_OMIT;
        both[1].tv_sec = static_cast<time_t>(date / kNanosecondsPerSecond);
        both[1].tv_nsec = static_cast<long>(date % kNanosecondsPerSecond);
    }

    timespec both[2] = {};
};
} // namespace

ErrorNumber CopyDates(int from, int to)
{
    struct stat status;
    if (fstat(from, &status) != 0)
        return errno;
    timespec const times[2] = {status.st_atim, status.st_mtim};
    return futimens(to, times) == 0 ? 0 : errno;
}

ErrorNumber SetModified(int to, std::uint64_t date)
{
    ModificationDate const times(date);
    return futimens(to, times.both) == 0 ? 0 : errno;
}

ErrorNumber SetModified(std::string const& path, std::uint64_t date)
{
    ModificationDate const times(date);
    return utimensat(AT_FDCWD, path.c_str(), times.both, 0) == 0 ? 0 : errno;
}
} // namespace KORVA::SYSTEM
