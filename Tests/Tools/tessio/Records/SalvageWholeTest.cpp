// Salvaging what is not damaged gives the same file; of anything else each byte has a fate.
#include "Records/Salvage.h"

#include "Tools/tessio/Records/Samples.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace KORVA::TESTS
{
namespace
{
bool IsDamaged(TOOL::RecordTree const& tree)
{
    return !tree.findings.empty() || std::ranges::any_of(tree.records, &TOOL::IsDamaged);
}

/// A record of a class that nobody knows is told from damage by what stands around it.
bool HasUnknownAtTheTop(TOOL::RecordTree const& tree)
{
    return std::ranges::any_of(
        tree.records, [](TOOL::Node const& record) { return record.kind == TOOL::Kind::kUnknownClass; });
}

TEST(SalvageWhole, KeepsEveryByteOfWhatIsNotDamaged)
{
    int files = 0;
    ForEachFile({0x01}, [&](Bytes const& content, Order order, std::string const& name) {
        TOOL::RecordTree const tree = Read(order, content);
        if (IsDamaged(tree) || HasUnknownAtTheTop(tree))
            return;
        ++files;
        TOOL::Salvaged const salvaged = TOOL::Salvage(content, order);
        ASSERT_EQ(ToHex(salvaged.content), ToHex(content)) << name;
        for (TOOL::Fate const& fate : salvaged.fates)
            ASSERT_EQ(fate.type, TOOL::Fate::Type::kKept) << name;
    });
    EXPECT_GT(files, 2 * 30);
}

/// Whether something at the path, or in it, is said to be partial.
bool IsPartial(TOOL::Salvaged const& salvaged, std::string const& path)
{
    return std::ranges::any_of(salvaged.fates, [&](TOOL::Fate const& fate) {
        return fate.type == TOOL::Fate::Type::kPartial && (fate.path + "/").starts_with(path + "/");
    });
}

TEST(SalvageWhole, GivesEveryByteAFateAndOnlyPartialRecordsAreDamagedStill)
{
    ForEachFile({0x01, 0x80, 0xFF}, [](Bytes const& content, Order order, std::string const& name) {
        TOOL::Salvaged const salvaged = TOOL::Salvage(content, order);
        TOOL::RecordTree const tree = Read(order, salvaged.content);
        ASSERT_TRUE(tree.findings.empty()) << name;
        for (TOOL::Node const& record : tree.records)
            if (TOOL::IsDamaged(record))
            {
                ASSERT_TRUE(IsPartial(salvaged, "/" + TOOL::Segment(record.label))) << name;
            }
        int64 at = 0;
        for (TOOL::Fate const& fate : salvaged.fates)
        {
            ASSERT_EQ(fate.offset, at) << name;
            ASSERT_GT(fate.length, 0) << name;
            at += fate.length;
        }
        ASSERT_EQ(at, static_cast<int64>(content.size())) << name;
    });
}
} // namespace
} // namespace KORVA::TESTS
