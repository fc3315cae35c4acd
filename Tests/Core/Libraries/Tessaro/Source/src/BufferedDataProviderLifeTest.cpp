// From Init to the last Release: who holds what, and what is still delivered.
#include "BufferedFixture.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

class BufferedLifeTest : public BufferedTest
{
protected:
    BufferedLifeTest()
    {
        buffered = COREREGISTRY::CreateObject<IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
    }
};

TEST_F(BufferedLifeTest, InitGivesTheNewReferenceCount)
{
    EXPECT_EQ(buffered->Init(*wrapped, 8, IO::kBufferBoth), 2);
    wrapped->AddRef();
    auto const other = COREREGISTRY::CreateObject<IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
    EXPECT_EQ(other->Init(*wrapped, 8, IO::kBufferBoth), 4);
    EXPECT_EQ(wrapped->Release(), 3);
}

TEST_F(BufferedLifeTest, InitAsksTheProviderForNothingElse)
{
    for (IO::BufferMode const mode :
         {IO::kBufferNothing, IO::kBufferReads, IO::kBufferWrites, IO::kBufferBoth})
    {
        wrapped->tellsReferences = true;
        auto const fresh = COREREGISTRY::CreateObject<IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
        EXPECT_EQ(fresh->Init(*wrapped, 8, mode), 2);
        ExpectCalls({"AddRef"});
        wrapped->tellsReferences = false;
        EXPECT_EQ(fresh->AddRef(), 2);
        EXPECT_EQ(fresh->Release(), 1) << "holds the provider, not itself";
    }
}

TEST_F(BufferedLifeTest, SecondInitReleasesTheOldProviderBeforeItTakesTheNew)
{
    TInterfacePtr<WatchedProvider> other;
    other.Adopt(new WatchedProvider);
    other->calls = wrapped->calls;
    wrapped->name = "old ";
    other->name = "new ";
    wrapped->tellsReferences = true;
    other->tellsReferences = true;
    EXPECT_EQ(buffered->Init(*wrapped, 8, IO::kBufferWrites), 2);
    EXPECT_EQ(buffered->Init(*other, 8, IO::kBufferWrites), 2);
    ExpectCalls({"old AddRef", "old Release", "new AddRef"});
    ExpectWrite("abc", {});
    buffered.Reset();
    ExpectCalls({"new SetPosition 0", "new Write abc", "new GetPosition", "new Release"});
    wrapped->tellsReferences = false;
    other->tellsReferences = false;
}

TEST_F(BufferedLifeTest, SecondInitWithTheSameProviderLeavesOneReference)
{
    wrapped->tellsReferences = true;
    EXPECT_EQ(buffered->Init(*wrapped, 8, IO::kBufferBoth), 2);
    EXPECT_EQ(buffered->Init(*wrapped, 8, IO::kBufferBoth), 2);
    ExpectCalls({"AddRef", "Release", "AddRef"});
}

TEST_F(BufferedLifeTest, SecondInitDiscardsWhatWaitsAndBeginsAnew)
{
    Wrap(IO::kBufferWrites, 8);
    ExpectMove(20, 0, {"SetPosition 20", "GetPosition"});
    ExpectWrite("abc", {});
    buffered->SetAutoFlush(false);
    EXPECT_EQ(buffered->Init(*wrapped, 4, IO::kBufferWrites), 2);
    ExpectCalls({});
    EXPECT_EQ(buffered->GetBufferSize(), 4);
    EXPECT_FALSE(buffered->GetAutoFlush()) << "not Init's business";
    ExpectFlush({"Flush"});
    ExpectPosition(20, {"GetPosition"});
    ExpectWrite("defg", {"SetPosition 0", "Write defg", "GetPosition"});

    EXPECT_EQ(buffered->Init(*wrapped, 4, IO::kBufferReads), 2);
    ExpectWrite("h", {}, 35);
    EXPECT_EQ(log.Take(), WriteRefused());
}

TEST_F(BufferedLifeTest, BeforeInitNothingIsDelivered)
{
    for (bool const autoFlush : {false, true})
    {
        auto fresh = COREREGISTRY::CreateObject<IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
        fresh->SetAutoFlush(autoFlush);
        EXPECT_EQ(fresh.Detach()->Release(), 0);
    }
}

TEST_F(BufferedLifeTest, ProviderIsReleasedBeforeTheAggregates)
{
    TInterfacePtr<WatchedProvider> aggregate;
    aggregate.Adopt(new WatchedProvider);
    aggregate->calls = wrapped->calls;
    aggregate->name = "aggregate ";
    Wrap(IO::kBufferWrites, 8);
    buffered->Aggregate(aggregate.Get(), IO::IID_IURI);
    ExpectWrite("abc", {});
    wrapped->tellsReferences = true;
    aggregate->tellsReferences = true;
    buffered.Reset();
    ExpectCalls({"SetPosition 0", "Write abc", "GetPosition", "Release", "aggregate Release"});
    wrapped->tellsReferences = false;
    aggregate->tellsReferences = false;
}

TEST_F(BufferedLifeTest, LastReferenceDelivers)
{
    Wrap(IO::kBufferWrites, 8);
    ExpectWrite("abc", {});
    buffered->AddRef();
    EXPECT_EQ(buffered->Release(), 1);
    ExpectCalls({});
    EXPECT_EQ(buffered.Detach()->Release(), 0);
    ExpectCalls({"SetPosition 0", "Write abc", "GetPosition"});
}

/// `before` leaves a buffer behind for the destructor.
struct EndRow
{
    char const* name;
    IO::BufferMode mode;
    void (*before)(IBufferedDataProvider&);
    Calls expected;
};

void Nothing(IBufferedDataProvider&) {}

void Write3(IBufferedDataProvider& provider) { EXPECT_EQ(provider.Write("abc", 3), 0); }

void Read3(IBufferedDataProvider& provider)
{
    char bytes[3];
    int32 count = 3;
    EXPECT_EQ(provider.Read(bytes, count), 0);
    EXPECT_EQ(count, 3);
}

void Write10AndGoBack5(IBufferedDataProvider& provider)
{
    EXPECT_EQ(provider.Write("abcdefghij", 10), 0);
    EXPECT_EQ(provider.SetPosition(-5, IDataProvider::kFromCurrent), 0);
}

void WriteAndFlush(IBufferedDataProvider& provider)
{
    Write3(provider);
    EXPECT_EQ(provider.Flush(), 0);
}

void WriteAndResize(IBufferedDataProvider& provider)
{
    Write3(provider);
    provider.SetBufferSize(20);
}

void WriteNothing(IBufferedDataProvider& provider) { EXPECT_EQ(provider.Write("", 0), 0); }

void Fill(IBufferedDataProvider& provider) { EXPECT_EQ(provider.Write("abcdefghijkl", 12), 0); }

void FillAndRead(IBufferedDataProvider& provider)
{
    Fill(provider);
    Read3(provider);
}

void ReadAndWrite(IBufferedDataProvider& provider)
{
    Read3(provider);
    Write3(provider);
}

EndRow const kEnds[] = {
    {"NothingDone", IO::kBufferWrites, Nothing, {"Release"}},
    {"Written", IO::kBufferWrites, Write3, {"SetPosition 0", "Write abc", "GetPosition", "Release"}},
    {"WrittenThroughBoth", IO::kBufferBoth, Write3, {"SetPosition 0", "Write abc", "GetPosition", "Release"}},
    {"WrittenAndGoneBack",
     IO::kBufferWrites,
     Write10AndGoBack5,
     {"SetPosition 0", "Write abcde", "GetPosition", "Release"}},
    {"WrittenAndFlushed", IO::kBufferWrites, WriteAndFlush, {"Release"}},
    {"WrittenAndResized", IO::kBufferWrites, WriteAndResize, {"Release"}},
    {"NoByteWritten", IO::kBufferWrites, WriteNothing, {"Release"}},
    {"JustFilled", IO::kBufferWrites, Fill, {"Release"}},
    {"WrittenWithoutABuffer", IO::kBufferNothing, Write3, {"Release"}},
    {"ReadAhead", IO::kBufferReads, Read3, {"Release"}},
    {"ReadAheadThroughBoth", IO::kBufferBoth, Read3, {"Release"}},
    {"ReadAndWritten",
     IO::kBufferBoth,
     ReadAndWrite,
     {"SetPosition 0", "Write 012abc", "GetPosition", "Release"}},
    // A write that fills the buffer leaves it marked as written to, although nothing is in it.
    {"FilledAndRead",
     IO::kBufferBoth,
     FillAndRead,
     {"SetPosition 12", "Write CDE", "GetPosition", "Release"}},
};

class BufferedEndTest : public BufferedTest, public ::testing::WithParamInterface<EndRow>
{
};

TEST_P(BufferedEndTest, DeliversWhateverAutoFlushSays)
{
    for (bool const autoFlush : {true, false})
    {
        SCOPED_TRACE(autoFlush);
        Wrap(GetParam().mode, 12, "0123456789ABCDEFGHIJ");
        buffered->SetAutoFlush(autoFlush);
        GetParam().before(*buffered);
        static_cast<void>(TakeCalls());
        wrapped->tellsReferences = true;
        buffered.Reset();
        wrapped->tellsReferences = false;
        ExpectCalls(GetParam().expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Buffered, BufferedEndTest, ::testing::ValuesIn(kEnds), RowName());
} // namespace
} // namespace KORVA
