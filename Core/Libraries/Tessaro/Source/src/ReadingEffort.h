// Bounds what damaged and crafted files cost their reader.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <limits>

namespace KORVA::IO
{
class IDataProvider;

/// Counts the bytes that are read from behind the end of the record to which they are given.
///
///     |head|.......body of a dictionary.......|head|.....
///           |key|head|body|key|head|body|      ^ where a false count or length makes that body read on
///
/// A sound file has none: each byte is read once, by the record in which it stands. A body with a false count
/// or length reads on, is set back to its record's end, and the bytes are read again. With many such bodies a
/// file of some hundred kilobytes would be read for minutes, and would fill memory and log. So a file has an
/// allowance, 1 MiB and its own size. One false number makes its reader read on to the end of the file at
/// most, and never uses the allowance up. When it is used up, bodies still read what is theirs; a record from
/// behind the end counts as one whose body threw, and dictionaries end there.
///
/// The account is the calling thread's. It is kept for one provider from one outermost record to the next,
/// and begins anew when the position was set back in between. Bodies may read from other providers meanwhile;
/// those have accounts of their own. The provider is asked for nothing that reading a sound file would not
/// ask.
class ReadingEffort
{
    struct Account
    {
        IDataProvider const* provider = nullptr;
        /// While an outermost record is being read.
        bool isOpen = false;
        /// Where the body of the outermost record begins.
        int64 start = 0;
        /// Where reading has come, at least: numbers are not counted one by one.
        int64 at = 0;
        /// Where the innermost record ends, or the first of those around it to end.
        int64 end = std::numeric_limits<int64>::max();
        /// Where the outermost record ends.
        int64 last = std::numeric_limits<int64>::max();
        int64 readBehind = 0;
        /// How much of that is allowed; negative until the provider has been asked for its size.
        int64 allowance = -1;
        int messages = 0;

        void Pass(int64 position);
        bool IsUsedUp();
    };

public:
    /// A record that is being read.
    class Record
    {
    public:
        /// The provider stands at the record's header.
        explicit Record(IDataProvider const& provider);
        Record(Record const&) = delete;
        Record& operator=(Record const&) = delete;
        ~Record();

        /// The header has been read, but its length is not to be believed.
        void HasNoLength();
        /// The header has been read; the provider stands at `position`, and the record ends at `end`.
        void HasHeader(int64 position, int64 end);
        /// The body is going to be read. Throws when nothing may be read any more where it stands.
        void BeginBody() const;
        /// Whether a message about it is to be logged. Of records behind the end of another one, or that
        /// claim to end there, only some hundred are worth it; the last message says so.
        bool IsWorthAMessage() const;
        /// The same where the provider has logged something about it already: only some hundred, of any
        /// records.
        bool IsWorthASecondMessage() const;
        /// Whether the provider is to be moved to the record's end. Not to one behind the outermost record's,
        /// once there were too many: memory refuses that, and logs it each time.
        bool LeadsToItsEnd() const;

    private:
        IDataProvider const& mProvider;
        bool mIsOutermost;
        bool mIsBehind = false;
        bool mHasHeader = false;
        int64 mEnd = 0;
        int64 mEndAround = std::numeric_limits<int64>::max();
        /// The account of another provider, whose record's body reads this one.
        Account mAround;
    };

    /// The provider stands at `position`.
    static void Reach(IDataProvider const& provider, int64 position);
    /// `count` more bytes were read.
    static void CountBytes(IDataProvider const& provider, int64 count);
    /// Up to `count` bytes are going to be read at once. Throws when nothing may be read any more where they
    /// stand.
    static void ExpectBytes(IDataProvider const& provider, int64 count);
    /// Whether a loop over entries is to end: it has come behind its record's end, and nothing may be read
    /// there any more.
    static bool EndsHere(IDataProvider const& provider);

private:
    static Account* AccountOf(IDataProvider const& provider);

    static thread_local Account sAccount;
};
} // namespace KORVA::IO
