// Memory that held secrets.
#pragma once

#include <cstddef>

namespace KORVA::PLATFORM
{
/// Overwrites `size` bytes at `address` with zeros. Never optimised away.
void WipeMemory(void* address, std::size_t size);
} // namespace KORVA::PLATFORM
