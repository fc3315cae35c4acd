// Single operations on files and their names. Paths are bytes, in whatever encoding.
#pragma once

#include "System/Descriptor.h"

#include <string>

namespace KORVA::SYSTEM
{
enum class Access
{
    kRead,
    kReadWrite,
    /// Names the file and reads nothing; needs no permission on the file itself.
    kReference
};

/// Opens what is there, without waiting for the other end of a pipe. None on failure, with the reason in
/// `error`.
Descriptor OpenFile(std::string const& path, Access access, ErrorNumber& error);

/// A path of plain characters by which this process reaches the descriptor's file, whatever its own name is,
/// while the descriptor is open. Empty where the system gives none.
std::string PathThrough(Descriptor const& descriptor);

/// Makes an empty file where nothing is.
ErrorNumber MakeFile(std::string const& path);

/// Removes a file (not a directory).
ErrorNumber RemoveFile(std::string const& path);

/// Waits until the names in a directory are on the device. File systems that
/// can't be told to wait order renames by themselves: 0.
///@{
ErrorNumber FlushNames(Descriptor const& directory);
ErrorNumber FlushDirectoryOf(std::string const& path);
///@}

/// The part of a path before its last component; "." where it has none.
std::string DirectoryOf(std::string const& path);
} // namespace KORVA::SYSTEM
