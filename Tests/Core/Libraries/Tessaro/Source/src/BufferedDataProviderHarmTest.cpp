// Sizes, counts and positions that make no sense do no harm.
#include "BufferedFixture.h"

#include <limits>

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr int64 kHighest = std::numeric_limits<int64>::max();
constexpr int64 kLowest = std::numeric_limits<int64>::min();

struct SizeRow
{
    char const* name;
    int size;
};

SizeRow const kSizes[] = {
    {"Zero", 0},
    {"MinusOne", -1},
    {"Lowest", std::numeric_limits<int>::min()},
};

/// A buffer without room passes everything on.
class NoRoomTest : public BufferedTest, public ::testing::WithParamInterface<SizeRow>
{
};

TEST_P(NoRoomTest, ReadsStraight)
{
    Wrap(IO::kBufferReads, GetParam().size, "0123456789");
    EXPECT_EQ(buffered->GetBufferSize(), GetParam().size);
    ExpectRead(3, "012", {"GetPosition", "Size", "Read 3", "GetPosition", "Size"});
    ExpectPosition(3, {"GetPosition"});
    ExpectRead(9, "3456789", {"GetPosition", "Size", "Read 9", "GetPosition", "Size"});
    ExpectRead(0, "", {"GetPosition", "Size", "Read 0", "GetPosition", "Size"});
}

TEST_P(NoRoomTest, WritesStraight)
{
    Wrap(IO::kBufferWrites, GetParam().size, "0123456789", 2);
    wrapped->writeResults = {0, 27};
    ExpectWrite("abc", {"Write abc", "GetPosition"});
    ExpectWrite("de", {"Write de", "GetPosition"}, 27);
    ExpectWrite("", {"Write ", "GetPosition"});
    ExpectFlush({"Flush"});
    ExpectPosition(5, {"GetPosition"});
    buffered.Reset();
    ExpectCalls({});
    EXPECT_EQ(wrapped->bytes, "01abc56789");
}

TEST_P(NoRoomTest, MovesTheWrappedProvider)
{
    Wrap(IO::kBufferBoth, GetParam().size, "0123456789", 2);
    ExpectMove(0, 0, {"SetPosition 0", "GetPosition"});
    ExpectMove(0, 0, {"SetPosition 0", "GetPosition"});
    ExpectMove(3, 1, {"Size", "SetPosition 7", "GetPosition"});
    ExpectMove(-1, 2, {"GetPosition", "SetPosition 6", "GetPosition"});
    ExpectRead(1, "6", {"GetPosition", "Size", "Read 1", "GetPosition", "Size"});
    ExpectWrite("X", {"Write X", "GetPosition"});
    EXPECT_EQ(wrapped->bytes, "0123456X89");
}

TEST_P(NoRoomTest, ComesAndGoes)
{
    Wrap(IO::kBufferReads, 8, "0123456789");
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 8"});
    buffered->SetBufferSize(GetParam().size);
    ExpectRead(1, "8", {"GetPosition", "Size", "Read 1", "GetPosition", "Size"});
    buffered->SetBufferSize(4);
    ExpectMove(5, 0, {"SetPosition 5", "GetPosition"});
    ExpectRead(1, "5", {"GetPosition", "Size", "Read 4"});
}

INSTANTIATE_TEST_SUITE_P(Buffered, NoRoomTest, ::testing::ValuesIn(kSizes), RowName());

struct CountRow
{
    char const* name;
    int32 count;
};

CountRow const kCounts[] = {
    {"MinusOne", -1},
    {"MinusThousand", -1000},
    {"Lowest", std::numeric_limits<int32>::min()},
};

class NegativeCountTest : public BufferedTest, public ::testing::WithParamInterface<CountRow>
{
protected:
    void ExpectNothingRead()
    {
        char byte = '*';
        int32 count = GetParam().count;
        EXPECT_EQ(buffered->Read(&byte, count), 0);
        EXPECT_LE(count, 0);
        EXPECT_EQ(byte, '*');
        count = GetParam().count;
        EXPECT_EQ(buffered->Read(nullptr, count), 0);
    }
};

TEST_P(NegativeCountTest, ReadsNothingFromAFilledBuffer)
{
    Wrap(IO::kBufferReads, 8, "0123456789");
    ExpectRead(3, "012", {"GetPosition", "Size", "Read 8"});
    ExpectNothingRead();
    ExpectCalls({});
    ExpectPosition(3, {});
    ExpectRead(2, "34", {});
}

TEST_P(NegativeCountTest, ReadsNothingAtFirst)
{
    Wrap(IO::kBufferReads, 8, "0123456789");
    ExpectNothingRead();
    ExpectCalls({"GetPosition", "Size", "Read 8"});
    ExpectPosition(0, {});
    ExpectRead(2, "01", {});
}

TEST_P(NegativeCountTest, ReadsNothingAtTheEnd)
{
    Wrap(IO::kBufferReads, 8, "012", 3);
    ExpectNothingRead();
    static_cast<void>(TakeCalls());
    ExpectPosition(3, {"GetPosition"});
}

TEST_P(NegativeCountTest, ReadsNothingWithoutRoom)
{
    Wrap(IO::kBufferReads, 0, "0123456789");
    ExpectNothingRead();
    static_cast<void>(TakeCalls());
    ExpectPosition(0, {"GetPosition"});
    Wrap(IO::kBufferReads, -8, "0123456789");
    ExpectNothingRead();
    static_cast<void>(TakeCalls());
    ExpectPosition(0, {"GetPosition"});
}

TEST_P(NegativeCountTest, ReadsNothingBehindWhatWasWritten)
{
    Wrap(IO::kBufferBoth, 8, "0123456789");
    ExpectWrite("ab", {});
    ExpectNothingRead();
    ExpectPosition(2, {});
    ExpectFlush({"SetPosition 0", "Write ab", "GetPosition", "Flush"});
}

INSTANTIATE_TEST_SUITE_P(Buffered, NegativeCountTest, ::testing::ValuesIn(kCounts), RowName());

TEST_F(BufferedTest, NothingIsReadToNull)
{
    Wrap(IO::kBufferReads, 8, "0123456789");
    int32 count = 0;
    EXPECT_EQ(buffered->Read(nullptr, count), 0);
    EXPECT_EQ(count, 0);
    ExpectCalls({"GetPosition", "Size", "Read 8"});
}

TEST_F(BufferedTest, NothingIsWrittenFromNull)
{
    Wrap(IO::kBufferWrites, 8);
    EXPECT_EQ(buffered->Write(nullptr, 0), 0);
    ExpectWrite("abc", {});
    EXPECT_EQ(buffered->Write(nullptr, 0), 0);
    ExpectFlush({"SetPosition 0", "Write abc", "GetPosition", "Flush"});
}

// What a stream makes of a negative count.
TEST_F(BufferedTest, CountThatNoMemoryHoldsIsLeftToTheWrappedProvider)
{
    Wrap(IO::kBufferWrites, 8);
    ExpectWrite("abc", {});
    std::string const text = "0123456789";
    EXPECT_EQ(buffered->Write(text.data(), static_cast<std::size_t>(-1)), 27);
    ExpectCalls({"SetPosition 0", "Write abc01234", "GetPosition", "Write far too much", "GetPosition"});
}

TEST_F(BufferedTest, PositionsAtTheEndsOfTheRangeAreLeftToTheWrappedProvider)
{
    Wrap(IO::kBufferBoth, 8, "0123456789", 4);
    ExpectMove(kLowest, 0, {"SetPosition -9223372036854775808", "GetPosition"}, 13);
    ExpectMove(kLowest, 2, {"GetPosition", "SetPosition -9223372036854775804", "GetPosition"}, 13);
    ExpectMove(kHighest, 1, {"Size", "SetPosition -9223372036854775797", "GetPosition"}, 13);
    ExpectPosition(4, {"GetPosition"});
    ExpectRead(1, "4", {"GetPosition", "Size", "Read 6"});
}

TEST_F(BufferedTest, WritingBehindTheHighestPositionDoesNoHarm)
{
    Wrap(IO::kBufferBoth, 8, "0123456789");
    ExpectMove(kHighest, 0, {"SetPosition 9223372036854775807", "GetPosition"});
    ExpectWrite("abc", {});
    static_cast<void>(buffered->GetPosition());
    static_cast<void>(buffered->SetPosition(0, IDataProvider::kFromCurrent));
    static_cast<void>(buffered->SetPosition(kHighest, IDataProvider::kFromCurrent));
    static_cast<void>(buffered->SetPosition(kLowest, IDataProvider::kFromEnd));
    wrapped->position = 0;
    buffered->SetBufferSize(8);
    static_cast<void>(TakeCalls());
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 8"});
}
} // namespace
} // namespace KORVA
