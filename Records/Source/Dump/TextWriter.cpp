#include "Format/Guard.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Dump/Text.h>
#include <tessio/Records/Format/Directories.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Reader.h>
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>

namespace KORVA::RECORDS
{
namespace
{

constexpr std::size_t kBytesPerLine = 32;
/// How much text is collected before it is handed on.
constexpr std::size_t kPiece = std::size_t{64} << 10;
/// The number of aggregates behind a body.
constexpr int64 kCount = 4;

class Writer
{
public:
    Writer(Reader& reader, TextSink const& sink) : mReader(reader), mSink(sink) {}

    void Put(std::string_view text) { mText += text; }
    void Record(Node& node, int depth);
    void Rest(int64 from, int64 to)
    {
        mText += "rest ";
        HexOfFile(from, to - from, 0);
        mText += "\n";
    }
    void HandOn()
    {
        mSink(mText);
        mText.clear();
    }

private:
    bool IsPlain(Node const& node);
    bool IsReadBack(std::string const& words, Bytes const& bytes) const;
    bool AreTextsReadBack(Node const& node);
    std::string OwnWords(Node const& node);
    Bytes OwnBytes(Node const& node);
    void RawRecord(Node const& node, int depth);
    void Opening(Node const& node, int depth);
    void PlainValue(Node const& node, int depth);
    void Part(RECORDS::Part const& part, int depth);
    void Entries(Node const& node, Cursor& children, int depth);
    void Hex(ByteView bytes, int depth);
    void HexOfFile(int64 from, int64 length, int depth);

    Bytes Slice(int64 offset, int64 length) { return ValueOrRaise(mReader.BytesAt(offset, length)); }
    bool Next(Cursor& children, Node& child) { return ValueOrRaise(children.Next(child)); }
    void NewLine(int depth)
    {
        if (mText.size() >= kPiece)
            HandOn();
        mText += '\n';
        mText.append(static_cast<std::size_t>(Indent(depth)), ' ');
    }
    template <class... Arguments>
    void Add(fmt::format_string<Arguments...> format, Arguments&&... arguments)
    {
        fmt::format_to(std::back_inserter(mText), format, std::forward<Arguments>(arguments)...);
    }

    Reader& mReader;
    TextSink const& mSink;
    std::string mText;
};

void Writer::Hex(ByteView bytes, int depth)
{
    bool const isLong = bytes.size() > kBytesPerLine;
    mText += '{';
    for (std::size_t at = 0; at < bytes.size(); at += kBytesPerLine)
    {
        if (isLong)
            NewLine(depth + 1);
        else
            mText += ' ';
        Add("{:02x}", fmt::join(bytes.subspan(at, std::min(kBytesPerLine, bytes.size() - at)), " "));
    }
    if (isLong)
        NewLine(depth);
    else if (!bytes.empty())
        mText += ' ';
    mText += '}';
}

/// The same of bytes that may be too many to be in memory.
void Writer::HexOfFile(int64 from, int64 length, int depth)
{
    constexpr auto kLine = static_cast<int64>(kBytesPerLine);
    if (length <= kLine)
        return Hex(Slice(from, length), depth);
    mText += '{';
    for (int64 at = 0; at < length; at += kLine)
    {
        NewLine(depth + 1);
        Add("{:02x}", fmt::join(Slice(from + at, std::min(kLine, length - at)), " "));
    }
    NewLine(depth);
    mText += '}';
}

void Writer::RawRecord(Node const& node, int depth)
{
    std::string const problem = Problem(node);
    if (std::string const name = ClassName(node.classId); !name.empty())
        Add("# {}{}", name, problem.empty() ? "" : ", damaged: " + problem);
    else if (!problem.empty())
        Add("# damaged: {}", problem);
    if (!problem.empty() || FindClass(node.classId))
        NewLine(depth);
    Add("record {} ", GUIDToText(node.classId));
    int64 const size = node.length - IO::kRecordHeadSize;
    if (node.declared != size)
        Add("length {} ", node.declared);
    HexOfFile(node.offset + IO::kRecordHeadSize, size, depth);
}

void Writer::PlainValue(Node const& node, int depth)
{
    Value const& value = node.value;
    if (value.type == "unknown")
        return Add("value 0x{:08X}", value.tag);
    mText += value.type;
    if (value.type == "none")
        return;
    mText += ' ';
    if (value.type == "bytes")
        return Hex(std::get<Bytes>(value.content), depth);
    if (value.type == "guid" || value.type == "text")
    {
        mText += Shown(value);
        return;
    }
    bool const isFloating = value.type == "float" || value.type == "double";
    // Not every not-a-number is written alike, so these stand as bits too.
    if (!IsPlainNumber(value) || (isFloating && !std::isfinite(std::bit_cast<double>(value.floating))))
        Add("fields 0x{:X} 0x{:X}", value.integer, value.floating);
    else
        mText += Shown(value);
}

void Writer::Part(RECORDS::Part const& part, int depth)
{
    Order const order = mReader.GetOrder();
    Bytes const bytes = Slice(part.offset, part.length);
    if (part.type == "bytes")
    {
        mText += "bytes ";
        return Hex(bytes, depth);
    }
    if (part.type == "float" || part.type == "double")
    {
        bool const isFloat = part.type == "float";
        uint64 const bits = isFloat ? Load<uint32>(bytes.data(), order) : Load<uint64>(bytes.data(), order);
        bool const isFinite = isFloat ? std::isfinite(std::bit_cast<float>(static_cast<uint32>(bits)))
                                      : std::isfinite(std::bit_cast<double>(bits));
        if (!isFinite)
            return Add("{} bits 0x{:X}", part.type, bits);
    }
    Add("{} {}", part.type, ShownPart(bytes, part, order));
}

/// What stands before the braces around what a record holds; of one that holds none all of it.
void Writer::Opening(Node const& node, int depth)
{
    switch (node.kind)
    {
    case Kind::kDictionary:
        mText += "PersistentDictionary ";
        // It can be written under two ids.
        if (node.classId != IO::IID_DICTIONARY)
            Add("{} ", GUIDToText(node.classId));
        return;
    case Kind::kStrings:
        return Put("StringDictionary ");
    case Kind::kValue:
        return PlainValue(node, depth);
    case Kind::kURI:
        return Add("URI {}", Quoted(node.text));
    case Kind::kRelativeURI:
        return Add("RelativeURI {} {} {} {} {}", Quoted(node.scheme), Quoted(node.host), node.port,
                   Quoted(node.text), DirectoryName(node.directory));
    case Kind::kObject:
        return Add("object {} ", GUIDToText(node.classId));
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        break;
    }
}

void Writer::Entries(Node const& node, Cursor& children, int depth)
{
    Node child;
    mText += '{';
    if (node.kind == Kind::kObject)
    {
        for (RECORDS::Part const& part : node.parts)
        {
            NewLine(depth + 1);
            if (part.type != "record")
            {
                Part(part, depth + 1);
                continue;
            }
            mText += "holds ";
            if (Next(children, child))
                Record(child, depth + 1);
        }
        NewLine(depth);
    }
    for (uint32 i = 0; node.kind != Kind::kObject && i < node.entryCount && Next(children, child); ++i)
    {
        NewLine(depth + 1);
        if (child.kind == Kind::kStringEntry)
        {
            Add("{} = {}", Quoted(child.label.text), Quoted(child.text));
            continue;
        }
        Add("{}: ", child.label.number);
        Record(child, depth + 1);
    }
    if (node.kind != Kind::kObject && node.entryCount > 0)
        NewLine(depth);
    mText += '}';
}

/// The words of what a record says itself, without other records.
std::string Writer::OwnWords(Node const& node)
{
    Writer own(mReader, mSink);
    own.Opening(node, 0);
    if (node.kind == Kind::kObject)
    {
        own.mText += "{ ";
        for (RECORDS::Part const& part : node.parts)
            if (part.type != "record")
            {
                own.Part(part, 0);
                own.mText += ' ';
            }
        own.mText += '}';
    }
    return std::move(own.mText);
}

/// The bytes that these words stand for.
Bytes Writer::OwnBytes(Node const& node)
{
    int64 const body = node.offset + IO::kRecordHeadSize;
    if (node.kind != Kind::kObject)
        return Slice(body, node.bodyEnd - body);
    Bytes bytes;
    for (RECORDS::Part const& part : node.parts)
        if (part.type != "record")
        {
            Bytes const more = Slice(part.offset, part.length);
            bytes.insert(bytes.end(), more.begin(), more.end());
        }
    return bytes;
}

/// Whether reading a record's words gives a body of these bytes.
bool Writer::IsReadBack(std::string const& words, Bytes const& bytes) const
{
    Result<Bytes> const back =
        ReadText(fmt::format("tessio-dump 1 {}\n{}\n", OrderName(mReader.GetOrder()), words));
    return back && static_cast<int64>(back->size()) >= IO::kRecordHeadSize + kCount &&
           std::equal(back->begin() + IO::kRecordHeadSize, back->end() - kCount, bytes.begin(), bytes.end());
}

bool Writer::AreTextsReadBack(Node const& node)
{
    Cursor children = mReader.Children(node);
    Node child;
    for (uint32 i = 0; i < node.entryCount && Next(children, child); ++i)
    {
        Bytes const entry = Slice(child.offset, child.length);
        // A dictionary with this entry alone, behind its count.
        Result<Bytes> const back = ReadText(fmt::format("tessio-dump 1 {}\nStringDictionary {{ {} = {} }}\n",
                                                        OrderName(mReader.GetOrder()),
                                                        Quoted(child.label.text), Quoted(child.text)));
        if (!back || !std::equal(back->begin() + IO::kRecordHeadSize + kCount, back->end() - kCount,
                                 entry.begin(), entry.end()))
            return false;
    }
    return true;
}

/// Whether words give back what the record says itself, byte for byte: what they would not give back stands
/// as bytes.
bool Writer::IsPlain(Node const& node)
{
    if (!node.regular || node.kind == Kind::kUnknownClass)
        return false;
    if (node.kind == Kind::kDictionary)
        return true;
    return node.kind == Kind::kStrings ? AreTextsReadBack(node) : IsReadBack(OwnWords(node), OwnBytes(node));
}

void Writer::Record(Node& node, int depth)
{
    static_cast<void>(ValueOrRaise(mReader.Complete(node)));
    if (!IsPlain(node))
        return RawRecord(node, depth);
    Opening(node, depth);
    Cursor children = mReader.Children(node);
    if (node.kind == Kind::kDictionary || node.kind == Kind::kStrings || node.kind == Kind::kObject)
        Entries(node, children, depth);
    if (node.aggregateCount == 0)
        return;
    mText += " with {";
    Node child;
    while (Next(children, child))
    {
        NewLine(depth + 1);
        Add("{}: ", GUIDToText(child.label.id));
        Record(child, depth + 1);
    }
    NewLine(depth);
    mText += '}';
}
} // namespace

Result<bool> WriteText(Reader& reader, TextSink const& sink)
{
    return Guarded([&] {
        Writer writer(reader, sink);
        writer.Put(fmt::format("tessio-dump 1 {}\n", OrderName(reader.GetOrder())));
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
        {
            writer.Record(node, 0);
            writer.Put("\n");
        }
        if (records.Position() < reader.Size())
            writer.Rest(records.Position(), reader.Size());
        writer.HandOn();
        return true;
    });
}
} // namespace KORVA::RECORDS
