// What can still be made out in a damaged record file.
#pragma once

#include "Salvage/Skeleton.h"

#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace KORVA::RECORDS
{
/// Where records of known classes begin in a damaged file.
class Finds
{
public:
    /// Raises an error when it has to look at more records than `work` allows.
    Finds(ByteView content, Order order, Work const& work);
    Finds(Finds const&) = delete;
    Finds& operator=(Finds const&) = delete;

    /// For reading records with what is known of those in them.
    SkeletonOptions const& Options() const { return mOptions; }

    /// The end of the whole record that begins there; 0 when there is none. Records inside others do not
    /// count. One whose class id is damaged is whole all the same when enough of that is left and its content
    /// makes sense.
    KORVA::int64 WholeAt(KORVA::int64 offset) const
    {
        auto const found = mWhole.find(offset);
        return found == mWhole.end() ? 0 : found->second;
    }
    /// The id that a whole record should have whose own is damaged.
    std::optional<GUID> NameOf(KORVA::int64 offset) const;
    /// Counts a look at a place that could be a record. Raises an error beyond the limit.
    void Look(KORVA::int64 offset) const;
    /// Whether a class id is there that was a known one's, for the most part.
    bool IsLikeKnown(KORVA::int64 offset) const;
    /// Whether a known class's record begins there that is not whole.
    bool BrokenAt(KORVA::int64 offset) const { return mBroken.contains(offset); }
    bool AnyAt(KORVA::int64 offset) const { return WholeAt(offset) != 0 || BrokenAt(offset); }
    /// The beginning of the first whole record from there on; `size` when there is none.
    KORVA::int64 NextWhole(KORVA::int64 offset, KORVA::int64 size) const
    {
        auto const whole = mWhole.lower_bound(offset);
        return whole == mWhole.end() ? size : whole->first;
    }
    /// Whether a whole record lies on both sides of the offset.
    bool IsInside(KORVA::int64 offset) const
    {
        auto const after = mWhole.lower_bound(offset);
        return after != mWhole.begin() && std::prev(after)->second > offset;
    }
    /// The first of either kind from there on; `size` when there is none.
    KORVA::int64 Next(KORVA::int64 offset, KORVA::int64 size) const;
    std::map<KORVA::int64, KORVA::int64> const& Whole() const { return mWhole; }

private:
    std::optional<SoundRecord> SoundAs(KORVA::int64 offset, KnownClass const& known) const;
    bool Tiles() const;
    void FindSound();
    KORVA::int64 EndOfWhole(KORVA::int64 offset) const;
    bool IsCutInto(KORVA::int64 from, KORVA::int64 to) const;

    ByteView mContent;
    SkeletonOptions mOptions;
    /// The ids of known classes as they lie in the file.
    std::vector<std::array<unsigned char, 16>> mIds;
    /// Where records of known classes begin, the misnamed ones among them.
    std::vector<KORVA::int64> mKnown;
    SoundRecords mSound;
    MisnamedRecords mMisnamed;
    std::map<KORVA::int64, KORVA::int64> mMisnamedEnds;
    KORVA::int64 mCount = 0;
    bool mTiles = false;
    std::map<KORVA::int64, KORVA::int64> mWhole;
    std::set<KORVA::int64> mBroken;
};
} // namespace KORVA::RECORDS
