// Copying and appending zero-terminated texts of UTF-16 units.
#include "UniCharUtils.h"

#include "Support/LogCapture.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
constexpr char kSource[] = "Core/Common/Constructs/UniCharUtils/UniCharUtils";
constexpr int32 kLowest = std::numeric_limits<int32>::min();
constexpr int32 kHighest = std::numeric_limits<int32>::max();

Logged const kCpyNull{kSource, "UniChar *KORVA::UniStrCpy(UniChar *, const UniChar *)", 0,
                      "Passed in a NULL pointer"};
Logged const kCatNull{kSource, "UniChar *KORVA::UniStrCat(UniChar *, const UniChar *)", 0,
                      "Passed in a NULL pointer"};
Logged const kNCatNull{kSource, "UniChar *KORVA::UniStrnCat(UniChar *, const UniChar *, int32)", 0,
                       "Passed in a NULL pointer"};

/// On the heap, so that a step beyond the last unit is seen. 0x2A stands where nothing may be written.
using Units = std::vector<UniChar>;

class UniStrCopyTest : public ::testing::Test
{
protected:
    LogCapture log;
};

TEST_F(UniStrCopyTest, CopiesTheTerminatorAndNothingBehindIt)
{
    Units target(6, 0x2A);
    Units const source{'a', 0xFFFF, 'c', 0, 'x'};
    EXPECT_EQ(UniStrCpy(target.data(), source.data()), target.data());
    EXPECT_EQ(target, (Units{'a', 0xFFFF, 'c', 0, 0x2A, 0x2A}));
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(UniStrCopyTest, CopiesAnEmptyTextAsItsTerminator)
{
    Units target(2, 0x2A);
    EXPECT_EQ(UniStrCpy(target.data(), u""), target.data());
    EXPECT_EQ(target, (Units{0, 0x2A}));
}

TEST_F(UniStrCopyTest, CopyOfNullLogsAndGivesNull)
{
    Units target(2, 0x2A);
    EXPECT_EQ(UniStrCpy(target.data(), nullptr), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCpyNull});
    EXPECT_EQ(target, (Units{0x2A, 0x2A}));
    EXPECT_EQ(UniStrCpy(nullptr, u"a"), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCpyNull});
    EXPECT_EQ(UniStrCpy(nullptr, nullptr), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCpyNull});
}

struct CopyRow
{
    char const* name;
    Units source;
    int32 n;
    Units target;
};

class UniStrnCpyTest : public ::testing::TestWithParam<CopyRow>
{
protected:
    LogCapture log;
};

TEST_P(UniStrnCpyTest, CopiesUpToATerminatorOrTheLimit)
{
    Units target(GetParam().target.size(), 0x2A);
    EXPECT_EQ(UniStrnCpy(target.data(), GetParam().source.data(), GetParam().n), target.data());
    EXPECT_EQ(target, GetParam().target);
    EXPECT_EQ(log.Take(), kNothing);
}

CopyRow const kCopyRows[] = {
    {"LimitBeforeTheEnd", {'a', 'b', 'c', 0}, 2, {'a', 'b', 0x2A, 0x2A}},
    {"LimitAtTheEndDoesNotTerminate", {'a', 'b', 'c', 0}, 3, {'a', 'b', 'c', 0x2A}},
    {"LimitTakesTheTerminator", {'a', 'b', 'c', 0}, 4, {'a', 'b', 'c', 0, 0x2A}},
    {"LimitBehindTheEndDoesNotPad", {'a', 0, 'x'}, 4, {'a', 0, 0x2A, 0x2A}},
    {"HighestLimit", {'a', 0}, kHighest, {'a', 0, 0x2A}},
    {"UnterminatedSource", {'a', 'b'}, 2, {'a', 'b', 0x2A}},
    {"EmptySource", {0}, 1, {0, 0x2A}},
    {"LimitZero", {'a', 0}, 0, {0x2A, 0x2A}},
    {"LimitNegative", {'a', 0}, -1, {0x2A, 0x2A}},
    {"LimitLowest", {'a', 0}, kLowest, {0x2A, 0x2A}},
};
INSTANTIATE_TEST_SUITE_P(Texts, UniStrnCpyTest, ::testing::ValuesIn(kCopyRows), RowName());

TEST_F(UniStrCopyTest, LimitedCopyDoesNotLookForNull)
{
    UniChar target = 0x2A;
    EXPECT_EQ(UniStrnCpy(&target, nullptr, 0), &target);
    EXPECT_EQ(UniStrnCpy(nullptr, u"a", 0), nullptr);
    EXPECT_EQ(UniStrnCpy(nullptr, nullptr, -1), nullptr);
    EXPECT_EQ(target, 0x2A);
    EXPECT_EQ(log.Take(), kNothing);
}

struct AppendRow
{
    char const* name;
    /// Before, with room.
    Units target;
    Units source;
    Units result;
};

class UniStrCatTest : public ::testing::TestWithParam<AppendRow>
{
protected:
    LogCapture log;
};

TEST_P(UniStrCatTest, AppendsWithTheTerminator)
{
    Units target = GetParam().target;
    EXPECT_EQ(UniStrCat(target.data(), GetParam().source.data()), target.data());
    EXPECT_EQ(target, GetParam().result);
    EXPECT_EQ(log.Take(), kNothing);
}

AppendRow const kAppendRows[] = {
    {"ToAText", {'x', 0, 0x2A, 0x2A, 0x2A}, {'a', 'b', 0}, {'x', 'a', 'b', 0, 0x2A}},
    {"ToNothing", {0, 0x2A, 0x2A}, {'a', 0}, {'a', 0, 0x2A}},
    {"Nothing", {'x', 'y', 0, 0x2A}, {0}, {'x', 'y', 0, 0x2A}},
    {"NothingToNothing", {0, 0x2A}, {0}, {0, 0x2A}},
    {"UpToTheLastUnit", {'x', 0, 0x2A}, {0xFFFF, 0}, {'x', 0xFFFF, 0}},
};
INSTANTIATE_TEST_SUITE_P(Texts, UniStrCatTest, ::testing::ValuesIn(kAppendRows), RowName());

TEST_F(UniStrCopyTest, AppendingNullLogsAndGivesNull)
{
    Units target{'x', 0, 0x2A};
    EXPECT_EQ(UniStrCat(target.data(), nullptr), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCatNull});
    EXPECT_EQ(target, (Units{'x', 0, 0x2A}));
    EXPECT_EQ(UniStrCat(nullptr, u"a"), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCatNull});
    EXPECT_EQ(UniStrCat(nullptr, nullptr), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCatNull});
}

struct LimitedAppendRow
{
    char const* name;
    Units target;
    Units source;
    int32 n;
    Units result;
};

class UniStrnCatTest : public ::testing::TestWithParam<LimitedAppendRow>
{
protected:
    LogCapture log;
};

TEST_P(UniStrnCatTest, AppendsUpToTheLimitAndTerminates)
{
    Units target = GetParam().target;
    EXPECT_EQ(UniStrnCat(target.data(), GetParam().source.data(), GetParam().n), target.data());
    EXPECT_EQ(target, GetParam().result);
    EXPECT_EQ(log.Take(), kNothing);
}

LimitedAppendRow const kLimitedAppendRows[] = {
    {"LimitBeforeTheEnd", {'x', 0, 0x2A, 0x2A, 0x2A}, {'a', 'b', 'c', 0}, 2, {'x', 'a', 'b', 0, 0x2A}},
    {"LimitAtTheEnd", {'x', 0, 0x2A, 0x2A, 0x2A}, {'a', 'b', 0}, 2, {'x', 'a', 'b', 0, 0x2A}},
    {"LimitBehindTheEnd", {'x', 0, 0x2A, 0x2A, 0x2A}, {'a', 'b', 0}, 9, {'x', 'a', 'b', 0, 0x2A}},
    {"HighestLimit", {'x', 0, 0x2A}, {'a', 0}, kHighest, {'x', 'a', 0}},
    {"UpToTheLastUnit", {'x', 0, 0x2A, 0x2A}, {'a', 'b', 'c', 0}, 2, {'x', 'a', 'b', 0}},
    {"UnterminatedSource", {'x', 0, 0x2A, 0x2A}, {'a', 'b'}, 2, {'x', 'a', 'b', 0}},
    {"ToNothing", {0, 0x2A, 0x2A}, {'a', 'b', 0}, 1, {'a', 0, 0x2A}},
    {"Nothing", {'x', 0, 0x2A}, {0, 'a'}, 5, {'x', 0, 0x2A}},
    {"LimitZero", {'x', 0, 0x2A}, {'a', 0}, 0, {'x', 0, 0x2A}},
    {"LimitNegative", {'x', 0, 0x2A}, {'a', 0}, -1, {'x', 0, 0x2A}},
    {"LimitLowest", {'x', 0, 0x2A}, {'a', 0}, kLowest, {'x', 0, 0x2A}},
};
INSTANTIATE_TEST_SUITE_P(Texts, UniStrnCatTest, ::testing::ValuesIn(kLimitedAppendRows), RowName());

TEST_F(UniStrCopyTest, LimitedAppendingOfNullLogsAndGivesNull)
{
    Units target{'x', 0, 0x2A};
    EXPECT_EQ(UniStrnCat(target.data(), nullptr, 2), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNCatNull});
    EXPECT_EQ(target, (Units{'x', 0, 0x2A}));
    EXPECT_EQ(UniStrnCat(nullptr, u"a", 2), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNCatNull});
    EXPECT_EQ(UniStrnCat(nullptr, nullptr, 2), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNCatNull});
}
} // namespace
} // namespace KORVA::TESTS
