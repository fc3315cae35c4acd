#include "ReadOnlyDataProvider.h"

#include "Support/Library.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>

#include <gmock/gmock.h>

#include <cstring>
#include <limits>

namespace KORVA
{
namespace
{
using IO::IDataProvider;
using TESTS::LibraryTest;
using TESTS::LibraryTestWith;
using TESTS::Logged;
using TESTS::RowName;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/DataProvider";
constexpr char kWrite[] = "virtual OperationId KORVA::IO::ReadOnlyDataProvider::Write(const void *, size_t)";
constexpr char kRead[] = "virtual OperationId KORVA::IO::ReadOnlyDataProvider::Read(void *, int32 &)";
constexpr char kSetPosition[] =
    "virtual ErrCode KORVA::IO::ReadOnlyDataProvider::SetPosition(int64, IDataProvider::Offset)";
constexpr int64 kFarthest = std::numeric_limits<int64>::max();
constexpr int64 kNearest = std::numeric_limits<int64>::min();
constexpr char kContent[] = "0123456789";

/// A facade over ten bytes, at `position`.
TInterfacePtr<IDataProvider> MakeTenBytes(int64 position)
{
    auto provider = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
    EXPECT_EQ(provider->InitReadOnlyMem(kContent, 10), 0);
    EXPECT_EQ(provider->SetPosition(position, IDataProvider::kFromStart), 0);
    return provider;
}

struct MoveRow
{
    char const* name;
    int64 start;
    int64 offset;
    int origin;
    ErrCode result;
    int64 position;
    int line = 0;
    char const* message = nullptr;
};

class ReadOnlySetPosition : public LibraryTestWith<MoveRow>
{
};

TEST_P(ReadOnlySetPosition, StaysWithinTheData)
{
    MoveRow const& row = GetParam();
    auto const provider = MakeTenBytes(row.start);
    EXPECT_EQ(provider->SetPosition(row.offset, static_cast<IDataProvider::Offset>(row.origin)), row.result);
    EXPECT_EQ(provider->GetPosition(), row.position);
    std::vector<Logged> expected;
    if (row.message)
        expected.push_back({kSource, kSetPosition, row.line, row.message});
    EXPECT_EQ(log.Take(), expected);
}

MoveRow const kMoves[] = {
    {"ToTheStart", 4, 0, 0, 0, 0},
    {"ToTheMiddle", 4, 7, 0, 0, 7},
    {"ToTheEnd", 4, 10, 0, 0, 10},
    {"PastTheEnd", 4, 11, 0, 13, 4, 97,
     "The offset supplied is 11 from the start of file but this would set the offset beyond the size of the "
     "data "
     "provider (10)."},
    {"FarPastTheEnd", 0, kFarthest, 0, 13, 0, 97,
     "The offset supplied is 9223372036854775807 from the start of file but this would set the offset beyond "
     "the "
     "size of the data provider (10)."},
    {"PastTheEndByMoreThan32Bits", 0, 4294967301, 0, 13, 0, 97,
     "The offset supplied is 4294967301 from the start of file but this would set the offset beyond the size "
     "of "
     "the data provider (10)."},
    {"BeforeTheStart", 4, -1, 0, 13, 4, 109,
     "The offset supplied is -1 from the marker 4 but this would set the offset to negative."},
    {"FarBeforeTheStart", 4, kNearest, 0, 13, 4, 109,
     "The offset supplied is -9223372036854775808 from the marker 4 but this would set the offset to "
     "negative."},
    {"BackFromTheEndByNothing", 4, 0, 1, 0, 10},
    {"BackFromTheEnd", 4, 3, 1, 0, 7},
    {"BackFromTheEndToTheStart", 4, 10, 1, 0, 0},
    {"BackFromTheEndBeforeTheStart", 4, 11, 1, 13, 4, 109,
     "The offset supplied is 11 from the marker 4 but this would set the offset to negative."},
    {"FarBackFromTheEnd", 0, kFarthest, 1, 13, 0, 109,
     "The offset supplied is 9223372036854775807 from the marker 0 but this would set the offset to "
     "negative."},
    {"ForwardFromTheEnd", 4, -1, 1, 13, 4, 100,
     "The offset supplied is -1 from the end of file but this would set the offset beyond the size of the "
     "data "
     "provider (10)."},
    {"NowhereFromHere", 4, 0, 2, 0, 4},
    {"ForwardFromHere", 4, 3, 2, 0, 7},
    {"ForwardFromHereToTheEnd", 4, 6, 2, 0, 10},
    {"ForwardFromHerePastTheEnd", 4, 7, 2, 13, 4, 103,
     "The offset supplied is 7 from the marker 4 but this would set the offset beyond the size of the data "
     "provider (10)."},
    {"BackFromHere", 4, -3, 2, 0, 1},
    {"BackFromHereToTheStart", 4, -4, 2, 0, 0},
    {"BackFromHereBeforeTheStart", 4, -5, 2, 13, 4, 109,
     "The offset supplied is -5 from the marker 4 but this would set the offset to negative."},
    {"OriginAfterTheLast", 4, 0, 3, 13, 4, 86, "offset type is unknown. Parameter blooper."},
    {"OriginBeforeTheFirst", 4, 2, -1, 13, 4, 86, "offset type is unknown. Parameter blooper."},
    {"OriginFirstBadOffsetToo", 4, 99, 1000, 13, 4, 86, "offset type is unknown. Parameter blooper."},
};
INSTANTIATE_TEST_SUITE_P(Moves, ReadOnlySetPosition, ::testing::ValuesIn(kMoves), RowName());

class ReadOnlyDataProvider : public LibraryTest
{
};

TEST_F(ReadOnlyDataProvider, TargetsThatNoNumberHoldsAreRefused)
{
    auto const provider = MakeTenBytes(4);
    EXPECT_EQ(provider->SetPosition(kFarthest, IDataProvider::kFromCurrent), 13);
    EXPECT_EQ(log.Take().size(), 1u);
    EXPECT_EQ(provider->SetPosition(kNearest, IDataProvider::kFromEnd), 13);
    EXPECT_EQ(log.Take().size(), 1u);
    EXPECT_EQ(provider->GetPosition(), 4);
}

TEST_F(ReadOnlyDataProvider, SizeInAMessageIsThatOfTheData)
{
    auto const provider = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
    ASSERT_EQ(provider->InitReadOnlyMem(kContent, 2147483647), 0);
    EXPECT_EQ(provider->SetPosition(2147483647, IDataProvider::kFromStart), 0);
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(provider->SetPosition(1, IDataProvider::kFromCurrent), 13);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(Logged{
                                kSource, kSetPosition, 103,
                                "The offset supplied is 1 from the marker 2147483647 but this would set the "
                                "offset beyond the size of the data provider (2147483647)."}));
}

struct ReadRow
{
    char const* name;
    int64 position;
    int32 wanted;
    int32 count;
    char const* bytes;
    int64 after;
};

class ReadOnlyRead : public LibraryTestWith<ReadRow>
{
};

TEST_P(ReadOnlyRead, NeverFailsForWantOfData)
{
    ReadRow const& row = GetParam();
    auto const provider = MakeTenBytes(row.position);
    char buffer[16];
    std::memset(buffer, '*', sizeof buffer);
    int32 count = row.wanted;
    EXPECT_EQ(provider->Read(buffer, count), 0);
    EXPECT_EQ(count, row.count);
    EXPECT_EQ(std::string(buffer, sizeof buffer), row.bytes);
    EXPECT_EQ(provider->GetPosition(), row.after);
}

ReadRow const kReads[] = {
    {"FromTheStart", 0, 4, 4, "0123************", 4},
    {"FromTheMiddle", 4, 3, 3, "456*************", 7},
    {"Everything", 0, 10, 10, "0123456789******", 10},
    {"MoreThanThereIs", 0, 11, 10, "0123456789******", 10},
    {"CutShort", 6, 8, 4, "6789************", 10},
    {"LastByte", 9, 1, 1, "9***************", 10},
    {"AtTheEnd", 10, 4, 0, "****************", 10},
    {"MostBytes", 9, 2147483647, 1, "9***************", 10},
    {"Nothing", 4, 0, 0, "****************", 4},
    {"NothingAtTheEnd", 10, 0, 0, "****************", 10},
    {"FewerThanNone", 4, -3, -3, "****************", 4},
    {"FewestBytes", 4, std::numeric_limits<int32>::min(), std::numeric_limits<int32>::min(),
     "****************", 4},
};
INSTANTIATE_TEST_SUITE_P(Reads, ReadOnlyRead, ::testing::ValuesIn(kReads), RowName());

TEST_F(ReadOnlyDataProvider, ReadsAgainAfterTheEnd)
{
    auto const provider = MakeTenBytes(6);
    char buffer[8];
    int32 count = 8;
    EXPECT_EQ(provider->Read(buffer, count), 0);
    EXPECT_EQ(count, 4);
    count = 8;
    EXPECT_EQ(provider->Read(buffer, count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(provider->SetPosition(9, IDataProvider::kFromStart), 0);
    EXPECT_FALSE(provider->AtEnd());
}

struct NullRow
{
    char const* name;
    int32 wanted;
};

class ReadOnlyReadToNull : public LibraryTestWith<NullRow>
{
};

TEST_P(ReadOnlyReadToNull, IsRefusedWhateverTheCount)
{
    auto const provider = MakeTenBytes(4);
    int32 count = GetParam().wanted;
    EXPECT_EQ(provider->Read(nullptr, count), 13);
    EXPECT_EQ(provider->GetPosition(), 4);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(Logged{kSource, kRead, 51, "outBuffer == NULL"}));
}

NullRow const kNulls[] = {{"OneByte", 1}, {"Nothing", 0}, {"FewerThanNone", -1}};
INSTANTIATE_TEST_SUITE_P(Counts, ReadOnlyReadToNull, ::testing::ValuesIn(kNulls), RowName());

struct WriteRow
{
    char const* name;
    void const* data;
    std::size_t count;
};

class ReadOnlyWrite : public LibraryTestWith<WriteRow>
{
};

TEST_P(ReadOnlyWrite, IsAlwaysRefused)
{
    char memory[] = "0123456789";
    auto const provider = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
    ASSERT_EQ(provider->InitReadOnlyMem(memory, 10), 0);
    ASSERT_EQ(provider->SetPosition(4, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->Write(GetParam().data, GetParam().count), 30);
    EXPECT_THAT(log.Take(),
                ::testing::ElementsAre(Logged{kSource, kWrite, 45, "Write called on read only data"}));
    EXPECT_STREQ(memory, "0123456789");
    EXPECT_EQ(provider->GetPosition(), 4);
    EXPECT_EQ(provider->Size(), 10);
}

WriteRow const kWrites[] = {
    {"SomeBytes", "abc", 3},
    {"Nothing", "abc", 0},
    {"Null", nullptr, 3},
    {"NothingFromNull", nullptr, 0},
};
INSTANTIATE_TEST_SUITE_P(Writes, ReadOnlyWrite, ::testing::ValuesIn(kWrites), RowName());

struct SizeRow
{
    char const* name;
    int64 size;
};

class ReadOnlySetSize : public LibraryTestWith<SizeRow>
{
};

TEST_P(ReadOnlySetSize, IsRefusedInSilence)
{
    auto const provider = MakeTenBytes(4);
    EXPECT_EQ(provider->SetSize(GetParam().size), 30);
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(provider->GetPosition(), 4);
}

SizeRow const kSizes[] = {
    {"Smaller", 4}, {"Same", 10}, {"Larger", 20}, {"Nothing", 0}, {"FewerThanNone", -1}};
INSTANTIATE_TEST_SUITE_P(Sizes, ReadOnlySetSize, ::testing::ValuesIn(kSizes), RowName());

TEST_F(ReadOnlyDataProvider, SizeComesWithSuccess)
{
    IO::ReadOnlyDataProvider const provider(kContent, 10);
    int64 size = -1;
    EXPECT_EQ(provider.GetSize(size), 0);
    EXPECT_EQ(size, 10);
    EXPECT_EQ(provider.GetPosition(), 0);
}
} // namespace
} // namespace KORVA
