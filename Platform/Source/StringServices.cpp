#include "Platform/StringServices.h"

#include <unicode/normalizer2.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <limits>
#include <memory>

namespace KORVA::PLATFORM
{
namespace
{
/// What escaping leaves alone besides letters and digits.
constexpr std::string_view kKeptInURL = "!$&'()*+,-./:;=?@_~";
constexpr char16_t kByteOrderMark = 0xFEFF;
constexpr std::string_view kKeptInFilePath = "!$&'()*+,-./:=@_~";

std::u16string Normalize(std::u16string_view text, icu::Normalizer2 const* (*form)(UErrorCode&))
{
    UErrorCode status = U_ZERO_ERROR;
    icu::Normalizer2 const* const normalizer = form(status);
    if (U_FAILURE(status) || text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max()))
        return std::u16string(text);
    icu::UnicodeString const source(false, text.data(), static_cast<int32_t>(text.size()));
    icu::UnicodeString const result = normalizer->normalize(source, status);
    if (U_FAILURE(status))
        return std::u16string(text);
    return std::u16string(result.getBuffer(), static_cast<std::size_t>(result.length()));
}

bool IsKept(char c, std::string_view kept)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           (c != '\0' && kept.find(c) != std::string_view::npos);
}

std::optional<std::string> Escape(std::u16string_view text, std::string_view kept)
{
    std::optional<std::string> const utf8 = ToUTF8(text);
    if (!utf8)
        return std::nullopt;
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string result;
    for (char const c : *utf8)
    {
        if (IsKept(c, kept))
        {
            result += c;
            continue;
        }
        auto const byte = static_cast<unsigned char>(c);
        result += '%';
        result += kDigits[byte >> 4];
        result += kDigits[byte & 0xF];
    }
    return result;
}

int HexValue(char unit)
{
    if (unit >= '0' && unit <= '9')
        return unit - '0';
    if (unit >= 'A' && unit <= 'F')
        return unit - 'A' + 10;
    if (unit >= 'a' && unit <= 'f')
        return unit - 'a' + 10;
    return -1;
}

/// Where the first surrogate without its partner stands; npos when there is none.
std::size_t LoneSurrogate(std::u16string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (!U16_IS_SURROGATE(text[i]))
            continue;
        if (!U16_IS_LEAD(text[i]) || i + 1 == text.size() || !U16_IS_TRAIL(text[i + 1]))
            return i;
        ++i;
    }
    return std::u16string_view::npos;
}

/// UTF-8 as unescaping takes it: as strict as `FromUTF8`, but for the byte A9, which becomes U+FFFD where it
/// continues nothing. It is the one exception that was measured.
std::optional<std::u16string> DecodeUnescaped(std::string_view bytes)
{
    std::string repaired;
    for (std::size_t i = 0; i < bytes.size();)
    {
        auto const lead = static_cast<unsigned char>(bytes[i]);
        if (lead == 0xA9)
        {
            repaired += "\xEF\xBF\xBD";
            ++i;
            continue;
        }
        std::size_t const length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        repaired += bytes.substr(i, length);
        i += length;
    }
    return FromUTF8(repaired);
}

struct CloseConverter
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter MacRomanConverter()
{
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open("macintosh", &status));
    constexpr char kSubstitute[] = "?";
    if (converter)
        ucnv_setSubstChars(converter.get(), kSubstitute, 1, &status);
    return converter;
}
} // namespace

std::u16string ComposeCanonical(std::u16string_view text)
{
    return Normalize(text, &icu::Normalizer2::getNFCInstance);
}

std::u16string DecomposeCanonical(std::u16string_view text)
{
    return Normalize(text, &icu::Normalizer2::getNFDInstance);
}

std::optional<std::string> ToUTF8(std::u16string_view text)
{
    std::string result(text.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(result.data(), static_cast<int32_t>(result.size()), &length, text.data(),
                static_cast<int32_t>(text.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::optional<std::u16string> FromUTF8(std::string_view text)
{
    std::u16string result(text.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(result.data(), static_cast<int32_t>(result.size()), &length, text.data(),
                  static_cast<int32_t>(text.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::optional<std::u16string> AddPercentEscapes(std::u16string_view text)
{
    std::optional<std::string> const escaped = Escape(text, kKeptInURL);
    if (!escaped)
        return std::nullopt;
    return std::u16string(escaped->begin(), escaped->end());
}

std::optional<std::u16string> ReplacePercentEscapes(std::u16string_view text)
{
    std::u16string_view const whole = text.substr(0, LoneSurrogate(text));
    if (whole.empty() && !text.empty())
        return std::nullopt;
    std::optional<std::string> const escaped = ToUTF8(whole);
    if (!escaped)
        return std::nullopt;
    std::string bytes;
    for (std::size_t i = 0; i < escaped->size(); ++i)
    {
        if ((*escaped)[i] != '%')
        {
            bytes += (*escaped)[i];
            continue;
        }
        if (i + 2 >= escaped->size())
            return std::nullopt;
        int const high = HexValue((*escaped)[i + 1]);
        int const low = HexValue((*escaped)[i + 2]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high * 16 + low);
        i += 2;
    }
    std::optional<std::u16string> decoded = DecodeUnescaped(bytes);
    if (decoded && decoded->starts_with(kByteOrderMark))
        decoded->erase(0, 1);
    return decoded;
}

std::optional<std::string> EscapeFilePath(std::u16string_view path) { return Escape(path, kKeptInFilePath); }

std::string ToMacRoman(std::u16string_view text)
{
    Converter const converter = MacRomanConverter();
    if (!converter)
        return {};
    std::string result(text.size() + 1, '\0');
    UErrorCode status = U_ZERO_ERROR;
    int32_t const length =
        ucnv_fromUChars(converter.get(), result.data(), static_cast<int32_t>(result.size()), text.data(),
                        static_cast<int32_t>(text.size()), &status);
    result.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return result;
}

std::u16string FromMacRoman(std::string_view text)
{
    Converter const converter = MacRomanConverter();
    if (!converter)
        return {};
    std::u16string result(text.size() + 1, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    int32_t const length = ucnv_toUChars(converter.get(), result.data(), static_cast<int32_t>(result.size()),
                                         text.data(), static_cast<int32_t>(text.size()), &status);
    result.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return result;
}
} // namespace KORVA::PLATFORM
