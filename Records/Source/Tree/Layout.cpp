#include <tessio/Records/Tree/Layout.h>

#include "Format/Guard.h"

#include <utility>

namespace KORVA::RECORDS
{
namespace
{
/// Goes through records and hands on their rows, with one for each gap between fields.
class Layouter
{
public:
    Layouter(Reader& reader, RowSink const& sink, int64 start) : mReader(reader), mSink(sink), mEnd(start) {}

    void Record(Node& node, Place const& holder)
    {
        // What is not explained in front of it is the holder's.
        Explain(node.offset);
        static_cast<void>(ValueOrRaise(mReader.Complete(node)));
        Place const around = std::exchange(mPlace, Place(holder, Segment(node.label)));
        int const depthAround = std::exchange(mDepth, node.depth);
        Place const place = mPlace;
        mSink({&node, false, node.depth, place, {node.offset, node.length, Role::kOpaque, "", ""}});
        auto const tell = [this](Field field) { Stretch(std::move(field)); };
        static_cast<void>(ValueOrRaise(mReader.TellFields(node, tell)));
        Cursor children = mReader.Children(node);
        children.Tell(tell);
        Node child;
        while (ValueOrRaise(children.Next(child)))
            // The fields of a text entry are told by its dictionary.
            if (child.kind != Kind::kStringEntry)
                Record(child, place);
        Explain(node.End());
        mPlace = around;
        mDepth = depthAround;
    }

    /// The bytes up to there that no field took.
    void Explain(int64 to)
    {
        if (to > mEnd)
            mSink({nullptr, true, mDepth, mPlace, {mEnd, to - mEnd, Role::kOpaque, "unexplained", ""}});
        mEnd = std::max(mEnd, to);
    }

private:
    void Stretch(Field field)
    {
        Explain(field.offset);
        mEnd = field.offset + field.length;
        mSink({nullptr, false, mDepth, mPlace, std::move(field)});
    }

    Reader& mReader;
    RowSink const& mSink;
    int64 mEnd;
    int mDepth = 0;
    Place mPlace;
};
} // namespace

char const* RoleName(LayoutRow const& row)
{
    if (row.isUnexplained)
        return "unexplained";
    switch (row.field.role)
    {
    case Role::kClass:
        return "class";
    case Role::kLength:
        return "length";
    case Role::kCount:
        return "count";
    case Role::kKey:
        return "key";
    case Role::kTag:
        return "type";
    case Role::kValue:
        return "value";
    case Role::kOpaque:
        break;
    }
    return "opaque";
}

Result<bool> Layout(Reader& reader, RowSink const& sink)
{
    return Guarded([&] {
        Layouter layouter(reader, sink, 0);
        Cursor records = reader.Records();
        Node node;
        while (ValueOrRaise(records.Next(node)))
            layouter.Record(node, Place());
        layouter.Explain(reader.Size());
        return true;
    });
}

Result<bool> LayoutOf(Reader& reader, Path const& path, RowSink const& sink)
{
    return Guarded([&] {
        Node node = ValueOrRaise(reader.Find(path));
        Place holder;
        for (std::size_t i = 0; i + 1 < path.size(); ++i)
            holder = Place(holder, Segment(path[i]));
        Layouter(reader, sink, node.offset).Record(node, holder);
        return true;
    });
}
} // namespace KORVA::RECORDS
