#include "Mac/HandleDataProvider.h"

#include "Support/Library.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>

#include <gmock/gmock.h>

#include <limits>
#include <memory>

namespace KORVA
{
namespace
{
using IO::IDataProvider;
using TESTS::kNothing;
using TESTS::LibraryTest;
using TESTS::LibraryTestWith;
using TESTS::Logged;
using TESTS::RowName;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/HandleDataProvider";
Logged const kWriteRefused{kSource,
                           "virtual OperationId KORVA::IO::HandleDataProvider::Write(const void *, size_t)",
                           98, "Attempted to write data to a read only data provider"};
Logged const kReadRefused{kSource, "virtual OperationId KORVA::IO::HandleDataProvider::Read(void *, int32 &)",
                          141, "Attempted to read data from a write only data provider."};
constexpr char kSetSize[] = "virtual ErrCode KORVA::IO::HandleDataProvider::SetSize(int64)";
Logged const kResizeRefused{kSource, kSetSize, 177, "Attempting to resize a dataprovider that is read only"};
Logged const kSizeOutOfRange{kSource, kSetSize, 173,
                             "Memory handles only support up to 0xFFFFFFFF for size and cannot be negative"};
constexpr char kSetPosition[] =
    "virtual ErrCode KORVA::IO::HandleDataProvider::SetPosition(int64, IDataProvider::Offset)";

TInterfacePtr<IDataProvider> MakeProvider(int mode)
{
    auto provider = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
    provider->InitHandleBased(mode);
    return provider;
}

struct ModeRow
{
    char const* name;
    int mode;
    bool writes;
    /// What a read of one byte from no data answers.
    OperationId read;
    bool resizes;
};

class HandleMode : public LibraryTestWith<ModeRow>
{
protected:
    /// What was logged since last time is this message, or nothing.
    void ExpectLogged(bool refused, Logged const& message)
    {
        EXPECT_EQ(log.Take(), refused ? std::vector<Logged>{message} : kNothing);
    }
};

TEST_P(HandleMode, Writes)
{
    auto const provider = MakeProvider(GetParam().mode);
    EXPECT_EQ(provider->Write("abc", 3), GetParam().writes ? 0 : 30);
    ExpectLogged(!GetParam().writes, kWriteRefused);
    EXPECT_EQ(provider->Size(), GetParam().writes ? 3 : 0);
    EXPECT_EQ(provider->GetPosition(), GetParam().writes ? 3 : 0);
}

TEST_P(HandleMode, Reads)
{
    auto const provider = MakeProvider(GetParam().mode);
    char byte = '*';
    int32 count = 1;
    EXPECT_EQ(provider->Read(&byte, count), GetParam().read);
    ExpectLogged(GetParam().read == 30, kReadRefused);
    EXPECT_EQ(byte, '*');
    EXPECT_EQ(provider->GetPosition(), 0);
}

TEST_P(HandleMode, Resizes)
{
    auto const provider = MakeProvider(GetParam().mode);
    EXPECT_EQ(provider->SetSize(8), GetParam().resizes ? 0 : 27);
    ExpectLogged(!GetParam().resizes, kResizeRefused);
    EXPECT_EQ(provider->Size(), GetParam().resizes ? 8 : 0);
    // The mode is looked at before the size.
    EXPECT_EQ(provider->SetSize(0), 27);
    ExpectLogged(true, GetParam().resizes ? kSizeOutOfRange : kResizeRefused);
}

TEST_P(HandleMode, NothingIsAlwaysReadAndWritten)
{
    auto const provider = MakeProvider(GetParam().mode);
    char byte = '*';
    int32 count = 0;
    EXPECT_EQ(provider->Read(&byte, count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(provider->Read(nullptr, count), 0);
    EXPECT_EQ(provider->Write(&byte, 0), 0);
    EXPECT_EQ(provider->Write(nullptr, 0), 0);
    EXPECT_EQ(byte, '*');
    EXPECT_EQ(provider->Size(), 0);
    EXPECT_EQ(provider->GetPosition(), 0);
}

TEST_P(HandleMode, Moves)
{
    auto const provider = MakeProvider(GetParam().mode);
    EXPECT_EQ(provider->SetPosition(5, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->GetPosition(), 5);
}

ModeRow const kModes[] = {
    {"BeforeTheFirst", -1, false, 30, true}, {"Read", 0, false, 28, false}, {"Write", 1, true, 30, true},
    {"ReadWrite", 2, true, 28, true},        {"Three", 3, true, 30, true},  {"Four", 4, false, 30, true},
    {"AfterTheLast", 5, false, 30, true},
};
INSTANTIATE_TEST_SUITE_P(Modes, HandleMode, ::testing::ValuesIn(kModes), RowName());

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

class HandleSetPosition : public LibraryTestWith<MoveRow>
{
protected:
    void MoveIn(IDataProvider& provider)
    {
        MoveRow const& row = GetParam();
        ASSERT_EQ(provider.SetPosition(row.start, IDataProvider::kFromStart), 0);
        EXPECT_EQ(provider.SetPosition(row.offset, static_cast<IDataProvider::Offset>(row.origin)),
                  row.result);
        EXPECT_EQ(provider.GetPosition(), row.position);
        std::vector<Logged> expected;
        if (row.message)
            expected.push_back({kSource, kSetPosition, row.line, row.message});
        EXPECT_EQ(log.Take(), expected);
    }
};

TEST_P(HandleSetPosition, IsBoundedByWhatIsAllocated)
{
    auto const provider = MakeProvider(IO::kStreamReadWrite);
    MoveIn(*provider);
    EXPECT_EQ(provider->Size(), 0);
}

TEST_P(HandleSetPosition, DoesNotLookAtTheSize)
{
    auto const provider = MakeProvider(IO::kStreamReadWrite);
    ASSERT_EQ(provider->Write("0123456789", 10), 0);
    MoveIn(*provider);
    EXPECT_EQ(provider->Size(), 10);
}

MoveRow const kMoves[] = {
    {"ToTheStart", 100, 0, 0, 0, 0},
    {"ToTheEndOfTheBlock", 100, 524288, 0, 0, 524288},
    {"PastTheBlock", 100, 524289, 0, 13, 100, 205,
     "Attempted to move buffer position to 524289  when buffer size is 524288"},
    {"PastTheBlockByMoreThan32Bits", 100, 4294967296, 0, 13, 100, 205,
     "Attempted to move buffer position to 4294967296  when buffer size is 524288"},
    {"BeforeTheStart", 100, -1, 0, 13, 100, 205,
     "Attempted to move buffer position to -1  when buffer size is 524288"},
    {"EndOfTheBlock", 100, 0, 1, 0, 524288},
    {"BackFromTheEndOfTheBlock", 100, 3, 1, 0, 524285},
    {"BackFromTheEndToTheStart", 100, 524288, 1, 0, 0},
    {"BackFromTheEndBeforeTheStart", 100, 524289, 1, 13, 100, 223,
     "Attempted to move buffer position to 524289  when buffer size is 524288"},
    {"ForwardFromTheEnd", 100, -1, 1, 13, 100, 223,
     "Attempted to move buffer position to -1  when buffer size is 524288"},
    {"NowhereFromHere", 100, 0, 2, 0, 100},
    {"ForwardFromHere", 100, 20, 2, 0, 120},
    {"ForwardFromHereToTheEndOfTheBlock", 100, 524188, 2, 0, 524288},
    {"ForwardFromHerePastTheBlock", 100, 524189, 2, 13, 100, 214,
     "Attempted to move buffer position to 524289  when buffer size is 524288"},
    {"BackFromHere", 100, -20, 2, 0, 80},
    {"BackFromHereToTheStart", 100, -100, 2, 0, 0},
    {"BackFromHereBeforeTheStart", 100, -101, 2, 13, 100, 214,
     "Attempted to move buffer position to -1  when buffer size is 524288"},
    {"BackFromHereByMoreThan32Bits", 100, -4294967296, 2, 13, 100, 214,
     "Attempted to move buffer position to -4294967196  when buffer size is 524288"},
    {"OriginAfterTheLast", 100, 0, 3, 0, 100},
    {"OriginBeforeTheFirst", 100, 0, -1, 0, 100},
    {"UnknownOriginWithAnOffsetOutOfRange", 100, -7, 1000, 0, 100},
};
INSTANTIATE_TEST_SUITE_P(Moves, HandleSetPosition, ::testing::ValuesIn(kMoves), RowName());

class HandleDataProvider : public LibraryTest
{
};

TEST_F(HandleDataProvider, TargetThatNoNumberHoldsIsRefused)
{
    auto const provider = MakeProvider(IO::kStreamReadWrite);
    ASSERT_EQ(provider->SetPosition(100, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->SetPosition(std::numeric_limits<int64>::max(), IDataProvider::kFromCurrent), 13);
    EXPECT_EQ(log.Take().size(), 1u);
    EXPECT_EQ(provider->GetPosition(), 100);
}

TEST_F(HandleDataProvider, IsEmptyAtFirst)
{
    auto const provider = MakeProvider(IO::kStreamReadWrite);
    EXPECT_EQ(provider->Size(), 0);
    EXPECT_EQ(provider->GetPosition(), 0);
    EXPECT_TRUE(provider->AtEnd());
}

struct ReadRow
{
    char const* name;
    int64 position;
    int32 wanted;
    OperationId result;
    int32 count;
    char const* bytes;
    int64 after;
};

class HandleRead : public LibraryTestWith<ReadRow>
{
};

TEST_P(HandleRead, TellsWhenItIsCutShort)
{
    ReadRow const& row = GetParam();
    auto const provider = MakeProvider(IO::kStreamReadWrite);
    ASSERT_EQ(provider->Write("0123456789", 10), 0);
    ASSERT_EQ(provider->SetPosition(row.position, IDataProvider::kFromStart), 0);
    char buffer[17] = "****************";
    int32 count = row.wanted;
    EXPECT_EQ(provider->Read(buffer, count), row.result);
    EXPECT_EQ(count, row.count);
    EXPECT_STREQ(buffer, row.bytes);
    EXPECT_EQ(provider->GetPosition(), row.after);
}

ReadRow const kReads[] = {
    {"FromTheStart", 0, 4, 0, 4, "0123************", 4},
    {"Everything", 0, 10, 0, 10, "0123456789******", 10},
    {"MoreThanThereIs", 0, 20, 28, 10, "0123456789******", 10},
    {"OneMoreThanThereIs", 6, 5, 28, 4, "6789************", 10},
    {"JustWhatIsLeft", 6, 4, 0, 4, "6789************", 10},
    {"AtTheEnd", 10, 1, 28, 0, "****************", 10},
    {"NothingAtTheEnd", 10, 0, 0, 0, "****************", 10},
    {"PastTheEnd", 11, 1, 28, 0, "****************", 11},
    {"AtTheEndOfTheBlock", 524288, 16, 28, 0, "****************", 524288},
    {"NothingPastTheEnd", 11, 0, 0, 0, "****************", 11},
    {"MostBytes", 9, 2147483647, 28, 1, "9***************", 10},
};
INSTANTIATE_TEST_SUITE_P(Reads, HandleRead, ::testing::ValuesIn(kReads), RowName());

TEST_F(HandleDataProvider, BufferIsNotLookedAtWhenThereIsNothingToRead)
{
    auto const provider = MakeProvider(IO::kStreamReadWrite);
    int32 count = 4;
    EXPECT_EQ(provider->Read(nullptr, count), 28);
    EXPECT_EQ(count, 0);
}

TEST_F(HandleDataProvider, OverwritesAndExtends)
{
    auto const provider = MakeMemory(TESTS::Bytes{'0', '1', '2', '3', '4'});
    ASSERT_EQ(provider->SetPosition(1, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->Write("ab", 2), 0);
    EXPECT_EQ(provider->GetPosition(), 3);
    EXPECT_EQ(provider->Size(), 5);
    EXPECT_EQ(provider->Write("cdef", 4), 0);
    EXPECT_EQ(provider->GetPosition(), 7);
    EXPECT_EQ(provider->Size(), 7);
    EXPECT_EQ(BytesOf(*provider), (TESTS::Bytes{'0', 'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST_F(HandleDataProvider, OperationsAnswerForThemselves)
{
    IO::HandleDataProvider provider(IO::kStreamReadWrite);
    EXPECT_EQ(provider.Write("abc", 3), 0);
    int64 size = -1;
    EXPECT_EQ(provider.GetSize(size), 0);
    EXPECT_EQ(size, 3);
}
} // namespace
} // namespace KORVA
