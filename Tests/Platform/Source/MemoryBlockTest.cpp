#include "Platform/MemoryBlock.h"

#include "Platform/Source/AddressSpaceLimit.h"
#include "Support/Library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <thread>

namespace KORVA
{
namespace
{
using PLATFORM::Handle;
using PLATFORM::HandleAddress;
using PLATFORM::MemError;
using PLATFORM::SetHandleSize;
using TESTS::RowName;

constexpr std::size_t kHuge = std::size_t{3} << 30;
constexpr std::int16_t kNoMemory = -108;

class Block
{
public:
    explicit Block(std::size_t size) : mHandle(PLATFORM::NewHandle(size)) {}
    Block(Block const&) = delete;
    Block& operator=(Block const&) = delete;
    ~Block() { PLATFORM::DisposeHandle(mHandle); }

    operator Handle() const { return mHandle; }

    /// Whether the bytes from `from` up to `to` are all `value`.
    bool Holds(std::size_t from, std::size_t to, int value) const
    {
        std::byte const* const bytes = HandleAddress(mHandle);
        return std::all_of(bytes + from, bytes + to,
                           [value](std::byte byte) { return byte == static_cast<std::byte>(value); });
    }

    void Fill(std::size_t size, int value) const { std::memset(HandleAddress(mHandle), value, size); }

private:
    Handle mHandle;
};

struct SizeRow
{
    char const* name;
    std::size_t size;
};

class NewMemoryBlock : public ::testing::TestWithParam<SizeRow>
{
};

TEST_P(NewMemoryBlock, IsZeroAndCanBeWrittenWhole)
{
    Block const block(GetParam().size);
    ASSERT_NE(static_cast<Handle>(block), nullptr);
    EXPECT_EQ(MemError(), 0);
    ASSERT_NE(HandleAddress(block), nullptr);
    EXPECT_TRUE(block.Holds(0, GetParam().size, 0));
    block.Fill(GetParam().size, 0xA5);
    EXPECT_TRUE(block.Holds(0, GetParam().size, 0xA5));
}

SizeRow const kSizes[] = {
    {"Nothing", 0},
    {"OneByte", 1},
    {"LastFromTheAllocator", 65535},
    {"FirstWithPagesOfItsOwn", 65536},
    {"OneByteIntoAPage", 65537},
    {"FreshProvider", 524288},
    {"NotWholePages", 1124289},
};
INSTANTIATE_TEST_SUITE_P(Sizes, NewMemoryBlock, ::testing::ValuesIn(kSizes), RowName());

struct ResizeRow
{
    char const* name;
    std::size_t before;
    std::size_t after;
    std::size_t kept;
};

class ResizedMemoryBlock : public ::testing::TestWithParam<ResizeRow>
{
};

TEST_P(ResizedMemoryBlock, KeepsWhatFits)
{
    ResizeRow const& row = GetParam();
    Block const block(row.before);
    block.Fill(row.before, 0x5A);
    SetHandleSize(block, row.after);
    EXPECT_EQ(MemError(), 0);
    EXPECT_TRUE(block.Holds(0, row.kept, 0x5A));
    EXPECT_TRUE(block.Holds(row.kept, row.after, 0));
    block.Fill(row.after, 0x77);
    EXPECT_TRUE(block.Holds(0, row.after, 0x77));
}

TEST_P(ResizedMemoryBlock, BringsNothingBackWhenItReturnsToItsSize)
{
    ResizeRow const& row = GetParam();
    Block const block(row.before);
    block.Fill(row.before, 0x5A);
    SetHandleSize(block, row.after);
    SetHandleSize(block, row.before);
    EXPECT_EQ(MemError(), 0);
    EXPECT_TRUE(block.Holds(0, row.kept, 0x5A));
    EXPECT_TRUE(block.Holds(row.kept, row.before, 0));
}

ResizeRow const kResizes[] = {
    {"SmallGrows", 10, 1000, 10},
    {"SmallShrinks", 1000, 10, 10},
    {"SmallToNothing", 10, 0, 0},
    {"NothingToSmall", 0, 10, 0},
    {"SmallToLarge", 1000, 600000, 1000},
    {"NothingToLarge", 0, 600000, 0},
    {"LargeGrows", 524288, 1124288, 524288},
    {"LargeGrowsWithinItsPage", 524289, 524300, 524289},
    {"LargeShrinks", 1124288, 524288, 524288},
    {"LargeShrinksWithinItsPage", 524300, 524289, 524289},
    {"LargeShrinksIntoAPage", 1124288, 600001, 600001},
    {"LargeToSmall", 524288, 4, 4},
    {"LargeToNothing", 524288, 0, 0},
    {"SameSize", 524288, 524288, 524288},
};
INSTANTIATE_TEST_SUITE_P(Resizes, ResizedMemoryBlock, ::testing::ValuesIn(kResizes), RowName());

TEST(MemoryBlock, KeepsItsContentsThroughManySteps)
{
    Block const block(0);
    for (std::size_t size = 1; size <= (std::size_t{1} << 20); size *= 2)
    {
        SetHandleSize(block, size);
        ASSERT_EQ(MemError(), 0) << size;
        ASSERT_TRUE(block.Holds(size / 2, size, 0)) << size;
        block.Fill(size, 0x11);
    }
    for (std::size_t size = std::size_t{1} << 20; size > 0; size /= 2)
    {
        SetHandleSize(block, size);
        ASSERT_EQ(MemError(), 0) << size;
        ASSERT_TRUE(block.Holds(0, size, 0x11)) << size;
    }
}

struct FailureRow
{
    char const* name;
    std::size_t before;
    std::size_t wanted;
};

class FailingMemoryBlock : public ::testing::TestWithParam<FailureRow>
{
};

TEST_P(FailingMemoryBlock, StaysAsItIs)
{
    Block const block(GetParam().before);
    block.Fill(GetParam().before, 0x5A);
    std::byte const* const address = HandleAddress(block);
    std::int16_t error = 0;
    {
        TESTS::AddressSpaceLimit const limit;
        SetHandleSize(block, GetParam().wanted);
        error = MemError();
    }
    EXPECT_EQ(error, kNoMemory);
    EXPECT_EQ(MemError(), kNoMemory);
    EXPECT_EQ(HandleAddress(block), address);
    EXPECT_TRUE(block.Holds(0, GetParam().before, 0x5A));
    SetHandleSize(block, GetParam().before + 1);
    EXPECT_EQ(MemError(), 0);
    EXPECT_TRUE(block.Holds(0, GetParam().before, 0x5A));
    EXPECT_TRUE(block.Holds(GetParam().before, GetParam().before + 1, 0));
}

FailureRow const kFailures[] = {
    {"SmallToHuge", 100, kHuge},
    {"LargeToHuge", 524288, kHuge},
    {"SmallToMoreThanThereIs", 100, std::numeric_limits<std::size_t>::max()},
    {"LargeToMoreThanThereIs", 524288, std::numeric_limits<std::size_t>::max()},
};
INSTANTIATE_TEST_SUITE_P(Failures, FailingMemoryBlock, ::testing::ValuesIn(kFailures), RowName());

TEST(MemoryBlock, NoMemoryForANewOne)
{
    Handle refused = nullptr;
    std::int16_t error = 0;
    {
        TESTS::AddressSpaceLimit const limit;
        refused = PLATFORM::NewHandle(kHuge);
        error = MemError();
    }
    EXPECT_EQ(refused, nullptr);
    EXPECT_EQ(error, kNoMemory);
    EXPECT_EQ(PLATFORM::NewHandle(std::numeric_limits<std::size_t>::max()), nullptr);
    EXPECT_EQ(MemError(), kNoMemory);
    Block const block(1);
    EXPECT_EQ(MemError(), 0);
}

TEST(MemoryBlock, NullHandle)
{
    PLATFORM::DisposeHandle(nullptr);
    EXPECT_EQ(HandleAddress(nullptr), nullptr);
}

TEST(MemoryBlock, ErrorBelongsToTheThread)
{
    EXPECT_EQ(PLATFORM::NewHandle(std::numeric_limits<std::size_t>::max()), nullptr);
    std::int16_t elsewhere = 1;
    std::thread([&elsewhere] { elsewhere = MemError(); }).join();
    EXPECT_EQ(elsewhere, 0);
    EXPECT_EQ(MemError(), kNoMemory);
}
} // namespace
} // namespace KORVA
