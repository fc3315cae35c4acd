// The platform's text services.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace KORVA::PLATFORM
{
/// Canonical composition (Unicode Standard Annex #15, form C).
std::u16string ComposeCanonical(std::u16string_view text);
/// Canonical decomposition (Unicode Standard Annex #15, form D).
std::u16string DecomposeCanonical(std::u16string_view text);

/// UTF-8, or nothing when a surrogate stands alone.
std::optional<std::string> ToUTF8(std::u16string_view text);
/// Nothing when `text` is not well-formed.
std::optional<std::u16string> FromUTF8(std::string_view text);

/// Escapes every character that may not stand in a URL, `%` and `#` included, as `%XX` for each byte of its
/// UTF-8. Nothing when a surrogate stands alone.
std::optional<std::u16string> AddPercentEscapes(std::u16string_view text);
/// Replaces each `%XX` by the byte it stands for and takes the result as UTF-8. All or nothing: nothing when
/// a `%` lacks its two digits or the bytes are not well-formed. Three leniencies: a continuation byte that
/// continues nothing becomes U+FFFD (80 is refused all the same), a byte order mark at the start is dropped,
/// and a text with a lone surrogate ends before it (nothing, where it begins with one).
std::optional<std::u16string> ReplacePercentEscapes(std::u16string_view text);
/// Escapes a file path for use in a URL: `;` and `?` too.
std::optional<std::string> EscapeFilePath(std::u16string_view path);

/// The Mac OS Roman encoding. Characters outside it become `?`.
std::string ToMacRoman(std::u16string_view text);
std::u16string FromMacRoman(std::string_view text);
} // namespace KORVA::PLATFORM
