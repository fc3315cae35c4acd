// The typed values that plug-ins' classes read of their bodies.
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Reader.h>

#include <fmt/format.h>

#include <algorithm>
#include <bit>

namespace KORVA::RECORDS
{
namespace
{

constexpr int64 kShownBytes = 32;

std::string HexOf(ByteView bytes) { return fmt::format("{:02x}", fmt::join(bytes, " ")); }
} // namespace

STRING::CoreString TextOfPart(ByteView bytes, Part const& part, Order order)
{
    STRING::CoreString text;
    for (int64 at = 4; at + 1 < part.length; at += 2)
        text.push_back(Load<char16_t>(bytes.data() + at, order));
    return text;
}

std::string ShownPart(ByteView bytes, Part const& part, Order order)
{
    unsigned char const* const from = bytes.data();
    if (part.type == "bool")
        return *from != 0 ? "true" : "false";
    if (part.type == "int8")
        return fmt::format("{}", static_cast<int>(Load<signed char>(from, order)));
    if (part.type == "uint8")
        return fmt::format("{}", static_cast<unsigned>(*from));
    if (part.type == "int16")
        return fmt::format("{}", Load<short>(from, order));
    if (part.type == "uint16")
        return fmt::format("{}", Load<unsigned short>(from, order));
    if (part.type == "int32")
        return fmt::format("{}", Load<int32>(from, order));
    if (part.type == "uint32")
        return fmt::format("{}", Load<uint32>(from, order));
    if (part.type == "int64")
        return fmt::format("{}", Load<int64>(from, order));
    if (part.type == "uint64")
        return fmt::format("{}", Load<uint64>(from, order));
    if (part.type == "float")
        return fmt::format("{}", std::bit_cast<float>(Load<uint32>(from, order)));
    if (part.type == "double")
        return fmt::format("{}", std::bit_cast<double>(Load<uint64>(from, order)));
    if (part.type == "guid")
        return GUIDToText(LoadId(from, order));
    if (part.type == "string")
        return Quoted(TextOfPart(bytes, part, order));
    int64 const shown = std::min(part.length, kShownBytes);
    return HexOf({from, static_cast<std::size_t>(shown)}) + (shown < part.length ? " ..." : "");
}
} // namespace KORVA::RECORDS
