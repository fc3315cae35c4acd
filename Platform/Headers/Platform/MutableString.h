// The platform's growing text.
#pragma once

#include <cstddef>
#include <string>

namespace KORVA::PLATFORM
{
/// UTF-16 units; lengths count them. One thread at a time.
class MutableString
{
public:
    /// Null is ignored, here and below.
    void AppendMacRoman(char const* text);
    void AppendCharacters(char16_t const* units, std::size_t length);

    std::size_t Length() const { return mUnits.size(); }
    /// Copies all units, and no terminator, to `units`.
    void GetCharacters(char16_t* units) const;
    /// Copies the text and a terminator to `buffer` of `size` bytes, `?` for a character outside Mac Roman.
    /// False, with what fits, for a text that takes more.
    bool GetMacRoman(char* buffer, std::size_t size) const;

private:
    std::u16string mUnits;
};
} // namespace KORVA::PLATFORM
