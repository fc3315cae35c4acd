// A task from its beginning to its end.
#include "Mac/MAsyncTask.h"

#include "Mac/AsyncFixture.h"
#include "Platform/Source/FreshProcess.h"

#include <gmock/gmock.h>

#include <atomic>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using ::testing::Each;
using ::testing::ElementsAre;
using TESTS::AsyncTest;
using TESTS::ComesTrue;
using TESTS::Content;
using TESTS::Logged;
using TESTS::ReferencesTo;
using TESTS::RowName;
namespace fs = std::filesystem;

Logged const kCancelled{"Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider",
                        "virtual ErrCode KORVA::IO::MAsyncTask::CancelTask()", 222,
                        "Currently unimplemented."};

using TaskPtr = TInterfacePtr<IO::MAsyncTask>;

/// Of no channel: no operation ends it.
TaskPtr MakeTask()
{
    TaskPtr task;
    task.Adopt(new IO::MAsyncTask({}));
    return task;
}

class AsyncTask : public AsyncTest
{
};

TEST_F(AsyncTask, IsPendingAtFirst)
{
    TaskPtr const task = MakeTask();
    EXPECT_EQ(ReferencesTo(*task), 1);
    EXPECT_EQ(task->GetStatus(), 0);
    EXPECT_FALSE(task->IsCompleted());
    EXPECT_TRUE(task->GetAggregates().empty());
}

struct StatusRow
{
    char const* name;
    ErrCode status;
};

class AsyncTaskEnd : public TESTS::AsyncTestWith<StatusRow>
{
};

TEST_P(AsyncTaskEnd, IsKept)
{
    TaskPtr const task = MakeTask();
    task->Done()->Finish(GetParam().status);
    EXPECT_TRUE(task->IsCompleted());
    EXPECT_EQ(task->GetStatus(), GetParam().status);
    EXPECT_EQ(task->WaitForCompletion(), 0);
    EXPECT_TRUE(task->IsCompleted());
    EXPECT_EQ(task->GetStatus(), GetParam().status);
}

StatusRow const kStatuses[] = {{"Success", 0}, {"WriteFailed", 2}, {"ReadFailed", 3}};
INSTANTIATE_TEST_SUITE_P(Statuses, AsyncTaskEnd, ::testing::ValuesIn(kStatuses), RowName());

TEST_F(AsyncTask, WaitIsThroughAfterTheEndOnly)
{
    for (int round = 0; round < 100; ++round)
    {
        TaskPtr const task = MakeTask();
        std::atomic<bool> ending{false};
        std::thread waiter([&] {
            EXPECT_EQ(task->WaitForCompletion(), 0);
            EXPECT_TRUE(ending);
            EXPECT_TRUE(task->IsCompleted());
            EXPECT_EQ(task->GetStatus(), 3);
        });
        std::this_thread::yield();
        ending = true;
        task->Done()->Finish(3);
        waiter.join();
    }
}

TEST_F(AsyncTask, SecondWaitNeverReturns)
{
    mDirectory.File("file", "0123456789");
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
        Provider const facade = Open(directory / "file", IO::kStreamRead);
        char byte = 0;
        IAsyncTaskPtr task;
        EXPECT_EQ(ReaderOf(facade).ReadAsync(0, &byte, 1, task), 0);
        EXPECT_EQ(EndOf(task), 0);
        TESTS::ExpectEndless(
            mDirectory, [&] { task->WaitForCompletion(); }, [] { return true; });
    });
}

TEST_F(AsyncTask, OneOfTwoWaitsReturns)
{
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const&) {
        TaskPtr const task = MakeTask();
        std::atomic<int> through{0};
        auto const wait = [&] {
            EXPECT_EQ(task->WaitForCompletion(), 0);
            if (++through == 2)
                TESTS::FRESH_PROCESS::Leave(mDirectory, 1);
        };
        // Nobody joins them: which of the two returns is not said.
        std::thread(wait).detach();
        std::thread(wait).detach();
        task->Done()->Finish(0);
        auto const waitForBoth = [&through] {
            while (through < 2)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        };
        TESTS::ExpectEndless(mDirectory, waitForBoth, [&] { return through == 1; });
    });
}

TEST_F(AsyncTask, CancellingAPendingOneChangesNothing)
{
    TaskPtr const task = MakeTask();
    EXPECT_EQ(task->CancelTask(), 0);
    EXPECT_THAT(log.Take(), ElementsAre(kCancelled));
    EXPECT_FALSE(task->IsCompleted());
    EXPECT_EQ(task->GetStatus(), 0);
    task->Done()->Finish(2);
    EXPECT_EQ(task->WaitForCompletion(), 0);
    EXPECT_EQ(task->GetStatus(), 2);
    EXPECT_EQ(task->CancelTask(), 0);
    EXPECT_THAT(log.Take(), ElementsAre(kCancelled));
    EXPECT_EQ(task->GetStatus(), 2);
}

TEST_F(AsyncTask, CancelledOperationsStillComplete)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    char read[4] = {};
    IAsyncTaskPtr reading;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(6, read, 4, reading), 0);
    EXPECT_EQ(reading->CancelTask(), 0);
    IAsyncTaskPtr writing;
    ASSERT_EQ(WriterOf(facade).WriteAsync(1, "abc", 3, writing), 0);
    EXPECT_EQ(writing->CancelTask(), 0);
    EXPECT_EQ(EndOf(reading), 0);
    EXPECT_EQ(EndOf(writing), 0);
    EXPECT_EQ(std::string(read, 4), "6789");
    EXPECT_EQ(Content(path), "0abc456789");
    EXPECT_THAT(log.Take(), ElementsAre(kCancelled, kCancelled));
}

TEST_F(AsyncTask, BelongsToTheCallerAlone)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    char read[10] = {};
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(0, read, 10, task), 0);
    EXPECT_EQ(ReferencesTo(*task), 1);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(ReferencesTo(*task), 1);
    ASSERT_EQ(WriterOf(facade).WriteAsync(0, "a", 1, task), 0);
    EXPECT_EQ(ReferencesTo(*task), 1);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(ReferencesTo(*task), 1);
}

TEST_F(AsyncTask, TakesThePlaceOfTheOneBefore)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    char read[10] = {};
    char more = 0;
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(0, read, 10, task), 0);
    IAsyncTaskPtr const first = task;
    ASSERT_EQ(WriterOf(facade).WriteAsync(0, "a", 1, task), 0);
    EXPECT_EQ(ReferencesTo(*first), 1);
    IAsyncTaskPtr const second = task;
    EXPECT_NE(second.Get(), first.Get());
    ASSERT_EQ(ReaderOf(facade).ReadAsync(5, &more, 1, task), 0);
    EXPECT_EQ(ReferencesTo(*second), 1);
    EXPECT_EQ(EndOf(second), 0);
    EXPECT_EQ(EndOf(first), 0);
    EXPECT_EQ(EndOf(task), 0);
}

TEST_F(AsyncTask, IsPolled)
{
    std::string const content = TESTS::Pattern(100'000);
    Provider const facade = Open(mDirectory.File("file", content), IO::kStreamRead);
    for (int round = 0; round < 100; ++round)
    {
        std::string read(content.size(), '\0');
        IAsyncTaskPtr task;
        ASSERT_EQ(ReaderOf(facade).ReadAsync(0, read.data(), read.size(), task), 0);
        while (!task->IsCompleted())
            std::this_thread::yield();
        EXPECT_EQ(task->GetStatus(), 0);
        EXPECT_TRUE(read == content);
    }
}

TEST_F(AsyncTask, IsWaitedForOnAnotherThread)
{
    std::string const content = TESTS::Pattern(100'000);
    fs::path const path = mDirectory.File("file", std::string(content.size(), ' '));
    Provider const facade = Open(path, IO::kStreamReadWrite);
    IAsyncTaskPtr writing;
    ASSERT_EQ(WriterOf(facade).WriteAsync(0, content.data(), content.size(), writing), 0);
    std::thread([&writing, &path, &content] {
        EXPECT_EQ(EndOf(writing), 0);
        EXPECT_TRUE(Content(path) == content);
    }).join();
    std::string read(content.size(), '\0');
    IAsyncTaskPtr reading;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(0, read.data(), read.size(), reading), 0);
    std::thread([&reading, &read, &content] {
        EXPECT_EQ(EndOf(reading), 0);
        EXPECT_TRUE(read == content);
    }).join();
}

TEST_F(AsyncTask, DroppedWritesGoOn)
{
    constexpr std::size_t kWrites = 64;
    // Not on the stack: nothing tells when the last operation lets go of it.
    static constexpr char kByte[] = "x";
    fs::path const path = mDirectory.File("file", std::string(kWrites, ' '));
    Provider const facade = Open(path, IO::kStreamReadWrite);
    for (std::size_t i = 0; i < kWrites; ++i)
    {
        IAsyncTaskPtr dropped;
        ASSERT_EQ(WriterOf(facade).WriteAsync(static_cast<int64>(i), kByte, 1, dropped), 0);
    }
    EXPECT_TRUE(ComesTrue([&] { return Content(path) == std::string(kWrites, 'x'); }));
}

TEST_F(AsyncTask, DroppedReadsGoOn)
{
    constexpr std::size_t kReads = 64;
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamRead);
    std::string read(kReads * 4, '\0');
    for (std::size_t i = 0; i < kReads; ++i)
    {
        IAsyncTaskPtr dropped;
        ASSERT_EQ(ReaderOf(facade).ReadAsync(7, &read[i * 4], 4, dropped), 0);
    }
    // They meet the end of the file, which they say.
    std::vector<Logged> messages;
    EXPECT_TRUE(ComesTrue([&] {
        for (Logged const& message : log.Take())
            messages.push_back(message);
        return messages.size() >= kReads;
    }));
    EXPECT_EQ(messages.size(), kReads);
    EXPECT_THAT(messages, Each(ReadAsyncFailed(0)));
    std::string expected;
    for (std::size_t i = 0; i < kReads; ++i)
        expected += std::string("789\0", 4);
    EXPECT_EQ(read, expected);
}

TEST_F(AsyncTask, MayBeDroppedWhileItEnds)
{
    for (int round = 0; round < 1000; ++round)
    {
        TaskPtr task = MakeTask();
        IO::MAsyncTask::CompletionRef const done = task->Done();
        std::thread ending([&done] { done->Finish(0); });
        task.Reset();
        ending.join();
    }
}
} // namespace
} // namespace KORVA
