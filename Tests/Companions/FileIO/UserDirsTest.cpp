// The user's list of directories: user-dirs.dirs in the user configuration.
#include "Companions/Child.h"
#include "Companions/FileIO/DirFixture.h"

namespace KORVA::TESTS
{
namespace
{
using namespace std::string_literals;

/// The list lies in a configuration directory of the test's own.
class UserDirsFixture : public DirTest
{
protected:
    UserDirsFixture() { environment.Set("XDG_CONFIG_HOME", directory.Path()); }

    void WriteList(std::string_view content) const { directory.File("user-dirs.dirs", content); }
};

struct KeyRow
{
    char const* name;
    char const* key;
    int32 type;
};

class UserDirKeyTest : public UserDirsFixture, public ::testing::WithParamInterface<KeyRow>
{
};

TEST_P(UserDirKeyTest, NamesItsDirectoryAlone)
{
    WriteList("XDG_"s + GetParam().key + "_DIR=\"/listed\"\n");
    constexpr char const* kUsual[] = {
        "none",          "/home/u",          "/home/u/Desktop", "/home/u/Documents", "/home/u/Downloads",
        "/home/u/Music", "/home/u/Pictures", "/home/u/Videos",  "/home/u/Templates", "/home/u/Public",
    };
    for (int32 type = 0; type <= 9; ++type)
        EXPECT_EQ(Where(type), type == GetParam().type ? "/listed" : kUsual[type]) << type;
}

KeyRow const kKeys[] = {
    {"Desktop", "DESKTOP", 2},
    {"Documents", "DOCUMENTS", 3},
    {"Download", "DOWNLOAD", 4},
    {"Music", "MUSIC", 5},
    {"Pictures", "PICTURES", 6},
    {"Videos", "VIDEOS", 7},
    {"Templates", "TEMPLATES", 8},
    {"PublicShare", "PUBLICSHARE", 9},
    // Known to nobody.
    {"Home", "HOME", -1},
    {"Downloads", "DOWNLOADS", -1},
    {"NoKey", "", -1},
};
INSTANTIATE_TEST_SUITE_P(Keys, UserDirKeyTest, ::testing::ValuesIn(kKeys), RowName());

struct Row
{
    char const* name;
    std::string content;
    /// Where the documents are.
    char const* path;
};

class UserDirsTest : public UserDirsFixture, public ::testing::WithParamInterface<Row>
{
};

TEST_P(UserDirsTest, SayWhereTheDocumentsAre)
{
    WriteList(GetParam().content);
    EXPECT_EQ(Where(3), GetParam().path);
}

Row const kValues[] = {
    {"Absolute", "XDG_DOCUMENTS_DIR=\"/srv/papers\"\n", "/srv/papers"},
    {"BelowTheHome", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", "/home/u/Papers"},
    {"DeepBelowTheHome", "XDG_DOCUMENTS_DIR=\"$HOME/a/b c/d\"\n", "/home/u/a/b c/d"},
    {"TheHome", "XDG_DOCUMENTS_DIR=\"$HOME\"\n", "/home/u"},
    {"TheHomeWithASeparator", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n", "/home/u"},
    {"TrailingSeparators", "XDG_DOCUMENTS_DIR=\"$HOME/Papers//\"\n", "/home/u/Papers"},
    {"TrailingSeparatorOfAnAbsolute", "XDG_DOCUMENTS_DIR=\"/srv/\"\n", "/srv"},
    {"Root", "XDG_DOCUMENTS_DIR=\"/\"\n", "/"},
    {"BeyondAscii", "XDG_DOCUMENTS_DIR=\"$HOME/\xC3\x84kten\"\n", "/home/u/\xC3\x84kten"},
    {"HomeInTheMiddleIsAName", "XDG_DOCUMENTS_DIR=\"/a/\\$HOME\"\n", "/a/$HOME"},
};
INSTANTIATE_TEST_SUITE_P(Values, UserDirsTest, ::testing::ValuesIn(kValues), RowName());

Row const kEscapes[] = {
    {"Quote", "XDG_DOCUMENTS_DIR=\"/a\\\"b\"\n", "/a\"b"},
    {"Backslash", "XDG_DOCUMENTS_DIR=\"/a\\\\b\"\n", "/a\\b"},
    {"BackslashAtTheEnd", "XDG_DOCUMENTS_DIR=\"/a\\\\\"\n", "/a\\"},
    {"DollarAndBacktick", "XDG_DOCUMENTS_DIR=\"/a\\$b\\`c\"\n", "/a$b`c"},
    {"BelowTheHome", "XDG_DOCUMENTS_DIR=\"$HOME/a\\\"b\"\n", "/home/u/a\"b"},
    {"EscapedHomeIsNone", "XDG_DOCUMENTS_DIR=\"\\$HOME/a\"\n", "/home/u/Documents"},
    {"EscapedQuoteClosesNothing", "XDG_DOCUMENTS_DIR=\"/a\\\"\n", "/home/u/Documents"},
};
INSTANTIATE_TEST_SUITE_P(Escapes, UserDirsTest, ::testing::ValuesIn(kEscapes), RowName());

Row const kLines[] = {
    {"Empty", "", "/home/u/Documents"},
    {"Comments", "# XDG_DOCUMENTS_DIR=\"/no\"\n#XDG_DOCUMENTS_DIR=\"/no\"\n  # a\n", "/home/u/Documents"},
    {"AmongOthers",
     "# Written by hand\n\nXDG_DESKTOP_DIR=\"/no\"\nXDG_DOCUMENTS_DIR=\"/yes\"\nXDG_MUSIC_DIR=\"/no\"\n",
     "/yes"},
    {"NoLineEnd", "XDG_DOCUMENTS_DIR=\"/yes\"", "/yes"},
    {"CarriageReturn", "XDG_DOCUMENTS_DIR=\"/yes\"\r\n", "/yes"},
    {"CommentBehind", "XDG_DOCUMENTS_DIR=\"/yes\" # or not\n", "/yes"},
    {"BlanksInFront", " \t XDG_DOCUMENTS_DIR=\"/yes\"\n", "/yes"},
    {"BlanksAroundTheEqualsSign", "XDG_DOCUMENTS_DIR =\t\"/yes\"\n", "/yes"},
    {"BlanksBehind", "XDG_DOCUMENTS_DIR=\"/yes\" \t\n", "/yes"},
    {"LaterWins", "XDG_DOCUMENTS_DIR=\"/no\"\nXDG_DOCUMENTS_DIR=\"$HOME/yes\"\n", "/home/u/yes"},
    {"LaterOfThreeWins",
     "XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"\nXDG_MUSIC_DIR=\"/c\"\nXDG_DOCUMENTS_DIR=\"/yes\"\n",
     "/yes"},
    {"LaterMalformedLoses", "XDG_DOCUMENTS_DIR=\"/yes\"\nXDG_DOCUMENTS_DIR=\"/no\n", "/yes"},
    {"LaterRelativeLoses", "XDG_DOCUMENTS_DIR=\"/yes\"\nXDG_DOCUMENTS_DIR=\"no\"\n", "/yes"},
    {"LaterEmptyLoses", "XDG_DOCUMENTS_DIR=\"/yes\"\nXDG_DOCUMENTS_DIR=\"\"\n", "/yes"},
    {"LaterCommentLoses", "XDG_DOCUMENTS_DIR=\"/yes\"\n#XDG_DOCUMENTS_DIR=\"/no\"\n", "/yes"},
    {"LongLineInFront", "#" + std::string(100000, 'x') + "\nXDG_DOCUMENTS_DIR=\"/yes\"\n", "/yes"},
    {"NullCharactersElsewhere", "\0\0\nXDG_DOCUMENTS_DIR=\"/yes\"\n"s, "/yes"},
    {"NoUTF8Elsewhere", "XDG_MUSIC_DIR=\"/\xFF\"\nXDG_DOCUMENTS_DIR=\"/yes\"\n", "/yes"},
};
INSTANTIATE_TEST_SUITE_P(Lines, UserDirsTest, ::testing::ValuesIn(kLines), RowName());

// The usual place.
Row const kMalformed[] = {
    {"Relative", "XDG_DOCUMENTS_DIR=\"Papers\"\n", "/home/u/Documents"},
    {"RelativeWithADot", "XDG_DOCUMENTS_DIR=\"./Papers\"\n", "/home/u/Documents"},
    {"Tilde", "XDG_DOCUMENTS_DIR=\"~/Papers\"\n", "/home/u/Documents"},
    {"EmptyValue", "XDG_DOCUMENTS_DIR=\"\"\n", "/home/u/Documents"},
    {"NoValue", "XDG_DOCUMENTS_DIR=\n", "/home/u/Documents"},
    {"NoEqualsSign", "XDG_DOCUMENTS_DIR\n", "/home/u/Documents"},
    {"QuotesWithoutAnEqualsSign", "XDG_DOCUMENTS_DIR\"/no\"\n", "/home/u/Documents"},
    {"NoOpeningQuote", "XDG_DOCUMENTS_DIR=/no\"\n", "/home/u/Documents"},
    {"OtherKeyOfTheSameLength", "XDG_TEMPLATES_DIR=\"/DOCUMENTS\"\n", "/home/u/Documents"},
    {"NoQuotes", "XDG_DOCUMENTS_DIR=/no\n", "/home/u/Documents"},
    {"SingleQuotes", "XDG_DOCUMENTS_DIR='/no'\n", "/home/u/Documents"},
    {"NoClosingQuote", "XDG_DOCUMENTS_DIR=\"/no\n", "/home/u/Documents"},
    {"EndsInTheQuotes", "XDG_DOCUMENTS_DIR=\"/no", "/home/u/Documents"},
    {"EndsInAnEscape", "XDG_DOCUMENTS_DIR=\"/no\\", "/home/u/Documents"},
    {"QuotesAcrossLines", "XDG_DOCUMENTS_DIR=\"/no\n/no\"\n", "/home/u/Documents"},
    {"OtherVariable", "XDG_DOCUMENTS_DIR=\"$USER/no\"\n", "/home/u/Documents"},
    {"LongerVariable", "XDG_DOCUMENTS_DIR=\"$HOMES/no\"\n", "/home/u/Documents"},
    {"BracedHome", "XDG_DOCUMENTS_DIR=\"${HOME}/no\"\n", "/home/u/Documents"},
    {"NameRightBehindTheHome", "XDG_DOCUMENTS_DIR=\"$HOME.no\"\n", "/home/u/Documents"},
    {"Exported", "export XDG_DOCUMENTS_DIR=\"/no\"\n", "/home/u/Documents"},
    {"LongerKey", "XDG_DOCUMENTS_DIRS=\"/no\"\n", "/home/u/Documents"},
    {"KeyWithAPrefix", "MY_XDG_DOCUMENTS_DIR=\"/no\"\n", "/home/u/Documents"},
    {"LongerName", "XDG_DOCUMENTSX_DIR=\"/no\"\n", "/home/u/Documents"},
    {"LowerCase", "xdg_documents_dir=\"/no\"\n", "/home/u/Documents"},
    {"NoSuffix", "XDG_DOCUMENTS=\"/no\"\n", "/home/u/Documents"},
};
INSTANTIATE_TEST_SUITE_P(Malformed, UserDirsTest, ::testing::ValuesIn(kMalformed), RowName());

// A name that is no text can't be told.
Row const kNoText[] = {
    {"Absolute", "XDG_DOCUMENTS_DIR=\"/\xFF\"\n", "none"},
    {"BelowTheHome", "XDG_DOCUMENTS_DIR=\"$HOME/\xC3\"\n", "none"},
};
INSTANTIATE_TEST_SUITE_P(NoUTF8, UserDirsTest, ::testing::ValuesIn(kNoText), RowName());

class UserDirsListTest : public UserDirsFixture
{
};

TEST_F(UserDirsListTest, NoList) { EXPECT_EQ(Where(3), "/home/u/Documents"); }

TEST_F(UserDirsListTest, NoConfiguration)
{
    environment.Set("XDG_CONFIG_HOME", Path("nowhere"));
    EXPECT_EQ(Where(3), "/home/u/Documents");
}

TEST_F(UserDirsListTest, DirectoryInItsPlace)
{
    fs::create_directory(Path("user-dirs.dirs"));
    EXPECT_EQ(Where(3), "/home/u/Documents");
}

TEST_F(UserDirsListTest, ListThatMayNotBeRead)
{
    WriteList("XDG_DOCUMENTS_DIR=\"/listed\"\n");
    chmod(Path("user-dirs.dirs").c_str(), 0);
    EXPECT_EQ(InUnprivilegedChild([] { return Where(3) == "/home/u/Documents" ? 0 : 1; }), 0);
}

TEST_F(UserDirsListTest, LiesInTheUsersConfiguration)
{
    fs::create_directory(Path(".config"));
    directory.File(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    environment.Set("HOME", directory.Path());
    WriteList("XDG_DOCUMENTS_DIR=\"$HOME/Moved\"\n");
    EXPECT_EQ(Where(3), Path("Moved").string());

    // No absolute path: the usual configuration holds.
    environment.Set("XDG_CONFIG_HOME", "relative");
    EXPECT_EQ(Where(3), Path("Papers").string());
}

TEST_F(UserDirsListTest, HomeIsTheOneOfTheEnvironment)
{
    WriteList("XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    environment.Set("HOME", "/home/v/");
    EXPECT_EQ(Where(3), "/home/v/Papers");
}

TEST_F(UserDirsListTest, RootIsTheHome)
{
    environment.Set("HOME", "/");
    WriteList("XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\nXDG_MUSIC_DIR=\"$HOME/\"\n");
    EXPECT_EQ(Where(3), "/Papers");
    EXPECT_EQ(Where(5), "/");
}

TEST_F(UserDirsListTest, RootIsTheHomeAndTheDirectory)
{
    environment.Set("HOME", "/");
    WriteList("XDG_DOCUMENTS_DIR=\"/srv\"\nXDG_DOCUMENTS_DIR=\"$HOME\"\n");
    EXPECT_EQ(Where(3), "/");
}

TEST_F(UserDirsListTest, ListChangesBetweenTwoContainers)
{
    WriteList("XDG_DOCUMENTS_DIR=\"/a\"\n");
    Container const container = NewContainer();
    EXPECT_EQ(PathOf(container->GetDir(FILE_SYS::kDocumentsDir)), "/a");
    WriteList("XDG_DOCUMENTS_DIR=\"/b\"\n");
    EXPECT_EQ(PathOf(container->GetDir(FILE_SYS::kDocumentsDir)), "/a");
    EXPECT_EQ(Where(3), "/b");
}

TEST_F(UserDirsListTest, ConfigurationAndDataAreNotListed)
{
    WriteList("XDG_CONFIG_DIR=\"/no\"\nXDG_DATA_DIR=\"/no\"\nXDG_CACHE_DIR=\"/no\"\n");
    EXPECT_EQ(Where(10), "/home/u/.local/share");
    EXPECT_EQ(Where(11), directory.Path().string());
    EXPECT_EQ(Where(12), "/home/u/.cache");
}
} // namespace
} // namespace KORVA::TESTS
