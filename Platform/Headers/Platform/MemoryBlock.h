// Relocatable memory blocks.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KORVA::PLATFORM
{
/// A block whose address may change when it is resized. One thread at a time.
struct MemoryBlock;
using Handle = MemoryBlock*;

/// Allocates `size` bytes, all zero; the caller owns the block. Null when there is no memory.
Handle NewHandle(std::size_t size);

/// Resizes a block, keeping its contents up to the smaller size; bytes that come with growth are zero, also
/// where the block was larger before. What is there is never copied: pages are remapped. The outcome is told
/// by `MemError`; on failure nothing is changed.
void SetHandleSize(Handle handle, std::size_t size);

/// Frees a block; null is ignored.
void DisposeHandle(Handle handle);

/// The error of the calling thread's last operation on a block: 0, or negative.
std::int16_t MemError();

/// Where the bytes are until the next resize; null for a null handle.
std::byte* HandleAddress(Handle handle);
} // namespace KORVA::PLATFORM
