#include "Records/Edit.h"

#include "Failure.h"
#include "Output.h"
#include "RecordFile.h"
#include "Records/RecordWriter.h"
#include "Records/Text.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace TOOL
{
namespace
{
using namespace KORVA;

constexpr int64 kKey = 4;
constexpr int64 kId = 16;

/// What of the file goes, what comes in its place, and which count changes.
struct Splice
{
    int64 from = 0;
    int64 to = 0;
    Bytes content;
    int64 countAt = 0;
    int change = 0;

    /// How many bytes more there are behind it.
    int64 Delta() const { return static_cast<int64>(content.size()) - (to - from); }
};

/// The records from the top to the holder of the last component. All must be whole themselves, since their
/// lengths change.
std::vector<Node const*> Holders(Document const& document, Path const& path)
{
    std::vector<Node const*> holders;
    for (std::size_t length = 1; length < path.size(); ++length)
    {
        std::string const way =
            PathText(Path(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(length)));
        Node const& node = NodeAt(document.tree, way, document.file);
        if (std::string const problem = Problem(node); !problem.empty())
            throw Failure(Exit::kNotARecordFile,
                          fmt::format("{}: {} is damaged ({}): salvage the file first; nothing is changed",
                                      Quoted(document.file), way, problem));
        if (node.aggregatesAt == 0)
            throw Failure(Exit::kNotARecordFile,
                          fmt::format("{}: {} holds nothing that can be named; nothing is changed",
                                      Quoted(document.file), way));
        holders.push_back(&node);
    }
    return holders;
}

/// Where a new component of a holder goes, and what stands in front of it there.
Splice Insertion(Document const& document, Node const& holder, Label const& label, ByteView content)
{
    RecordWriter writer(document.tree.order);
    Splice splice;
    bool const fits = (label.type == Label::Type::kKey && holder.kind == Kind::kDictionary) ||
                      (label.type == Label::Type::kText && holder.kind == Kind::kStrings) ||
                      label.type == Label::Type::kInterface;
    if (!fits)
        throw Failure(
            Exit::kUsage,
            fmt::format("{} can't be put into a {}", Segment(label),
                        ClassName(holder.classId).empty() ? "plug-in's object" : ClassName(holder.classId)));
    splice.change = 1;
    splice.countAt = label.type == Label::Type::kInterface ? holder.aggregatesAt : holder.offset + kHeader;
    splice.from = label.type == Label::Type::kInterface ? holder.End() : holder.aggregatesAt;
    if (label.type == Label::Type::kInterface)
    {
        for (Node const& aggregate : holder.aggregates)
            if (std::less<GUID>()(label.id, aggregate.label.id))
            {
                splice.from = aggregate.offset - kId;
                break;
            }
        writer.Put(label.id);
    }
    else if (label.type == Label::Type::kKey)
    {
        for (Node const& entry : holder.entries)
            if (label.number < entry.label.number)
            {
                splice.from = entry.offset - kKey;
                break;
            }
        writer.Put(label.number);
    }
    else
        for (Node const& entry : holder.entries)
            if (label.text < entry.label.text)
            {
                splice.from = entry.offset;
                break;
            }
    writer.Put(content);
    splice.to = splice.from;
    splice.content = writer.Take();
    return splice;
}

/// Ends the command when a plug-in's object gets a body of another length and nothing shows that its class
/// reads it. What it holds as aggregates stands behind its body, and is not its class's business.
void CheckObjects(Document const& document, Path const& path, std::vector<Node const*> const& holders,
                  Splice const& splice, ByteView content, ObjectProof const& proof)
{
    int64 const delta = splice.Delta();
    for (std::size_t i = 0; i < holders.size() && delta != 0; ++i)
    {
        Node const& holder = *holders[i];
        if (holder.kind != Kind::kObject || splice.from >= holder.aggregatesAt)
            continue;
        // What it holds is read with it, other objects too.
        if (proof && proof(content.subspan(static_cast<std::size_t>(holder.offset),
                                           static_cast<std::size_t>(holder.length + delta)),
                           document.tree.order))
            return;
        Path const way(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        throw Failure(
            Exit::kUsage,
            fmt::format("{}: {} is in the object {} of the class {}, which may keep the length of what "
                        "it holds: with {} {} its class does not read it and write it back the same; "
                        "put in something of the same length, or set {} as a whole; nothing is changed",
                        Quoted(document.file), PathText(path), PathText(way), GUIDToText(holder.classId),
                        ByteCount(std::abs(delta)), delta > 0 ? "more" : "less", PathText(way)));
    }
}

Bytes Spliced(Document const& document, Path const& path, std::vector<Node const*> const& holders,
              Splice const& splice, ObjectProof const& proof)
{
    Bytes content = document.content;
    Order const order = document.tree.order;
    int64 const delta = splice.Delta();
    for (Node const* const holder : holders)
    {
        if (holder->declared + delta > kLargestLength)
            throw Failure(Exit::kInputOutput, fmt::format("{} would be larger than 2 GiB; nothing is changed",
                                                          Quoted(document.file)));
        Store(content.data() + holder->offset + 16, holder->declared + delta, order);
    }
    if (splice.change != 0)
    {
        unsigned char* const at = content.data() + splice.countAt;
        Store(at, Load<uint32>(at, order) + static_cast<uint32>(splice.change), order);
    }
    auto const from = content.begin() + splice.from;
    content.erase(from, content.begin() + splice.to);
    content.insert(content.begin() + splice.from, splice.content.begin(), splice.content.end());
    CheckObjects(document, path, holders, splice, content, proof);
    return content;
}
} // namespace

Bytes WithPlaced(Document const& document, std::string const& path, ByteView content,
                 ObjectProof const& proof)
{
    Path const components = PathArgument(path);
    std::vector<Node const*> const holders = Holders(document, components);
    std::size_t found = 0;
    if (Node const* const node = FindNode(document.tree, components, found))
        return Spliced(document, components, holders,
                       {node->offset, node->End(), Bytes(content.begin(), content.end()), 0, 0}, proof);
    if (!holders.empty())
        return Spliced(document, components, holders,
                       Insertion(document, *holders.back(), components.back(), content), proof);
    if (components.front().number != document.tree.records.size() || document.tree.end != document.tree.size)
        throw Failure(Exit::kNotFound,
                      fmt::format("{} has {} records; the next one can only be /{}", Quoted(document.file),
                                  document.tree.records.size(), document.tree.records.size()));
    return Spliced(document, components, {},
                   {document.tree.end, document.tree.end, Bytes(content.begin(), content.end()), 0, 0},
                   proof);
}

Bytes WithoutPlace(Document const& document, std::string const& path, ObjectProof const& proof)
{
    Path const components = PathArgument(path);
    Node const& node = NodeAt(document.tree, path, document.file);
    std::vector<Node const*> const holders = Holders(document, components);
    Splice splice{node.offset, node.End(), {}, 0, -1};
    if (holders.empty())
    {
        splice.change = 0;
        return Spliced(document, components, holders, splice, proof);
    }
    splice.countAt = holders.back()->offset + kHeader;
    switch (node.label.type)
    {
    case Label::Type::kKey:
        splice.from -= kKey;
        break;
    case Label::Type::kInterface:
        splice.from -= kId;
        splice.countAt = holders.back()->aggregatesAt;
        break;
    case Label::Type::kText:
        break;
    case Label::Type::kIndex:
    case Label::Type::kPart:
        throw Failure(Exit::kUsage, "a plug-in's object can't do without " + Segment(node.label));
    }
    return Spliced(document, components, holders, splice, proof);
}

Bytes StringEntry(STRING::CoreString const& key, STRING::CoreString const& text, Order order)
{
    RecordWriter writer(order);
    writer.Put(key);
    writer.Put(text);
    return writer.Take();
}

Bytes ValueRecord(Session const& session, std::string const& type, std::string const& text, Order order)
{
    auto const dictionary = session.Create<IDictionary>(IO::IID_DICTIONARY);
    PutValue(*dictionary, 0, type, text);
    Bytes const bytes = Serialized(session, *dictionary, order);
    // Around the value stand the dictionary's header, its count and the key, and behind it its own
    // aggregates.
    return {bytes.begin() + kHeader + 4 + kKey, bytes.end() - 4};
}

Bytes Turned(Document const& document, Order order)
{
    Walk(document.tree, [&](Node const& node, std::string const& path, int) {
        if (node.kind == Kind::kUnknownClass && node.length > kHeader)
            throw Failure(
                Exit::kNotARecordFile,
                fmt::format("{}: {} is of the class {}, which nobody here knows: its bytes can't be turned "
                            "round; nothing is written",
                            Quoted(document.file), path, GUIDToText(node.classId)));
        if (!node.regular && node.length > kHeader)
            throw Failure(
                Exit::kNotARecordFile,
                fmt::format("{}: {} is not what a writer makes ({}): its bytes can't be turned round; "
                            "nothing is written",
                            Quoted(document.file), path,
                            node.findings.empty() ? "" : node.findings.front().words));
    });
    if (!document.tree.findings.empty())
        throw Failure(Exit::kNotARecordFile, fmt::format("{}: {}; nothing is written", Quoted(document.file),
                                                         document.tree.findings.front().words));
    // The words for values are the same in both orders.
    std::string const text = WriteText(document.tree, document.content);
    std::string const words = text.substr(text.find('\n'));
    return ReadText(fmt::format("tessio-dump 1 {}{}", OrderName(order), words), document.file);
}
} // namespace TOOL
