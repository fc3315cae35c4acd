// From the system's error numbers to the library's statuses.
#pragma once

#include "FileIO/IFile.h"

namespace KORVA::FILE_SYS
{
/// The status for the calling thread's `errno`.
ErrCode StatusOfErrno();
} // namespace KORVA::FILE_SYS
