#include "System/Memory.h"

#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace KORVA::SYSTEM
{
namespace
{
std::byte* PagesAt(void* address)
{
    return address == MAP_FAILED ? nullptr : static_cast<std::byte*>(address);
}
} // namespace

std::size_t WholePages(std::size_t bytes)
{
    static std::size_t const kPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return (std::max<std::size_t>(bytes, 1) + kPage - 1) / kPage * kPage;
}

std::byte* NewPages(std::size_t bytes)
{
    return PagesAt(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
}

std::byte* ResizePages(std::byte* pages, std::size_t bytes, std::size_t newBytes)
{
    return PagesAt(mremap(pages, bytes, newBytes, MREMAP_MAYMOVE));
}

void FreePages(std::byte* pages, std::size_t bytes) { munmap(pages, bytes); }

void Wipe(void* address, std::size_t size) { explicit_bzero(address, size); }
} // namespace KORVA::SYSTEM
