// Records that hold no others but aggregates, and of which something is damaged.
#include "Salvage/Salvager.h"

#include <fmt/format.h>

#include <algorithm>

namespace KORVA::RECORDS
{

/// How many aggregates lie between the two, which they must fill.
std::optional<uint32> Salvager::AggregatesBetween(int64 from, int64 to) const
{
    uint32 count = 0;
    for (int64 at = from; at != to; ++count)
    {
        if (to - at < 16 + IO::kRecordHeadSize)
            return std::nullopt;
        mFinds.Look(at + 16);
        auto const end = EndOfAggregate(at + 16, to);
        if (!end)
            return std::nullopt;
        at = *end;
    }
    return count;
}

/// Writes what follows the content of a record that ends at `end`: the number of its aggregates, which stands
/// at `number`, and these. Where they make no sense the record does without. Says what was put right.
std::string Salvager::AggregatesAnew(int64 number, int64 end, Place const& path)
{
    if (end - number < 4)
    {
        mOut.Put(int32{0});
        return "its aggregates are lost";
    }
    auto const said = At<int32>(number);
    auto const count = AggregatesBetween(number + 4, end);
    mOut.Put(count ? *count : 0);
    if (!count)
        return "its aggregates are lost";
    if (*count > 0)
        CopyAggregates(number + 4, number + 4, end, path);
    return static_cast<int64>(*count) == said
               ? std::string()
               : fmt::format("its number of aggregates was {}, it is {}", said, *count);
}

/// When its length leads to what comes next, and its content makes sense, it can do with other aggregates.
Salvager::Taken Salvager::Leaf(int64 offset, int64 limit, int depth, Place const& path)
{
    auto const end = EndByLength(offset, limit);
    if (!end || !IsBoundary(*end, limit, depth))
        return {};
    auto const number = Skeleton(mContent, mFinds.Options()).EndOfBody(offset, *end);
    // A text or buffer with a wrong length may reach over what comes next.
    bool const isWhole = number && mFinds.NextWhole(offset, limit) >= *number;
    auto const count = isWhole && *end - *number >= 4 ? AggregatesBetween(*number + 4, *end) : std::nullopt;
    // Where neither is right, nothing says that the content is.
    if (!count)
        return {mFinds.NextWhole(offset, limit) < *end ? 0 : *end, false};
    mOut.Begin(LoadId(mContent.data() + offset, mOrder));
    Copy(offset + IO::kRecordHeadSize, *number);
    std::string const words = AggregatesAnew(*number, *end, path);
    mOut.End();
    Keep(offset, *number + 4, Fate::Type::kRepaired, path, words);
    return {*end, true};
}

/// The text whose length stands there, as loading reads it; nothing where it has no room.
std::optional<Salvager::TextAt> Salvager::LenientText(int64 offset, int64 stop) const
{
    if (stop - offset < 4)
        return std::nullopt;
    auto const length = At<int32>(offset);
    // Such texts are empty, and nothing of them is read.
    if (length < 2)
        return TextAt{0, offset + 4, length == 0};
    if (length > stop - offset - 4)
        return std::nullopt;
    return TextAt{length - length % 2, offset + 4 + length, length % 2 == 0};
}

/// The entries from there on, at most `count`.
Salvager::TextEntries Salvager::TextsFrom(int64 offset, int64 stop, uint32 count, bool isLenient) const
{
    TextEntries found{0, offset, 0};
    for (; found.count < count; ++found.count)
    {
        auto const key = LenientText(found.end, stop);
        auto const value = key ? LenientText(key->end, stop) : std::nullopt;
        if (!value)
            break;
        uint32 const odd = (key->isPlain ? 0 : 1) + (value->isPlain ? 0 : 1);
        if (odd != 0 && !isLenient)
            break;
        found.odd += odd;
        found.end = value->end;
    }
    return found;
}

void Salvager::CopyTexts(int64 offset, TextEntries const& entries)
{
    if (entries.odd == 0)
        return Copy(offset, entries.end);
    while (offset < entries.end)
    {
        TextAt const text = *LenientText(offset, entries.end);
        mOut.Put(static_cast<int32>(text.length));
        Copy(offset + 4, offset + 4 + text.length);
        offset = text.end;
    }
}

Salvager::Taken Salvager::Strings(int64 offset, int64 limit, int depth, Place const& path)
{
    if (limit - offset < IO::kRecordHeadSize + 4)
        return {};
    // Where it ends by its own length, if that can be; else 0.
    int64 end = 0;
    if (auto const claimed = EndByLength(offset, limit); claimed && IsBoundary(*claimed, limit, depth))
        end = *claimed;
    auto const count = At<uint32>(offset + IO::kRecordHeadSize);
    int64 const first = offset + IO::kRecordHeadSize + 4;
    int64 const stop = std::min(end > 0 ? end : limit, mFinds.NextWhole(offset, limit));
    // A length below zero reads as no text. Where all that comes behind is right, it is but that length that
    // is wrong; otherwise nothing behind it can be believed.
    TextEntries entries = TextsFrom(first, stop, count, true);
    bool const isWhole = end > 0 && entries.count == count && end - entries.end >= 4 &&
                         AggregatesBetween(entries.end + 4, end);
    if (!isWhole)
        entries = TextsFrom(first, stop, count, false);
    if (entries.count == 0 && !isWhole)
        return {mFinds.NextWhole(offset, limit) >= end ? end : 0, false};
    mOut.Begin(LoadId(mContent.data() + offset, mOrder));
    mOut.Put(entries.count);
    CopyTexts(first, entries);
    std::string words;
    if (isWhole)
        words = AggregatesAnew(entries.end, end, path);
    else
        mOut.Put(int32{0});
    mOut.End();
    if (isWhole && entries.odd > 0)
        words =
            fmt::format("{} of its texts had {}", entries.odd,
                        entries.odd == 1 ? "a length that no writer makes" : "lengths that no writer makes") +
            (words.empty() ? "" : "; " + words);
    if (isWhole)
    {
        Keep(offset, entries.end + 4, Fate::Type::kRepaired, path, words);
        return {end, true};
    }
    Keep(offset, entries.end, Fate::Type::kPartial, path,
         fmt::format("{} of {} entries", entries.count, count));
    return {entries.end, true};
}
} // namespace KORVA::RECORDS
