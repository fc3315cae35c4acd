// Copying one file to another.
#pragma once

#include "System/Replacement.h"

#include <cstdint>
#include <functional>
#include <string>

namespace KORVA::SYSTEM
{
/// Hears how many bytes of how many are copied; false stops the copy.
using CopyWatch = std::function<bool(std::uint64_t done, std::uint64_t total)>;

/// Copies content, permissions, access list and dates, replacing a file at `target` at once and whole.
/// `watch` may be empty. Errors of its own: `EINVAL` for a source that is no regular file, or is the target;
/// `ECANCELED` when stopped; `ENODATA` for a source that became shorter meanwhile.
Outcome CopyFile(std::string const& source, std::string const& target, CopyWatch const& watch,
                 NotKept& notKept);
} // namespace KORVA::SYSTEM
