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

class Writer
{
public:
    Writer(ByteView content, Order order, bool raw) : mContent(content), mOrder(order), mRaw(raw) {}

    void Record(Node const& node, int depth);
    void Rest(int64 from, int64 to)
    {
        mText += "rest ";
        Hex(Slice(from, to - from), 0);
        mText += "\n";
    }

    std::string Take() { return std::move(mText); }

private:
    void Body(Node const& node, int depth);
    void RawRecord(Node const& node, int depth);
    void PlainValue(Node const& node, int depth);
    void Parts(Node const& node, int depth);
    void Entries(Node const& node, int depth);
    void Hex(ByteView bytes, int depth);

    ByteView Slice(int64 offset, int64 length) const
    {
        return mContent.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
    }
    void NewLine(int depth)
    {
        mText += '\n';
        mText.append(static_cast<std::size_t>(Indent(depth)), ' ');
    }
    template <class... Arguments>
    void Add(fmt::format_string<Arguments...> format, Arguments&&... arguments)
    {
        fmt::format_to(std::back_inserter(mText), format, std::forward<Arguments>(arguments)...);
    }

    ByteView mContent;
    Order mOrder;
    bool mRaw;
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
    int64 const size = node.length - kHeader;
    if (node.declared != size)
        Add("length {} ", node.declared);
    Hex(Slice(node.offset + kHeader, size), depth);
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

void Writer::Parts(Node const& node, int depth)
{
    mText += '{';
    std::size_t next = 0;
    for (Part const& part : node.parts)
    {
        NewLine(depth + 1);
        if (part.type == "record")
        {
            mText += "holds ";
            Record(node.entries[next++], depth + 1);
        }
        else if (part.type == "bytes")
        {
            mText += "bytes ";
            Hex(Slice(part.offset, part.length), depth + 1);
        }
        else if (part.type == "float" || part.type == "double")
        {
            unsigned char const* const from = mContent.data() + part.offset;
            bool const isFloat = part.type == "float";
            uint64 const bits = isFloat ? Load<uint32>(from, mOrder) : Load<uint64>(from, mOrder);
            bool const isFinite = isFloat ? std::isfinite(std::bit_cast<float>(static_cast<uint32>(bits)))
                                          : std::isfinite(std::bit_cast<double>(bits));
            if (isFinite)
                Add("{} {}", part.type, ShownPart(Slice(part.offset, part.length), part, mOrder));
            else
                Add("{} bits 0x{:X}", part.type, bits);
        }
        else
            Add("{} {}", part.type, ShownPart(Slice(part.offset, part.length), part, mOrder));
    }
    NewLine(depth);
    mText += '}';
}

void Writer::Entries(Node const& node, int depth)
{
    mText += '{';
    for (Node const& entry : node.entries)
    {
        NewLine(depth + 1);
        if (entry.kind == Kind::kStringEntry)
            Add("{} = {}", Quoted(entry.label.text), Quoted(entry.text));
        else
        {
            Add("{}: ", entry.label.number);
            Record(entry, depth + 1);
        }
    }
    if (!node.entries.empty())
        NewLine(depth);
    mText += '}';
}

void Writer::Body(Node const& node, int depth)
{
    switch (node.kind)
    {
    case Kind::kDictionary:
        mText += "PersistentDictionary ";
        // It can be written under two ids.
        if (node.classId != IO::IID_DICTIONARY)
            Add("{} ", GUIDToText(node.classId));
        return Entries(node, depth);
    case Kind::kStrings:
        mText += "StringDictionary ";
        return Entries(node, depth);
    case Kind::kValue:
        return PlainValue(node, depth);
    case Kind::kURI:
        return Add("URI {}", Quoted(node.text));
    case Kind::kRelativeURI:
        return Add("RelativeURI {} {} {} {} {}", Quoted(node.scheme), Quoted(node.host), node.port,
                   Quoted(node.text), DirectoryName(node.directory));
    case Kind::kObject:
        Add("object {} ", GUIDToText(node.classId));
        return Parts(node, depth);
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        break;
    }
}

void Writer::Record(Node const& node, int depth)
{
    if (mRaw || !node.regular || node.kind == Kind::kUnknownClass)
        return RawRecord(node, depth);
    Body(node, depth);
    if (node.aggregates.empty())
        return;
    mText += " with {";
    for (Node const& aggregate : node.aggregates)
    {
        NewLine(depth + 1);
        Add("{}: ", GUIDToText(aggregate.label.id));
        Record(aggregate, depth + 1);
    }
    NewLine(depth);
    mText += '}';
}
} // namespace

std::string WriteText(RecordTree const& tree, ByteView content)
{
    std::string const header = fmt::format("tessio-dump 1 {}\n", OrderName(tree.order));
    std::string text = header;
    for (Node const& record : tree.records)
    {
        auto const written = [&](bool raw) {
            Writer writer(content, tree.order, raw);
            writer.Record(record, 0);
            return writer.Take() + "\n";
        };
        std::string const words = written(false);
        // Read back at once: what the words would not give back byte for byte stands as bytes.
        Result<Bytes> const back = ReadText(header + words);
        ByteView const original =
            content.subspan(static_cast<std::size_t>(record.offset), static_cast<std::size_t>(record.length));
        text += back && std::ranges::equal(*back, original) ? words : written(true);
    }
    if (tree.end < tree.size)
    {
        Writer writer(content, tree.order, true);
        writer.Rest(tree.end, tree.size);
        text += writer.Take();
    }
    return text;
}
} // namespace KORVA::RECORDS
