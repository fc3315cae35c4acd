#include <tessio/Records/Tree/Reader.h>

#include "Format/Guard.h"
#include "Tree/Passage.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>

#include <utility>

namespace KORVA::RECORDS
{
class Reader::Implementation
{
public:
    Implementation(Source const& source, ReadOptions options) : mDecoder(source, std::move(options)) {}

    Decoder& TheDecoder() { return mDecoder; }

    /// Reads what the node holds, too, and what that holds.
    void Fill(Node& node)
    {
        Cursor::Passage::Complete(mDecoder, node);
        node.entries.reserve(node.entryCount);
        node.aggregates.reserve(node.aggregateCount);
        Cursor::Passage passage(mDecoder, node);
        Node child;
        while (passage.Next(child))
        {
            Fill(child);
            (child.label.type == Label::Type::kInterface ? node.aggregates : node.entries)
                .push_back(std::move(child));
        }
    }

private:
    Decoder mDecoder;
};

Reader::Reader(Source const& source, ReadOptions options)
    : mImplementation(std::make_unique<Implementation>(source, std::move(options)))
{}

Reader::~Reader() = default;

Order Reader::GetOrder() const { return mImplementation->TheDecoder().Options().order; }

int64 Reader::Size() const { return mImplementation->TheDecoder().Size(); }

Cursor Reader::Records() { return Cursor(std::make_unique<Cursor::Passage>(mImplementation->TheDecoder())); }

Cursor Reader::Children(Node const& holder)
{
    return Cursor(std::make_unique<Cursor::Passage>(mImplementation->TheDecoder(), holder));
}

Result<bool> Reader::Complete(Node& node)
{
    return Guarded([&] {
        Cursor::Passage::Complete(mImplementation->TheDecoder(), node);
        return true;
    });
}

Result<Node> Reader::Tree(Node node)
{
    return Guarded([&] {
        mImplementation->Fill(node);
        return std::move(node);
    });
}

Result<Bytes> Reader::BytesAt(int64 offset, int64 length)
{
    return Guarded([&] {
        ByteView const bytes = mImplementation->TheDecoder().At(offset, length);
        return Bytes(bytes.begin(), bytes.end());
    });
}

Result<bool> Reader::TellFields(Node const& node, FieldSink const& sink)
{
    return Guarded([&] {
        Decoder& decoder = mImplementation->TheDecoder();
        decoder.SetSink(sink);
        Node again = decoder.Head(node.offset, node.End(), "", {}, node.depth);
        int64 const body = decoder.Position();
        if (node.kind == Kind::kUnknownClass && node.depth < IO::kMostNestedRecords)
            decoder.Tell(body, node.End() - body, Role::kOpaque, "body", "of a class that is not known");
        else if (node.kind != Kind::kObject && body < node.End() && node.depth < IO::kMostNestedRecords)
        {
            try
            {
                decoder.Leaf(again, node.End());
            }
            catch (Broken const&)
            {
                // Is among the findings of the node.
            }
        }
        return true;
    });
}

Result<Node> Reader::Find(Path const& path)
{
    return Guarded([&]() -> Node {
        Decoder& decoder = mImplementation->TheDecoder();
        Node found;
        Cursor::Passage records(decoder);
        int64 count = 0;
        bool isThere = false;
        while (!isThere && records.Next(found))
            isThere = count++ == path.front().number;
        if (!isThere)
            Raise(ErrorCode::kNotFound, kNoOffset,
                  fmt::format("has no record {}; it has {}", path.front().number, count));
        for (std::size_t length = 1; length < path.size(); ++length)
        {
            Label const& wanted = path[length];
            if (found.kind != Kind::kDictionary && found.kind != Kind::kStrings)
                Cursor::Passage::Complete(decoder, found);
            Cursor::Passage passage(decoder, found);
            std::optional<Node> last;
            Node child;
            while (passage.Next(child))
                if (child.label == wanted)
                    last = std::move(child);
            if (!last)
                Raise(ErrorCode::kNotFound, kNoOffset,
                      fmt::format(
                          "has nothing at {}: {} holds no {}", PathText(path),
                          PathText(Path(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(length))),
                          Segment(wanted)));
            found = std::move(*last);
        }
        Cursor::Passage::Complete(decoder, found);
        return found;
    });
}

Cursor::Cursor(std::unique_ptr<Passage> passage) : mPassage(std::move(passage)) {}
Cursor::Cursor(Cursor&&) noexcept = default;
Cursor::~Cursor() = default;

void Cursor::Tell(FieldSink sink) { mPassage->Tell(std::move(sink)); }

Result<bool> Cursor::Next(Node& node)
{
    return Guarded([&] { return mPassage->Next(node); });
}

int64 Cursor::Position() const { return mPassage->Position(); }

namespace
{
void WalkInto(Reader& reader, Node& node, std::string& path, Visit const& visit)
{
    static_cast<void>(ValueOrRaise(reader.Complete(node)));
    std::size_t const size = path.size();
    if (!visit(node, path) || node.entryCount + node.aggregateCount == 0)
        return;
    Cursor children = reader.Children(node);
    Node child;
    while (ValueOrRaise(children.Next(child)))
    {
        path += "/" + Segment(child.label);
        WalkInto(reader, child, path, visit);
        path.resize(size);
    }
}
} // namespace

Result<bool> Walk(Reader& reader, Node node, std::string path, Visit const& visit)
{
    return Guarded([&] {
        WalkInto(reader, node, path, visit);
        return true;
    });
}

Result<int64> Walk(Reader& reader, Visit const& visit)
{
    return Guarded([&] {
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
        {
            std::string path = "/" + Segment(node.label);
            WalkInto(reader, node, path, visit);
        }
        return records.Position();
    });
}

Result<int64> EndOfRecords(Reader& reader)
{
    return Guarded([&] {
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
            ;
        return records.Position();
    });
}

Result<Path> PathAt(Reader& reader, int64 offset)
{
    return Guarded([&] {
        Path path;
        std::optional<Cursor> cursor(reader.Records());
        Node node;
        while (ValueOrRaise(cursor->Next(node)))
        {
            if (offset < node.offset)
                break;
            if (offset >= node.End() || node.kind == Kind::kStringEntry)
                continue;
            path.push_back(node.label);
            static_cast<void>(ValueOrRaise(reader.Complete(node)));
            Cursor children = reader.Children(node);
            cursor.emplace(std::move(children));
        }
        return path;
    });
}

std::optional<Finding> LeftOver(int64 end, int64 size)
{
    if (end == size)
        return std::nullopt;
    return Finding{Severity::kError, "bytes-left-over", end,
                   fmt::format("{} at its end {} too few for a record", ByteCount(size - end),
                               size - end == 1 ? "is" : "are")};
}

Result<Node> ReadFirst(Source const& source, ReadOptions const& options)
{
    return Guarded([&] {
        Reader reader(source, options);
        Node node;
        if (!ValueOrRaise(reader.Records().Next(node)))
            Raise(ErrorCode::kNoRecords, 0, "there is no record");
        return ValueOrRaise(reader.Tree(std::move(node)));
    });
}

Result<RecordTree> ReadTree(Source const& source, ReadOptions const& options)
{
    return Guarded([&] {
        RecordTree tree;
        tree.order = options.order;
        tree.size = source.Size();
        if (int64 const most = options.work.limits.bytes; tree.size > most)
            Raise(ErrorCode::kBeyondLimit, kNoOffset,
                  fmt::format("{} bytes are more than {}", tree.size, most));
        Reader reader(source, options);
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
            tree.records.push_back(ValueOrRaise(reader.Tree(std::move(node))));
        tree.end = records.Position();
        if (auto finding = LeftOver(tree.end, tree.size))
            tree.findings.push_back(std::move(*finding));
        return tree;
    });
}
} // namespace KORVA::RECORDS
