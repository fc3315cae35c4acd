#include "FileStatus.h"

#include <cerrno>

namespace KORVA::FILE_SYS
{
ErrCode StatusOfErrno()
{
    switch (errno)
    {
    case ENOENT:
    case ENOTDIR:
        return kNotFound;
    case EEXIST:
        return kAlreadyThere;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
        return kNotPermitted;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return kNoSpace;
    default:
        return kFailed;
    }
}
} // namespace KORVA::FILE_SYS
