// What is read of record files, and what is noticed about them.
#include <tessio/Records/Tree/Reader.h>

#include <tessio/Records/Tree/FileOrder.h>

#include "Records/Samples.h"
#include "Support/RowName.h"
#include <tessio/Records/Tree/Summary.h>

#include <gtest/gtest.h>

#include <sys/mman.h>

#include <functional>

namespace KORVA::TESTS
{
namespace
{
RECORDS::Result<RECORDS::RecordTree> ReadAll(RECORDS::ByteView content, RECORDS::ReadOptions const& options)
{
    return RECORDS::ReadTree(RECORDS::MemorySource(content), options);
}

using RECORDS::Finding;
using RECORDS::Node;
using RECORDS::ReadOptions;
using RECORDS::RecordTree;
using RECORDS::Severity;

TEST(Laid, GivesTheBytesThatThePageOnTheFormatShows)
{
    char const* const words = "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4";
    EXPECT_EQ(ToHex(Laid(kLittle, words)),
              "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 3C 00 00 00 00 00 00 00 01 00 00 00 01 00 00 "
              "00 21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 18 00 00 00 00 00 00 00 56 32 33 53 07 00 "
              "00 00 00 00 00 00 00 00 00 00 00 00 1C 40 00 00 00 00 00 00 00 00");
    EXPECT_EQ(ToHex(Laid(kBig, words)),
              "73 E9 0C D5 BB C6 43 26 82 41 9B B4 25 0B 1B 05 00 00 00 00 00 00 00 3C 00 00 00 01 00 00 00 "
              "01 73 E9 0C 21 BB C6 43 26 82 41 9B B4 25 0B 1B 05 00 00 00 00 00 00 00 18 53 33 32 56 00 00 "
              "00 00 00 00 00 07 40 1C 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    char const* const texts = "Strings 22:8 1:4 2:4 \"a\" 4:4 ^0078^0079 0:4";
    EXPECT_EQ(ToHex(Laid(kLittle, texts)),
              "56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53 16 00 00 00 00 00 00 00 01 00 00 00 02 00 00 "
              "00 61 00 04 00 00 00 78 00 79 00 00 00 00 00");
    EXPECT_EQ(ToHex(Laid(kBig, texts)),
              "CD 21 0A 56 28 4C 4B 7C 81 3F 42 AD DF 77 48 53 00 00 00 00 00 00 00 16 00 00 00 01 00 00 00 "
              "02 00 61 00 00 00 04 00 78 00 79 00 00 00 00");
}

std::string Line(Severity severity, std::string const& code, int64 offset, std::string const& path,
                 std::string const& words)
{
    return std::string(RECORDS::SeverityName(severity)) + " " + code + " at " + std::to_string(offset) +
           " of " + path + ": " + words + "\n";
}

std::string AllFindings(RecordTree const& tree)
{
    std::string text;
    RECORDS::Walk(tree, [&](Node const& node, std::string const& path, int) {
        for (Finding const& finding : node.findings)
            text += Line(finding.severity, finding.code, finding.offset, path, finding.words);
    });
    for (Finding const& finding : tree.findings)
        text += Line(finding.severity, finding.code, finding.offset, "", finding.words);
    return text;
}

class ReaderFinding : public ::testing::TestWithParam<FindingRow>
{
};

TEST_P(ReaderFinding, HasSeverityCodeOffsetPathAndWords)
{
    std::string expected;
    for (Noticed const& noticed : GetParam().findings)
        expected += Line(noticed.severity, noticed.code, noticed.offset, noticed.path, noticed.words);
    for (Order const order : kOrders)
    {
        SCOPED_TRACE(RECORDS::OrderName(order));
        EXPECT_EQ(AllFindings(Read(order, Laid(order, GetParam().words))), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, ReaderFinding, ::testing::ValuesIn(Findings()), RowName());

/// One line for each record: offset, length, path, what it is.
std::string Lines(RecordTree const& tree)
{
    std::string text;
    RECORDS::Walk(tree, [&](Node const& node, std::string const& path, int) {
        text += std::to_string(node.offset) + " " + std::to_string(node.length) + " " + path + " " +
                RECORDS::Summary(node) + "\n";
    });
    return text;
}

TEST(Reader, ReadsOneOfEachClassInEitherOrder)
{
    for (Order const order : kOrders)
    {
        SCOPED_TRACE(RECORDS::OrderName(order));
        RecordTree const tree = Read(order, Laid(order, kEvery));
        EXPECT_EQ(tree.size, 442);
        EXPECT_EQ(tree.end, 442);
        EXPECT_EQ(tree.order, order);
        EXPECT_EQ(Lines(tree),
                  "0 308 /0 PersistentDictionary, 5 entries\n"
                  "32 48 /0/dict[1] DictValue int32 7\n"
                  "84 40 /0/dict[2] DictValue text \"hi\"\n"
                  "128 46 /0/dict[3] StringDictionary, 1 entry\n"
                  "156 14 /0/dict[3]/strings[\"a\"] \"xy\"\n"
                  "178 26 /0/dict[4] unknown class {76543210-BA98-4EDC-9F01-23456789ABCD}, skipped\n"
                  "208 48 /0/dict[5] DictValue guid {01234567-89AB-01EF-0123-456789ABCDEF}\n"
                  "276 32 /0/{11111111-2222-3333-4444-555555555555} DictValue none\n"
                  "308 50 /1 URI \"file:///a\"\n"
                  "358 58 /2 RelativeURI documents \"a\"\n"
                  "416 26 /3 unknown class {76543210-BA98-4EDC-9F01-23456789ABCD}, skipped\n");
        EXPECT_EQ(AllFindings(tree), "note unknown-class at 178 of /0/dict[4]: nobody here knows its class\n"
                                     "note unknown-class at 416 of /3: nobody here knows its class\n");
        EXPECT_EQ(tree.records[0].aggregatesAt, 256);
        EXPECT_EQ(tree.records[0].declared, 284);
        EXPECT_TRUE(tree.records[0].regular);
    }
}

TEST(Reader, ReadsEachTypeOfNumber)
{
    for (Sample const& sample : Samples())
    {
        if (std::string_view(sample.name) != "Numbers")
            continue;
        for (Order const order : kOrders)
        {
            SCOPED_TRACE(RECORDS::OrderName(order));
            EXPECT_EQ(Lines(Read(order, Laid(order, sample.words))),
                      "0 48 /0 DictValue int8 -128\n"
                      "48 48 /1 DictValue uint8 255\n"
                      "96 48 /2 DictValue int16 -1\n"
                      "144 48 /3 DictValue uint16 65535\n"
                      "192 48 /4 DictValue int32 -2147483648\n"
                      "240 48 /5 DictValue uint32 4294967295\n"
                      "288 48 /6 DictValue int64 -9223372036854775808\n"
                      "336 48 /7 DictValue uint64 18446744073709551615\n"
                      "384 48 /8 DictValue float 0.5\n"
                      "432 48 /9 DictValue double 1.5\n");
        }
    }
}

TEST(Reader, DamageInOneRecordLeavesThoseAroundAndBehindIt)
{
    for (Order const order : kOrders)
    {
        // The inner dictionary lacks its number of aggregates.
        RecordTree const tree = Read(order, Laid(order, R"(
            Dict 128:8 2:4
                1:4 Dict 56:8 1:4 7:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4
                2:4 Value 8:8 'UNNT 0:4
                0:4
            Value 8:8 'UNNT 0:4)"));
        EXPECT_EQ(Lines(tree), "0 152 /0 PersistentDictionary, 2 entries\n"
                               "32 80 /0/dict[1] PersistentDictionary, 1 entry\n"
                               "64 48 /0/dict[1]/dict[7] DictValue int32 7\n"
                               "116 32 /0/dict[2] DictValue none\n"
                               "152 32 /1 DictValue none\n");
        EXPECT_EQ(AllFindings(tree), "error cut-short at 112 of /0/dict[1]: the number of aggregates needs 4 "
                                     "bytes, 0 are left\n");
        EXPECT_FALSE(tree.records[0].entries[0].regular);
        EXPECT_TRUE(tree.records[0].entries[0].entries[0].regular);
        EXPECT_TRUE(RECORDS::IsDamaged(tree.records[0]));
        EXPECT_EQ(RECORDS::Problem(tree.records[0]), "");
        EXPECT_EQ(RECORDS::FirstFragile(tree.records[0])->offset, 32);
        EXPECT_FALSE(RECORDS::IsDamaged(tree.records[1]));
        EXPECT_EQ(RECORDS::FirstFragile(tree.records[1]), nullptr);
    }
}

TEST(Reader, ALengthThatNobodyBelievesIsNamed)
{
    // Only the pages that are touched take memory.
    constexpr std::size_t kSize = 24 + 2147483648ULL;
    void* const pages =
        mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    auto* const bytes = static_cast<unsigned char*>(pages);
    for (int64 const length : {int64{2147483647}, int64{2147483648}})
    {
        Bytes const header =
            Laid(kBig, "{76543210-BA98-4EDC-9F01-23456789ABCD} " + std::to_string(length) + ":8");
        std::copy(header.begin(), header.end(), bytes);
        ReadOptions options;
        options.order = kBig;
        RecordTree const tree = *ReadAll({bytes, 24 + static_cast<std::size_t>(length)}, options);
        EXPECT_EQ(AllFindings(tree),
                  std::string(length == 2147483647 ? ""
                                                   : "error length-not-believed at 16 of /0: its length is "
                                                     "2147483648, more than the 2147483647 that are read\n") +
                      "note unknown-class at 0 of /0: nobody here knows its class\n");
    }
    munmap(pages, kSize);
}

/// Dictionaries in each other, the innermost one without entries.
Bytes Nested(Order order, int records)
{
    std::string words;
    for (int i = records - 1; i > 0; --i)
        words += "Dict " + std::to_string(36 * i + 8) + ":8 1:4 1:4 ";
    words += "Dict 8:8 0:4 0:4 ";
    for (int i = records - 1; i > 0; --i)
        words += "0:4 ";
    return Laid(order, words);
}

TEST(Reader, ARecordNestedMoreThanAThousandDeepIsNotRead)
{
    for (Order const order : kOrders)
    {
        EXPECT_EQ(AllFindings(Read(order, Nested(order, 1000))), "");
        std::string path = "/0";
        for (int i = 0; i < 1000; ++i)
            path += "/dict[1]";
        EXPECT_EQ(AllFindings(Read(order, Nested(order, 1001))),
                  "error nested-too-deep at 32000 of " + path +
                      ": nested more than 1000 deep, it is not read\n");
    }
}

struct LimitRow
{
    char const* name;
    RECORDS::Limits limits;
    char const* words;
};

class ReaderLimit : public ::testing::TestWithParam<LimitRow>
{
};

TEST_P(ReaderLimit, EndsTheReading)
{
    ReadOptions options;
    options.work.limits = GetParam().limits;
    std::string const expected = *GetParam().words ? std::string("beyond-limit ") + GetParam().words : "";
    EXPECT_EQ(FailureOf(ReadAll(Laid(kLittle, kEvery), options)), expected);
}

constexpr int64 kAny = 1000000;

// Texts of string dictionaries are no records: there are ten of these, two deep.
INSTANTIATE_TEST_SUITE_P(
    Rows, ReaderLimit,
    ::testing::Values(
        LimitRow{"All", {.depth = 2, .count = 12, .bytes = 442}, ""},
        LimitRow{"Depth",
                 {.depth = 1, .count = kAny, .bytes = kAny},
                 "the record at offset 32 is nested more than 1 deep"},
        LimitRow{"NoDepth",
                 {.depth = 0, .count = kAny, .bytes = kAny},
                 "the record at offset 0 is nested more than 0 deep"},
        LimitRow{"Count",
                 {.depth = kAny, .count = 9, .bytes = kAny},
                 "more than 9 records: the record at offset 358 is one too many"},
        LimitRow{"NoRecord",
                 {.depth = kAny, .count = 0, .bytes = kAny},
                 "more than 0 records: the record at offset 0 is one too many"},
        LimitRow{"Bytes", {.depth = kAny, .count = kAny, .bytes = 441}, "442 bytes are more than 441"}),
    RowName());

struct OrderRow
{
    char const* name;
    char const* words;
    bool isFound;
};

class ReaderOrder : public ::testing::TestWithParam<OrderRow>
{
};

TEST_P(ReaderOrder, IsFoundFromTheContent)
{
    for (Order const order : kOrders)
    {
        auto const found = RECORDS::FindOrder(Laid(order, GetParam().words));
        EXPECT_EQ(found, GetParam().isFound ? std::optional(order) : std::nullopt)
            << RECORDS::OrderName(order);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReaderOrder,
    ::testing::Values(
        OrderRow{"KnownFirst", "Value 8:8 'UNNT 0:4", true},
        OrderRow{"SecondDictionaryId", "{73E90C1F-BBC6-4326-8241-9BB4250B1B05} 8:8 0:4 0:4", true},
        OrderRow{"UnknownFirst", "{76543210-BA98-4EDC-9F01-23456789ABCD} 2:8 =0102 Value 8:8 'UNNT 0:4",
                 true},
        OrderRow{"OnlyUnknown", "{76543210-BA98-4EDC-9F01-23456789ABCD} 2:8 =0102", true},
        OrderRow{"KnownButDamaged", "Value -1:8", true},
        OrderRow{"UnknownThatLeadsNowhere", "{76543210-BA98-4EDC-9F01-23456789ABCD} 3:8 =0102", false},
        OrderRow{"Nothing", "", false}, OrderRow{"TooFewBytes", "=D50CE973", false}),
    RowName());

/// Pretends to know one class, whose body is a number of four bytes, then a record when there is room.
class FakeClasses final : public RECORDS::ClassReader
{
public:
    explicit FakeClasses(bool reads) : mReads(reads) {}

    std::optional<RECORDS::ReadBody> Read(GUID const&, RECORDS::ByteView body, int64 offset,
                                          Order) const override
    {
        if (!mReads)
            return std::nullopt;
        RECORDS::ReadBody read{{{"int32", offset, 4}}, 4};
        if (body.size() > 8)
        {
            read.parts.push_back({"record", offset + 4, 32});
            read.length = 36;
        }
        return read;
    }
    bool Makes(GUID const&) const override { return true; }

private:
    bool mReads;
};

RecordTree ReadWith(FakeClasses const& classes, Order order, char const* words)
{
    ReadOptions options;
    options.order = order;
    options.classes = &classes;
    return *ReadAll(Laid(order, words), options);
}

TEST(Reader, PartsOfAPlugInsObjectAreWhatItReads)
{
    for (Order const order : kOrders)
    {
        RecordTree const tree =
            ReadWith(FakeClasses(true), order,
                     "{00000009-0000-0000-0000-000000000000} 40:8 7:4 Value 8:8 'UNNT 0:4 0:4");
        EXPECT_EQ(Lines(tree), "0 64 /0 object {00000009-0000-0000-0000-000000000000}, 2 parts\n"
                               "28 32 /0/record[0] DictValue none\n");
        EXPECT_EQ(AllFindings(tree), "");
        EXPECT_TRUE(tree.records[0].regular);
        EXPECT_EQ(AllFindings(ReadWith(FakeClasses(true), order,
                                       "{00000009-0000-0000-0000-000000000000} 6:8 7:4 0:2")),
                  "error cut-short at 28 of /0: the number of aggregates needs 4 bytes, 2 are left\n");
    }
}

TEST(Reader, AClassThatDoesNotTellHowItReadsIsOpaque)
{
    RecordTree const tree =
        ReadWith(FakeClasses(false), kBig, "{00000009-0000-0000-0000-000000000000} 4:8 7:4");
    EXPECT_EQ(AllFindings(tree), "note opaque-class at 0 of /0: its class does not tell how it reads\n");
}

TEST(Reader, NoFileIsTooDamagedToBeRead)
{
    int files = 0;
    ForEachFile({0x01, 0x80, 0xFF}, [&](Bytes const& content, Order order, std::string const& name) {
        ++files;
        RecordTree const tree = Read(order, content);
        int64 at = 0;
        for (Node const& record : tree.records)
        {
            ASSERT_EQ(record.offset, at) << name;
            at = record.End();
        }
        ASSERT_EQ(at, tree.end) << name;
        ASSERT_LE(tree.end, static_cast<int64>(content.size())) << name;
        ASSERT_EQ(tree.findings.size(), tree.end < tree.size ? 1u : 0u) << name;
        for (Finding const& finding : tree.findings)
            ASSERT_LT(finding.offset, tree.size) << name;
    });
    EXPECT_GT(files, 2 * 4 * 442);
}
} // namespace
} // namespace KORVA::TESTS
