// What a server says before the bytes.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <optional>
#include <string>
#include <string_view>

namespace HTTP
{
/// The headers of an answer that matter here. Made line by line; a new status line begins anew, so that in
/// the end it is the last answer, behind all redirections and challenges.
class Reply
{
public:
    /// A line with its end. Anything that is no header is passed over.
    void Add(std::string_view line);

    /// 0 before there was one.
    int Status() const { return mStatus; }
    bool IsGranted() const { return mStatus >= 200 && mStatus < 300; }
    bool IsRefused() const { return mStatus == 401 || mStatus == 403; }
    /// Whether another request, to anybody, may follow by itself.
    bool LeadsOn() const { return mStatus / 100 == 3 || mStatus == 401; }
    bool IsMissing() const { return mStatus == 404 || mStatus == 410; }

    /// Where the bytes that follow begin in the file; nothing when the server gives a range that makes no
    /// sense.
    std::optional<KORVA::int64> Start() const;
    /// Where they end, if it is told.
    std::optional<KORVA::int64> End() const;
    /// The size of the whole file, if it is told.
    std::optional<KORVA::int64> Size() const;
    /// Nanoseconds since 1970, if it is told.
    std::optional<KORVA::int64> ModificationDate() const;

    /// What a later request can hold against the file to see whether it is still this one: a strong tag, or a
    /// date; may be empty.
    std::string const& Validator() const;
    /// Whether two answers may be about the same content.
    bool Agrees(Reply const& other) const;

private:
    struct Range
    {
        KORVA::int64 first = -1;
        KORVA::int64 last = -1;
        KORVA::int64 size = -1;
    };

    std::optional<Range> ContentRange() const;

    int mStatus = 0;
    std::string mTag;
    std::string mDate;
    std::string mLength;
    std::string mCoding;
    std::string mRange;
};
} // namespace HTTP
