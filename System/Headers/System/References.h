// Descriptors that name a file or a directory and open nothing of it. They need no permission on the thing
// itself, and stay with it when it is renamed.
#pragma once

#include "System/Descriptor.h"

#include <string>

namespace KORVA::SYSTEM
{
/// None on failure, with the reason in `error`.
Descriptor OpenReference(std::string const& path, ErrorNumber& error);

/// `ENOTDIR` for what is no directory.
Descriptor OpenDirectoryReference(std::string const& path, ErrorNumber& error);

/// What has that name in the directory; where that is a symbolic link, the link itself.
Descriptor OpenReferenceIn(Descriptor const& directory, std::string const& name, ErrorNumber& error);

/// A path of plain characters by which this process reaches the descriptor's file, whatever its own name is,
/// while the descriptor is open. Empty where the system gives none.
std::string PathThrough(Descriptor const& descriptor);
} // namespace KORVA::SYSTEM
