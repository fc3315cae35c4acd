// The dates of files.
#pragma once

#include "System/ErrorNumber.h"

#include <cstdint>
#include <string>

namespace KORVA::SYSTEM
{
/// Gives `to` the dates of access and modification of `from`.
ErrorNumber CopyDates(int from, int to);

/// Sets the date of modification, in nanoseconds since 1970-01-01T00:00:00Z.
///@{
ErrorNumber SetModified(int to, std::uint64_t date);
ErrorNumber SetModified(std::string const& path, std::uint64_t date);
///@}
} // namespace KORVA::SYSTEM
