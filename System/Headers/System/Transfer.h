// Reading and writing without partial transfers and interruptions.
#pragma once

#include "System/ErrorNumber.h"

#include <cstddef>

namespace KORVA::SYSTEM
{
/// Writes all of the bytes at the descriptor's position. After a failure some of them may be written.
ErrorNumber WriteAll(int descriptor, void const* data, std::size_t count);

/// Reads up to `count` bytes at the descriptor's position, at least one unless the file ends there. `count`
/// becomes how many came; 0 at the end and on failure.
ErrorNumber ReadSome(int descriptor, void* data, std::size_t& count);

/// Reads `count` bytes, fewer only where the file ends. `count` becomes how many came, on failure too.
ErrorNumber ReadAll(int descriptor, void* data, std::size_t& count);

/// Waits until the file's content is on the device, or the names in a directory.
ErrorNumber FlushToDevice(int descriptor);
} // namespace KORVA::SYSTEM
