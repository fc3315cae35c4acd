// The registry text form of identifiers: {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}.
#pragma once

#include <tessio/ObjectModel/GUID.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace KORVA
{
/// The registry form of an identifier: braces, upper-case hexadecimal digits.
inline std::string GUIDToText(GUID const& id)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "{";
    auto append = [&text](std::uint32_t value, int digits) {
        for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
            text += kDigits[(value >> shift) & 0xF];
    };
    append(id.Data1, 8);
    text += '-';
    append(id.Data2, 4);
    text += '-';
    append(id.Data3, 4);
    text += '-';
    for (int i = 0; i < 8; ++i)
    {
        if (i == 2)
            text += '-';
        append(id.Data4[i], 2);
    }
    return text + '}';
}

/// Reads the registry form, in either case, with or without the braces. Nothing for any other text.
inline std::optional<GUID> GUIDFromText(std::string_view text)
{
    if (text.size() == 38 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, 36);
    if (text.size() != 36)
        return std::nullopt;
    std::uint8_t bytes[16] = {};
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        char const c = text[i];
        if (i == 8 || i == 13 || i == 18 || i == 23)
        {
            if (c != '-')
                return std::nullopt;
            continue;
        }
        int value = 0;
        if (c >= '0' && c <= '9')
            value = c - '0';
        else if (c >= 'a' && c <= 'f')
            value = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F')
            value = c - 'A' + 10;
        else
            return std::nullopt;
        bytes[digits / 2] = static_cast<std::uint8_t>((bytes[digits / 2] << 4) | value);
        ++digits;
    }
    auto word = [&bytes](std::size_t at) {
        return static_cast<std::uint16_t>((bytes[at] << 8) | bytes[at + 1]);
    };
    GUID id{(static_cast<std::uint32_t>(word(0)) << 16) | word(2), word(4), word(6), {}};
    for (std::size_t i = 0; i < 8; ++i)
        id.Data4[i] = bytes[8 + i];
    return id;
}
} // namespace KORVA
