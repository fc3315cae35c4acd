// Writing through the buffer: when bytes are delivered, which and where.
#include "BufferedFixture.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

class BufferedWriteTest : public BufferedTest
{
protected:
    void WrapEmpty(int size = 8) { Wrap(IO::kBufferWrites, size); }
};

TEST_F(BufferedWriteTest, SmallWritesStayInMemory)
{
    WrapEmpty();
    ExpectWrite("abc", {});
    ExpectWrite("", {});
    ExpectWrite("defg", {});
    ExpectPosition(7, {});
    EXPECT_EQ(wrapped->bytes, "");
    ExpectFlush({"SetPosition 0", "Write abcdefg", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "abcdefg");
}

TEST_F(BufferedWriteTest, FillingTheBufferDeliversAtOnce)
{
    WrapEmpty();
    ExpectWrite("abcdefg", {});
    ExpectWrite("h", {"SetPosition 0", "Write abcdefgh", "GetPosition"});
    ExpectPosition(8, {"GetPosition"});
    ExpectWrite("i", {});
    ExpectPosition(9, {});
    ExpectFlush({"SetPosition 8", "Write i", "GetPosition", "Flush"});
}

TEST_F(BufferedWriteTest, JustOneBufferIsDeliveredAtOnce)
{
    WrapEmpty();
    ExpectWrite("abcdefgh", {"SetPosition 0", "Write abcdefgh", "GetPosition"});
    ExpectFlush({"Flush"});
}

TEST_F(BufferedWriteTest, RestBeyondTheBufferBeginsTheNext)
{
    WrapEmpty();
    ExpectWrite("abcdef", {});
    ExpectWrite("ghijk", {"SetPosition 0", "Write abcdefgh", "GetPosition"});
    ExpectPosition(11, {});
    ExpectFlush({"SetPosition 8", "Write ijk", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "abcdefghijk");
}

TEST_F(BufferedWriteTest, RestOneByteShortOfTheBufferStaysInMemory)
{
    WrapEmpty(4);
    ExpectWrite("a", {});
    ExpectWrite("bcdefg", {"SetPosition 0", "Write abcd", "GetPosition"});
    ExpectPosition(7, {});
    ExpectWrite("h", {"SetPosition 4", "Write efgh", "GetPosition"});
}

TEST_F(BufferedWriteTest, RestOfOneBufferIsWrittenPastTheBuffer)
{
    WrapEmpty(4);
    ExpectWrite("a", {});
    std::string const text = "bcdefgh";
    EXPECT_EQ(buffered->Write(text.data(), text.size()), 0);
    ExpectCalls({"SetPosition 0", "Write abcd", "GetPosition", "Write efgh", "GetPosition"});
    ASSERT_EQ(wrapped->memory.size(), 2u);
    EXPECT_EQ(wrapped->memory[1], text.data() + 3) << "straight from the caller, behind what was buffered";
    ExpectPosition(8, {"GetPosition"});
    ExpectWrite("ij", {});
    ExpectFlush({"SetPosition 8", "Write ij", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "abcdefghij");
}

TEST_F(BufferedWriteTest, LargeWriteIsOneBufferAndTheRest)
{
    WrapEmpty(4);
    ExpectWrite("abcdefghijklmno",
                {"SetPosition 0", "Write abcd", "GetPosition", "Write efghijklmno", "GetPosition"});
    ExpectPosition(15, {"GetPosition"});
    ExpectFlush({"Flush"});
}

TEST_F(BufferedWriteTest, ResultOfADirectWriteIsPassedOn)
{
    WrapEmpty(4);
    wrapped->writeResults = {0, 27};
    ExpectWrite("abcdefgh", {"SetPosition 0", "Write abcd", "GetPosition", "Write efgh", "GetPosition"}, 27);
    // The bytes that failed are not tried again, and what follows takes their place.
    ExpectPosition(4, {"GetPosition"});
    ExpectWrite("XY", {});
    ExpectFlush({"SetPosition 4", "Write XY", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "abcdXY");
}

TEST_F(BufferedWriteTest, FailureOfAFlushIsIgnored)
{
    WrapEmpty(4);
    wrapped->writeResults = {30, 0};
    ExpectWrite("abcdefgh", {"SetPosition 0", "Write abcd", "GetPosition", "Write efgh", "GetPosition"});
    EXPECT_EQ(wrapped->bytes, "efgh");

    WrapEmpty(4);
    wrapped->writeResults = {30};
    ExpectWrite("abcd", {"SetPosition 0", "Write abcd", "GetPosition"});
    ExpectFlush({"Flush"});
    ExpectWrite("ef", {});
    wrapped->writeResults = {30};
    ExpectFlush({"SetPosition 0", "Write ef", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "") << "what could not be delivered is gone";
    buffered.Reset();
    ExpectCalls({});
}

TEST_F(BufferedWriteTest, RefusedMoveBeforeAFlushIsIgnored)
{
    Wrap(IO::kBufferWrites, 4, "0123456789", 6);
    wrapped->moveResult = 13;
    ExpectWrite("abcd", {"SetPosition 0", "Write abcd", "GetPosition"});
    EXPECT_EQ(wrapped->bytes, "012345abcd");
    ExpectWrite("e", {});
    ExpectFlush({"SetPosition 10", "Write e", "GetPosition", "Flush"});
}

TEST_F(BufferedWriteTest, FirstBytesGoToTheStartWhereverTheWrappedProviderStands)
{
    Wrap(IO::kBufferWrites, 8, "0123456789", 6);
    ExpectPosition(6, {"GetPosition"});
    ExpectWrite("ab", {});
    ExpectPosition(2, {});
    ExpectFlush({"SetPosition 0", "Write ab", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "ab23456789");
}

TEST_F(BufferedWriteTest, FirstBytesGoWhereThePositionWasSet)
{
    Wrap(IO::kBufferWrites, 8, "0123456789", 6);
    ExpectMove(6, 0, {"SetPosition 6", "GetPosition"});
    ExpectWrite("ab", {});
    ExpectPosition(8, {});
    ExpectFlush({"SetPosition 6", "Write ab", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "012345ab89");
}

TEST_F(BufferedWriteTest, FlushDeliversUpToTheCursorOnly)
{
    WrapEmpty(16);
    ExpectWrite("abcdefghij", {});
    ExpectMove(5, 0, {});
    ExpectFlush({"SetPosition 0", "Write abcde", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "abcde");
    ExpectPosition(5, {"GetPosition"});
}

TEST_F(BufferedWriteTest, SeekingBackAndForthGivesUpNothing)
{
    WrapEmpty(16);
    ExpectWrite("abcdefghij", {});
    ExpectMove(5, 0, {});
    ExpectMove(10, 0, {});
    ExpectFlush({"SetPosition 0", "Write abcdefghij", "GetPosition", "Flush"});
}

TEST_F(BufferedWriteTest, CursorAtTheStartDeliversNothing)
{
    Wrap(IO::kBufferWrites, 16, "0123456789");
    ExpectWrite("abc", {});
    ExpectMove(0, 0, {});
    ExpectFlush({"SetPosition 0", "Write ", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "0123456789");
    ExpectFlush({"Flush"});
}

TEST_F(BufferedWriteTest, WriteAfterSeekingBackGivesUpWhatStoodBehind)
{
    WrapEmpty(16);
    ExpectWrite("abcdef", {});
    ExpectMove(2, 0, {});
    ExpectWrite("XY", {});
    ExpectPosition(4, {});
    ExpectFlush({"SetPosition 0", "Write abXY", "GetPosition", "Flush"});
}

TEST_F(BufferedWriteTest, WritingNothingAfterSeekingBackGivesItUpToo)
{
    WrapEmpty(16);
    ExpectWrite("abcdef", {});
    ExpectMove(2, 0, {});
    ExpectWrite("", {});
    // Position 6 has left the buffer with the bytes before it.
    ExpectMove(6, 0, {"SetPosition 0", "Write ab", "GetPosition", "SetPosition 6", "GetPosition"});
}

TEST_F(BufferedWriteTest, SetSizeDeliversFirst)
{
    WrapEmpty();
    ExpectWrite("abc", {});
    wrapped->sizeResult = 27;
    EXPECT_EQ(buffered->SetSize(20), 27);
    ExpectCalls({"SetPosition 0", "Write abc", "GetPosition", "SetSize 20"});
    EXPECT_EQ(buffered->SetSize(30), 27);
    ExpectCalls({"SetSize 30"});
}

TEST_F(BufferedWriteTest, FlushPassesOnTheResultOfTheWrappedFlushAlone)
{
    WrapEmpty();
    wrapped->writeResults = {30};
    ExpectWrite("abc", {});
    ExpectFlush({"SetPosition 0", "Write abc", "GetPosition", "Flush"}, 0);
    wrapped->flushResult = 99;
    ExpectWrite("abc", {});
    ExpectFlush({"SetPosition 0", "Write abc", "GetPosition", "Flush"}, 99);
}

TEST_F(BufferedWriteTest, SizeAndAtEndDoNotCountWhatWaits)
{
    Wrap(IO::kBufferWrites, 100, "01");
    ExpectWrite("abcdef", {});
    wrapped->atEnd = true;
    EXPECT_EQ(buffered->Size(), 2);
    EXPECT_TRUE(buffered->AtEnd());
    wrapped->atEnd = false;
    EXPECT_FALSE(buffered->AtEnd());
    ExpectCalls({"Size", "AtEnd", "AtEnd"});
    ExpectFlush({"SetPosition 0", "Write abcdef", "GetPosition", "Flush"});
    EXPECT_EQ(buffered->Size(), 6);
}

TEST_F(BufferedWriteTest, OtherBufferSizeDiscardsWhatWaits)
{
    WrapEmpty();
    ExpectWrite("abc", {});
    buffered->SetBufferSize(16);
    ExpectCalls({});
    ExpectPosition(0, {"GetPosition"});
    ExpectFlush({"Flush"});
    ExpectWrite("0123456789", {});
    buffered->SetBufferSize(2);
    buffered.Reset();
    ExpectCalls({});
    EXPECT_EQ(wrapped->bytes, "");
}

TEST_F(BufferedWriteTest, OtherBufferSizeCountsFromTheNextWrite)
{
    WrapEmpty();
    buffered->SetBufferSize(3);
    ExpectWrite("ab", {});
    ExpectWrite("c", {"SetPosition 0", "Write abc", "GetPosition"});
}

// The new buffer begins at position 0 like the first one did.
TEST_F(BufferedWriteTest, OtherBufferSizeWritesAtTheStartAgain)
{
    WrapEmpty();
    ExpectWrite("abcd", {});
    ExpectFlush({"SetPosition 0", "Write abcd", "GetPosition", "Flush"});
    buffered->SetBufferSize(16);
    ExpectPosition(4, {"GetPosition"});
    ExpectWrite("XY", {});
    ExpectPosition(2, {});
    ExpectFlush({"SetPosition 0", "Write XY", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "XYcd");
}

TEST_F(BufferedWriteTest, ReadIsRefused)
{
    Wrap(IO::kBufferWrites, 8, "0123456789");
    ExpectWrite("ab", {});
    std::string found = "***";
    int32 count = 3;
    EXPECT_EQ(buffered->Read(found.data(), count), 35);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(found, "***");
    EXPECT_EQ(log.Take(), ReadRefused());
    count = 0;
    EXPECT_EQ(buffered->Read(nullptr, count), 35);
    EXPECT_EQ(log.Take(), ReadRefused());
    ExpectCalls({});
    ExpectFlush({"SetPosition 0", "Write ab", "GetPosition", "Flush"});
}

TEST_F(BufferedWriteTest, ManyBytesOneByOneCostFewCalls)
{
    WrapEmpty(1000);
    std::string expected;
    for (int i = 0; i < 10'500; ++i)
    {
        char const byte = static_cast<char>('A' + i % 23);
        expected += byte;
        ASSERT_EQ(buffered->Write(&byte, 1), 0);
    }
    EXPECT_EQ(TakeCalls().size(), 30u);
    buffered.Reset();
    EXPECT_EQ(TakeCalls().size(), 3u);
    EXPECT_TRUE(wrapped->bytes == expected);
}
} // namespace
} // namespace KORVA
