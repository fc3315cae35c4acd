// Record files made to cost a reader far more than their size.
#pragma once

#include "Support/Bytes.h"

#include <cstddef>
#include <vector>

namespace KORVA::TESTS
{
/// One way of doing so.
struct HostileKind
{
    /// For tests' names: letters and digits.
    char const* name;
    /// Such a file, little-endian, of at most `size` bytes and less by no more than 100.
    Bytes (*make)(std::size_t size);
};

/// All of them. Every kind can be made in 4,096 bytes and more, but the nests, which take 64 KiB.
std::vector<HostileKind> const& HostileKinds();

/// The kind of that name; throws when there is none.
HostileKind const& HostileKindNamed(char const* name);
} // namespace KORVA::TESTS
