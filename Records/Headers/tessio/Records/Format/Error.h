// Why an operation on records failed.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <string>

namespace KORVA::RECORDS
{
/// The kinds of failures that a program may want to tell apart.
enum class ErrorCode
{
    /// The bytes could not be read; `words` has the system's reason.
    kReadFailed,
    /// There is no record in the bytes, in either byte order.
    kNoRecords,
    /// Something that the operation needs whole is damaged.
    kDamaged,
    /// Nothing has that path.
    kNotFound,
    /// What was asked for can't be: an entry of a kind that its holder can't hold, a text that is no path.
    kImpossible,
    /// The result would be larger than readers believe.
    kTooLarge,
    /// A dump that can't be read back.
    kBadDump,
    /// A limit that the caller set was passed.
    kBeyondLimit,
    /// The caller wanted the operation to end.
    kCancelled
};

/// Where no place in the bytes is meant.
inline constexpr int64 kNoOffset = -1;

/// What failed, where and why.
struct Error
{
    ErrorCode code = ErrorCode::kReadFailed;
    /// In bytes from the start; `kNoOffset` where no place is to blame.
    int64 offset = kNoOffset;
    /// One line for people, in English, without the name of the file.
    std::string words;
};
} // namespace KORVA::RECORDS
