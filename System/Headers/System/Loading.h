// Shared objects that are loaded while the process runs.
#pragma once

#include <cstdint>
#include <string>

namespace KORVA::SYSTEM
{
/// A loaded object. Each loading of a file counts, gives the same value, and is ended by a `CloseObject` of
/// its own; the code goes with the last of them, unless something else keeps it.
using LoadedObject = void*;

/// Where code and constants lie in memory.
struct MemoryRange
{
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;

    bool Has(void const* address) const
    {
        auto const value = reinterpret_cast<std::uintptr_t>(address);
        return value >= begin && value < end;
    }
};

/// Loads the file with all that it needs, and shows its names to nobody. Null and the system's words in
/// `error` when it can't be loaded.
LoadedObject LoadObject(std::string const& file, std::string& error);

void CloseObject(LoadedObject object);

/// Whether an object of that name (as of `NameOf`) is in memory.
bool IsLoaded(std::string const& name);

/// What has that name in the object or in what the object was linked to; null for nothing.
void* FindSymbol(LoadedObject object, char const* name);

/// By what name the system has loaded it; empty where the system does not tell.
std::string NameOf(LoadedObject object);

/// Empty where the system does not tell.
MemoryRange RangeOf(LoadedObject object);

/// The file of the program or the shared object that the address lies in; empty for none.
std::string FileAround(void const* address);
} // namespace KORVA::SYSTEM
