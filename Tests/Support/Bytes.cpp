#include "Support/Bytes.h"

#include <cctype>
#include <stdexcept>

namespace KORVA::TESTS
{
Bytes Hex(std::string_view text)
{
    std::string digits;
    for (char const c : text)
        if (!std::isspace(static_cast<unsigned char>(c)))
            digits += c;
    if (digits.size() % 2 != 0)
        throw std::invalid_argument("half a byte in \"" + std::string(text) + "\"");
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::string ToHex(Bytes const& bytes)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (unsigned char const byte : bytes)
    {
        if (!text.empty())
            text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}
} // namespace KORVA::TESTS
