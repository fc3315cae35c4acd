// How the block of a memory provider grows, shrinks and runs out.
#include "Platform/Source/AddressSpaceLimit.h"
#include "Support/Library.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <string>

namespace KORVA
{
namespace
{
using IO::IDataProvider;
using TESTS::Bytes;
using TESTS::kNothing;
using TESTS::LibraryTest;
using TESTS::LibraryTestWith;
using TESTS::Logged;
using TESTS::RowName;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/HandleDataProvider";
constexpr char kSetSize[] = "virtual ErrCode KORVA::IO::HandleDataProvider::SetSize(int64)";
Logged const kSizeOutOfRange{kSource, kSetSize, 173,
                             "Memory handles only support up to 0xFFFFFFFF for size and cannot be negative"};
constexpr int64 kThreeGiB = 3221225472;

class HandleMemory : public LibraryTest
{
protected:
    /// The block is `capacity` bytes long: a position there is the last that is allowed. Where the position
    /// was, it is again afterwards.
    void ExpectCapacity(IDataProvider& provider, int64 capacity)
    {
        int64 const position = provider.GetPosition();
        EXPECT_EQ(provider.SetPosition(capacity, IDataProvider::kFromStart), 0);
        EXPECT_EQ(provider.SetPosition(capacity + 1, IDataProvider::kFromStart), 13);
        EXPECT_THAT(
            log.Take(),
            ::testing::ElementsAre(Logged{
                kSource,
                "virtual ErrCode KORVA::IO::HandleDataProvider::SetPosition(int64, IDataProvider::Offset)",
                205,
                "Attempted to move buffer position to " + std::to_string(capacity + 1) +
                    "  when buffer size is " + std::to_string(capacity)}));
        EXPECT_EQ(provider.SetPosition(position, IDataProvider::kFromStart), 0);
    }
};

struct GrowthRow
{
    char const* name;
    int64 position;
    std::size_t count;
    int64 size;
    int64 capacity;
};

class HandleGrowth : public HandleMemory, public ::testing::WithParamInterface<GrowthRow>
{
};

TEST_P(HandleGrowth, GoesHalfAMegabyteBeyondWhatIsNeeded)
{
    GrowthRow const& row = GetParam();
    auto const provider = MakeMemory();
    ASSERT_EQ(provider->SetPosition(row.position, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->Write(Bytes(row.count, 0xEE).data(), row.count), 0);
    EXPECT_EQ(provider->Size(), row.size);
    EXPECT_EQ(provider->GetPosition(), row.size);
    ExpectCapacity(*provider, row.capacity);
    Bytes expected(static_cast<std::size_t>(row.position), 0);
    expected.insert(expected.end(), row.count, 0xEE);
    // Compared without printing them.
    EXPECT_TRUE(BytesOf(*provider) == expected);
}

GrowthRow const kGrowths[] = {
    {"Within", 0, 100, 100, 524288},
    {"UpToTheEnd", 0, 524288, 524288, 524288},
    {"OneByteTooMany", 0, 524289, 524289, 1048577},
    {"Large", 0, 600000, 600000, 1124288},
    {"LastByteOfTheBlock", 524287, 1, 524288, 524288},
    {"FirstByteAfterTheBlock", 524288, 1, 524289, 1048577},
    {"AcrossTheEnd", 524280, 20, 524300, 1048588},
    {"AfterAGap", 5000, 7, 5007, 524288},
};
INSTANTIATE_TEST_SUITE_P(Writes, HandleGrowth, ::testing::ValuesIn(kGrowths), RowName());

TEST_F(HandleMemory, GrowsInSteps)
{
    auto const provider = MakeMemory();
    Bytes const piece(600000, 0x33);
    EXPECT_EQ(provider->Write(piece.data(), piece.size()), 0);
    ExpectCapacity(*provider, 1124288);
    EXPECT_EQ(provider->Write(piece.data(), 524288), 0);
    EXPECT_EQ(provider->Size(), 1124288);
    ExpectCapacity(*provider, 1124288);
    EXPECT_EQ(provider->Write(piece.data(), 1), 0);
    EXPECT_EQ(provider->Size(), 1124289);
    ExpectCapacity(*provider, 1648577);
    EXPECT_TRUE(BytesOf(*provider) == Bytes(1124289, 0x33));
}

TEST_F(HandleMemory, GrowthKeepsASizeBeyondTheWrite)
{
    auto const provider = MakeMemory();
    ASSERT_EQ(provider->SetSize(8), 0);
    EXPECT_EQ(provider->Write("0123456789", 10), 0);
    EXPECT_EQ(provider->Size(), 10);
    ExpectCapacity(*provider, 524298);
}

struct SizeRow
{
    char const* name;
    int64 position;
    int64 size;
    int64 positionAfter;
};

class HandleSetSize : public HandleMemory, public ::testing::WithParamInterface<SizeRow>
{
};

TEST_P(HandleSetSize, IsSizeAndCapacity)
{
    SizeRow const& row = GetParam();
    auto const provider = MakeMemory();
    ASSERT_EQ(provider->Write("0123456789", 10), 0);
    ASSERT_EQ(provider->SetPosition(row.position, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->SetSize(row.size), 0);
    EXPECT_EQ(provider->Size(), row.size);
    EXPECT_EQ(provider->GetPosition(), row.positionAfter);
    ExpectCapacity(*provider, row.size);
}

SizeRow const kSizes[] = {
    {"CutsThePosition", 10, 4, 4},
    {"PositionAtTheNewEnd", 4, 4, 4},
    {"PositionBefore", 3, 4, 3},
    {"OneByte", 10, 1, 1},
    {"Same", 10, 10, 10},
    {"Larger", 10, 100, 10},
    {"CutsAPositionPastTheData", 524288, 100, 100},
    {"LargerThanTheBlock", 10, 1000000, 10},
};
INSTANTIATE_TEST_SUITE_P(Sizes, HandleSetSize, ::testing::ValuesIn(kSizes), RowName());

struct RefusedRow
{
    char const* name;
    int64 size;
};

class HandleSetSizeOutOfRange : public HandleMemory, public ::testing::WithParamInterface<RefusedRow>
{
};

TEST_P(HandleSetSizeOutOfRange, ChangesNothing)
{
    auto const provider = MakeMemory();
    ASSERT_EQ(provider->Write("0123456789", 10), 0);
    EXPECT_EQ(provider->SetSize(GetParam().size), 27);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kSizeOutOfRange));
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(provider->GetPosition(), 10);
    ExpectCapacity(*provider, 524288);
}

RefusedRow const kRefused[] = {
    {"Nothing", 0},
    {"FewerThanNone", -1},
    {"FirstOf33Bits", 4294967296},
    {"SmallInItsLower32Bits", 4294967300},
    {"Most", std::numeric_limits<int64>::max()},
    {"Fewest", std::numeric_limits<int64>::min()},
};
INSTANTIATE_TEST_SUITE_P(Sizes, HandleSetSizeOutOfRange, ::testing::ValuesIn(kRefused), RowName());

TEST_F(HandleMemory, LargestSize)
{
    auto const provider = MakeMemory();
    EXPECT_EQ(provider->SetSize(4294967295), 0);
    EXPECT_EQ(provider->Size(), 4294967295);
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(provider->GetPosition(), 4294967295);
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(provider->Write("a", 1), 27);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kSizeOutOfRange));
    EXPECT_EQ(provider->Size(), 4294967295);
    EXPECT_EQ(provider->GetPosition(), 4294967295);
    EXPECT_EQ(provider->SetPosition(-1, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(provider->Write("z", 1), 0);
    EXPECT_EQ(provider->GetPosition(), 4294967295);
    EXPECT_EQ(provider->SetPosition(1, IDataProvider::kFromEnd), 0);
    char byte = 0;
    int32 count = 1;
    EXPECT_EQ(provider->Read(&byte, count), 0);
    EXPECT_EQ(byte, 'z');
    ExpectCapacity(*provider, 4294967295);
}

struct TooMuchRow
{
    char const* name;
    std::size_t count;
};

class HandleWriteTooMuch : public HandleMemory, public ::testing::WithParamInterface<TooMuchRow>
{
};

TEST_P(HandleWriteTooMuch, ChangesNothing)
{
    auto const provider = MakeMemory();
    ASSERT_EQ(provider->Write("0123456789", 10), 0);
    ASSERT_EQ(provider->SetPosition(4, IDataProvider::kFromStart), 0);
    // Nothing is taken from the one byte that is there.
    EXPECT_EQ(provider->Write("x", GetParam().count), 27);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kSizeOutOfRange));
    EXPECT_EQ(provider->GetPosition(), 4);
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(BytesOf(*provider), (Bytes{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'}));
    ExpectCapacity(*provider, 524288);
}

TooMuchRow const kTooMuch[] = {
    // 4 + 4294443004 + 524288 is the first size that is refused.
    {"OneByteWithTheReserve", 4294443004},
    {"EndBeyond32Bits", 4294967295},
    {"SmallInItsLower32Bits", 4294967301},
    {"Most", std::numeric_limits<std::size_t>::max()},
};
INSTANTIATE_TEST_SUITE_P(Counts, HandleWriteTooMuch, ::testing::ValuesIn(kTooMuch), RowName());

struct NoMemoryRow
{
    char const* name;
    ErrCode (*grow)(IDataProvider&);
    /// Set before; 0 leaves the fresh block.
    int64 capacity;
    char const* message;
};

class HandleWithoutMemory : public HandleMemory, public ::testing::WithParamInterface<NoMemoryRow>
{
};

TEST_P(HandleWithoutMemory, StaysAsItIs)
{
    NoMemoryRow const& row = GetParam();
    auto const provider = MakeMemory();
    if (row.capacity > 0)
    {
        ASSERT_EQ(provider->SetSize(row.capacity), 0);
    }
    ASSERT_EQ(provider->Write("0123456789", 10), 0);
    int64 const size = row.capacity > 0 ? row.capacity : 10;
    ASSERT_EQ(provider->SetPosition(4, IDataProvider::kFromStart), 0);
    ErrCode result = 0;
    {
        TESTS::AddressSpaceLimit const limit;
        result = row.grow(*provider);
    }
    EXPECT_EQ(result, 27);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(Logged{kSource, kSetSize, 161, row.message}));
    EXPECT_EQ(provider->Size(), size);
    EXPECT_EQ(provider->GetPosition(), 4);
    ExpectCapacity(*provider, row.capacity > 0 ? row.capacity : 524288);
    Bytes expected{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'};
    expected.resize(static_cast<std::size_t>(size));
    EXPECT_TRUE(BytesOf(*provider) == expected);
    // Memory is back, and so is the provider.
    EXPECT_EQ(provider->SetSize(600000), 0);
    ExpectCapacity(*provider, 600000);
}

NoMemoryRow const kNoMemory[] = {
    {"SetSizeOfAFreshBlock", [](IDataProvider& provider) { return provider.SetSize(kThreeGiB); }, 0,
     "Too low memory. SetHandleSize failed with error code: -108 and requested handle size: 524288"},
    {"SetSizeOfASmallBlock", [](IDataProvider& provider) { return provider.SetSize(kThreeGiB); }, 16,
     "Too low memory. SetHandleSize failed with error code: -108 and requested handle size: 16"},
    {"SetSizeOfALargerBlock", [](IDataProvider& provider) { return provider.SetSize(kThreeGiB); }, 1000000,
     "Too low memory. SetHandleSize failed with error code: -108 and requested handle size: 1000000"},
    {"WriteToAFreshBlock", [](IDataProvider& provider) { return provider.Write("x", kThreeGiB); }, 0,
     "Too low memory. SetHandleSize failed with error code: -108 and requested handle size: 524288"},
    {"WriteToASmallBlock", [](IDataProvider& provider) { return provider.Write("x", kThreeGiB); }, 16,
     "Too low memory. SetHandleSize failed with error code: -108 and requested handle size: 16"},
};
INSTANTIATE_TEST_SUITE_P(Requests, HandleWithoutMemory, ::testing::ValuesIn(kNoMemory), RowName());

TEST_F(HandleMemory, OldCapacityIsNamedAsAnUnsignedNumber)
{
    auto const provider = MakeMemory();
    ASSERT_EQ(provider->SetSize(kThreeGiB), 0);
    ErrCode result = 0;
    {
        TESTS::AddressSpaceLimit const limit;
        result = provider->SetSize(4294967295);
    }
    EXPECT_EQ(result, 27);
    EXPECT_THAT(log.Take(),
                ::testing::ElementsAre(Logged{kSource, kSetSize, 161,
                                              "Too low memory. SetHandleSize failed with error code: "
                                              "-108 and requested handle size: 3221225472"}));
    EXPECT_EQ(provider->Size(), kThreeGiB);
}

TEST_F(HandleMemory, BlockWithoutMemoryRefusesToGrow)
{
    auto const provider = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
    {
        TESTS::AddressSpaceLimit const limit(0);
        provider->InitHandleBased(IO::kStreamReadWrite);
    }
    Logged const refused{
        kSource, kSetSize, 161,
        "Too low memory. SetHandleSize failed with error code: -108 and requested handle size: "
        "524288"};
    EXPECT_EQ(provider->Write("abc", 3), 27);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(refused));
    EXPECT_EQ(provider->SetSize(10), 27);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(refused));
    EXPECT_EQ(provider->Write("", 0), 0);
    EXPECT_EQ(provider->Size(), 0);
    ExpectCapacity(*provider, 524288);
    char buffer[4];
    int32 count = 4;
    EXPECT_EQ(provider->Read(buffer, count), 28);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(provider->SetPosition(7, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->Write("abc", 3), 27);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(refused));
    EXPECT_EQ(provider->GetPosition(), 7);
}

TEST_F(HandleMemory, GapReadsAsZero)
{
    auto const provider = MakeMemory(Bytes{1, 2, 3});
    ASSERT_EQ(provider->SetPosition(6, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->Size(), 3);
    EXPECT_EQ(provider->Write("\x09", 1), 0);
    EXPECT_EQ(BytesOf(*provider), TESTS::Hex("01 02 03 00 00 00 09"));
}

TEST_F(HandleMemory, SizeSetBeyondTheDataReadsAsZero)
{
    auto const provider = MakeMemory(Bytes{1, 2, 3});
    ASSERT_EQ(provider->SetSize(6), 0);
    EXPECT_EQ(BytesOf(*provider), TESTS::Hex("01 02 03 00 00 00"));
}

struct RegrowthRow
{
    char const* name;
    std::size_t written;
    std::size_t shrunk;
    std::size_t regrown;
};

class HandleRegrowth : public HandleMemory, public ::testing::WithParamInterface<RegrowthRow>
{
};

TEST_P(HandleRegrowth, BringsNothingBack)
{
    RegrowthRow const& row = GetParam();
    Bytes expected(row.shrunk, 0xFF);
    expected.resize(row.regrown);
    auto const bySize = MakeMemory(Bytes(row.written, 0xFF));
    ASSERT_EQ(bySize->SetSize(static_cast<int64>(row.shrunk)), 0);
    ASSERT_EQ(bySize->SetSize(static_cast<int64>(row.regrown)), 0);
    EXPECT_TRUE(BytesOf(*bySize) == expected);

    auto const byWrite = MakeMemory(Bytes(row.written, 0xFF));
    ASSERT_EQ(byWrite->SetSize(static_cast<int64>(row.shrunk)), 0);
    ASSERT_EQ(byWrite->SetPosition(0, IDataProvider::kFromEnd), 0);
    ASSERT_EQ(byWrite->Write("a", 1), 0);
    ASSERT_EQ(byWrite->SetPosition(static_cast<int64>(row.regrown) - 1, IDataProvider::kFromStart), 0);
    ASSERT_EQ(byWrite->Write("z", 1), 0);
    expected[row.shrunk] = 'a';
    expected.back() = 'z';
    EXPECT_TRUE(BytesOf(*byWrite) == expected);
}

RegrowthRow const kRegrowths[] = {
    {"SmallToSmall", 100, 10, 50},
    {"WithinAPage", 600000, 599990, 600001},
    {"ToFewBytes", 524288, 4, 524288},
    {"ToAPartOfAPage", 524288, 100001, 400000},
    {"PastWhatWasWritten", 1000, 10, 400000},
};
INSTANTIATE_TEST_SUITE_P(Sizes, HandleRegrowth, ::testing::ValuesIn(kRegrowths), RowName());
} // namespace
} // namespace KORVA
