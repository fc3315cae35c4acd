// What is told of files, and their dates.
#include "System/Status.h"

#include "Support/SystemCalls.h"
#include "Support/TemporaryDirectory.h"
#include "System/Files.h"
#include "System/Times.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>
#include <filesystem>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;
using SYSTEM::FileKind;
using SYSTEM::Status;

class FileStatus : public ::testing::Test
{
protected:
    std::string Path(char const* name) const { return (directory.Path() / name).string(); }

    Status Of(char const* name) const
    {
        Status status;
        EXPECT_EQ(SYSTEM::ReadStatus(Path(name), status), 0) << name;
        return status;
    }

    TemporaryDirectory directory;
};

TEST_F(FileStatus, TellsKindSizeAndPermissions)
{
    directory.File("a", "text");
    ASSERT_EQ(chmod(Path("a").c_str(), 04640), 0);
    ASSERT_EQ(mkfifo(Path("p").c_str(), 0600), 0);
    EXPECT_EQ(Of("a").kind, FileKind::kRegular);
    EXPECT_EQ(Of("a").size, 4u);
    EXPECT_EQ(Of("a").permissions, 0640u);
    EXPECT_EQ(Of(".").kind, FileKind::kDirectory);
    EXPECT_EQ(Of("p").kind, FileKind::kOther);
}

TEST_F(FileStatus, ALinkIsItsTargetUnlessItIsMeantItself)
{
    directory.File("a", "text");
    fs::create_symlink("a", Path("l"));
    Status itself;
    EXPECT_EQ(Of("l").kind, FileKind::kRegular);
    EXPECT_EQ(SYSTEM::ReadStatusOfLink(Path("l"), itself), 0);
    EXPECT_EQ(itself.kind, FileKind::kSymbolicLink);
    EXPECT_FALSE(itself.identity == Of("l").identity);
}

TEST_F(FileStatus, AFileIsTheSameUnderAllItsNames)
{
    directory.File("a", "text");
    directory.File("b", "text");
    fs::create_hard_link(Path("a"), Path("h"));
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const opened = SYSTEM::OpenFile(Path("a"), SYSTEM::Access::kRead, error);
    Status status;
    EXPECT_EQ(SYSTEM::ReadStatus(opened.Get(), status), 0);
    EXPECT_TRUE(status.identity == Of("a").identity);
    EXPECT_TRUE(status.identity == Of("h").identity);
    EXPECT_FALSE(status.identity == Of("b").identity);
}

TEST_F(FileStatus, AFailureIsToldAndChangesNothing)
{
    directory.File("a", "text");
    Status status;
    status.size = 7;
    {
        Faults const faults({{Call::kStat, EACCES}});
        EXPECT_EQ(SYSTEM::ReadStatus(Path("a"), status), EACCES);
    }
    EXPECT_EQ(SYSTEM::ReadStatusOfLink(Path("none"), status), ENOENT);
    EXPECT_EQ(SYSTEM::ReadStatus(-1, status), EBADF);
    EXPECT_EQ(status.size, 7u);
    SYSTEM::Date date{7, 7};
    EXPECT_EQ(SYSTEM::ReadCreationDate(Path("none"), date), ENOENT);
    EXPECT_EQ(date.seconds, 7);
}

TEST_F(FileStatus, TheDateOfModificationIsSetToTheNanosecond)
{
    directory.File("a", "text");
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file = SYSTEM::OpenFile(Path("a"), SYSTEM::Access::kReadWrite, error);
    EXPECT_EQ(SYSTEM::SetModified(file.Get(), 1'000'000'000'000'000'001), 0);
    EXPECT_EQ(Of("a").modified.seconds, 1'000'000'000);
    EXPECT_EQ(Of("a").modified.nanoseconds, 1u);
    EXPECT_EQ(SYSTEM::SetModified(Path("a"), 5'000'000'002), 0);
    EXPECT_EQ(Of("a").modified.seconds, 5);
    EXPECT_EQ(Of("a").modified.nanoseconds, 2u);
    EXPECT_EQ(SYSTEM::SetModified(Path("none"), 0), ENOENT);
}

TEST_F(FileStatus, AFileIsMadeNow)
{
    directory.File("a", "text");
    SYSTEM::Date date;
    SYSTEM::ErrorNumber const error = SYSTEM::ReadCreationDate(Path("a"), date);
    if (error == EOPNOTSUPP)
        GTEST_SKIP() << "the file system keeps no such date";
    EXPECT_EQ(error, 0);
    EXPECT_NEAR(static_cast<double>(date.seconds), static_cast<double>(std::time(nullptr)), 60);
}
} // namespace
} // namespace KORVA::TESTS
