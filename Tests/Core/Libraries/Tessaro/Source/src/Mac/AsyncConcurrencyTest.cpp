// Many operations at once, on one file and on many, from one thread and from several.
#include "Mac/AsyncFixture.h"

#include <gmock/gmock.h>

#include <barrier>

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

class AsyncConcurrency : public AsyncTest
{
protected:
    /// Runs `body(i)` on so many threads, which all begin at the same moment.
    template <class Body>
    static void OnThreads(std::size_t count, Body body)
    {
        std::barrier<> start(static_cast<std::ptrdiff_t>(count));
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < count; ++i)
            threads.emplace_back([&start, &body, i] {
                start.arrive_and_wait();
                body(i);
            });
        for (std::thread& thread : threads)
            thread.join();
    }
};

TEST_F(AsyncConcurrency, OneChannelForAFirstUseFromManyThreads)
{
    constexpr std::size_t kThreads = 8;
    for (int round = 0; round < 50; ++round)
    {
        fs::path const path = mDirectory.File("file", "0123456789");
        Provider const facade = Open(path, IO::kStreamReadWrite);
        IO::IAsyncReader& reader = ReaderOf(facade);
        IO::IAsyncWriter& writer = WriterOf(facade);
        OnThreads(kThreads, [&](std::size_t i) {
            char const written = "abcdefgh"[i];
            if (i % 2 == 0)
            {
                EXPECT_EQ(writer.WriteSync(static_cast<int64>(i), &written, 1), 0);
            }
            else
            {
                char read = 0;
                EXPECT_EQ(reader.ReadSync(static_cast<int64>(i), &read, 1), 0);
                EXPECT_EQ(read, "0123456789"[i]);
            }
        });
        EXPECT_EQ(DescriptorsOf(path).size(), 2u);
        EXPECT_EQ(Content(path), "a1c3e5g789");
        EXPECT_EQ(facade->GetPosition(), 0);
    }
}

TEST_F(AsyncConcurrency, FirstUseOfManyFilesAtOnce)
{
    constexpr std::size_t kThreads = 8;
    std::vector<fs::path> paths;
    std::vector<Provider> facades;
    for (std::size_t i = 0; i < kThreads; ++i)
    {
        paths.push_back(mDirectory.File("file" + std::to_string(i), Pattern(1000, i)));
        facades.push_back(Open(paths.back(), IO::kStreamReadWrite));
    }
    OnThreads(kThreads, [&](std::size_t i) {
        std::string read(1000, '\0');
        IAsyncTaskPtr task;
        EXPECT_EQ(ReaderOf(facades[i]).ReadAsync(0, read.data(), read.size(), task), 0);
        EXPECT_EQ(EndOf(task), 0);
        EXPECT_TRUE(read == Pattern(1000, i));
    });
    for (fs::path const& path : paths)
        EXPECT_EQ(DescriptorsOf(path).size(), 2u);
}

TEST_F(AsyncConcurrency, DozensOutstandingOnOneFile)
{
    constexpr std::size_t kPiece = 10'000;
    constexpr std::size_t kPieces = 96;
    std::string const before = Pattern(kPiece * kPieces);
    std::string const after = Pattern(kPiece * kPieces, 1);
    fs::path const path = mDirectory.File("file", before);
    Provider const facade = Open(path, IO::kStreamReadWrite);
    std::string read(before.size(), '\0');
    std::vector<IAsyncTaskPtr> tasks(kPieces);
    // Every other piece is read, the others are written.
    for (std::size_t i = 0; i < kPieces; ++i)
    {
        std::size_t const at = i * kPiece;
        auto const offset = static_cast<int64>(at);
        ASSERT_EQ(i % 2 == 0 ? ReaderOf(facade).ReadAsync(offset, &read[at], kPiece, tasks[i])
                             : WriterOf(facade).WriteAsync(offset, &after[at], kPiece, tasks[i]),
                  0);
    }
    // In another order than they began.
    for (std::size_t i = kPieces; i-- > 0;)
        EXPECT_EQ(EndOf(tasks[i]), 0);
    std::string const content = Content(path);
    for (std::size_t i = 0; i < kPieces; ++i)
    {
        std::size_t const at = i * kPiece;
        EXPECT_TRUE(content.substr(at, kPiece) == (i % 2 == 0 ? before : after).substr(at, kPiece)) << i;
        EXPECT_TRUE(i % 2 == 1 || read.substr(at, kPiece) == before.substr(at, kPiece)) << i;
    }
}

TEST_F(AsyncConcurrency, DozensOutstandingOnManyFiles)
{
    constexpr std::size_t kFiles = 40;
    constexpr std::size_t kSize = 5'000;
    std::vector<Provider> facades;
    std::vector<std::string> contents;
    std::vector<std::string> read(kFiles, std::string(kSize, '\0'));
    std::vector<IAsyncTaskPtr> tasks(2 * kFiles);
    for (std::size_t i = 0; i < kFiles; ++i)
    {
        contents.push_back(Pattern(kSize, i));
        facades.push_back(Open(mDirectory.File(std::to_string(i), contents[i]), IO::kStreamReadWrite));
    }
    for (std::size_t i = 0; i < kFiles; ++i)
    {
        ASSERT_EQ(ReaderOf(facades[i]).ReadAsync(0, read[i].data(), kSize, tasks[2 * i]), 0);
        ASSERT_EQ(WriterOf(facades[i]).WriteAsync(kSize, contents[i].data(), kSize, tasks[2 * i + 1]), 0);
    }
    for (IAsyncTaskPtr const& task : tasks)
        EXPECT_EQ(EndOf(task), 0);
    for (std::size_t i = 0; i < kFiles; ++i)
    {
        EXPECT_TRUE(read[i] == contents[i]) << i;
        EXPECT_TRUE(Content(mDirectory.Path() / std::to_string(i)) == contents[i] + contents[i]) << i;
    }
}

TEST_F(AsyncConcurrency, OperationsBeginWhileOthersEnd)
{
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kRounds = 200;
    constexpr std::size_t kPiece = 64;
    std::string const zeros(kThreads * kRounds * kPiece, '\0');
    std::string const expected = Pattern(zeros.size());
    fs::path const path = mDirectory.File("file", zeros);
    Provider const facade = Open(path, IO::kStreamReadWrite);
    OnThreads(kThreads, [&](std::size_t thread) {
        std::vector<IAsyncTaskPtr> tasks(24);
        for (std::size_t round = 0; round < kRounds; ++round)
        {
            IAsyncTaskPtr& task = tasks[round % tasks.size()];
            if (task)
            {
                EXPECT_EQ(EndOf(task), 0);
            }
            std::size_t const at = (round * kThreads + thread) * kPiece;
            EXPECT_EQ(WriterOf(facade).WriteAsync(static_cast<int64>(at), &expected[at], kPiece, task), 0);
        }
        for (IAsyncTaskPtr const& task : tasks)
            EXPECT_EQ(EndOf(task), 0);
    });
    EXPECT_TRUE(Content(path) == expected);
}

TEST_F(AsyncConcurrency, TheStreamIsUsedMeanwhile)
{
    std::string const content = Pattern(200'000);
    Provider const facade = Open(mDirectory.File("file", content), IO::kStreamRead);
    char byte = 0;
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, &byte, 1), 0);
    std::thread reader([&] {
        for (std::size_t at = 0; at < content.size(); at += 1000)
        {
            std::string read(1000, '\0');
            EXPECT_EQ(ReaderOf(facade).ReadSync(static_cast<int64>(at), read.data(), read.size()), 0);
            EXPECT_TRUE(content.compare(at, 1000, read) == 0);
        }
    });
    std::string all;
    for (;;)
    {
        char read[777];
        int32 count = sizeof read;
        if (facade->Read(read, count) != 0)
            break;
        all.append(read, static_cast<std::size_t>(count));
    }
    reader.join();
    EXPECT_TRUE(all == content);
}

TEST_F(AsyncConcurrency, WaitersOfManyTasks)
{
    constexpr std::size_t kThreads = 8;
    std::string const content = Pattern(kThreads * 10'000);
    Provider const facade = Open(mDirectory.File("file", content), IO::kStreamRead);
    std::string read(content.size(), '\0');
    std::vector<IAsyncTaskPtr> tasks(kThreads);
    for (std::size_t i = 0; i < kThreads; ++i)
        ASSERT_EQ(
            ReaderOf(facade).ReadAsync(static_cast<int64>(i * 10'000), &read[i * 10'000], 10'000, tasks[i]),
            0);
    OnThreads(kThreads, [&](std::size_t i) {
        EXPECT_EQ(EndOf(tasks[i]), 0);
        EXPECT_TRUE(content.compare(i * 10'000, 10'000, read, i * 10'000, 10'000) == 0);
    });
}
} // namespace
} // namespace KORVA
