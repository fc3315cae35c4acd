// Keeps other processes from editing in a directory.
#pragma once

#include "System/Descriptor.h"

#include <filesystem>
#include <string>

namespace TOOL
{
/// The lock on a file goes with the file, and saving puts a new one in its place; the directory stays. Held
/// from before a file is compared or read until it is replaced.
class DirectoryLock
{
public:
    /// Waits ten seconds for others. Ends the command, naming `location`, when they still hold it then. Where
    /// directories can't be locked, or this one can't be read, there is no lock.
    DirectoryLock(std::filesystem::path const& file, std::string const& location);
    DirectoryLock(DirectoryLock const&) = delete;
    DirectoryLock& operator=(DirectoryLock const&) = delete;

private:
    KORVA::SYSTEM::Descriptor mDirectory;
};
} // namespace TOOL
