// The first use of a file's reader and writer.
#include "Mac/AsyncFixture.h"
#include "Platform/Source/ResourceLimit.h"

#include <gmock/gmock.h>

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

} // namespace
} // namespace KORVA
