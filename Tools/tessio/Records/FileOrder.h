// Which byte order a file is in.
#pragma once

#include "Records/Bytes.h"

#include <optional>
#include <string>

namespace TOOL
{
/// The byte order in which `content` is a record file; nothing when it is none in either.
std::optional<Order> FindOrder(ByteView content);

/// The order of a file's first record or else of most records that can be made out in it. Ends the command
/// when there are none.
Order OrderOf(ByteView content, std::string const& location);
} // namespace TOOL
