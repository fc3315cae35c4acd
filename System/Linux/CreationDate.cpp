#include "System/Status.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace KORVA::SYSTEM
{
ErrorNumber ReadCreationDate(std::string const& path, Date& date)
{
    struct statx found;
    if (statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &found) != 0)
        return errno;
    if ((found.stx_mask & STATX_BTIME) == 0)
        return EOPNOTSUPP;
    date = {found.stx_btime.tv_sec, found.stx_btime.tv_nsec};
    return 0;
}
} // namespace KORVA::SYSTEM
