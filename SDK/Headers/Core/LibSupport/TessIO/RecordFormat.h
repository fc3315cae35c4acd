// The numbers of the byte format: what stands in every file of records.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <cstddef>

namespace KORVA::IO
{
/// Sizes in bytes of what a record is made of (docs: Format). Sizes of records have the type of positions.
///
///     class id | length | body ... | count | interface id | record | interface id | record ...
///     \---- head -----/            \------ aggregates ----------/
///@{
inline constexpr int64 kClassIdSize = 16;
inline constexpr int64 kLengthSize = 8;
/// What stands before a body, and is not in the length.
inline constexpr int64 kRecordHeadSize = kClassIdSize + kLengthSize;
inline constexpr int64 kAggregateCountSize = 4;
/// The interface id before the record of each aggregate.
inline constexpr int64 kInterfaceIdSize = 16;
/// The number of entries at the beginning of a dictionary's body, of either kind.
inline constexpr int64 kEntryCountSize = 4;
/// The number before the record of each entry of a dictionary.
inline constexpr int64 kEntryKeySize = 4;
/// The count of bytes before the units of a string.
inline constexpr int64 kStringCountSize = 4;
///@}

/// The greatest length of body and aggregates together, in bytes: one more, or less than 0, is not believed.
inline constexpr int64 kGreatestLength = 2147483647;

/// Whether a reader believes the length of a record. Whether there is as much is another question.
constexpr bool IsBelievedLength(int64 length) { return length >= 0 && length <= kGreatestLength; }

/// The most units of a string: its bytes are counted in 31 bits.
inline constexpr std::size_t kMostStringUnits = 1073741823;

/// How many records may be open inside each other. Of one that is deeper only an empty head is written, and
/// its body is not read.
inline constexpr int kMostNestedRecords = 1000;

/// The type of a dictionary's value: four characters, the first one the most significant byte. The 8-bit tags
/// end in "VL" and the wider ones in "V" after the width; both are in files and stay.
enum class ValueTag : uint32
{
    kNone = 0x554E4E54,   ///< UNNT
    kInt8 = 0x5338564C,   ///< S8VL
    kUInt8 = 0x5538564C,  ///< U8VL
    kInt16 = 0x53313656,  ///< S16V
    kUInt16 = 0x55313656, ///< U16V
    kInt32 = 0x53333256,  ///< S32V
    kUInt32 = 0x55333256, ///< U32V
    kInt64 = 0x53363456,  ///< S64V
    kUInt64 = 0x55363456, ///< U64V
    kFloat = 0x464C3332,  ///< FL32
    kDouble = 0x464C3634, ///< FL64
    kGUID = 0x47554944,   ///< GUID
    kBytes = 0x43484152,  ///< CHAR
    kUnits = 0x554E4943   ///< UNIC
};

/// Whether a value of that tag holds a number: an integer and a double follow the tag then.
constexpr bool IsNumber(ValueTag tag)
{
    switch (tag)
    {
    case ValueTag::kInt8:
    case ValueTag::kUInt8:
    case ValueTag::kInt16:
    case ValueTag::kUInt16:
    case ValueTag::kInt32:
    case ValueTag::kUInt32:
    case ValueTag::kInt64:
    case ValueTag::kUInt64:
    case ValueTag::kFloat:
    case ValueTag::kDouble:
        return true;
    default:
        return false;
    }
}

/// Whether a value of that tag holds a buffer whose length stands behind the tag.
constexpr bool HasLength(ValueTag tag) { return tag == ValueTag::kBytes || tag == ValueTag::kUnits; }
} // namespace KORVA::IO
