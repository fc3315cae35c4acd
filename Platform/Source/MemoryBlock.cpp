#include "Platform/MemoryBlock.h"

#include "System/Memory.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace KORVA::PLATFORM
{
struct MemoryBlock
{
    std::byte* address = nullptr;
    std::size_t size = 0;
    /// Bytes mapped, whole pages; 0 for a block from the allocator.
    std::size_t mapped = 0;
};

namespace
{
/// What the allocator serves; larger blocks have pages of their own.
constexpr std::size_t kMapFrom = std::size_t{64} << 10;
constexpr std::int16_t kMemFull = -108;

thread_local std::int16_t sError = 0;

bool ResizeMapped(MemoryBlock& block, std::size_t size)
{
    std::size_t const pages = SYSTEM::WholePages(size);
    if (pages != block.mapped)
    {
        std::byte* const address = SYSTEM::ResizePages(block.address, block.mapped, pages);
        if (!address)
            return false;
        block.address = address;
        block.mapped = pages;
    }
    // The rest of the last page outlives a shrink: a later growth must not bring it back.
    if (size < block.size)
        std::memset(block.address + size, 0, pages - size);
    block.size = size;
    return true;
}

bool ResizeAllocated(MemoryBlock& block, std::size_t size)
{
    if (size >= kMapFrom)
    {
        std::size_t const pages = SYSTEM::WholePages(size);
        std::byte* const address = SYSTEM::NewPages(pages);
        if (!address)
            return false;
        std::memcpy(address, block.address, block.size);
        std::free(block.address);
        block = MemoryBlock{address, size, pages};
        return true;
    }
    auto* const address = static_cast<std::byte*>(std::realloc(block.address, size > 0 ? size : 1));
    if (!address)
        return false;
    if (size > block.size)
        std::memset(address + block.size, 0, size - block.size);
    block.address = address;
    block.size = size;
    return true;
}
} // namespace

Handle NewHandle(std::size_t size)
{
    MemoryBlock block;
    block.size = size;
    if (size >= kMapFrom)
    {
        block.mapped = SYSTEM::WholePages(size);
        block.address = SYSTEM::NewPages(block.mapped);
    }
    else
        block.address = static_cast<std::byte*>(std::calloc(size > 0 ? size : 1, 1));
    Handle const handle = block.address ? new (std::nothrow) MemoryBlock(block) : nullptr;
    sError = handle ? std::int16_t{0} : kMemFull;
    return handle;
}

void SetHandleSize(Handle handle, std::size_t size)
{
    bool const done =
        handle && (handle->mapped > 0 ? ResizeMapped(*handle, size) : ResizeAllocated(*handle, size));
    sError = done ? std::int16_t{0} : kMemFull;
}

void DisposeHandle(Handle handle)
{
    sError = 0;
    if (!handle)
        return;
    if (handle->mapped > 0)
        SYSTEM::FreePages(handle->address, handle->mapped);
    else
        std::free(handle->address);
    delete handle;
}

std::int16_t MemError() { return sError; }

std::byte* HandleAddress(Handle handle) { return handle ? handle->address : nullptr; }
} // namespace KORVA::PLATFORM
