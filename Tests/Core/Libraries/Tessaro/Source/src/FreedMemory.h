// What is left in memory when a program gives it back.
#pragma once

#include <cstddef>
#include <string_view>

namespace KORVA::TESTS
{
/// While it lives, every block that `operator delete` takes is searched for the units of a text, as they lie
/// in memory. One at a time. The program that uses it replaces the operators (FreedMemory.cpp).
class FreedMemoryWatch
{
public:
    explicit FreedMemoryWatch(std::u16string_view text);
    FreedMemoryWatch(FreedMemoryWatch const&) = delete;
    FreedMemoryWatch& operator=(FreedMemoryWatch const&) = delete;
    ~FreedMemoryWatch();

    /// Blocks freed with the text in them.
    int Found() const;
};

/// While it lives one allocation of this thread fails, the one of that number, counted from 0. One at a time.
class RefusedMemory
{
public:
    explicit RefusedMemory(int which);
    RefusedMemory(RefusedMemory const&) = delete;
    RefusedMemory& operator=(RefusedMemory const&) = delete;
    ~RefusedMemory();

    /// How many more blocks were allocated on this thread than freed.
    int Held() const;
};

/// Whether the text's units lie among these.
bool Holds(char16_t const* units, std::size_t count, std::u16string_view text);
} // namespace KORVA::TESTS
