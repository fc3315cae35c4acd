// Dictionary values as people write and read them.
#pragma once

#include <tessio/ObjectModel/GUID.h>
#include <tessio/ObjectModel/Types.h>
#include <tessio/TessIO/IDictionary.h>

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace TOOL
{
/// A plain value of a dictionary.
struct Value
{
    /// int8 uint8 int16 uint16 int32 uint32 int64 uint64 float double guid bytes text, "none" for a value
    /// that never got one, "unknown" for a tag that nobody knows.
    std::string type;
    std::variant<std::monostate, KORVA::int64, KORVA::uint64, float, double, GUID, std::vector<unsigned char>,
                 std::u16string>
        content;
    /// As it stands in the file.
    KORVA::uint32 tag = 0;
    /// Of a number: the whole number and the bits of the floating-point number that the file keeps of it.
    KORVA::uint64 integer = 0;
    KORVA::uint64 floating = 0;
};

/// The pair of fields under which the library writes a number of the type, given one of them: the whole
/// number for whole types, the floating-point number for the others.
struct NumberFields
{
    KORVA::uint64 integer = 0;
    KORVA::uint64 floating = 0;
};
NumberFields FieldsOfWhole(std::string const& type, KORVA::uint64 integer);
NumberFields FieldsOfFloating(std::string const& type, double floating);

/// Whether the two fields of a number are what the library writes for it.
bool IsPlainNumber(Value const& value);

/// The content for a terminal: numbers, identifiers, bytes in hexadecimal, text quoted.
std::string Shown(Value const& value);

/// Puts `text`, read as `type`, under `key`. Numbers in any base (10, 0x1F, 0o17, 0b101, -3), floating-point
/// numbers in any form of the C language, identifiers in registry form, `bytes` in hexadecimal, `file` the
/// bytes of the file so named, `text`, `uri` a location, `relative` a file named from a directory
/// ("documents:notes/a.txt"), `dict` a new empty dictionary (no text). Ends the command when the text does
/// not fit the type.
void PutValue(KORVA::IDictionary& dictionary, unsigned int key, std::string const& type,
              std::string const& text);

/// Every name that `PutValue` takes.
std::vector<std::string> const& ValueTypes();

/// A whole number without a sign, in any base; nothing when the text is none of at most 64 bits.
std::optional<KORVA::uint64> NumberOf(std::string_view text);

/// A dictionary key, in any base.
unsigned int KeyOf(std::string const& text);
} // namespace TOOL
