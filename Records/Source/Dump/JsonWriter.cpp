#include "Dump/JsonPieces.h"
#include "Format/Guard.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Dump/JsonDump.h>
#include <tessio/Records/Tree/Reader.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <bit>
#include <cmath>

namespace KORVA::RECORDS
{
namespace
{
using STRING::CoreString;

std::string HexOf(ByteView bytes) { return fmt::format("{:02x}", fmt::join(bytes, "")); }

Json TextJson(CoreString const& text)
{
    if (text.IsWellFormed())
        return text.ToUTF8();
    std::string units;
    for (char16_t const unit : text.view())
        units += fmt::format("{}{:04X}", units.empty() ? "" : " ", static_cast<unsigned>(unit));
    return {{"units", units}};
}

/// As it is after being written and parsed.
Json Parsed(Json const& json) { return Json::parse(json.dump()); }

class Writer
{
public:
    Writer(JsonPrinter& json, Reader& reader) : mJson(json), mReader(reader) {}

    void Record(Node& node);
    std::string HexOfFile(int64 from, int64 length) const { return HexOf(Slice(from, length)); }

private:
    bool IsPlain(Node const& node) const;
    Json Raw(Node const& node) const;
    Json Leaf(Node const& node) const;
    void AddContent(Node const& node, Cursor& children);
    void AddValue(Json& json, Value const& value) const;
    Json PartValue(RECORDS::Part const& part) const;
    Bytes OwnBytes(Node const& node) const;
    void GiveBack(RecordWriter& writer, Node const& node) const;
    Bytes Slice(int64 offset, int64 length) const { return ValueOrRaise(mReader.BytesAt(offset, length)); }

    JsonPrinter& mJson;
    Reader& mReader;
};

Json Writer::Raw(Node const& node) const
{
    std::string const name = ClassName(node.classId);
    Json json = {{"class", name.empty() ? Json(nullptr) : Json(name)}, {"classId", GUIDToText(node.classId)}};
    if (std::string const problem = Problem(node); !problem.empty())
        json["damage"] = problem;
    int64 const size = node.length - IO::kRecordHeadSize;
    if (node.declared != size)
        json["length"] = std::to_string(node.declared);
    json["body"] = HexOf(Slice(node.offset + IO::kRecordHeadSize, size));
    return json;
}

void Writer::AddValue(Json& json, Value const& value) const
{
    json["type"] = value.type;
    if (value.type == "unknown")
        json["tag"] = fmt::format("0x{:08X}", value.tag);
    else if (value.type == "bytes")
        json["value"] = HexOf(std::get<Bytes>(value.content));
    else if (value.type == "text")
        json["value"] = TextJson(CoreString(std::get<std::u16string>(value.content)));
    else if (value.type == "guid")
        json["value"] = Shown(value);
    else if (value.type != "none")
    {
        bool const isFloating = value.type == "float" || value.type == "double";
        auto const floating = std::bit_cast<double>(value.floating);
        if (!IsPlainNumber(value) || (isFloating && !std::isfinite(floating)))
            json["fields"] = {fmt::format("0x{:X}", value.integer), fmt::format("0x{:X}", value.floating)};
        else if (isFloating)
            json["value"] = floating;
        else if (value.type.ends_with("64"))
            json["value"] = Shown(value);
        else
            json["value"] = static_cast<int64>(value.integer);
    }
}

Json Writer::PartValue(RECORDS::Part const& part) const
{
    Order const order = mReader.GetOrder();
    Bytes const bytes = Slice(part.offset, part.length);
    unsigned char const* const from = bytes.data();
    if (part.type == "bytes")
        return HexOf(bytes);
    if (part.type == "string")
        return TextJson(TextOfPart(bytes, part, order));
    if (part.type == "bool")
        return *from != 0;
    if (part.type == "float")
    {
        auto const bits = Load<uint32>(from, order);
        auto const number = std::bit_cast<float>(bits);
        return std::isfinite(number) ? Json(static_cast<double>(number)) : Json(fmt::format("0x{:X}", bits));
    }
    if (part.type == "double")
    {
        auto const bits = Load<uint64>(from, order);
        auto const number = std::bit_cast<double>(bits);
        return std::isfinite(number) ? Json(number) : Json(fmt::format("0x{:X}", bits));
    }
    std::string const shown = ShownPart(bytes, part, order);
    if (part.type == "guid" || part.type.ends_with("64"))
        return shown;
    return Json::parse(shown);
}

/// What a record says that holds no others.
Json Writer::Leaf(Node const& node) const
{
    Json json = Json::object();
    if (node.kind == Kind::kValue)
        AddValue(json, node.value);
    else if (node.kind == Kind::kURI)
        json["text"] = TextJson(node.text);
    else if (node.kind == Kind::kRelativeURI)
        json = {{"scheme", TextJson(node.scheme)},
                {"host", TextJson(node.host)},
                {"port", node.port},
                {"path", TextJson(node.text)},
                {"directory", node.directory}};
    return json;
}

void Writer::AddContent(Node const& node, Cursor& children)
{
    Node child;
    switch (node.kind)
    {
    case Kind::kDictionary:
        mJson.Key("entries");
        mJson.BeginList();
        for (uint32 i = 0; i < node.entryCount && ValueOrRaise(children.Next(child)); ++i)
        {
            mJson.BeginObject();
            mJson.Member("key", child.label.number);
            mJson.Key("record");
            Record(child);
            mJson.End();
        }
        return mJson.End();
    case Kind::kStrings:
        mJson.Key("strings");
        mJson.BeginList();
        for (uint32 i = 0; i < node.entryCount && ValueOrRaise(children.Next(child)); ++i)
            mJson.Value({{"key", TextJson(child.label.text)}, {"value", TextJson(child.text)}});
        return mJson.End();
    case Kind::kObject:
        mJson.Key("parts");
        mJson.BeginList();
        for (RECORDS::Part const& part : node.parts)
        {
            mJson.BeginObject();
            mJson.Member("type", part.type);
            mJson.Key(part.type == "record" ? "record" : "value");
            if (part.type != "record")
                mJson.Value(PartValue(part));
            else if (ValueOrRaise(children.Next(child)))
                Record(child);
            mJson.End();
        }
        return mJson.End();
    case Kind::kValue:
    case Kind::kURI:
    case Kind::kRelativeURI:
        return mJson.Members(Leaf(node));
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        break;
    }
}

/// Writes what reading the document of what the record says itself gives.
void Writer::GiveBack(RecordWriter& writer, Node const& node) const
{
    if (node.kind == Kind::kObject)
    {
        for (RECORDS::Part const& part : node.parts)
            if (part.type != "record")
                PutJsonPart(writer, Parsed({{"type", part.type}, {"value", PartValue(part)}}));
        return;
    }
    if (node.kind != Kind::kStrings)
        return PutJsonLeaf(writer, Parsed(Leaf(node)), node.kind);
    Cursor children = mReader.Children(node);
    Node child;
    for (uint32 i = 0; i < node.entryCount && ValueOrRaise(children.Next(child)); ++i)
    {
        PutJsonText(writer, Parsed(TextJson(child.label.text)));
        PutJsonText(writer, Parsed(TextJson(child.text)));
    }
}

/// The bytes that this should be.
Bytes Writer::OwnBytes(Node const& node) const
{
    constexpr int64 kCount = 4;
    int64 const body = node.offset + IO::kRecordHeadSize;
    if (node.kind == Kind::kStrings)
        return Slice(body + kCount, node.aggregatesAt - body - kCount);
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

/// Whether the document gives back what the record says itself, byte for byte: what it would not give back
/// stands as bytes.
bool Writer::IsPlain(Node const& node) const
{
    if (!node.regular || node.kind == Kind::kUnknownClass)
        return false;
    if (node.kind == Kind::kDictionary)
        return true;
    RecordWriter back(mReader.GetOrder());
    GiveBack(back, node);
    return std::ranges::equal(back.Written(), OwnBytes(node));
}

void Writer::Record(Node& node)
{
    static_cast<void>(ValueOrRaise(mReader.Complete(node)));
    if (!IsPlain(node))
        return mJson.Value(Raw(node));
    std::string const name = ClassName(node.classId);
    mJson.BeginObject();
    mJson.Member("class", name.empty() ? Json(nullptr) : Json(name));
    mJson.Member("classId", GUIDToText(node.classId));
    Cursor children = mReader.Children(node);
    AddContent(node, children);
    if (node.aggregateCount > 0)
    {
        mJson.Key("aggregates");
        mJson.BeginList();
        Node child;
        while (ValueOrRaise(children.Next(child)))
        {
            mJson.BeginObject();
            mJson.Member("interface", GUIDToText(child.label.id));
            mJson.Key("record");
            Record(child);
            mJson.End();
        }
        mJson.End();
    }
    mJson.End();
}

Json Head(Reader const& reader)
{
    return {{"schema", 1}, {"format", "tessio-dump"}, {"order", OrderName(reader.GetOrder())}};
}
} // namespace

Result<bool> WriteJson(JsonPrinter& json, Reader& reader)
{
    return Guarded([&] {
        json.BeginObject();
        json.Members(Head(reader));
        json.Key("records");
        json.BeginList();
        Writer writer(json, reader);
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
            writer.Record(node);
        json.End();
        if (int64 const end = records.Position(); end < reader.Size())
            json.Member("rest", writer.HexOfFile(end, reader.Size() - end));
        json.End();
        json.Finish();
        return true;
    });
}

Result<bool> WriteJsonLines(Reader& reader, TextSink const& sink)
{
    return Guarded([&] {
        sink(Head(reader).dump() + "\n");
        JsonPrinter json(sink, JsonPrinter::Layout::kOneLine);
        Writer writer(json, reader);
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
        {
            writer.Record(node);
            json.Finish();
        }
        if (int64 const end = records.Position(); end < reader.Size())
        {
            json.Value({{"rest", writer.HexOfFile(end, reader.Size() - end)}});
            json.Finish();
        }
        return true;
    });
}
} // namespace KORVA::RECORDS
