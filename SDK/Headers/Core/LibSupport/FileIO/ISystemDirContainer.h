// Where the system's and the user's well-known directories are.
#pragma once

#include <tessio/FileIO/DirType.h>
#include <tessio/FileIO/IDir.h>
#include <tessio/ObjectModel/Export.h>

namespace KORVA::FILE_SYS
{
/// Class and interface id of `ISystemDirContainer`.
inline constexpr GUID IID_SYSTEM_DIR_CONTAINER{
    0xAEEF6E20, 0x3F08, 0x41B5, {0xB4, 0x60, 0xBA, 0x2E, 0x28, 0x8A, 0x76, 0x51}};

/// Finds directories by the XDG base directory and user directory conventions: the base directories'
/// variables (XDG_DATA_HOME, XDG_CONFIG_HOME, XDG_CACHE_HOME, XDG_STATE_HOME, the first of XDG_DATA_DIRS and
/// of XDG_CONFIG_DIRS) or their defaults; the user's directories as `user-dirs.dirs` in the user
/// configuration names them or, where it does not, by their usual English names in the home directory; TMPDIR
/// or /tmp; HOME or the user's entry in the user database. Values that are no absolute paths are ignored.
/// Used by one thread at a time.
class TESSIO_EXPORT ISystemDirContainer : public IObject
{
public:
    /// The directory of that type as it was named when first asked for, borrowed for as long as this
    /// container lives; it need not exist. Null for a value that names none, for a name that is not valid
    /// UTF-8, and where a home directory is needed and there is none.
    virtual IDir* GetDir(DirType type) = 0;
};
} // namespace KORVA::FILE_SYS
