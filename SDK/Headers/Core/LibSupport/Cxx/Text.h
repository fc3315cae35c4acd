// Texts as callers have them, and the UTF-16 strings of the interfaces.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/Cxx/Result.h>

#include <concepts>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <type_traits>

namespace KORVA::CXX
{
/// Text in UTF-16: `u"…"`, `std::u16string`, `std::u16string_view`, `STRING::CoreString`.
template <class T>
concept UTF16Text = !std::is_null_pointer_v<std::remove_cvref_t<T>> &&
                    (std::convertible_to<T const&, std::u16string_view> ||
                     std::same_as<std::remove_cvref_t<T>, STRING::CoreString>);

/// Text in UTF-8: `"…"`, `u8"…"`, `std::string` and their views. A path is no text: it goes where a location
/// is asked for.
template <class T>
concept UTF8Text =
    !std::is_null_pointer_v<std::remove_cvref_t<T>> && !UTF16Text<T> &&
    !std::same_as<std::remove_cvref_t<T>, std::filesystem::path> &&
    (std::convertible_to<T const&, std::string_view> || std::convertible_to<T const&, std::u8string_view>);

/// Either. A literal is taken whole up to its terminating null; a pointer must not be null.
template <class T>
concept Text = UTF16Text<T> || UTF8Text<T>;

/// The text as the interfaces take it. `kBadText` for malformed UTF-8; UTF-16 is kept as it is.
template <Text T>
Result<STRING::CoreString> ToCoreString(T const& text)
{
    if constexpr (std::same_as<std::remove_cvref_t<T>, STRING::CoreString>)
        return text;
    else if constexpr (UTF16Text<T>)
    {
        std::u16string_view const units = text;
        return STRING::CoreString(units.data(), units.size());
    }
    else
    {
        std::string_view bytes;
        if constexpr (std::convertible_to<T const&, std::string_view>)
            bytes = text;
        else
        {
            std::u8string_view const view = text;
            bytes = std::string_view(reinterpret_cast<char const*>(view.data()), view.size());
        }
        if (std::optional<STRING::CoreString> converted = STRING::CoreString::FromUTF8(bytes))
            return *std::move(converted);
        return Error(kBadText, "take", "the text " + Quoted(bytes));
    }
}

/// The text in UTF-8. `kBadText` where a surrogate stands alone, which UTF-8 can't say.
inline Result<std::string> ToUTF8(STRING::CoreString const& text)
{
    if (!text.IsWellFormed())
        return Error(kBadText, "convert", "the text " + Quoted(text.ToUTF8()) + " to UTF-8");
    return text.ToUTF8();
}

/// The same of a view.
inline Result<std::string> ToUTF8(std::u16string_view text)
{
    return ToUTF8(STRING::CoreString(text.data(), text.size()));
}
} // namespace KORVA::CXX
