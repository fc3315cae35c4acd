#include "Records/Salvager.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace TOOL
{
using namespace KORVA;

namespace
{
/// Class ids made as RFC 9562 has it carry their variant and version; few other bytes look so.
bool LooksLikeId(GUID const& id)
{
    int const version = id.Data3 >> 12;
    return (id.Data4[0] & 0xC0) == 0x80 && version >= 1 && version <= 8;
}
} // namespace

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

/// Bytes that are all zeros look like an empty record and are none.
std::optional<int64> Salvager::EndOfUnknown(int64 offset, int64 limit) const
{
    auto const end = EndByLength(offset, limit);
    bool const fits = end && LoadId(mContent.data() + offset, mOrder) != GUID{} && !mFinds.AnyAt(offset) &&
                      !mFinds.IsInside(*end);
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
    for (int64 at = to - kHeader; at >= from; --at)
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
