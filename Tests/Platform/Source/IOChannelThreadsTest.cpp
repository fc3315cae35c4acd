// Where handlers run, and what waits for a thread.
#include "Platform/Source/ChannelFixture.h"

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

class ChannelThreads : public ChannelTest
{
};

TEST_F(ChannelThreads, HandlersRunOnOtherThreads)
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

TEST_F(ChannelThreads, HandlersMayBeginOperations)
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

TEST_F(ChannelThreads, WaitingThreadServesWhatNobodyHasBegun)
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

TEST_F(ChannelThreads, WaitingThreadLeavesLongOperationsToThePool)
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

TEST_F(ChannelThreads, ThreadsTakeNoSignalsOfTheProcess)
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

TEST_F(ChannelThreads, ManyOperationsFromManyThreads)
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
