#include <tessio/Records/Edit/Edit.h>
#include <tessio/Records/Tree/Reader.h>

#include "Format/Guard.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Dump/Text.h>
#include <tessio/Records/Format/RecordWriter.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace KORVA::RECORDS
{
namespace
{

constexpr int64 kKey = IO::kEntryKeySize;
constexpr int64 kId = IO::kInterfaceIdSize;

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

/// The node that the path names.
Node const& Existing(Original const& original, Path const& path)
{
    Result<Node const*> const node = NodeAt(original.tree, path);
    if (!node)
        Raise(node.error().code, node.error().offset,
              fmt::format("{} {}", Quoted(original.name), node.error().words));
    return **node;
}

/// The records from the top to the holder of the last component. All must be whole themselves, since their
/// lengths change.
std::vector<Node const*> Holders(Original const& original, Path const& path)
{
    std::vector<Node const*> holders;
    for (std::size_t length = 1; length < path.size(); ++length)
    {
        Path const wayThere(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(length));
        std::string const way = PathText(wayThere);
        Node const& node = Existing(original, wayThere);
        if (std::string const problem = Problem(node); !problem.empty())
            Raise(ErrorCode::kDamaged, kNoOffset,
                  fmt::format("{}: {} is damaged ({}): salvage the file first; nothing is changed",
                              Quoted(original.name), way, problem));
        if (node.aggregatesAt == 0)
            Raise(ErrorCode::kDamaged, kNoOffset,
                  fmt::format("{}: {} holds nothing that can be named; nothing is changed",
                              Quoted(original.name), way));
        holders.push_back(&node);
    }
    return holders;
}

/// Where a new component of a holder goes, and what stands in front of it there.
Splice Insertion(Original const& original, Node const& holder, Label const& label, ByteView content)
{
    RecordWriter writer(original.tree.order);
    Splice splice;
    bool const fits = (label.type == Label::Type::kKey && holder.kind == Kind::kDictionary) ||
                      (label.type == Label::Type::kText && holder.kind == Kind::kStrings) ||
                      label.type == Label::Type::kInterface;
    if (!fits)
        Raise(
            ErrorCode::kImpossible, kNoOffset,
            fmt::format("{} can't be put into a {}", Segment(label),
                        ClassName(holder.classId).empty() ? "plug-in's object" : ClassName(holder.classId)));
    splice.change = 1;
    splice.countAt =
        label.type == Label::Type::kInterface ? holder.aggregatesAt : holder.offset + IO::kRecordHeadSize;
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
void CheckObjects(Original const& original, Path const& path, std::vector<Node const*> const& holders,
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
                           original.tree.order))
            return;
        Path const way(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        Raise(ErrorCode::kImpossible, kNoOffset,
              fmt::format("{}: {} is in the object {} of the class {}, which may keep the length of what "
                          "it holds: with {} {} its class does not read it and write it back the same; "
                          "put in something of the same length, or set {} as a whole; nothing is changed",
                          Quoted(original.name), PathText(path), PathText(way), GUIDToText(holder.classId),
                          ByteCount(std::abs(delta)), delta > 0 ? "more" : "less", PathText(way)));
    }
}

Bytes Apply(Original const& original, Path const& path, std::vector<Node const*> const& holders,
            Splice const& splice, ObjectProof const& proof)
{
    Bytes content(original.content.begin(), original.content.end());
    Order const order = original.tree.order;
    int64 const delta = splice.Delta();
    for (Node const* const holder : holders)
    {
        if (holder->declared + delta > IO::kGreatestLength)
            Raise(ErrorCode::kTooLarge, kNoOffset,
                  fmt::format("{} would be larger than 2 GiB; nothing is changed", Quoted(original.name)));
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
    CheckObjects(original, path, holders, splice, content, proof);
    return content;
}
Bytes Place(Original const& original, Path const& components, ByteView content, ObjectProof const& proof)
{
    std::vector<Node const*> const holders = Holders(original, components);
    std::size_t found = 0;
    if (Node const* const node = FindNode(original.tree, components, found))
        return Apply(original, components, holders,
                     {node->offset, node->End(), Bytes(content.begin(), content.end()), 0, 0}, proof);
    if (!holders.empty())
        return Apply(original, components, holders,
                     Insertion(original, *holders.back(), components.back(), content), proof);
    if (components.front().number != original.tree.records.size() || original.tree.end != original.tree.size)
        Raise(ErrorCode::kNotFound, kNoOffset,
              fmt::format("{} has {} records; the next one can only be /{}", Quoted(original.name),
                          original.tree.records.size(), original.tree.records.size()));
    return Apply(original, components, {},
                 {original.tree.end, original.tree.end, Bytes(content.begin(), content.end()), 0, 0}, proof);
}

Bytes Remove(Original const& original, Path const& components, ObjectProof const& proof)
{
    Node const& node = Existing(original, components);
    std::vector<Node const*> const holders = Holders(original, components);
    Splice splice{node.offset, node.End(), {}, 0, -1};
    if (holders.empty())
    {
        splice.change = 0;
        return Apply(original, components, holders, splice, proof);
    }
    splice.countAt = holders.back()->offset + IO::kRecordHeadSize;
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
        Raise(ErrorCode::kImpossible, kNoOffset,
              "a plug-in's object can't do without " + Segment(node.label));
    }
    return Apply(original, components, holders, splice, proof);
}

Bytes Reorder(Reader& reader, std::string const& name, Order order)
{
    int64 const end = ValueOrRaise(Walk(reader, [&](Node const& node, std::string const& path) {
        if (node.kind == Kind::kUnknownClass && node.length > IO::kRecordHeadSize)
            Raise(ErrorCode::kDamaged, node.offset,
                  fmt::format("{}: {} is of the class {}, which nobody here knows: its bytes can't be turned "
                              "round; nothing is written",
                              Quoted(name), path, GUIDToText(node.classId)));
        if (!node.regular && node.length > IO::kRecordHeadSize)
            Raise(ErrorCode::kDamaged, node.offset,
                  fmt::format("{}: {} is not what a writer makes ({}): its bytes can't be turned round; "
                              "nothing is written",
                              Quoted(name), path, node.findings.empty() ? "" : node.findings.front().words));
        return true;
    }));
    if (auto const finding = LeftOver(end, reader.Size()))
        Raise(ErrorCode::kDamaged, finding->offset,
              fmt::format("{}: {}; nothing is written", Quoted(name), finding->words));
    // The words for values are the same in both orders.
    std::string text;
    static_cast<void>(ValueOrRaise(WriteText(reader, [&](std::string_view piece) { text += piece; })));
    text.replace(0, text.find('\n'), fmt::format("tessio-dump 1 {}", OrderName(order)));
    return ValueOrRaise(ReadText(text));
}
} // namespace

Result<Bytes> WithPlaced(Original const& original, Path const& path, ByteView content,
                         ObjectProof const& proof)
{
    return Guarded([&] { return Place(original, path, content, proof); });
}

Result<Bytes> WithoutPlace(Original const& original, Path const& path, ObjectProof const& proof)
{
    return Guarded([&] { return Remove(original, path, proof); });
}

Result<Bytes> WithOrder(Reader& reader, std::string const& name, Order order)
{
    return Guarded([&] { return Reorder(reader, name, order); });
}

Bytes StringEntry(STRING::CoreString const& key, STRING::CoreString const& text, Order order)
{
    RecordWriter writer(order);
    writer.Put(key);
    writer.Put(text);
    return writer.Take();
}
} // namespace KORVA::RECORDS
