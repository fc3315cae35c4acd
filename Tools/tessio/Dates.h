// Dates as people read them.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <string>

namespace TOOL
{
/// RFC 3339 in UTC with nanoseconds: 2026-11-20T18:32:00.000000000Z. `date` is nanoseconds since 1970.
std::string DateText(KORVA::uint64 date);

/// From RFC 3339 (UTC, or with an offset) or a number of nanoseconds. Ends the command at anything else.
KORVA::uint64 DateFromText(std::string const& text);

KORVA::uint64 Now();
} // namespace TOOL
