// Single operations on files and their names. Paths are bytes, in whatever encoding.
#pragma once

#include "System/Descriptor.h"

#include <string>

namespace KORVA::SYSTEM
{
enum class Access
{
    kRead,
    kWrite,
    kReadWrite
};

/// Opens what is there, waiting neither for the other end of a pipe nor for a terminal, which never becomes
/// the process's own. The descriptor is closed in programs that are started, as all that this layer opens.
/// None on failure, with the reason in `error`.
Descriptor OpenFile(std::string const& path, Access access, ErrorNumber& error);

/// The same to read all of it: waits until somebody opens the other end of a pipe to write, and reading waits
/// for what comes.
Descriptor OpenFileAndWait(std::string const& path, ErrorNumber& error);

/// Opens a directory to lock it or to flush the names in it. `ENOTDIR` for anything else.
Descriptor OpenDirectory(std::string const& path, ErrorNumber& error);

/// Makes an empty file where nothing is; `EEXIST` where something is.
ErrorNumber MakeFile(std::string const& path);

/// Removes a file (not a directory).
ErrorNumber RemoveFile(std::string const& path);

/// Gives a file another name, and takes it from whatever file has it. Both are on one file system: `EXDEV`.
ErrorNumber RenameFile(std::string const& from, std::string const& to);

/// Waits until the names in a directory are on the device. File systems that
/// can't be told to wait order renames by themselves: 0.
///@{
ErrorNumber FlushNames(Descriptor const& directory);
ErrorNumber FlushDirectoryOf(std::string const& path);
///@}
} // namespace KORVA::SYSTEM
