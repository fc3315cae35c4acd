// What commands print.
#pragma once

#include <tessio/CoreString/CoreString.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace TOOL
{
using Json = nlohmann::ordered_json;

/// Standard output, as it is. Ends the command when it can't be written.
void Print(std::string_view text);

/// What a colour stands for. It never says anything that the text doesn't.
enum class Style
{
    kPlain,
    /// Offsets, rulers, what is repeated.
    kDim,
    kName,
    kKey,
    kNumber,
    kText,
    kAdded,
    kRemoved,
    kChanged,
    kDamage,
    kWarning
};

/// "auto", "always" or "never". Automatic is a terminal that can show colours, unless NO_COLOR is set.
void ChooseColour(std::string const& when);

/// The text in its colour, or as it is.
std::string Styled(Style style, std::string_view text);

/// The version of what JSON documents hold.
inline constexpr int kSchema = 1;

/// One JSON document, with the version of its schema in front and a line's end behind.
std::string JsonText(Json const& document);
void PrintJson(Json const& document);

/// Text that may come from a file, fit for a terminal: control characters as \n, \t or \u{...}. Malformed
/// text shows U+FFFD.
std::string Escaped(KORVA::STRING::CoreString const& text);
std::string Escaped(std::string_view utf8);
/// One element for each character.
std::string EscapedWide(std::wstring_view text);

/// The same between double quotes, quotes and backslashes escaped, so that nothing is ambiguous.
std::string Quoted(KORVA::STRING::CoreString const& text);
std::string Quoted(std::string_view utf8);

/// The text that `Quoted` showed, from behind its opening quote: moves `rest` behind the closing one. Null,
/// or why that can't be, with `text` and `rest` as far as it came.
char const* Unquote(std::string_view& rest, KORVA::STRING::CoreString& text);

/// How many blanks stand before a line for what is nested so deep. What is deeper than anybody reads stands
/// no further to the right.
int Indent(int depth);

/// "1 byte", "7 bytes".
std::string ByteCount(KORVA::int64 count);

/// Takes an argument as text; ends the command when it is not valid UTF-8.
KORVA::STRING::CoreString TextArgument(std::string const& argument, std::string const& what);
} // namespace TOOL
