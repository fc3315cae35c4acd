// One way through what a record holds.
#pragma once

#include "Tree/Decoder.h"

#include <set>

namespace KORVA::RECORDS
{
/// Goes from one record to the next by their lengths. What is wrong with the holder itself is found on the
/// way: counts that can't be, keys out of order, bytes that are left over.
class Cursor::Passage
{
public:
    /// Through the records of the file.
    explicit Passage(Decoder& decoder) : mDecoder(decoder), mStage(Stage::kTop) {}
    /// Through what a node holds, for somebody who asks for it. The node must be complete, but for a
    /// dictionary of either kind.
    Passage(Decoder& decoder, Node const& holder);
    /// The same to complete the node: findings are noted in it, nothing is counted.
    static void Complete(Decoder& decoder, Node& node);

    void Tell(FieldSink sink) { mSink = std::move(sink); }
    /// False at the end. Raises errors.
    bool Next(Node& child);
    int64 Position() const { return mAt; }

private:
    enum class Stage
    {
        kTop,
        kStart,
        kEntries,
        kTexts,
        kParts,
        kAggregates,
        kDone
    };

    bool Step(Node& child);
    bool Start();
    bool StartAggregates();
    bool Record(Node& child, Label label, int64 limit, char const* holder);
    bool Entry(Node& child);
    bool Text(Node& child);
    bool Part(Node& child);
    bool Aggregate(Node& child);
    void CheckKey(uint32 key, int64 at);
    void CheckText(Node const& entry);
    void Note(Severity severity, char const* code, int64 offset, std::string words);

    Decoder& mDecoder;
    /// Without its content where somebody asked.
    Node mHolder;
    /// Where findings go; null where nobody wants them once more.
    Node* mNotes = nullptr;
    FieldSink mSink;
    Stage mStage = Stage::kStart;
    int64 mAt = 0;
    int64 mEnd = 0;
    int64 mCountAt = 0;
    uint32 mCount = 0;
    uint32 mIndex = 0;
    uint32 mRecordPart = 0;
    GUID mBefore{};
    uint32 mLastKey = 0;
    STRING::CoreString mLastText;
    /// Only from the first one on that is out of order: as long as keys ascend, none can be there twice.
    std::set<uint32> mKeys;
    std::set<STRING::CoreString> mTexts;
};
} // namespace KORVA::RECORDS
