// Where the system's and the user's directories are, by the environment.
#include "Companions/Child.h"
#include "Companions/FileIO/DirFixture.h"

#include <pwd.h>
#include <unistd.h>

#include <type_traits>

namespace KORVA::TESTS
{
namespace
{
using namespace FILE_SYS;

struct TypeRow
{
    char const* name;
    DirType type;
    int32 value;
    /// Of a user of whom nothing but the home is known.
    char const* path;
};

class DirTypeTest : public DirTest, public ::testing::WithParamInterface<TypeRow>
{
};

// The value stands in files.
TEST_P(DirTypeTest, HasItsValue) { EXPECT_EQ(static_cast<int32>(GetParam().type), GetParam().value); }

TEST_P(DirTypeTest, LiesAtItsUsualPlace) { EXPECT_EQ(Where(GetParam().value), GetParam().path); }

TypeRow const kTypes[] = {
    {"None", kNoDir, 0, "none"},
    {"Home", kHomeDir, 1, "/home/u"},
    {"Desktop", kDesktopDir, 2, "/home/u/Desktop"},
    {"Documents", kDocumentsDir, 3, "/home/u/Documents"},
    {"Downloads", kDownloadsDir, 4, "/home/u/Downloads"},
    {"Music", kMusicDir, 5, "/home/u/Music"},
    {"Pictures", kPicturesDir, 6, "/home/u/Pictures"},
    {"Videos", kVideosDir, 7, "/home/u/Videos"},
    {"Templates", kTemplatesDir, 8, "/home/u/Templates"},
    {"PublicShare", kPublicShareDir, 9, "/home/u/Public"},
    {"UserData", kUserDataDir, 10, "/home/u/.local/share"},
    {"UserConfiguration", kUserConfigDir, 11, "/home/u/.config"},
    {"Cache", kCacheDir, 12, "/home/u/.cache"},
    {"State", kStateDir, 13, "/home/u/.local/state"},
    {"Temporary", kTemporaryDir, 14, "/tmp"},
    {"SystemData", kSystemDataDir, 15, "/usr/local/share"},
    {"SystemConfiguration", kSystemConfigDir, 16, "/etc/xdg"},
};
INSTANTIATE_TEST_SUITE_P(Types, DirTypeTest, ::testing::ValuesIn(kTypes), RowName());

static_assert(sizeof(DirType) == 4);
static_assert(std::is_same_v<std::underlying_type_t<DirType>, int32>);

struct VariableRow
{
    char const* name;
    char const* variable;
    char const* value;
    int32 type;
    char const* path;
};

class DirVariableTest : public DirTest, public ::testing::WithParamInterface<VariableRow>
{
};

TEST_P(DirVariableTest, MovesItsDirectory)
{
    VariableRow const& row = GetParam();
    environment.Set(row.variable, row.value);
    EXPECT_EQ(Where(row.type), row.path);
}

VariableRow const kPaths[] = {
    {"Home", "HOME", "/users/v", 1, "/users/v"},
    {"HomeMovesTheUsersOwn", "HOME", "/users/v", 2, "/users/v/Desktop"},
    {"HomeMovesTheBaseDirectories", "HOME", "/users/v", 12, "/users/v/.cache"},
    {"UserData", "XDG_DATA_HOME", "/x/data", 10, "/x/data"},
    {"UserConfiguration", "XDG_CONFIG_HOME", "/x/config", 11, "/x/config"},
    {"Cache", "XDG_CACHE_HOME", "/x/cache", 12, "/x/cache"},
    {"State", "XDG_STATE_HOME", "/x/state", 13, "/x/state"},
    {"Temporary", "TMPDIR", "/x/tmp", 14, "/x/tmp"},
    {"SystemData", "XDG_DATA_DIRS", "/x/data", 15, "/x/data"},
    {"SystemConfiguration", "XDG_CONFIG_DIRS", "/x/config", 16, "/x/config"},
    {"BeyondAscii", "XDG_CACHE_HOME", "/x/\xC3\xA4 \xF0\x9F\x98\x80", 12, "/x/\xC3\xA4 \xF0\x9F\x98\x80"},
    {"NothingIsExpanded", "XDG_CACHE_HOME", "/x/$HOME/~", 12, "/x/$HOME/~"},
    // A key of the user's list is no variable.
    {"DesktopIsNoVariable", "XDG_DESKTOP_DIR", "/x", 2, "/home/u/Desktop"},
};
INSTANTIATE_TEST_SUITE_P(Paths, DirVariableTest, ::testing::ValuesIn(kPaths), RowName());

VariableRow const kTrailing[] = {
    {"One", "XDG_CACHE_HOME", "/x/", 12, "/x"},
    {"Several", "XDG_CACHE_HOME", "/x///", 12, "/x"},
    {"Root", "XDG_CACHE_HOME", "/", 12, "/"},
    {"SlashesOnly", "XDG_CACHE_HOME", "///", 12, "/"},
    {"Home", "HOME", "/users/v/", 1, "/users/v"},
    {"HomeOfTheUsersOwn", "HOME", "/users/v//", 3, "/users/v/Documents"},
    {"RootIsTheHome", "HOME", "/", 1, "/"},
    {"DirectoryBelowTheRoot", "HOME", "/", 3, "/Documents"},
    {"BaseDirectoryBelowTheRoot", "HOME", "/", 10, "/.local/share"},
    {"Temporary", "TMPDIR", "/x/", 14, "/x"},
    {"List", "XDG_DATA_DIRS", "/x/:/y", 15, "/x"},
    {"RootInAList", "XDG_DATA_DIRS", "/:/y", 15, "/"},
};
INSTANTIATE_TEST_SUITE_P(TrailingSeparators, DirVariableTest, ::testing::ValuesIn(kTrailing), RowName());

VariableRow const kIgnored[] = {
    {"EmptyData", "XDG_DATA_HOME", "", 10, "/home/u/.local/share"},
    {"RelativeData", "XDG_DATA_HOME", "x", 10, "/home/u/.local/share"},
    {"RelativeConfiguration", "XDG_CONFIG_HOME", "./x", 11, "/home/u/.config"},
    {"RelativeCache", "XDG_CACHE_HOME", "../x", 12, "/home/u/.cache"},
    {"TildeState", "XDG_STATE_HOME", "~/x", 13, "/home/u/.local/state"},
    {"DollarCache", "XDG_CACHE_HOME", "$HOME/x", 12, "/home/u/.cache"},
    {"BlankInFront", "XDG_CACHE_HOME", " /x", 12, "/home/u/.cache"},
    {"EmptyTemporary", "TMPDIR", "", 14, "/tmp"},
    {"RelativeTemporary", "TMPDIR", "x", 14, "/tmp"},
};
INSTANTIATE_TEST_SUITE_P(IgnoredValues, DirVariableTest, ::testing::ValuesIn(kIgnored), RowName());

VariableRow const kLists[] = {
    {"FirstOfData", "XDG_DATA_DIRS", "/x:/y:/z", 15, "/x"},
    {"FirstOfConfiguration", "XDG_CONFIG_DIRS", "/x:/y", 16, "/x"},
    {"RelativeIsPassedOver", "XDG_DATA_DIRS", "x:./y:/z", 15, "/z"},
    {"EmptyIsPassedOver", "XDG_CONFIG_DIRS", "::/z", 16, "/z"},
    {"NoneAbsolute", "XDG_DATA_DIRS", "x:y", 15, "/usr/local/share"},
    {"NothingButColons", "XDG_CONFIG_DIRS", ":::", 16, "/etc/xdg"},
    {"EmptyData", "XDG_DATA_DIRS", "", 15, "/usr/local/share"},
    {"EmptyConfiguration", "XDG_CONFIG_DIRS", "", 16, "/etc/xdg"},
    {"ColonAtTheEnd", "XDG_DATA_DIRS", "/x:", 15, "/x"},
};
INSTANTIATE_TEST_SUITE_P(Lists, DirVariableTest, ::testing::ValuesIn(kLists), RowName());

VariableRow const kNoText[] = {
    {"Cache", "XDG_CACHE_HOME", "/x/\xFF", 12, "none"},
    {"Temporary", "TMPDIR", "/\xC3", 14, "none"},
    {"List", "XDG_DATA_DIRS", "/\xED\xA0\x80", 15, "none"},
    {"Home", "HOME", "/home/\xFF", 1, "none"},
    {"HomeOfTheUsersOwn", "HOME", "/home/\xFF", 3, "none"},
    {"ElsewhereMattersNot", "XDG_CACHE_HOME", "/x/\xFF", 10, "/home/u/.local/share"},
};
INSTANTIATE_TEST_SUITE_P(NoUTF8, DirVariableTest, ::testing::ValuesIn(kNoText), RowName());

class SystemDirContainerTest : public DirTest
{
protected:
    static std::string HomeInTheUserDatabase()
    {
        passwd const* const entry = getpwuid(getuid());
        return entry ? entry->pw_dir : "none";
    }
};

TEST_F(SystemDirContainerTest, UnknownTypesHaveNone)
{
    for (int32 const type : {-1, 17, 77, 2147483647, -2147483647 - 1})
        EXPECT_EQ(Where(type), "none") << type;
}

TEST_F(SystemDirContainerTest, WithoutAHomeTheUserDatabaseTells)
{
    std::string const home = HomeInTheUserDatabase();
    ASSERT_TRUE(home.starts_with('/') && !home.ends_with('/')) << home;
    environment.Clear();
    EXPECT_EQ(Where(1), home);
    EXPECT_EQ(Where(2), home + "/Desktop");
    EXPECT_EQ(Where(13), home + "/.local/state");
    for (char const* const ignored : {"", "relative/home", "~"})
    {
        environment.Set("HOME", ignored);
        EXPECT_EQ(Where(1), home) << ignored;
        EXPECT_EQ(Where(12), home + "/.cache") << ignored;
    }
}

// A user without an entry and without the variable has nowhere to be.
TEST_F(SystemDirContainerTest, NoHomeAtAll)
{
    environment.Clear();
    environment.Set("XDG_CACHE_HOME", "/x");
    constexpr uid_t kStranger = 54321;
    ASSERT_EQ(getpwuid(kStranger), nullptr);
    constexpr int kNotPermitted = 255;
    int const outcome = InChild([] {
        if (setuid(kStranger) != 0)
            return kNotPermitted;
        for (int32 type = 0; type <= 16; ++type)
        {
            bool const needsNoHome = type == 12 || type >= 14;
            if ((Where(type) == "none") == needsNoHome)
                return type + 1;
        }
        return Where(12) == "/x" && Where(14) == "/tmp" ? 0 : 100;
    });
    if (outcome == kNotPermitted)
        GTEST_SKIP() << "only root can become a user whom nobody knows";
    EXPECT_EQ(outcome, 0) << "one more than the type, or 100";
}

TEST_F(SystemDirContainerTest, IsMadeByTheRegistry)
{
    Container const container = NewContainer();
    ASSERT_TRUE(container);
    container->AddRef();
    EXPECT_EQ(container->Release(), 1);
    EXPECT_EQ(IID_SYSTEM_DIR_CONTAINER,
              (GUID{0xAEEF6E20, 0x3F08, 0x41B5, {0xB4, 0x60, 0xBA, 0x2E, 0x28, 0x8A, 0x76, 0x51}}));
    // Each is an object of its own.
    EXPECT_NE(NewContainer().Get(), container.Get());
}

TEST_F(SystemDirContainerTest, DirectoryIsBorrowed)
{
    Container container = NewContainer();
    IDir* const dir = container->GetDir(kDocumentsDir);
    ASSERT_NE(dir, nullptr);
    EXPECT_EQ(container->GetDir(kDocumentsDir), dir);
    EXPECT_NE(container->GetDir(kMusicDir), dir);
    EXPECT_EQ(dir->AddRef(), 2) << "the container's and now this test's";
    container.Reset();
    EXPECT_EQ(PathOf(dir), "/home/u/Documents") << "it outlives its container for who holds it";
    EXPECT_EQ(dir->Release(), 0);
}

TEST_F(SystemDirContainerTest, DirectoryIsWhatItWasWhenFirstAskedFor)
{
    Container const container = NewContainer();
    IDir const* const dir = container->GetDir(kDocumentsDir);
    environment.Set("HOME", "/home/v");
    EXPECT_EQ(container->GetDir(kDocumentsDir), dir);
    EXPECT_EQ(PathOf(dir), "/home/u/Documents");
    EXPECT_EQ(PathOf(container->GetDir(kMusicDir)), "/home/v/Music");
    EXPECT_EQ(Where(3), "/home/v/Documents");
}

TEST_F(SystemDirContainerTest, NothingIsMadeOnDisk)
{
    environment.Set("HOME", Path("home"));
    environment.Set("XDG_CACHE_HOME", Path("cache"));
    environment.Set("TMPDIR", Path("tmp"));
    Container const container = NewContainer();
    for (int32 type = 1; type <= 16; ++type)
        EXPECT_NE(container->GetDir(static_cast<DirType>(type)), nullptr) << type;
    EXPECT_EQ(Names(), List());
}

TEST_F(SystemDirContainerTest, LongPaths)
{
    std::string const path = "/" + std::string(100000, 'x');
    environment.Set("XDG_CACHE_HOME", path);
    EXPECT_EQ(Where(12), path);
}
} // namespace
} // namespace KORVA::TESTS
