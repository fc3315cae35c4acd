// The first use of a file's reader and writer.
#include "Mac/AsyncFixture.h"
#include "Mac/MFileDataProvider.h"
#include "Platform/Posix/ResourceLimit.h"

#include <gmock/gmock.h>

#include <optional>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using IO::IDataProvider;
using ::testing::ElementsAre;
using TESTS::AsyncTest;
using TESTS::AsyncTestWith;
using TESTS::Content;
using TESTS::DescriptorsOf;
using TESTS::NoNewDescriptors;
using TESTS::Pattern;
using TESTS::RowName;
namespace fs = std::filesystem;

/// Reader and writer by what they do to a file of some bytes, with whatever result.
struct CallRow
{
    char const* name;
    bool writes;
    bool waits;
};

class AsyncCall : public AsyncTestWith<CallRow>
{
protected:
    void SetUp() override
    {
        Rehearse();
        CallToTheEnd(Open(mDirectory.Path() / "rehearsal", IO::kStreamReadWrite));
    }

    /// Through the aggregate of the row.
    ErrCode Call(Provider const& facade, IAsyncTaskPtr& task)
    {
        CallRow const& row = GetParam();
        if (row.writes)
            return row.waits ? WriterOf(facade).WriteSync(2, "ab", 2)
                             : WriterOf(facade).WriteAsync(2, "ab", 2, task);
        return row.waits ? ReaderOf(facade).ReadSync(2, mRead, 2)
                         : ReaderOf(facade).ReadAsync(2, mRead, 2, task);
    }
    void CallToTheEnd(Provider const& facade)
    {
        IAsyncTaskPtr task;
        EXPECT_EQ(Call(facade, task), 0);
        ASSERT_EQ(static_cast<bool>(task), !GetParam().waits);
        if (task)
        {
            EXPECT_EQ(EndOf(task), 0);
        }
    }

    char mRead[2] = {};
};

CallRow const kCalls[] = {
    {"ReadAsync", false, false},
    {"ReadSync", false, true},
    {"WriteAsync", true, false},
    {"WriteSync", true, true},
};
INSTANTIATE_TEST_SUITE_P(Operations, AsyncCall, ::testing::ValuesIn(kCalls), RowName());

TEST_P(AsyncCall, ResetsThePositionOnce)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
    CallToTheEnd(facade);
    EXPECT_EQ(facade->GetPosition(), 0);
    EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
    CallToTheEnd(facade);
    EXPECT_EQ(facade->GetPosition(), 7);
    char read = 0;
    int32 count = 1;
    EXPECT_EQ(facade->Read(&read, count), 0);
    EXPECT_EQ(read, '7');
    CallToTheEnd(facade);
    EXPECT_EQ(facade->GetPosition(), 8);
}

TEST_P(AsyncCall, OpensTheChannelAtTheFirstUse)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider facade = Open(path, IO::kStreamReadWrite);
    EXPECT_EQ(DescriptorsOf(path).size(), 1u);
    CallToTheEnd(facade);
    EXPECT_EQ(DescriptorsOf(path).size(), 2u);
    CallToTheEnd(facade);
    EXPECT_EQ(DescriptorsOf(path).size(), 2u);
    facade.Reset();
    EXPECT_TRUE(TESTS::ComesTrue([&] { return DescriptorsOf(path).empty(); }));
}

TEST_P(AsyncCall, AnswersThreeUntilItCanBeEnabled)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    IAsyncTaskPtr task;
    {
        NoNewDescriptors const none;
        EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
        EXPECT_EQ(Call(facade, task), 3);
        EXPECT_EQ(facade->GetPosition(), 0);
        EXPECT_FALSE(task);
        // Each call tries again.
        EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
        EXPECT_EQ(Call(facade, task), 3);
        EXPECT_EQ(facade->GetPosition(), 0);
        EXPECT_FALSE(task);
    }
    TESTS::Logged const message = GetParam().writes ? CantEnableWriter() : CantEnableReader();
    EXPECT_THAT(log.Take(), ElementsAre(message, message));
    EXPECT_EQ(Content(path), "0123456789");
    EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
    CallToTheEnd(facade);
    EXPECT_EQ(facade->GetPosition(), 0);
    EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
    {
        NoNewDescriptors const none;
        CallToTheEnd(facade);
    }
    EXPECT_EQ(facade->GetPosition(), 7);
}

TEST_P(AsyncCall, KeepsTheTaskThatWasThereWhenItCantBeEnabled)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    Provider const other = Open(mDirectory.File("other", "0123456789"), IO::kStreamReadWrite);
    IAsyncTaskPtr task;
    EXPECT_EQ(WriterOf(other).WriteAsync(0, "a", 1, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    IO::IAsyncTask* const before = task.Get();
    {
        NoNewDescriptors const none;
        EXPECT_EQ(Call(facade, task), 3);
    }
    EXPECT_EQ(task.Get(), before);
    EXPECT_EQ(TESTS::ReferencesTo(*task), 1);
    EXPECT_EQ(log.Take().size(), 1u);
}

class AsyncEnabling : public AsyncTest
{
protected:
    void SetUp() override { Rehearse(); }
};

TEST_F(AsyncEnabling, SecondAggregateResetsThePositionToo)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    for (bool const readerFirst : {true, false})
    {
        Provider const facade = Open(path, IO::kStreamMode4);
        char read = 0;
        auto const use = [&](bool reader) {
            EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
            EXPECT_EQ(reader ? ReaderOf(facade).ReadSync(0, &read, 1) : WriterOf(facade).WriteSync(0, "0", 1),
                      0);
        };
        use(readerFirst);
        EXPECT_EQ(facade->GetPosition(), 0);
        use(!readerFirst);
        EXPECT_EQ(facade->GetPosition(), 0);
        EXPECT_EQ(DescriptorsOf(path).size(), 2u);
        use(readerFirst);
        EXPECT_EQ(facade->GetPosition(), 7);
        use(!readerFirst);
        EXPECT_EQ(facade->GetPosition(), 7);
    }
}

TEST_F(AsyncEnabling, FailureOfOneAggregateIsNotTheOthers)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    char read[2] = {};
    {
        NoNewDescriptors const none;
        EXPECT_EQ(ReaderOf(facade).ReadSync(0, read, 2), 3);
        EXPECT_EQ(WriterOf(facade).WriteSync(0, "ab", 2), 3);
    }
    EXPECT_THAT(log.Take(), ElementsAre(CantEnableReader(), CantEnableWriter()));
    EXPECT_EQ(WriterOf(facade).WriteSync(0, "ab", 2), 0);
    // The channel is there: the reader needs no descriptor of its own.
    NoNewDescriptors const none;
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, read, 2), 0);
    EXPECT_EQ(std::string(read, 2), "ab");
}

TEST_F(AsyncEnabling, EveryFileHasItsOwn)
{
    Provider const first = Open(mDirectory.File("first", "0123456789"), IO::kStreamReadWrite);
    Provider const second = Open(mDirectory.File("second", "abcdefghij"), IO::kStreamReadWrite);
    char read[2] = {};
    EXPECT_EQ(ReaderOf(first).ReadSync(4, read, 2), 0);
    EXPECT_EQ(std::string(read, 2), "45");
    EXPECT_EQ(second->SetPosition(7, IDataProvider::kFromStart), 0);
    EXPECT_EQ(ReaderOf(second).ReadSync(4, read, 2), 0);
    EXPECT_EQ(std::string(read, 2), "ef");
    EXPECT_EQ(second->GetPosition(), 0);
}

/// Where the stream and its descriptor stand when the reader is used for the first time.
struct PositionRow
{
    char const* name;
    int64 position;
    int32 count;
};

class AsyncOffsets : public AsyncTestWith<PositionRow>
{
protected:
    static constexpr std::size_t kSize = 100'000;

    /// The stream reads ahead, and its descriptor then stands somewhere else.
    static void MoveStream(Provider const& facade)
    {
        EXPECT_EQ(facade->SetPosition(GetParam().position, IDataProvider::kFromStart), 0);
        if (GetParam().count == 0)
            return;
        std::string read(static_cast<std::size_t>(GetParam().count), '\0');
        int32 count = GetParam().count;
        EXPECT_EQ(facade->Read(read.data(), count), 0);
    }
};

TEST_P(AsyncOffsets, CountFromTheStartOfTheFile)
{
    std::string content = Pattern(kSize);
    fs::path const path = mDirectory.File("file", content);
    Provider const facade = Open(path, IO::kStreamReadWrite);
    MoveStream(facade);
    char read[16] = {};
    EXPECT_EQ(ReaderOf(facade).ReadSync(5, read, 16), 0);
    EXPECT_EQ(std::string(read, 16), content.substr(5, 16));
    MoveStream(facade);
    EXPECT_EQ(WriterOf(facade).WriteSync(50'000, "abcd", 4), 0);
    MoveStream(facade);
    IAsyncTaskPtr task;
    ASSERT_EQ(WriterOf(facade).WriteAsync(3, "efgh", 4, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    ASSERT_EQ(ReaderOf(facade).ReadAsync(49'995, read, 16, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    content.replace(50'000, 4, "abcd");
    content.replace(3, 4, "efgh");
    EXPECT_EQ(std::string(read, 16), content.substr(49'995, 16));
    EXPECT_TRUE(Content(path) == content);
}

PositionRow const kPositions[] = {
    {"FreshStream", 0, 0},
    {"ReadAheadFromTheStart", 0, 10},
    {"ReadAheadFromTheMiddle", 60'000, 10},
    {"AtTheEndOfWhatWasReadAhead", 0, 4096},
    {"JustPutElsewhere", 12'345, 0},
    {"ReadToTheEnd", 99'000, 5'000},
    {"PutBehindTheEnd", 200'000, 0},
};
INSTANTIATE_TEST_SUITE_P(Positions, AsyncOffsets, ::testing::ValuesIn(kPositions), RowName());

TEST_F(AsyncEnabling, WhatTheStreamHasWrittenIsThere)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    EXPECT_EQ(facade->SetPosition(4, IDataProvider::kFromStart), 0);
    EXPECT_EQ(facade->Write("abc", 3), 0);
    char read[10] = {};
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, read, 10), 0);
    EXPECT_EQ(std::string(read, 10), "0123abc789");
}

/// The operations under the aggregates.
class AsyncProvider : public AsyncTest
{
protected:
    AsyncProvider() : mPath(mDirectory.File("file", "0123456789"))
    {
        mProvider.emplace(nullptr);
        EXPECT_EQ(mProvider->Init(*MakeURI(mPath), IO::kStreamReadWrite, mOuter.Get()), 0);
    }

    void SetUp() override { Rehearse(); }

    void ExpectNoChannel()
    {
        IAsyncTaskPtr task;
        EXPECT_EQ(mProvider->ReadAsync(0, mRead, 2, task), 35);
        EXPECT_THAT(log.Take(), ElementsAre(ReadAsyncWithoutChannel()));
        EXPECT_EQ(mProvider->ReadSync(0, mRead, 2), 35);
        EXPECT_THAT(log.Take(), ElementsAre(ReadSyncWithoutChannel()));
        EXPECT_EQ(mProvider->WriteAsync(0, "ab", 2, task), 35);
        EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncWithoutChannel()));
        EXPECT_EQ(mProvider->WriteSync(0, "ab", 2), 35);
        EXPECT_THAT(log.Take(), ElementsAre(WriteSyncWithoutChannel()));
        // Not even nothing can be written.
        EXPECT_EQ(mProvider->WriteAsync(0, "", 0, task), 35);
        EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncWithoutChannel()));
        EXPECT_EQ(mProvider->WriteSync(0, "", 0), 35);
        EXPECT_THAT(log.Take(), ElementsAre(WriteSyncWithoutChannel()));
        EXPECT_FALSE(task);
        EXPECT_EQ(Content(mPath), "0123456789");
    }

    char mRead[2] = {};
    fs::path mPath;
    Provider mOuter = MakeFacade();
    std::optional<IO::FileDataProvider> mProvider;
};

TEST_F(AsyncProvider, NeedsToBeEnabled) { ExpectNoChannel(); }

TEST_F(AsyncProvider, AnswersThirtyFiveWhenNoChannelIsCreated)
{
    {
        NoNewDescriptors const none;
        EXPECT_EQ(mProvider->SetPosition(7, IDataProvider::kFromStart), 0);
        EXPECT_EQ(mProvider->EnableAsync(), 35);
        EXPECT_EQ(mProvider->GetPosition(), 0);
    }
    EXPECT_EQ(log.Take(), TESTS::kNothing);
    ExpectNoChannel();
    EXPECT_EQ(mProvider->EnableAsync(), 0);
    EXPECT_EQ(mProvider->WriteSync(0, "ab", 2), 0);
    EXPECT_EQ(mProvider->ReadSync(1, mRead, 2), 0);
    EXPECT_EQ(std::string(mRead, 2), "b2");
}

TEST_F(AsyncProvider, EnablingAgainOnlyResetsThePosition)
{
    EXPECT_EQ(mProvider->EnableAsync(), 0);
    std::vector<int> const descriptors = DescriptorsOf(mPath);
    EXPECT_EQ(mProvider->SetPosition(7, IDataProvider::kFromStart), 0);
    EXPECT_EQ(mProvider->EnableAsync(), 0);
    EXPECT_EQ(mProvider->GetPosition(), 0);
    EXPECT_EQ(DescriptorsOf(mPath), descriptors);
    NoNewDescriptors const none;
    EXPECT_EQ(mProvider->EnableAsync(), 0);
}
} // namespace
} // namespace KORVA
