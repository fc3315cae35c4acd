// Writing at explicit positions of files, at once and later.
#include "Mac/AsyncFixture.h"
#include "Platform/Source/FreshProcess.h"

#include <gmock/gmock.h>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using ::testing::ElementsAre;
using TESTS::AsyncTest;
using TESTS::Content;
using TESTS::kNothing;
using TESTS::Pattern;
using TESTS::RowName;
namespace fs = std::filesystem;

constexpr int kInvalid = 22;

struct WriteRow
{
    char const* name;
    int64 offset;
    char const* written;
    /// The file, which was "0123456789"; nul characters stand as dots.
    char const* content;
    /// Of the task.
    ErrCode status;
    /// In the message of the operation's end; -1 for no message.
    int error;
};

class AsyncWriter : public TESTS::AsyncTestWith<WriteRow>
{
protected:
    AsyncWriter() : mPath(mDirectory.File("file", "0123456789")), mFacade(Open(mPath, IO::kStreamReadWrite))
    {}

    void ExpectContent()
    {
        std::string content = Content(mPath);
        std::replace(content.begin(), content.end(), '\0', '.');
        EXPECT_EQ(content, GetParam().content);
        EXPECT_EQ(mFacade->Size(), static_cast<int64>(content.size()));
    }

    fs::path mPath;
    Provider mFacade;
};

TEST_P(AsyncWriter, WritesLater)
{
    std::string const bytes = GetParam().written;
    IAsyncTaskPtr task;
    ASSERT_EQ(WriterOf(mFacade).WriteAsync(GetParam().offset, bytes.data(), bytes.size(), task), 0);
    EXPECT_EQ(EndOf(task), GetParam().status);
    EXPECT_EQ(log.Take(), GetParam().error < 0 ? kNothing : std::vector{WriteAsyncFailed(GetParam().error)});
    ExpectContent();
    EXPECT_EQ(bytes, GetParam().written);
}

TEST_P(AsyncWriter, WritesAtOnce)
{
    std::string const bytes = GetParam().written;
    EXPECT_EQ(WriterOf(mFacade).WriteSync(GetParam().offset, bytes.data(), bytes.size()), 0);
    EXPECT_EQ(log.Take(), GetParam().error < 0 ? kNothing : std::vector{WriteSyncFailed(GetParam().error)});
    ExpectContent();
    EXPECT_EQ(bytes, GetParam().written);
}

WriteRow const kWrites[] = {
    {"WholeFile", 0, "abcdefghij", "abcdefghij", 0, -1},
    {"FirstByte", 0, "a", "a123456789", 0, -1},
    {"Middle", 3, "abcd", "012abcd789", 0, -1},
    {"LastByte", 9, "a", "012345678a", 0, -1},
    {"OverTheEnd", 8, "abcd", "01234567abcd", 0, -1},
    {"AtTheEnd", 10, "abcd", "0123456789abcd", 0, -1},
    {"BehindTheEnd", 13, "abcd", "0123456789...abcd", 0, -1},
    {"BeforeTheStart", -1, "abcd", "0123456789", 2, kInvalid},
    {"FarBeforeTheStart", INT64_MIN, "a", "0123456789", 2, kInvalid},
};
INSTANTIATE_TEST_SUITE_P(Ranges, AsyncWriter, ::testing::ValuesIn(kWrites), RowName());

struct SizeRow
{
    char const* name;
    std::size_t length;
};

class AsyncWriterOfMuch : public TESTS::AsyncTestWith<SizeRow>
{
};

TEST_P(AsyncWriterOfMuch, PutsEveryByteInItsPlace)
{
    std::size_t const length = GetParam().length;
    std::string const content = Pattern(2 * length);
    fs::path const path = mDirectory.File("file", "abc");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    IAsyncTaskPtr task;
    ASSERT_EQ(WriterOf(facade).WriteAsync(3, content.data(), length, task), 0);
    EXPECT_EQ(WriterOf(facade).WriteSync(static_cast<int64>(length + 3), &content[length], length), 0);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_TRUE(Content(path) == "abc" + content);
}

SizeRow const kSizes[] = {
    {"APage", 4096},
    {"AMebibyte", 1 << 20},
    {"AMebibyteAndOne", (1 << 20) + 1},
    {"SomeMebibytes", 5 * (1 << 20) + 12345},
};
INSTANTIATE_TEST_SUITE_P(Sizes, AsyncWriterOfMuch, ::testing::ValuesIn(kSizes), RowName());

class AsyncWriterOfNothing : public AsyncTest
{
};

TEST_F(AsyncWriterOfNothing, LeavesATaskThatIsStillPending)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    IAsyncTaskPtr before;
    ASSERT_EQ(WriterOf(facade).WriteAsync(0, "a", 1, before), 0);
    IAsyncTaskPtr task = before;
    EXPECT_EQ(WriterOf(facade).WriteAsync(4, "abcd", 0, task), 11);
    EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncWithoutData()));
    EXPECT_EQ(EndOf(before), 0);
    ASSERT_TRUE(task);
    EXPECT_NE(task.Get(), before.Get());
    EXPECT_EQ(TESTS::ReferencesTo(*before), 1);
    EXPECT_EQ(TESTS::ReferencesTo(*task), 1);
    IAsyncTaskPtr next;
    ASSERT_EQ(WriterOf(facade).WriteAsync(1, "b", 1, next), 0);
    EXPECT_EQ(EndOf(next), 0);
    EXPECT_FALSE(task->IsCompleted());
    EXPECT_EQ(task->GetStatus(), 0);
    EXPECT_EQ(Content(path), "ab23456789");
}

TEST_F(AsyncWriterOfNothing, NeedsNoBytes)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    IAsyncTaskPtr task;
    EXPECT_EQ(WriterOf(facade).WriteAsync(-1, nullptr, 0, task), 11);
    EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncWithoutData()));
    ASSERT_TRUE(task);
    EXPECT_FALSE(task->IsCompleted());
}

TEST_F(AsyncWriterOfNothing, TaskIsWaitedForInVain)
{
    mDirectory.File("file", "0123456789");
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
        Provider const facade = Open(directory / "file", IO::kStreamReadWrite);
        IAsyncTaskPtr task;
        EXPECT_EQ(WriterOf(facade).WriteAsync(0, "a", 0, task), 11);
        EXPECT_THAT(log.Take(), ElementsAre(WriteAsyncWithoutData()));
        TESTS::ExpectEndless(
            mDirectory, [&] { task->WaitForCompletion(); }, [] { return true; });
    });
}

TEST_F(AsyncWriterOfNothing, NeverReturnsWhenItWaits)
{
    mDirectory.File("file", "0123456789");
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
        Provider const facade = Open(directory / "file", IO::kStreamReadWrite);
        TESTS::ExpectEndless(
            mDirectory, [&] { WriterOf(facade).WriteSync(4, "abcd", 0); },
            [&] {
                std::vector<TESTS::Logged> const messages = log.Take();
                if (messages.empty())
                    return false;
                EXPECT_THAT(messages, ElementsAre(WriteSyncWithoutData()));
                return true;
            });
    });
    EXPECT_EQ(Content(mDirectory.Path() / "file"), "0123456789");
}

TEST_F(AsyncWriterOfNothing, DisturbsNobodyElse)
{
    mDirectory.File("file", "0123456789");
    TESTS::ExpectInFreshProcess(mDirectory, [&](fs::path const& directory) {
        Provider const facade = Open(directory / "file", IO::kStreamReadWrite);
        std::thread endless([&] { WriterOf(facade).WriteSync(4, "abcd", 0); });
        EXPECT_TRUE(TESTS::ComesTrue([&] { return log.Take() == std::vector{WriteSyncWithoutData()}; }));
        EXPECT_EQ(WriterOf(facade).WriteSync(4, "abcd", 4), 0);
        char read[10] = {};
        IAsyncTaskPtr task;
        EXPECT_EQ(ReaderOf(facade).ReadAsync(0, read, 10, task), 0);
        EXPECT_EQ(EndOf(task), 0);
        EXPECT_EQ(std::string(read, 10), "0123abcd89");
        TESTS::FRESH_PROCESS::Leave(mDirectory, HasFailure() ? 1 : 0);
    });
}

class AsyncWriterAndReader : public AsyncTest
{
};

TEST_F(AsyncWriterAndReader, SeeTheSameFile)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    Provider const other = Open(path, IO::kStreamRead);
    EXPECT_EQ(WriterOf(facade).WriteSync(2, "abc", 3), 0);
    char read[3] = {};
    EXPECT_EQ(ReaderOf(facade).ReadSync(2, read, 3), 0);
    EXPECT_EQ(std::string(read, 3), "abc");
    IAsyncTaskPtr task;
    ASSERT_EQ(WriterOf(facade).WriteAsync(2, "def", 3, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    ASSERT_EQ(ReaderOf(other).ReadAsync(2, read, 3, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_EQ(std::string(read, 3), "def");
    EXPECT_EQ(Content(path), "01def56789");
}
} // namespace
} // namespace KORVA
