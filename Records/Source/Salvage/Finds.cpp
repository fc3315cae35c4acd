#include "Salvage/Finds.h"

#include "Format/Guard.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace KORVA::RECORDS
{

namespace
{
/// Bytes of a class id that must be left where other records are in the record and the file is damaged
/// elsewhere too, and otherwise.
constexpr int kSomeOf = 8;
constexpr int kMostOf = 14;

/// How many of 16 bytes are the same.
int Same(unsigned char const* a, std::array<unsigned char, 16> const& b)
{
    int same = 0;
    for (std::size_t i = 0; i < b.size(); ++i)
        same += a[i] == b[i] ? 1 : 0;
    return same;
}
} // namespace

/// A text with a record in it has lost its end, and goes on over what came next.
std::optional<SoundRecord> Finds::SoundAs(int64 offset, KnownClass const& known) const
{
    auto const sound = Skeleton(mContent, mOptions).Sound(offset, known);
    if (!sound || mTiles)
        return sound;
    auto const inside = mSound.lower_bound(offset + IO::kRecordHeadSize);
    return inside != mSound.end() && inside->first < sound->textEnd ? std::nullopt : sound;
}

/// Looks at every place where a class id may stand, a known one or what is left of one. From the back, so
/// that what is in a record is known before the record itself.
void Finds::FindSound()
{
    auto const size = static_cast<int64>(mContent.size());
    for (int64 at = size - IO::kRecordHeadSize; at >= 0; --at)
    {
        unsigned char const* const id = mContent.data() + at;
        KnownClass const* named = nullptr;
        std::vector<std::pair<KnownClass const*, int>> near;
        for (std::size_t i = 0; i < mIds.size(); ++i)
        {
            int const same = Same(id, mIds[i]);
            if (same == 16)
                named = &KnownClasses()[i];
            else if (same >= kSomeOf)
                near.emplace_back(&KnownClasses()[i], same);
        }
        if (!named && near.empty())
            continue;
        Progress const& progress = mOptions.work.progress;
        if (progress && !progress(size - at, size))
            Raise(ErrorCode::kCancelled, at, "it was wanted to end");
        if (named)
            mKnown.push_back(at);
        // Most that are broken say so with their length; what is in them need not be read for that.
        auto const length = Load<int64>(id + 16, mOptions.order);
        if (length < 0 || length > size - at - IO::kRecordHeadSize)
            continue;
        if (auto const sound = named ? SoundAs(at, *named) : std::nullopt)
        {
            mSound.emplace_hint(mSound.begin(), at, *sound);
            continue;
        }
        std::ranges::sort(near, std::greater(), &std::pair<KnownClass const*, int>::second);
        for (auto const& [other, same] : near)
        {
            // An empty record makes sense under any id, and many bodies under one that is little like. A
            // plug-in's id may be like the library's, too.
            auto const sound = length > 0 ? SoundAs(at, *other) : std::nullopt;
            if (!sound || !sound->isUsual || (same < kMostOf && (mTiles || sound->height == 0)))
                continue;
            mMisnamed[at] = other->id;
            mMisnamedEnds[at] = sound->end;
            if (!named)
                mKnown.push_back(at);
            break;
        }
    }
    std::ranges::reverse(mKnown);
}

/// The end of a whole record; 0 when it is not whole.
int64 Finds::EndOfWhole(int64 offset) const
{
    auto const sound = mSound.find(offset);
    if (sound == mSound.end())
        return 0;
    // A length of 0 before what reads as the record's content is a length that was lost.
    bool const isLost =
        sound->second.end == offset + IO::kRecordHeadSize &&
        Skeleton(mContent, mOptions).EndByContent(offset, static_cast<int64>(mContent.size()));
    return isLost ? 0 : sound->second.end;
}

/// Whether a whole record begins between the two and ends behind them: then the bytes between are no record,
/// but a text or buffer of it has lost its end and goes on over what came next.
bool Finds::IsCutInto(int64 from, int64 to) const
{
    auto const end = mSound.lower_bound(to);
    for (auto sound = mSound.lower_bound(from + IO::kRecordHeadSize); sound != end; ++sound)
    {
        Look(sound->first);
        if (sound->second.end > to && EndOfWhole(sound->first) > to)
            return true;
    }
    return false;
}

Finds::Finds(ByteView content, Order order, Work const& work) : mContent(content)
{
    mOptions.order = order;
    mOptions.work = work;
    mOptions.sound = &mSound;
    mOptions.misnamed = &mMisnamed;
    mOptions.count = &mCount;
    for (KnownClass const& known : KnownClasses())
        mIds.push_back(StoredId(known.id, order));
    mTiles = Tiles();
    FindSound();
    int64 end = 0;
    for (int64 const at : mKnown)
    {
        if (at < end)
            continue;
        auto const misnamed = mMisnamedEnds.find(at);
        int64 const whole = misnamed == mMisnamedEnds.end() ? EndOfWhole(at) : misnamed->second;
        if (whole != 0 && !IsCutInto(at, whole))
            mWhole[at] = end = whole;
        else
        {
            // Of another class after all, with records in it that do not end with it.
            mMisnamed.erase(at);
            mMisnamedEnds.erase(at);
            mSound.erase(at);
            if (FindClass(LoadId(content.data() + at, order)))
                mBroken.insert(at);
        }
    }
}

void Finds::Look(int64 offset) const
{
    if (++*mOptions.count > mOptions.work.limits.count)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("more than {} records: the record at offset {} is one too many",
                          mOptions.work.limits.count, offset));
}

/// Whether records follow each other from the first byte to the last, by their lengths.
bool Finds::Tiles() const
{
    auto const size = static_cast<int64>(mContent.size());
    int64 at = 0;
    while (size - at >= IO::kRecordHeadSize)
    {
        auto const length = Load<int64>(mContent.data() + at + 16, mOptions.order);
        if (length < 0 || length > size - at - IO::kRecordHeadSize)
            return false;
        at += IO::kRecordHeadSize + length;
    }
    return at == size;
}

bool Finds::IsLikeKnown(int64 offset) const
{
    return std::ranges::any_of(mIds,
                               [&](auto const& id) { return Same(mContent.data() + offset, id) >= kSomeOf; });
}

std::optional<GUID> Finds::NameOf(int64 offset) const
{
    auto const misnamed = mMisnamed.find(offset);
    return misnamed == mMisnamed.end() ? std::nullopt : std::optional(misnamed->second);
}

int64 Finds::Next(int64 offset, int64 size) const
{
    auto const whole = mWhole.lower_bound(offset);
    auto const broken = mBroken.lower_bound(offset);
    return std::min(whole == mWhole.end() ? size : whole->first, broken == mBroken.end() ? size : *broken);
}
} // namespace KORVA::RECORDS
