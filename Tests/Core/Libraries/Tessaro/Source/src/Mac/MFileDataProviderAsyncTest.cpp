// What a file provider offers its reader and writer.
#include "Mac/AsyncFixture.h"
#include "Mac/MFileDataProvider.h"
#include "Platform/Source/ResourceLimit.h"

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
using TESTS::Content;
using TESTS::DescriptorsOf;
using TESTS::NoNewDescriptors;
namespace fs = std::filesystem;

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
