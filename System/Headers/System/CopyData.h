// Moving bytes between files.
#pragma once

#include "System/ErrorNumber.h"

#include <cstdint>

namespace KORVA::SYSTEM
{
/// Copies up to `count` bytes between the descriptors' positions, in the kernel where it can: sharing blocks,
/// or through the page cache, or else through memory. `count` becomes how many were copied, at least one
/// unless the source ends there; 0 on failure, when some may have been copied all the same.
ErrorNumber CopySome(int from, int to, std::uint64_t& count);
} // namespace KORVA::SYSTEM
