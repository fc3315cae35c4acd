// How much of a file a command takes on.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <limits>

namespace TOOL
{
/// The bounds that a user set; beyond them the command ends.
struct Limits
{
    KORVA::int64 depth = std::numeric_limits<KORVA::int64>::max();
    KORVA::int64 count = std::numeric_limits<KORVA::int64>::max();
    KORVA::int64 bytes = std::numeric_limits<KORVA::int64>::max();
};
} // namespace TOOL
