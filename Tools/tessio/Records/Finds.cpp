#include "Records/Finds.h"

#include <algorithm>
#include <array>

namespace TOOL
{
using namespace KORVA;

namespace
{
/// Looks for records of known classes wherever their class ids stand.
class Search
{
public:
    Search(ByteView content, Order order) : mContent(content)
    {
        mOptions.order = order;
        for (KnownClass const& known : KnownClasses())
            mIds.push_back(StoredId(known.id, order));
    }

    bool IsKnownAt(int64 offset) const
    {
        unsigned char const* const from = mContent.data() + offset;
        return std::ranges::any_of(mIds,
                                   [from](auto const& id) { return std::equal(id.begin(), id.end(), from); });
    }

    /// The end of a whole record; 0 when it is not whole.
    int64 EndOfWhole(int64 offset) const
    {
        auto const size = static_cast<int64>(mContent.size());
        // Most that are broken say so with their length; what is in them need not be read for that.
        if (auto const length = Load<int64>(mContent.data() + offset + 16, mOptions.order);
            length < 0 || length > size - offset - kHeader)
            return 0;
        Node const node = DecodeRecord(mContent, offset, size, mOptions);
        // A length of 0 before what reads as the record's content is a length that was lost.
        bool const isWhole =
            !IsDamaged(node) && (node.declared != 0 || !DecodeByContent(mContent, offset, size, mOptions));
        return isWhole ? node.End() : 0;
    }

    /// Whether a whole record begins between the two and ends behind them: then the bytes between are no
    /// record, but a text or buffer of it has lost its end and goes on over what came next.
    bool IsCutInto(int64 from, int64 to) const
    {
        for (int64 at = from + kHeader; at < to && at + kHeader <= static_cast<int64>(mContent.size()); ++at)
            if (IsKnownAt(at) && Load<int64>(mContent.data() + at + 16, mOptions.order) > to - at - kHeader &&
                EndOfWhole(at) > to)
                return true;
        return false;
    }

private:
    ByteView mContent;
    DecodeOptions mOptions;
    std::vector<std::array<unsigned char, 16>> mIds;
};
} // namespace

Finds::Finds(ByteView content, Order order, Progress* progress)
{
    Search const search(content, order);
    auto const size = static_cast<int64>(content.size());
    for (int64 at = 0; at + kHeader <= size;)
    {
        if (!search.IsKnownAt(at))
        {
            ++at;
            continue;
        }
        if (progress)
            progress->At(at);
        int64 const end = search.EndOfWhole(at);
        bool const isWhole = end != 0 && !search.IsCutInto(at, end);
        if (isWhole)
            mWhole[at] = end;
        else
            mBroken.insert(at);
        at = isWhole ? end : at + 1;
    }
}

int64 Finds::Next(int64 offset, int64 size) const
{
    auto const whole = mWhole.lower_bound(offset);
    auto const broken = mBroken.lower_bound(offset);
    return std::min(whole == mWhole.end() ? size : whole->first, broken == mBroken.end() ? size : *broken);
}
} // namespace TOOL
