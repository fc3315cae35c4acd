// What is in a record file, byte range by byte range.
#pragma once

#include "Output.h"
#include "Session.h"
#include "TessIO/IDataProvider.h"
#include "Values.h"

#include <string>
#include <vector>

namespace TOOL
{
/// A record, or an entry of a string dictionary. Offsets and lengths are bytes from the start of the file.
struct Node
{
    enum class Kind
    {
        kDictionary,
        kValue,
        kStrings,
        kStringEntry,
        kURI,
        kRelativeURI,
        kUnknownClass
    };

    Kind kind = Kind::kUnknownClass;
    KORVA::int64 offset = 0;
    KORVA::int64 length = 0;
    GUID classId{};
    /// How the parent knows it: a key, an aggregate's interface id, a string entry's key; empty at the top.
    std::string label;
    /// Of a dictionary value.
    Value value;
    /// Of a URI or a string entry; of a relative URI the path from its directory.
    KORVA::STRING::CoreString text;
    /// Of a relative URI: its directory's name, or the number where that has none.
    std::string directory;
    /// Entries and aggregates in the order of the file.
    std::vector<Node> children;
    /// What is wrong with it, in words; empty when nothing is.
    std::string problem;
};

struct RecordTree
{
    KORVA::IO::IDataProvider::Endian order = KORVA::IO::IDataProvider::kLittleEndian;
    std::vector<Node> records;
    /// Where the last top-level record ends, and what is wrong with the bytes after it, if there are any.
    KORVA::int64 end = 0;
    std::string problem;
};

/// The byte order in which `content` is a record file. Ends the command when it is none in either.
KORVA::IO::IDataProvider::Endian OrderOf(Session const& session, std::vector<unsigned char> const& content,
                                         std::string const& location);

/// Reads the structure of a whole file. Never fails: what can't be made sense of is named in the nodes.
RecordTree ReadTree(Session const& session, std::vector<unsigned char> const& content,
                    KORVA::IO::IDataProvider::Endian order);

/// The name of a class of this library; empty for any other id.
std::string ClassName(GUID const& classId);

/// "1 entry", "7 entries": the aggregates of a dictionary do not count.
std::string Entries(Node const& node);

/// The first node in file order, `node` included, that editing through the library would lose: one of an
/// unknown class, or one with a problem. Null when there is none.
Node const* FirstFragile(Node const& node);

Json ToJson(Node const& node);
} // namespace TOOL
