// Facades and processes that end while operations are in flight.
#include "Mac/AsyncFixture.h"
#include "Platform/Source/ChildProcess.h"
#include "Platform/Source/FreshProcess.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <gmock/gmock.h>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using TESTS::AsyncTest;
using TESTS::Content;
using TESTS::DescriptorsOf;
using TESTS::Pattern;
namespace fs = std::filesystem;

class AsyncLifetime : public AsyncTest
{
protected:
    static constexpr std::size_t kPiece = 256 * 1024;
    static constexpr std::size_t kPieces = 32;

    /// Begins to write the bytes in pieces.
    static std::vector<IAsyncTaskPtr> WritePieces(Provider const& facade, std::string const& bytes)
    {
        std::vector<IAsyncTaskPtr> tasks;
        for (std::size_t at = 0; at < bytes.size(); at += kPiece)
            EXPECT_EQ(
                WriterOf(facade).WriteAsync(static_cast<int64>(at), &bytes[at], kPiece, tasks.emplace_back()),
                0);
        return tasks;
    }
};

TEST_F(AsyncLifetime, WritesOutliveTheFacade)
{
    std::string const bytes = Pattern(kPieces * kPiece);
    fs::path const path = mDirectory.File("file", "");
    Provider facade = Open(path, IO::kStreamReadWrite);
    std::vector<IAsyncTaskPtr> const tasks = WritePieces(facade, bytes);
    facade.Reset();
    for (IAsyncTaskPtr const& task : tasks)
        EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(TryToOpen(path, IO::kStreamReadWrite), 0);
    EXPECT_TRUE(Content(path) == bytes);
}

TEST_F(AsyncLifetime, ReadsOutliveTheFacade)
{
    std::string const bytes = Pattern(kPieces * kPiece);
    fs::path const path = mDirectory.File("file", bytes);
    Provider facade = Open(path, IO::kStreamReadWrite);
    std::string read(bytes.size(), '\0');
    std::vector<IAsyncTaskPtr> tasks;
    for (std::size_t at = 0; at < bytes.size(); at += kPiece)
        ASSERT_EQ(ReaderOf(facade).ReadAsync(static_cast<int64>(at), &read[at], kPiece, tasks.emplace_back()),
                  0);
    facade.Reset();
    for (IAsyncTaskPtr const& task : tasks)
        EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(TryToOpen(path, IO::kStreamReadWrite), 0);
    EXPECT_TRUE(read == bytes);
}

TEST_F(AsyncLifetime, FailingOperationsOutliveTheFacade)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider facade = Open(path, IO::kStreamMode3);
    std::vector<IAsyncTaskPtr> tasks(50);
    for (IAsyncTaskPtr& task : tasks)
        ASSERT_EQ(WriterOf(facade).WriteAsync(0, "a", 1, task), 0);
    facade.Reset();
    for (IAsyncTaskPtr const& task : tasks)
        EXPECT_EQ(EndOf(task), 2);
    EXPECT_THAT(log.Take(), ::testing::AllOf(::testing::SizeIs(50), ::testing::Each(WriteAsyncFailed(9))));
    EXPECT_EQ(Content(path), "0123456789");
}

/// Whoever sees the last operation's end finds no lock on a file whose facade is gone.
TEST_F(AsyncLifetime, LockGoesWithTheLastOperation)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    int const other = open(path.c_str(), O_RDWR);
    int locked = 0;
    for (int round = 0; round < 3000; ++round)
    {
        Provider facade = Open(path, IO::kStreamMode4);
        IAsyncTaskPtr task;
        ASSERT_EQ(WriterOf(facade).WriteAsync(0, "0", 1, task), 0);
        facade.Reset();
        // The quickest ways to see and to look.
        while (!task->IsCompleted())
        {}
        if (flock(other, LOCK_EX | LOCK_NB) != 0)
            ++locked;
        flock(other, LOCK_UN);
    }
    EXPECT_EQ(locked, 0);
    close(other);
}

TEST_F(AsyncLifetime, FileIsOpenedForItselfAtOnce)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    for (int round = 0; round < 300; ++round)
    {
        Provider facade = Open(path, IO::kStreamReadWrite);
        IAsyncTaskPtr tasks[3];
        char read[4] = {};
        ASSERT_EQ(WriterOf(facade).WriteAsync(0, "0", 1, tasks[0]), 0);
        ASSERT_EQ(ReaderOf(facade).ReadAsync(2, read, 4, tasks[1]), 0);
        ASSERT_EQ(WriterOf(facade).WriteAsync(9, "9", 1, tasks[2]), 0);
        bool const early = round % 2 == 0;
        if (early)
            facade.Reset();
        for (IAsyncTaskPtr const& task : tasks)
            EXPECT_EQ(EndOf(task), 0);
        EXPECT_EQ(std::string(read, 4), "2345");
    }
    EXPECT_EQ(Content(path), "0123456789");
}

TEST_F(AsyncLifetime, TaskOutlivesTheFacade)
{
    Provider facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    char read[4] = {};
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(3, read, 4, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    facade.Reset();
    EXPECT_TRUE(task->IsCompleted());
    EXPECT_EQ(task->GetStatus(), 0);
    EXPECT_EQ(std::string(read, 4), "3456");
}

TEST_F(AsyncLifetime, PendingTaskOfNothingOutlivesTheFacade)
{
    Provider facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    IAsyncTaskPtr task;
    EXPECT_EQ(WriterOf(facade).WriteAsync(0, "a", 0, task), 11);
    EXPECT_EQ(log.Take().size(), 1u);
    facade.Reset();
    ASSERT_TRUE(task);
    EXPECT_FALSE(task->IsCompleted());
    EXPECT_EQ(task->GetStatus(), 0);
}

TEST_F(AsyncLifetime, ManyFacadesOneAfterTheOther)
{
    fs::path const path = mDirectory.File("file", std::string(100, ' '));
    std::string const bytes = Pattern(100);
    std::vector<IAsyncTaskPtr> tasks;
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        Provider const facade = Open(path, IO::kStreamMode4);
        ASSERT_EQ(WriterOf(facade).WriteAsync(static_cast<int64>(i), &bytes[i], 1, tasks.emplace_back()), 0);
    }
    for (IAsyncTaskPtr const& task : tasks)
        EXPECT_EQ(EndOf(task), 0);
    EXPECT_TRUE(Content(path) == bytes);
    EXPECT_TRUE(TESTS::ComesTrue([&] { return DescriptorsOf(path).empty(); }));
}

TEST_F(AsyncLifetime, ProcessEndsAfterItsOperations)
{
    std::string const bytes = Pattern(kPieces * kPiece);
    mDirectory.File("file", "");
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
        Provider const facade = Open(directory / "file", IO::kStreamReadWrite);
        // Kept beyond the end of all that ends by itself.
        static auto* const sTasks = new std::vector<IAsyncTaskPtr>;
        *sTasks = WritePieces(facade, bytes);
        std::error_code ignored;
        fs::remove_all(mDirectory.Path(), ignored);
        std::exit(HasFailure() ? 1 : 0);
    });
    EXPECT_TRUE(Content(mDirectory.Path() / "file") == bytes);
}

/// A copy of a process has none of its threads, and must not wait for them.
TEST_F(AsyncLifetime, CopiesOfTheProcessEnd)
{
    if (TESSIO_TEST_SANITIZED)
        GTEST_SKIP() << "checks at run time don't survive a fork in the middle of other threads' allocations";
    mDirectory.File("file", Pattern(1000));
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
        Provider const facade = Open(directory / "file", IO::kStreamReadWrite);
        char read[1000] = {};
        std::vector<IAsyncTaskPtr> tasks(8);
        auto const begin = [&] {
            for (std::size_t i = 0; i < tasks.size(); ++i)
                EXPECT_EQ(ReaderOf(facade).ReadAsync(static_cast<int64>(i), &read[i * 100], 100, tasks[i]),
                          0);
        };
        auto const end = [&] {
            for (IAsyncTaskPtr const& task : tasks)
                EXPECT_EQ(EndOf(task), 0);
        };
        // One that hangs is to leave nothing behind.
        auto const leave = []() -> int {
            alarm(TESTS::FRESH_PROCESS::kMostSeconds / 2);
            std::exit(7);
        };
        auto const copy = [&leave] { return TESTS::ChildProcess(leave).Wait(); };
        begin();
        end();
        // The threads sleep by and by; then in the middle of their work.
        EXPECT_EQ(copy(), 7);
        for (int round = 0; round < 20; ++round)
        {
            begin();
            EXPECT_EQ(copy(), 7);
            end();
        }
    });
}
} // namespace
} // namespace KORVA
