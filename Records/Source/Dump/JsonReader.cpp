#include "Dump/JsonPieces.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Dump/JsonDump.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Reader.h>
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <bit>
#include <charconv>
#include <limits>

namespace KORVA::RECORDS
{
namespace
{
using STRING::CoreString;

/// Thrown where a document is no dump; caught where its source is known.
struct Unfit
{
    std::string why;
};

/// For messages: the beginning of it.
std::string ShownBriefly(Json const& json)
{
    constexpr std::size_t kShown = 60;
    return Escaped(json.dump().substr(0, kShown));
}

/// Ends reading where a document is nested deeper than records can be.
void CheckDepth(std::string_view text)
{
    static constexpr int kDeepestJson = 3 * IO::kMostNestedRecords + 100;
    int depth = 0;
    bool isText = false;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        char const c = text[at];
        if (isText && c == '\\')
            ++at;
        else if (c == '"')
            isText = !isText;
        else if (!isText && (c == '[' || c == '{') && ++depth > kDeepestJson)
            throw Unfit{fmt::format("it is nested more than {} deep", kDeepestJson)};
        else if (!isText && (c == ']' || c == '}'))
            --depth;
    }
}

/// In time that grows as the text does. Looking at the parser's events instead would have it search all of a
/// list at the end of each of its items.
Json ParseJson(std::string_view text)
{
    CheckDepth(text);
    return Json::parse(text);
}

Json const& Member(Json const& json, char const* name)
{
    if (!json.is_object() || !json.contains(name))
        throw Unfit{fmt::format("there is no \"{}\" in {}", name, ShownBriefly(json))};
    return json.at(name);
}

std::string const& String(Json const& json, char const* what)
{
    if (!json.is_string())
        throw Unfit{fmt::format("{} should be a string, not {}", what, ShownBriefly(json))};
    return json.get_ref<std::string const&>();
}

Json const& List(Json const& json, char const* name)
{
    Json const& list = Member(json, name);
    if (!list.is_array())
        throw Unfit{fmt::format("\"{}\" should be a list", name)};
    return list;
}

/// From a number or, as 64 bits have it, from a string in decimal or hexadecimal digits.
template <class Number>
Number Whole(Json const& json, char const* what)
{
    std::string const text = json.is_string()       ? json.get<std::string>()
                             : json.is_structured() ? std::string()
                                                    : json.dump();
    std::string_view digits = text;
    int base = 10;
    if (digits.starts_with("0x"))
    {
        base = 16;
        digits.remove_prefix(2);
    }
    Number number{};
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size())
        throw Unfit{fmt::format("{} is no {}", Escaped(text.substr(0, 60)), what)};
    return number;
}

double Floating(Json const& json)
{
    if (!json.is_number())
        throw Unfit{fmt::format("{} is no number", ShownBriefly(json))};
    return json.get<double>();
}

GUID Id(Json const& json)
{
    if (auto const id = GUIDFromText(String(json, "an identifier")))
        return *id;
    throw Unfit{ShownBriefly(json) + " is no identifier"};
}

Bytes Hex(Json const& json)
{
    std::string const& text = String(json, "bytes");
    Bytes bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (std::from_chars(text.data() + 2 * i, text.data() + 2 * i + 2, bytes[i], 16).ptr !=
            text.data() + 2 * i + 2)
            throw Unfit{"bytes are pairs of hexadecimal digits"};
    if (text.size() % 2 != 0)
        throw Unfit{"half a byte is left over"};
    return bytes;
}

CoreString Text(Json const& json)
{
    if (json.is_string())
        return CoreString(std::string_view(json.get_ref<std::string const&>()));
    CoreString text;
    std::string_view units = String(Member(json, "units"), "\"units\"");
    while (!units.empty())
    {
        uint32 unit = 0;
        std::string_view const digits = units.substr(0, units.find(' '));
        if (std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16).ptr !=
                digits.data() + digits.size() ||
            digits.size() != 4)
            throw Unfit{"units are hexadecimal numbers of four digits"};
        text.push_back(static_cast<char16_t>(unit));
        units.remove_prefix(std::min(units.size(), digits.size() + 1));
    }
    return text;
}

class Parser
{
public:
    explicit Parser(RecordWriter& writer) : mWriter(writer) {}

    void Record(Json const& json, int depth);
    void Rest(Json const& json) { mWriter.Put(ByteView(Hex(json))); }
    void Content(Json const& json, Kind kind, int depth);
    void Part(Json const& json, int depth);

private:
    void PlainValue(Json const& json);
    void Number(Json const& json, std::string const& type);

    RecordWriter& mWriter;
};

void Parser::Number(Json const& json, std::string const& type)
{
    NumberFields fields;
    if (json.contains("fields"))
    {
        Json const& list = List(json, "fields");
        if (list.size() != 2)
            throw Unfit{"\"fields\" are two numbers"};
        fields = {Whole<uint64>(list[0], "whole number"),
                  Whole<uint64>(list[1], "floating-point number's bits")};
    }
    else if (type == "float" || type == "double")
        fields = FieldsOfFloating(type, Floating(Member(json, "value")));
    else
    {
        Json const& value = Member(json, "value");
        uint64 const integer = type.starts_with('u') ? Whole<uint64>(value, type.c_str())
                                                     : static_cast<uint64>(Whole<int64>(value, type.c_str()));
        fields = FieldsOfWhole(type, integer);
        if (fields.integer != integer)
            throw Unfit{fmt::format("{} is out of range for {}", ShownBriefly(value), type)};
    }
    mWriter.Put(fields.integer);
    mWriter.Put(fields.floating);
}

void Parser::PlainValue(Json const& json)
{
    std::string const& name = String(Member(json, "type"), "\"type\"");
    if (name == "unknown")
        return mWriter.Put(Whole<uint32>(Member(json, "tag"), "type tag"));
    ValueType const* const type = FindType(name);
    if (!type)
        throw Unfit{Quoted(name) + " is no type of value"};
    mWriter.Put(type->tag);
    if (name == "none")
        return;
    if (name == "guid")
        return mWriter.Put(ByteView(StoredId(Id(Member(json, "value")), IO::IDataProvider::kLittleEndian)));
    if (name == "bytes")
    {
        Bytes const bytes = Hex(Member(json, "value"));
        mWriter.Put(static_cast<int32>(bytes.size()));
        return mWriter.Put(ByteView(bytes));
    }
    if (name != "text")
        return Number(json, name);
    CoreString const text = Text(Member(json, "value"));
    mWriter.Put(static_cast<int32>(2 * text.size()));
    for (char16_t const unit : text.view())
    {
        unsigned char bytes[2];
        Store(bytes, unit, IO::IDataProvider::kLittleEndian);
        mWriter.Put(ByteView(bytes));
    }
}

void Parser::Part(Json const& json, int depth)
{
    std::string const& type = String(Member(json, "type"), "\"type\"");
    if (type == "record")
        return Record(Member(json, "record"), depth + 1);
    Json const& value = Member(json, "value");
    if (type == "bytes")
        return mWriter.Put(ByteView(Hex(value)));
    if (type == "string")
        return mWriter.Put(Text(value));
    if (type == "guid")
        return mWriter.Put(Id(value));
    if (type == "bool" && value.is_boolean())
        return mWriter.Put(static_cast<unsigned char>(value.get<bool>()));
    if (type == "float")
        return mWriter.Put(value.is_string() ? Whole<uint32>(value, "32 bits")
                                             : std::bit_cast<uint32>(static_cast<float>(Floating(value))));
    if (type == "double")
        return mWriter.Put(value.is_string() ? Whole<uint64>(value, "64 bits")
                                             : std::bit_cast<uint64>(Floating(value)));
    if (type == "int8")
        return mWriter.Put(Whole<signed char>(value, "int8"));
    if (type == "uint8")
        return mWriter.Put(Whole<unsigned char>(value, "uint8"));
    if (type == "int16")
        return mWriter.Put(Whole<short>(value, "int16"));
    if (type == "uint16")
        return mWriter.Put(Whole<unsigned short>(value, "uint16"));
    if (type == "int32")
        return mWriter.Put(Whole<int32>(value, "int32"));
    if (type == "uint32")
        return mWriter.Put(Whole<uint32>(value, "uint32"));
    if (type == "int64")
        return mWriter.Put(Whole<int64>(value, "int64"));
    if (type == "uint64")
        return mWriter.Put(Whole<uint64>(value, "uint64"));
    throw Unfit{Quoted(type) + " is no type of part"};
}

void Parser::Content(Json const& json, Kind kind, int depth)
{
    switch (kind)
    {
    case Kind::kDictionary: {
        Json const& entries = List(json, "entries");
        mWriter.Put(static_cast<uint32>(entries.size()));
        for (Json const& entry : entries)
        {
            mWriter.Put(Whole<uint32>(Member(entry, "key"), "key"));
            Record(Member(entry, "record"), depth + 1);
        }
        break;
    }
    case Kind::kStrings: {
        Json const& strings = List(json, "strings");
        mWriter.Put(static_cast<uint32>(strings.size()));
        for (Json const& entry : strings)
        {
            mWriter.Put(Text(Member(entry, "key")));
            mWriter.Put(Text(Member(entry, "value")));
        }
        break;
    }
    case Kind::kValue:
        PlainValue(json);
        break;
    case Kind::kURI:
        mWriter.Put(Text(Member(json, "text")));
        break;
    case Kind::kRelativeURI:
        mWriter.Put(Text(Member(json, "scheme")));
        mWriter.Put(Text(Member(json, "host")));
        mWriter.Put(Whole<uint32>(Member(json, "port"), "port"));
        mWriter.Put(Text(Member(json, "path")));
        mWriter.Put(Whole<int32>(Member(json, "directory"), "directory's number"));
        break;
    case Kind::kObject:
    case Kind::kStringEntry:
    case Kind::kUnknownClass:
        for (Json const& part : List(json, "parts"))
            Part(part, depth);
        break;
    }
}

void Parser::Record(Json const& json, int depth)
{
    if (depth > IO::kMostNestedRecords)
        throw Unfit{fmt::format("records are nested more than {} deep", IO::kMostNestedRecords)};
    GUID const classId = Id(Member(json, "classId"));
    mWriter.Begin(classId);
    if (json.contains("body"))
    {
        mWriter.Put(ByteView(Hex(json["body"])));
        mWriter.End(json.contains("length") ? std::optional(Whole<int64>(json["length"], "length"))
                                            : std::nullopt);
        return;
    }
    KnownClass const* const known = FindClass(classId);
    Content(json, known ? known->kind : Kind::kObject, depth);
    Json const none = Json::array();
    Json const& aggregates = json.contains("aggregates") ? List(json, "aggregates") : none;
    mWriter.Put(static_cast<uint32>(aggregates.size()));
    for (Json const& aggregate : aggregates)
    {
        mWriter.Put(Id(Member(aggregate, "interface")));
        Record(Member(aggregate, "record"), depth + 1);
    }
    mWriter.End();
}

Order ReadHead(Json const& head)
{
    if (Member(head, "format") != "tessio-dump")
        throw Unfit{"\"format\" should be \"tessio-dump\""};
    if (Member(head, "schema") != 1)
        throw Unfit{fmt::format("only schema 1 is known, not {}", ShownBriefly(head["schema"]))};
    std::string const& order = String(Member(head, "order"), "\"order\"");
    if (order != "little-endian" && order != "big-endian")
        throw Unfit{Quoted(order) + " is no byte order"};
    return order == "big-endian" ? IO::IDataProvider::kBigEndian : IO::IDataProvider::kLittleEndian;
}

Bytes ReadDocument(Json const& document)
{
    RecordWriter writer(ReadHead(document));
    Parser parser(writer);
    for (Json const& record : List(document, "records"))
        parser.Record(record, 0);
    if (document.contains("rest"))
        parser.Rest(document["rest"]);
    return writer.Take();
}

Bytes ReadLines(Json const& head, std::string_view lines)
{
    RecordWriter writer(ReadHead(head));
    Parser parser(writer);
    while (!lines.empty())
    {
        std::size_t const end = lines.find('\n');
        std::string_view const line = lines.substr(0, end);
        lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 1);
        if (line.empty())
            continue;
        Json const json = ParseJson(line);
        if (json.is_object() && json.contains("rest"))
            parser.Rest(json["rest"]);
        else
            parser.Record(json, 0);
    }
    return writer.Take();
}
} // namespace

void PutJsonLeaf(RecordWriter& writer, Json const& json, Kind kind) { Parser(writer).Content(json, kind, 0); }

void PutJsonText(RecordWriter& writer, Json const& json) { writer.Put(Text(json)); }

void PutJsonPart(RecordWriter& writer, Json const& json) { Parser(writer).Part(json, 0); }

Result<Bytes> ReadJson(std::string_view text)
{
    try
    {
        // Lines begin with a head that is complete on its own.
        std::size_t const end = std::min(text.find('\n'), text.size());
        std::string_view const line = text.substr(0, end);
        Json const first = Json::accept(line) ? ParseJson(line) : Json();
        if (first.is_object() && !first.contains("records"))
            return ReadLines(first, text.substr(std::min(end + 1, text.size())));
        return ReadDocument(first.is_object() ? first : ParseJson(text));
    }
    catch (Unfit const& unfit)
    {
        return Error{ErrorCode::kBadDump, kNoOffset, unfit.why};
    }
    catch (Json::exception const& error)
    {
        return Error{ErrorCode::kBadDump, kNoOffset, Escaped(std::string_view(error.what()))};
    }
}
} // namespace KORVA::RECORDS
