// The 16-byte identifier of classes and interfaces, and the order of every table keyed by it.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <functional>

/// A class or interface identifier: 16 bytes in host byte order.
struct GUID
{
    /// The groups of the registry text, the last two together in `Data4`.
    ///@{
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
    ///@}
};

static_assert(sizeof(GUID) == 16);

namespace KORVA
{
/// How identifiers are passed.
using REFIID = GUID const&;

/// The identifier as four 32-bit words read in host order. Comparison and ordering work on these words.
constexpr std::array<std::uint32_t, 4> GUIDWords(GUID const& id)
{
    return std::bit_cast<std::array<std::uint32_t, 4>>(id);
}
} // namespace KORVA

/// Whether all four words are equal.
constexpr bool operator==(GUID const& a, GUID const& b) { return KORVA::GUIDWords(a) == KORVA::GUIDWords(b); }

/// Orders identifiers by their four host-order words, the first unequal word deciding. On a little-endian
/// host this is neither the order of the bytes nor that of the registry text: `Data3` weighs more than
/// `Data2`, and `Data4[3]` more than `Data4[0]`. Records list aggregates in this order.
template <>
struct std::less<GUID>
{
    /// Whether `a` comes before `b`.
    constexpr bool operator()(GUID const& a, GUID const& b) const
    {
        return KORVA::GUIDWords(a) < KORVA::GUIDWords(b);
    }
};
