// What stands there when the tool has written a file, and what it says of it.
#include "Integration/ToolRecord.h"
#include "Support/RowName.h"

#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <linux/capability.h>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

using ToolSaving = ToolRecord;

struct UnreadableRow
{
    char const* name;
    std::vector<std::string> arguments;
    char const* target;
    char const* shown;
};

class ToolSavingUnflushed : public ToolSaving, public ::testing::WithParamInterface<UnreadableRow>
{
};

TEST_P(ToolSavingUnflushed, IsWrittenAndTheUserIsWarned)
{
    Succeeds({"dict", "set", "f", "1", "int8", "1"});
    fs::create_directory(Path("d"));
    fs::copy_file(Path("f"), Path("d/f"));
    fs::copy_file(Path("f"), Path("d/t"));
    std::string const before = Content(Path("d/t"));
    // May be written, and looked up in, but not read.
    fs::permissions(Path("d"), fs::perms(0300));
    Outcome const outcome = Do(GetParam().arguments, &WithoutPrivileges);
    fs::permissions(Path("d"), fs::perms(0700));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "tessio: warning: \"" + std::string(GetParam().shown) +
                               "\" is written, but that its name is on the disk could not be confirmed "
                               "(permission denied): after a power cut the file may be what it was before\n");
    EXPECT_EQ(Do({"get", GetParam().target, "/0/1"}).out, "2\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolSavingUnflushed,
    ::testing::Values(UnreadableRow{"Set", {"set", "f", "/0/1", "int8", "2", "-o", "d/t"}, "d/t", "d/t"},
                      UnreadableRow{"SetInPlace", {"set", "d/f", "/0/1", "int8", "2", "-i"}, "d/f", "d/f"},
                      UnreadableRow{"DictSet", {"dict", "set", "d/f", "1", "int8", "2"}, "d/f", "d/f"}),
    RowName());

TEST_F(ToolSaving, ACopyThatIsNotFlushedIsThere)
{
    directory.File("a", "content\n");
    fs::create_directory(Path("d"));
    for (std::vector<std::string> const& copy :
         {std::vector<std::string>{"cp", "a", "d/t"}, {"cp", "--clone", "a", "d/t"}})
    {
        directory.File("d/t", "old\n");
        fs::permissions(Path("d"), fs::perms(0300));
        Outcome const outcome = Do(copy, &WithoutPrivileges);
        fs::permissions(Path("d"), fs::perms(0700));
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err,
                  "tessio: warning: \"d/t\" is written, but that its name is on the disk could not be "
                  "confirmed (permission denied): after a power cut the file may be what it was before\n");
        EXPECT_EQ(Content(Path("d/t")), "content\n");
    }
}

TEST_F(ToolSaving, AnEditThatDoesNotFitLeavesWhatWasKeptBefore)
{
    Succeeds({"dict", "set", "f", "1", "int8", "1"});
    std::string const before = Content(Path("f"));
    directory.File("f~", "kept before\n");
    std::string const large(1200, '0');
    Fails({"set", "f", "/0/1", "bytes", large, "-i"}, 3,
          "tessio: cannot write \"f\": no space left; nothing is changed\n", [] { WithLargestFile(300); });
    EXPECT_EQ(Content(Path("f~")), "kept before\n");
    EXPECT_EQ(Content(Path("f")), before);
    EXPECT_EQ(Names(), "f f~");
}

TEST_F(ToolSaving, AnEditOfAFileThatMayNotBeReplacedLeavesWhatWasKeptBefore)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only a privileged user can make somebody else's file";
    constexpr uid_t kOther = 4001;
    Succeeds({"dict", "set", "f", "1", "int8", "1"});
    std::string const before = Content(Path("f"));
    // In such a directory each user replaces and removes his own files alone.
    ASSERT_EQ(chown(Path("f").c_str(), kOther, kOther), 0);
    ASSERT_EQ(chown(directory.Path().c_str(), kOther, kOther), 0);
    ASSERT_EQ(chmod(directory.Path().c_str(), 01777), 0);
    auto const asOther = [] {
        prctl(PR_CAPBSET_DROP, CAP_FOWNER);
        prctl(PR_CAPBSET_DROP, CAP_CHOWN);
    };
    std::string const message = "tessio: cannot write \"f\": permission denied; nothing is changed\n";
    Fails({"set", "f", "/0/1", "int8", "2", "-i"}, 3, message, asOther);
    EXPECT_EQ(Names(), "f");
    directory.File("f~", "kept before\n");
    Fails({"set", "f", "/0/1", "int8", "2", "-i"}, 3, message, asOther);
    EXPECT_EQ(Content(Path("f~")), "kept before\n");
    EXPECT_EQ(Content(Path("f")), before);
    EXPECT_EQ(Names(), "f f~");
}

TEST_F(ToolSaving, AnEditKeepsTheAccessList)
{
    Succeeds({"dict", "set", "f", "1", "int8", "1"});
    // The owner 6, the user 4000 4, the group 0, at most 4, all others 0.
    std::string const list("\2\0\0\0"
                           "\1\0\6\0\xFF\xFF\xFF\xFF"
                           "\2\0\4\0\xA0\x0F\0\0"
                           "\4\0\0\0\xFF\xFF\xFF\xFF"
                           "\x10\0\4\0\xFF\xFF\xFF\xFF"
                           "\x20\0\0\0\xFF\xFF\xFF\xFF",
                           44);
    constexpr char kName[] = "system.posix_acl_access";
    if (setxattr(Path("f").c_str(), kName, list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "this file system has no access lists";
    Succeeds({"set", "f", "/0/1", "int8", "2", "-i"});
    Succeeds({"cp", "f", "copy"});
    for (char const* const name : {"f", "f~", "copy"})
    {
        std::string kept(200, '\0');
        ssize_t const size = getxattr(Path(name).c_str(), kName, kept.data(), kept.size());
        kept.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        EXPECT_EQ(kept, list) << name;
    }
}

TEST_F(ToolSaving, WhatCanNotBeKeptIsSaid)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only a privileged user can make somebody else's file";
    Succeeds({"dict", "set", "f", "1", "int8", "1"});
    ASSERT_EQ(chown(Path("f").c_str(), 4001, 4002), 0);
    ASSERT_EQ(chmod(Path("f").c_str(), 0664), 0);
    Outcome const outcome =
        Do({"set", "f", "/0/1", "int8", "2", "-i"}, [] { prctl(PR_CAPBSET_DROP, CAP_CHOWN); });
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "tessio: warning: \"f\": its owner could not be kept\n"
                           "tessio: warning: \"f\": its group could not be kept\n");
    for (char const* const name : {"f", "f~"})
        EXPECT_EQ(fs::status(Path(name)).permissions(), fs::perms(0644)) << name;
}

TEST_F(ToolSaving, ANameThatIsNotUTF8IsAsGoodAsAnyOther)
{
    std::string const name = "n\xFF";
    Succeeds({"dict", "set", name, "1", "int8", "1"});
    Succeeds({"dict", "set", name, "1", "int8", "2"});
    Succeeds({"get", name, "/0/1"}, "2\n");
    EXPECT_EQ(Do({"cat", name}).out, Content(Path(name)));
    EXPECT_EQ(Do({"cat", "--async", name}).out, Content(Path(name)));
    EXPECT_EQ(Do({"stat", name}).exitCode, 0);
    Succeeds({"set", name, "/0/1", "int8", "3", "-i"});
    Succeeds({"get", name, "/0/1"}, "3\n");
    Succeeds({"get", name + "~", "/0/1"}, "2\n");
    Succeeds({"set", name, "/0/1", "int8", "4", "-o", "o\xFF"});
    Succeeds({"get", "o\xFF", "/0/1"}, "4\n");
    Succeeds({"cp", name, "c\xFF"});
    Succeeds({"cp", "--clone", name, "l\xFF"});
    Succeeds({"cp", "c\xFF", "plain"});
    for (char const* const copy : {"c\xFF", "l\xFF", "plain"})
        EXPECT_EQ(Content(Path(copy)), Content(Path(name))) << copy;
    Succeeds({"touch", name, "m\xFF"});
    Succeeds({"rm", name, name + "~", "o\xFF", "c\xFF", "l\xFF", "m\xFF"});
    EXPECT_EQ(Names(), "plain");
    Fails({"cat", name}, 1, "tessio: cannot open \"n\uFFFD\": no such file\n");
    Fails({"rm", name}, 1, "tessio: cannot remove \"n\uFFFD\": no such file\n");
}

TEST_F(ToolSaving, SoIsADirectoryOfSuchAName)
{
    fs::create_directory(Path("d\xFF"));
    Succeeds({"dict", "set", "d\xFF/f", "1", "int8", "1"});
    Succeeds({"cp", "d\xFF/f", "f"});
    Succeeds({"cp", "f", "d\xFF/g"});
    Succeeds({"get", "d\xFF/g", "/0/1"}, "1\n");
    Succeeds({"rm", "d\xFF/f", "d\xFF/g"});
    EXPECT_TRUE(fs::is_empty(Path("d\xFF")));
}

TEST_F(ToolSaving, AFileOfTheLongestPathIsEditedToo)
{
    // With the mark of the copy that is kept, the path is as long as the system takes.
    constexpr std::size_t kLongest = 4094;
    std::string path = directory.Path().native();
    while (kLongest - path.size() > 202)
    {
        path += "/" + std::string(200, 'd');
        fs::create_directory(path);
    }
    path += "/" + std::string(kLongest - path.size() - 1, 'n');
    Succeeds({"dict", "set", path, "1", "int8", "1"});
    Succeeds({"dict", "set", path, "1", "int8", "2"});
    Succeeds({"set", path, "/0/1", "int8", "3", "-i"});
    Succeeds({"get", path, "/0/1"}, "3\n");
    Succeeds({"get", path + "~", "/0/1"}, "2\n");
    Succeeds({"cp", path, "short"});
    Succeeds({"cp", "short", path + "x"});
}

TEST_F(ToolSaving, TooManyOpenFilesAreSaid)
{
    if (TESSIO_TEST_SANITIZED)
        GTEST_SKIP() << "checks at run time need descriptors of their own";
    Succeeds({"dict", "set", "f", "1", "int8", "1"});
    int said = 0;
    for (unsigned count = 5; count < 12; ++count)
        for (std::vector<std::string> const& arguments :
             {std::vector<std::string>{"set", "f", "/0/1", "int8", "2", "-i"}, {"cp", "f", "t"}})
        {
            Outcome const outcome = Do(arguments, [count] { WithDescriptors(count); });
            EXPECT_EQ(outcome.err.find("permission denied"), std::string::npos) << outcome.err;
            EXPECT_EQ(outcome.err.find("no such"), std::string::npos) << outcome.err;
            if (outcome.err.find("\": too many open files; nothing is changed\n") != std::string::npos)
                ++said;
        }
    EXPECT_GE(said, 2);
}

TEST_F(ToolSaving, WhatCanNotBeReadIsNotTakenForEmpty)
{
    // The first page of a process's memory is nobody's: reading it is an input/output error.
    for (std::vector<std::string> const& arguments :
         {std::vector<std::string>{"cat", "/proc/self/mem"}, {"cat", "--async", "/proc/self/mem"}})
        Fails(arguments, 3, "tessio: cannot read \"/proc/self/mem\": input/output error after 0 bytes\n");
    for (char const* const command : {"tree", "verify", "info"})
        Fails({command, "/proc/self/mem"}, 3,
              "tessio: cannot read \"/proc/self/mem\": input/output error after 0 bytes\n");
}

struct WordsRow
{
    char const* name;
    std::vector<std::string> arguments;
    int exitCode;
    char const* err;
};

class ToolSavingWords : public ToolSaving, public ::testing::WithParamInterface<WordsRow>
{
};

TEST_P(ToolSavingWords, SayWhatTheSystemSays)
{
    fs::create_symlink("loop", Path("loop"));
    fs::create_directory(Path("d"));
    directory.File("a", "content\n");
    Fails(GetParam().arguments, GetParam().exitCode, std::string("tessio: ") + GetParam().err + "\n");
    EXPECT_EQ(Names(), "a d loop");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolSavingWords,
    ::testing::Values(
        WordsRow{"Cat", {"cat", "loop"}, 3, "cannot open \"loop\": too many symbolic links"},
        WordsRow{"Tree", {"tree", "loop"}, 3, "cannot open \"loop\": too many symbolic links"},
        WordsRow{"Stat", {"stat", "loop"}, 3, "cannot stat \"loop\": too many symbolic links"},
        WordsRow{"Copy", {"cp", "loop", "t"}, 3, "cannot copy \"loop\": too many symbolic links"},
        WordsRow{"Edit",
                 {"dict", "set", "loop", "1", "int8", "1"},
                 3,
                 "cannot open \"loop\": too many symbolic links"},
        WordsRow{"RemoveADirectory", {"rm", "d"}, 3, "cannot remove \"d\": is a directory"},
        WordsRow{"RemoveNothing", {"rm", "none"}, 1, "cannot remove \"none\": no such file"},
        WordsRow{"TouchNowhere", {"touch", "none/t"}, 3, "cannot create \"none/t\": no such directory"},
        WordsRow{"TouchALoop", {"touch", "loop"}, 3, "cannot date \"loop\": too many symbolic links"}),
    RowName());

TEST_F(ToolSaving, OnlyFilesOfThisSystemAreWritten)
{
    Succeeds({"dict", "set", "f", "1", "int8", "1"});
    fs::path const path = Path("x");
    Fails({"set", "f", "/0/1", "int8", "2", "-o", "http://h" + path.native()}, 2,
          "tessio: \"http://h" + path.native() + "\" is no file of this system: only these can be written\n");
    EXPECT_FALSE(fs::exists(path));
}
} // namespace
} // namespace KORVA::TESTS
