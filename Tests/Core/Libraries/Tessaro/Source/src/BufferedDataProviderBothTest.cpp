// Reads and writes through one buffer.
#include "BufferedFixture.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

class BufferedBothTest : public BufferedTest
{
protected:
    void WrapDigits(int size = 8) { Wrap(IO::kBufferBoth, size, "0123456789"); }
};

TEST_F(BufferedBothTest, WriteEndsWhatWasReadAhead)
{
    WrapDigits();
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 8"});
    ExpectWrite("ab", {});
    ExpectPosition(4, {});
    // The bytes read before the cursor go back together with those written.
    ExpectFlush({"SetPosition 0", "Write 01ab", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "01ab456789");
    ExpectRead(2, "45", {"GetPosition", "Size", "Read 6"});
}

TEST_F(BufferedBothTest, WriteAfterSeekingInWhatWasReadAhead)
{
    WrapDigits();
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 8"});
    ExpectMove(5, 0, {});
    ExpectWrite("X", {});
    ExpectMove(7, 0, {"SetPosition 0", "Write 01234X", "GetPosition", "SetPosition 7", "GetPosition"});
    EXPECT_EQ(wrapped->bytes, "01234X6789");
}

TEST_F(BufferedBothTest, WriteThatFillsWhatWasReadAhead)
{
    WrapDigits();
    ExpectRead(5, "01234", {"GetPosition", "Size", "Read 8"});
    ExpectWrite("abcd", {"SetPosition 0", "Write 01234abc", "GetPosition"});
    ExpectPosition(9, {});
    EXPECT_EQ(wrapped->bytes, "01234abc89");
}

TEST_F(BufferedBothTest, ReadBehindWhatWasWrittenDeliversFirst)
{
    WrapDigits();
    ExpectWrite("abc", {});
    ExpectRead(2, "34", {"SetPosition 0", "Write abc", "GetPosition", "GetPosition", "Size", "Read 7"});
    ExpectPosition(5, {});
}

TEST_F(BufferedBothTest, LargeReadBehindWhatWasWrittenDeliversFirst)
{
    WrapDigits(4);
    ExpectWrite("ab", {});
    ExpectRead(9, "23456789", {"SetPosition 0", "Write ab", "GetPosition", "Read 9", "GetPosition", "Size"});
}

TEST_F(BufferedBothTest, WhatWasWrittenIsReadBack)
{
    Wrap(IO::kBufferBoth, 8);
    ExpectWrite("abcdef", {});
    ExpectMove(1, 0, {});
    ExpectRead(3, "bcd", {});
    ExpectRead(2, "ef", {"SetPosition 0", "Write abcdef", "GetPosition", "GetPosition", "Size"});
    EXPECT_EQ(wrapped->bytes, "abcdef");
}

TEST_F(BufferedBothTest, ReadingBackInPartGivesUpWhatStandsBehind)
{
    Wrap(IO::kBufferBoth, 8);
    ExpectWrite("abcdef", {});
    ExpectMove(0, 0, {});
    ExpectRead(2, "ab", {});
    ExpectFlush({"SetPosition 0", "Write ab", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "ab");
}

TEST_F(BufferedBothTest, ReadAcrossTheEndOfWhatWasWritten)
{
    WrapDigits();
    ExpectWrite("abcd", {});
    ExpectMove(2, 0, {});
    ExpectRead(4, "cd45", {"SetPosition 0", "Write abcd", "GetPosition", "GetPosition", "Size", "Read 6"});
    ExpectPosition(6, {});
    EXPECT_EQ(wrapped->bytes, "abcd456789");
}

TEST_F(BufferedBothTest, WhatIsReadAfterAFlushIsNotDelivered)
{
    WrapDigits();
    ExpectWrite("ab", {});
    ExpectFlush({"SetPosition 0", "Write ab", "GetPosition", "Flush"});
    ExpectRead(2, "23", {"GetPosition", "Size", "Read 8"});
    ExpectFlush({"Flush"});
    buffered.Reset();
    ExpectCalls({});
}

// Filling the buffer leaves it marked as written to, and with it what is read next.
TEST_F(BufferedBothTest, WhatIsReadAfterFillingTheBufferIsDelivered)
{
    WrapDigits(4);
    ExpectWrite("abcd", {"SetPosition 0", "Write abcd", "GetPosition"});
    ExpectRead(2, "45", {"GetPosition", "Size", "Read 4"});
    ExpectFlush({"SetPosition 4", "Write 45", "GetPosition", "Flush"});
    ExpectPosition(6, {"GetPosition"});
    ExpectRead(2, "67", {"GetPosition", "Size", "Read 4"});
    ExpectFlush({"Flush"});
    EXPECT_EQ(wrapped->bytes, "abcd456789");
}

TEST_F(BufferedBothTest, WhatIsReadAfterASecondInitIsNotDelivered)
{
    WrapDigits();
    ExpectWrite("ab", {});
    EXPECT_EQ(buffered->Init(*wrapped, 8, IO::kBufferBoth), 2);
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 8"});
    ExpectFlush({"Flush"});
    EXPECT_EQ(wrapped->bytes, "0123456789");
}

TEST_F(BufferedBothTest, FlushWithoutWritesDropsWhatWasReadAhead)
{
    WrapDigits();
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 8"});
    ExpectFlush({"Flush"});
    ExpectPosition(8, {"GetPosition"});
    ExpectRead(1, "8", {"GetPosition", "Size", "Read 2"});
}

// The place of the emptied buffer is where it was filled, and that is where bytes written next go.
TEST_F(BufferedBothTest, WriteAfterSuchAFlushGoesToWhereTheBufferWasFilled)
{
    WrapDigits(4);
    ExpectMove(2, 0, {"SetPosition 2", "GetPosition"});
    ExpectRead(1, "2", {"GetPosition", "Size", "Read 4"});
    ExpectFlush({"Flush"});
    ExpectPosition(6, {"GetPosition"});
    ExpectWrite("ab", {});
    ExpectPosition(4, {});
    ExpectFlush({"SetPosition 2", "Write ab", "GetPosition", "Flush"});
    EXPECT_EQ(wrapped->bytes, "01ab456789");
}

TEST_F(BufferedBothTest, SettingThePositionAfterSuchAFlushHelps)
{
    WrapDigits(4);
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 4"});
    ExpectFlush({"Flush"});
    ExpectMove(4, 0, {"SetPosition 4", "GetPosition"});
    ExpectWrite("ab", {});
    ExpectFlush({"SetPosition 4", "Write ab", "GetPosition", "Flush"});
}

TEST_F(BufferedBothTest, LeavingTheBufferWithoutWritesDeliversNothing)
{
    WrapDigits(4);
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 4"});
    ExpectMove(8, 0, {"SetPosition 8", "GetPosition"});
    ExpectRead(1, "8", {"GetPosition", "Size", "Read 2"});
}

TEST_F(BufferedBothTest, WriteAtTheEndOfTheDataAppends)
{
    WrapDigits();
    ExpectMove(0, 1, {"Size", "SetPosition 10", "GetPosition"});
    ExpectWrite("abc", {});
    ExpectRead(1, "", {"SetPosition 10", "Write abc", "GetPosition", "GetPosition", "Size"});
    EXPECT_EQ(wrapped->bytes, "0123456789abc");
}

TEST_F(BufferedBothTest, FailuresOfDeliveryAndRefillAreIgnored)
{
    WrapDigits(4);
    ExpectWrite("ab", {});
    wrapped->writeResults = {30};
    wrapped->moveResult = 13;
    wrapped->readResult = 3;
    ExpectRead(1, "0", {"SetPosition 0", "Write ab", "GetPosition", "GetPosition", "Size", "Read 4"});
}

TEST_F(BufferedBothTest, SetSizeDeliversAndDropsWhatWasReadAhead)
{
    WrapDigits();
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 8"});
    ExpectWrite("ab", {});
    EXPECT_EQ(buffered->SetSize(50), 0);
    ExpectCalls({"SetPosition 0", "Write 01ab", "GetPosition", "SetSize 50"});
    ExpectPosition(4, {"GetPosition"});
}

TEST_F(BufferedBothTest, OtherBufferSizeDiscardsWhatWasWrittenAndReadAhead)
{
    WrapDigits();
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 8"});
    ExpectWrite("ab", {});
    buffered->SetBufferSize(4);
    ExpectCalls({});
    ExpectPosition(8, {"GetPosition"});
    ExpectRead(1, "8", {"GetPosition", "Size", "Read 2"});
    EXPECT_EQ(wrapped->bytes, "0123456789");
    buffered.Reset();
    ExpectCalls({});
}
} // namespace
} // namespace KORVA
