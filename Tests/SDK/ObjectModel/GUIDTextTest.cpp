// The registry text form of identifiers.
#include <tessio/ObjectModel/GUIDText.h>

#include "Support/Library.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
constexpr GUID kId{0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};
constexpr GUID kSmall{0x0A, 0x0B, 0x0C, {0, 1, 2, 3, 4, 5, 6, 7}};

TEST(GUIDText, WritesNumbersThenBytesInOrder)
{
    EXPECT_EQ(GUIDToText(kId), "{73E90CD5-BBC6-4326-8241-9BB4250B1B05}");
}

TEST(GUIDText, KeepsLeadingZeros)
{
    EXPECT_EQ(GUIDToText(kSmall), "{0000000A-000B-000C-0001-020304050607}");
    EXPECT_EQ(GUIDToText(GUID{}), "{00000000-0000-0000-0000-000000000000}");
}

struct Row
{
    char const* name;
    char const* text;
    std::optional<GUID> id;
};

Row const kRows[] = {
    {"WithBraces", "{73E90CD5-BBC6-4326-8241-9BB4250B1B05}", kId},
    {"WithoutBraces", "73E90CD5-BBC6-4326-8241-9BB4250B1B05", kId},
    {"LowerCase", "{73e90cd5-bbc6-4326-8241-9bb4250b1b05}", kId},
    {"MixedCase", "73e90CD5-BbC6-4326-8241-9Bb4250b1B05", kId},
    {"LeadingZeros", "{0000000A-000B-000C-0001-020304050607}", kSmall},
    {"AllOnes", "{FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF}",
     GUID{0xFFFFFFFF, 0xFFFF, 0xFFFF, {255, 255, 255, 255, 255, 255, 255, 255}}},
    {"Empty", "", std::nullopt},
    {"BracesOnly", "{}", std::nullopt},
    {"OpeningBraceOnly", "{73E90CD5-BBC6-4326-8241-9BB4250B1B05", std::nullopt},
    {"ClosingBraceOnly", "73E90CD5-BBC6-4326-8241-9BB4250B1B05}", std::nullopt},
    {"OtherBraces", "(73E90CD5-BBC6-4326-8241-9BB4250B1B05)", std::nullopt},
    {"TooShort", "73E90CD5-BBC6-4326-8241-9BB4250B1B0", std::nullopt},
    {"TooLong", "73E90CD5-BBC6-4326-8241-9BB4250B1B055", std::nullopt},
    {"BracesAndOneTooMany", "{73E90CD5-BBC6-4326-8241-9BB4250B1B055}", std::nullopt},
    {"HyphenMissing", "73E90CD5BBBC6-4326-8241-9BB4250B1B05", std::nullopt},
    {"HyphenMisplaced", "73E90CD-5BBC6-4326-8241-9BB4250B1B05", std::nullopt},
    {"HyphenForDigit", "73E90CD5-BBC6-4326-8241-9BB4250B1B-5", std::nullopt},
    {"NoHexadecimalDigit", "73E90CD5-BBC6-4326-8241-9BB4250B1B0G", std::nullopt},
    {"BlankForDigit", "73E90CD5-BBC6-4326-8241-9BB4250B1B 5", std::nullopt},
    {"LeadingBlanks", "  73E90CD5-BBC6-4326-8241-9BB4250B1B05", std::nullopt},
    {"SignedDigits", "+3E90CD5-BBC6-4326-8241-9BB4250B1B05", std::nullopt},
    {"WithoutHyphens", "73E90CD5BBC6432682419BB4250B1B050000", std::nullopt},
};

class GUIDFromTextRow : public ::testing::TestWithParam<Row>
{
};

TEST_P(GUIDFromTextRow, ReadsOrRefuses)
{
    Row const& row = GetParam();
    std::optional<GUID> const read = GUIDFromText(row.text);
    ASSERT_EQ(read.has_value(), row.id.has_value());
    if (read)
    {
        EXPECT_TRUE(*read == *row.id) << GUIDToText(*read);
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, GUIDFromTextRow, ::testing::ValuesIn(kRows), RowName());

TEST(GUIDText, IsTheSameForwardsAndBack)
{
    for (char const* const text :
         {"{2517B49E-BCE5-404C-8524-3A6EC3C3B633}", "{00000001-0002-0003-0405-060708090A0B}"})
        EXPECT_EQ(GUIDToText(GUIDFromText(text).value()), text);
}
} // namespace
} // namespace KORVA::TESTS
