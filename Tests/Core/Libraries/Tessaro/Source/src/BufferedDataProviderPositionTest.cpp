// Where the buffered provider stands, and what moving it costs.
#include "BufferedDataProvider.h"
#include "BufferedFixture.h"

namespace KORVA
{
namespace
{
using namespace TESTS;
using IO::BufferedDataProvider;

class BufferedPositionTest : public BufferedTest
{
protected:
    /// Reads ahead up to 4, or to the end of the content where that is nearer.
    void ReadAhead(std::string const& content = "0123456789")
    {
        Wrap(IO::kBufferReads, 4, content);
        char byte = 0;
        int32 count = 1;
        EXPECT_EQ(buffered->Read(&byte, count), 0);
        static_cast<void>(TakeCalls());
    }
};

TEST_F(BufferedPositionTest, WithoutAModeItIsToldButLogged)
{
    Wrap(IO::kBufferNothing, 8, "0123456789", 6);
    ExpectPosition(6, {"GetPosition"});
    EXPECT_EQ(log.Take(), NoPositionToTell());
}

TEST_F(BufferedPositionTest, WithoutAModeItCanNotBeSet)
{
    Wrap(IO::kBufferNothing, 8, "0123456789", 6);
    for (int const from : {0, 1, 2, 3})
    {
        ExpectMove(0, from, {}, 13);
        EXPECT_EQ(log.Take(), NoPositionToSet());
    }
    EXPECT_EQ(wrapped->position, 6);
}

TEST_F(BufferedPositionTest, OfAnEmptyBufferIsTheWrappedOne)
{
    for (IO::BufferMode const mode : {IO::kBufferReads, IO::kBufferWrites, IO::kBufferBoth})
    {
        Wrap(mode, 8, "0123456789", 6);
        ExpectPosition(6, {"GetPosition"});
    }
}

TEST_F(BufferedPositionTest, InTheBufferCostsNothing)
{
    ReadAhead();
    for (int64 const position : {3, 0, 2})
    {
        ExpectMove(position, 0, {});
        ExpectPosition(position, {});
    }
    ExpectRead(1, "2", {});
}

TEST_F(BufferedPositionTest, EndOfAFullBufferLiesOutside)
{
    ReadAhead();
    ExpectMove(4, 0, {"SetPosition 4", "GetPosition"});
    ExpectPosition(4, {"GetPosition"});
    ExpectRead(1, "4", {"GetPosition", "Size", "Read 4"});
}

TEST_F(BufferedPositionTest, EndOfABufferWithRoomLiesInside)
{
    ReadAhead("012");
    ExpectMove(3, 0, {});
    ExpectPosition(3, {});
    ExpectMove(4, 0, {"SetPosition 4", "GetPosition"});
}

TEST_F(BufferedPositionTest, BeforeTheBufferIsOutside)
{
    ReadAhead();
    ExpectMove(6, 0, {"SetPosition 6", "GetPosition"});
    ExpectRead(1, "6", {"GetPosition", "Size", "Read 4"});
    ExpectMove(5, 0, {"SetPosition 5", "GetPosition"});
    ExpectRead(3, "567", {"GetPosition", "Size", "Read 4"});
}

TEST_F(BufferedPositionTest, FromTheEndCountsBackwards)
{
    for (IO::BufferMode const mode : {IO::kBufferReads, IO::kBufferWrites, IO::kBufferBoth})
    {
        Wrap(mode, 8, "0123456789");
        ExpectMove(0, 1, {"Size", "SetPosition 10", "GetPosition"});
        ExpectPosition(10, {"GetPosition"});
        ExpectMove(4, 1, {"Size", "SetPosition 6", "GetPosition"});
        ExpectPosition(6, {"GetPosition"});
        ExpectMove(-2, 1, {"Size", "SetPosition 12", "GetPosition"});
        ExpectPosition(12, {"GetPosition"});
    }
}

TEST_F(BufferedPositionTest, FromTheEndIntoTheBufferOnlyAsksForTheSize)
{
    ReadAhead();
    ExpectMove(8, 1, {"Size"});
    ExpectPosition(2, {});
}

TEST_F(BufferedPositionTest, FromTheEndDoesNotCountWhatWaits)
{
    Wrap(IO::kBufferWrites, 8, "01");
    ExpectWrite("abcdef", {});
    ExpectMove(0, 1, {"Size"});
    ExpectPosition(2, {});
}

TEST_F(BufferedPositionTest, FromHereCountsFromTheCursor)
{
    ReadAhead();
    ExpectMove(2, 2, {});
    ExpectPosition(3, {});
    ExpectMove(-3, 2, {});
    ExpectPosition(0, {});
    ExpectMove(7, 2, {"SetPosition 7", "GetPosition"});
    ExpectPosition(7, {"GetPosition"});
}

TEST_F(BufferedPositionTest, FromHereWithAnEmptyBufferAsksTheWrappedProvider)
{
    Wrap(IO::kBufferReads, 8, "0123456789", 5);
    ExpectMove(2, 2, {"GetPosition", "SetPosition 7", "GetPosition"});
    // An empty buffer has its place.
    ExpectMove(0, 2, {"GetPosition"});
    ExpectRead(1, "7", {"GetPosition", "Size", "Read 3"});
}

TEST_F(BufferedPositionTest, AnyOtherOriginIsTheStart)
{
    ReadAhead();
    ExpectMove(3, 3, {});
    ExpectPosition(3, {});
    ExpectMove(1, -1, {});
    ExpectPosition(1, {});
    ExpectMove(8, 77, {"SetPosition 8", "GetPosition"});
    ExpectPosition(8, {"GetPosition"});
}

TEST_F(BufferedPositionTest, ResultOfTheWrappedProviderIsPassedOn)
{
    ReadAhead();
    ExpectMove(-1, 0, {"SetPosition -1", "GetPosition"}, 13);
    ExpectPosition(4, {"GetPosition"});
    wrapped->moveResult = 29;
    ExpectMove(9, 0, {"SetPosition 9", "GetPosition"}, 29);
    // What was read ahead is gone, and reading goes on where the wrapped provider was left.
    ExpectRead(1, "4", {"GetPosition", "Size", "Read 4"});
}

TEST_F(BufferedPositionTest, LeavingTheBufferDeliversWhatWaits)
{
    Wrap(IO::kBufferWrites, 8, "0123456789");
    ExpectWrite("abc", {});
    ExpectMove(6, 0, {"SetPosition 0", "Write abc", "GetPosition", "SetPosition 6", "GetPosition"});
    ExpectWrite("X", {});
    ExpectMove(7, 0, {});
    ExpectMove(5, 0, {"SetPosition 6", "Write X", "GetPosition", "SetPosition 5", "GetPosition"});
    EXPECT_EQ(wrapped->bytes, "abc345X789");
}

TEST_F(BufferedPositionTest, RefusedMoveHasDeliveredAllTheSame)
{
    Wrap(IO::kBufferWrites, 8, "0123456789");
    ExpectWrite("abc", {});
    ExpectMove(-1, 0, {"SetPosition 0", "Write abc", "GetPosition", "SetPosition -1", "GetPosition"}, 13);
    ExpectWrite("d", {});
    ExpectFlush({"SetPosition 3", "Write d", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "abcd456789");
}

TEST_F(BufferedPositionTest, PlaceOfANewBufferIsTheStart)
{
    Wrap(IO::kBufferReads, 8, "0123456789", 6);
    ExpectMove(0, 0, {});
    ExpectPosition(6, {"GetPosition"});
    ExpectRead(1, "6", {"GetPosition", "Size", "Read 4"});
}

TEST_F(BufferedPositionTest, PlaceOfAFlushedBufferIsWhereItWasFilled)
{
    ReadAhead();
    ExpectMove(5, 0, {"SetPosition 5", "GetPosition"});
    ExpectRead(2, "56", {"GetPosition", "Size", "Read 4"});
    ExpectFlush({"Flush"});
    ExpectMove(5, 0, {});
    ExpectPosition(9, {"GetPosition"});
    ExpectMove(6, 0, {"SetPosition 6", "GetPosition"});
    ExpectPosition(6, {"GetPosition"});
}

struct InBufferRow
{
    char const* name;
    int size;
    int64 start;
    int64 length;
    int64 position;
    bool expected;
};

constexpr int64 kHighest = 0x7FFFFFFFFFFFFFFF;

InBufferRow const kInBuffer[] = {
    {"RoomBeforeTheStart", 8, 10, 5, 9, false},
    {"RoomAtTheStart", 8, 10, 5, 10, true},
    {"RoomLastByte", 8, 10, 5, 14, true},
    {"RoomAtTheEnd", 8, 10, 5, 15, true},
    {"RoomBehindTheEnd", 8, 10, 5, 16, false},
    {"OneByteOfRoomAtTheEnd", 8, 10, 7, 17, true},
    {"OneByteOfRoomBehindTheEnd", 8, 10, 7, 18, false},
    {"FullBeforeTheStart", 8, 10, 8, 9, false},
    {"FullAtTheStart", 8, 10, 8, 10, true},
    {"FullLastByte", 8, 10, 8, 17, true},
    {"FullAtTheEnd", 8, 10, 8, 18, false},
    {"OverfullAtTheEnd", 8, 10, 9, 19, false},
    {"EmptyAtItsPlace", 8, 10, 0, 10, true},
    {"EmptyBehindItsPlace", 8, 10, 0, 11, false},
    {"EmptyBeforeItsPlace", 8, 10, 0, 9, false},
    {"NewAtTheStart", 8, 0, 0, 0, true},
    {"Negative", 8, 0, 5, -1, false},
    {"WithoutASize", 0, 0, 0, 0, false},
    {"WithANegativeSize", -3, 0, 0, 0, false},
    {"BeyondFourGiB", 8, 5368709120, 5, 5368709125, true},
    {"FourGiBApart", 8, 10, 5, 4294967308, false},
    {"Lowest", 8, 10, 5, -kHighest - 1, false},
    {"Highest", 8, 10, 5, kHighest, false},
};

class InBufferTest : public LibraryTestWith<InBufferRow>
{
protected:
    InBufferTest() { buffered.Adopt(new BufferedDataProvider); }

    TInterfacePtr<BufferedDataProvider> buffered;
};

TEST_P(InBufferTest, FollowsTheBuffer)
{
    buffered->SetBufferSize(GetParam().size);
    BufferedDataProvider::Buffer buffer;
    buffer.mStart = GetParam().start;
    buffer.mLength = GetParam().length;
    for (int64 const cursor : {0, 3})
    {
        buffer.mCursor = cursor;
        EXPECT_EQ(buffered->InBuffer(GetParam().position, &buffer), GetParam().expected);
        EXPECT_FALSE(buffered->InBuffer(GetParam().position, nullptr));
    }
}

INSTANTIATE_TEST_SUITE_P(Buffered, InBufferTest, ::testing::ValuesIn(kInBuffer), RowName());

TEST(BufferTest, AllocationForgetsEverything)
{
    BufferedDataProvider::Buffer buffer;
    EXPECT_EQ(buffer.mCursor, 0);
    EXPECT_EQ(buffer.mLength, 0);
    EXPECT_EQ(buffer.mStart, 0);
    for (int const size : {16, 0, -1, 4})
    {
        buffer.mCursor = 1;
        buffer.mLength = 2;
        buffer.mStart = 3;
        buffer.Alloc(size);
        EXPECT_TRUE(buffer.mData);
        for (int i = 0; i < size; ++i)
            buffer.mData[static_cast<std::size_t>(i)] = std::byte{1};
        EXPECT_EQ(buffer.mCursor, 0);
        EXPECT_EQ(buffer.mLength, 0);
        EXPECT_EQ(buffer.mStart, 0);
    }
}
} // namespace
} // namespace KORVA
