// The well-known directories from which relative URIs lead, and the names that people give them.
#pragma once

#include <tessio/FileIO/DirType.h>
#include <tessio/ObjectModel/Types.h>

#include <span>
#include <string>

namespace KORVA::RECORDS
{
/// A directory by its number in files and by its name in words.
struct Directory
{
    FILE_SYS::DirType type;
    char const* name;
};

/// In the order in which they are listed.
std::span<Directory const> Directories();

/// By its type; null for a number that names none.
Directory const* DirectoryOfType(int32 type);

/// The name of a directory's type, or its number where that has none.
std::string DirectoryName(int32 type);
} // namespace KORVA::RECORDS
