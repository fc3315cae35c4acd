// What commands must never do to the files they read, and small things that were once lost or confused.
#include "Integration/ToolRun.h"
#include "Support/Bytes.h"
#include "Support/RowName.h"

#include <sys/stat.h>

#include <filesystem>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

// A dictionary with the 32-bit integer 7 under key 1.
constexpr char kSeven[] = "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  3C 00 00 00 00 00 00 00"
                          "01 00 00 00  01 00 00 00"
                          "21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  18 00 00 00 00 00 00 00"
                          "56 32 33 53  07 00 00 00 00 00 00 00  00 00 00 00 00 00 1C 40  00 00 00 00"
                          "00 00 00 00";
// The empty URI, and records of somebody else's class: of two bytes, and of none.
constexpr char kEmptyURI[] = "9E B4 17 25 E5 BC 4C 40 85 24 3A 6E C3 C3 B6 33  08 00 00 00 00 00 00 00"
                             "00 00 00 00 00 00 00 00";
constexpr char kTwoBytes[] =
    "10 32 54 76 98 BA DC 4E 9F 01 23 45 67 89 AB CD  02 00 00 00 00 00 00 00  01 02";
constexpr char kNoBytes[] = "10 32 54 76 98 BA DC 4E 9F 01 23 45 67 89 AB CD  00 00 00 00 00 00 00 00";

class ToolRecordKept : public ToolRun
{
protected:
    std::string Put(std::string const& name, std::string const& hex) const
    {
        Bytes const bytes = Hex(hex);
        std::string const content(bytes.begin(), bytes.end());
        directory.File(name, content);
        return content;
    }
};

/// HERE stands for the directory's path.
struct OntoRow
{
    char const* name;
    std::vector<std::string> arguments;
    std::string err;
};

class ToolRecordOnto : public ToolRecordKept, public ::testing::WithParamInterface<OntoRow>
{
protected:
    std::string Here(std::string text) const
    {
        if (std::size_t const at = text.find("HERE"); at != std::string::npos)
            text.replace(at, 4, directory.Path().string());
        return text;
    }
};

TEST_P(ToolRecordOnto, IsRefused)
{
    std::string const content = Put("f", kSeven);
    directory.File("t", "tessio-dump 1 little-endian\n");
    fs::create_symlink("f", Path("l"));
    fs::create_hard_link(Path("f"), Path("h"));
    fs::create_symlink("t", Path("s"));
    fs::create_symlink("new", Path("d"));
    std::vector<std::string> arguments;
    for (std::string const& argument : GetParam().arguments)
        arguments.push_back(Here(argument));
    Fails(arguments, 2, "tessio: " + Here(GetParam().err));
    EXPECT_FALSE(fs::exists(Path("new")));
    EXPECT_EQ(Content(Path("f")), content);
    EXPECT_EQ(Content(Path("t")), "tessio-dump 1 little-endian\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordOnto,
    ::testing::Values(
        OntoRow{
            "Extract", {"extract", "f", "/0/1", "-o", "f"}, "\"f\" is the file itself, which is only read\n"},
        OntoRow{"Dump", {"dump", "f", "-o", "./f"}, "\"./f\" is the file itself, which is only read\n"},
        OntoRow{"Build", {"build", "t", "-o", "t"}, "\"t\" is the file itself, which is only read\n"},
        OntoRow{"PageOfTree", {"tree", "--html", "f", "f"}, "\"f\" is the file itself, which is only read\n"},
        OntoRow{"PageOfTreeByALink",
                {"tree", "--html", "l", "f"},
                "\"l\" is the file itself, which is only read\n"},
        OntoRow{"PageOfTreeByItsOtherName",
                {"tree", "--html", "h", "f"},
                "\"h\" is the file itself, which is only read\n"},
        OntoRow{"PageOfVerify",
                {"verify", "--html", "./f", "f"},
                "\"./f\" is the file itself, which is only read\n"},
        OntoRow{"PageOfAFileThatIsALink",
                {"verify", "--html", "f", "l"},
                "\"f\" is the file itself, which is only read\n"},
        OntoRow{"SetOntoTheRecordsFile",
                {"set", "t", "/0", "record", "f", "-o", "f"},
                "\"f\" is the file itself, which is only read\n"},
        OntoRow{"SetOntoTheValuesFile",
                {"set", "f", "/0/1", "file", "t", "-o", "t"},
                "\"t\" is the file itself, which is only read\n"},
        OntoRow{"PageOntoAFileNamedByAURL",
                {"tree", "file://HERE/f", "--html", "f"},
                "\"f\" is the file itself, which is only read\n"},
        OntoRow{"PageNamedByAURL",
                {"verify", "f", "--html", "file://HERE/f"},
                "\"file://HERE/f\" is the file itself, which is only read\n"},
        OntoRow{"DumpOntoAURLWithAHost",
                {"dump", "f", "-o", "file://localhostHERE/f"},
                "\"file://localhostHERE/f\" is the file itself, which is only read\n"},
        OntoRow{"ConvertOntoAURL",
                {"convert", "f", "--endian", "big", "-o", "file://HERE/f"},
                "\"file://HERE/f\" is the file itself: use --in-place, which keeps \"f~\"\n"},
        OntoRow{"ReportOntoADamagedFileNamedByAURL",
                {"salvage", "file://HERE/f", "-o", "r", "--report", "f"},
                "\"f\" is the file itself, which is only read\n"},
        OntoRow{"ReportOntoResultByAURL",
                {"salvage", "f", "-o", "r", "--report", "file://HERE/r"},
                "result and report can't both be \"r\"\n"},
        OntoRow{"ReportOntoResultByALinkToNothingYet",
                {"salvage", "f", "-o", "new", "--report", "d"},
                "result and report can't both be \"new\"\n"},
        OntoRow{"ReportOntoResultByAnotherName",
                {"salvage", "f", "-o", "r", "--report", "./r"},
                "result and report can't both be \"r\"\n"},
        OntoRow{"ReportOntoResultThatIsALink",
                {"salvage", "f", "-o", "s", "--report", "t"},
                "result and report can't both be \"s\"\n"},
        OntoRow{"ReportOntoResult",
                {"salvage", "f", "-o", "r", "--report", "r"},
                "result and report can't both be \"r\"\n"}),
    RowName());

TEST_F(ToolRecordKept, StandardInputIsAFileThatIsReadToo)
{
    std::string const content = Put("f", kSeven);
    TESTS::Outcome const run =
        TESTS::RunProgram({"/bin/sh", "-c", std::string(TESSIO_BINARY_DIR "/bin/tessio tree - --html f <f")},
                          directory.Path().string());
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(Content(Path("f")), content);
}

TEST_F(ToolRecordKept, TwoNamesOfOneFileAreNotEditedInPlace)
{
    std::string const content = Put("f", kSeven);
    fs::create_symlink("f", Path("f~"));
    Fails({"set", "f", "/0/1", "int32", "8", "-i"}, 3,
          "tessio: cannot keep \"f~\": it leads to \"f\" itself; nothing is changed\n");
    EXPECT_EQ(Content(Path("f")), content);
    EXPECT_TRUE(fs::is_symlink(Path("f~")));
}

/// Whoever is told that the edit is done finds it in the file, whatever others do at the same time.
TEST_F(ToolRecordKept, EditsAtOnceLoseNothingThatWasToldAsDone)
{
    Put("f", kSeven);
    std::string const script =
        "for p in 1 2 3 4; do (for i in 1 2 3 4 5 6 7 8; do "
        "if " TESSIO_BINARY_DIR "/bin/tessio set f /0/$((p * 100 + i)) int32 1 -i 2>/dev/null; "
        "then echo $((p * 100 + i)) >>done.$p; fi; done) & done; wait; "
        "for k in $(cat done.*); do " TESSIO_BINARY_DIR
        "/bin/tessio get f /0/$k >/dev/null || echo lost $k; done";
    TESTS::Outcome const run = TESTS::RunProgram({"/bin/sh", "-c", script}, directory.Path().string());
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(ToolRecordKept, TheCopyOfAPrivateFileIsPrivate)
{
    Put("f", kSeven);
    ASSERT_EQ(chmod(Path("f").c_str(), 0600), 0);
    Succeeds({"set", "f", "/0/1", "int32", "8", "--in-place"});
    struct stat status = {};
    ASSERT_EQ(stat(Path("f~").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0600u);
    ASSERT_EQ(stat(Path("f").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0600u);
}

struct SmallRow
{
    char const* name;
    std::string hex;
};

class ToolRecordSmall : public ToolRecordKept, public ::testing::WithParamInterface<SmallRow>
{
};

TEST_P(ToolRecordSmall, IsKeptBySalvage)
{
    std::string const content = Put("f", GetParam().hex);
    EXPECT_EQ(Do({"salvage", "f", "-o", "o"}).exitCode, 0);
    EXPECT_EQ(Content(Path("o")), content);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordSmall,
    ::testing::Values(SmallRow{"AtTheEnd", std::string(kEmptyURI) + kTwoBytes},
                      SmallRow{"Between", std::string(kEmptyURI) + kTwoBytes + kEmptyURI},
                      SmallRow{"OfNothing", std::string(kEmptyURI) + kNoBytes + kEmptyURI}),
    RowName());

TEST_F(ToolRecordKept, DeepDocumentsAreRefused)
{
    directory.File("j", "{\"format\":\"tessio-dump\",\"schema\":" + std::string(100000, '[') +
                            std::string(100000, ']') + "}");
    Fails({"build", "j", "-o", "o"}, 3, "tessio: j: it is nested more than 3100 deep\n");
    EXPECT_EQ(Names(), "j");
}

TEST_F(ToolRecordKept, TextsOfOddLengthAreComparedByteForByte)
{
    // Texts of three bytes: 68 00 61 and 68 00 62.
    constexpr char kHead[] = "21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  0F 00 00 00 00 00 00 00"
                             "43 49 4E 55  03 00 00 00  68 00";
    Put("a", std::string(kHead) + "61  00 00 00 00");
    Put("b", std::string(kHead) + "62  00 00 00 00");
    EXPECT_EQ(Do({"diff", "a", "a"}).exitCode, 0);
    Outcome const outcome = Do({"diff", "a", "b"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "~ /0  DictValue text \"h\" -> DictValue text \"h\"\n");
}

TEST_F(ToolRecordKept, AMissingFileIsTroubleAndNoDifference)
{
    Put("a", kSeven);
    Fails({"diff", "a", "b"}, 3, "tessio: cannot open \"b\": no such file\n");
}
} // namespace
} // namespace KORVA::TESTS
