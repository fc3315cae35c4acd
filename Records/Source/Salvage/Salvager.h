// How a damaged record file is taken apart and put together again.
#pragma once

#include "Salvage/Finds.h"
#include <tessio/Records/Format/RecordWriter.h>
#include <tessio/Records/Salvage/Salvage.h>

#include <map>
#include <optional>
#include <tuple>

namespace KORVA::RECORDS
{
/// One run over one file.
class Salvager
{
public:
    Salvager(ByteView content, Order order, Work const& work)
        : mContent(content), mOrder(order), mSize(static_cast<KORVA::int64>(content.size())),
          mFinds(content, order, work), mOut(order)
    {
        mIsWhole = Tiles();
    }

    Salvaged Run();

private:
    // What the bytes say.
    template <class Number>
    Number At(KORVA::int64 offset) const
    {
        return Load<Number>(mContent.data() + offset, mOrder);
    }
    /// The end of a record by its length; nothing when that can't be right.
    std::optional<KORVA::int64> EndByLength(KORVA::int64 offset, KORVA::int64 limit) const;
    bool MayEndWithRecord(KORVA::int64 offset, KORVA::int64 end) const;
    std::optional<KORVA::int64> EndOfUnknown(KORVA::int64 offset, KORVA::int64 limit) const;
    bool Tiles() const;
    bool LeadsOn(KORVA::int64 offset);
    bool IsBoundary(KORVA::int64 offset, KORVA::int64 limit, int depth);
    std::optional<KORVA::int64> EndOfAggregate(KORVA::int64 record, KORVA::int64 limit) const;
    std::optional<KORVA::int64> EndOfAggregates(KORVA::int64 offset, KORVA::int64 limit) const;

    // What becomes of them.
    void Keep(KORVA::int64 from, KORVA::int64 to, Fate::Type type, Place path, std::string words = {});
    void Copy(KORVA::int64 from, KORVA::int64 to)
    {
        mOut.Put(mContent.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
    }
    Place TopPath() { return Place(Place(), std::to_string(mTop++)); }
    void Unknown(KORVA::int64 from, KORVA::int64 to);
    void CopyRecord(KORVA::int64 from, KORVA::int64 to);
    void KeepWhole(KORVA::int64 from, KORVA::int64 record, KORVA::int64 to, Place const& path);
    /// What was made of a damaged record.
    struct Taken
    {
        /// Where it ends; 0 where that is not known.
        KORVA::int64 end = 0;
        /// Whether there is a record of it in the result.
        bool isKept = false;
    };
    KORVA::int64 BrokenAtTop(KORVA::int64 offset);
    Taken Broken(KORVA::int64 offset, KORVA::int64 limit, int depth, Place const& path);
    Taken Leaf(KORVA::int64 offset, KORVA::int64 limit, int depth, Place const& path);
    struct TextAt
    {
        /// Bytes of whole units.
        KORVA::int64 length = 0;
        KORVA::int64 end = 0;
        /// Whether a writer makes such a length.
        bool isPlain = true;
    };
    struct TextEntries
    {
        KORVA::uint32 count = 0;
        KORVA::int64 end = 0;
        /// Texts that are not plain.
        KORVA::uint32 odd = 0;
    };
    std::optional<TextAt> LenientText(KORVA::int64 offset, KORVA::int64 stop) const;
    TextEntries TextsFrom(KORVA::int64 offset, KORVA::int64 stop, KORVA::uint32 count, bool isLenient) const;
    void CopyTexts(KORVA::int64 offset, TextEntries const& entries);
    Taken Strings(KORVA::int64 offset, KORVA::int64 limit, int depth, Place const& path);
    Taken Dictionary(KORVA::int64 offset, KORVA::int64 limit, int depth, Place const& path);
    std::optional<KORVA::uint32> AggregatesBetween(KORVA::int64 from, KORVA::int64 to) const;
    std::string AggregatesAnew(KORVA::int64 number, KORVA::int64 end, Place const& path);
    void CopyAggregates(KORVA::int64 from, KORVA::int64 first, KORVA::int64 end, Place const& path);
    struct Rebuilding;
    bool Entry(Rebuilding& dictionary);
    bool Ends(Rebuilding const& dictionary);
    bool FindNextEntry(Rebuilding& dictionary);
    bool Reaches(KORVA::int64 entry, Rebuilding& dictionary) const;
    KORVA::int64 Aggregates(Rebuilding& dictionary);
    void KeepTheRest();

    ByteView mContent;
    Order mOrder;
    KORVA::int64 mSize;
    Finds mFinds;
    /// Whether whole records and such of unknown classes follow each other from the first byte to the last.
    bool mIsWhole = false;
    RecordWriter mOut;
    std::vector<Fate> mFates;
    /// What was asked before: a file may be a long chain of records that each lead on to the next.
    std::map<KORVA::int64, bool> mLeadsOn;
    std::map<std::tuple<KORVA::int64, KORVA::int64, int>, bool> mBoundaries;
    KORVA::int64 mTop = 0;
};

/// A dictionary on its way into the result.
struct Salvager::Rebuilding
{
    KORVA::int64 offset = 0;
    /// Where it ends by its length, or nothing when that can't be.
    std::optional<KORVA::int64> end;
    KORVA::int64 limit = 0;
    int depth = 0;
    Place path;
    /// Where the next key should stand.
    KORVA::int64 at = 0;
    KORVA::uint32 entries = 0;
    KORVA::uint32 count = 0;
    std::optional<KORVA::uint32> lastKey;
    bool isDamaged = false;
    /// Whether entries lead from there exactly to the end.
    std::map<KORVA::int64, bool> reaches;

    KORVA::int64 Reach() const { return end ? *end : limit; }
};
} // namespace KORVA::RECORDS
