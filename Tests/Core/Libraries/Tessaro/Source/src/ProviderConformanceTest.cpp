// What every data provider does alike.
#include "ProviderConformance.h"

#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace KORVA
{
namespace
{
using IO::IDataProvider;
using TESTS::kProviderContent;
using TESTS::LibraryTestWith;
using TESTS::Outcome;
using TESTS::ProviderKind;
using TESTS::ProviderRow;
using TESTS::RowName;
using Provider = TInterfacePtr<IDataProvider>;

class DataProviderConformance : public LibraryTestWith<ProviderRow>
{
protected:
    Provider Make(std::string const& content = kProviderContent)
    {
        // A file that is still open would be locked.
        mWrapped.Reset();
        auto provider = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
        mMemory = content;
        switch (GetParam().kind)
        {
        case ProviderKind::kReadOnlyMemory:
            EXPECT_EQ(provider->InitReadOnlyMem(mMemory.data(), static_cast<int32>(mMemory.size())), 0);
            break;
        case ProviderKind::kMemoryHandle:
            provider->InitHandleBased(IO::kStreamReadWrite);
            EXPECT_EQ(provider->Write(content.data(), content.size()), 0);
            EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromStart), 0);
            break;
        case ProviderKind::kFile:
            EXPECT_EQ(provider->InitURIBased(*MakeURI(mDirectory.File("file", content)), IO::kStreamReadWrite,
                                             nullptr),
                      0);
            break;
        }
        return GetParam().buffer ? Wrap(provider, *GetParam().buffer) : provider;
    }

    Provider MakeAt(int64 position)
    {
        Provider provider = Make();
        EXPECT_EQ(provider->SetPosition(position, IDataProvider::kFromStart), 0);
        return provider;
    }

    /// What one call delivers; `wanted` becomes the count.
    std::string Read(IDataProvider& provider, int32& wanted, OperationId result)
    {
        std::string text(static_cast<std::size_t>(std::max(wanted, 0)), '*');
        EXPECT_EQ(provider.Read(text.data(), wanted), result);
        EXPECT_LE(static_cast<std::size_t>(wanted), text.size());
        text.resize(static_cast<std::size_t>(wanted));
        return text;
    }

    /// Everything, from the start.
    std::string ContentOf(IDataProvider& provider)
    {
        if (!GetParam().readable)
        {
            EXPECT_EQ(provider.Flush(), 0);
        }
        IDataProvider& source = GetParam().readable ? provider : *mWrapped;
        EXPECT_EQ(source.SetPosition(0, IDataProvider::kFromStart), 0);
        auto count = static_cast<int32>(source.Size());
        return count == 0 ? std::string() : Read(source, count, 0);
    }

    void ExpectOutcome(Outcome const& expected, int32 result)
    {
        EXPECT_EQ(result, expected.result);
        EXPECT_EQ(log.Take(), expected.logged);
    }

private:
    Provider Wrap(Provider const& provider, IO::BufferMode mode)
    {
        mWrapped = provider;
        auto buffered = COREREGISTRY::CreateObject<IO::IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
        EXPECT_EQ(buffered->Init(*provider, 4, mode), 3) << "two references are the test's";
        Provider wrapper;
        wrapper.Adopt(buffered.Detach());
        return wrapper;
    }

    TESTS::TemporaryDirectory mDirectory;
    std::string mMemory;
    /// Under the buffer, where there is one.
    Provider mWrapped;
};

/// What those do that can be read from.
class ReadableProviderConformance : public DataProviderConformance
{
};

/// What those can do on top that can be written to.
class WritableProviderConformance : public DataProviderConformance
{
};

TEST_P(DataProviderConformance, BeginsAtTheStart)
{
    Provider const provider = Make();
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(provider->GetPosition(), 0);
    EXPECT_FALSE(provider->AtEnd());
}

TEST_P(ReadableProviderConformance, ReadsInPieces)
{
    Provider const provider = Make();
    int32 count = 3;
    EXPECT_EQ(Read(*provider, count, 0), "012");
    EXPECT_EQ(provider->GetPosition(), 3);
    EXPECT_EQ(Read(*provider, count, 0), "345");
    EXPECT_EQ(Read(*provider, count, 0), "678");
    EXPECT_EQ(provider->GetPosition(), 9);
    EXPECT_EQ(provider->AtEnd(), GetParam().endsEarly);
    EXPECT_EQ(Read(*provider, count, GetParam().cutShort), "9");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(provider->GetPosition(), 10);
    EXPECT_TRUE(provider->AtEnd());
}

TEST_P(ReadableProviderConformance, ReadsJustWhatIsThere)
{
    Provider const provider = Make();
    int32 count = 10;
    EXPECT_EQ(Read(*provider, count, 0), "0123456789");
    EXPECT_EQ(count, 10);
    EXPECT_TRUE(provider->AtEnd());
}

TEST_P(ReadableProviderConformance, ReadsNoneAtTheEnd)
{
    Provider const provider = MakeAt(10);
    for (int i = 0; i < 2; ++i)
    {
        int32 count = 4;
        EXPECT_EQ(Read(*provider, count, GetParam().noneLeft), "");
        EXPECT_EQ(count, 0);
        EXPECT_EQ(provider->GetPosition(), 10);
    }
    EXPECT_EQ(provider->SetPosition(8, IDataProvider::kFromStart), 0);
    int32 count = 2;
    EXPECT_EQ(Read(*provider, count, 0), "89");
}

TEST_P(ReadableProviderConformance, ReadsNothing)
{
    for (int64 const position : {4, 10})
    {
        Provider const provider = MakeAt(position);
        char byte = '*';
        int32 count = 0;
        EXPECT_EQ(provider->Read(&byte, count), 0);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(byte, '*');
        EXPECT_EQ(provider->GetPosition(), position);
    }
}

TEST_P(ReadableProviderConformance, ReadsNothingToNull)
{
    Provider const provider = MakeAt(4);
    int32 count = 0;
    ExpectOutcome(GetParam().nothingToNull, provider->Read(nullptr, count));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(provider->GetPosition(), 4);
}

TEST_P(ReadableProviderConformance, LargeReadsAndSmallOnesGiveTheSame)
{
    std::string content;
    for (int i = 0; i < 300'000; ++i)
        content += static_cast<char>(i % 251);
    Provider const provider = Make(content);
    EXPECT_TRUE(ContentOf(*provider) == content);
    ASSERT_EQ(provider->SetPosition(0, IDataProvider::kFromStart), 0);
    std::string joined;
    while (joined.size() < 299'999)
    {
        int32 count = 7919;
        std::string const piece =
            Read(*provider, count, joined.size() + 7919 > 300'000 ? GetParam().cutShort : 0);
        ASSERT_FALSE(piece.empty());
        joined += piece;
    }
    EXPECT_TRUE(joined == content);
    EXPECT_TRUE(provider->AtEnd());
}

TEST_P(DataProviderConformance, SizeLeavesThePosition)
{
    for (int64 const position : {0, 4, 10})
    {
        Provider const provider = MakeAt(position);
        EXPECT_EQ(provider->Size(), 10);
        EXPECT_EQ(provider->GetPosition(), position);
        EXPECT_EQ(provider->AtEnd(), position == 10);
        EXPECT_EQ(provider->GetPosition(), position);
    }
}

TEST_P(DataProviderConformance, MovesFromTheStartAndFromHere)
{
    Provider const provider = Make();
    EXPECT_EQ(provider->SetPosition(7, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->GetPosition(), 7);
    EXPECT_EQ(provider->SetPosition(-5, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(provider->GetPosition(), 2);
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(provider->SetPosition(3, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(provider->GetPosition(), 5);
    EXPECT_EQ(provider->SetPosition(10, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->GetPosition(), 10);
}

TEST_P(ReadableProviderConformance, ReadsWhereItWasMovedTo)
{
    Provider const provider = Make();
    EXPECT_EQ(provider->SetPosition(5, IDataProvider::kFromStart), 0);
    int32 count = 2;
    EXPECT_EQ(Read(*provider, count, 0), "56");
    EXPECT_EQ(provider->SetPosition(-4, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(provider->GetPosition(), 3);
    EXPECT_EQ(Read(*provider, count, 0), "34");
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromStart), 0);
    EXPECT_EQ(Read(*provider, count, 0), "01");
    EXPECT_EQ(provider->SetPosition(1, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(Read(*provider, count, 0), "34");
}

TEST_P(DataProviderConformance, MovesFromTheEnd)
{
    Provider const provider = MakeAt(4);
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(provider->GetPosition(), GetParam().end);
    EXPECT_EQ(provider->SetPosition(3, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(provider->GetPosition(), GetParam().threeFromEnd);
}

TEST_P(DataProviderConformance, MovesUpToItsLastPosition)
{
    Provider const provider = MakeAt(4);
    int64 const last = GetParam().last.value_or(1'000'000'000'000);
    EXPECT_EQ(provider->SetPosition(last, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->GetPosition(), last);
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(provider->Size(), 10);
    ASSERT_EQ(provider->SetPosition(4, IDataProvider::kFromStart), 0);
    ExpectOutcome(GetParam().beyondLast, provider->SetPosition(last + 1, IDataProvider::kFromStart));
    EXPECT_EQ(provider->GetPosition(), GetParam().last ? 4 : last + 1);
}

TEST_P(DataProviderConformance, NeverMovesBeforeTheStart)
{
    Provider const provider = MakeAt(4);
    ExpectOutcome(GetParam().beforeStart, provider->SetPosition(-1, IDataProvider::kFromStart));
    EXPECT_EQ(provider->GetPosition(), 4);
    ExpectOutcome(GetParam().backTooFar, provider->SetPosition(-5, IDataProvider::kFromCurrent));
    EXPECT_EQ(provider->GetPosition(), 4);
}

TEST_P(DataProviderConformance, UnknownOrigin)
{
    Provider const provider = MakeAt(4);
    for (int const origin : {3, -1})
    {
        ExpectOutcome(GetParam().unknownOrigin,
                      provider->SetPosition(1, static_cast<IDataProvider::Offset>(origin)));
        EXPECT_EQ(provider->GetPosition(), GetParam().afterUnknownOrigin);
    }
}

TEST_P(DataProviderConformance, WritesInTheMiddle)
{
    Provider const provider = MakeAt(4);
    ExpectOutcome(GetParam().write, provider->Write("abc", 3));
    EXPECT_EQ(provider->GetPosition(), GetParam().writable ? 7 : 4);
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(ContentOf(*provider), GetParam().writable ? "0123abc789" : kProviderContent);
}

TEST_P(DataProviderConformance, WritesPastTheEnd)
{
    Provider const provider = MakeAt(8);
    ExpectOutcome(GetParam().write, provider->Write("abc", 3));
    EXPECT_EQ(provider->GetPosition(), GetParam().writable ? 11 : 8);
    if (GetParam().holdsBack)
    {
        EXPECT_EQ(provider->Size(), 10);
        EXPECT_FALSE(provider->AtEnd());
        EXPECT_EQ(provider->Flush(), 0);
        EXPECT_EQ(provider->GetPosition(), 11);
    }
    EXPECT_EQ(provider->Size(), GetParam().writable ? 11 : 10);
    EXPECT_EQ(provider->AtEnd(), GetParam().writable);
    EXPECT_EQ(ContentOf(*provider), GetParam().writable ? "01234567abc" : kProviderContent);
}

TEST_P(DataProviderConformance, WritesNothing)
{
    Provider const provider = MakeAt(4);
    ExpectOutcome(GetParam().writeNothing, provider->Write("abc", 0));
    ExpectOutcome(GetParam().writeNothingFromNull, provider->Write(nullptr, 0));
    EXPECT_EQ(provider->GetPosition(), 4);
    EXPECT_EQ(ContentOf(*provider), kProviderContent);
}

TEST_P(WritableProviderConformance, GapReadsAsZero)
{
    Provider const provider = MakeAt(13);
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(provider->Write("a", 1), 0);
    EXPECT_EQ(provider->Size(), GetParam().holdsBack ? 10 : 14);
    EXPECT_EQ(provider->Flush(), 0);
    EXPECT_EQ(provider->Size(), 14);
    EXPECT_EQ(ContentOf(*provider), std::string("0123456789\0\0\0a", 14));
}

TEST_P(DataProviderConformance, SizeIsCut)
{
    Provider const provider = Make();
    ExpectOutcome(GetParam().setSize, provider->SetSize(4));
    EXPECT_EQ(provider->Size(), GetParam().resizable ? 4 : 10);
    EXPECT_EQ(ContentOf(*provider), GetParam().resizable ? "0123" : kProviderContent);
}

TEST_P(DataProviderConformance, SizeIsExtendedByZeros)
{
    Provider const provider = Make();
    ExpectOutcome(GetParam().setSize, provider->SetSize(13));
    EXPECT_EQ(provider->GetPosition(), 0);
    EXPECT_EQ(provider->Size(), GetParam().resizable ? 13 : 10);
    EXPECT_EQ(ContentOf(*provider),
              GetParam().resizable ? std::string("0123456789\0\0\0", 13) : kProviderContent);
}

TEST_P(DataProviderConformance, CutBytesDoNotComeBack)
{
    Provider const provider = Make();
    ExpectOutcome(GetParam().setSize, provider->SetSize(4));
    ExpectOutcome(GetParam().setSize, provider->SetSize(6));
    EXPECT_EQ(ContentOf(*provider), GetParam().resizable ? std::string("0123\0\0", 6) : kProviderContent);
}

TEST_P(DataProviderConformance, SizeOfNothing)
{
    Provider const provider = Make();
    ExpectOutcome(GetParam().setSizeZero, provider->SetSize(0));
    EXPECT_EQ(provider->Size(), GetParam().sizeAfterZero);
}

TEST_P(DataProviderConformance, SizeOfFewerThanNothing)
{
    Provider const provider = MakeAt(4);
    ExpectOutcome(GetParam().setSizeNegative, provider->SetSize(-1));
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(provider->GetPosition(), 4);
}

TEST_P(DataProviderConformance, ByteOrderIsKept)
{
    Provider const provider = Make();
    EXPECT_EQ(provider->GetEndian(), IDataProvider::kLittleEndian);
    EXPECT_TRUE(provider->IsNative());
    provider->SetEndian(IDataProvider::kBigEndian);
    EXPECT_EQ(provider->GetEndian(), IDataProvider::kBigEndian);
    EXPECT_FALSE(provider->IsNative());
    // The bytes themselves have no order.
    EXPECT_EQ(ContentOf(*provider), kProviderContent);
}

TEST_P(DataProviderConformance, FlushChangesNothing)
{
    Provider const provider = MakeAt(4);
    EXPECT_EQ(provider->Flush(), 0);
    EXPECT_TRUE(provider->GetAutoFlush());
    provider->SetAutoFlush(false);
    EXPECT_EQ(provider->GetAutoFlush(), !GetParam().keepsAutoFlush);
    EXPECT_EQ(provider->GetPosition(), 4);
    EXPECT_EQ(ContentOf(*provider), kProviderContent);
}

TEST_P(DataProviderConformance, IsHeldOnce)
{
    Provider const provider = Make();
    EXPECT_EQ(provider->AddRef(), 2);
    EXPECT_EQ(provider->Release(), 1);
    EXPECT_EQ(provider->QueryInterface(IO::IID_IDATAPROVIDER, nullptr), -1004);
}

INSTANTIATE_TEST_SUITE_P(Providers, DataProviderConformance, ::testing::ValuesIn(TESTS::ProviderRows()),
                         RowName());
INSTANTIATE_TEST_SUITE_P(Providers, ReadableProviderConformance,
                         ::testing::ValuesIn(TESTS::ReadableProviderRows()), RowName());
INSTANTIATE_TEST_SUITE_P(Providers, WritableProviderConformance,
                         ::testing::ValuesIn(TESTS::WritableProviderRows()), RowName());
} // namespace
} // namespace KORVA
