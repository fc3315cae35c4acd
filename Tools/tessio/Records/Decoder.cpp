#include "Records/Decoder.h"

#include "Directories.h"
#include "Failure.h"
#include "ObjectModel/GUIDText.h"
#include "Output.h"
#include "TessIO/ClassIds.h"

#include <fmt/format.h>

#include <bit>
#include <set>

namespace TOOL
{
namespace
{
using namespace KORVA;
using STRING::CoreString;

/// Thrown inside a record where its bytes stop making sense; costs the rest of that record.
struct Broken
{
    char const* code;
    int64 offset;
    std::string words;
};

constexpr std::size_t kShownUnits = 64;

/// The beginning of a long text, for a field's value.
std::string ShownText(CoreString const& text)
{
    return text.size() <= kShownUnits ? Quoted(text) : Quoted(text.substr(0, kShownUnits)) + "...";
}

class Decoder
{
public:
    Decoder(ByteView content, DecodeOptions const& options) : mContent(content), mOptions(options) {}

    Node Record(int64 offset, int64 limit, char const* holder, Label label, int depth);
    std::optional<Node> ByContent(int64 offset, int64 limit);

private:
    void Count(int64 offset);
    bool ReadHeader(Node& node, int64 limit, char const* holder);
    void ReadContent(Node& node, int64 end, int depth);
    void Body(Node& node, int64 end, int depth);
    void Dictionary(Node& node, int64 end, int depth);
    void Strings(Node& node, int64 end);
    void CheckOrder(Node& node, Node const& entry, std::set<CoreString>& seen);
    void Relative(Node& node, int64 end);
    void PlainValue(Node& node, int64 end);
    void Number(Value& value, int64 end);
    void Buffer(Node& node, int64 end);
    void Object(Node& node, ReadBody const& body, int depth);
    void Aggregates(Node& node, int64 end, int depth);
    void Nested(std::vector<Node>& nodes, Label label, int64 end, int depth);

    void Need(int64 bytes, int64 end, char const* what) const;
    template <class N>
    N Read(int64 end, Role role, char const* name, char const* what);
    GUID ReadId(int64 end, Role role, char const* name, char const* what);
    CoreString ReadString(Node& node, int64 end, Role role, char const* name);
    void Tell(int64 offset, int64 length, Role role, std::string name, std::string value);
    void Note(Node& node, Severity severity, char const* code, int64 offset, std::string words);

    ByteView mContent;
    DecodeOptions const& mOptions;
    int64 mPosition = 0;
    int64 mRecords = 0;
};

void Decoder::Tell(int64 offset, int64 length, Role role, std::string name, std::string value)
{
    if (mOptions.fields && length > 0)
        mOptions.fields->OnField({offset, length, role, std::move(name), std::move(value)});
}

void Decoder::Note(Node& node, Severity severity, char const* code, int64 offset, std::string words)
{
    node.findings.push_back({severity, code, offset, std::move(words)});
    if (severity == Severity::kError)
        node.regular = false;
}

void Decoder::Need(int64 bytes, int64 end, char const* what) const
{
    if (end - mPosition < bytes)
        throw Broken{"cut-short", mPosition,
                     fmt::format("{} needs {} bytes, {} are left", what, bytes, end - mPosition)};
}

template <class N>
N Decoder::Read(int64 end, Role role, char const* name, char const* what)
{
    Need(sizeof(N), end, what);
    auto const number = Load<N>(mContent.data() + mPosition, mOptions.order);
    if (mOptions.fields)
        Tell(mPosition, sizeof(N), role, name, fmt::format("{}", number));
    mPosition += static_cast<int64>(sizeof(N));
    return number;
}

GUID Decoder::ReadId(int64 end, Role role, char const* name, char const* what)
{
    Need(sizeof(GUID), end, what);
    GUID const id = LoadId(mContent.data() + mPosition, mOptions.order);
    if (mOptions.fields)
        Tell(mPosition, sizeof(GUID), role, name, GUIDToText(id));
    mPosition += static_cast<int64>(sizeof(GUID));
    return id;
}

CoreString Decoder::ReadString(Node& node, int64 end, Role role, char const* name)
{
    int64 const start = mPosition;
    auto const count = Read<int32>(end, Role::kCount, "bytes of text", "a string's length");
    if (count < 0)
        throw Broken{"string-length-negative", start, fmt::format("a string has the length {}", count)};
    // One byte is no unit, and the reader leaves it where it is.
    bool const isOdd = count % 2 != 0;
    if (isOdd)
    {
        Note(node, Severity::kWarning, "string-length-odd", start,
             fmt::format("a string of {} bytes: units have two", count));
        node.regular = false;
    }
    if (count < 2)
        return {};
    if (end - mPosition < count)
        throw Broken{
            "string-too-long", start,
            fmt::format("a string should be {} bytes, the record leaves {}", count, end - mPosition)};
    CoreString text;
    text.reserve(static_cast<std::size_t>(count / 2));
    for (int64 i = 0; i < count / 2; ++i)
        text.push_back(Load<char16_t>(mContent.data() + mPosition + 2 * i, mOptions.order));
    if (mOptions.fields)
        Tell(mPosition, count, role, name, ShownText(text));
    mPosition += count;
    return text;
}

/// Class id and length. Whether the length can be believed.
bool Decoder::ReadHeader(Node& node, int64 limit, char const* holder)
{
    node.classId = LoadId(mContent.data() + mPosition, mOptions.order);
    KnownClass const* const known = FindClass(node.classId);
    if (known)
        node.kind = known->kind;
    std::string const name = known ? std::string(" ") + known->name : "";
    if (mOptions.fields)
        Tell(mPosition, sizeof(GUID), Role::kClass, "class", GUIDToText(node.classId) + name);
    mPosition += static_cast<int64>(sizeof(GUID));
    int64 const at = mPosition;
    node.declared = Read<int64>(limit, Role::kLength, "length", "a length");
    int64 const left = limit - mPosition;
    if (node.declared < 0)
        Note(node, Severity::kError, "length-negative", at,
             fmt::format("its length is {}; the {} leaves {} bytes", node.declared, holder, left));
    else if (node.declared > left)
        Note(node, Severity::kError, "length-too-large", at,
             fmt::format("should be {} bytes, the {} leaves {}", node.declared, holder, left));
    else if (node.declared > kLargestLength)
        Note(node, Severity::kError, "length-not-believed", at,
             fmt::format("its length is {}, more than the {} that are read", node.declared, kLargestLength));
    return node.regular;
}

/// Records and text entries count, for each takes memory.
void Decoder::Count(int64 offset)
{
    if (++mRecords > mOptions.limits.count)
        throw Failure(Exit::kLimit,
                      fmt::format("more than {} records: the record at offset {} is one too many",
                                  mOptions.limits.count, offset));
    if (mOptions.progress)
        mOptions.progress->At(offset);
}

Node Decoder::Record(int64 offset, int64 limit, char const* holder, Label label, int depth)
{
    Count(offset);
    if (depth >= mOptions.limits.depth)
        throw Failure(Exit::kLimit, fmt::format("the record at offset {} is nested more than {} deep", offset,
                                                mOptions.limits.depth));
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
                         fmt::format("{} bytes at its end belong to nothing", end - mPosition)};
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

void Decoder::Nested(std::vector<Node>& nodes, Label label, int64 end, int depth)
{
    Need(kHeader, end, "a record's header");
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

/// As long as keys ascend, none can be there twice; from then on all of them are kept in `seen`.
void Decoder::CheckOrder(Node& node, Node const& entry, std::set<CoreString>& seen)
{
    CoreString const& key = entry.label.text;
    if (!node.entries.empty() && seen.empty() && !(node.entries.back().label.text < key))
        for (Node const& before : node.entries)
            seen.insert(before.label.text);
    if (seen.empty())
        return;
    CoreString const& before = node.entries.back().label.text;
    if (!seen.insert(key).second)
        Note(node, Severity::kWarning, "key-twice", entry.offset,
             fmt::format("the key {} is there twice; the last one counts", Quoted(key)));
    else if (key < before)
        Note(node, Severity::kWarning, "keys-not-ascending", entry.offset,
             fmt::format("the key {} stands behind {}", Quoted(key), Quoted(before)));
}

void Decoder::Strings(Node& node, int64 end)
{
    std::set<CoreString> seen;
    int64 const at = mPosition;
    auto const count = Read<uint32>(end, Role::kCount, "entries", "the number of entries");
    for (uint32 i = 0; i < count; ++i)
    {
        if (end - mPosition < 8)
            throw Broken{"count-too-large", at,
                         fmt::format("should hold {} entries, there is room for {}", count, i)};
        Count(mPosition);
        Node entry;
        entry.kind = Kind::kStringEntry;
        entry.offset = mPosition;
        entry.label.type = Label::Type::kText;
        entry.label.text = ReadString(node, end, Role::kKey, "key");
        entry.text = ReadString(node, end, Role::kValue, "value");
        entry.length = mPosition - entry.offset;
        CheckOrder(node, entry, seen);
        node.entries.push_back(std::move(entry));
    }
}

void Decoder::Relative(Node& node, int64 end)
{
    node.scheme = ReadString(node, end, Role::kValue, "scheme");
    node.host = ReadString(node, end, Role::kValue, "host");
    node.port = Read<uint32>(end, Role::kValue, "port", "a port");
    node.text = ReadString(node, end, Role::kValue, "path");
    int64 const at = mPosition;
    node.directory = Read<int32>(end, Role::kValue, "directory", "a directory's number");
    if (!DirectoryOfType(node.directory))
        Note(node, Severity::kWarning, "directory-unknown", at,
             fmt::format("no directory has the number {}", node.directory));
}

void Decoder::PlainValue(Node& node, int64 end)
{
    int64 const at = mPosition;
    Need(4, end, "a type tag");
    Value& value = node.value;
    value.tag = Load<uint32>(mContent.data() + mPosition, mOptions.order);
    mPosition += 4;
    ValueType const* const type = FindType(value.tag);
    value.type = type ? type->name : "unknown";
    Tell(at, 4, Role::kTag, "type", value.type);
    if (!type)
    {
        Note(node, Severity::kWarning, "type-unknown", at,
             fmt::format("nobody knows the type tag 0x{:08X}; the value reads as empty", value.tag));
        return;
    }
    if (value.type == "none")
        return;
    if (value.type == "guid")
    {
        // In memory order, whatever the file's.
        Need(sizeof(GUID), end, "an identifier");
        GUID const id = LoadId(mContent.data() + mPosition, IO::IDataProvider::kLittleEndian);
        value.content = id;
        Tell(mPosition, sizeof(GUID), Role::kValue, "value", GUIDToText(id));
        mPosition += static_cast<int64>(sizeof(GUID));
    }
    else if (value.type == "bytes" || value.type == "text")
        Buffer(node, end);
    else
    {
        Number(value, end);
        if (!IsPlainNumber(value))
            Note(node, Severity::kWarning, "number-fields-differ", at + 4,
                 fmt::format("as a whole number it is {}, as a floating-point number {}",
                             value.type.starts_with('u') ? std::to_string(value.integer)
                                                         : std::to_string(static_cast<int64>(value.integer)),
                             std::bit_cast<double>(value.floating)));
    }
}

void Decoder::Buffer(Node& node, int64 end)
{
    int64 const at = mPosition;
    Value& value = node.value;
    auto const length = Read<int32>(end, Role::kCount, "bytes of value", "a buffer's length");
    if (length < 0)
        throw Broken{"buffer-length-negative", at, fmt::format("a buffer has the length {}", length)};
    if (end - mPosition < length)
        throw Broken{
            "buffer-too-long", at,
            fmt::format("a buffer should be {} bytes, the record leaves {}", length, end - mPosition)};
    unsigned char const* const from = mContent.data() + mPosition;
    if (value.type == "bytes")
    {
        value.content = Bytes(from, from + length);
        Tell(mPosition, length, Role::kValue, "value", fmt::format("{} bytes", length));
    }
    else
    {
        std::u16string units;
        for (int64 i = 0; i + 1 < length; i += 2)
            units += Load<char16_t>(from + i, IO::IDataProvider::kLittleEndian);
        if (mOptions.fields)
            Tell(mPosition, length, Role::kValue, "value", ShownText(CoreString(units)));
        value.content = std::move(units);
        if (length % 2 != 0)
        {
            Note(node, Severity::kWarning, "text-length-odd", at,
                 fmt::format("a text of {} bytes: units have two", length));
            node.regular = false;
        }
    }
    mPosition += length;
}

void Decoder::Number(Value& value, int64 end)
{
    Need(16, end, "a number");
    if (value.type.starts_with('u'))
        value.integer = Read<uint64>(end, Role::kValue, "as a whole number", "a number");
    else
        value.integer = static_cast<uint64>(Read<int64>(end, Role::kValue, "as a whole number", "a number"));
    value.floating = Load<uint64>(mContent.data() + mPosition, mOptions.order);
    auto const floating = std::bit_cast<double>(value.floating);
    if (mOptions.fields)
        Tell(mPosition, 8, Role::kValue, "as a floating-point number", fmt::format("{}", floating));
    mPosition += 8;
    if (value.type == "float")
        value.content = static_cast<float>(floating);
    else if (value.type == "double")
        value.content = floating;
    else if (value.type.starts_with('u'))
        value.content = value.integer;
    else
        value.content = static_cast<int64>(value.integer);
}

void Decoder::Object(Node& node, ReadBody const& body, int depth)
{
    int64 const end = mPosition + body.length;
    node.parts = body.parts;
    uint32 records = 0;
    for (Part const& part : body.parts)
    {
        mPosition = part.offset;
        if (part.type == "record")
            Nested(node.entries, {.type = Label::Type::kPart, .number = records++, .text = {}, .id = {}},
                   part.offset + part.length, depth);
        else
            Tell(part.offset, part.length, Role::kValue, part.type,
                 ShownPart(mContent, part, mOptions.order));
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

/// How much of a file looks like top-level records in that order: 2 for one of a known class, 1 for records
/// of unknown classes that end exactly where the file does, 0 otherwise.
int Likeliness(ByteView content, Order order)
{
    auto const size = static_cast<int64>(content.size());
    for (int64 at = 0; at < size;)
    {
        if (size - at < kHeader)
            return 0;
        if (FindClass(LoadId(content.data() + at, order)))
            return 2;
        auto const length = Load<int64>(content.data() + at + 16, order);
        if (length < 0 || length > kLargestLength || length > size - at - kHeader)
            return 0;
        at += kHeader + length;
    }
    return size == 0 ? 0 : 1;
}
} // namespace

RecordTree Decode(ByteView content, DecodeOptions const& options)
{
    auto const size = static_cast<int64>(content.size());
    if (size > options.limits.bytes)
        throw Failure(Exit::kLimit, fmt::format("{} bytes are more than {}", size, options.limits.bytes));
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
             fmt::format("{} bytes at its end are too few for a record", size - tree.end)});
    return tree;
}

Node DecodeRecord(ByteView content, int64 offset, int64 limit, DecodeOptions const& options)
{
    return Decoder(content, options).Record(offset, limit, "file", {}, 0);
}

std::optional<Node> DecodeByContent(ByteView content, int64 offset, int64 limit, DecodeOptions const& options)
{
    return Decoder(content, options).ByContent(offset, limit);
}

std::optional<Order> FindOrder(ByteView content)
{
    int const little = Likeliness(content, IO::IDataProvider::kLittleEndian);
    int const big = Likeliness(content, IO::IDataProvider::kBigEndian);
    if (little == 0 && big == 0)
        return std::nullopt;
    return big > little ? IO::IDataProvider::kBigEndian : IO::IDataProvider::kLittleEndian;
}
} // namespace TOOL
