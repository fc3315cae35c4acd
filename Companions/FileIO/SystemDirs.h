// Where the well-known directories are.
#pragma once

#include <tessio/FileIO/DirType.h>

#include <string>

namespace KORVA::FILE_SYS
{
/// The absolute path, without a separator at its end (but for the root); empty when there is none. By the XDG
/// base directory conventions 0.8 and the user directories of xdg-user-dirs, as `ISystemDirContainer` says.
std::string SystemDirPath(DirType type);
} // namespace KORVA::FILE_SYS
