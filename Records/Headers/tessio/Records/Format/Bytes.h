// Numbers as they lie in record files, in either byte order.
#pragma once

#include <tessio/ObjectModel/GUID.h>
#include <tessio/ObjectModel/Types.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/RecordFormat.h>

#include <array>
#include <cstring>
#include <span>
#include <vector>

namespace KORVA::RECORDS
{
using Order = IO::IDataProvider::Endian;
using Bytes = std::vector<unsigned char>;
using ByteView = std::span<unsigned char const>;

constexpr char const* OrderName(Order order)
{
    return order == IO::IDataProvider::kBigEndian ? "big-endian" : "little-endian";
}

/// The number of `sizeof(Number)` bytes at `from`.
template <class Number>
Number Load(unsigned char const* from, Order order)
{
    uint64 value = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
    {
        std::size_t const at = order == IO::IDataProvider::kBigEndian ? i : sizeof(Number) - 1 - i;
        value = value << 8 | from[at];
    }
    return static_cast<Number>(value);
}

template <class Number>
void Store(unsigned char* to, Number number, Order order)
{
    auto value = static_cast<uint64>(number);
    for (std::size_t i = 0; i < sizeof(Number); ++i, value >>= 8)
        to[order == IO::IDataProvider::kBigEndian ? sizeof(Number) - 1 - i : i] =
            static_cast<unsigned char>(value);
}

/// An identifier in stream order: three numbers, then eight bytes that are never turned round.
inline GUID LoadId(unsigned char const* from, Order order)
{
    GUID id{Load<uint32>(from, order),
            Load<std::uint16_t>(from + 4, order),
            Load<std::uint16_t>(from + 6, order),
            {}};
    std::memcpy(id.Data4, from + 8, sizeof id.Data4);
    return id;
}

inline std::array<unsigned char, 16> StoredId(GUID const& id, Order order)
{
    std::array<unsigned char, 16> bytes{};
    Store(bytes.data(), id.Data1, order);
    Store(bytes.data() + 4, id.Data2, order);
    Store(bytes.data() + 6, id.Data3, order);
    std::memcpy(bytes.data() + 8, id.Data4, sizeof id.Data4);
    return bytes;
}
} // namespace KORVA::RECORDS
