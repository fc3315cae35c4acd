#include "FileStatus.h"

#include <cerrno>

namespace KORVA::FILE_SYS
{
ErrCode StatusOf(SYSTEM::ErrorNumber error)
{
    switch (error)
    {
    case 0:
        return kDone;
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
    case ECANCELED:
        return kCancelled;
    case EIO:
    case ENXIO:
    case ENODEV:
    case ENOMEDIUM:
    case EREMOTEIO:
    case ESTALE:
    case ETIMEDOUT:
    case EHOSTDOWN:
    case EHOSTUNREACH:
        return kDeviceFailed;
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case ENOBUFS:
        return kOutOfResources;
    default:
        return kFailed;
    }
}
} // namespace KORVA::FILE_SYS
