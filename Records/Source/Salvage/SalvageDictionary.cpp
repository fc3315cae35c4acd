// Dictionaries of which something is damaged.
#include "Salvage/Salvager.h"
#include <tessio/ObjectModel/GUIDText.h>

#include <fmt/format.h>

#include <algorithm>

namespace KORVA::RECORDS
{

std::optional<int64> Salvager::EndOfAggregate(int64 record, int64 limit) const
{
    int64 const whole = mFinds.WholeAt(record);
    return whole != 0 && whole <= limit ? std::optional(whole) : EndOfUnknown(record, limit);
}

/// The end of the aggregates, whose count stands there; nothing when they make no sense.
std::optional<int64> Salvager::EndOfAggregates(int64 offset, int64 limit) const
{
    if (limit - offset < 4)
        return std::nullopt;
    auto const count = At<uint32>(offset);
    int64 at = offset + 4;
    for (uint32 i = 0; i < count; ++i)
    {
        if (limit - at < 16 + IO::kRecordHeadSize)
            return std::nullopt;
        mFinds.Look(at + 16);
        auto const end = EndOfAggregate(at + 16, limit);
        if (!end)
            return std::nullopt;
        at = *end;
    }
    return at;
}

bool Salvager::Ends(Rebuilding const& dictionary)
{
    auto const end = EndOfAggregates(dictionary.at, dictionary.limit);
    if (!end)
        return false;
    if (dictionary.end && *end == *dictionary.end && IsBoundary(*end, dictionary.limit, dictionary.depth))
        return true;
    // A key of 0 looks like no aggregates; while entries are missing it is a key.
    bool const mayBeKey = dictionary.entries < dictionary.count && mFinds.AnyAt(dictionary.at + 4);
    return !mayBeKey && IsBoundary(*end, dictionary.limit, dictionary.depth);
}

/// Takes the entry that should stand there. False when there is none that can be followed.
bool Salvager::Entry(Rebuilding& dictionary)
{
    int64 const record = dictionary.at + 4;
    int64 const reach = dictionary.Reach();
    if (reach - dictionary.at < 4 + IO::kRecordHeadSize)
        return false;
    // Writers put keys in ascending order. One that is not is another dictionary's, unless it leads to the
    // end.
    auto const key = At<uint32>(dictionary.at);
    if (dictionary.lastKey && key <= *dictionary.lastKey &&
        !(dictionary.end && Reaches(dictionary.at, dictionary)))
        return false;
    Place const path = Place(dictionary.path, fmt::format("dict[{}]", key));
    if (int64 const whole = mFinds.WholeAt(record); whole != 0 && whole <= reach)
    {
        KeepWhole(dictionary.at, record, whole, path);
        dictionary.at = whole;
    }
    else if (mFinds.BrokenAt(record))
    {
        std::size_t const before = mOut.Size();
        Copy(dictionary.at, record);
        Taken const taken = Broken(record, reach, dictionary.depth + 1, path);
        dictionary.isDamaged = true;
        if (!taken.isKept)
        {
            mOut.Cut(before);
            dictionary.at = taken.end != 0 ? taken.end : dictionary.at;
            return taken.end != 0;
        }
        Keep(dictionary.at, record, Fate::Type::kKept, path, "key");
        dictionary.at = taken.end;
    }
    else
    {
        auto const end = EndOfUnknown(record, reach);
        if (!end || !IsBoundary(*end, reach, dictionary.depth + 1))
            return false;
        Copy(dictionary.at, *end);
        Keep(dictionary.at, *end, Fate::Type::kOpaque, path, "of an unknown class");
        dictionary.at = *end;
    }
    ++dictionary.entries;
    dictionary.lastKey = key;
    return true;
}

/// Whether whole entries lead from there exactly to where the dictionary ends by its length.
bool Salvager::Reaches(int64 entry, Rebuilding& dictionary) const
{
    std::vector<int64> way;
    bool does = false;
    for (int64 at = entry;;)
    {
        if (auto const known = dictionary.reaches.find(at); known != dictionary.reaches.end())
        {
            does = known->second;
            break;
        }
        way.push_back(at);
        if (EndOfAggregates(at, dictionary.limit) == dictionary.end)
        {
            does = true;
            break;
        }
        int64 const next = at + 4 <= *dictionary.end ? mFinds.WholeAt(at + 4) : 0;
        if (next == 0 || next > *dictionary.end)
            break;
        at = next;
    }
    for (int64 const at : way)
        dictionary.reaches[at] = does;
    return does;
}

/// Goes on behind damage, where that is sure to be still inside.
bool Salvager::FindNextEntry(Rebuilding& dictionary)
{
    if (!dictionary.end)
        return false;
    auto const& whole = mFinds.Whole();
    for (auto next = whole.lower_bound(dictionary.at + 4);
         next != whole.end() && next->second <= *dictionary.end; ++next)
        if (next->first - 4 > dictionary.at && Reaches(next->first - 4, dictionary))
        {
            dictionary.at = next->first - 4;
            return true;
        }
    // Nothing whole may be left before its end, and certainly nothing that reaches over its last bytes.
    int64 const last = *dictionary.end - 4;
    auto const following = whole.lower_bound(dictionary.at);
    if (last > dictionary.at && (following == whole.end() || following->first >= *dictionary.end) &&
        At<uint32>(last) == 0 && IsBoundary(*dictionary.end, dictionary.limit, dictionary.depth))
    {
        dictionary.at = last;
        return true;
    }
    return false;
}

int64 Salvager::Aggregates(Rebuilding& dictionary)
{
    int64 const end = *EndOfAggregates(dictionary.at, dictionary.limit);
    Copy(dictionary.at, dictionary.at + 4);
    CopyAggregates(dictionary.at, dictionary.at + 4, end, dictionary.path);
    return end;
}

/// Interface ids and the records behind them, which are whole or of unknown classes. What becomes of the
/// bytes from `from` on is told with them.
void Salvager::CopyAggregates(int64 from, int64 first, int64 end, Place const& path)
{
    for (int64 at = first; at < end;)
    {
        int64 const record = at + 16;
        GUID const iid = LoadId(mContent.data() + at, mOrder);
        Copy(at, record);
        at = *EndOfAggregate(record, end);
        CopyRecord(record, at);
        if (!mFinds.NameOf(record))
            continue;
        Keep(from, record, Fate::Type::kKept, path, "aggregates");
        Keep(record, at, Fate::Type::kRepaired, Place(path, GUIDToText(iid)), "its class id was damaged");
        from = at;
    }
    Keep(from, end, Fate::Type::kKept, path, "aggregates");
}

Salvager::Taken Salvager::Dictionary(int64 offset, int64 limit, int depth, Place const& path)
{
    if (std::min(limit, mFinds.NextWhole(offset, limit)) - offset < IO::kRecordHeadSize + 4)
        return {};
    Rebuilding dictionary{.offset = offset,
                          .end = EndByLength(offset, limit),
                          .limit = limit,
                          .depth = depth,
                          .path = path,
                          .at = offset + IO::kRecordHeadSize + 4,
                          .entries = 0,
                          .count = At<uint32>(offset + IO::kRecordHeadSize),
                          .lastKey = {},
                          .isDamaged = false,
                          .reaches = {}};
    mOut.Begin(LoadId(mContent.data() + offset, mOrder));
    std::size_t const room = mOut.Room();
    bool ended = Ends(dictionary);
    while (!ended)
    {
        if (!Entry(dictionary))
        {
            dictionary.isDamaged = true;
            if (!FindNextEntry(dictionary))
                break;
        }
        ended = Ends(dictionary);
    }
    int64 end = dictionary.at;
    if (ended)
        end = Aggregates(dictionary);
    else
        mOut.Put(int32{0});
    mOut.Fill(room, dictionary.entries);
    mOut.End();
    bool const isPartial = dictionary.isDamaged || !ended;
    std::string words;
    if (isPartial)
        words = fmt::format("{} of {} entries", dictionary.entries, dictionary.count);
    else if (dictionary.entries != dictionary.count)
        words = "its count was wrong";
    else if (dictionary.end != end)
        words = "its length was wrong";
    Keep(offset, offset + IO::kRecordHeadSize + 4,
         isPartial       ? Fate::Type::kPartial
         : words.empty() ? Fate::Type::kKept
                         : Fate::Type::kRepaired,
         path, words);
    return {end, true};
}
} // namespace KORVA::RECORDS
