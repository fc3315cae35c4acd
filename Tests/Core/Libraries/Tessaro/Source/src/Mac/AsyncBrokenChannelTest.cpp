// Files that can't be used at explicit positions, which the channel finds out when it is there.
#include "Mac/AsyncFixture.h"
#include "Mac/MFileDataProvider.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include <optional>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;
using TESTS::AsyncTest;
using TESTS::ComesTrue;
using TESTS::DescriptorsOf;
using TESTS::Logged;
namespace fs = std::filesystem;

constexpr int kBadDescriptor = 9;
constexpr int kIllegalSeek = 29;

class AsyncBrokenChannel : public AsyncTest
{
protected:
    /// The messages from now on, when that many have come.
    std::vector<Logged> Messages(std::size_t count)
    {
        std::vector<Logged> messages;
        EXPECT_TRUE(ComesTrue([&] {
            for (Logged const& message : log.Take())
                messages.push_back(message);
            return messages.size() >= count;
        }));
        return messages;
    }

    fs::path MakeFIFO() const
    {
        fs::path const path = mDirectory.Path() / "fifo";
        if (mkfifo(path.c_str(), 0600) != 0)
            throw std::runtime_error("no FIFO");
        return path;
    }
};

TEST_F(AsyncBrokenChannel, SwitchesReadingOff)
{
    Provider const facade = Open(MakeFIFO(), IO::kStreamRead);
    char byte = '#';
    // The channel reports at its own time: before or after the operation looks.
    ErrCode const first = ReaderOf(facade).ReadSync(0, &byte, 1);
    if (first == 0)
    {
        EXPECT_THAT(Messages(2),
                    UnorderedElementsAre(ChannelBroke(kIllegalSeek), ReadSyncFailed(kIllegalSeek)));
    }
    else
    {
        EXPECT_EQ(first, 35);
        EXPECT_THAT(Messages(2), UnorderedElementsAre(ChannelBroke(kIllegalSeek), ReadSyncWithoutChannel()));
    }
    // The message comes before the switch.
    EXPECT_TRUE(ComesTrue([&] {
        bool const off = ReaderOf(facade).ReadSync(0, &byte, 1) == 35;
        EXPECT_THAT(log.Take(), ElementsAre(off ? ReadSyncWithoutChannel() : ReadSyncFailed(kIllegalSeek)));
        return off;
    }));
    for (int again = 0; again < 3; ++again)
    {
        IAsyncTaskPtr task;
        EXPECT_EQ(ReaderOf(facade).ReadAsync(0, &byte, 1, task), 35);
        EXPECT_THAT(log.Take(), ElementsAre(ReadAsyncWithoutChannel()));
        EXPECT_FALSE(task);
        EXPECT_EQ(ReaderOf(facade).ReadSync(0, &byte, 1), 35);
        EXPECT_THAT(log.Take(), ElementsAre(ReadSyncWithoutChannel()));
    }
    EXPECT_EQ(byte, '#');
}

TEST_F(AsyncBrokenChannel, SwitchesReadingAndWritingOff)
{
    Provider const facade = Open(MakeFIFO(), IO::kStreamMode4);
    char byte = '#';
    EXPECT_TRUE(ComesTrue([&] { return ReaderOf(facade).ReadSync(0, &byte, 1) == 35; }));
    // The first use of the writer makes another channel, which breaks as well.
    EXPECT_TRUE(ComesTrue([&] { return WriterOf(facade).WriteSync(0, "a", 1) == 35; }));
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, &byte, 1), 35);
    std::vector<Logged> const messages = log.Take();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), ChannelBroke(kIllegalSeek)), 2);
    for (Logged const& message : messages)
        EXPECT_THAT(message, ::testing::AnyOf(ChannelBroke(kIllegalSeek), ReadSyncFailed(kIllegalSeek),
                                              ReadSyncWithoutChannel(), WriteSyncFailed(kIllegalSeek),
                                              WriteSyncWithoutChannel()));
    IAsyncTaskPtr task;
    EXPECT_EQ(ReaderOf(facade).ReadAsync(0, &byte, 1, task), 35);
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, &byte, 1), 35);
    EXPECT_EQ(WriterOf(facade).WriteAsync(0, "a", 1, task), 35);
    EXPECT_EQ(WriterOf(facade).WriteSync(0, "a", 1), 35);
    EXPECT_EQ(WriterOf(facade).WriteAsync(0, "a", 0, task), 35);
    EXPECT_THAT(log.Take(),
                ElementsAre(ReadAsyncWithoutChannel(), ReadSyncWithoutChannel(), WriteAsyncWithoutChannel(),
                            WriteSyncWithoutChannel(), WriteAsyncWithoutChannel()));
    EXPECT_FALSE(task);
    int32 count = 1;
    EXPECT_EQ(facade->Read(&byte, count), 3);
}

TEST_F(AsyncBrokenChannel, ChangesNothingOfAnotherFile)
{
    Provider const sound = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    EXPECT_EQ(WriterOf(sound).WriteSync(1, "a", 1), 0);
    Provider const broken = Open(MakeFIFO(), IO::kStreamRead);
    char read[3] = {};
    EXPECT_TRUE(ComesTrue([&] { return ReaderOf(broken).ReadSync(0, read, 1) == 35; }));
    log.Take();
    EXPECT_EQ(WriterOf(sound).WriteSync(2, "b", 1), 0);
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(sound).ReadAsync(0, read, 3, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(std::string(read, 3), "0ab");
}

TEST_F(AsyncBrokenChannel, MayOutliveItsProvider)
{
    fs::path const path = MakeFIFO();
    for (int round = 0; round < 200; ++round)
    {
        Provider facade = Open(path, IO::kStreamRead);
        char byte = 0;
        IAsyncTaskPtr task;
        // 35 where the channel was faster.
        ErrCode const begun = ReaderOf(facade).ReadAsync(0, &byte, 1, task);
        facade.Reset();
        EXPECT_EQ(begun, task ? 0 : 35);
        if (task)
        {
            EXPECT_EQ(EndOf(task), 3);
        }
        // A report that has not begun when the provider goes is not made.
        for (Logged const& message : log.Take())
            EXPECT_THAT(message, ::testing::AnyOf(ChannelBroke(kIllegalSeek), ReadAsyncFailed(kIllegalSeek),
                                                  ReadAsyncWithoutChannel()));
    }
}

/// A provider whose stream has lost its descriptor.
class AsyncLostDescriptor : public AsyncBrokenChannel
{
protected:
    AsyncLostDescriptor() : mPath(mDirectory.File("file", "0123456789"))
    {
        mProvider.emplace(nullptr);
        EXPECT_EQ(mProvider->Init(*MakeURI(mPath), IO::kStreamReadWrite, mOuter.Get()), 0);
        mDescriptor = DescriptorsOf(mPath).at(0);
        mSpare = dup(mDescriptor);
        close(mDescriptor);
    }
    ~AsyncLostDescriptor() override
    {
        mProvider.reset();
        close(mSpare);
    }

    void Restore() { dup2(mSpare, mDescriptor); }

    fs::path mPath;
    Provider mOuter = MakeFacade();
    std::optional<IO::FileDataProvider> mProvider;
    int mDescriptor = -1;
    int mSpare = -1;
};

TEST_F(AsyncLostDescriptor, BreaksTheChannelAtOnce)
{
    EXPECT_EQ(mProvider->EnableAsync(), 0);
    EXPECT_THAT(Messages(1), ElementsAre(ChannelBroke(kBadDescriptor)));
    char read[2] = {};
    EXPECT_TRUE(ComesTrue([&] { return mProvider->ReadSync(0, read, 2) == 35; }));
    log.Take();
    IAsyncTaskPtr task;
    EXPECT_EQ(mProvider->ReadAsync(0, read, 2, task), 35);
    EXPECT_THAT(log.Take(), ElementsAre(ReadAsyncWithoutChannel()));
    EXPECT_EQ(mProvider->WriteAsync(0, "ab", 2, task), 35);
    EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncWithoutChannel()));
    EXPECT_EQ(mProvider->WriteSync(0, "ab", 2), 35);
    EXPECT_THAT(log.Take(), ElementsAre(WriteSyncWithoutChannel()));
    EXPECT_FALSE(task);
    EXPECT_EQ(TESTS::Content(mPath), "0123456789");
    Restore();
}

TEST_F(AsyncLostDescriptor, EnablingAnewMakesAnotherChannel)
{
    EXPECT_EQ(mProvider->EnableAsync(), 0);
    EXPECT_THAT(Messages(1), ElementsAre(ChannelBroke(kBadDescriptor)));
    char read[2] = {};
    EXPECT_TRUE(ComesTrue([&] { return mProvider->ReadSync(0, read, 2) == 35; }));
    log.Take();
    Restore();
    EXPECT_EQ(mProvider->EnableAsync(), 0);
    EXPECT_EQ(mProvider->WriteSync(1, "ab", 2), 0);
    IAsyncTaskPtr task;
    ASSERT_EQ(mProvider->ReadAsync(2, read, 2, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(std::string(read, 2), "b3");
    EXPECT_EQ(TESTS::Content(mPath), "0ab3456789");
}
} // namespace
} // namespace KORVA
