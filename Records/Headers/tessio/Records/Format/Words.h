// Texts from files, fit to be shown, and back.
#pragma once

#include <tessio/CoreString/CoreString.h>

#include <optional>
#include <string>
#include <string_view>

namespace KORVA::RECORDS
{
/// Text that may come from a file, fit for a terminal: control characters as \n, \t or \u{...}. Malformed
/// text shows U+FFFD.
std::string Escaped(STRING::CoreString const& text);
std::string Escaped(std::string_view utf8);
/// One element for each character.
std::string EscapedWide(std::wstring_view text);

/// The same between double quotes, quotes and backslashes escaped, so that nothing is ambiguous.
std::string Quoted(STRING::CoreString const& text);
std::string Quoted(std::string_view utf8);

/// The text that `Quoted` showed, from behind its opening quote: moves `rest` behind the closing one. Null,
/// or why that can't be, with `text` and `rest` as far as it came.
char const* Unquote(std::string_view& rest, STRING::CoreString& text);

/// "1 byte", "7 bytes".
std::string ByteCount(int64 count);

/// How many blanks stand before a line for what is nested so deep. What is deeper than anybody reads stands
/// no further to the right.
int Indent(int depth);

/// A whole number without a sign, in any base (10, 0x1F, 0o17, 0b101); nothing when the text is none of at
/// most 64 bits.
std::optional<uint64> NumberOf(std::string_view text);
} // namespace KORVA::RECORDS
