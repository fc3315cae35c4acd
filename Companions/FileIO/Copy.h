// Copying one file to another in the kernel.
#pragma once

#include "FileIO/IFile.h"

#include <string>

namespace KORVA::FILE_SYS
{
/// What `IFile::CopyTo` does, on system paths.
ErrCode CopyFile(std::string const& source, std::string const& target);
} // namespace KORVA::FILE_SYS
