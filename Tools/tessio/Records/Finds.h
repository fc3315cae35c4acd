// What can still be made out in a damaged record file.
#pragma once

#include "Records/Decoder.h"

#include <iterator>
#include <map>
#include <set>

namespace TOOL
{
/// Where records of known classes begin in a damaged file.
class Finds
{
public:
    Finds(ByteView content, Order order, Progress* progress);

    /// The end of the whole record that begins there; 0 when there is none. Records inside others do not
    /// count.
    KORVA::int64 WholeAt(KORVA::int64 offset) const
    {
        auto const found = mWhole.find(offset);
        return found == mWhole.end() ? 0 : found->second;
    }
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
    std::map<KORVA::int64, KORVA::int64> mWhole;
    std::set<KORVA::int64> mBroken;
};
} // namespace TOOL
