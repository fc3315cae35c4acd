#include <tessio/Records/Tree/Compare.h>

#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Reader.h>
#include <tessio/Records/Tree/Summary.h>

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <map>

namespace KORVA::RECORDS
{
namespace
{

ByteView BytesOf(Side const& side, int64 offset, int64 length)
{
    return side.content.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
}

class Comparison
{
public:
    Comparison(Side const& a, Side const& b, bool subset) : mA(a), mB(b), mSubset(subset) {}

    void Lists(std::vector<Node> const& a, std::vector<Node> const& b, std::string const& parent);

    std::vector<Difference> Take() { return std::move(mDifferences); }

private:
    void Nodes(Node const& a, Node const& b, std::string const& path);
    /// Leaving aside what they hold.
    bool SameThemselves(Node const& a, Node const& b) const;
    bool SameParts(Node const& a, Node const& b) const;
    bool SameBytes(Node const& a, Node const& b) const
    {
        return std::ranges::equal(
            BytesOf(mA, a.offset + IO::kRecordHeadSize, a.length - IO::kRecordHeadSize),
            BytesOf(mB, b.offset + IO::kRecordHeadSize, b.length - IO::kRecordHeadSize));
    }
    std::string Line(Side const& side, Node const& node) const;

    Side const& mA;
    Side const& mB;
    bool mSubset;
    std::vector<Difference> mDifferences;
};

bool SameValue(Value const& a, Value const& b)
{
    // By bits, so that a not-a-number is itself and the two zeros are not the same.
    return a.tag == b.tag && a.integer == b.integer && a.floating == b.floating &&
           (std::holds_alternative<float>(a.content) || std::holds_alternative<double>(a.content) ||
            a.content == b.content);
}

bool Comparison::SameParts(Node const& a, Node const& b) const
{
    return std::ranges::equal(a.parts, b.parts, [&](Part const& one, Part const& other) {
        if (one.type != other.type)
            return false;
        if (one.type == "record")
            return true;
        if (one.type == "bytes")
            return std::ranges::equal(BytesOf(mA, one.offset, one.length),
                                      BytesOf(mB, other.offset, other.length));
        if (one.type == "string")
            return TextOfPart(BytesOf(mA, one.offset, one.length), one, mA.tree.order) ==
                   TextOfPart(BytesOf(mB, other.offset, other.length), other, mB.tree.order);
        return ShownPart(BytesOf(mA, one.offset, one.length), one, mA.tree.order) ==
               ShownPart(BytesOf(mB, other.offset, other.length), other, mB.tree.order);
    });
}

bool Comparison::SameThemselves(Node const& a, Node const& b) const
{
    if (a.kind != b.kind || a.classId != b.classId)
        return false;
    // What could not be read is the same only byte for byte.
    if (a.kind == Kind::kUnknownClass || !a.regular || !b.regular)
        return SameBytes(a, b);
    switch (a.kind)
    {
    case Kind::kValue:
        return SameValue(a.value, b.value);
    case Kind::kStringEntry:
    case Kind::kURI:
        return a.text == b.text;
    case Kind::kRelativeURI:
        return a.scheme == b.scheme && a.host == b.host && a.port == b.port && a.text == b.text &&
               a.directory == b.directory;
    case Kind::kObject:
        return SameParts(a, b);
    case Kind::kDictionary:
    case Kind::kStrings:
    case Kind::kUnknownClass:
        break;
    }
    return true;
}

std::string Comparison::Line(Side const& side, Node const& node) const
{
    if (node.kind == Kind::kUnknownClass)
        return fmt::format("unknown class {}, {}", GUIDToText(node.classId),
                           ByteCount(node.length - IO::kRecordHeadSize));
    if (node.kind != Kind::kObject)
        return Summary(node);
    std::string text = "object " + GUIDToText(node.classId) + " {";
    for (Part const& part : node.parts)
        if (part.type != "record")
            text += " " + part.type + " " +
                    ShownPart(BytesOf(side, part.offset, part.length), part, side.tree.order);
    return text + " }";
}

void Comparison::Nodes(Node const& a, Node const& b, std::string const& path)
{
    if (!SameThemselves(a, b))
        mDifferences.push_back({Difference::Type::kChanged, path, Line(mA, a), Line(mB, b)});
    Lists(a.entries, b.entries, path);
    Lists(a.aggregates, b.aggregates, path);
}

void Comparison::Lists(std::vector<Node> const& a, std::vector<Node> const& b, std::string const& parent)
{
    // A label may be there twice; the first one is then compared with the first one.
    std::map<std::string, std::deque<std::size_t>> places;
    for (std::size_t i = 0; i < b.size(); ++i)
        places[Segment(b[i].label)].push_back(i);
    std::vector<bool> met(b.size());
    for (Node const& node : a)
    {
        std::string const segment = Segment(node.label);
        std::string const path = parent + "/" + segment;
        std::deque<std::size_t>& there = places[segment];
        if (there.empty())
        {
            mDifferences.push_back({Difference::Type::kRemoved, path, Line(mA, node), ""});
            continue;
        }
        met[there.front()] = true;
        Nodes(node, b[there.front()], path);
        there.pop_front();
    }
    for (std::size_t i = 0; i < b.size() && !mSubset; ++i)
        if (!met[i])
            mDifferences.push_back(
                {Difference::Type::kAdded, parent + "/" + Segment(b[i].label), "", Line(mB, b[i])});
}
} // namespace

std::vector<Difference> Compare(Side const& a, Side const& b, bool subset)
{
    Comparison comparison(a, b, subset);
    comparison.Lists(a.tree.records, b.tree.records, "");
    return comparison.Take();
}
} // namespace KORVA::RECORDS
