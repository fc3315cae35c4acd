// Dates: nanoseconds since 1970-01-01T00:00:00Z.
#include "Companions/FileIO/FileFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>

namespace KORVA::TESTS
{
namespace
{
/// The system's own view of a file's modification date.
timespec ModificationOf(fs::path const& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mtim;
}

void SetModificationOf(fs::path const& path, time_t seconds, long nanoseconds)
{
    timespec times[2] = {};
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = seconds;
    times[1].tv_nsec = nanoseconds;
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

TEST_F(FileTest, ReadsTheModificationDateInNanoseconds)
{
    fs::path const path = directory.File("a", "text");
    SetModificationOf(path, 1234567890, 123456789);
    uint64 date = 0;
    EXPECT_EQ(Bound("a")->GetModificationDate(date), 0);
    EXPECT_EQ(date, 1234567890123456789u);
    SetModificationOf(path, 0, 1);
    EXPECT_EQ(Bound("a")->GetModificationDate(date), 0);
    EXPECT_EQ(date, 1u);
}

TEST_F(FileTest, SetsTheModificationDateInNanoseconds)
{
    fs::path const path = directory.File("a", "text");
    uint64 date = 1234567890123456789u;
    EXPECT_EQ(Bound("a")->SetModificationDate(date), 0);
    EXPECT_EQ(date, 1234567890123456789u);
    EXPECT_EQ(ModificationOf(path).tv_sec, 1234567890);
    EXPECT_EQ(ModificationOf(path).tv_nsec, 123456789);
    uint64 read = 0;
    EXPECT_EQ(Bound("a")->GetModificationDate(read), 0);
    EXPECT_EQ(read, 1234567890123456789u);
    EXPECT_EQ(Content(path), "text");
}

TEST_F(FileTest, FollowsALinkToItsDates)
{
    fs::path const path = directory.File("a", "text");
    fs::create_symlink("a", Path("link"));
    uint64 date = 1'000'000'000'000'000'001u;
    EXPECT_EQ(Bound("link")->SetModificationDate(date), 0);
    EXPECT_EQ(ModificationOf(path).tv_sec, 1'000'000'000);
    EXPECT_EQ(ModificationOf(path).tv_nsec, 1);
}

TEST_F(FileTest, AModificationDateBefore1970IsAFailure)
{
    fs::path const path = directory.File("a", "text");
    SetModificationOf(path, -5, 0);
    ASSERT_EQ(ModificationOf(path).tv_sec, -5);
    uint64 date = 7;
    EXPECT_NE(Bound("a")->GetModificationDate(date), 0);
    EXPECT_EQ(date, 7u);
}

TEST_F(FileTest, AMissingFileHasNoDates)
{
    uint64 date = 7;
    EXPECT_EQ(Bound("missing")->GetModificationDate(date), 15);
    EXPECT_EQ(Bound("missing")->SetModificationDate(date), 15);
    EXPECT_EQ(Bound("missing")->GetCreationDate(date), 15);
    EXPECT_EQ(Bound("missing")->SetCreationDate(date), 15);
    EXPECT_EQ(date, 7u);
    EXPECT_EQ(Names(), List());
}

TEST_F(FileTest, ReadsTheCreationDateWhereTheFileSystemKeepsOne)
{
    fs::path const path = directory.File("a", "text");
    // The kernel stamps files by a clock of its own: its word is what counts.
    struct statx status = {};
    ASSERT_EQ(statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &status), 0);
    uint64 date = 7;
    FILE_SYS::ErrCode const result = Bound("a")->GetCreationDate(date);
    if (status.stx_mask & STATX_BTIME)
    {
        EXPECT_EQ(result, 0);
        EXPECT_EQ(date / 1'000'000'000, static_cast<uint64>(status.stx_btime.tv_sec));
        EXPECT_EQ(date % 1'000'000'000, status.stx_btime.tv_nsec);
    }
    else
    {
        EXPECT_NE(result, 0);
        EXPECT_EQ(date, 7u);
    }
}

TEST_F(FileTest, NeverSetsTheCreationDate)
{
    directory.File("a", "text");
    uint64 before = 0;
    FILE_SYS::ErrCode const readable = Bound("a")->GetCreationDate(before);
    uint64 date = 1'000'000'000'000'000'000u;
    EXPECT_NE(Bound("a")->SetCreationDate(date), 0);
    uint64 after = 0;
    EXPECT_EQ(Bound("a")->GetCreationDate(after), readable);
    EXPECT_EQ(after, before);
}
} // namespace
} // namespace KORVA::TESTS
