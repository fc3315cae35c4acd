// What records are made of: numbers, texts, plain values.
#include "Tree/Decoder.h"

#include "Format/Guard.h"

#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Directories.h>
#include <tessio/Records/Format/Words.h>

#include <bit>

namespace KORVA::RECORDS
{
using STRING::CoreString;

namespace
{
constexpr std::size_t kShownUnits = 64;

/// The beginning of a long text, for a field's value.
std::string ShownText(CoreString const& text)
{
    return text.size() <= kShownUnits ? Quoted(text) : Quoted(text.substr(0, kShownUnits)) + "...";
}
} // namespace

void Decoder::Tell(int64 offset, int64 length, Role role, std::string name, std::string value)
{
    if (mSink && length > 0)
        mSink({offset, length, role, std::move(name), std::move(value)});
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
                     fmt::format("{} needs {}, {} {} left", what, ByteCount(bytes), end - mPosition,
                                 end - mPosition == 1 ? "is" : "are")};
}

GUID Decoder::ReadId(int64 end, Role role, char const* name, char const* what)
{
    Need(sizeof(GUID), end, what);
    GUID const id = LoadId(mWindow.At(mPosition, sizeof(GUID)), mOptions.order);
    if (mSink)
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
             fmt::format("a string of {}: units have two", ByteCount(count)));
        node.regular = false;
    }
    if (count < 2)
        return {};
    if (end - mPosition < count)
        throw Broken{
            "string-too-long", start,
            fmt::format("a string should be {}, the record leaves {}", ByteCount(count), end - mPosition)};
    CoreString text;
    text.reserve(static_cast<std::size_t>(count / 2));
    unsigned char const* const units = mWindow.At(mPosition, count);
    for (int64 i = 0; i < count / 2; ++i)
        text.push_back(Load<char16_t>(units + 2 * i, mOptions.order));
    if (mSink)
        Tell(mPosition, count, role, name, ShownText(text));
    mPosition += count;
    return text;
}

Node Decoder::TextEntry(Node& holder, int64 end)
{
    Node entry;
    entry.kind = Kind::kStringEntry;
    entry.offset = mPosition;
    entry.depth = holder.depth + 1;
    entry.label.type = Label::Type::kText;
    entry.label.text = ReadString(holder, end, Role::kKey, "key");
    entry.text = ReadString(holder, end, Role::kValue, "value");
    entry.length = mPosition - entry.offset;
    entry.isComplete = true;
    return entry;
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
    value.tag = Load<uint32>(mWindow.At(mPosition, 4), mOptions.order);
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
        GUID const id = LoadId(mWindow.At(mPosition, sizeof(GUID)), IO::IDataProvider::kLittleEndian);
        value.content = id;
        if (mSink)
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
            fmt::format("a buffer should be {}, the record leaves {}", ByteCount(length), end - mPosition)};
    unsigned char const* const from = mWindow.At(mPosition, length);
    if (value.type == "bytes")
    {
        value.content = Bytes(from, from + length);
        if (mSink)
            Tell(mPosition, length, Role::kValue, "value", ByteCount(length));
    }
    else
    {
        std::u16string units;
        for (int64 i = 0; i + 1 < length; i += 2)
            units += Load<char16_t>(from + i, IO::IDataProvider::kLittleEndian);
        if (mSink)
            Tell(mPosition, length, Role::kValue, "value", ShownText(CoreString(units)));
        value.content = std::move(units);
        if (length % 2 != 0)
        {
            Note(node, Severity::kWarning, "text-length-odd", at,
                 fmt::format("a text of {}: units have two", ByteCount(length)));
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
    value.floating = Load<uint64>(mWindow.At(mPosition, 8), mOptions.order);
    auto const floating = std::bit_cast<double>(value.floating);
    if (mSink)
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

void Decoder::Count(int64 offset)
{
    Limits const& limits = mOptions.work.limits;
    if (++mRecords > limits.count)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("more than {} records: the record at offset {} is one too many", limits.count,
                          offset));
    if (mOptions.work.progress && !mOptions.work.progress(offset, Size()))
        Raise(ErrorCode::kCancelled, offset, "it was wanted to end");
}

void Decoder::CheckDepth(int64 offset, int depth) const
{
    int64 const deepest = mOptions.work.limits.depth;
    if (depth >= deepest)
        Raise(ErrorCode::kBeyondLimit, offset,
              fmt::format("the record at offset {} is nested more than {} deep", offset, deepest));
}

/// Class id and length.
Node Decoder::Head(int64 offset, int64 limit, char const* holder, Label label, int depth)
{
    Node node;
    node.label = std::move(label);
    node.offset = offset;
    node.depth = depth;
    mPosition = offset;
    node.classId = LoadId(mWindow.At(offset, IO::kRecordHeadSize), mOptions.order);
    KnownClass const* const known = FindClass(node.classId);
    if (known)
        node.kind = known->kind;
    if (mSink)
        Tell(offset, sizeof(GUID), Role::kClass, "class",
             GUIDToText(node.classId) + (known ? std::string(" ") + known->name : ""));
    if (node.classId == GUID{})
        Note(node, Severity::kWarning, "class-zero", offset,
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
    else if (node.declared > IO::kGreatestLength)
        Note(node, Severity::kError, "length-not-believed", at,
             fmt::format("its length is {}, more than the {} that are read", node.declared,
                         IO::kGreatestLength));
    node.length = node.regular ? IO::kRecordHeadSize + node.declared : limit - offset;
    return node;
}

void Decoder::Leaf(Node& node, int64 end)
{
    switch (node.kind)
    {
    case Kind::kValue:
        return PlainValue(node, end);
    case Kind::kURI:
        node.text = ReadString(node, end, Role::kValue, "text");
        return;
    case Kind::kRelativeURI:
        return Relative(node, end);
    case Kind::kUnknownClass:
    case Kind::kObject:
        return Object(node, end);
    case Kind::kDictionary:
    case Kind::kStrings:
    case Kind::kStringEntry:
        break;
    }
}

/// Of a plug-in's class, if one makes it.
void Decoder::Object(Node& node, int64 end)
{
    ClassReader const* const classes = mOptions.classes;
    if (node.kind == Kind::kUnknownClass)
    {
        std::optional<ReadBody> body =
            classes ? classes->Read(node.classId, At(mPosition, end - mPosition), mPosition, mOptions.order)
                    : std::nullopt;
        if (!body)
        {
            bool const isMade = classes && classes->Makes(node.classId);
            Note(node, Severity::kNote, isMade ? "opaque-class" : "unknown-class", node.offset,
                 isMade ? "its class does not tell how it reads" : "nobody here knows its class");
            return;
        }
        node.kind = Kind::kObject;
        node.parts = std::move(body->parts);
        node.bodyEnd = mPosition + body->length;
        for (Part& part : node.parts)
            if (part.type != "record")
            {
                ByteView const bytes = At(part.offset, part.length);
                part.shown = part.type == "string" ? TextOfPart(bytes, part, mOptions.order).ToUTF8()
                                                   : ShownPart(bytes, part, mOptions.order);
            }
    }
    mPosition = node.bodyEnd;
}
} // namespace KORVA::RECORDS
