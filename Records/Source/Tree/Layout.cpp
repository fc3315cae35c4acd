#include <tessio/Records/Tree/Layout.h>

#include <tessio/Records/Tree/Summary.h>

namespace KORVA::RECORDS
{
namespace
{

class Collector final : public FieldSink
{
public:
    explicit Collector(Paint const& paint) : mPaint(paint) {}

    void OnRecord(int64 offset, Label const& label, int depth) override
    {
        RECORDS::Place place(Place(), Segment(label));
        Explain(offset);
        mOpen.push_back(mRows.size());
        mRows.push_back({true, false, depth, std::move(place), {}, {}});
    }

    void OnField(Field field) override
    {
        Explain(field.offset);
        mEnd = field.offset + field.length;
        mRows.push_back({false, false, Depth(), Place(), std::move(field), {}});
    }

    void OnRecordEnd(Node const& node) override
    {
        Explain(node.End());
        LayoutRow& row = mRows[mOpen.back()];
        mOpen.pop_back();
        row.field = {node.offset, node.length, Role::kOpaque, "",
                     mPaint ? Summary(node, mPaint) : Summary(node)};
        row.findings = node.findings;
    }

    /// The bytes up to there that no field took.
    void Explain(int64 to)
    {
        if (to > mEnd)
            mRows.push_back(
                {false, true, Depth(), Place(), {mEnd, to - mEnd, Role::kOpaque, "unexplained", ""}, {}});
        mEnd = std::max(mEnd, to);
    }

    std::vector<LayoutRow> Take() { return std::move(mRows); }

private:
    int Depth() const { return mOpen.empty() ? 0 : mRows[mOpen.back()].depth; }
    RECORDS::Place Place() const { return mOpen.empty() ? RECORDS::Place() : mRows[mOpen.back()].place; }

    Paint const& mPaint;
    std::vector<LayoutRow> mRows;
    std::vector<std::size_t> mOpen;
    int64 mEnd = 0;
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

Result<std::vector<LayoutRow>> LayoutOf(ByteView content, DecodeOptions options, Paint const& paint)
{
    Collector collector(paint);
    options.fields = &collector;
    if (auto const tree = Decode(content, options); !tree)
        return tree.error();
    collector.Explain(static_cast<int64>(content.size()));
    return collector.Take();
}
} // namespace KORVA::RECORDS
