#include "Salvage/Salvager.h"

#include "Format/Guard.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>

namespace KORVA::RECORDS
{

namespace
{
/// Records that lie in each other are looked at once. Only such as were made to overlap take more looks than
/// this for their bytes, and the square of their number without a bound.
constexpr int64 kLooksPerByte = 16;

/// Class ids made as RFC 9562 has it carry their variant and version; few other bytes look so.
bool LooksLikeId(GUID const& id)
{
    int const version = id.Data3 >> 12;
    return (id.Data4[0] & 0xC0) == 0x80 && version >= 1 && version <= 8;
}
} // namespace

void Salvager::Keep(int64 from, int64 to, Fate::Type type, Place path, std::string words)
{
    if (to > from)
        mFates.push_back({type, from, to - from, std::move(path), std::move(words)});
}

std::optional<int64> Salvager::EndByLength(int64 offset, int64 limit) const
{
    if (limit - offset < IO::kRecordHeadSize)
        return std::nullopt;
    auto const length = At<int64>(offset + 16);
    if (length < 0 || length > IO::kGreatestLength || length > limit - offset - IO::kRecordHeadSize)
        return std::nullopt;
    return offset + IO::kRecordHeadSize + length;
}

/// Behind what is in a record stands the number of its aggregates. Only the last of these can end with it: it
/// has its interface's id before it, and that the number, or another one of any class.
bool Salvager::MayEndWithRecord(int64 offset, int64 end) const
{
    auto const last = std::prev(mFinds.Whole().lower_bound(end));
    int64 const number = last->first - 16 - 4;
    if (last->second != end || number < offset + IO::kRecordHeadSize)
        return last->second != end;
    if (At<int32>(number) == 1)
        return true;
    for (int64 other = number + 4 - IO::kRecordHeadSize; other >= offset + IO::kRecordHeadSize + 4 + 16;
         --other)
        if (EndByLength(other, end) == number + 4)
            return true;
    return false;
}

/// Bytes that are all zeros look like an empty record and are none. A record of a class that nobody knows may
/// hold known ones; so do the remains of a known one that has lost its class id, which have to let them go.
std::optional<int64> Salvager::EndOfUnknown(int64 offset, int64 limit) const
{
    auto const end = EndByLength(offset, limit);
    if (!end || mFinds.AnyAt(offset) || mFinds.IsInside(*end))
        return std::nullopt;
    GUID const id = LoadId(mContent.data() + offset, mOrder);
    bool const mayHold =
        mFinds.NextWhole(offset + IO::kRecordHeadSize, mSize) >= *end ||
        (MayEndWithRecord(offset, *end) && (mIsWhole || (LooksLikeId(id) && !mFinds.IsLikeKnown(offset))));
    return id != GUID{} && mayHold ? end : std::nullopt;
}

bool Salvager::Tiles() const
{
    int64 at = 0;
    while (at < mSize)
    {
        int64 const whole = mFinds.NameOf(at) ? 0 : mFinds.WholeAt(at);
        auto const end = whole != 0         ? std::optional(whole)
                         : mFinds.AnyAt(at) ? std::nullopt
                                            : EndByLength(at, mSize);
        if (!end)
            return false;
        at = *end;
    }
    return true;
}

/// Whether records of unknown classes lead from there exactly to one of a known class, or to the end of the
/// file.
bool Salvager::LeadsOn(int64 offset)
{
    std::vector<int64> way;
    std::optional<bool> does;
    while (!does)
    {
        if (auto const asked = mLeadsOn.find(offset); asked != mLeadsOn.end())
        {
            does = asked->second;
            break;
        }
        way.push_back(offset);
        if (offset == mSize || mFinds.AnyAt(offset))
            does = true;
        else if (auto const end = EndOfUnknown(offset, mSize))
            offset = *end;
        else
            does = false;
    }
    for (int64 const at : way)
        mLeadsOn[at] = *does;
    return *does;
}

/// Whether a record may end there: something else begins behind it, as its depth has it.
bool Salvager::IsBoundary(int64 offset, int64 limit, int depth)
{
    // Each place leads to up to two others: behind another entry of an unknown class, and behind the end of
    // the dictionary around.
    struct Step
    {
        int64 offset;
        int depth;
        std::size_t from;
    };
    std::vector<Step> places{{offset, depth, 0}};
    std::vector<std::size_t> open{0};
    while (!open.empty())
    {
        std::size_t const index = open.back();
        open.pop_back();
        auto const [at, level, from] = places[index];
        auto const [asked, isNew] = mBoundaries.try_emplace({at, limit, level}, false);
        bool is = !isNew && asked->second;
        if (isNew && level == 0)
            is = LeadsOn(at);
        else if (isNew)
        {
            bool const isEnd = at + 4 <= limit && At<uint32>(at) == 0;
            is = (at + 4 <= limit && mFinds.AnyAt(at + 4)) || (isEnd && at + 4 == limit);
            if (auto const end = is ? std::nullopt : EndOfUnknown(at + 4, limit))
            {
                open.push_back(places.size());
                places.push_back({*end, level, index});
            }
            if (!is && isEnd)
            {
                open.push_back(places.size());
                places.push_back({at + 4, level - 1, index});
            }
        }
        if (!is)
            continue;
        for (std::size_t way = index;; way = places[way].from)
        {
            mBoundaries[{places[way].offset, limit, places[way].depth}] = true;
            if (way == 0)
                return true;
        }
    }
    return false;
}

void Salvager::Unknown(int64 from, int64 to)
{
    // From the back: where records begin that lead exactly to `to`.
    std::set<int64> leads{to};
    int64 first = to;
    for (int64 at = to - IO::kRecordHeadSize; at >= from; --at)
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

/// Under the class id that it should have.
void Salvager::CopyRecord(int64 from, int64 to)
{
    if (auto const id = mFinds.NameOf(from))
    {
        mOut.Put(*id);
        from += 16;
    }
    Copy(from, to);
}

/// A whole record, and the key before it, if there is one.
void Salvager::KeepWhole(int64 from, int64 record, int64 to, Place const& path)
{
    Copy(from, record);
    CopyRecord(record, to);
    if (!mFinds.NameOf(record))
        return Keep(from, to, Fate::Type::kKept, path);
    Keep(from, record, Fate::Type::kKept, path, "key");
    Keep(record, to, Fate::Type::kRepaired, path, "its class id was damaged");
}

Salvager::Taken Salvager::Broken(int64 offset, int64 limit, int depth, Place const& path)
{
    KnownClass const* const known = FindClass(LoadId(mContent.data() + offset, mOrder));
    auto const end = Skeleton(mContent, mFinds.Options()).EndByContent(offset, limit);
    // A text or buffer with a wrong length may reach over what comes next.
    bool const isSound = end && (known->kind == Kind::kDictionary || mFinds.NextWhole(offset, limit) >= *end);
    if (isSound && IsBoundary(*end, limit, depth))
    {
        int64 const length = *end - offset - IO::kRecordHeadSize;
        Keep(offset, *end, Fate::Type::kRepaired, path,
             fmt::format("its length was {}, it is {}", At<int64>(offset + 16), length));
        Copy(offset, offset + 16);
        mOut.Put(length);
        Copy(offset + IO::kRecordHeadSize, *end);
        return {*end, true};
    }
    if (int64 const deepest = mFinds.Options().work.limits.depth; depth >= deepest)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("the record at offset {} is nested more than {} deep", offset, deepest));
    if (known->kind == Kind::kDictionary && depth < IO::kMostNestedRecords)
        return Dictionary(offset, limit, depth, path);
    if (known->kind == Kind::kStrings)
        return Strings(offset, limit, depth, path);
    return Leaf(offset, limit, depth, path);
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
        KeepWhole(from, from, to, TopPath());
    }
}

/// What was put together is looked at as readers will see it: nothing else goes into the result. 0 where it
/// is not known where the record ends.
int64 Salvager::BrokenAtTop(int64 offset)
{
    std::size_t const written = mOut.Size();
    std::size_t const fates = mFates.size();
    Taken const taken = Broken(offset, mSize, 0, Place(Place(), std::to_string(mTop)));
    if (taken.isKept)
    {
        auto const size = static_cast<int64>(mOut.Size());
        MemorySource const source(mOut.Written().subspan(written));
        ReadOptions options;
        options.order = mOrder;
        Reader reader(source, options);
        Node record;
        static_cast<void>(ValueOrRaise(reader.Records().Next(record)));
        bool isDamaged = false;
        static_cast<void>(ValueOrRaise(Walk(reader, record, "", [&](Node const& node, std::string const&) {
            isDamaged = isDamaged || !Problem(node).empty();
            return !isDamaged;
        })));
        if (!isDamaged && static_cast<int64>(written) + record.End() == size)
        {
            ++mTop;
            return taken.end;
        }
        mOut.Cut(written);
        mFates.resize(fates);
        return 0;
    }
    return taken.end;
}

Salvaged Salvager::Run()
{
    for (int64 at = 0; at < mSize;)
    {
        if (int64 const end = mFinds.WholeAt(at))
        {
            KeepWhole(at, at, end, TopPath());
            at = end;
            continue;
        }
        if (mFinds.BrokenAt(at))
        {
            int64 const end = BrokenAtTop(at);
            at = end != 0 ? end : at + 1;
            continue;
        }
        // Records of unknown classes may have known ones inside.
        if (auto const end = EndOfUnknown(at, mSize); end && LeadsOn(at))
        {
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
            salvaged.fates.push_back({Fate::Type::kLost, at, fate.offset - at, {}, ""});
        at = fate.offset + fate.length;
        salvaged.fates.push_back(std::move(fate));
    }
    if (at < mSize)
        salvaged.fates.push_back({Fate::Type::kLost, at, mSize - at, {}, ""});
    salvaged.content = mOut.Take();
    return salvaged;
}

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

Result<Salvaged> Salvage(ByteView content, Order order, Work const& work)
{
    Limits const& limits = work.limits;
    int64 const bound = kLooksPerByte * static_cast<int64>(content.size());
    Work bounded = work;
    bounded.limits.count = std::min(limits.count, bound);
    Result<Salvaged> result = Guarded([&] { return Salvager(content, order, bounded).Run(); });
    bool const isOurBound = !result && result.error().code == ErrorCode::kBeyondLimit &&
                            limits.count > bound && limits.depth >= IO::kMostNestedRecords;
    if (isOurBound)
        return Error{
            ErrorCode::kBeyondLimit, kNoOffset,
            fmt::format("it takes more than {} looks at what could be records: they overlap, as damage does "
                        "not leave them",
                        bound)};
    return result;
}
} // namespace KORVA::RECORDS
