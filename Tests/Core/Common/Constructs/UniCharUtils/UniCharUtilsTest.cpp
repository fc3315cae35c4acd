// Creating, measuring and comparing zero-terminated texts of UTF-16 units.
#include "UniCharUtils.h"

#include "Support/LogCapture.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
constexpr char kSource[] = "Core/Common/Constructs/UniCharUtils/UniCharUtils";
constexpr int32 kLowest = std::numeric_limits<int32>::min();
constexpr int32 kHighest = std::numeric_limits<int32>::max();

Logged const kCreateNull{kSource, "UniChar *KORVA::UniStrCreate(const char *)", 0,
                         "Passed in a NULL pointer"};
Logged const kLenNull{kSource, "int32 KORVA::UniStrLen(const UniChar *)", 0, "Passed in a NULL pointer"};
Logged const kCmpNull{kSource, "int32 KORVA::UniStrCmp(const UniChar *, const UniChar *)", 0,
                      "Passed in a NULL pointer"};
Logged const kNCmpNull{kSource, "int32 KORVA::UniStrnCmp(const UniChar *, const UniChar *, int32)", 0,
                       "Passed in a NULL pointer"};
Logged const kNCmpLimit{kSource, "int32 KORVA::UniStrnCmp(const UniChar *, const UniChar *, int32)", 0,
                        "Called UniStrnCmp with a value of 0 for n."};

using Units = std::vector<UniChar>;

/// Exactly these units, so that a look beyond them is a look beyond the block.
std::unique_ptr<UniChar[]> Block(Units const& units)
{
    auto block = std::make_unique<UniChar[]>(units.size());
    std::copy(units.begin(), units.end(), block.get());
    return block;
}

struct CreateRow
{
    char const* name;
    std::string bytes;
    Units units;
};

class UniStrCreateTest : public ::testing::TestWithParam<CreateRow>
{
protected:
    LogCapture log;
};

TEST_P(UniStrCreateTest, SignExtendsEachByteAndTerminates)
{
    std::unique_ptr<UniChar[]> const created(UniStrCreate(GetParam().bytes.c_str()));
    ASSERT_TRUE(created);
    EXPECT_EQ(Units(created.get(), created.get() + GetParam().units.size()), GetParam().units);
    EXPECT_EQ(log.Take(), kNothing);
}

CreateRow const kCreateRows[] = {
    {"Empty", "", {0}},
    {"OneByte", "a", {0x61, 0}},
    {"Plain", "abc", {0x61, 0x62, 0x63, 0}},
    {"EndOfPlain", "\x01\x7F", {0x0001, 0x007F, 0}},
    {"FirstBeyondPlain", "\x80", {0xFF80, 0}},
    {"Last", "\xFF", {0xFFFF, 0}},
    {"NoCodePage", "caf\xE9", {0x63, 0x61, 0x66, 0xFFE9, 0}},
    {"NoUTF8", "\xC3\xA9", {0xFFC3, 0xFFA9, 0}},
};
INSTANTIATE_TEST_SUITE_P(Texts, UniStrCreateTest, ::testing::ValuesIn(kCreateRows), RowName());

class UniStrTest : public ::testing::Test
{
protected:
    LogCapture log;
};

TEST_F(UniStrTest, CreateKeepsALongTextWhole)
{
    std::unique_ptr<UniChar[]> const created(UniStrCreate(std::string(100'000, 'x').c_str()));
    ASSERT_TRUE(created);
    EXPECT_EQ(std::u16string(created.get()), std::u16string(100'000, u'x'));
}

TEST_F(UniStrTest, CreateOfNullLogsAndGivesNull)
{
    EXPECT_EQ(UniStrCreate(nullptr), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCreateNull});
}

TEST_F(UniStrTest, LengthCountsUnits)
{
    EXPECT_EQ(UniStrLen(u""), 0);
    EXPECT_EQ(UniStrLen(u"a"), 1);
    EXPECT_EQ(UniStrLen(u"abc\0def"), 3);
    EXPECT_EQ(UniStrLen(u"\U0001F600"), 2);
    EXPECT_EQ(UniStrLen(Block({0xD800, 0xFFFF, 0x0100, 0}).get()), 3);
    EXPECT_EQ(UniStrLen(std::u16string(100'000, u'x').c_str()), 100'000);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(UniStrTest, LengthOfNullLogsAndIsZero)
{
    EXPECT_EQ(UniStrLen(nullptr), 0);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kLenNull});
}

struct CompareRow
{
    char const* name;
    Units a;
    Units b;
    int32 difference;
};

class UniStrCmpTest : public ::testing::TestWithParam<CompareRow>
{
protected:
    LogCapture log;
};

TEST_P(UniStrCmpTest, GivesTheDifferenceOfTheFirstUnitsThatDiffer)
{
    EXPECT_EQ(UniStrCmp(Block(GetParam().a).get(), Block(GetParam().b).get()), GetParam().difference);
    EXPECT_EQ(log.Take(), kNothing);
}

CompareRow const kCompareRows[] = {
    {"BothEmpty", {0}, {0}, 0},
    {"Equal", {'a', 'b', 'c', 0}, {'a', 'b', 'c', 0}, 0},
    {"FirstEndsEarlier", {'a', 'b', 0}, {'a', 'b', 'c', 0}, -99},
    {"SecondEndsEarlier", {'a', 'b', 'c', 0}, {'a', 'b', 0}, 99},
    {"FirstEmpty", {0}, {'c', 0}, -99},
    {"SecondEmpty", {'c', 0}, {0}, 99},
    {"DifferAtOnce", {'b', 'z', 0}, {'a', 'a', 0}, 1},
    {"DifferInTheMiddle", {'a', 'c', 'a', 0}, {'a', 'e', 'z', 0}, -2},
    {"CaseMatters", {'a', 0}, {'A', 0}, 32},
    {"UnitsAreUnsigned", {0xFFFF, 0}, {0x0001, 0}, 65534},
    {"UnitsAreUnsignedTheOtherWay", {0x0001, 0}, {0xFFFF, 0}, -65534},
    {"HighestAgainstTheEnd", {0xFFFF, 0}, {0}, 65535},
    {"EndAgainstTheHighest", {0}, {0xFFFF, 0}, -65535},
};
INSTANTIATE_TEST_SUITE_P(Texts, UniStrCmpTest, ::testing::ValuesIn(kCompareRows), RowName());

TEST_F(UniStrTest, CompareOfOneTextWithItselfIsZero)
{
    UniChar const text[] = u"abc";
    EXPECT_EQ(UniStrCmp(text, text), 0);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(UniStrTest, CompareOfNullLogsAndIsZero)
{
    EXPECT_EQ(UniStrCmp(nullptr, u"abc"), 0);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCmpNull});
    EXPECT_EQ(UniStrCmp(u"abc", nullptr), 0);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCmpNull});
    EXPECT_EQ(UniStrCmp(nullptr, nullptr), 0);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCmpNull});
}

struct LimitRow
{
    char const* name;
    Units a;
    Units b;
    int32 n;
    int32 difference;
};

class UniStrnCmpTest : public ::testing::TestWithParam<LimitRow>
{
protected:
    LogCapture log;
};

TEST_P(UniStrnCmpTest, LooksAtSoManyUnits)
{
    LimitRow const& row = GetParam();
    EXPECT_EQ(UniStrnCmp(Block(row.a).get(), Block(row.b).get(), row.n), row.difference);
    EXPECT_EQ(log.Take(), kNothing);
}

LimitRow const kLimitRows[] = {
    {"EqualUpToTheLimit", {'a', 'b', 0}, {'a', 'b', 'c', 0}, 2, 0},
    {"FirstEndsAtTheLimit", {'a', 'b', 0}, {'a', 'b', 'c', 0}, 3, -99},
    {"SecondEndsAtTheLimit", {'a', 'b', 'c', 0}, {'a', 'b', 0}, 3, 99},
    {"DifferBehindTheLimit", {'a', 'b', 'c', 0}, {'a', 'b', 'd', 0}, 2, 0},
    {"DifferAtTheLimit", {'a', 'b', 'c', 0}, {'a', 'b', 'd', 0}, 3, -1},
    {"DifferBeforeTheLimit", {'b', 'x', 'x', 0}, {'a', 'y', 'y', 0}, 3, 1},
    {"OneUnitEqual", {'a', 'x', 0}, {'a', 'y', 0}, 1, 0},
    {"OneUnitDifferent", {'c', 'x', 0}, {'a', 'x', 0}, 1, 2},
    {"EqualUnterminated", {'a', 'b', 'c'}, {'a', 'b', 'c'}, 3, 0},
    {"DifferentUnterminated", {'a', 'b', 'c'}, {'a', 'b', 'e'}, 3, -2},
    {"NothingBehindTheEnd", {'a', 0, 'x'}, {'a', 0, 'y'}, 3, 0},
    {"HighestLimit", {'a', 'b', 0}, {'a', 'b', 0}, kHighest, 0},
    {"BothEmpty", {0}, {0}, 5, 0},
    {"UnitsAreUnsigned", {0xFFFF, 0}, {0x0001, 0}, 1, 65534},
};
INSTANTIATE_TEST_SUITE_P(Texts, UniStrnCmpTest, ::testing::ValuesIn(kLimitRows), RowName());

TEST_F(UniStrTest, LimitedCompareOfOneTextWithItselfIsZeroWhateverTheLimit)
{
    UniChar const text[] = u"abc";
    for (int32 const n : {3, 1, 0, -1, kLowest})
        EXPECT_EQ(UniStrnCmp(text, text, n), 0) << n;
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(UniStrTest, LimitBelowOneLogsAndIsZero)
{
    for (int32 const n : {0, -1, kLowest})
    {
        EXPECT_EQ(UniStrnCmp(Block({'a', 0}).get(), Block({'b', 0}).get(), n), 0) << n;
        EXPECT_EQ(log.Take(), std::vector<Logged>{kNCmpLimit}) << n;
    }
}

TEST_F(UniStrTest, LimitedCompareOfNullLogsAndIsZero)
{
    EXPECT_EQ(UniStrnCmp(nullptr, u"abc", 3), 0);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNCmpNull});
    EXPECT_EQ(UniStrnCmp(u"abc", nullptr, 3), 0);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNCmpNull});
    EXPECT_EQ(UniStrnCmp(nullptr, nullptr, 3), 0);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNCmpNull});
}
} // namespace
} // namespace KORVA::TESTS
