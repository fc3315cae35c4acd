#include "Salvage/Skeleton.h"

#include "Format/Guard.h"
#include <tessio/Records/Format/Directories.h>
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>

#include <algorithm>

namespace KORVA::RECORDS
{
namespace
{
using IO::kEntryKeySize;
using IO::kInterfaceIdSize;
/// The whole number and the floating-point number of a value.
constexpr int64 kNumberSize = 16;
} // namespace

void Skeleton::Count(int64 offset)
{
    int64 const most = mOptions.work.limits.count;
    if (++*mOptions.count > most)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("more than {} records: the record at offset {} is one too many", most, offset));
}

bool Skeleton::Skip(int64 bytes, int64 end)
{
    if (end - mPosition < bytes)
        return false;
    mPosition += bytes;
    return true;
}

template <class Number>
std::optional<Number> Skeleton::Read(int64 end)
{
    int64 const at = mPosition;
    if (!Skip(sizeof(Number), end))
        return std::nullopt;
    return Load<Number>(mContent.data() + at, mOptions.order);
}

bool Skeleton::Text(int64 end)
{
    auto const length = Read<int32>(end);
    if (!length || *length < 0)
        return false;
    // Units have two bytes. One byte alone is no unit, and the reader leaves it where it is.
    mIsUsual = mIsUsual && *length % 2 == 0;
    return *length < 2 || Skip(*length, end);
}

/// Looks a record up, or passes one of an unknown class by its length.
bool Skeleton::Nested(int64 end)
{
    if (end - mPosition < IO::kRecordHeadSize)
        return false;
    Count(mPosition);
    int height = 0;
    int64 next = 0;
    if (FindClass(LoadId(mContent.data() + mPosition, mOptions.order)))
    {
        auto const sound = mOptions.sound->find(mPosition);
        next = sound == mOptions.sound->end() ? 0 : sound->second.end;
        height = next == 0 ? 0 : sound->second.height;
    }
    else if (auto const length = Load<int64>(mContent.data() + mPosition + IO::kClassIdSize, mOptions.order);
             length >= 0 && length <= std::min(IO::kGreatestLength, end - mPosition - IO::kRecordHeadSize) &&
             !mOptions.misnamed->contains(mPosition))
        next = mPosition + IO::kRecordHeadSize + length;
    if (next == 0 || next > end)
        return false;
    mPosition = next;
    mHeight = std::max(mHeight, height + 1);
    return true;
}

bool Skeleton::Dictionary(int64 end)
{
    auto const count = Read<uint32>(end);
    if (!count)
        return false;
    for (uint32 i = 0; i < *count; ++i)
        if (end - mPosition < kEntryKeySize + IO::kRecordHeadSize || !Skip(kEntryKeySize, end) ||
            !Nested(end))
            return false;
    return true;
}

bool Skeleton::Strings(int64 end)
{
    auto const count = Read<uint32>(end);
    if (!count)
        return false;
    for (uint32 i = 0; i < *count; ++i)
    {
        constexpr int64 kTwoLengths = 8;
        if (end - mPosition < kTwoLengths)
            return false;
        Count(mPosition);
        if (!Text(end) || !Text(end))
            return false;
    }
    return true;
}

bool Skeleton::Relative(int64 end)
{
    if (!Text(end) || !Text(end) || !Read<uint32>(end) || !Text(end))
        return false;
    auto const directory = Read<int32>(end);
    mIsUsual = mIsUsual && directory && DirectoryOfType(*directory);
    return directory.has_value();
}

bool Skeleton::Buffer(int64 end, bool isText)
{
    auto const length = Read<int32>(end);
    if (!length || *length < 0 || !Skip(*length, end))
        return false;
    mIsUsual = mIsUsual && (!isText || *length % 2 == 0);
    return true;
}

bool Skeleton::PlainValue(int64 end)
{
    auto const tag = Read<uint32>(end);
    if (!tag)
        return false;
    ValueType const* const type = FindType(*tag);
    std::string_view const name = type ? type->name : "none";
    mIsUsual = mIsUsual && type;
    mIsText = name == "text";
    if (name == "none")
        return true;
    if (name == "bytes" || name == "text")
        return Buffer(end, mIsText);
    return Skip(kNumberSize, end);
}

bool Skeleton::Body(Kind kind, int64 end)
{
    mIsText = kind == Kind::kURI || kind == Kind::kRelativeURI || kind == Kind::kStrings;
    switch (kind)
    {
    case Kind::kDictionary:
        return Dictionary(end);
    case Kind::kValue:
        return PlainValue(end);
    case Kind::kStrings:
        return Strings(end);
    case Kind::kURI:
        return Text(end);
    case Kind::kRelativeURI:
        return Relative(end);
    case Kind::kStringEntry:
    case Kind::kObject:
    case Kind::kUnknownClass:
        break;
    }
    return false;
}

bool Skeleton::Aggregates(int64 end)
{
    auto const count = Read<int32>(end);
    if (!count || *count < 0)
        return false;
    GUID before{};
    for (int32 i = 0; i < *count; ++i)
    {
        int64 const at = mPosition;
        if (end - at < kInterfaceIdSize + IO::kRecordHeadSize || !Skip(kInterfaceIdSize, end))
            return false;
        GUID const iid = LoadId(mContent.data() + at, mOptions.order);
        bool const isDropped = iid == IO::IPERSISTENT_DATA || iid == IO::IPERSISTENT_DATA_EX;
        mIsUsual = mIsUsual && !isDropped && (i == 0 || std::less<GUID>()(before, iid));
        before = iid;
        if (!Nested(end))
            return false;
    }
    return true;
}

std::optional<SoundRecord> Skeleton::Sound(int64 offset, KnownClass const& known)
{
    Count(offset);
    int64 const deepest = mOptions.work.limits.depth;
    if (deepest <= 0)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("the record at offset {} is nested more than {} deep", offset, deepest));
    auto const size = static_cast<int64>(mContent.size());
    auto const length = Load<int64>(mContent.data() + offset + IO::kClassIdSize, mOptions.order);
    if (length < 0 || length > std::min(IO::kGreatestLength, size - offset - IO::kRecordHeadSize))
        return std::nullopt;
    int64 const end = offset + IO::kRecordHeadSize + length;
    mIsUsual = LoadId(mContent.data() + offset, mOptions.order) != GUID{};
    mPosition = offset + IO::kRecordHeadSize;
    int64 textEnd = 0;
    // Nothing but its class is written of an empty record.
    if (length > 0)
    {
        if (!Body(known.kind, end))
            return std::nullopt;
        textEnd = mIsText ? mPosition : 0;
        if (!Aggregates(end) || mPosition != end)
            return std::nullopt;
    }
    if (mHeight >= deepest)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("the record at offset {} holds others more than {} deep", offset, deepest));
    if (mHeight >= IO::kMostNestedRecords)
        return std::nullopt;
    return SoundRecord{end, mHeight, textEnd, mIsUsual};
}

std::optional<int64> Skeleton::EndByContent(int64 offset, int64 limit)
{
    auto const body = EndOfBody(offset, limit);
    if (!body || !Aggregates(limit))
        return std::nullopt;
    return mPosition;
}

std::optional<int64> Skeleton::EndOfBody(int64 offset, int64 limit)
{
    if (limit - offset < IO::kRecordHeadSize)
        return std::nullopt;
    KnownClass const* const known = FindClass(LoadId(mContent.data() + offset, mOptions.order));
    mPosition = offset + IO::kRecordHeadSize;
    if (!known || !Body(known->kind, limit))
        return std::nullopt;
    return mPosition;
}
} // namespace KORVA::RECORDS
