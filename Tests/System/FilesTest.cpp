// Opening files and directories, and their names.
#include "System/Files.h"

#include "Support/RowName.h"
#include "Support/SystemCalls.h"
#include "Support/TemporaryDirectory.h"
#include "System/Paths.h"
#include "System/References.h"
#include "System/Replacement.h"
#include "System/Transfer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <thread>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;
using SYSTEM::Descriptor;
using SYSTEM::ErrorNumber;

class Files : public ::testing::Test
{
protected:
    std::string Path(char const* name) const { return (directory.Path() / name).string(); }

    TemporaryDirectory directory;
};

struct OpeningRow
{
    char const* name;
    Descriptor (*open)(std::string const& file, std::string const& folder, ErrorNumber& error);
};

class Opening : public ::testing::TestWithParam<OpeningRow>
{
};

TEST_P(Opening, IsRepeatedWhenInterruptedAndTellsWhatElseFails)
{
    TemporaryDirectory directory;
    std::string const file = directory.File("a", "").string();
    std::string const folder = directory.Path().string();
    ErrorNumber error = -1;
    Faults const faults({{Call::kOpen, EINTR, 1, 2}, {Call::kOpen, EMFILE, 4}});
    Descriptor const opened = GetParam().open(file, folder, error);
    EXPECT_TRUE(opened);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(fcntl(opened.Get(), F_GETFD), FD_CLOEXEC);
    EXPECT_FALSE(GetParam().open(file, folder, error));
    EXPECT_EQ(error, EMFILE);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Opening,
    ::testing::Values(
        OpeningRow{"File",
                   [](std::string const& file, std::string const&, ErrorNumber& error) {
                       return SYSTEM::OpenFile(file, SYSTEM::Access::kRead, error);
                   }},
        OpeningRow{"FileToWaitFor", [](std::string const& file, std::string const&,
                                       ErrorNumber& error) { return SYSTEM::OpenFileAndWait(file, error); }},
        OpeningRow{"Directory", [](std::string const&, std::string const& folder,
                                   ErrorNumber& error) { return SYSTEM::OpenDirectory(folder, error); }},
        OpeningRow{"Reference", [](std::string const& file, std::string const&,
                                   ErrorNumber& error) { return SYSTEM::OpenReference(file, error); }},
        OpeningRow{"DirectoryReference",
                   [](std::string const&, std::string const& folder, ErrorNumber& error) {
                       return SYSTEM::OpenDirectoryReference(folder, error);
                   }}),
    RowName());

TEST_F(Files, ANewOneIsMadeOnlyWhereNothingIs)
{
    Faults const faults({{Call::kOpen, EINTR}});
    EXPECT_EQ(SYSTEM::MakeFile(Path("a")), 0);
    EXPECT_EQ(Content(Path("a")), "");
    EXPECT_EQ(SYSTEM::MakeFile(Path("a")), EEXIST);
    EXPECT_EQ(SYSTEM::MakeFile(Path("none/a")), ENOENT);
}

TEST_F(Files, ATemporaryIsMadeThoughTheCallIsInterrupted)
{
    // The directory, the old file, then the temporary itself.
    Faults const faults({{Call::kOpen, EINTR, 3, 2}});
    SYSTEM::Replacement const file(Path("a"));
    EXPECT_EQ(file.Error(), 0);
    EXPECT_GE(file.Get(), 0);
}

TEST_F(Files, NobodyWaitsForTheOtherEndOfAPipe)
{
    ASSERT_EQ(mkfifo(Path("p").c_str(), 0600), 0);
    ErrorNumber error = -1;
    EXPECT_TRUE(SYSTEM::OpenFile(Path("p"), SYSTEM::Access::kRead, error));
    EXPECT_EQ(error, 0);
    EXPECT_FALSE(SYSTEM::OpenFile(Path("p"), SYSTEM::Access::kWrite, error));
    EXPECT_EQ(error, ENXIO);
}

TEST_F(Files, WhoWantsAllOfAPipeWaitsForIt)
{
    ASSERT_EQ(mkfifo(Path("p").c_str(), 0600), 0);
    std::thread writer([name = Path("p")] {
        // This waits for the reader.
        int const pipe = open(name.c_str(), O_WRONLY);
        EXPECT_EQ(write(pipe, "x", 1), 1);
        close(pipe);
    });
    ErrorNumber error = -1;
    Descriptor const opened = SYSTEM::OpenFileAndWait(Path("p"), error);
    EXPECT_EQ(error, 0);
    char bytes[2] = {};
    std::size_t count = sizeof bytes;
    EXPECT_EQ(SYSTEM::ReadAll(opened.Get(), bytes, count), 0);
    EXPECT_EQ(std::string_view(bytes, count), "x");
    writer.join();
}

TEST_F(Files, WhatIsNoDirectoryIsNotOpenedAsOne)
{
    ErrorNumber error = 0;
    EXPECT_FALSE(SYSTEM::OpenDirectory(directory.File("a", "").string(), error));
    EXPECT_EQ(error, ENOTDIR);
    EXPECT_FALSE(SYSTEM::OpenDirectoryReference(Path("a"), error));
    EXPECT_EQ(error, ENOTDIR);
}

TEST_F(Files, ARenameReplaces)
{
    directory.File("a", "new");
    directory.File("b", "old");
    EXPECT_EQ(SYSTEM::RenameFile(Path("a"), Path("b")), 0);
    EXPECT_EQ(Content(Path("b")), "new");
    EXPECT_FALSE(fs::exists(Path("a")));
    EXPECT_EQ(SYSTEM::RenameFile(Path("a"), Path("b")), ENOENT);
}

TEST_F(Files, AFileIsRemovedAndADirectoryIsNot)
{
    EXPECT_EQ(SYSTEM::RemoveFile(directory.File("a", "").string()), 0);
    EXPECT_FALSE(fs::exists(Path("a")));
    EXPECT_EQ(SYSTEM::RemoveFile(Path("a")), ENOENT);
    EXPECT_EQ(SYSTEM::RemoveFile(directory.Path().string()), EISDIR);
}

TEST_F(Files, ADuplicateOutlivesItsOriginal)
{
    ErrorNumber error = -1;
    Descriptor copy;
    {
        Descriptor const file =
            SYSTEM::OpenFile(directory.File("a", "").string(), SYSTEM::Access::kRead, error);
        copy = SYSTEM::Duplicate(file.Get(), error);
    }
    EXPECT_EQ(error, 0);
    EXPECT_EQ(fcntl(copy.Get(), F_GETFD), FD_CLOEXEC);
    EXPECT_FALSE(SYSTEM::Duplicate(-1, error));
    EXPECT_EQ(error, EBADF);
}

TEST_F(Files, AReferenceLeadsToItsFileUnderAnyName)
{
    directory.File("a", "text");
    ErrorNumber error = -1;
    Descriptor const reference = SYSTEM::OpenReference(Path("a"), error);
    ASSERT_EQ(error, 0);
    fs::rename(Path("a"), Path("\xFF"));
    EXPECT_EQ(Content(SYSTEM::PathThrough(reference)), "text");
    EXPECT_EQ(SYSTEM::PathThrough(Descriptor()), "");
}

TEST_F(Files, AReferenceInADirectoryIsToTheLinkItself)
{
    directory.File("a", "");
    fs::create_symlink("a", Path("l"));
    ErrorNumber error = -1;
    Descriptor const folder = SYSTEM::OpenDirectoryReference(directory.Path().string(), error);
    Descriptor const link = SYSTEM::OpenReferenceIn(folder, "l", error);
    ASSERT_EQ(error, 0);
    struct stat status;
    ASSERT_EQ(fstat(link.Get(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    EXPECT_FALSE(SYSTEM::OpenReferenceIn(folder, "none", error));
    EXPECT_EQ(error, ENOENT);
}

struct DirectoryRow
{
    char const* name;
    char const* path;
    char const* directory;
};

class DirectoryOfPath : public ::testing::TestWithParam<DirectoryRow>
{
};

TEST_P(DirectoryOfPath, IsWhatStandsBeforeTheLastName)
{
    EXPECT_EQ(SYSTEM::DirectoryOf(GetParam().path), GetParam().directory);
}

INSTANTIATE_TEST_SUITE_P(Rows, DirectoryOfPath,
                         ::testing::Values(DirectoryRow{"Plain", "a", "."}, DirectoryRow{"Empty", "", "."},
                                           DirectoryRow{"BelowTheRoot", "/a", "/"},
                                           DirectoryRow{"Relative", "a/b", "a"},
                                           DirectoryRow{"Absolute", "/a/b/c", "/a/b"},
                                           DirectoryRow{"Ended", "a/b/", "a/b"}),
                         RowName());

struct LinkRow
{
    char const* name;
    /// "/" stands for the test's directory.
    char const* path;
    char const* leadsTo;
};

class Links : public ::testing::TestWithParam<LinkRow>
{
};

TEST_P(Links, AreFollowedToWhereAFileWouldBe)
{
    TemporaryDirectory directory;
    fs::path const root = directory.Path();
    directory.File("file", "");
    fs::create_directories(root / "d/e");
    fs::create_symlink("file", root / "one");
    fs::create_symlink("one", root / "two");
    fs::create_symlink("none", root / "dangling");
    fs::create_symlink("../dangling", root / "d/up");
    fs::create_symlink(root / "d/up", root / "absolute");
    fs::create_symlink("d", root / "folder");
    fs::create_symlink("around", root / "circle");
    fs::create_symlink("circle", root / "around");
    EXPECT_EQ(SYSTEM::FollowLinks(root.string() + GetParam().path), root.string() + GetParam().leadsTo);
}

INSTANTIATE_TEST_SUITE_P(Rows, Links,
                         ::testing::Values(LinkRow{"None", "/file", "/file"},
                                           LinkRow{"NothingThere", "/none", "/none"},
                                           LinkRow{"One", "/one", "/file"}, LinkRow{"Two", "/two", "/file"},
                                           LinkRow{"Dangling", "/dangling", "/none"},
                                           LinkRow{"FromAnotherFolder", "/d/up", "/d/../none"},
                                           LinkRow{"Absolute", "/absolute", "/d/../none"},
                                           // Only the last name is looked at.
                                           LinkRow{"LinkOnTheWay", "/folder/e", "/folder/e"},
                                           LinkRow{"Circle", "/circle", "/circle"}),
                         RowName());
} // namespace
} // namespace KORVA::TESTS
