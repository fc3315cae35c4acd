// Plain values as record files hold them.
#pragma once

#include <tessio/ObjectModel/GUID.h>
#include <tessio/ObjectModel/Types.h>

#include <string>
#include <variant>
#include <vector>

namespace KORVA::RECORDS
{
/// A plain value of a dictionary.
struct Value
{
    /// int8 uint8 int16 uint16 int32 uint32 int64 uint64 float double guid bytes text, "none" for a value
    /// that never got one, "unknown" for a tag that nobody knows.
    std::string type;
    std::variant<std::monostate, int64, uint64, float, double, GUID, std::vector<unsigned char>,
                 std::u16string>
        content;
    /// As it stands in the file.
    uint32 tag = 0;
    /// Of a number: the whole number and the bits of the floating-point number that the file keeps of it.
    uint64 integer = 0;
    uint64 floating = 0;
};

/// The pair of fields under which the library writes a number of the type, given one of them: the whole
/// number for whole types, the floating-point number for the others.
struct NumberFields
{
    uint64 integer = 0;
    uint64 floating = 0;
};
NumberFields FieldsOfWhole(std::string const& type, uint64 integer);
NumberFields FieldsOfFloating(std::string const& type, double floating);

/// Whether the two fields of a number are what the library writes for it.
bool IsPlainNumber(Value const& value);

/// The content for a terminal: numbers, identifiers, bytes in hexadecimal, text quoted.
std::string Shown(Value const& value);
} // namespace KORVA::RECORDS
