#include "Records/Layout.h"

#include "Records/Summary.h"

namespace TOOL
{
namespace
{
using namespace KORVA;

class Collector final : public FieldSink
{
public:
    void OnRecord(int64 offset, Label const& label, int depth) override
    {
        TOOL::Place place(Place(), Segment(label));
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
        row.field = {node.offset, node.length, Role::kOpaque, "", Summary(node)};
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
    TOOL::Place Place() const { return mOpen.empty() ? TOOL::Place() : mRows[mOpen.back()].place; }

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

std::vector<LayoutRow> LayoutOf(ByteView content, DecodeOptions options)
{
    Collector collector;
    options.fields = &collector;
    static_cast<void>(Decode(content, options));
    collector.Explain(static_cast<int64>(content.size()));
    return collector.Take();
}
} // namespace TOOL
