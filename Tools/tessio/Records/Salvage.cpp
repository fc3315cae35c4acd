#include "Records/Salvage.h"

#include "Records/RecordWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>

namespace TOOL
{
namespace
{
using namespace KORVA;

/// Where records of known classes begin in a damaged file.
class Finds
{
public:
    Finds(ByteView content, Order order, Progress* progress);

    /// The end of the whole record that begins there; 0 when there is none. Records inside others do not
    /// count.
    int64 WholeAt(int64 offset) const
    {
        auto const found = mWhole.find(offset);
        return found == mWhole.end() ? 0 : found->second;
    }
    /// Whether a known class's record begins there that is not whole.
    bool BrokenAt(int64 offset) const { return mBroken.contains(offset); }
    bool AnyAt(int64 offset) const { return WholeAt(offset) != 0 || BrokenAt(offset); }
    /// The beginning of the first whole record from there on; `size` when there is none.
    int64 NextWhole(int64 offset, int64 size) const
    {
        auto const whole = mWhole.lower_bound(offset);
        return whole == mWhole.end() ? size : whole->first;
    }
    /// Whether a whole record lies on both sides of the offset.
    bool IsInside(int64 offset) const
    {
        auto const after = mWhole.lower_bound(offset);
        return after != mWhole.begin() && std::prev(after)->second > offset;
    }
    /// The first of either kind from there on; `size` when there is none.
    int64 Next(int64 offset, int64 size) const;
    std::map<int64, int64> const& Whole() const { return mWhole; }

private:
    std::map<int64, int64> mWhole;
    std::set<int64> mBroken;
};

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

/// Class ids made as RFC 9562 has it carry their variant and version; few other bytes look so.
bool LooksLikeId(GUID const& id)
{
    int const version = id.Data3 >> 12;
    return (id.Data4[0] & 0xC0) == 0x80 && version >= 1 && version <= 8;
}

class Salvager
{
public:
    Salvager(ByteView content, Order order, Progress* progress)
        : mContent(content), mOrder(order), mSize(static_cast<int64>(content.size())),
          mFinds(content, order, progress), mOut(order)
    {
        mOptions.order = order;
    }

    Salvaged Run();

private:
    // What the bytes say.
    template <class Number>
    Number At(int64 offset) const
    {
        return Load<Number>(mContent.data() + offset, mOrder);
    }
    /// The end of a record by its length; nothing when that can't be right.
    std::optional<int64> EndByLength(int64 offset, int64 limit) const;
    std::optional<int64> EndOfUnknown(int64 offset, int64 limit) const;
    bool LeadsOn(int64 offset) const;
    bool IsBoundary(int64 offset, int64 limit, int depth) const;
    std::optional<int64> EndOfAggregates(int64 offset, int64 limit) const;

    // What becomes of them.
    void Keep(int64 from, int64 to, Fate::Type type, std::string path, std::string words = {});
    void Copy(int64 from, int64 to)
    {
        mOut.Put(mContent.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
    }
    std::string TopPath() { return "/" + std::to_string(mTop++); }
    void Unknown(int64 from, int64 to);
    std::optional<GUID> LostClass(int64 from, int64 to) const;
    void KeepUnder(GUID const& classId, int64 from, int64 to, std::string path);
    int64 Broken(int64 offset, int64 limit, int depth, std::string const& path);
    int64 Leaf(int64 offset, int64 limit, int depth, std::string const& path);
    int64 Strings(int64 offset, int64 limit, std::string const& path);
    int64 Dictionary(int64 offset, int64 limit, int depth, std::string const& path);
    struct Progress;
    bool Entry(Progress& progress);
    bool Ends(Progress const& progress) const;
    bool FindNextEntry(Progress& progress);
    bool Reaches(int64 entry, Progress& progress) const;
    int64 Aggregates(Progress& progress);
    void KeepTheRest();

    ByteView mContent;
    Order mOrder;
    int64 mSize;
    DecodeOptions mOptions;
    Finds mFinds;
    RecordWriter mOut;
    std::vector<Fate> mFates;
    int64 mTop = 0;
};

void Salvager::Keep(int64 from, int64 to, Fate::Type type, std::string path, std::string words)
{
    if (to > from)
        mFates.push_back({type, from, to - from, std::move(path), std::move(words)});
}

std::optional<int64> Salvager::EndByLength(int64 offset, int64 limit) const
{
    if (limit - offset < kHeader)
        return std::nullopt;
    auto const length = At<int64>(offset + 16);
    if (length < 0 || length > kLargestLength || length > limit - offset - kHeader)
        return std::nullopt;
    return offset + kHeader + length;
}

/// Every record but an empty one has at least the count of its aggregates.
std::optional<int64> Salvager::EndOfUnknown(int64 offset, int64 limit) const
{
    auto const end = EndByLength(offset, limit);
    bool const fits = end && *end - offset >= kHeader + 4 && !mFinds.AnyAt(offset) && !mFinds.IsInside(*end);
    return fits ? end : std::nullopt;
}

/// Whether records of unknown classes lead from there exactly to one of a known class, or to the end of the
/// file.
bool Salvager::LeadsOn(int64 offset) const
{
    while (offset != mSize && !mFinds.AnyAt(offset))
    {
        auto const end = EndOfUnknown(offset, mSize);
        if (!end)
            return false;
        offset = *end;
    }
    return true;
}

/// Whether a record may end there: something else begins behind it, as its depth has it.
bool Salvager::IsBoundary(int64 offset, int64 limit, int depth) const
{
    for (; depth > 0; --depth)
    {
        // Another entry, or the end of the dictionary around.
        if (offset + 4 <= limit && mFinds.AnyAt(offset + 4))
            return true;
        if (auto const end = EndOfUnknown(offset + 4, limit); end && IsBoundary(*end, limit, depth))
            return true;
        if (offset + 4 > limit || At<uint32>(offset) != 0)
            return false;
        offset += 4;
        if (offset == limit)
            return true;
    }
    return LeadsOn(offset);
}

void Salvager::Unknown(int64 from, int64 to)
{
    // From the back: where records begin that lead exactly to `to`.
    std::set<int64> leads{to};
    int64 first = to;
    for (int64 at = to - kHeader - 4; at >= from; --at)
    {
        auto const end = EndOfUnknown(at, to);
        if (end && leads.contains(*end) && (at == from || LooksLikeId(LoadId(mContent.data() + at, mOrder))))
        {
            leads.insert(at);
            first = at;
        }
    }
    // From the front, where a record ended: their lengths lead somewhere, if not to what comes next.
    int64 at = from;
    for (auto end = EndOfUnknown(at, first); at < first && end; end = EndOfUnknown(at, first))
    {
        if (*end != first && !EndOfUnknown(*end, first) && !LooksLikeId(LoadId(mContent.data() + at, mOrder)))
            break;
        Keep(at, *end, Fate::Type::kOpaque, TopPath(), "of an unknown class, by its own length");
        Copy(at, *end);
        at = *end;
    }
    for (at = first; at < to;)
    {
        int64 const end = *EndOfUnknown(at, to);
        Keep(at, end, Fate::Type::kOpaque, TopPath(), "of an unknown class");
        Copy(at, end);
        at = end;
    }
}

/// The class of a whole record whose class id is damaged in a byte or two: the known one that is so near and
/// makes sense of the content.
std::optional<GUID> Salvager::LostClass(int64 from, int64 to) const
{
    constexpr int kFewest = 14;
    for (KnownClass const& known : KnownClasses())
    {
        auto const id = StoredId(known.id, mOrder);
        int same = 0;
        for (std::size_t i = 0; i < id.size(); ++i)
            same += mContent[static_cast<std::size_t>(from) + i] == id[i] ? 1 : 0;
        if (same < kFewest)
            continue;
        Bytes record(mContent.begin() + from, mContent.begin() + to);
        std::copy(id.begin(), id.end(), record.begin());
        if (!IsDamaged(DecodeRecord(record, 0, to - from, mOptions)))
            return known.id;
    }
    return std::nullopt;
}

void Salvager::KeepUnder(GUID const& classId, int64 from, int64 to, std::string path)
{
    Keep(from, to, Fate::Type::kRepaired, std::move(path), "its class id was damaged");
    mOut.Put(classId);
    Copy(from + 16, to);
}

int64 Salvager::Broken(int64 offset, int64 limit, int depth, std::string const& path)
{
    auto const byContent = DecodeByContent(mContent, offset, limit, mOptions);
    // A text or buffer with a wrong length may reach over what comes next.
    bool const isSound = byContent && (byContent->kind == Kind::kDictionary ||
                                       mFinds.NextWhole(offset, limit) >= byContent->End());
    if (isSound && IsBoundary(byContent->End(), limit, depth))
    {
        int64 const end = byContent->End();
        Keep(offset, end, Fate::Type::kRepaired, path,
             fmt::format("its length was {}, it is {}", At<int64>(offset + 16), byContent->length - kHeader));
        Copy(offset, offset + 16);
        mOut.Put(byContent->length - kHeader);
        Copy(offset + kHeader, end);
        return end;
    }
    KnownClass const* const known = FindClass(LoadId(mContent.data() + offset, mOrder));
    if (known->kind == Kind::kDictionary && depth < kDeepest)
        return Dictionary(offset, limit, depth, path);
    if (known->kind == Kind::kStrings)
        return Strings(offset, limit, path);
    return Leaf(offset, limit, depth, path);
}

/// A record that holds no others, and makes no sense. As long as its length does, its bytes are kept.
int64 Salvager::Leaf(int64 offset, int64 limit, int depth, std::string const& path)
{
    auto const end = EndByLength(offset, limit);
    if (!end || !IsBoundary(*end, limit, depth) || mFinds.NextWhole(offset, limit) < *end)
        return 0;
    Keep(offset, *end, Fate::Type::kPartial, path, "its length is right, its content is not");
    Copy(offset, *end);
    return *end;
}

int64 Salvager::Strings(int64 offset, int64 limit, std::string const& path)
{
    if (limit - offset < kHeader + 4)
        return 0;
    auto const end = EndByLength(offset, limit);
    auto const count = At<uint32>(offset + kHeader);
    int64 at = offset + kHeader + 4;
    int64 const stop = std::min(end ? *end : limit, mFinds.NextWhole(offset, limit));
    auto const textEnd = [&](int64 from) -> int64 {
        if (stop - from < 4)
            return -1;
        auto const length = At<int32>(from);
        return length < 0 || length % 2 != 0 || length > stop - from - 4 ? -1 : from + 4 + length;
    };
    uint32 entries = 0;
    while (entries < count)
    {
        int64 const key = textEnd(at);
        int64 const value = key < 0 ? -1 : textEnd(key);
        if (value < 0)
            break;
        at = value;
        ++entries;
    }
    if (entries == 0)
        return 0;
    Keep(offset, at, Fate::Type::kPartial, path, fmt::format("{} of {} entries", entries, count));
    mOut.Begin(LoadId(mContent.data() + offset, mOrder));
    mOut.Put(entries);
    Copy(offset + kHeader + 4, at);
    mOut.Put(int32{0});
    mOut.End();
    return at;
}

/// A dictionary on its way into the result.
struct Salvager::Progress
{
    int64 offset = 0;
    /// Where it ends by its length, or nothing when that can't be.
    std::optional<int64> end;
    int64 limit = 0;
    int depth = 0;
    std::string path;
    /// Where the next key should stand.
    int64 at = 0;
    uint32 entries = 0;
    uint32 count = 0;
    std::optional<uint32> lastKey;
    bool isDamaged = false;
    /// Whether entries lead from there exactly to the end.
    std::map<int64, bool> reaches;

    int64 Reach() const { return end ? *end : limit; }
};

/// The end of the aggregates, whose count stands there; nothing when they make no sense.
std::optional<int64> Salvager::EndOfAggregates(int64 offset, int64 limit) const
{
    if (limit - offset < 4)
        return std::nullopt;
    auto const count = At<uint32>(offset);
    int64 at = offset + 4;
    for (uint32 i = 0; i < count; ++i)
    {
        if (limit - at < 16 + kHeader)
            return std::nullopt;
        int64 const whole = mFinds.WholeAt(at + 16);
        auto const end = whole != 0 && whole <= limit ? std::optional(whole) : EndOfUnknown(at + 16, limit);
        if (!end)
            return std::nullopt;
        at = *end;
    }
    return at;
}

bool Salvager::Ends(Progress const& progress) const
{
    auto const end = EndOfAggregates(progress.at, progress.limit);
    if (!end)
        return false;
    if (progress.end && *end == *progress.end && IsBoundary(*end, progress.limit, progress.depth))
        return true;
    // A key of 0 looks like no aggregates; while entries are missing it is a key.
    bool const mayBeKey = progress.entries < progress.count && mFinds.AnyAt(progress.at + 4);
    return !mayBeKey && IsBoundary(*end, progress.limit, progress.depth);
}

/// Takes the entry that should stand there. False when there is none that can be followed.
bool Salvager::Entry(Progress& progress)
{
    int64 const record = progress.at + 4;
    int64 const reach = progress.Reach();
    if (reach - progress.at < 4 + kHeader)
        return false;
    // Writers put keys in ascending order. One that is not is another dictionary's, unless it leads to the
    // end.
    auto const key = At<uint32>(progress.at);
    if (progress.lastKey && key <= *progress.lastKey && !(progress.end && Reaches(progress.at, progress)))
        return false;
    std::string const path = fmt::format("{}/dict[{}]", progress.path, key);
    if (int64 const whole = mFinds.WholeAt(record); whole != 0 && whole <= reach)
    {
        Copy(progress.at, whole);
        Keep(progress.at, whole, Fate::Type::kKept, path);
        progress.at = whole;
    }
    else if (mFinds.BrokenAt(record))
    {
        std::size_t const before = mOut.Size();
        Copy(progress.at, record);
        int64 const stop = Broken(record, reach, progress.depth + 1, path);
        if (stop == 0)
        {
            mOut.Cut(before);
            return false;
        }
        Keep(progress.at, record, Fate::Type::kKept, path, "key");
        progress.isDamaged = true;
        progress.at = stop;
    }
    else
    {
        auto const end = EndOfUnknown(record, reach);
        if (!end || !IsBoundary(*end, reach, progress.depth + 1))
            return false;
        if (auto const id = LostClass(record, *end))
        {
            Copy(progress.at, record);
            KeepUnder(*id, record, *end, path);
            Keep(progress.at, record, Fate::Type::kKept, path, "key");
            progress.at = *end;
            progress.isDamaged = true;
            progress.lastKey = key;
            ++progress.entries;
            return true;
        }
        Copy(progress.at, *end);
        Keep(progress.at, *end, Fate::Type::kOpaque, path, "of an unknown class");
        progress.at = *end;
    }
    ++progress.entries;
    progress.lastKey = key;
    return true;
}

/// Whether whole entries lead from there exactly to where the dictionary ends by its length.
bool Salvager::Reaches(int64 entry, Progress& progress) const
{
    std::vector<int64> way;
    bool does = false;
    for (int64 at = entry;;)
    {
        if (auto const known = progress.reaches.find(at); known != progress.reaches.end())
        {
            does = known->second;
            break;
        }
        way.push_back(at);
        if (EndOfAggregates(at, progress.limit) == progress.end)
        {
            does = true;
            break;
        }
        int64 const next = at + 4 <= *progress.end ? mFinds.WholeAt(at + 4) : 0;
        if (next == 0 || next > *progress.end)
            break;
        at = next;
    }
    for (int64 const at : way)
        progress.reaches[at] = does;
    return does;
}

/// Goes on behind damage, where that is sure to be still inside.
bool Salvager::FindNextEntry(Progress& progress)
{
    if (!progress.end)
        return false;
    auto const& whole = mFinds.Whole();
    for (auto next = whole.lower_bound(progress.at + 4); next != whole.end() && next->second <= *progress.end;
         ++next)
        if (next->first - 4 > progress.at && Reaches(next->first - 4, progress))
        {
            progress.at = next->first - 4;
            return true;
        }
    // Nothing whole may be left before its end, and certainly nothing that reaches over its last bytes.
    int64 const last = *progress.end - 4;
    auto const following = whole.lower_bound(progress.at);
    if (last > progress.at && (following == whole.end() || following->first >= *progress.end) &&
        At<uint32>(last) == 0 && IsBoundary(*progress.end, progress.limit, progress.depth))
    {
        progress.at = last;
        return true;
    }
    return false;
}

int64 Salvager::Aggregates(Progress& progress)
{
    int64 const end = *EndOfAggregates(progress.at, progress.limit);
    Copy(progress.at, end);
    Keep(progress.at, end, Fate::Type::kKept, progress.path, "aggregates");
    return end;
}

int64 Salvager::Dictionary(int64 offset, int64 limit, int depth, std::string const& path)
{
    if (std::min(limit, mFinds.NextWhole(offset, limit)) - offset < kHeader + 4)
        return 0;
    Progress progress{.offset = offset,
                      .end = EndByLength(offset, limit),
                      .limit = limit,
                      .depth = depth,
                      .path = path,
                      .at = offset + kHeader + 4,
                      .entries = 0,
                      .count = At<uint32>(offset + kHeader),
                      .lastKey = {},
                      .isDamaged = false,
                      .reaches = {}};
    mOut.Begin(LoadId(mContent.data() + offset, mOrder));
    std::size_t const room = mOut.Room();
    std::size_t const place = mFates.size();
    bool ended = Ends(progress);
    while (!ended)
    {
        if (!Entry(progress))
        {
            progress.isDamaged = true;
            if (!FindNextEntry(progress))
                break;
        }
        ended = Ends(progress);
    }
    int64 end = progress.at;
    if (ended)
        end = Aggregates(progress);
    else
        mOut.Put(int32{0});
    mOut.Fill(room, progress.entries);
    mOut.End();
    bool const isPartial = progress.isDamaged || !ended;
    std::string const words =
        isPartial ? fmt::format("{} of {} entries", progress.entries, progress.count)
                  : fmt::format("its {} was wrong", progress.entries == progress.count ? "length" : "count");
    mFates.insert(
        mFates.begin() + static_cast<std::ptrdiff_t>(place),
        {isPartial ? Fate::Type::kPartial : Fate::Type::kRepaired, offset, kHeader + 4, path, words});
    return end;
}

/// Whatever is whole is kept, even where following the records did not come to it.
void Salvager::KeepTheRest()
{
    std::ranges::sort(mFates, {}, &Fate::offset);
    std::vector<Fate> const before = mFates;
    auto fate = before.begin();
    for (auto const& [from, to] : mFinds.Whole())
    {
        while (fate != before.end() && fate->offset + fate->length <= from)
            ++fate;
        if (fate != before.end() && fate->offset <= from)
            continue;
        Keep(from, to, Fate::Type::kKept, TopPath());
        Copy(from, to);
    }
}

Salvaged Salvager::Run()
{
    for (int64 at = 0; at < mSize;)
    {
        if (int64 const end = mFinds.WholeAt(at))
        {
            Keep(at, end, Fate::Type::kKept, TopPath());
            Copy(at, end);
            at = end;
            continue;
        }
        if (mFinds.BrokenAt(at))
        {
            int64 const end = Broken(at, mSize, 0, "/" + std::to_string(mTop));
            mTop += end != 0 ? 1 : 0;
            at = end != 0 ? end : at + 1;
            continue;
        }
        // Records of unknown classes may have known ones inside.
        if (auto const end = EndOfUnknown(at, mSize); end && LeadsOn(at))
        {
            if (auto const id = LostClass(at, *end))
            {
                KeepUnder(*id, at, *end, TopPath());
                at = *end;
                continue;
            }
            Keep(at, *end, Fate::Type::kOpaque, TopPath(), "of an unknown class");
            Copy(at, *end);
            at = *end;
            continue;
        }
        int64 const next = mFinds.Next(at + 1, mSize);
        Unknown(at, next);
        at = next;
    }
    KeepTheRest();
    std::ranges::sort(mFates, {}, &Fate::offset);
    Salvaged salvaged;
    int64 at = 0;
    for (Fate& fate : mFates)
    {
        if (fate.offset > at)
            salvaged.fates.push_back({Fate::Type::kLost, at, fate.offset - at, "", ""});
        at = fate.offset + fate.length;
        salvaged.fates.push_back(std::move(fate));
    }
    if (at < mSize)
        salvaged.fates.push_back({Fate::Type::kLost, at, mSize - at, "", ""});
    salvaged.content = mOut.Take();
    return salvaged;
}
} // namespace

char const* FateName(Fate::Type type)
{
    switch (type)
    {
    case Fate::Type::kKept:
        return "kept";
    case Fate::Type::kRepaired:
        return "repaired";
    case Fate::Type::kPartial:
        return "partial";
    case Fate::Type::kOpaque:
        return "opaque";
    case Fate::Type::kLost:
        break;
    }
    return "lost";
}

Salvaged Salvage(ByteView content, Order order, Progress* progress)
{
    return Salvager(content, order, progress).Run();
}
} // namespace TOOL
