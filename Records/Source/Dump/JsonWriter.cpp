#include "Dump/JsonPieces.h"
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

class Writer
{
public:
    Writer(ByteView content, Order order, bool raw) : mContent(content), mOrder(order), mRaw(raw) {}

    void Record(JsonPrinter& json, Node const& node) const;
    /// Writes what reading the document of the record gives.
    void GiveBack(RecordWriter& writer, Node const& node) const;

private:
    bool IsRaw(Node const& node) const { return mRaw || !node.regular || node.kind == Kind::kUnknownClass; }
    Json Raw(Node const& node) const;
    Json Leaf(Node const& node) const;
    void AddContent(JsonPrinter& json, Node const& node) const;
    void GiveContentBack(RecordWriter& writer, Node const& node) const;
    void AddValue(Json& json, Value const& value) const;
    Json PartValue(Part const& part) const;
    ByteView Slice(int64 offset, int64 length) const
    {
        return mContent.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
    }

    ByteView mContent;
    Order mOrder;
    bool mRaw;
};

Json Writer::Raw(Node const& node) const
{
    std::string const name = ClassName(node.classId);
    Json json = {{"class", name.empty() ? Json(nullptr) : Json(name)}, {"classId", GUIDToText(node.classId)}};
    if (std::string const problem = Problem(node); !problem.empty())
        json["damage"] = problem;
    int64 const size = node.length - kHeader;
    if (node.declared != size)
        json["length"] = std::to_string(node.declared);
    json["body"] = HexOf(Slice(node.offset + kHeader, size));
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

Json Writer::PartValue(Part const& part) const
{
    unsigned char const* const from = mContent.data() + part.offset;
    if (part.type == "bytes")
        return HexOf(Slice(part.offset, part.length));
    if (part.type == "string")
        return TextJson(TextOfPart(Slice(part.offset, part.length), part, mOrder));
    if (part.type == "bool")
        return *from != 0;
    if (part.type == "float")
    {
        auto const bits = Load<uint32>(from, mOrder);
        auto const number = std::bit_cast<float>(bits);
        return std::isfinite(number) ? Json(static_cast<double>(number)) : Json(fmt::format("0x{:X}", bits));
    }
    if (part.type == "double")
    {
        auto const bits = Load<uint64>(from, mOrder);
        auto const number = std::bit_cast<double>(bits);
        return std::isfinite(number) ? Json(number) : Json(fmt::format("0x{:X}", bits));
    }
    std::string const shown = ShownPart(Slice(part.offset, part.length), part, mOrder);
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

void Writer::AddContent(JsonPrinter& json, Node const& node) const
{
    std::size_t next = 0;
    switch (node.kind)
    {
    case Kind::kDictionary:
        json.Key("entries");
        json.BeginList();
        for (Node const& entry : node.entries)
        {
            json.BeginObject();
            json.Member("key", entry.label.number);
            json.Key("record");
            Record(json, entry);
            json.End();
        }
        return json.End();
    case Kind::kStrings:
        json.Key("strings");
        json.BeginList();
        for (Node const& entry : node.entries)
            json.Value({{"key", TextJson(entry.label.text)}, {"value", TextJson(entry.text)}});
        return json.End();
    case Kind::kObject:
        json.Key("parts");
        json.BeginList();
        for (Part const& part : node.parts)
        {
            json.BeginObject();
            json.Member("type", part.type);
            json.Key(part.type == "record" ? "record" : "value");
            if (part.type == "record")
                Record(json, node.entries[next++]);
            else
                json.Value(PartValue(part));
            json.End();
        }
        return json.End();
    case Kind::kValue:
    case Kind::kURI:
    case Kind::kRelativeURI:
        return json.Members(Leaf(node));
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        break;
    }
}

void Writer::Record(JsonPrinter& json, Node const& node) const
{
    if (IsRaw(node))
        return json.Value(Raw(node));
    std::string const name = ClassName(node.classId);
    json.BeginObject();
    json.Member("class", name.empty() ? Json(nullptr) : Json(name));
    json.Member("classId", GUIDToText(node.classId));
    AddContent(json, node);
    if (!node.aggregates.empty())
    {
        json.Key("aggregates");
        json.BeginList();
        for (Node const& aggregate : node.aggregates)
        {
            json.BeginObject();
            json.Member("interface", GUIDToText(aggregate.label.id));
            json.Key("record");
            Record(json, aggregate);
            json.End();
        }
        json.End();
    }
    json.End();
}

/// As it is after being written and parsed.
Json Parsed(Json const& json) { return Json::parse(json.dump()); }

void Writer::GiveContentBack(RecordWriter& writer, Node const& node) const
{
    std::size_t next = 0;
    switch (node.kind)
    {
    case Kind::kDictionary:
        writer.Put(static_cast<uint32>(node.entries.size()));
        for (Node const& entry : node.entries)
        {
            writer.Put(entry.label.number);
            GiveBack(writer, entry);
        }
        break;
    case Kind::kStrings:
        writer.Put(static_cast<uint32>(node.entries.size()));
        for (Node const& entry : node.entries)
        {
            PutJsonText(writer, Parsed(TextJson(entry.label.text)));
            PutJsonText(writer, Parsed(TextJson(entry.text)));
        }
        break;
    case Kind::kObject:
        for (Part const& part : node.parts)
            if (part.type == "record")
                GiveBack(writer, node.entries[next++]);
            else
                PutJsonPart(writer, Parsed({{"type", part.type}, {"value", PartValue(part)}}));
        break;
    case Kind::kValue:
    case Kind::kURI:
    case Kind::kRelativeURI:
        PutJsonLeaf(writer, Parsed(Leaf(node)), node.kind);
        break;
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        break;
    }
}

void Writer::GiveBack(RecordWriter& writer, Node const& node) const
{
    // Such stand as the bytes that they are.
    if (IsRaw(node))
        return writer.Put(Slice(node.offset, node.length));
    writer.Begin(node.classId);
    GiveContentBack(writer, node);
    writer.Put(static_cast<uint32>(node.aggregates.size()));
    for (Node const& aggregate : node.aggregates)
    {
        writer.Put(aggregate.label.id);
        GiveBack(writer, aggregate);
    }
    writer.End();
}

Json Head(RecordTree const& tree)
{
    return {{"schema", 1}, {"format", "tessio-dump"}, {"order", OrderName(tree.order)}};
}

/// What the values would not give back byte for byte stands as bytes.
void WriteRecord(JsonPrinter& json, RecordTree const& tree, Node const& record, ByteView content)
{
    Writer const writer(content, tree.order, false);
    RecordWriter back(tree.order);
    writer.GiveBack(back, record);
    bool const same =
        std::ranges::equal(back.Written(), content.subspan(static_cast<std::size_t>(record.offset),
                                                           static_cast<std::size_t>(record.length)));
    Writer(content, tree.order, !same).Record(json, record);
}
} // namespace

void WriteJson(JsonPrinter& json, RecordTree const& tree, ByteView content)
{
    json.BeginObject();
    json.Members(Head(tree));
    json.Key("records");
    json.BeginList();
    for (Node const& record : tree.records)
        WriteRecord(json, tree, record, content);
    json.End();
    if (tree.end < tree.size)
        json.Member("rest", HexOf(content.subspan(static_cast<std::size_t>(tree.end))));
    json.End();
    json.Finish();
}

std::string WriteJsonLines(RecordTree const& tree, ByteView content)
{
    std::string lines = Head(tree).dump() + "\n";
    JsonPrinter json([&](std::string_view piece) { lines += piece; }, JsonPrinter::Layout::kOneLine);
    for (Node const& record : tree.records)
    {
        WriteRecord(json, tree, record, content);
        json.Finish();
    }
    if (tree.end < tree.size)
    {
        json.Value({{"rest", HexOf(content.subspan(static_cast<std::size_t>(tree.end)))}});
        json.Finish();
    }
    return lines;
}
} // namespace KORVA::RECORDS
