#include "Tree/Passage.h"

#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/TessIO/ClassIds.h>

#include <utility>

namespace KORVA::RECORDS
{
namespace
{
using IO::kEntryCountSize;
using IO::kEntryKeySize;
using IO::kInterfaceIdSize;
/// The lengths of a key and a text.
constexpr int64 kEmptyTexts = 2 * IO::kStringCountSize;

/// What a passage goes by, without the content.
Node Outline(Node const& node)
{
    Node outline;
    outline.kind = node.kind;
    outline.classId = node.classId;
    outline.offset = node.offset;
    outline.length = node.length;
    outline.declared = node.declared;
    outline.depth = node.depth;
    outline.bodyEnd = node.bodyEnd;
    outline.parts = node.parts;
    return outline;
}
} // namespace

Cursor::Passage::Passage(Decoder& decoder, Node const& holder)
    : mDecoder(decoder), mHolder(Outline(holder)), mAt(holder.offset + IO::kRecordHeadSize),
      mEnd(holder.End())
{}

void Cursor::Passage::Complete(Decoder& decoder, Node& node)
{
    if (std::exchange(node.isComplete, true))
        return;
    int64 const end = node.End();
    decoder.SetSink({});
    decoder.MoveTo(node.offset + IO::kRecordHeadSize);
    // So far only a length that can't be believed makes a node irregular.
    if (decoder.Position() == end && node.regular)
    {
        // Such a record gives a new object and no more.
        Decoder::Note(node, Severity::kNote, "empty", node.offset, "nothing but its class is written of it");
        node.regular = false;
        return;
    }
    if (node.depth >= IO::kMostNestedRecords)
        return Decoder::Note(node, Severity::kError, "nested-too-deep", node.offset,
                             fmt::format("nested more than {} deep, it is not read", IO::kMostNestedRecords));
    try
    {
        decoder.Leaf(node, end);
    }
    catch (Broken const& broken)
    {
        return Decoder::Note(node, Severity::kError, broken.code, broken.offset, broken.words);
    }
    if (node.kind == Kind::kUnknownClass)
        return;
    node.bodyEnd = decoder.Position();
    Passage passage(decoder, node);
    passage.mNotes = &node;
    Node child;
    while (passage.Next(child))
        ++(passage.mStage == Stage::kAggregates ? node.aggregateCount : node.entryCount);
}

void Cursor::Passage::Note(Severity severity, char const* code, int64 offset, std::string words)
{
    if (mNotes)
        Decoder::Note(*mNotes, severity, code, offset, std::move(words));
}

bool Cursor::Passage::Next(Node& child)
{
    mDecoder.MoveTo(mAt);
    mDecoder.SetSink(mSink);
    try
    {
        if (Step(child))
        {
            mAt = child.End();
            return true;
        }
    }
    catch (Broken const& broken)
    {
        Note(Severity::kError, broken.code, broken.offset, broken.words);
    }
    mStage = Stage::kDone;
    return false;
}

bool Cursor::Passage::Step(Node& child)
{
    if (mStage == Stage::kStart && !Start())
        return false;
    if (mStage == Stage::kTop)
    {
        bool const isThere = mDecoder.Size() - mAt >= IO::kRecordHeadSize;
        return isThere &&
               Record(child, {.type = Label::Type::kIndex, .number = mIndex++, .text = {}, .id = {}},
                      mDecoder.Size(), "file");
    }
    if (mStage == Stage::kEntries && Entry(child))
        return true;
    if (mStage == Stage::kTexts && Text(child))
        return true;
    if (mStage == Stage::kParts && Part(child))
        return true;
    return mStage == Stage::kAggregates && Aggregate(child);
}

/// Reads how many entries there are. Whether there is anything to go through.
bool Cursor::Passage::Start()
{
    bool const isEmpty = mHolder.declared == 0 && mHolder.length == IO::kRecordHeadSize;
    if (isEmpty || mHolder.depth >= IO::kMostNestedRecords)
        return false;
    switch (mHolder.kind)
    {
    case Kind::kDictionary:
    case Kind::kStrings:
        mCountAt = mAt;
        mCount = mDecoder.Read<uint32>(mEnd, Role::kCount, "entries", "the number of entries");
        mStage = mHolder.kind == Kind::kDictionary ? Stage::kEntries : Stage::kTexts;
        return true;
    case Kind::kObject:
        mStage = Stage::kParts;
        return true;
    case Kind::kValue:
    case Kind::kURI:
    case Kind::kRelativeURI:
        mDecoder.MoveTo(mHolder.bodyEnd);
        return mHolder.bodyEnd != 0 && StartAggregates();
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        break;
    }
    return false;
}

bool Cursor::Passage::StartAggregates()
{
    mCountAt = mDecoder.Position();
    auto const count = mDecoder.Read<int32>(mEnd, Role::kCount, "aggregates", "the number of aggregates");
    if (mNotes)
        mNotes->aggregatesAt = mCountAt;
    if (count < 0)
        throw Broken{"aggregates-negative", mCountAt, fmt::format("it has {} aggregates", count)};
    mCount = static_cast<uint32>(count);
    mIndex = 0;
    mStage = Stage::kAggregates;
    return true;
}

bool Cursor::Passage::Record(Node& child, Label label, int64 limit, char const* holder)
{
    int64 const at = mDecoder.Position();
    int const depth = mStage == Stage::kTop ? 0 : mHolder.depth + 1;
    if (!mNotes)
    {
        mDecoder.Count(at);
        mDecoder.CheckDepth(at, depth);
    }
    // Fields of the record are told when somebody asks for them.
    mDecoder.SetSink({});
    child = mDecoder.Head(at, limit, holder, std::move(label), depth);
    return true;
}

bool Cursor::Passage::Entry(Node& child)
{
    if (mIndex == mCount)
        return StartAggregates() && false;
    int64 const keyAt = mDecoder.Position();
    if (mEnd - keyAt < kEntryKeySize + IO::kRecordHeadSize)
        throw Broken{"count-too-large", mCountAt,
                     fmt::format("should hold {} entries, there is room for {}", mCount, mIndex)};
    auto const key = mDecoder.Read<uint32>(mEnd, Role::kKey, "key", "a key");
    if (mNotes)
        CheckKey(key, keyAt);
    ++mIndex;
    return Record(child, {.type = Label::Type::kKey, .number = key, .text = {}, .id = {}}, mEnd, "parent");
}

void Cursor::Passage::CheckKey(uint32 key, int64 at)
{
    uint32 const last = std::exchange(mLastKey, key);
    if (mIndex == 0)
        return;
    if (mKeys.empty() && key < last)
    {
        Note(Severity::kWarning, "keys-not-ascending", at,
             fmt::format("the key {} stands behind {}", key, last));
        int64 const here = mDecoder.Position();
        mDecoder.MoveTo(mCountAt + kEntryCountSize);
        for (uint32 i = 0; i < mIndex; ++i)
        {
            mKeys.insert(mDecoder.Read<uint32>(mEnd, Role::kKey, "key", "a key"));
            mDecoder.MoveTo(mDecoder.Head(mDecoder.Position(), mEnd, "parent", {}, 0).End());
        }
        mDecoder.MoveTo(here);
    }
    bool const isTwice = mKeys.empty() ? key == last : !mKeys.insert(key).second;
    if (isTwice)
        Note(Severity::kWarning, "key-twice", at,
             fmt::format("the key {} is there twice; the last one counts", key));
}

bool Cursor::Passage::Text(Node& child)
{
    if (mIndex == mCount)
        return StartAggregates() && false;
    int64 const at = mDecoder.Position();
    if (mEnd - at < kEmptyTexts)
        throw Broken{"count-too-large", mCountAt,
                     fmt::format("should hold {} entries, there is room for {}", mCount, mIndex)};
    if (!mNotes)
        mDecoder.Count(at);
    mHolder.findings.clear();
    child = mDecoder.TextEntry(mNotes ? *mNotes : mHolder, mEnd);
    if (mNotes)
        CheckText(child);
    ++mIndex;
    return true;
}

void Cursor::Passage::CheckText(Node const& entry)
{
    STRING::CoreString const& key = entry.label.text;
    STRING::CoreString const last = std::exchange(mLastText, key);
    if (mIndex == 0)
        return;
    if (mTexts.empty() && !(last < key))
    {
        int64 const here = mDecoder.Position();
        Node others;
        mDecoder.MoveTo(mCountAt + kEntryCountSize);
        for (uint32 i = 0; i < mIndex; ++i)
            mTexts.insert(mDecoder.TextEntry(others, mEnd).label.text);
        mDecoder.MoveTo(here);
    }
    if (mTexts.empty())
        return;
    if (!mTexts.insert(key).second)
        Note(Severity::kWarning, "key-twice", entry.offset,
             fmt::format("the key {} is there twice; the last one counts", Quoted(key)));
    else if (key < last)
        Note(Severity::kWarning, "keys-not-ascending", entry.offset,
             fmt::format("the key {} stands behind {}", Quoted(key), Quoted(last)));
}

bool Cursor::Passage::Part(Node& child)
{
    while (mIndex < mHolder.parts.size())
    {
        RECORDS::Part const& part = mHolder.parts[mIndex++];
        mDecoder.MoveTo(part.offset);
        if (part.type != "record")
        {
            if (mSink)
                mDecoder.Tell(
                    part.offset, part.length, Role::kValue, part.type,
                    ShownPart(mDecoder.At(part.offset, part.length), part, mDecoder.Options().order));
            continue;
        }
        int64 const limit = part.offset + part.length;
        mDecoder.Need(IO::kRecordHeadSize, limit, "a record's header");
        return Record(child, {.type = Label::Type::kPart, .number = mRecordPart++, .text = {}, .id = {}},
                      limit, "parent");
    }
    mDecoder.MoveTo(mHolder.bodyEnd);
    return StartAggregates() && false;
}

bool Cursor::Passage::Aggregate(Node& child)
{
    int64 const at = mDecoder.Position();
    if (mIndex == mCount)
    {
        if (at < mEnd)
            throw Broken{"bytes-left-over", at,
                         fmt::format("{} at its end {} to nothing", ByteCount(mEnd - at),
                                     mEnd - at == 1 ? "belongs" : "belong")};
        return false;
    }
    if (mEnd - at < kInterfaceIdSize + IO::kRecordHeadSize)
        throw Broken{"aggregates-too-many", mCountAt,
                     fmt::format("should have {} aggregates, there is room for {}", mCount, mIndex)};
    GUID const iid = mDecoder.ReadId(mEnd, Role::kKey, "interface", "an aggregate's id");
    if (iid == IO::IPERSISTENT_DATA || iid == IO::IPERSISTENT_DATA_EX)
        Note(Severity::kWarning, "aggregate-dropped", at,
             "an aggregate under a persistence interface's id is dropped by the reader");
    else if (mIndex > 0 && !std::less<GUID>()(mBefore, iid))
        Note(Severity::kWarning, "aggregates-not-ascending", at,
             fmt::format("the aggregate {} stands behind {}", GUIDToText(iid), GUIDToText(mBefore)));
    mBefore = iid;
    ++mIndex;
    return Record(child, {.type = Label::Type::kInterface, .number = 0, .text = {}, .id = iid}, mEnd,
                  "parent");
}
} // namespace KORVA::RECORDS
