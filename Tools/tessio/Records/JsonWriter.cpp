#include "ObjectModel/GUIDText.h"
#include "Records/Decoder.h"
#include "Records/JsonDump.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <bit>
#include <cmath>

namespace TOOL
{
namespace
{
using namespace KORVA;
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

    Json Record(Node const& node) const;

private:
    Json Raw(Node const& node) const;
    void AddContent(Json& json, Node const& node) const;
    void AddValue(Json& json, Value const& value) const;
    Json Parts(Node const& node) const;
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
        return TextJson(TextOfPart(mContent, part, mOrder));
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
    std::string const shown = ShownPart(mContent, part, mOrder);
    if (part.type == "guid" || part.type.ends_with("64"))
        return shown;
    return Json::parse(shown);
}

Json Writer::Parts(Node const& node) const
{
    Json parts = Json::array();
    std::size_t next = 0;
    for (Part const& part : node.parts)
        if (part.type == "record")
            parts.push_back({{"type", "record"}, {"record", Record(node.entries[next++])}});
        else
            parts.push_back({{"type", part.type}, {"value", PartValue(part)}});
    return parts;
}

void Writer::AddContent(Json& json, Node const& node) const
{
    Json list = Json::array();
    switch (node.kind)
    {
    case Kind::kDictionary:
        for (Node const& entry : node.entries)
            list.push_back({{"key", entry.label.number}, {"record", Record(entry)}});
        json["entries"] = std::move(list);
        break;
    case Kind::kStrings:
        for (Node const& entry : node.entries)
            list.push_back({{"key", TextJson(entry.label.text)}, {"value", TextJson(entry.text)}});
        json["strings"] = std::move(list);
        break;
    case Kind::kValue:
        AddValue(json, node.value);
        break;
    case Kind::kURI:
        json["text"] = TextJson(node.text);
        break;
    case Kind::kRelativeURI:
        json["scheme"] = TextJson(node.scheme);
        json["host"] = TextJson(node.host);
        json["port"] = node.port;
        json["path"] = TextJson(node.text);
        json["directory"] = node.directory;
        break;
    case Kind::kObject:
        json["parts"] = Parts(node);
        break;
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        break;
    }
}

Json Writer::Record(Node const& node) const
{
    if (mRaw || !node.regular || node.kind == Kind::kUnknownClass)
        return Raw(node);
    std::string const name = ClassName(node.classId);
    Json json = {{"class", name.empty() ? Json(nullptr) : Json(name)}, {"classId", GUIDToText(node.classId)}};
    AddContent(json, node);
    if (!node.aggregates.empty())
    {
        Json aggregates = Json::array();
        for (Node const& aggregate : node.aggregates)
            aggregates.push_back(
                {{"interface", GUIDToText(aggregate.label.id)}, {"record", Record(aggregate)}});
        json["aggregates"] = std::move(aggregates);
    }
    return json;
}

Json Head(RecordTree const& tree)
{
    return {{"schema", 1}, {"format", "tessio-dump"}, {"order", OrderName(tree.order)}};
}

/// Read back at once: what the values would not give back byte for byte stands as bytes.
Json Checked(RecordTree const& tree, Node const& record, ByteView content)
{
    Json json = Writer(content, tree.order, false).Record(record);
    Json whole = Head(tree);
    whole["records"] = Json::array({json});
    Bytes const back = ReadJson(whole.dump(), "the dump");
    bool const same = std::ranges::equal(back, content.subspan(static_cast<std::size_t>(record.offset),
                                                               static_cast<std::size_t>(record.length)));
    return same ? json : Writer(content, tree.order, true).Record(record);
}
} // namespace

Json WriteJson(RecordTree const& tree, ByteView content)
{
    Json document = Head(tree);
    document["records"] = Json::array();
    for (Node const& record : tree.records)
        document["records"].push_back(Checked(tree, record, content));
    if (tree.end < tree.size)
        document["rest"] = HexOf(content.subspan(static_cast<std::size_t>(tree.end)));
    return document;
}

std::string WriteJsonLines(RecordTree const& tree, ByteView content)
{
    std::string lines = Head(tree).dump() + "\n";
    for (Node const& record : tree.records)
        lines += Checked(tree, record, content).dump() + "\n";
    if (tree.end < tree.size)
        lines += Json({{"rest", HexOf(content.subspan(static_cast<std::size_t>(tree.end)))}}).dump() + "\n";
    return lines;
}
} // namespace TOOL
