#include <tessio/Records/Format/Value.h>

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <limits>

namespace KORVA::RECORDS
{
using STRING::CoreString;

namespace
{
struct Show
{
    std::string operator()(std::monostate) const { return ""; }
    std::string operator()(int64 value) const { return fmt::format("{}", value); }
    std::string operator()(uint64 value) const { return fmt::format("{}", value); }
    std::string operator()(float value) const { return fmt::format("{}", value); }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(GUID const& value) const { return GUIDToText(value); }
    std::string operator()(std::u16string const& value) const { return Quoted(CoreString(value)); }
    std::string operator()(std::vector<unsigned char> const& value) const
    {
        return fmt::format("{:02x}", fmt::join(value, " "));
    }
};
} // namespace

NumberFields FieldsOfWhole(std::string const& type, uint64 integer)
{
    bool const isUnsigned = type.starts_with('u');
    auto const signedValue = static_cast<int64>(integer);
    uint64 narrow = integer;
    if (type == "int8")
        narrow = static_cast<uint64>(static_cast<int64>(static_cast<signed char>(signedValue)));
    else if (type == "int16")
        narrow = static_cast<uint64>(static_cast<int64>(static_cast<short>(signedValue)));
    else if (type == "int32")
        narrow = static_cast<uint64>(static_cast<int64>(static_cast<int32>(signedValue)));
    else if (type == "uint8")
        narrow &= 0xFF;
    else if (type == "uint16")
        narrow &= 0xFFFF;
    else if (type == "uint32")
        narrow &= 0xFFFFFFFF;
    double const floating =
        isUnsigned ? static_cast<double>(narrow) : static_cast<double>(static_cast<int64>(narrow));
    return {narrow, std::bit_cast<uint64>(floating)};
}

NumberFields FieldsOfFloating(std::string const& type, double floating)
{
    constexpr double kTopBit = 9223372036854775808.0;
    constexpr uint64 kOutOfRange = 0x8000000000000000ULL;
    if (type == "float")
        floating = static_cast<double>(static_cast<float>(floating));
    uint64 integer = kOutOfRange;
    if (floating >= kTopBit && floating < 2 * kTopBit)
        integer = static_cast<uint64>(static_cast<int64>(floating - kTopBit)) ^ kOutOfRange;
    else if (floating >= -kTopBit && floating < kTopBit)
        integer = static_cast<uint64>(static_cast<int64>(floating));
    return {integer, std::bit_cast<uint64>(floating)};
}

bool IsPlainNumber(Value const& value)
{
    bool const isFloating = value.type == "float" || value.type == "double";
    auto const floating = std::bit_cast<double>(value.floating);
    // Narrowing to float is defined only for what a float can come near.
    if (value.type == "float" && std::isfinite(floating) &&
        std::abs(floating) > static_cast<double>(std::numeric_limits<float>::max()))
        return false;
    NumberFields const fields =
        isFloating ? FieldsOfFloating(value.type, floating) : FieldsOfWhole(value.type, value.integer);
    return fields.integer == value.integer && fields.floating == value.floating;
}

std::string Shown(Value const& value) { return std::visit(Show(), value.content); }

} // namespace KORVA::RECORDS
