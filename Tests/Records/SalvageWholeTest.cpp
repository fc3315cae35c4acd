// Salvaging what is not damaged gives the same file; of anything else each byte has a fate.
#include <tessio/Records/Salvage/Salvage.h>

#include "Records/Samples.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace KORVA::TESTS
{
namespace
{
bool IsDamaged(RECORDS::RecordTree const& tree)
{
    return !tree.findings.empty() || std::ranges::any_of(tree.records, &RECORDS::IsDamaged);
}

/// A record of a class that nobody knows is told from damage by what stands around it.
bool HasUnknownAtTheTop(RECORDS::RecordTree const& tree)
{
    return std::ranges::any_of(tree.records, [](RECORDS::Node const& record) {
        return record.kind == RECORDS::Kind::kUnknownClass;
    });
}

TEST(SalvageWhole, KeepsEveryByteOfWhatIsNotDamaged)
{
    int files = 0;
    ForEachFile({0x01}, [&](Bytes const& content, Order order, std::string const& name) {
        RECORDS::RecordTree const tree = Read(order, content);
        if (IsDamaged(tree) || HasUnknownAtTheTop(tree))
            return;
        ++files;
        RECORDS::Salvaged const salvaged = *RECORDS::Salvage(content, order);
        ASSERT_EQ(ToHex(salvaged.content), ToHex(content)) << name;
        for (RECORDS::Fate const& fate : salvaged.fates)
            ASSERT_EQ(fate.type, RECORDS::Fate::Type::kKept) << name;
    });
    EXPECT_GT(files, 2 * 30);
}

struct KeptRow
{
    char const* name;
    /// For `Laid`.
    char const* before;
    char const* after;
};

KeptRow const kKept[] = {
    // The first of its aggregates is of an unknown class, the last of a known one, which ends with it.
    {"AggregatesOfTwoKinds",
     "{76543210-BA98-4EDC-9F01-23456789ABCD} 100:8 =0102030405060708 2:4 "
     "{00000001-0000-0000-0000-000000000000} {76543210-BA98-4EDC-9F01-23456789ABCE} 0:8 "
     "{00000002-0000-0000-0000-000000000000} URI 8:8 0:4 0:4",
     nullptr},
    // The id of a plug-in's class, half of it the library's, and a body that reads as a dictionary.
    {"AnIdLikeTheLibrarys", "{12345678-0000-0000-8241-9BB4250B1B05} 44:8 1:4 7:4 URI 8:8 0:4 0:4 0:4",
     nullptr},
    // A text may hold what reads as a record.
    {"ARecordInAText", "Value 44:8 'UNIC 32:4 =9EB41725E5BC4C4085243A6EC3C3B6330800000000000000 0:4 0:4 0:4",
     nullptr},
    // A known class's id with one byte changed, around what can't be one of it.
    {"CutIntoUnderADamagedId", "{73E90C22-BBC6-4326-8241-9BB4250B1B05} 36:8 'CHAR 24:4 URI 8:8 0:4 0:4",
     "URI 8:8 0:4 0:4"},
};

class SalvageKept : public ::testing::TestWithParam<KeptRow>
{
};

TEST_P(SalvageKept, IsWhatItShouldBe)
{
    Bytes const before = Laid(kLittle, GetParam().before);
    Bytes const after = GetParam().after ? Laid(kLittle, GetParam().after) : before;
    EXPECT_EQ(ToHex(RECORDS::Salvage(before, kLittle)->content), ToHex(after));
}

INSTANTIATE_TEST_SUITE_P(Rows, SalvageKept, ::testing::ValuesIn(kKept), RowName());

TEST(SalvageWhole, SaysWhichAggregateHadAnotherClassId)
{
    Bytes damaged = Laid(kLittle, "Dict 56:8 0:4 1:4 {00000001-0000-0000-0000-000000000000} URI 8:8 0:4 0:4");
    Bytes const whole = damaged;
    damaged[48] ^= 0x10;
    RECORDS::Salvaged const salvaged = *RECORDS::Salvage(damaged, kLittle);
    EXPECT_EQ(ToHex(salvaged.content), ToHex(whole));
    ASSERT_EQ(salvaged.fates.size(), 3u);
    EXPECT_EQ(salvaged.fates[2].type, RECORDS::Fate::Type::kRepaired);
    EXPECT_EQ(salvaged.fates[2].offset, 48);
    EXPECT_EQ(salvaged.fates[2].length, 32);
    EXPECT_EQ(salvaged.fates[2].path.Text(), "/0/{00000001-0000-0000-0000-000000000000}");
}

TEST(SalvageWhole, GivesEveryByteAFateAndWritesNothingDamaged)
{
    ForEachFile({0x01, 0x80, 0xFF}, [](Bytes const& content, Order order, std::string const& name) {
        RECORDS::Salvaged const salvaged = *RECORDS::Salvage(content, order);
        RECORDS::RecordTree const tree = Read(order, salvaged.content);
        ASSERT_FALSE(IsDamaged(tree)) << name;
        int64 at = 0;
        for (RECORDS::Fate const& fate : salvaged.fates)
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
