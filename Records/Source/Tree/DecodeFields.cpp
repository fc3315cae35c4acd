// What records are made of: numbers, texts, plain values.
#include "Tree/DecoderClass.h"

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
                     fmt::format("{} needs {}, {} {} left", what, ByteCount(bytes), end - mPosition,
                                 end - mPosition == 1 ? "is" : "are")};
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
    if (mOptions.sound)
    {
        mPosition += count;
        return text;
    }
    text.reserve(static_cast<std::size_t>(count / 2));
    for (int64 i = 0; i < count / 2; ++i)
        text.push_back(Load<char16_t>(mContent.data() + mPosition + 2 * i, mOptions.order));
    if (mOptions.fields)
        Tell(mPosition, count, role, name, ShownText(text));
    mPosition += count;
    return text;
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

/// How many of `count` string entries are there, by their lengths alone.
std::size_t Decoder::StringEntriesAhead(uint32 count, int64 end) const
{
    int64 at = mPosition;
    for (std::size_t texts = 0; texts < std::size_t{2} * count; ++texts)
    {
        if (end - at < 4)
            return texts / 2;
        auto const length = Load<int32>(mContent.data() + at, mOptions.order);
        at += 4;
        if (length < 0 || length > end - at)
            return texts / 2;
        at += length < 2 ? 0 : length;
    }
    return count;
}

void Decoder::Strings(Node& node, int64 end)
{
    std::set<CoreString> seen;
    int64 const at = mPosition;
    auto const count = Read<uint32>(end, Role::kCount, "entries", "the number of entries");
    // Room for all of them at once: a list that grows stands in memory twice meanwhile.
    if (!mOptions.sound)
        node.entries.reserve(StringEntriesAhead(count, end));
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
        if (mOptions.sound)
            continue;
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
        if (mOptions.fields)
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
    unsigned char const* const from = mContent.data() + mPosition;
    if (mOptions.sound)
    {
        mPosition += length;
        return;
    }
    if (value.type == "bytes")
    {
        value.content = Bytes(from, from + length);
        if (mOptions.fields)
            Tell(mPosition, length, Role::kValue, "value", ByteCount(length));
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
} // namespace KORVA::RECORDS
