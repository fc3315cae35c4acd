// From the making of a channel to its end.
#include "Platform/Source/ChannelFixture.h"
#include "Platform/Source/ResourceLimit.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>

namespace KORVA::TESTS
{
namespace
{
using PLATFORM::Data;
using ::testing::ElementsAre;
namespace fs = std::filesystem;

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
        auto const channel = Open("0123456789", O_RDONLY, 0, [&](int error) {
            endedAtCleanup.set_value(error == 0 ? ended.load() : -1);
        });
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

} // namespace
} // namespace KORVA::TESTS
