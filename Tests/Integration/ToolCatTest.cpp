// Printing files with the tool: read at once, ahead of time, through a buffer.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

#include <sys/stat.h>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

using ToolCat = ToolRun;

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
                              {"OneByteMoreThanAllPieces", 8388609}};

class ToolCatSize : public ToolCat, public ::testing::WithParamInterface<SizeRow>
{
};

TEST_P(ToolCatSize, IsPrintedWholeInEveryWay)
{
    std::string const content = Pattern(GetParam().size);
    directory.File("a", content);
    for (std::vector<std::string> const& print : {std::vector<std::string>{"cat", "a"},
                                                  {"cat", "--async", "a"},
                                                  {"cat", "--buffer", "1", "a"},
                                                  {"cat", "--buffer", "1000", "a"},
                                                  {"cat", "--buffer", "64K", "a"},
                                                  {"cat", "--buffer", "16M", "a"}})
    {
        Outcome const outcome = Do(print);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_TRUE(outcome.out == content) << print[1] << ": " << outcome.out.size() << " bytes";
        EXPECT_EQ(outcome.err, "");
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolCatSize, ::testing::ValuesIn(kSizes), RowName());

struct RefusalRow
{
    char const* name;
    std::vector<std::string> arguments;
    int exitCode;
    char const* err;
};

class ToolCatRefusal : public ToolCat, public ::testing::WithParamInterface<RefusalRow>
{
};

TEST_P(ToolCatRefusal, SaysWhyAndPrintsNothing)
{
    directory.File("a", "content\n");
    fs::create_directory(Path("d"));
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0666), 0);
    fs::resize_file(directory.File("huge", ""), 3ULL << 30);
    Fails(GetParam().arguments, GetParam().exitCode, std::string("tessio: ") + GetParam().err + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolCatRefusal,
    ::testing::Values(
        RefusalRow{
            "BufferOfNothing",
            {"cat", "--buffer", "0", "a"},
            2,
            "--buffer: Value 0 not in range 1 to 2147483647\nRun it with --help for more information."},
        RefusalRow{
            "BufferBelowNothing",
            {"cat", "--buffer", "-1", "a"},
            2,
            "--buffer: Value -1 not in range 1 to 2147483647\nRun it with --help for more information."},
        RefusalRow{"BufferOfTwoGiB",
                   {"cat", "--buffer", "2G", "a"},
                   2,
                   "--buffer: Value 2147483648 not in range 1 to 2147483647\nRun it with --help for more "
                   "information."},
        RefusalRow{"BufferThatIsNoNumber",
                   {"cat", "--buffer", "", "a"},
                   2,
                   "--buffer: Input is empty\nRun it with --help for more information."},
        RefusalRow{"BufferAheadOfTime",
                   {"cat", "--buffer", "1K", "--async", "a"},
                   2,
                   "--async excludes --buffer\nRun it with --help for more information."},
        RefusalRow{"BufferInFrontOfThreeGiB",
                   {"cat", "--buffer", "1M", "huge"},
                   2,
                   "cannot read \"huge\" through a buffer: it has 2 GiB or more"},
        RefusalRow{"DirectoryReadAhead", {"cat", "--async", "d"}, 3, "cannot open \"d\": is a directory"},
        RefusalRow{
            "PipeReadAhead", {"cat", "--async", "pipe"}, 3, "cannot open \"pipe\": is not a regular file"},
        RefusalRow{"DirectoryThroughABuffer",
                   {"cat", "--buffer", "1K", "d"},
                   3,
                   "cannot open \"d\": is a directory"},
        RefusalRow{"NoFileReadAhead", {"cat", "--async", "none"}, 1, "cannot open \"none\": no such file"}),
    RowName());

TEST_F(ToolCat, FilesOfTheSystemThatTellNoSizeAreReadToTheirEnd)
{
    std::string const content = Content("/proc/version");
    ASSERT_NE(content, "");
    Succeeds({"cat", "/proc/version"}, content);
    Succeeds({"cat", "--async", "/proc/version"}, content);
    Succeeds({"cat", "--buffer", "1K", "/proc/version"}, content);
}

TEST_F(ToolCat, FilesArePrintedInTheirOrderAsFarAsTheyGo)
{
    directory.File("a", "first\n");
    directory.File("b", "");
    directory.File("c", Pattern(300000));
    for (std::vector<std::string> print :
         {std::vector<std::string>{"cat"}, {"cat", "--async"}, {"cat", "--buffer", "512"}})
    {
        print.insert(print.end(), {"a", "b", "c", "a"});
        Succeeds(print, "first\n" + Pattern(300000) + "first\n");
        print.insert(print.end() - 2, "none");
        Outcome const outcome = Do(print);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.out, "first\n");
        EXPECT_EQ(outcome.err, "tessio: cannot open \"none\": no such file\n");
    }
}

TEST_F(ToolCat, VerboseTellsWhatABufferSaves)
{
    std::string const content = Pattern(100000);
    directory.File("a", content);
    Succeeds({"--verbose", "cat", "--buffer", "1000", "a"}, content,
             "tessio: \"a\": 100 reads of the file for 100000 bytes\n");
    Succeeds({"--verbose", "cat", "--buffer", "4K", "a"}, content,
             "tessio: \"a\": 25 reads of the file for 100000 bytes\n");
    Succeeds({"--verbose", "cat", "--buffer", "0x10000", "a"}, content,
             "tessio: \"a\": 2 reads of the file for 100000 bytes\n");
}

TEST_F(ToolCat, AnOutputThatIsFullIsAnError)
{
    directory.File("a", Pattern(100000));
    for (char const* const way : {"--async", "--buffer=1K"})
    {
        std::string const command =
            std::string(TESSIO_BINARY_DIR "/bin/tessio cat ") + way + " a > /dev/full";
        Outcome const outcome = RunProgram({"/bin/sh", "-c", command}, directory.Path().string());
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.err, "tessio: cannot write to standard output: No space left on device\n");
    }
}

} // namespace
} // namespace KORVA::TESTS
