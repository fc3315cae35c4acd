// How much work salvaging takes: about as much as there is to read, whatever the shape of the file.
#include "Records/Samples.h"
#include "Support/HostileFiles.h"
#include "Support/Laid.h"
#include <tessio/Records/Salvage/Salvage.h>

#include <gtest/gtest.h>

#include <string>

namespace KORVA::TESTS
{
namespace
{
void Append(Bytes& bytes, Bytes const& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

/// Dictionaries in each other, `levels` of them, around `core`, each under the key 7.
Bytes Nest(Order order, int levels, Bytes core)
{
    for (int level = 0; level < levels; ++level)
    {
        std::string const length = std::to_string(core.size() + 12);
        Bytes outer = Laid(order, "Dict " + length + ":8 1:4 7:4");
        Append(outer, core);
        Append(outer, Laid(order, "0:4"));
        core = outer;
    }
    return core;
}

TEST(SalvageEffort, IsThatOfReadingNestedRecordsOnce)
{
    for (Order const order : kOrders)
    {
        // The text of the innermost has one unit too many for its record.
        Bytes const damaged = Nest(order, 900, Laid(order, "URI 10:8 4:4 \"x\" 0:4"));
        RECORDS::Limits limits;
        limits.count = 10 * 901;
        RECORDS::Salvaged const salvaged = *RECORDS::Salvage(damaged, order, {limits, {}});
        RECORDS::ReadOptions options;
        options.order = order;
        RECORDS::RecordTree const tree = *RECORDS::ReadTree(RECORDS::MemorySource(salvaged.content), options);
        EXPECT_EQ(tree.records.size(), 1u);
        EXPECT_TRUE(tree.findings.empty());
    }
}

TEST(SalvageEffort, IsBoundedByTheLimitOfRecords)
{
    RECORDS::Limits limits;
    limits.count = 3;
    Bytes const nest = Nest(kLittle, 3, Laid(kLittle, "URI 8:8 0:4 0:4"));
    EXPECT_EQ(FailureOf(RECORDS::Salvage(nest, kLittle, {limits, {}})),
              "beyond-limit more than 3 records: the record at offset 32 is one too many");
    limits.count = 100;
    limits.depth = 3;
    EXPECT_EQ(FailureOf(RECORDS::Salvage(nest, kLittle, {limits, {}})),
              "beyond-limit the record at offset 0 holds others more than 3 deep");
}

constexpr char kUnknown[] = "{76543210-BA98-4EDC-9F01-23456789ABCD} 4:8 =01020304";

TEST(SalvageEffort, IsBoundedByTheLimitOfTheDepthOfWhatIsDamaged)
{
    RECORDS::Limits limits;
    limits.depth = 3;
    EXPECT_EQ(FailureOf(RECORDS::Salvage(Nest(kLittle, 5, Laid(kLittle, "URI 10:8 4:4 \"x\" 0:4")), kLittle,
                                         {limits, {}})),
              "beyond-limit the record at offset 96 is nested more than 3 deep");
}

TEST(SalvageEffort, OfRecordsMadeToOverlapIsBounded)
{
    Bytes const file = HostileKindNamed("OverlappingTexts").make(65536);
    EXPECT_EQ(FailureOf(RECORDS::Salvage(file, kLittle)),
              "beyond-limit it takes more than " + std::to_string(16 * file.size()) +
                  " looks at what could be records: they overlap, as damage does not leave them");
}

// The square of their number would take minutes.
TEST(SalvageEffort, ChainsOfUnknownRecordsAreKept)
{
    constexpr int kRecords = 30000;
    for (Order const order : kOrders)
    {
        Bytes file;
        for (int i = 0; i < kRecords; ++i)
            Append(file, Laid(order, kUnknown));
        Append(file, Laid(order, "URI 8:8 0:4 0:4"));
        EXPECT_TRUE(RECORDS::Salvage(file, order)->content == file);
    }
}

TEST(SalvageEffort, ChainsOfUnknownEntriesAreKept)
{
    constexpr int kRecords = 30000;
    for (Order const order : kOrders)
    {
        Bytes whole = Laid(order, "Dict 960044:8 30001:4 1:4 URI 8:8 0:4 0:4");
        for (int i = 0; i < kRecords; ++i)
            Append(whole, Laid(order, std::to_string(i + 2) + ":4 " + kUnknown));
        Append(whole, Laid(order, "0:4"));
        Bytes damaged = whole;
        // 30000 entries, or 30001 with another digit.
        damaged[order == kLittle ? 24 : 27] ^= 1;
        RECORDS::Salvaged const salvaged = *RECORDS::Salvage(damaged, order);
        EXPECT_TRUE(salvaged.content == whole) << salvaged.content.size() << " of " << whole.size();
    }
}
} // namespace
} // namespace KORVA::TESTS
