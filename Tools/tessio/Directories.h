// The well-known directories and the names that people give them.
#pragma once

#include <tessio/FileIO/ISystemDirContainer.h>

#include <string>
#include <vector>

namespace TOOL
{
struct Directory
{
    KORVA::FILE_SYS::DirType type;
    char const* name;
};

/// In the order in which they are listed.
std::vector<Directory> const& Directories();

/// By its name. Ends the command, naming those that there are, when there is none.
Directory const& DirectoryNamed(std::string const& name);

/// By its type; null for a number that names none.
Directory const* DirectoryOfType(KORVA::int32 type);

/// The name of a directory's type, or its number where that has none.
std::string DirectoryName(KORVA::int32 type);
} // namespace TOOL
