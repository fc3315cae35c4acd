// Copying files with the tool: every byte or none.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

fs::perms PermissionsOf(fs::path const& path) { return fs::status(path).permissions(); }

class ToolCopy : public ToolRun
{
protected:
    /// Refused as a copy is, in whatever words, and nothing has changed.
    void Refuses(std::vector<std::string> const& arguments, std::string const& beginning) const
    {
        std::string const before = Names();
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("tessio: " + beginning)) << outcome.err;
        EXPECT_TRUE(outcome.err.ends_with("; nothing is changed\n")) << outcome.err;
        EXPECT_EQ(Names(), before);
    }
};

struct SizeRow
{
    char const* name;
    std::size_t size;
};

constexpr SizeRow kSizes[] = {{"Empty", 0},
                              {"OneByte", 1},
                              {"OneByteLessThanAPiece", 262143},
                              {"OnePiece", 262144},
                              {"OneByteMoreThanAPiece", 262145},
                              {"AllPiecesAtOnce", 8388608},
                              {"OneByteMoreThanAllPieces", 8388609},
                              {"ManyTimesAround", 16777999}};

class ToolCopySize : public ToolCopy, public ::testing::WithParamInterface<SizeRow>
{
};

TEST_P(ToolCopySize, IsCopiedWithPermissionsAndDate)
{
    std::string const content = Pattern(GetParam().size);
    fs::permissions(directory.File("a", content), fs::perms(0640));
    Succeeds({"touch", "a", "--date", "2001-02-03T04:05:06.789012345Z"});
    std::string const dated = "\n  modified     2001-02-03T04:05:06.789012345Z\n";
    for (std::vector<std::string> const& copy :
         {std::vector<std::string>{"cp", "a", "t"}, {"cp", "--clone", "a", "t"}})
    {
        // The target was longer, and closed to writing.
        fs::permissions(directory.File("t", content + "and more"), fs::perms(0444));
        Succeeds(copy);
        EXPECT_TRUE(Content(Path("t")) == content);
        EXPECT_EQ(PermissionsOf(Path("t")), fs::perms(0640));
        EXPECT_NE(Do({"stat", "t"}).out.find(dated), std::string::npos);
        EXPECT_EQ(Names(), "a t");
        fs::remove(Path("t"));
    }
    EXPECT_TRUE(Content(Path("a")) == content);
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolCopySize, ::testing::ValuesIn(kSizes), RowName());

struct RefusalRow
{
    char const* name;
    std::vector<std::string> arguments;
    int exitCode;
    char const* err;
};

class ToolCopyRefusal : public ToolCopy, public ::testing::WithParamInterface<RefusalRow>
{
};

TEST_P(ToolCopyRefusal, SaysWhyAndChangesNothing)
{
    directory.File("a", "content\n");
    directory.File("t", "kept\n");
    fs::create_directory(Path("d"));
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0666), 0);
    fs::create_symlink("a", Path("link"));
    fs::create_hard_link(Path("a"), Path("second"));
    Fails(GetParam().arguments, GetParam().exitCode, std::string("tessio: ") + GetParam().err + "\n");
    EXPECT_EQ(Names(), "a d link pipe second t");
    EXPECT_EQ(Content(Path("a")), "content\n");
    EXPECT_EQ(Content(Path("t")), "kept\n");
    EXPECT_TRUE(fs::is_empty(Path("d")));
    EXPECT_EQ(fs::read_symlink(Path("link")), "a");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolCopyRefusal,
    ::testing::Values(
        RefusalRow{
            "NoTarget", {"cp", "a"}, 2, "TARGET is required\nRun it with --help for more information."},
        RefusalRow{"TwoTargets",
                   {"cp", "a", "t", "x"},
                   2,
                   "The following argument was not expected: x\nRun it with --help for more information."},
        RefusalRow{"EmptySource", {"cp", "", "t"}, 2, "the location is empty"},
        RefusalRow{"EmptyTarget", {"cp", "a", ""}, 2, "the location is empty"},
        RefusalRow{"SourceNotUTF8", {"cp", "\xFF", "t"}, 1, "cannot open \"\uFFFD\": no such file"},
        RefusalRow{"SourceOfAnotherScheme",
                   {"cp", "http://h/a", "t"},
                   2,
                   "cannot open \"http://h/a\": nothing serves the scheme \"http\""},
        RefusalRow{"TargetOfAnotherScheme",
                   {"cp", "a", "http://h/t"},
                   2,
                   "cannot open \"http://h/t\": nothing serves the scheme \"http\""},
        RefusalRow{"NoSource", {"cp", "none", "t"}, 1, "cannot copy \"none\": no such file"},
        RefusalRow{
            "NoSourceToClone", {"cp", "--clone", "none", "t"}, 1, "cannot copy \"none\": no such file"},
        RefusalRow{"DirectoryAsSource",
                   {"cp", "d", "t"},
                   3,
                   "cannot copy \"d\" to \"t\": is a directory; nothing is changed"},
        RefusalRow{"DirectoryToClone",
                   {"cp", "--clone", "d", "t"},
                   3,
                   "cannot copy \"d\" to \"t\": is a directory; nothing is changed"},
        RefusalRow{"PipeAsSource", {"cp", "pipe", "t"}, 3, "cannot open \"pipe\": is not a regular file"},
        RefusalRow{"DeviceAsSource",
                   {"cp", "/dev/zero", "t"},
                   3,
                   "cannot open \"/dev/zero\": is not a regular file"},
        RefusalRow{"OntoItself",
                   {"cp", "a", "a"},
                   3,
                   "cannot copy \"a\" to \"a\": source and target are the same "
                   "file; nothing is changed"},
        RefusalRow{"OntoALinkToItself",
                   {"cp", "a", "link"},
                   3,
                   "cannot copy \"a\" to \"link\": source and target are the same file; nothing is changed"},
        RefusalRow{
            "OntoItsSecondName",
            {"cp", "--clone", "a", "second"},
            3,
            "cannot copy \"a\" to \"second\": source and target are the same file; nothing is changed"},
        RefusalRow{"NoDirectoryForTheTarget",
                   {"cp", "a", "none/t"},
                   3,
                   "cannot copy \"a\" to \"none/t\": no such directory; nothing is changed"},
        RefusalRow{"FileAsDirectoryOfTheTarget",
                   {"cp", "a", "t/x"},
                   3,
                   "cannot copy \"a\" to \"t/x\": no such directory; nothing is changed"}),
    RowName());

TEST_F(ToolCopy, WhatIsNoFileIsNoTarget)
{
    directory.File("a", "content\n");
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0666), 0);
    fs::create_symlink("loop", Path("loop"));
    fs::create_directories(Path("d/a"));
    for (char const* const target : {"pipe", "loop", "/dev/null"})
    {
        Refuses({"cp", "a", target}, "cannot copy \"a\" to \"" + std::string(target) + "\": ");
        Refuses({"cp", "--clone", "a", target}, "cannot copy \"a\" to \"" + std::string(target) + "\": ");
    }
    // In the directory stands a directory of the file's name.
    Refuses({"cp", "a", "d"}, "cannot copy \"a\" to \"" + Path("d/a").string() + "\": ");
    EXPECT_TRUE(fs::is_fifo(Path("pipe")));
    EXPECT_EQ(fs::read_symlink(Path("loop")), "loop");
    EXPECT_TRUE(fs::is_empty(Path("d/a")));
    EXPECT_EQ(Content(Path("a")), "content\n");
}

TEST_F(ToolCopy, IntoADirectoryAFileGoesUnderItsName)
{
    directory.File("a", "content\n");
    fs::create_directory(Path("d"));
    fs::create_directory_symlink("d", Path("link"));
    for (char const* const target : {"d", "d/", "link", "link/", "./d/.", "d/../d"})
    {
        Succeeds({"cp", "a", target});
        EXPECT_EQ(Content(Path("d/a")), "content\n") << target;
        EXPECT_TRUE(fs::remove(Path("d/a"))) << target;
    }
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Names(), "a d link");
}

TEST_F(ToolCopy, LinksAreFollowedAndStay)
{
    directory.File("a", "content\n");
    directory.File("old", "old\n");
    fs::create_directory(Path("d"));
    fs::create_symlink("a", Path("from"));
    fs::create_symlink("../old", Path("d/to"));
    fs::create_symlink("d/to", Path("through"));
    fs::create_symlink("d/new", Path("dangling"));
    for (std::vector<std::string> const& copy : {std::vector<std::string>{"cp"}, {"cp", "--clone"}})
    {
        auto const onto = [&](char const* target) {
            std::vector<std::string> arguments = copy;
            arguments.insert(arguments.end(), {"from", target});
            Succeeds(arguments);
        };
        onto("through");
        EXPECT_EQ(Content(Path("old")), "content\n");
        onto("dangling");
        EXPECT_EQ(Content(Path("d/new")), "content\n");
        onto("plain");
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(Path("plain"))));
        EXPECT_EQ(Content(Path("plain")), "content\n");
        EXPECT_EQ(fs::read_symlink(Path("through")), "d/to");
        EXPECT_EQ(fs::read_symlink(Path("d/to")), "../old");
        EXPECT_EQ(fs::read_symlink(Path("dangling")), "d/new");
        EXPECT_EQ(Names(), "a d dangling from old plain through");
        for (char const* const name : {"d/new", "plain"})
            fs::remove(Path(name));
        directory.File("old", "old\n");
    }
}

TEST_F(ToolCopy, EveryNameIsTakenAsItIs)
{
    directory.File("a", "content\n");
    std::string const longest(255, 'n');
    std::string const decomposed = "e\u0301";
    // The 200th byte of this one lies within a character.
    std::string longAccented = "n";
    while (longAccented.size() < 253)
        longAccented += "\u00FC";
    for (std::string const& name : {longest, decomposed, std::string(" "), std::string("line\nbreak"),
                                    std::string("%41?b#c"), std::string(".hidden"), longAccented})
    {
        Succeeds({"cp", "a", name});
        EXPECT_EQ(Names(), name < "a" ? name + " a" : "a " + name);
        Succeeds({"cp", name, "back"});
        EXPECT_EQ(Do({"cat", "--async", "back"}).out, "content\n") << name;
        fs::remove(Path(name));
        fs::remove(Path("back"));
    }
}

TEST_F(ToolCopy, BitsThatGiveRightsAreNotCarriedOver)
{
    directory.File("a", "content\n");
    ASSERT_EQ(chmod(Path("a").c_str(), 06755), 0);
    Succeeds({"cp", "a", "t"});
    EXPECT_EQ(PermissionsOf(Path("t")), fs::perms(0755));
    Succeeds({"cp", "--clone", "a", "t"});
    EXPECT_EQ(PermissionsOf(Path("t")), fs::perms(0755));
}

TEST_F(ToolCopy, ADateBefore1970IsKept)
{
    directory.File("a", "content\n");
    timespec const times[2] = {{-1000, 0}, {-1000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, Path("a").c_str(), times, 0), 0);
    Succeeds({"cp", "a", "t"});
    struct stat status;
    ASSERT_EQ(stat(Path("t").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, -1000);
}

TEST_F(ToolCopy, FilesOfTheSystemThatTellNoSizeAreReadToTheirEnd)
{
    std::string const content = Content("/proc/version");
    ASSERT_NE(content, "");
    Succeeds({"cp", "/proc/version", "t"});
    EXPECT_EQ(Content(Path("t")), content);
    Succeeds({"cp", "--clone", "/proc/version", "t"});
    EXPECT_EQ(Content(Path("t")), content);
}

} // namespace
} // namespace KORVA::TESTS
