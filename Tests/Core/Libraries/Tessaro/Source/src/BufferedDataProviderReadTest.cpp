// Reading through the buffer: what the caller gets and what is read for it.
#include "BufferedFixture.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

class BufferedReadTest : public BufferedTest
{
protected:
    void WrapDigits(int size = 4) { Wrap(IO::kBufferReads, size, "0123456789"); }
};

TEST_F(BufferedReadTest, SmallReadsAreServedByOneRefill)
{
    WrapDigits(8);
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 8"});
    ExpectRead(3, "234", {});
    ExpectRead(0, "", {});
    ExpectRead(2, "56", {});
    ExpectPosition(7, {});
}

TEST_F(BufferedReadTest, BeginsWhereTheWrappedProviderStands)
{
    Wrap(IO::kBufferReads, 4, "0123456789", 3);
    ExpectRead(2, "34", {"GetPosition", "Size", "Read 4"});
    ExpectPosition(5, {});
}

TEST_F(BufferedReadTest, LastByteOfTheBufferRefillsAtOnce)
{
    WrapDigits();
    ExpectRead(3, "012", {"GetPosition", "Size", "Read 4"});
    ExpectRead(1, "3", {"GetPosition", "Size", "Read 4"});
    ExpectPosition(4, {});
    ExpectRead(3, "456", {});
}

TEST_F(BufferedReadTest, JustOneBufferRefillsAfterwards)
{
    WrapDigits();
    ExpectRead(4, "0123", {"GetPosition", "Size", "Read 4", "GetPosition", "Size", "Read 4"});
    ExpectPosition(4, {});
}

TEST_F(BufferedReadTest, ReadAcrossTheBufferTakesTheRestFromTheNextFill)
{
    WrapDigits();
    ExpectRead(3, "012", {"GetPosition", "Size", "Read 4"});
    // Three of the next four.
    ExpectRead(4, "3456", {"GetPosition", "Size", "Read 4"});
    ExpectPosition(7, {});
    // No more than what is left is asked for.
    ExpectRead(2, "78", {"GetPosition", "Size", "Read 2"});
    ExpectPosition(9, {});
}

TEST_F(BufferedReadTest, RestOfOneBufferIsReadPastTheBuffer)
{
    WrapDigits();
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 4"});
    std::string text(6, '*');
    int32 count = 6;
    EXPECT_EQ(buffered->Read(text.data(), count), 0);
    EXPECT_EQ(text, "234567");
    EXPECT_EQ(count, 6);
    ExpectCalls({"Read 4", "GetPosition", "Size", "Read 2"});
    ASSERT_EQ(wrapped->memory.size(), 3u);
    EXPECT_EQ(wrapped->memory[1], text.data() + 2) << "straight to the caller, behind what was buffered";
    ExpectPosition(8, {});
    ExpectRead(1, "8", {});
}

TEST_F(BufferedReadTest, RestOneByteShorterGoesThroughTheBuffer)
{
    WrapDigits();
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 4"});
    ExpectRead(5, "23456", {"GetPosition", "Size", "Read 4"});
    ExpectPosition(7, {});
}

TEST_F(BufferedReadTest, LargeReadFillsTheBufferFirst)
{
    WrapDigits();
    ExpectRead(9, "012345678", {"GetPosition", "Size", "Read 4", "Read 5", "GetPosition", "Size", "Read 1"});
    ExpectPosition(9, {});
}

TEST_F(BufferedReadTest, PastTheEndIsShortWithoutAnError)
{
    WrapDigits();
    ExpectRead(12, "0123456789", {"GetPosition", "Size", "Read 4", "Read 8", "GetPosition", "Size"});
    ExpectPosition(10, {"GetPosition"});
    ExpectRead(3, "", {"GetPosition", "Size", "GetPosition", "Size"});
    ExpectRead(4, "", {"GetPosition", "Size", "Read 4", "GetPosition", "Size"});
    ExpectRead(0, "", {"GetPosition", "Size", "GetPosition", "Size"});
}

TEST_F(BufferedReadTest, PastTheEndThroughTheBufferIsShortWithoutAnError)
{
    WrapDigits(8);
    ExpectRead(7, "0123456", {"GetPosition", "Size", "Read 8"});
    ExpectRead(7, "789", {"GetPosition", "Size", "Read 2"});
    ExpectPosition(10, {});
    ExpectRead(1, "", {"GetPosition", "Size"});
    EXPECT_EQ(wrapped->readResult, 0);
}

TEST_F(BufferedReadTest, ProviderSmallerThanTheBufferIsAskedForWhatItHas)
{
    Wrap(IO::kBufferReads, 100, "012");
    ExpectRead(2, "01", {"GetPosition", "Size", "Read 3"});
    ExpectRead(1, "2", {"GetPosition", "Size"});
    ExpectPosition(3, {"GetPosition"});
}

TEST_F(BufferedReadTest, ProviderStandingBehindItsEndIsAskedForNothing)
{
    Wrap(IO::kBufferReads, 4, "0123456789", 13);
    ExpectRead(3, "", {"GetPosition", "Size", "GetPosition", "Size"});
    ExpectPosition(13, {"GetPosition"});
}

TEST_F(BufferedReadTest, ShortRefillsAreMadeUpByOneMoreAtMost)
{
    WrapDigits();
    wrapped->deliversAtMost = 2;
    ExpectRead(3, "012", {"GetPosition", "Size", "Read 4", "GetPosition", "Size", "Read 4"});
    ExpectPosition(3, {});
    // One byte left, two more from the refill; the fourth is not waited for.
    ExpectRead(4, "345", {"GetPosition", "Size", "Read 4"});
    ExpectPosition(6, {});
}

TEST_F(BufferedReadTest, ShortDirectReadShowsInTheCount)
{
    WrapDigits();
    wrapped->deliversAtMost = 4;
    ExpectRead(9, "01234567", {"GetPosition", "Size", "Read 4", "Read 5", "GetPosition", "Size", "Read 2"});
    ExpectPosition(8, {});
}

TEST_F(BufferedReadTest, FailureOfARefillIsIgnored)
{
    WrapDigits();
    wrapped->readResult = 3;
    ExpectRead(3, "012", {"GetPosition", "Size", "Read 4"});
    wrapped->deliversAtMost = 0;
    ExpectRead(3, "3", {"GetPosition", "Size", "Read 4"});
    ExpectRead(3, "", {"GetPosition", "Size", "Read 4", "GetPosition", "Size", "Read 4"});
    ExpectPosition(4, {"GetPosition"});
}

TEST_F(BufferedReadTest, FailureOfADirectReadIsIgnored)
{
    WrapDigits();
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 4"});
    wrapped->readResult = 30;
    wrapped->deliversAtMost = 0;
    ExpectRead(8, "123", {"Read 5", "GetPosition", "Size", "Read 4"});
    ExpectPosition(4, {"GetPosition"});
}

struct LeftRow
{
    char const* name;
    int64 size;
    int64 position;
    /// What the buffer asks for, if for anything.
    char const* read;
    /// How many of three bytes are found.
    int32 found;
};

constexpr int64 kGiB = 1073741824;

// The low 32 bits of what is left count, as a signed number.
LeftRow const kLeft[] = {
    {"JustUnderTwoGiB", 2 * kGiB - 1, 0, "Read 8", 3},
    {"TwoGiB", 2 * kGiB, 0, nullptr, 0},
    {"ThreeGiB", 3 * kGiB, 0, nullptr, 0},
    {"ThreeGiBUpToTwoLeft", 3 * kGiB, kGiB, nullptr, 0},
    {"ThreeGiBJustUnderTwoLeft", 3 * kGiB, kGiB + 1, "Read 8", 3},
    {"ThreeGiBAtItsLastBytes", 3 * kGiB, 3 * kGiB - 5, "Read 5", 3},
    {"ThreeGiBAtItsEnd", 3 * kGiB, 3 * kGiB, nullptr, 0},
    {"FourGiB", 4 * kGiB, 0, nullptr, 0},
    {"FourGiBAndFour", 4 * kGiB + 4, 0, "Read 4", 3},
    {"FiveGiB", 5 * kGiB, 0, "Read 8", 3},
    {"FiveGiBAtThree", 5 * kGiB, 3 * kGiB, nullptr, 0},
    {"FiveGiBBehindItsEnd", 5 * kGiB, 6 * kGiB, nullptr, 0},
    {"FarBehindTheEnd", 0, 3 * kGiB, "Read 8", 0},
};

class BufferedLeftTest : public BufferedTest, public ::testing::WithParamInterface<LeftRow>
{
};

TEST_P(BufferedLeftTest, IsCountedIn32Bits)
{
    Wrap(IO::kBufferReads, 8, "", GetParam().position);
    wrapped->claimedSize = GetParam().size;
    char bytes[3];
    int32 count = 3;
    EXPECT_EQ(buffered->Read(bytes, count), 0);
    EXPECT_EQ(count, GetParam().found);
    Calls const calls = TakeCalls();
    // A read that finds nothing has tried twice.
    Calls once{"GetPosition", "Size"};
    if (GetParam().read)
        once.emplace_back(GetParam().read);
    Calls twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(calls, GetParam().found > 0 ? once : twice);
}

INSTANTIATE_TEST_SUITE_P(Buffered, BufferedLeftTest, ::testing::ValuesIn(kLeft), RowName());

TEST_F(BufferedReadTest, ReadsAsLargeAsTheBufferGetThroughWhereNoRefillDoes)
{
    Wrap(IO::kBufferReads, 4);
    wrapped->claimedSize = 3 * kGiB;
    ExpectRead(3, "", {"GetPosition", "Size", "GetPosition", "Size"});
    ExpectRead(4, "0123", {"GetPosition", "Size", "Read 4", "GetPosition", "Size"});
    ExpectPosition(4, {"GetPosition"});
}

TEST_F(BufferedReadTest, WriteIsRefused)
{
    WrapDigits();
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 4"});
    ExpectWrite("abc", {}, 35);
    EXPECT_EQ(log.Take(), WriteRefused());
    ExpectWrite("", {}, 35);
    EXPECT_EQ(log.Take(), WriteRefused());
    ExpectRead(2, "12", {});
    EXPECT_EQ(wrapped->bytes, "0123456789");
}

TEST_F(BufferedReadTest, FlushAndSetSizeDropWhatWasReadAhead)
{
    WrapDigits();
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 4"});
    ExpectFlush({"Flush"});
    ExpectPosition(4, {"GetPosition"});
    ExpectRead(1, "4", {"GetPosition", "Size", "Read 4"});
    EXPECT_EQ(buffered->SetSize(10), 0);
    ExpectCalls({"SetSize 10"});
    ExpectPosition(8, {"GetPosition"});
    ExpectRead(1, "8", {"GetPosition", "Size", "Read 2"});
}

TEST_F(BufferedReadTest, OtherBufferSizeDropsWhatWasReadAhead)
{
    WrapDigits();
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 4"});
    buffered->SetBufferSize(3);
    ExpectCalls({});
    ExpectRead(1, "4", {"GetPosition", "Size", "Read 3"});
}

TEST_F(BufferedReadTest, AtEndAndSizeDoNotConsiderTheBuffer)
{
    WrapDigits(100);
    ExpectRead(1, "0", {"GetPosition", "Size", "Read 10"});
    wrapped->atEnd = true;
    EXPECT_TRUE(buffered->AtEnd()) << "nine bytes are still to be had";
    EXPECT_EQ(buffered->Size(), 10);
    ExpectCalls({"AtEnd", "Size"});
}

TEST_F(BufferedReadTest, ManyBytesOneByOneCostFewCalls)
{
    Wrap(IO::kBufferReads, 1000, std::string(10'000, 'x'));
    for (int i = 0; i < 10'000; ++i)
    {
        char byte = 0;
        int32 count = 1;
        ASSERT_EQ(buffered->Read(&byte, count), 0);
        ASSERT_EQ(count, 1);
        ASSERT_EQ(byte, 'x');
    }
    Calls const calls = TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Read 1000"), 10);
    // Ten refills, and the look for more after the last byte.
    EXPECT_EQ(calls.size(), 32u);
}
} // namespace
} // namespace KORVA
