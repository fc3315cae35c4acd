// From the making of a channel to its end, and the threads that serve it.
#include "Platform/Posix/ChannelFixture.h"
#include "Platform/Posix/FreshProcess.h"
#include "Platform/Posix/ResourceLimit.h"
#include "Support/RowName.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <future>

namespace KORVA::TESTS
{
namespace
{
using PLATFORM::Data;
using ::testing::ElementsAre;
namespace fs = std::filesystem;

constexpr int kFileTooLarge = 27;

std::vector<int> DescriptorsTo(fs::path const& path)
{
    std::vector<int> descriptors;
    for (auto const& entry : fs::directory_iterator("/proc/self/fd"))
    {
        std::error_code gone;
        if (fs::read_symlink(entry.path(), gone) == path)
            descriptors.push_back(std::stoi(entry.path().filename()));
    }
    return descriptors;
}

class ChannelLifetime : public ChannelTest
{
};

TEST_F(ChannelLifetime, DescriptorIsItsOwn)
{
    auto channel = Open("0123456789", O_RDONLY);
    std::vector<int> const descriptors = DescriptorsTo(mPath);
    ASSERT_EQ(descriptors.size(), 1u);
    EXPECT_NE(fcntl(descriptors[0], F_GETFD) & FD_CLOEXEC, 0);
    channel = {};
    EXPECT_TRUE(DescriptorsTo(mPath).empty());
}

TEST_F(ChannelLifetime, NumbersOfClosedDescriptorsMayBeUsedAgain)
{
    fs::path const first = mDirectory.File("first", "0123456789");
    fs::path const second = mDirectory.File("second", "abcdefghij");
    int descriptor = open(first.c_str(), O_RDONLY);
    auto const channel = IOChannel::Create(descriptor, nullptr);
    close(descriptor);
    ASSERT_EQ(open(second.c_str(), O_RDONLY), descriptor);
    char read[10] = {};
    Recorder recorder;
    channel->Read(0, 10, read, recorder.Handler());
    EXPECT_THAT(recorder.Wait(), ElementsAre(Call{true, "0123456789", 0, read}));
    close(descriptor);
}

TEST_F(ChannelLifetime, ThereIsNoneWithoutADescriptor)
{
    mPath = mDirectory.File("file", "0123456789");
    int const descriptor = open(mPath.c_str(), O_RDONLY);
    Cleanups cleanups;
    {
        NoNewDescriptors const none;
        EXPECT_FALSE(IOChannel::Create(descriptor, cleanups.Handler()));
    }
    EXPECT_TRUE(IOChannel::Create(descriptor, nullptr));
    EXPECT_EQ(cleanups.Count(), 0);
    close(descriptor);
}

TEST_F(ChannelLifetime, CleanupTellsTheEnd)
{
    Cleanups cleanups;
    auto channel = Open("0123456789", O_RDONLY, 0, cleanups.Handler());
    EXPECT_EQ(cleanups.Count(), 0);
    auto second = channel;
    channel = {};
    EXPECT_EQ(cleanups.Count(), 0);
    second = {};
    EXPECT_EQ(cleanups.Wait(), 0);
}

TEST_F(ChannelLifetime, CleanupComesAfterTheOperations)
{
    constexpr int kReads = 40;
    std::atomic<int> ended{0};
    std::promise<int> endedAtCleanup;
    char read[kReads][10] = {};
    {
        auto const channel = Open("0123456789", O_RDONLY, 0,
                                  [&](int error) { endedAtCleanup.set_value(error == 0 ? ended.load() : -1); });
        for (auto& buffer : read)
            channel->Read(0, 10, buffer, [&ended, &buffer](bool done, Data const& data, int error) {
                EXPECT_TRUE(done);
                EXPECT_EQ(error, 0);
                EXPECT_EQ(data.Size(), 10u);
                EXPECT_EQ(std::string(buffer, 10), "0123456789");
                ++ended;
            });
    }
    EXPECT_EQ(endedAtCleanup.get_future().get(), kReads);
}

TEST_F(ChannelLifetime, DroppedCleanupHandlerIsNotCalled)
{
    {
        Cleanups cleanups;
        auto const channel = Open("0123456789", O_RDONLY, 0, cleanups.Handler());
        channel->DropCleanupHandler();
    }
    // It would have been called by now, or be called where it is no more.
    for (int round = 0; round < 200; ++round)
    {
        Cleanups cleanups;
        auto const channel = IOChannel::Create(-1, cleanups.Handler());
        if (round % 2 == 0)
            std::this_thread::yield();
        channel->DropCleanupHandler();
        EXPECT_LE(cleanups.Count(), 1);
    }
}

/// Whoever learns of the end may close and reopen the file at once, and find no lock of ours on it.
TEST_F(ChannelLifetime, DescriptorIsGoneBeforeTheLastOperationTellsItsEnd)
{
    for (bool const writes : {false, true})
    {
        auto channel = Open("0123456789", O_RDWR);
        std::promise<void> dropped;
        std::future<void> const isDropped = dropped.get_future();
        std::promise<std::size_t> open;
        char read[10] = {};
        auto const look = [&](bool done, Data const&, int) {
            EXPECT_TRUE(done);
            isDropped.wait();
            open.set_value(DescriptorsTo(mPath).size());
        };
        if (writes)
            channel->Write(0, Data("ab", 2), look);
        else
            channel->Read(0, 10, read, look);
        channel = {};
        dropped.set_value();
        EXPECT_EQ(open.get_future().get(), 0u);
    }
}

TEST_F(ChannelLifetime, HandlersRunOnOtherThreads)
{
    auto const channel = Open("0123456789", O_RDONLY);
    char read[10] = {};
    Recorder pool;
    channel->Read(0, 10, read, pool.Handler());
    EXPECT_EQ(pool.Wait().size(), 1u);
    EXPECT_NE(pool.Thread(), std::this_thread::get_id());
    Recorder here;
    channel->ReadHere(0, 10, read, here.Handler());
    EXPECT_EQ(here.Thread(), std::this_thread::get_id());
}

TEST_F(ChannelLifetime, HandlersMayBeginOperations)
{
    auto const channel = Open("0123456789", O_RDWR);
    char read[10] = {};
    std::promise<std::string> ended;
    channel->Write(0, Data("ab", 2), [&](bool done, Data const&, int error) {
        EXPECT_TRUE(done && error == 0);
        channel->Read(0, 4, read,
                      [&](bool, Data const& data, int) { ended.set_value(std::string(read, data.Size())); });
    });
    EXPECT_EQ(ended.get_future().get(), "ab23");
}

TEST_F(ChannelLifetime, LastReferenceMayBeDroppedByAHandler)
{
    std::promise<int> cleaned;
    auto channel = Open("0123456789", O_RDONLY, 0, [&](int error) { cleaned.set_value(error); });
    std::promise<void> begun;
    char byte = 0;
    channel->Read(0, 1, &byte, [&](bool, Data const&, int) {
        begun.get_future().wait();
        channel = {};
    });
    begun.set_value();
    EXPECT_EQ(cleaned.get_future().get(), 0);
    EXPECT_EQ(byte, '0');
}

/// Keeps all threads of the pool while it lives.
class BusyPool
{
public:
    explicit BusyPool(IOChannelRef const& channel)
    {
        // More than there are threads: what is begun later stays in the queue.
        for (int i = 0; i < kOperations; ++i)
            channel->Read(0, 0, nullptr, [this](bool, Data const&, int) {
                mRelease.wait();
                ++mEnded;
            });
    }
    BusyPool(BusyPool const&) = delete;
    BusyPool& operator=(BusyPool const&) = delete;
    ~BusyPool()
    {
        mReleased.set_value();
        while (mEnded < kOperations)
            std::this_thread::yield();
    }

private:
    static constexpr int kOperations = 64;

    std::promise<void> mReleased;
    std::shared_future<void> mRelease{mReleased.get_future()};
    std::atomic<int> mEnded{0};
};

TEST_F(ChannelLifetime, WaitingThreadServesWhatNobodyHasBegun)
{
    auto const other = Open("0123456789", O_RDONLY);
    auto const channel = Open("0123456789", O_RDWR);
    EXPECT_FALSE(channel->ServeOne());
    BusyPool const busy(other);
    char read[10] = {};
    Recorder reading;
    Recorder writing;
    channel->Read(2, 3, read, reading.Handler());
    channel->Write(0, Data("ab", 2), writing.Handler());
    EXPECT_TRUE(channel->ServeOne());
    EXPECT_THAT(reading.Wait(), ElementsAre(Call{true, "234", 0, read}));
    EXPECT_EQ(reading.Thread(), std::this_thread::get_id());
    EXPECT_TRUE(channel->ServeOne());
    EXPECT_THAT(writing.Wait(), ElementsAre(Call{true, "", 0}));
    EXPECT_EQ(writing.Thread(), std::this_thread::get_id());
    EXPECT_FALSE(channel->ServeOne());
    EXPECT_EQ(Content(mPath), "ab23456789");
}

TEST_F(ChannelLifetime, WaitingThreadLeavesLongOperationsToThePool)
{
    auto const other = Open("0123456789", O_RDONLY);
    auto const channel = Open("0123456789", O_RDONLY);
    std::string read(3 << 20, '\0');
    Recorder recorder;
    {
        BusyPool const busy(other);
        channel->Read(0, read.size(), read.data(), recorder.Handler());
        EXPECT_FALSE(channel->ServeOne());
    }
    EXPECT_EQ(recorder.Wait().size(), 2u);
    EXPECT_NE(recorder.Thread(), std::this_thread::get_id());
}

struct LimitRow
{
    char const* name;
    bool here;
    std::int64_t offset;
    std::size_t length;
    Calls calls;
};

class ChannelSizeLimit : public ChannelTestWith<LimitRow>
{
};

TEST_P(ChannelSizeLimit, TellsWhatIsLeftAndEndsNoProcess)
{
    ExpectInFreshProcess(mDirectory, [&](fs::path const&) {
        std::signal(SIGXFSZ, SIG_DFL);
        auto const channel = Open("0123", O_RDWR);
        std::string const bytes = std::string("abcdefgh").substr(0, GetParam().length);
        Calls calls;
        {
            ResourceLimit const limit(RLIMIT_FSIZE, 8);
            Recorder recorder;
            if (GetParam().here)
                channel->WriteHere(GetParam().offset, Data(bytes.data(), bytes.size()), recorder.Handler());
            else
                channel->Write(GetParam().offset, Data(bytes.data(), bytes.size()), recorder.Handler());
            calls = WithoutAddresses(recorder.Wait());
        }
        EXPECT_EQ(calls, GetParam().calls);
        sigset_t pending;
        EXPECT_EQ(sigpending(&pending), 0);
        EXPECT_EQ(sigismember(&pending, SIGXFSZ), 0);
    });
}

LimitRow const kLimits[] = {
    {"Fits", false, 4, 4, {{true, "", 0}}},
    {"FitsHere", true, 4, 4, {{true, "", 0}}},
    {"SomeOfIt", false, 4, 6, {{false, "ef", 0}, {true, "ef", kFileTooLarge}}},
    {"SomeOfItHere", true, 4, 6, {{false, "ef", 0}, {true, "ef", kFileTooLarge}}},
    {"NothingOfIt", false, 8, 2, {{true, "ab", kFileTooLarge}}},
    {"NothingOfItHere", true, 8, 2, {{true, "ab", kFileTooLarge}}},
};
INSTANTIATE_TEST_SUITE_P(Writes, ChannelSizeLimit, ::testing::ValuesIn(kLimits), RowName());

TEST_F(ChannelLifetime, ThreadsTakeNoSignalsOfTheProcess)
{
    auto const channel = Open("0123456789", O_RDONLY);
    char byte = 0;
    std::promise<sigset_t> blocked;
    channel->Read(0, 1, &byte, [&](bool, Data const&, int) {
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        blocked.set_value(mask);
    });
    sigset_t const mask = blocked.get_future().get();
    for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD, SIGUSR1, SIGALRM, SIGPIPE, SIGXFSZ})
        EXPECT_EQ(sigismember(&mask, signal), 1) << signal;
}

TEST_F(ChannelLifetime, ManyOperationsFromManyThreads)
{
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kWrites = 500;
    std::string expected;
    for (std::size_t i = 0; i < kThreads * kWrites; ++i)
        expected += static_cast<char>('a' + i % 26);
    auto const channel = Open(std::string(expected.size(), ' '), O_RDWR);
    std::atomic<std::size_t> ended{0};
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (std::size_t i = 0; i < kWrites; ++i)
            {
                std::size_t const at = i * kThreads + thread;
                channel->Write(static_cast<std::int64_t>(at), Data(&expected[at], 1),
                               [&ended](bool done, Data const& data, int error) {
                                   EXPECT_TRUE(done && data.IsEmpty() && error == 0);
                                   ++ended;
                               });
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    while (ended < kThreads * kWrites)
        std::this_thread::yield();
    EXPECT_TRUE(Content(mPath) == expected);
}
} // namespace
} // namespace KORVA::TESTS
