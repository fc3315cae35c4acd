// What is in a record file, byte range by byte range.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/Records/Format/Bytes.h>
#include <tessio/Records/Format/Classes.h>
#include <tessio/Records/Format/Value.h>

#include <string>
#include <vector>

namespace KORVA::RECORDS
{
/// How much something that was noticed matters: worth knowing, not what the library writes, damage.
enum class Severity
{
    kNote,
    kWarning,
    kError
};

char const* SeverityName(Severity severity);

/// Something noticed about a record.
struct Finding
{
    Severity severity = Severity::kError;
    /// Stable, for programs: "length-too-large".
    char const* code = "";
    int64 offset = 0;
    std::string words;
};

/// How the holder of a record knows it.
struct Label
{
    enum class Type
    {
        /// Its place in the file.
        kIndex,
        /// A dictionary's key.
        kKey,
        /// A string dictionary's key.
        kText,
        /// The interface id of an aggregate.
        kInterface,
        /// Its place among the records in a plug-in's object.
        kPart
    };

    Type type = Type::kIndex;
    uint32 number = 0;
    STRING::CoreString text;
    GUID id{};

    friend bool operator==(Label const& a, Label const& b)
    {
        return a.type == b.type && a.number == b.number && a.text == b.text && a.id == b.id;
    }
};

/// As a component of a path: `0`, `dict[42]`, `strings["NAME"]`, `{GUID}`, `record[1]`.
std::string Segment(Label const& label);

/// One typed value that a plug-in's class read of its body.
struct Part
{
    /// bool int8 uint8 int16 uint16 int32 uint32 int64 uint64 float double guid string bytes, or record: the
    /// next one of the node's entries.
    std::string type;
    int64 offset = 0;
    int64 length = 0;
    /// For people: long ones are cut, a text is as it is. Empty for a record.
    std::string shown = {};
};

/// A record, or an entry of a string dictionary. Offsets and lengths are bytes from the start of the file.
struct Node
{
    Kind kind = Kind::kUnknownClass;
    Label label;
    int64 offset = 0;
    /// With its header; as far as its holder reaches where its own length leads further.
    int64 length = 0;
    /// What its header says of its length, which leaves out the 24 bytes of the header.
    int64 declared = 0;
    GUID classId{};
    /// Of a dictionary value.
    Value value;
    /// Of a URI or a string entry; of a relative URI the path from its directory.
    STRING::CoreString text;
    /// Of a relative URI.
    STRING::CoreString scheme;
    STRING::CoreString host;
    uint32 port = 0;
    int32 directory = 0;
    /// Of a plug-in's object.
    std::vector<Part> parts;
    /// In the order of the file; empty where only the node itself was asked for.
    std::vector<Node> entries;
    std::vector<Node> aggregates;
    /// How many it holds. 0 until it is complete.
    uint32 entryCount = 0;
    uint32 aggregateCount = 0;
    /// How many records it is nested in.
    int depth = 0;
    /// Whether more was read of it than its head.
    bool isComplete = false;
    /// Of what holds no entries, where that ends which it says itself; 0 where reading did not come so far.
    int64 bodyEnd = 0;
    /// Where the count of the aggregates stands; 0 where reading did not come so far.
    int64 aggregatesAt = 0;
    /// Whether these fields tell every byte of it: writing them again gives the same record.
    bool regular = true;
    std::vector<Finding> findings;

    int64 End() const { return offset + length; }
};

struct RecordTree
{
    Order order = IO::IDataProvider::kLittleEndian;
    int64 size = 0;
    std::vector<Node> records;
    /// Where the last top-level record ends.
    int64 end = 0;
    /// About the file as a whole.
    std::vector<Finding> findings;
};

/// The words of the first damage of a record itself; empty when it has none.
std::string Problem(Node const& node);

/// "1 entry", "7 entries": the aggregates of a dictionary do not count.
std::string Entries(Node const& node);

/// Whether the record or anything in it is damaged.
bool IsDamaged(Node const& node);

/// The first node in file order, `node` included, that editing through the library would lose: one of an
/// unknown class, or a damaged one. Null when there is none.
Node const* FirstFragile(Node const& node);

/// Calls `visit(node, path, depth)` for a node and everything in it, in the order of the file. `path` leads
/// to what holds the node, and is so again when the call returns.
template <class Visit>
void Walk(Node const& node, std::string& path, int depth, Visit const& visit)
{
    std::size_t const size = path.size();
    path += "/" + Segment(node.label);
    visit(node, static_cast<std::string const&>(path), depth);
    for (Node const& child : node.entries)
        Walk(child, path, depth + 1, visit);
    for (Node const& child : node.aggregates)
        Walk(child, path, depth + 1, visit);
    path.resize(size);
}

template <class Visit>
void Walk(RecordTree const& tree, Visit const& visit)
{
    std::string path;
    for (Node const& node : tree.records)
        Walk(node, path, 0, visit);
}
} // namespace KORVA::RECORDS
