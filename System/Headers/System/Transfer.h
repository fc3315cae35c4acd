// Reading and writing without partial transfers and interruptions.
#pragma once

#include "System/ErrorNumber.h"

#include <cstddef>
#include <cstdint>

namespace KORVA::SYSTEM
{
/// Writes all of the bytes at the descriptor's position. After a failure some of them may be written.
ErrorNumber WriteAll(int descriptor, void const* data, std::size_t count);

/// Reads up to `count` bytes at the descriptor's position, at least one unless the file ends there. `count`
/// becomes how many came; 0 at the end and on failure.
ErrorNumber ReadSome(int descriptor, void* data, std::size_t& count);

/// Reads `count` bytes, fewer only where the file ends. `count` becomes how many came, on failure too.
ErrorNumber ReadAll(int descriptor, void* data, std::size_t& count);

/// As `WriteAll` and `ReadAll`, but `offset` bytes from the file's start: the descriptor's position is
/// neither used nor moved, so threads may share the descriptor. `count` becomes how many bytes were moved, on
/// failure too. `EINVAL` for a negative offset.
///@{
ErrorNumber WriteAllAt(int descriptor, std::int64_t offset, void const* data, std::size_t& count);
ErrorNumber ReadAllAt(int descriptor, std::int64_t offset, void* data, std::size_t& count);
///@}

/// Where the descriptor stands, in bytes. `ESPIPE` for what has no positions.
ErrorNumber ReadPosition(int descriptor, std::int64_t& position);

/// Cuts the file, or extends it with zeros.
ErrorNumber SetSize(int descriptor, std::int64_t size);

/// Waits until the file's content and all that is known of the file are on the device, or the names in a
/// directory.
ErrorNumber FlushToDevice(int descriptor);

/// Waits until the file's content is on the device, and what finding it there takes.
ErrorNumber FlushContent(int descriptor);
} // namespace KORVA::SYSTEM
