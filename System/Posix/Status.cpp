#include "System/Status.h"

#include <sys/stat.h>

#include <cerrno>

namespace KORVA::SYSTEM
{
namespace
{
FileKind KindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return FileKind::kRegular;
    if (S_ISDIR(mode))
        return FileKind::kDirectory;
    return S_ISLNK(mode) ? FileKind::kSymbolicLink : FileKind::kOther;
}

ErrorNumber Take(int result, struct stat const& found, Status& status)
{
    if (result != 0)
        return errno;
    status.identity = {found.st_dev, found.st_ino};
    status.kind = KindOf(found.st_mode);
    status.size = static_cast<std::uint64_t>(found.st_size);
    status.permissions = found.st_mode & mode_t{S_IRWXU | S_IRWXG | S_IRWXO};
    status.modified = {found.st_mtim.tv_sec, static_cast<std::uint32_t>(found.st_mtim.tv_nsec)};
    return 0;
}
} // namespace

ErrorNumber ReadStatus(std::string const& path, Status& status)
{
    struct stat found;
    return Take(stat(path.c_str(), &found), found, status);
}

ErrorNumber ReadStatusOfLink(std::string const& path, Status& status)
{
    struct stat found;
    return Take(lstat(path.c_str(), &found), found, status);
}

ErrorNumber ReadStatus(int descriptor, Status& status)
{
    struct stat found;
    return Take(fstat(descriptor, &found), found, status);
}
} // namespace KORVA::SYSTEM
