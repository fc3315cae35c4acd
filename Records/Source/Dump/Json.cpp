#include "Format/Guard.h"
#include <tessio/Records/Dump/Json.h>
#include <tessio/Records/Format/Directories.h>

#include <tessio/ObjectModel/GUIDText.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace KORVA::RECORDS
{
namespace
{
using STRING::CoreString;

Json ContentJson(Value const& value)
{
    if (auto const* const integer = std::get_if<int64>(&value.content))
        return *integer;
    if (auto const* const integer = std::get_if<uint64>(&value.content))
        return *integer;
    if (auto const* const text = std::get_if<std::u16string>(&value.content))
        return CoreString(*text).ToUTF8();
    // Numbers that JSON can't write (infinities, not-a-number), identifiers and bytes stand as text.
    if (auto const* const number = std::get_if<double>(&value.content);
        number && std::abs(*number) <= std::numeric_limits<double>::max())
        return *number;
    if (auto const* const number = std::get_if<float>(&value.content);
        number && std::abs(*number) <= std::numeric_limits<float>::max())
        return static_cast<double>(*number);
    return Shown(value);
}

/// As its holder names it; empty at the top.
std::string LabelText(Label const& label)
{
    switch (label.type)
    {
    case Label::Type::kIndex:
        break;
    case Label::Type::kKey:
    case Label::Type::kPart:
        return std::to_string(label.number);
    case Label::Type::kText:
        return label.text.ToUTF8();
    case Label::Type::kInterface:
        return "aggregate " + GUIDToText(label.id);
    }
    return "";
}

void AddContent(Json& json, Node const& node)
{
    if (node.kind == Kind::kValue)
    {
        json["type"] = node.value.type;
        json["value"] = ContentJson(node.value);
    }
    if (node.kind == Kind::kRelativeURI)
        json["directory"] = DirectoryName(node.directory);
    if (node.kind == Kind::kStringEntry || node.kind == Kind::kURI || node.kind == Kind::kRelativeURI)
        json["value"] = node.text.ToUTF8();
}
} // namespace

Json ToJson(Finding const& finding, std::string const& path)
{
    return {{"severity", SeverityName(finding.severity)},
            {"code", finding.code},
            {"offset", finding.offset},
            {"path", path},
            {"words", finding.words}};
}

namespace
{
/// Without what it holds.
Json OwnJson(Node const& node, std::string const& path, std::string const& label)
{
    Json json = {{"offset", node.offset}, {"length", node.length}};
    if (!label.empty() || node.kind == Kind::kStringEntry)
        json["label"] = label;
    if (!path.empty())
        json["path"] = path;
    if (node.kind != Kind::kStringEntry)
    {
        std::string const name = ClassName(node.classId);
        json["classId"] = GUIDToText(node.classId);
        json["class"] = name.empty() ? Json(nullptr) : Json(name);
    }
    AddContent(json, node);
    Json parts = Json::array();
    for (Part const& part : node.parts)
        if (part.type != "record")
            parts.push_back({{"offset", part.offset},
                             {"length", part.length},
                             {"type", part.type},
                             {"value", part.shown}});
    if (!parts.empty())
        json["parts"] = std::move(parts);
    if (std::string const problem = Problem(node); !problem.empty())
        json["problem"] = problem;
    return json;
}

/// `path` is as it was when it returns.
void WriteWith(JsonPrinter& json, Reader& reader, Node& node, std::string& path)
{
    static_cast<void>(ValueOrRaise(reader.Complete(node)));
    json.BeginObject();
    json.Members(OwnJson(node, path, LabelText(node.label)));
    if (node.entryCount + node.aggregateCount > 0)
    {
        json.Key("children");
        json.BeginList();
        std::size_t const size = path.size();
        Cursor children = reader.Children(node);
        Node child;
        while (ValueOrRaise(children.Next(child)))
        {
            path += "/" + Segment(child.label);
            WriteWith(json, reader, child, path);
            path.resize(size);
        }
        json.End();
    }
    json.End();
}
} // namespace

Json ToJson(Node const& node, std::string const& path, std::string const& label)
{
    Json json = OwnJson(node, path, label);
    Json children = Json::array();
    for (auto const* const nodes : {&node.entries, &node.aggregates})
        for (Node const& child : *nodes)
            children.push_back(ToJson(child, path.empty() ? path : path + "/" + Segment(child.label)));
    if (!children.empty())
        json["children"] = std::move(children);
    return json;
}

Json ToJson(Node const& node, std::string const& path) { return ToJson(node, path, LabelText(node.label)); }

Result<bool> WriteNode(JsonPrinter& json, Reader& reader, Node node, std::string path)
{
    return Guarded([&] {
        WriteWith(json, reader, node, path);
        return true;
    });
}

Result<int64> WriteNodes(JsonPrinter& json, Reader& reader)
{
    return Guarded([&] {
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
        {
            std::string path = "/" + Segment(node.label);
            WriteWith(json, reader, node, path);
        }
        return records.Position();
    });
}
} // namespace KORVA::RECORDS
