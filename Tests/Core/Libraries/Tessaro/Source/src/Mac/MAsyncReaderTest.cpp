// Reading at explicit positions of files, at once and later.
#include "Mac/AsyncFixture.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <gmock/gmock.h>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using ::testing::ElementsAre;
using TESTS::AsyncTest;
using TESTS::kNothing;
using TESTS::Logged;
using TESTS::Pattern;
using TESTS::RowName;
namespace fs = std::filesystem;

constexpr int kInvalid = 22;

struct ReadRow
{
    char const* name;
    int64 offset;
    std::size_t length;
    /// Of the file "0123456789".
    char const* delivered;
    /// Of the task.
    ErrCode status;
    /// In the message of the task's end; -1 for no message.
    int error;
};

class AsyncReader : public TESTS::AsyncTestWith<ReadRow>
{
protected:
    /// As long as the longest read, and what must still be in it.
    std::string const mUntouched = std::string(32, '#');
    std::string ExpectedBuffer() const
    {
        std::string expected = mUntouched;
        std::string const delivered = GetParam().delivered;
        return expected.replace(0, delivered.size(), delivered);
    }
};

TEST_P(AsyncReader, ReadsLater)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamRead);
    std::string buffer = mUntouched;
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(GetParam().offset, buffer.data(), GetParam().length, task), 0);
    EXPECT_EQ(EndOf(task), GetParam().status);
    EXPECT_EQ(buffer, ExpectedBuffer());
    EXPECT_EQ(log.Take(), GetParam().error < 0 ? kNothing : std::vector{ReadAsyncFailed(GetParam().error)});
}

TEST_P(AsyncReader, ReadsAtOnce)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamRead);
    std::string buffer = mUntouched;
    EXPECT_EQ(ReaderOf(facade).ReadSync(GetParam().offset, buffer.data(), GetParam().length), 0);
    EXPECT_EQ(buffer, ExpectedBuffer());
    // The end of the file is no error to it.
    EXPECT_EQ(log.Take(), GetParam().error <= 0 ? kNothing : std::vector{ReadSyncFailed(GetParam().error)});
}

ReadRow const kReads[] = {
    {"WholeFile", 0, 10, "0123456789", 0, -1},
    {"FirstByte", 0, 1, "0", 0, -1},
    {"Middle", 3, 4, "3456", 0, -1},
    {"LastByte", 9, 1, "9", 0, -1},
    {"UpToTheEnd", 5, 5, "56789", 0, -1},
    {"OneByteTooMany", 5, 6, "56789", 3, 0},
    {"FarTooMany", 0, 32, "0123456789", 3, 0},
    {"AtTheEnd", 10, 1, "", 3, 0},
    {"BehindTheEnd", 11, 4, "", 3, 0},
    {"FarBehindTheEnd", int64{1} << 40, 4, "", 3, 0},
    {"Nothing", 3, 0, "", 3, 0},
    {"NothingAtTheEnd", 10, 0, "", 3, 0},
    {"NothingBehindTheEnd", 99, 0, "", 3, 0},
    {"BeforeTheStart", -1, 4, "", 3, kInvalid},
    {"FarBeforeTheStart", INT64_MIN, 1, "", 3, kInvalid},
};
INSTANTIATE_TEST_SUITE_P(Ranges, AsyncReader, ::testing::ValuesIn(kReads), RowName());

struct SizeRow
{
    char const* name;
    std::size_t length;
};

class AsyncReaderOfMuch : public TESTS::AsyncTestWith<SizeRow>
{
};

TEST_P(AsyncReaderOfMuch, HasEveryByteInItsPlace)
{
    std::size_t const length = GetParam().length;
    std::string const content = Pattern(length + 12);
    Provider const facade = Open(mDirectory.File("file", content), IO::kStreamRead);
    std::string const expected = content.substr(5, length);
    std::string later(length, '\0');
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(5, later.data(), length, task), 0);
    std::string atOnce(length, '\0');
    EXPECT_EQ(ReaderOf(facade).ReadSync(5, atOnce.data(), length), 0);
    EXPECT_EQ(EndOf(task), 0);
    EXPECT_TRUE(later == expected);
    EXPECT_TRUE(atOnce == expected);
}

TEST_P(AsyncReaderOfMuch, HasWhatThereIsOfATruncatedFile)
{
    std::size_t const length = GetParam().length;
    fs::path const path = mDirectory.File("file", Pattern(length));
    Provider const facade = Open(path, IO::kStreamRead);
    char byte = 0;
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, &byte, 1), 0);
    fs::resize_file(path, length / 2);
    std::string const expected = Pattern(length / 2) + std::string(length - length / 2, '#');
    std::string later(length, '#');
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(0, later.data(), length, task), 0);
    EXPECT_EQ(EndOf(task), 3);
    EXPECT_TRUE(later == expected);
    EXPECT_THAT(log.Take(), ElementsAre(ReadAsyncFailed(0)));
    std::string atOnce(length, '#');
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, atOnce.data(), length), 0);
    EXPECT_TRUE(atOnce == expected);
    // All that is left to read was there before.
    ASSERT_EQ(ReaderOf(facade).ReadAsync(static_cast<int64>(length / 2), later.data(), 1, task), 0);
    EXPECT_EQ(EndOf(task), 3);
    EXPECT_THAT(log.Take(), ElementsAre(ReadAsyncFailed(0)));
    EXPECT_TRUE(later == expected);
}

SizeRow const kSizes[] = {
    {"APage", 4096},
    {"AMebibyte", 1 << 20},
    {"AMebibyteAndOne", (1 << 20) + 1},
    {"SomeMebibytes", 5 * (1 << 20) + 12345},
};
INSTANTIATE_TEST_SUITE_P(Sizes, AsyncReaderOfMuch, ::testing::ValuesIn(kSizes), RowName());

struct NowhereRow
{
    char const* name;
    int64 offset;
    std::size_t length;
    /// Delivered, and nowhere to put it; then no more.
    bool some;
    bool end;
};

class AsyncReaderToNowhere : public TESTS::AsyncTestWith<NowhereRow>
{
};

TEST_P(AsyncReaderToNowhere, Fails)
{
    Provider const facade = Open(mDirectory.File("file", "0123456789"), IO::kStreamRead);
    std::vector<Logged> expected;
    if (GetParam().some)
        expected.push_back(ReadAsyncNotPlaced());
    if (GetParam().end)
        expected.push_back(ReadAsyncFailed(0));
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(GetParam().offset, nullptr, GetParam().length, task), 0);
    EXPECT_EQ(EndOf(task), 3);
    // The end that comes after the failure has nobody waiting.
    std::vector<Logged> messages;
    EXPECT_TRUE(TESTS::ComesTrue([&] {
        for (Logged const& message : log.Take())
            messages.push_back(message);
        return messages.size() >= expected.size();
    }));
    EXPECT_EQ(messages, expected);
    EXPECT_EQ(task->GetStatus(), 3);
    EXPECT_EQ(ReaderOf(facade).ReadSync(GetParam().offset, nullptr, GetParam().length), 0);
}

NowhereRow const kNowhere[] = {
    {"Some", 0, 10, true, false},
    {"MoreThanThereIs", 5, 10, true, true},
    {"AtTheEnd", 10, 1, false, true},
    {"Nothing", 0, 0, false, true},
};
INSTANTIATE_TEST_SUITE_P(Ranges, AsyncReaderToNowhere, ::testing::ValuesIn(kNowhere), RowName());

/// A file that fails in the middle: this process's memory, where a page that can be read is followed by one
/// with nothing behind it.
class AsyncReaderOfHalf : public AsyncTest
{
protected:
    AsyncReaderOfHalf()
    {
        int const file = open(mDirectory.File("page", std::string(kPage, 'x')).c_str(), O_RDONLY);
        mPages = mmap(nullptr, 2 * kPage, PROT_READ, MAP_SHARED, file, 0);
        close(file);
        if (mPages == MAP_FAILED)
            throw std::runtime_error("no pages");
    }
    ~AsyncReaderOfHalf() override { munmap(mPages, 2 * kPage); }

    int64 Offset() const { return reinterpret_cast<int64>(mPages); }

    std::size_t const kPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    static constexpr int kIOError = 5;
    void* mPages;
};

TEST_F(AsyncReaderOfHalf, DeliversItAndFails)
{
    Provider const facade = Open("/proc/self/mem", IO::kStreamRead);
    std::string const expected = std::string(kPage, 'x') + std::string(kPage, '#');
    std::string later(2 * kPage, '#');
    IAsyncTaskPtr task;
    ASSERT_EQ(ReaderOf(facade).ReadAsync(Offset(), later.data(), later.size(), task), 0);
    EXPECT_EQ(EndOf(task), 3);
    EXPECT_EQ(later, expected);
    EXPECT_THAT(log.Take(), ElementsAre(ReadAsyncFailed(kIOError)));
    std::string atOnce(2 * kPage, '#');
    EXPECT_EQ(ReaderOf(facade).ReadSync(Offset(), atOnce.data(), atOnce.size()), 0);
    EXPECT_EQ(atOnce, expected);
    EXPECT_THAT(log.Take(), ElementsAre(ReadSyncFailed(kIOError)));
    // The channel itself is sound.
    ASSERT_EQ(ReaderOf(facade).ReadAsync(Offset(), later.data(), kPage, task), 0);
    EXPECT_EQ(EndOf(task), 0);
}

TEST_F(AsyncReaderOfHalf, FailsWhereThereIsNone)
{
    Provider const facade = Open("/proc/self/mem", IO::kStreamRead);
    char byte = '#';
    IAsyncTaskPtr task;
    // The page at 0 is never there.
    ASSERT_EQ(ReaderOf(facade).ReadAsync(0, &byte, 1, task), 0);
    EXPECT_EQ(EndOf(task), 3);
    EXPECT_THAT(log.Take(), ElementsAre(ReadAsyncFailed(kIOError)));
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, &byte, 1), 0);
    EXPECT_THAT(log.Take(), ElementsAre(ReadSyncFailed(kIOError)));
    EXPECT_EQ(byte, '#');
}
} // namespace
} // namespace KORVA
