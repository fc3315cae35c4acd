// The command-line tool: what it prints, what it answers, what it leaves behind.
#include "Support/Process.h"
#include "Support/RowName.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fcntl.h>

#include <sstream>

namespace KORVA::TESTS
{
namespace
{
constexpr char kTool[] = TESSIO_BINARY_DIR "/bin/tessio";

class Tool : public ::testing::Test
{
protected:
    Outcome Do(std::vector<std::string> arguments, std::string const& input = {}) const
    {
        arguments.insert(arguments.begin(), kTool);
        return RunProgram(arguments, directory.Path().string(), input);
    }

    void Succeeds(std::vector<std::string> const& arguments, std::string const& out = {}) const
    {
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.out, out);
        EXPECT_EQ(outcome.err, "");
    }

    void Fails(std::vector<std::string> const& arguments, int exitCode, std::string const& err) const
    {
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, err);
    }

    std::size_t FilesInDirectory() const
    {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(directory.Path()), {}));
    }

    TemporaryDirectory directory;
};

struct UsageRow
{
    char const* name;
    std::vector<std::string> arguments;
    char const* err;
};

class ToolUsage : public Tool, public ::testing::WithParamInterface<UsageRow>
{
};

TEST_P(ToolUsage, IsRefusedWithWords)
{
    Fails(GetParam().arguments, 2, std::string("tessio: ") + GetParam().err);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolUsage,
    ::testing::Values(
        UsageRow{"NoCommand", {}, "a command is missing\nRun it with --help for more information.\n"},
        UsageRow{"UnknownCommand",
                 {"frob"},
                 "there is no command \"frob\"\nRun it with --help for more information.\n"},
        UsageRow{"NoSubcommand",
                 {"dict"},
                 "a command of dict is missing\nRun it with --help for more information.\n"},
        UsageRow{"UnknownSubcommand",
                 {"strings", "frob"},
                 "there is no command \"frob\" of strings\nRun it with --help for more information.\n"},
        UsageRow{"MissingArgument", {"tree"}, "FILE is required\nRun it with --help for more information.\n"},
        UsageRow{
            "UnknownOption",
            {"tree", "x", "--frob"},
            "The following argument was not expected: --frob\nRun it with --help for more information.\n"},
        UsageRow{"EmptyLocation", {"stat", ""}, "the location is empty\n"},
        UsageRow{"UnservedScheme",
                 {"cat", "http://h/x"},
                 "cannot open \"http://h/x\": nothing serves the scheme \"http\"\n"},
        UsageRow{"KeyIsNoNumber",
                 {"dict", "set", "d", "one", "int32", "1"},
                 "\"one\" is no key: not a whole number of at most 64 bits\n"},
        UsageRow{"KeyTooLarge",
                 {"dict", "set", "d", "4294967296", "int32", "1"},
                 "\"4294967296\" is no key: the range is 0 to 4294967295\n"},
        UsageRow{"UnknownType",
                 {"dict", "set", "d", "1", "int", "1"},
                 "\"int\" is no type; the types are int8 uint8 int16 uint16 int32 uint32 int64 uint64 float "
                 "double guid "
                 "bytes file text uri relative dict\n"},
        UsageRow{"NumberOutOfRange",
                 {"dict", "set", "d", "1", "int8", "128"},
                 "\"128\" is no int8: the range is -128 to 127\n"},
        UsageRow{"HalfAByte",
                 {"dict", "set", "d", "1", "bytes", "0a0"},
                 "\"0a0\" is no byte string: half a byte is left over\n"},
        UsageRow{"NoGuid",
                 {"dict", "set", "d", "1", "guid", "{1}"},
                 "\"{1}\" is no guid: {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX} is\n"},
        UsageRow{
            "NoDate",
            {"touch", "x", "--date", "yesterday"},
            "\"yesterday\" is no date: write YYYY-MM-DDTHH:MM:SS[.fraction]Z, or nanoseconds since 1970\n"}),
    RowName());

TEST_F(Tool, EveryLevelHasHelp)
{
    std::vector<std::vector<std::string>> const commands = {{},
                                                            {"uri"},
                                                            {"strings"},
                                                            {"strings", "set"},
                                                            {"strings", "get"},
                                                            {"strings", "rm"},
                                                            {"strings", "list"},
                                                            {"strings", "import"},
                                                            {"dict"},
                                                            {"dict", "set"},
                                                            {"dict", "get"},
                                                            {"dict", "rm"},
                                                            {"dict", "list"},
                                                            {"tree"},
                                                            {"stat"},
                                                            {"cat"},
                                                            {"cp"},
                                                            {"rm"},
                                                            {"touch"}};
    for (std::vector<std::string> arguments : commands)
    {
        arguments.push_back("--help");
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << arguments.front();
        EXPECT_NE(outcome.out.find("Usage: tessio"), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(Tool, UriShowsTheParts)
{
    Succeeds({"uri", "C:\\dir\\f.txt", "http://u@h.example:8080/a%b?q"},
             "C:\\dir\\f.txt\n"
             "  scheme    file\n"
             "  host\n"
             "  port\n"
             "  path      /C:/dir/f.txt\n"
             "  query\n"
             "  name      f.txt\n"
             "  absolute  file:///C:/dir/f.txt\n"
             "http://u@h.example:8080/a%b?q\n"
             "  scheme    http\n"
             "  host      h.example\n"
             "  port      8080\n"
             "  path      /a%b\n"
             "  query     q\n"
             "  name      a%b\n"
             "  absolute  http://u@h.example:8080/a%b?q\n");
}

TEST_F(Tool, UriPrintsJson)
{
    Succeeds({"uri", "--json", "Disk:a:b"}, "{\n"
                                            "  \"schema\": 1,\n"
                                            "  \"uris\": [\n"
                                            "    {\n"
                                            "      \"location\": \"Disk:a:b\",\n"
                                            "      \"scheme\": \"file\",\n"
                                            "      \"host\": \"\",\n"
                                            "      \"port\": 0,\n"
                                            "      \"path\": \"/Disk/a/b\",\n"
                                            "      \"query\": \"\",\n"
                                            "      \"name\": \"b\",\n"
                                            "      \"absolute\": \"file:///Disk/a/b\"\n"
                                            "    }\n"
                                            "  ]\n"
                                            "}\n");
}

TEST_F(Tool, StringsAreSetFetchedListedAndRemoved)
{
    Succeeds({"strings", "set", "s", "b", "two words"});
    Succeeds({"strings", "set", "s", "a", "line\nbreak \"quoted\""});
    Succeeds({"strings", "get", "s", "b"}, "two words\n");
    Succeeds({"strings", "list", "s"}, "a=\"line\\nbreak \\\"quoted\\\"\"\nb=\"two words\"\n");
    Succeeds({"strings", "rm", "s", "b"});
    Fails({"strings", "get", "s", "b"}, 1, "tessio: \"s\" has no key \"b\"\n");
    Fails({"strings", "rm", "s", "b"}, 1, "tessio: \"s\" has no key \"b\"\n");
    EXPECT_EQ(FilesInDirectory(), 1u);
}

TEST_F(Tool, StringsKeepTheByteOrderOfTheFile)
{
    Succeeds({"strings", "set", "--big-endian", "s", "a", "x"});
    std::string const expected("\xCD\x21\x0A\x56\x28\x4C\x4B\x7C\x81\x3F\x42\xAD\xDF\x77\x48\x53"
                               "\0\0\0\0\0\0\0\x14\0\0\0\1\0\0\0\2\0a\0\0\0\2\0x\0\0\0\0",
                               44);
    EXPECT_EQ(Content(directory.Path() / "s"), expected);
    Succeeds({"strings", "set", "s", "a", "x"});
    EXPECT_EQ(Content(directory.Path() / "s"), expected);
    Succeeds({"strings", "get", "s", "a"}, "x\n");
}

TEST_F(Tool, ImportTakesQuotesAsTheSystemDefinesThem)
{
    directory.File("release", "# a comment\n"
                              "\n"
                              "ID=debian\n"
                              "NAME=\"Debian GNU/Linux\"\n"
                              "PRETTY_NAME='It is a $name'\r\n"
                              "ESCAPED=\"a \\\"b\\\" \\$c \\\\ \\`d\\` \\e\"\n"
                              "EMPTY=\n"
                              "  INDENTED=yes  \n"
                              "LAST=no-newline");
    Succeeds({"strings", "import", "s", "release"});
    Succeeds({"strings", "list", "s"}, "EMPTY=\"\"\n"
                                       "ESCAPED=\"a \\\"b\\\" $c \\\\ `d` \\\\e\"\n"
                                       "ID=\"debian\"\n"
                                       "INDENTED=\"yes\"\n"
                                       "LAST=\"no-newline\"\n"
                                       "NAME=\"Debian GNU/Linux\"\n"
                                       "PRETTY_NAME=\"It is a $name\"\n");
    EXPECT_EQ(Do({"strings", "import", "s", "-"}, "ID=other\n").exitCode, 0);
    Succeeds({"strings", "get", "s", "ID"}, "other\n");
}

struct ImportRow
{
    char const* name;
    char const* text;
    char const* why;
};

class ToolImport : public Tool, public ::testing::WithParamInterface<ImportRow>
{
};

TEST_P(ToolImport, NamesTheLineThatIsWrongAndChangesNothing)
{
    Succeeds({"strings", "set", "s", "KEPT", "yes"});
    std::string const before = Content(directory.Path() / "s");
    directory.File("source", GetParam().text);
    Fails({"strings", "import", "s", "source"}, 3, std::string("tessio: source:2: ") + GetParam().why + "\n");
    EXPECT_EQ(Content(directory.Path() / "s"), before);
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolImport,
                         ::testing::Values(ImportRow{"NotUTF8", "A=1\nB=\xFF\n", "not valid UTF-8"},
                                           ImportRow{"NoAssignment", "A=1\nnonsense\n",
                                                     "not of the form KEY=value"},
                                           ImportRow{"BadName", "A=1\n2B=x\n", "not of the form KEY=value"},
                                           ImportRow{"OpenQuote", "A=1\nB=\"x\n", "a quote is not closed"},
                                           ImportRow{"BareBlank", "A=1\nB=x y\n", "blanks must be quoted"},
                                           ImportRow{"BareDollar", "A=1\nB=$x\n", "'$' must be quoted"},
                                           ImportRow{"ExpandedDollar", "A=1\nB=\"$x\"\n",
                                                     "'$' must be escaped: nothing is expanded"}),
                         RowName());

TEST_F(Tool, FilesAreCopiedDatedShownPrintedAndRemoved)
{
    std::filesystem::permissions(directory.File("a", "content\n"), std::filesystem::perms(0640));
    Succeeds({"cp", "a", "b"});
    Succeeds({"cat", "a", "b"}, "content\ncontent\n");
    Succeeds({"touch", "b", "--date", "2001-02-03T05:05:06.7+01:00"});
    Outcome const shown = Do({"stat", "b"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_EQ(
        shown.out.find("b\n  path         " + (directory.Path() / "b").string() +
                       "\n  size         8\n  modified     2001-02-03T04:05:06.700000000Z\n  created      "),
        0u)
        << shown.out;
    EXPECT_NE(shown.out.find("\n  permissions  rw-r-----\n  hidden       no\n"), std::string::npos)
        << shown.out;
    Succeeds({"rm", "a", "b"});
    Fails({"rm", "b"}, 1, "tessio: cannot remove \"b\": no such file\n");
    Fails({"stat", "b"}, 1, "tessio: cannot stat \"b\": no such file\n");
    Fails({"cat", "b"}, 1, "tessio: cannot open \"b\": no such file\n");
    Fails({"cp", "b", "c"}, 1, "tessio: cannot copy \"b\": no such file\n");
    EXPECT_EQ(FilesInDirectory(), 0u);
}

TEST_F(Tool, AnyNameOfALocalFileIsTakenAsItIs)
{
    std::string const name = "50% off; really? #1 a\\b c:d e\u0301.txt";
    directory.File(name, "odd\n");
    Succeeds({"cat", name}, "odd\n");
    Succeeds({"cp", name, "plain"});
    Succeeds({"cat", "plain"}, "odd\n");
    Succeeds({"rm", name});
    EXPECT_EQ(FilesInDirectory(), 1u);
}

TEST_F(Tool, CopyRefusesWhatWouldLoseData)
{
    directory.File("a", "content\n");
    std::filesystem::create_directory(directory.Path() / "d");
    Fails({"cp", "a", "a"}, 3,
          "tessio: cannot copy \"a\" to \"a\": source and target are the same file; nothing is changed\n");
    Fails({"cp", "d", "e"}, 3, "tessio: cannot copy \"d\" to \"e\": is a directory; nothing is changed\n");
    Fails({"cat", "d"}, 3, "tessio: cannot open \"d\": is a directory\n");
    Fails({"rm", "d"}, 3, "tessio: cannot remove \"d\": is a directory\n");
    Succeeds({"cp", "a", "d"});
    EXPECT_EQ(Content(directory.Path() / "d/a"), "content\n");
}

TEST_F(Tool, AFileLockedByAnotherProcessIsNotEdited)
{
    Succeeds({"strings", "set", "s", "a", "1"});
    std::string const before = Content(directory.Path() / "s");
    int const held = open((directory.Path() / "s").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_SH), 0);
    Fails({"strings", "set", "s", "a", "2"}, 3, "tessio: cannot open \"s\": locked by another process\n");
    EXPECT_EQ(Content(directory.Path() / "s"), before);
    Succeeds({"strings", "get", "s", "a"}, "1\n");
    close(held);
    Succeeds({"strings", "set", "s", "a", "2"});
}

TEST_F(Tool, AnEditedFileKeepsItsPermissionsAndLeavesNoOther)
{
    Succeeds({"strings", "set", "s", "a", "1"});
    std::filesystem::permissions(directory.Path() / "s", std::filesystem::perms(0600));
    Succeeds({"strings", "set", "s", "a", "2"});
    EXPECT_EQ(std::filesystem::status(directory.Path() / "s").permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(FilesInDirectory(), 1u);
}

TEST_F(Tool, AFullDeviceForTheOutputIsAnError)
{
    directory.File("a", std::string(100000, 'x'));
    std::string const command =
        std::string("cd ") + directory.Path().string() + " && " + kTool + " cat a > /dev/full";
    Outcome const outcome = RunProgram({"/bin/sh", "-c", command}, directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.err, "tessio: cannot write to standard output: No space left on device\n");
}

TEST_F(Tool, ANameWithAColonIsAName)
{
    directory.File("a", "content\n");
    for (std::string const name : {"a:b", "file:", ":y", "C:\\x", "\\\\server\\x", "12:30"})
    {
        Succeeds({"cp", "a", name});
        EXPECT_EQ(Content(directory.Path() / name), "content\n") << name;
        Succeeds({"rm", name});
    }
    EXPECT_EQ(FilesInDirectory(), 1u);
}

TEST_F(Tool, ATargetThatEndsInASlashIsADirectory)
{
    directory.File("a", "content\n");
    Fails({"cp", "a", "d/"}, 3, "tessio: cannot copy \"a\" to \"d/\": no such directory\n");
    EXPECT_EQ(FilesInDirectory(), 1u);
}

TEST_F(Tool, WhatIsNoRegularFileIsNotRead)
{
    ASSERT_EQ(mkfifo((directory.Path() / "pipe").c_str(), 0600), 0);
    Fails({"cat", "pipe"}, 3, "tessio: cannot open \"pipe\": is not a regular file\n");
    Fails({"tree", "/dev/zero"}, 3, "tessio: cannot open \"/dev/zero\": is not a regular file\n");
}

TEST_F(Tool, ALoopOfLinksIsNotReplaced)
{
    std::filesystem::create_symlink("loop", directory.Path() / "loop");
    EXPECT_EQ(Do({"strings", "set", "loop", "a", "b"}).exitCode, 3);
    EXPECT_TRUE(std::filesystem::is_symlink(directory.Path() / "loop"));
}

TEST_F(Tool, AnInputThatCantBeReadIsNotAnEmptyOne)
{
    std::string const command =
        std::string("cd ") + directory.Path().string() + " && " + kTool + " strings import s - <&-";
    Outcome const outcome = RunProgram({"/bin/sh", "-c", command}, directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.err, "tessio: cannot read standard input\n");
    EXPECT_EQ(FilesInDirectory(), 0u);
}

TEST_F(Tool, HelpThatCantBePrintedIsAnError)
{
    Outcome const outcome =
        RunProgram({"/bin/sh", "-c", std::string(kTool) + " --help > /dev/full"}, directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.err, "tessio: cannot write to standard output\n");
}

TEST_F(Tool, ArgumentsAreShownWithoutTheirControlCharacters)
{
    Fails({"tree", "a", "/0", "\x1B[31mred"}, 2,
          "tessio: The following argument was not expected: \\u{1B}[31mred\nRun it with --help for more "
          "information.\n");
}

TEST_F(Tool, EditsOfManyProcessesAreKeptOrRefused)
{
    // Each process counts the edits that the tool said were done.
    std::string const script = "cd " + directory.Path().string() +
                               "\nfor p in 1 2 3 4; do\n(for i in 1 2 3 4 5 6 7 8; do " + kTool +
                               " strings set s k$p-$i v 2>/dev/null && echo k$p-$i; done; :) &\ndone\nwait\n";
    Outcome const outcome = RunProgram({"/bin/sh", "-c", script}, directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 0);
    Outcome const listed = Do({"strings", "list", "s"});
    std::istringstream done(outcome.out);
    int edits = 0;
    for (std::string key; done >> key; ++edits)
        EXPECT_NE(listed.out.find(key + "=\"v\"\n"), std::string::npos) << key << " was lost";
    EXPECT_GE(edits, 1);
}
} // namespace
} // namespace KORVA::TESTS
