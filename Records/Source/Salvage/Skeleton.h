// Whether records of known classes make sense, by their lengths and counts alone.
#pragma once

#include <tessio/Records/Format/Bytes.h>
#include <tessio/Records/Format/Classes.h>
#include <tessio/Records/Format/Work.h>

#include <map>
#include <optional>

namespace KORVA::RECORDS
{
/// A record of a known class that makes sense to its last byte.
struct SoundRecord
{
    int64 end = 0;
    /// How many records deep others are nested in it.
    int height = 0;
    /// Where the texts end that it begins with; no record can be in them. 0 where there are none.
    int64 textEnd = 0;
    /// Whether there is nothing in it to warn of, the order of keys aside.
    bool isUsual = true;
};

/// By their offsets.
using SoundRecords = std::map<int64, SoundRecord>;

/// Records whose class ids are damaged, by their offsets: the ids that they should have.
using MisnamedRecords = std::map<int64, GUID>;

/// What is known of a damaged file. All but the first two are borrowed.
struct SkeletonOptions
{
    Order order = IO::IDataProvider::kLittleEndian;
    Work work;
    /// All sound records that begin behind the one that is read. Those in it are looked up instead of read
    /// once more.
    SoundRecords const* sound = nullptr;
    /// What holds one of these is damaged.
    MisnamedRecords const* misnamed = nullptr;
    /// How many records and text entries were looked at; counts on.
    int64* count = nullptr;
};

/// Walks through one record without keeping anything of it: what is in texts and buffers is passed, and so
/// are records of unknown classes. Raises an error where a limit is passed.
class Skeleton
{
public:
    /// Borrows both.
    Skeleton(ByteView content, SkeletonOptions const& options) : mContent(content), mOptions(options) {}

    /// The record at `offset`, when it is sound as one of that class, whatever its class id says. At least a
    /// header must be there.
    std::optional<SoundRecord> Sound(int64 offset, KnownClass const& known);

    /// Where a record of a known class ends as if its length were not known: where its content does. Nothing
    /// when the class is not known or the content makes no sense.
    std::optional<int64> EndByContent(int64 offset, int64 limit);

    /// Where the content of the known class's record at `offset` ends, and the number of its aggregates
    /// should stand. Nothing when the content makes no sense or reaches beyond `limit`.
    std::optional<int64> EndOfBody(int64 offset, int64 limit);

private:
    void Count(int64 offset);
    bool Body(Kind kind, int64 end);
    bool Dictionary(int64 end);
    bool Strings(int64 end);
    bool Relative(int64 end);
    bool PlainValue(int64 end);
    bool Buffer(int64 end, bool isText);
    bool Text(int64 end);
    bool Aggregates(int64 end);
    bool Nested(int64 end);
    bool Skip(int64 bytes, int64 end);
    template <class Number>
    std::optional<Number> Read(int64 end);

    ByteView mContent;
    SkeletonOptions const& mOptions;
    int64 mPosition = 0;
    /// How deep the records are nested that were looked up.
    int mHeight = 0;
    bool mIsUsual = true;
    bool mIsText = false;
};
} // namespace KORVA::RECORDS
