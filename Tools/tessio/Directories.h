// The well-known directories as arguments.
#pragma once

#include "Names.h"
#include <tessio/Records/Format/Directories.h>

#include <string>

namespace TOOL
{
/// By its name. Ends the command, naming those that there are, when there is none.
Directory const& DirectoryNamed(std::string const& name);
} // namespace TOOL
