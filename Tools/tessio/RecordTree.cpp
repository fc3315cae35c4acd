#include "RecordTree.h"

#include "Directories.h"
#include "Failure.h"
#include "ObjectModel/GUIDText.h"
#include "TessIO/ClassIds.h"
#include "TessIO/IDataProviderStream.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace TOOL
{
namespace
{
using namespace KORVA;
using IO::IDataProvider;
using IO::IDataProviderStream;
using STRING::CoreString;

constexpr int64 kHeader = 24;
constexpr int64 kLargestLength = 2147483647;
constexpr int kDeepest = 1000;

struct ClassRow
{
    GUID id;
    char const* name;
    Node::Kind kind;
};

constexpr ClassRow kClasses[] = {
    {IO::IID_DICTIONARY, "PersistentDictionary", Node::Kind::kDictionary},
    {IO::IID_PERSISTENT_DICTIONARY, "PersistentDictionary", Node::Kind::kDictionary},
    {IO::IID_IDICTIONARY_VALUE, "DictValue", Node::Kind::kValue},
    {IO::IID_STRING_DICTIONARY, "StringDictionary", Node::Kind::kStrings},
    {IO::IID_IURI, "URI", Node::Kind::kURI},
    {IO::IID_IRELATIVE_URI, "RelativeURI", Node::Kind::kRelativeURI},
};

ClassRow const* FindClass(GUID const& id)
{
    for (ClassRow const& row : kClasses)
        if (row.id == id)
            return &row;
    return nullptr;
}

struct TagRow
{
    char tag[5];
    char const* type;
};

constexpr TagRow kTags[] = {{"UNNT", "none"},   {"S8VL", "int8"},  {"U8VL", "uint8"},  {"S16V", "int16"},
                            {"U16V", "uint16"}, {"S32V", "int32"}, {"U32V", "uint32"}, {"S64V", "int64"},
                            {"U64V", "uint64"}, {"FL32", "float"}, {"FL64", "double"}, {"GUID", "guid"},
                            {"CHAR", "bytes"},  {"UNIC", "text"}};

std::string TypeOfTag(uint32 tag)
{
    for (TagRow const& row : kTags)
    {
        uint32 value = 0;
        for (char const c : std::string_view(row.tag))
            value = value << 8 | static_cast<unsigned char>(c);
        if (value == tag)
            return row.type;
    }
    return "unknown";
}

/// Thrown inside a record where its bytes stop making sense; costs the rest of that record.
struct Broken
{
    std::string why;
};

/// Walks the records through the library's typed stream, never past the end of the record it is in.
class Walker
{
public:
    Walker(IDataProvider& provider, IDataProviderStream& stream) : mProvider(provider), mStream(stream) {}

    int64 Position() const { return mProvider.GetPosition(); }

    /// A record that must end by `limit`, which leaves at least a header.
    Node Record(int64 limit, int depth)
    {
        Node node;
        node.offset = Position();
        int64 length = 0;
        mStream >> node.classId >> length;
        int64 const left = limit - Position();
        if (length < 0 || length > left)
        {
            node.problem = fmt::format("its length is {}, but {} bytes are left", length, left);
            length = left;
        }
        int64 const end = Position() + length;
        node.length = kHeader + length;
        ClassRow const* const known = FindClass(node.classId);
        if (known)
            node.kind = known->kind;
        if (known && length > 0)
        {
            try
            {
                if (depth >= kDeepest)
                    throw Broken{"nested too deep"};
                Body(node, end, depth);
                Aggregates(node, end, depth);
                if (Position() < end)
                    throw Broken{fmt::format("{} bytes at its end belong to nothing", end - Position())};
            }
            catch (Broken const& broken)
            {
                if (node.problem.empty())
                    node.problem = broken.why;
            }
        }
        mProvider.SetPosition(end, IDataProvider::kFromStart);
        return node;
    }

private:
    void Need(int64 bytes, int64 end, char const* what) const
    {
        if (end - Position() < bytes)
            throw Broken{fmt::format("{} at {} needs {} bytes, {} are left", what, Position(), bytes,
                                     end - Position())};
    }

    template <class Number>
    Number Read(int64 end, char const* what)
    {
        Need(sizeof(Number), end, what);
        Number number{};
        mStream >> number;
        return number;
    }

    std::vector<unsigned char> ReadBytes(int64 count, int64 end, char const* what)
    {
        if (count < 0)
            throw Broken{fmt::format("{} at {} has the length {}", what, Position(), count)};
        Need(count, end, what);
        std::vector<unsigned char> bytes(static_cast<std::size_t>(count));
        int delivered = static_cast<int>(count);
        if (count > 0)
            static_cast<void>(mStream.Read(bytes.data(), delivered));
        return bytes;
    }

    CoreString ReadString(int64 end)
    {
        int64 const start = Position();
        int const count = Read<int>(end, "a string");
        if (count < 0)
            throw Broken{fmt::format("the string at {} has the length {}", start, count)};
        Need(count, end, "a string");
        mProvider.SetPosition(start, IDataProvider::kFromStart);
        CoreString text;
        mStream >> text;
        return text;
    }

    void Body(Node& node, int64 end, int depth)
    {
        switch (node.kind)
        {
        case Node::Kind::kDictionary:
            Entries(node, end, depth);
            break;
        case Node::Kind::kValue:
            Plain(node.value, end);
            break;
        case Node::Kind::kStrings:
            Strings(node, end);
            break;
        case Node::Kind::kURI:
            node.text = ReadString(end);
            break;
        case Node::Kind::kRelativeURI:
            Relative(node, end);
            break;
        case Node::Kind::kStringEntry:
        case Node::Kind::kUnknownClass:
            break;
        }
    }

    void Relative(Node& node, int64 end)
    {
        // Scheme and host.
        static_cast<void>(ReadString(end));
        static_cast<void>(ReadString(end));
        static_cast<void>(Read<uint32>(end, "a port"));
        node.text = ReadString(end);
        int const type = Read<int>(end, "a directory type");
        Directory const* const directory = DirectoryOfType(type);
        node.directory = directory ? directory->name : std::to_string(type);
    }

    void Nested(Node& node, std::string label, int64 end, int depth)
    {
        Need(kHeader, end, "a record");
        Node child = Record(end, depth + 1);
        child.label = std::move(label);
        node.children.push_back(std::move(child));
    }

    void Entries(Node& node, int64 end, int depth)
    {
        uint32 const count = Read<uint32>(end, "the number of entries");
        for (uint32 i = 0; i < count; ++i)
        {
            unsigned int const key = Read<unsigned int>(end, "a key");
            Nested(node, std::to_string(key), end, depth);
        }
    }

    void Aggregates(Node& node, int64 end, int depth)
    {
        int const count = Read<int>(end, "the number of aggregates");
        for (int i = 0; i < count; ++i)
        {
            GUID const iid = Read<GUID>(end, "an aggregate's id");
            Nested(node, "aggregate " + GUIDToText(iid), end, depth);
        }
    }

    void Strings(Node& node, int64 end)
    {
        uint32 const count = Read<uint32>(end, "the number of entries");
        for (uint32 i = 0; i < count; ++i)
        {
            Node entry;
            entry.kind = Node::Kind::kStringEntry;
            entry.offset = Position();
            entry.label = ReadString(end).ToUTF8();
            entry.text = ReadString(end);
            entry.length = Position() - entry.offset;
            node.children.push_back(std::move(entry));
        }
    }

    void Plain(Value& value, int64 end)
    {
        value.type = TypeOfTag(Read<uint32>(end, "a type tag"));
        if (value.type == "none" || value.type == "unknown")
            return;
        if (value.type == "guid")
        {
            GUID id{};
            std::memcpy(&id, ReadBytes(sizeof id, end, "an identifier").data(), sizeof id);
            value.content = id;
        }
        else if (value.type == "bytes")
            value.content = ReadBytes(Read<int>(end, "a length"), end, "a buffer");
        else if (value.type == "text")
        {
            std::vector<unsigned char> const bytes = ReadBytes(Read<int>(end, "a length"), end, "a text");
            std::u16string units(bytes.size() / 2, u'\0');
            std::memcpy(units.data(), bytes.data(), units.size() * 2);
            value.content = units;
        }
        else
            Number(value, end);
    }

    void Number(Value& value, int64 end)
    {
        auto const integer = Read<uint64>(end, "a number");
        auto const floating = Read<double>(end, "a number");
        if (value.type == "float")
            value.content = static_cast<float>(floating);
        else if (value.type == "double")
            value.content = floating;
        else if (value.type.starts_with('u'))
            value.content = integer;
        else
            value.content = static_cast<int64>(integer);
    }

    IDataProvider& mProvider;
    IDataProviderStream& mStream;
};

struct Source
{
    TInterfacePtr<IDataProvider> provider;
    TInterfacePtr<IDataProviderStream> stream;
};

Source Open(Session const& session, std::vector<unsigned char> const& content, IDataProvider::Endian order)
{
    Source source{session.Create<IDataProvider>(IO::IID_IDATAPROVIDER),
                  session.Create<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM)};
    if (content.size() > static_cast<std::size_t>(std::numeric_limits<int32>::max()))
        throw Failure(Exit::kInputOutput, "files of 2 GiB and more are not supported");
    if (source.provider->InitReadOnlyMem(content.data(), static_cast<int32>(content.size())) != kNoError)
        throw Failure(Exit::kNotARecordFile, "the file is empty");
    source.provider->SetEndian(order);
    source.stream->Init(*source.provider);
    return source;
}

/// How much of a file looks like top-level records in that order: 2 for one of a known class, 1 for one of an
/// unknown class that ends exactly where the file does or where another begins, 0 otherwise.
int Likeliness(Session const& session, std::vector<unsigned char> const& content, IDataProvider::Endian order)
{
    auto const size = static_cast<int64>(content.size());
    Source const source = Open(session, content, order);
    for (;;)
    {
        int64 const left = size - source.provider->GetPosition();
        if (left == 0)
            return 1;
        GUID classId{};
        int64 length = 0;
        if (left < kHeader)
            return 0;
        *source.stream >> classId >> length;
        if (FindClass(classId))
            return 2;
        if (length < 0 || length > kLargestLength || length > left - kHeader)
            return 0;
        source.provider->SetPosition(length, IDataProvider::kFromCurrent);
    }
}

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
} // namespace

std::string ClassName(GUID const& classId)
{
    ClassRow const* const known = FindClass(classId);
    return known ? known->name : "";
}

IDataProvider::Endian OrderOf(Session const& session, std::vector<unsigned char> const& content,
                              std::string const& location)
{
    int const little = content.empty() ? 0 : Likeliness(session, content, IDataProvider::kLittleEndian);
    int const big = content.empty() ? 0 : Likeliness(session, content, IDataProvider::kBigEndian);
    if (little == 0 && big == 0)
        throw Failure(Exit::kNotARecordFile,
                      Quoted(location) + " is not a record file" + (content.empty() ? ": it is empty" : ""));
    return big > little ? IDataProvider::kBigEndian : IDataProvider::kLittleEndian;
}

RecordTree ReadTree(Session const& session, std::vector<unsigned char> const& content,
                    IDataProvider::Endian order)
{
    RecordTree tree;
    tree.order = order;
    auto const size = static_cast<int64>(content.size());
    Source const source = Open(session, content, order);
    Walker walker(*source.provider, *source.stream);
    while (size - walker.Position() >= kHeader)
        tree.records.push_back(walker.Record(size, 0));
    tree.end = walker.Position();
    if (tree.end < size)
        tree.problem = fmt::format("{} bytes at its end are too few for a record", size - tree.end);
    return tree;
}

std::string Entries(Node const& node)
{
    auto const count = std::count_if(node.children.begin(), node.children.end(), [](Node const& child) {
        return child.kind == Node::Kind::kStringEntry || !child.label.starts_with("aggregate ");
    });
    return fmt::format("{} {}", count, count == 1 ? "entry" : "entries");
}

Node const* FirstFragile(Node const& node)
{
    if (node.kind == Node::Kind::kUnknownClass || !node.problem.empty() || node.value.type == "unknown")
        return &node;
    for (Node const& child : node.children)
        if (Node const* const found = FirstFragile(child))
            return found;
    return nullptr;
}

Json ToJson(Node const& node)
{
    Json json = {{"offset", node.offset}, {"length", node.length}};
    if (!node.label.empty() || node.kind == Node::Kind::kStringEntry)
        json["label"] = node.label;
    if (node.kind != Node::Kind::kStringEntry)
    {
        json["classId"] = GUIDToText(node.classId);
        json["class"] =
            node.kind == Node::Kind::kUnknownClass ? Json(nullptr) : Json(ClassName(node.classId));
    }
    if (node.kind == Node::Kind::kValue)
    {
        json["type"] = node.value.type;
        json["value"] = ContentJson(node.value);
    }
    if (node.kind == Node::Kind::kRelativeURI)
        json["directory"] = node.directory;
    if (node.kind == Node::Kind::kStringEntry || node.kind == Node::Kind::kURI ||
        node.kind == Node::Kind::kRelativeURI)
        json["value"] = node.text.ToUTF8();
    if (!node.problem.empty())
        json["problem"] = node.problem;
    if (!node.children.empty())
    {
        Json children = Json::array();
        for (Node const& child : node.children)
            children.push_back(ToJson(child));
        json["children"] = std::move(children);
    }
    return json;
}
} // namespace TOOL
