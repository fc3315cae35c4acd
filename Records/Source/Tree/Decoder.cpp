#include "Tree/DecoderClass.h"

#include "Format/Guard.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/TessIO/ClassIds.h>

#include <algorithm>
#include <set>
#include <utility>

namespace KORVA::RECORDS
{

/// Class id and length. Whether the length can be believed.
bool Decoder::ReadHeader(Node& node, int64 limit, char const* holder)
{
    node.classId = LoadId(mContent.data() + mPosition, mOptions.order);
    KnownClass const* const known = mAs ? std::exchange(mAs, nullptr) : FindClass(node.classId);
    if (known)
        node.kind = known->kind;
    std::string const name = known ? std::string(" ") + known->name : "";
    if (mOptions.fields)
        Tell(mPosition, sizeof(GUID), Role::kClass, "class", GUIDToText(node.classId) + name);
    if (node.classId == GUID{})
        Note(node, Severity::kWarning, "class-zero", mPosition,
             "the id of its class is all zeros, which is no class's: these bytes are hardly a record");
    mPosition += static_cast<int64>(sizeof(GUID));
    int64 const at = mPosition;
    node.declared = Read<int64>(limit, Role::kLength, "length", "a length");
    int64 const left = limit - mPosition;
    if (node.declared < 0)
        Note(node, Severity::kError, "length-negative", at,
             fmt::format("its length is {}; the {} leaves {}", node.declared, holder, ByteCount(left)));
    else if (node.declared > left)
        Note(node, Severity::kError, "length-too-large", at,
             fmt::format("should be {}, the {} leaves {}", ByteCount(node.declared), holder, left));
    else if (node.declared > kLargestLength)
        Note(node, Severity::kError, "length-not-believed", at,
             fmt::format("its length is {}, more than the {} that are read", node.declared, kLargestLength));
    return node.regular;
}

/// Records and text entries count, for each takes memory.
void Decoder::Count(int64 offset)
{
    if (++(mOptions.count ? *mOptions.count : mRecords) > mOptions.work.limits.count)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("more than {} records: the record at offset {} is one too many",
                          mOptions.work.limits.count, offset));
    if (mOptions.work.progress && !mOptions.work.progress(offset, static_cast<int64>(mContent.size())))
        Raise(ErrorCode::kCancelled, offset, "it was wanted to end");
}

Node Decoder::Record(int64 offset, int64 limit, char const* holder, Label label, int depth)
{
    Count(offset);
    if (depth >= mOptions.work.limits.depth)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("the record at offset {} is nested more than {} deep", offset,
                          mOptions.work.limits.depth));
    mPosition = offset;
    if (mOptions.fields)
        mOptions.fields->OnRecord(offset, label, depth);
    Node node;
    node.label = std::move(label);
    node.offset = offset;
    bool const believed = ReadHeader(node, limit, holder);
    int64 const end = believed ? mPosition + node.declared : limit;
    node.length = end - offset;
    if (mPosition == end && believed)
    {
        // Such a record gives a new object and no more.
        Note(node, Severity::kNote, "empty", offset, "nothing but its class is written of it");
        node.regular = false;
    }
    else if (depth >= kDeepest)
        Note(node, Severity::kError, "nested-too-deep", offset,
             fmt::format("nested more than {} deep, it is not read", kDeepest));
    else
        ReadContent(node, end, depth);
    mPosition = end;
    if (mOptions.fields)
        mOptions.fields->OnRecordEnd(node);
    return node;
}

void Decoder::ReadContent(Node& node, int64 end, int depth)
{
    try
    {
        if (node.kind == Kind::kUnknownClass)
        {
            std::optional<ReadBody> const body =
                mOptions.classes
                    ? mOptions.classes->Read(node.classId,
                                             mContent.subspan(static_cast<std::size_t>(mPosition),
                                                              static_cast<std::size_t>(end - mPosition)),
                                             mPosition, mOptions.order)
                    : std::nullopt;
            if (!body)
            {
                bool const made = mOptions.classes && mOptions.classes->Makes(node.classId);
                Note(node, Severity::kNote, made ? "opaque-class" : "unknown-class", node.offset,
                     made ? "its class does not tell how it reads" : "nobody here knows its class");
                Tell(mPosition, end - mPosition, Role::kOpaque, "body", "of a class that is not known");
                return;
            }
            node.kind = Kind::kObject;
            Object(node, *body, depth);
        }
        else
            Body(node, end, depth);
        Aggregates(node, end, depth);
        if (mPosition < end)
            throw Broken{"bytes-left-over", mPosition,
                         fmt::format("{} at its end {} to nothing", ByteCount(end - mPosition),
                                     end - mPosition == 1 ? "belongs" : "belong")};
    }
    catch (Broken const& broken)
    {
        Note(node, Severity::kError, broken.code, broken.offset, broken.words);
    }
}

void Decoder::Body(Node& node, int64 end, int depth)
{
    switch (node.kind)
    {
    case Kind::kDictionary:
        Dictionary(node, end, depth);
        break;
    case Kind::kValue:
        PlainValue(node, end);
        break;
    case Kind::kStrings:
        Strings(node, end);
        break;
    case Kind::kURI:
        node.text = ReadString(node, end, Role::kValue, "text");
        break;
    case Kind::kRelativeURI:
        Relative(node, end);
        break;
    case Kind::kStringEntry:
    case Kind::kObject:
    case Kind::kUnknownClass:
        break;
    }
}

/// Looks a record up, or passes one of an unknown class by its length.
void Decoder::PassNested(int64 end)
{
    Count(mPosition);
    int height = 0;
    int64 next = 0;
    if (FindClass(LoadId(mContent.data() + mPosition, mOptions.order)))
    {
        auto const sound = mOptions.sound->find(mPosition);
        next = sound == mOptions.sound->end() ? 0 : sound->second.end;
        height = next == 0 ? 0 : sound->second.height;
    }
    else if (auto const length = Load<int64>(mContent.data() + mPosition + 16, mOptions.order);
             length >= 0 && length <= std::min(kLargestLength, end - mPosition - kHeader) &&
             !mOptions.misnamed->contains(mPosition))
        next = mPosition + kHeader + length;
    if (next == 0 || next > end)
        throw Broken{"nested-damaged", mPosition, "a record in it is damaged"};
    mPosition = next;
    mHeight = std::max(mHeight, height + 1);
}

void Decoder::Nested(std::vector<Node>& nodes, Label label, int64 end, int depth)
{
    Need(kHeader, end, "a record's header");
    if (mOptions.sound)
        return PassNested(end);
    nodes.push_back(Record(mPosition, end, "parent", std::move(label), depth + 1));
}

void Decoder::Dictionary(Node& node, int64 end, int depth)
{
    int64 const at = mPosition;
    auto const count = Read<uint32>(end, Role::kCount, "entries", "the number of entries");
    std::set<uint32> seen;
    bool ascending = true;
    for (uint32 i = 0; i < count; ++i)
    {
        int64 const keyAt = mPosition;
        if (end - mPosition < 4 + kHeader)
            throw Broken{"count-too-large", at,
                         fmt::format("should hold {} entries, there is room for {}", count, i)};
        auto const key = Read<uint32>(end, Role::kKey, "key", "a key");
        if (mOptions.sound)
        {
            Nested(node.entries, {}, end, depth);
            continue;
        }
        if (ascending && !seen.empty() && key < *seen.rbegin())
        {
            ascending = false;
            Note(node, Severity::kWarning, "keys-not-ascending", keyAt,
                 fmt::format("the key {} stands behind {}", key, *seen.rbegin()));
        }
        if (!seen.insert(key).second)
            Note(node, Severity::kWarning, "key-twice", keyAt,
                 fmt::format("the key {} is there twice; the last one counts", key));
        Nested(node.entries, {.type = Label::Type::kKey, .number = key, .text = {}, .id = {}}, end, depth);
    }
}

void Decoder::Object(Node& node, ReadBody const& body, int depth)
{
    int64 const end = mPosition + body.length;
    node.parts = body.parts;
    uint32 records = 0;
    for (Part& part : node.parts)
    {
        mPosition = part.offset;
        if (part.type == "record")
            Nested(node.entries, {.type = Label::Type::kPart, .number = records++, .text = {}, .id = {}},
                   part.offset + part.length, depth);
        else
        {
            std::string shown = ShownPart(mContent, part, mOptions.order);
            part.shown = part.type == "string" ? TextOfPart(mContent, part, mOptions.order).ToUTF8() : shown;
            Tell(part.offset, part.length, Role::kValue, part.type, std::move(shown));
        }
    }
    mPosition = end;
}

void Decoder::Aggregates(Node& node, int64 end, int depth)
{
    int64 const at = mPosition;
    auto const count = Read<int32>(end, Role::kCount, "aggregates", "the number of aggregates");
    node.aggregatesAt = at;
    if (count < 0)
        throw Broken{"aggregates-negative", at, fmt::format("it has {} aggregates", count)};
    GUID before{};
    for (int32 i = 0; i < count; ++i)
    {
        if (end - mPosition < 16 + kHeader)
            throw Broken{"aggregates-too-many", at,
                         fmt::format("should have {} aggregates, there is room for {}", count, i)};
        int64 const idAt = mPosition;
        GUID const iid = ReadId(end, Role::kKey, "interface", "an aggregate's id");
        if (iid == IO::IPERSISTENT_DATA || iid == IO::IPERSISTENT_DATA_EX)
            Note(node, Severity::kWarning, "aggregate-dropped", idAt,
                 "an aggregate under a persistence interface's id is dropped by the reader");
        else if (i > 0 && !std::less<GUID>()(before, iid))
            Note(node, Severity::kWarning, "aggregates-not-ascending", idAt,
                 fmt::format("the aggregate {} stands behind {}", GUIDToText(iid), GUIDToText(before)));
        before = iid;
        Nested(node.aggregates, {.type = Label::Type::kInterface, .number = 0, .text = {}, .id = iid}, end,
               depth);
    }
}

std::optional<Node> Decoder::ByContent(int64 offset, int64 limit)
{
    Node node;
    node.offset = offset;
    mPosition = offset;
    if (limit - offset < kHeader)
        return std::nullopt;
    static_cast<void>(ReadHeader(node, limit, "file"));
    if (node.kind == Kind::kUnknownClass)
        return std::nullopt;
    node.findings.clear();
    node.regular = true;
    try
    {
        Body(node, limit, 0);
        Aggregates(node, limit, 0);
    }
    catch (Broken const&)
    {
        return std::nullopt;
    }
    node.length = mPosition - offset;
    if (IsDamaged(node))
        return std::nullopt;
    return node;
}

std::optional<int64> Decoder::BodyEnd(int64 offset, int64 limit)
{
    Node node;
    mPosition = offset;
    static_cast<void>(ReadHeader(node, limit, "file"));
    if (node.kind == Kind::kUnknownClass)
        return std::nullopt;
    try
    {
        Body(node, limit, 0);
    }
    catch (Broken const&)
    {
        return std::nullopt;
    }
    return mPosition;
}

std::optional<SoundRecord> Decoder::Sound(int64 offset, KnownClass const& known)
{
    mAs = &known;
    Node const node = Record(offset, static_cast<int64>(mContent.size()), "file", {}, 0);
    if (mHeight >= mOptions.work.limits.depth)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("the record at offset {} holds others more than {} deep", offset,
                          mOptions.work.limits.depth));
    if (mHeight >= kDeepest || IsDamaged(node))
        return std::nullopt;
    bool const isText = node.kind == Kind::kURI || node.kind == Kind::kRelativeURI ||
                        node.kind == Kind::kStrings || node.value.type == "text";
    bool const isUsual = std::ranges::none_of(
        node.findings, [](Finding const& finding) { return finding.severity == Severity::kWarning; });
    return SoundRecord{node.End(), mHeight, isText ? node.aggregatesAt : 0, isUsual};
}

namespace
{
RecordTree DecodeAll(ByteView content, DecodeOptions const& options)
{
    auto const size = static_cast<int64>(content.size());
    if (size > options.work.limits.bytes)
        Raise(ErrorCode::kBeyondLimit, kNoOffset,
              fmt::format("{} bytes are more than {}", size, options.work.limits.bytes));
    Decoder decoder(content, options);
    RecordTree tree;
    tree.order = options.order;
    tree.size = size;
    while (size - tree.end >= kHeader)
    {
        auto const index = static_cast<uint32>(tree.records.size());
        tree.records.push_back(decoder.Record(
            tree.end, size, "file", {.type = Label::Type::kIndex, .number = index, .text = {}, .id = {}}, 0));
        tree.end = tree.records.back().End();
    }
    if (tree.end < size)
        tree.findings.push_back(
            {Severity::kError, "bytes-left-over", tree.end,
             fmt::format("{} at its end {} too few for a record", ByteCount(size - tree.end),
                         size - tree.end == 1 ? "is" : "are")});
    return tree;
}
} // namespace

Result<RecordTree> Decode(ByteView content, DecodeOptions const& options)
{
    return Guarded([&] { return DecodeAll(content, options); });
}

Result<Node> DecodeRecord(ByteView content, int64 offset, int64 limit, DecodeOptions const& options)
{
    return Guarded([&] { return Decoder(content, options).Record(offset, limit, "file", {}, 0); });
}

std::optional<Node> DecodeByContent(ByteView content, int64 offset, int64 limit, DecodeOptions const& options)
{
    return Decoder(content, options).ByContent(offset, limit);
}

std::optional<int64> EndOfBody(ByteView content, int64 offset, int64 limit, DecodeOptions const& options)
{
    return Decoder(content, options).BodyEnd(offset, limit);
}

std::optional<SoundRecord> SoundRecordAt(ByteView content, int64 offset, KnownClass const& known,
                                         DecodeOptions const& options)
{
    return Decoder(content, options).Sound(offset, known);
}
} // namespace KORVA::RECORDS
