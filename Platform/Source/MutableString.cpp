#include "Platform/MutableString.h"

#include "Platform/StringServices.h"

#include <algorithm>

namespace KORVA::PLATFORM
{
void MutableString::AppendMacRoman(char const* text)
{
    if (text)
        mUnits += FromMacRoman(text);
}

void MutableString::AppendCharacters(char16_t const* units, std::size_t length)
{
    if (units)
        mUnits.append(units, length);
}

void MutableString::GetCharacters(char16_t* units) const { std::ranges::copy(mUnits, units); }

bool MutableString::GetMacRoman(char* buffer, std::size_t size) const
{
    if (size == 0)
        return false;
    std::string const text = ToMacRoman(mUnits);
    std::size_t const count = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), count, buffer);
    buffer[count] = '\0';
    return count == text.size();
}
} // namespace KORVA::PLATFORM
