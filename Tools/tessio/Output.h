// What commands print.
#pragma once

#include "Names.h"
#include <tessio/CoreString/CoreString.h>
#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Summary.h>

#include <functional>
#include <string>
#include <string_view>

namespace TOOL
{
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

/// The same for the pieces of a summary.
std::string Painted(Wording wording, std::string_view text);

/// The version of what JSON documents hold.
inline constexpr int kSchema = 1;

/// One JSON document, with the version of its schema in front and a line's end behind.
std::string JsonText(Json const& document);
void PrintJson(Json const& document);
/// Prints a document whose members `write` gives, behind the version of the schema.
void PrintJson(std::function<void(JsonPrinter&)> const& write);

/// Takes an argument as text; ends the command when it is not valid UTF-8.
KORVA::STRING::CoreString TextArgument(std::string const& argument, std::string const& what);
} // namespace TOOL
