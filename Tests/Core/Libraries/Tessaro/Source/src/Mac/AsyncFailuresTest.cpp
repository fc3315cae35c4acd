// Writes that the system refuses.
#include "Mac/AsyncFixture.h"
#include "Platform/Source/FreshProcess.h"
#include "Platform/Source/ResourceLimit.h"

#include <gmock/gmock.h>

#include <csignal>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::SizeIs;
using TESTS::AsyncTest;
using TESTS::AsyncTestWith;
using TESTS::Content;
using TESTS::Pattern;
using TESTS::ResourceLimit;
using TESTS::RowName;
namespace fs = std::filesystem;

constexpr int kBadDescriptor = 9;
constexpr int kFileTooLarge = 27;
constexpr int kNoSpace = 28;

class AsyncRefused : public AsyncTest
{
protected:
    /// Both forms fail alike, as often as they are tried.
    void ExpectFailures(Provider const& facade, int error)
    {
        for (int again = 0; again < 3; ++again)
        {
            IAsyncTaskPtr task;
            EXPECT_EQ(WriterOf(facade).WriteAsync(0, "abcd", 4, task), 0);
            EXPECT_EQ(EndOf(task), 2);
            EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncFailed(error)));
            EXPECT_EQ(WriterOf(facade).WriteSync(0, "abcd", 4), 0);
            EXPECT_THAT(log.Take(), ElementsAre(WriteSyncFailed(error)));
        }
    }
};

TEST_F(AsyncRefused, ModeThreeOpensForReading)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamMode3);
    ExpectFailures(facade, kBadDescriptor);
    EXPECT_EQ(Content(path), "0123456789");
    char read[4] = {};
    int32 count = 4;
    EXPECT_EQ(facade->Read(read, count), 0);
    EXPECT_EQ(std::string(read, 4), "0123");
}

TEST_F(AsyncRefused, ReadOnlyDescriptorIsNotTheFiles)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const readOnly = Open(path, IO::kStreamMode3);
    Provider const both = Open(path, IO::kStreamReadWrite);
    ExpectFailures(readOnly, kBadDescriptor);
    EXPECT_EQ(WriterOf(both).WriteSync(2, "ab", 2), 0);
    IAsyncTaskPtr task;
    ASSERT_EQ(WriterOf(both).WriteAsync(4, "cd", 2, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(Content(path), "01abcd6789");
}

TEST_F(AsyncRefused, FullDevice)
{
    Provider const facade = Open("/dev/full", IO::kStreamMode4);
    ExpectFailures(facade, kNoSpace);
    // It gives nul characters, and still does.
    char read[2] = {'#', '#'};
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, read, 2), 0);
    EXPECT_EQ(std::string(read, 2), std::string(2, '\0'));
}

struct LimitRow
{
    char const* name;
    /// Of a file whose first 4096 bytes are there and which may not grow beyond that.
    int64 offset;
    std::size_t length;
    /// Of the bytes to write.
    std::size_t written;
};

class AsyncSizeLimit : public AsyncTestWith<LimitRow>
{
protected:
    static constexpr std::size_t kLimit = 4096;

    /// With `write(writer, bytes)`, in a process that the limit's signal would end.
    template <class Write>
    void ExpectRefused(Write write)
    {
        mDirectory.File("file", Pattern(kLimit));
        TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
            std::signal(SIGXFSZ, SIG_DFL);
            fs::path const path = directory / "file";
            Provider const facade = Open(path, IO::kStreamReadWrite);
            std::string const bytes = Pattern(GetParam().length, 1);
            {
                ResourceLimit const limit(RLIMIT_FSIZE, kLimit);
                for (int again = 0; again < 3; ++again)
                    write(WriterOf(facade), bytes);
            }
            std::string expected = Pattern(kLimit);
            expected.replace(std::min(kLimit, static_cast<std::size_t>(GetParam().offset)),
                             GetParam().written, bytes, 0, GetParam().written);
            EXPECT_TRUE(Content(path) == expected);
            // Nothing stays behind that would end the process later.
            sigset_t pending;
            EXPECT_EQ(sigpending(&pending), 0);
            EXPECT_EQ(sigismember(&pending, SIGXFSZ), 0);
            sigset_t blocked;
            EXPECT_EQ(pthread_sigmask(SIG_BLOCK, nullptr, &blocked), 0);
            EXPECT_EQ(sigismember(&blocked, SIGXFSZ), 0);
            EXPECT_EQ(WriterOf(facade).WriteSync(static_cast<int64>(kLimit), "abcd", 4), 0);
            EXPECT_EQ(Content(path).substr(kLimit), "abcd");
        });
    }
};

TEST_P(AsyncSizeLimit, RefusesWritingAtOnce)
{
    ExpectRefused([&](IO::IAsyncWriter& writer, std::string const& bytes) {
        EXPECT_EQ(writer.WriteSync(GetParam().offset, bytes.data(), bytes.size()), 0);
        EXPECT_THAT(log.Take(), ElementsAre(WriteSyncFailed(kFileTooLarge)));
    });
}

TEST_P(AsyncSizeLimit, RefusesWritingLater)
{
    ExpectRefused([&](IO::IAsyncWriter& writer, std::string const& bytes) {
        IAsyncTaskPtr task;
        EXPECT_EQ(writer.WriteAsync(GetParam().offset, bytes.data(), bytes.size(), task), 0);
        EXPECT_EQ(EndOf(task), 2);
        EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncFailed(kFileTooLarge)));
    });
}

LimitRow const kLimits[] = {
    {"AtTheLimit", 4096, 1, 0},
    {"BehindTheLimit", 10'000, 500, 0},
    {"OverTheLimit", 4000, 1000, 96},
    {"FarOverTheLimit", 1, 3 << 20, 4095},
};
INSTANTIATE_TEST_SUITE_P(Writes, AsyncSizeLimit, ::testing::ValuesIn(kLimits), RowName());

TEST_F(AsyncRefused, SizeLimitLeavesTheSignalToWhoeverBlocksIt)
{
    mDirectory.File("file", "");
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
        sigset_t limit;
        sigemptyset(&limit);
        sigaddset(&limit, SIGXFSZ);
        EXPECT_EQ(pthread_sigmask(SIG_BLOCK, &limit, nullptr), 0);
        Provider const facade = Open(directory / "file", IO::kStreamReadWrite);
        ResourceLimit const none(RLIMIT_FSIZE, 0);
        EXPECT_EQ(WriterOf(facade).WriteSync(0, "a", 1), 0);
        EXPECT_THAT(log.Take(), ElementsAre(WriteSyncFailed(kFileTooLarge)));
        sigset_t blocked;
        EXPECT_EQ(pthread_sigmask(SIG_BLOCK, nullptr, &blocked), 0);
        EXPECT_EQ(sigismember(&blocked, SIGXFSZ), 1);
    });
}

TEST_F(AsyncRefused, FailingFilesLeaveTheOthersAlone)
{
    constexpr std::size_t kWrites = 100;
    constexpr std::size_t kFiles = 3;
    Provider const full = Open("/dev/full", IO::kStreamMode4);
    fs::path const guarded = mDirectory.File("guarded", "0123456789");
    Provider const readOnly = Open(guarded, IO::kStreamMode3);
    std::vector<Provider> sound;
    for (std::size_t i = 0; i < kFiles; ++i)
        sound.push_back(Open(mDirectory.File("file" + std::to_string(i), ""), IO::kStreamReadWrite));
    std::string const bytes = Pattern(kWrites);
    std::vector<IAsyncTaskPtr> failing;
    std::vector<IAsyncTaskPtr> succeeding;
    for (std::size_t i = 0; i < kWrites; ++i)
    {
        auto const write = [&](Provider const& facade, std::vector<IAsyncTaskPtr>& tasks) {
            EXPECT_EQ(WriterOf(facade).WriteAsync(static_cast<int64>(i), &bytes[i], 1, tasks.emplace_back()),
                      0);
        };
        write(full, failing);
        write(sound[0], succeeding);
        write(readOnly, failing);
        write(sound[1], succeeding);
        write(sound[2], succeeding);
    }
    for (IAsyncTaskPtr const& task : failing)
        EXPECT_EQ(EndOf(task), 2);
    for (IAsyncTaskPtr const& task : succeeding)
        EXPECT_EQ(EndOf(task), 0);
    for (std::size_t i = 0; i < kFiles; ++i)
        EXPECT_TRUE(Content(mDirectory.Path() / ("file" + std::to_string(i))) == bytes);
    EXPECT_EQ(Content(guarded), "0123456789");
    std::vector<TESTS::Logged> const messages = log.Take();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), WriteAsyncFailed(kNoSpace)), 100);
    EXPECT_EQ(std::count(messages.begin(), messages.end(), WriteAsyncFailed(kBadDescriptor)), 100);
    EXPECT_THAT(messages, SizeIs(200));
}
} // namespace
} // namespace KORVA
