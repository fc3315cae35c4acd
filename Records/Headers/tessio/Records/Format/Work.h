// How much an operation takes on, and who watches it.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <functional>
#include <limits>

namespace KORVA::RECORDS
{
/// Bounds that a caller sets; an operation that passes one fails with `ErrorCode::kBeyondLimit`.
struct Limits
{
    /// How many records may be nested in each other.
    int64 depth = std::numeric_limits<int64>::max();
    /// How many records and text entries may be looked at.
    int64 count = std::numeric_limits<int64>::max();
    /// How many bytes there may be.
    int64 bytes = std::numeric_limits<int64>::max();
};

/// Is told now and then, on the thread of the operation, how many of how many bytes are done; 0 of them where
/// the number is not known. Answers whether to go on: the operation fails with `ErrorCode::kCancelled`
/// otherwise.
using Progress = std::function<bool(int64 done, int64 total)>;

/// What long operations are given. May be empty.
struct Work
{
    Limits limits;
    Progress progress;
};
} // namespace KORVA::RECORDS
