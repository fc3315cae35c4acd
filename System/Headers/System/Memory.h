// Memory in whole pages, and memory that held secrets.
#pragma once

#include <cstddef>

namespace KORVA::SYSTEM
{
/// `bytes` rounded up to whole pages, at least one: what the functions below take.
std::size_t WholePages(std::size_t bytes);

/// Pages of zeros, which take no memory before they are touched; the caller owns them. Null when there is no
/// room.
std::byte* NewPages(std::size_t bytes);

/// Makes the block that long, wherever it lies then: nothing in it is copied, and what is new is zero. Null
/// when there is no room; then the block is as it was.
std::byte* ResizePages(std::byte* pages, std::size_t bytes, std::size_t newBytes);

void FreePages(std::byte* pages, std::size_t bytes);

/// Overwrites memory with zeros. Never optimised away.
void Wipe(void* address, std::size_t size);
} // namespace KORVA::SYSTEM
