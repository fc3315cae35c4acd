// What can be kept of a damaged record file.
#pragma once

#include <tessio/Records/Tree/Place.h>
#include <tessio/Records/Tree/Reader.h>

#include <string>
#include <vector>

namespace KORVA::RECORDS
{
/// What became of a stretch of the damaged file.
struct Fate
{
    enum class Type
    {
        /// A whole record, byte for byte.
        kKept,
        /// Whole but for lengths or counts, which are put right.
        kRepaired,
        /// A dictionary of which something is missing; what is left of it is kept.
        kPartial,
        /// Of a class that nobody knows, kept because its length leads exactly to what comes next.
        kOpaque,
        /// Not in the result.
        kLost
    };

    Type type = Type::kLost;
    int64 offset = 0;
    int64 length = 0;
    /// Where it is in the result.
    Place path;
    std::string words;
};

char const* FateName(Fate::Type type);

struct Salvaged
{
    Bytes content;
    /// Every byte of the damaged file once, in its order.
    std::vector<Fate> fates;
};

/// Makes a sound record file of everything that is whole: reading the result finds no damage, and salvaging
/// it again changes nothing. What can't be made sound is left out; the result is empty when nothing is whole.
/// A record of a known class with none of its bytes damaged is always kept: under its key where the
/// dictionary around it can still be followed, else at the top. What damage has made the body of a record of
/// some unknown class, to all appearances, is kept as that. Fails when it has to look at more records than
/// `work` allows.
Result<Salvaged> Salvage(ByteView content, Order order, Work const& work = {});
} // namespace KORVA::RECORDS
