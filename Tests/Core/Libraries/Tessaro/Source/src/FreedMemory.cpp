#include "FreedMemory.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace KORVA::TESTS
{
namespace
{
// Of plain types: used before everything is constructed and after it is gone.
std::atomic<char16_t const*> sText{nullptr};
std::atomic<std::size_t> sLength{0};
std::atomic<int> sFound{0};

constexpr int kNever = -1;
thread_local int sUntilRefused = kNever;
thread_local int sHeld = 0;

bool IsRefused() { return sUntilRefused != kNever && sUntilRefused-- == 0; }

bool HoldsBytes(void const* block, std::size_t size, void const* text, std::size_t length)
{
    auto const* const bytes = static_cast<char const*>(block);
    for (std::size_t i = 0; i + length <= size; ++i)
        if (std::memcmp(bytes + i, text, length) == 0)
            return true;
    return false;
}

void* Allocate(std::size_t size) noexcept
{
    void* const block = IsRefused() ? nullptr : std::malloc(size == 0 ? 1 : size);
    sHeld += block ? 1 : 0;
    return block;
}

void Free(void* block) noexcept
{
    char16_t const* const text = sText;
    if (text && block && HoldsBytes(block, malloc_usable_size(block), text, sLength * sizeof *text))
        ++sFound;
    sHeld -= block ? 1 : 0;
    std::free(block);
}
} // namespace

FreedMemoryWatch::FreedMemoryWatch(std::u16string_view text)
{
    sFound = 0;
    sLength = text.size();
    sText = text.data();
}

FreedMemoryWatch::~FreedMemoryWatch() { sText = nullptr; }

int FreedMemoryWatch::Found() const { return sFound; }

RefusedMemory::RefusedMemory(int which)
{
    sHeld = 0;
    sUntilRefused = which;
}

RefusedMemory::~RefusedMemory() { sUntilRefused = kNever; }

int RefusedMemory::Held() const { return sHeld; }

bool Holds(char16_t const* units, std::size_t count, std::u16string_view text)
{
    return HoldsBytes(units, count * sizeof *units, text.data(), text.size() * sizeof *units);
}
} // namespace KORVA::TESTS

// Arrays keep the operators of the library or of a sanitizer, which looks for mixed pairs.

void* operator new(std::size_t size)
{
    if (void* const block = KORVA::TESTS::Allocate(size))
        return block;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return KORVA::TESTS::Allocate(size); }

void operator delete(void* block) noexcept { KORVA::TESTS::Free(block); }

void operator delete(void* block, std::size_t) noexcept { KORVA::TESTS::Free(block); }

void operator delete(void* block, std::nothrow_t const&) noexcept { KORVA::TESTS::Free(block); }
