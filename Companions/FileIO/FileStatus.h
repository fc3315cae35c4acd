// From the system's error numbers to the library's statuses.
#pragma once

#include "System/ErrorNumber.h"
#include <tessio/FileIO/IFile.h>

namespace KORVA::FILE_SYS
{
/// The status for a failure of the system's; 0 for none.
ErrCode StatusOf(SYSTEM::ErrorNumber error);
} // namespace KORVA::FILE_SYS
