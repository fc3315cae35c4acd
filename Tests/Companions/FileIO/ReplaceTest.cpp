// Replacing a file's content: whole or not at all.
#include "Companions/Child.h"
#include "Companions/FileIO/FileFixture.h"

#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>

namespace KORVA::TESTS
{
namespace
{
FILE_SYS::ErrCode Replace(FILE_SYS::IFile& file, std::string_view content)
{
    return file.Replace(content.data(), content.size());
}

TEST_F(FileTest, ReplaceMakesAFileThatIsNotThere)
{
    EXPECT_EQ(Replace(*Bound("a"), "text"), 0);
    EXPECT_EQ(Content(Path("a")), "text");
    EXPECT_EQ(ModeOf(Path("a")), 0644u) << "the user's default";
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(FileTest, ReplacePutsOtherContentInItsPlace)
{
    directory.File("a", "old and longer");
    EXPECT_EQ(Replace(*Bound("a"), "new"), 0);
    EXPECT_EQ(Content(Path("a")), "new");
    EXPECT_EQ(Replace(*Bound("a"), ""), 0);
    EXPECT_EQ(Content(Path("a")), "");
    std::string const large(3'000'000, 'x');
    EXPECT_EQ(Replace(*Bound("a"), large), 0);
    EXPECT_EQ(Content(Path("a")), large);
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(FileTest, ReplaceHappensAtOnce)
{
    fs::path const path = directory.File("a", "old");
    std::ifstream reader(path);
    EXPECT_EQ(Replace(*Bound("a"), "new"), 0);
    std::string seen;
    std::getline(reader, seen);
    EXPECT_EQ(seen, "old") << "whoever has the old file open keeps it whole";
}

/// Replaces a file of somebody else's group as a user who is in these groups; the file's mode and group then.
std::string ReplacedBy(FILE_SYS::IFile& file, fs::path const& path, mode_t mode,
                       std::vector<gid_t> const& groups)
{
    constexpr uid_t kOwner = 4001;
    constexpr gid_t kGroup = 4002;
    constexpr uid_t kOther = 4003;
    fs::permissions(path.parent_path(), fs::perms{0777});
    if (chown(path.c_str(), kOwner, kGroup) != 0 || chmod(path.c_str(), mode) != 0)
        return "not prepared";
    int const result = InChild([&] {
        if (setgroups(groups.size(), groups.data()) != 0 || setegid(kOther) != 0 || seteuid(kOther) != 0)
            return 255;
        return static_cast<int>(Replace(file, "new"));
    });
    struct stat status
    {
    };
    if (result != 0 || stat(path.c_str(), &status) != 0)
        return "result " + std::to_string(result);
    char words[64];
    std::snprintf(words, sizeof words, "%o of %u:%u", status.st_mode & 07777u, status.st_uid, status.st_gid);
    return words;
}

TEST_F(FileTest, ReplaceOpensAFileToNoOtherGroup)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only a privileged user can be somebody else";
    fs::path const path = directory.File("a", "old");
    auto const file = Bound("a");
    EXPECT_EQ(ReplacedBy(*file, path, 0660, {4002}), "660 of 4003:4002") << "in the file's group";
    EXPECT_EQ(ReplacedBy(*file, path, 0666, {}), "666 of 4003:4003") << "open to all";
    EXPECT_EQ(ReplacedBy(*file, path, 0664, {}), "644 of 4003:4003");
    EXPECT_EQ(ReplacedBy(*file, path, 06775, {4002}), "775 of 4003:4002");
    EXPECT_EQ(ReplacedBy(*file, path, 0670, {}), "600 of 4003:4003");
    EXPECT_EQ(ReplacedBy(*file, path, 0604, {}), "600 of 4003:4003") << "the group was shut out";
}

TEST_F(FileTest, ReplaceKeepsThePermissions)
{
    fs::path const path = directory.File("a", "old");
    for (mode_t const mode : {0640u, 0600u, 0755u, 0444u})
    {
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        EXPECT_EQ(Replace(*Bound("a"), "new"), 0);
        EXPECT_EQ(ModeOf(path), mode);
    }
}

TEST_F(FileTest, ReplaceFollowsALink)
{
    fs::create_directory(Path("d"));
    directory.File("d/real", "old");
    fs::create_symlink("d/real", Path("link"));
    EXPECT_EQ(Replace(*Bound("link"), "new"), 0);
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Content(Path("d/real")), "new");
    EXPECT_EQ(Names(), (List{"d", "link"}));
    EXPECT_EQ(std::distance(fs::directory_iterator(Path("d")), fs::directory_iterator()), 1);
}

TEST_F(FileTest, ReplaceFollowsALinkToAFileThatIsNotThereYet)
{
    fs::create_directory(Path("d"));
    fs::create_symlink("d/real", Path("link"));
    EXPECT_EQ(Replace(*Bound("link"), "new"), 0);
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Content(Path("link")), "new");
}

TEST_F(FileTest, ReplaceOfWhatIsNoFileIsRefused)
{
    fs::create_directory(Path("d"));
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_NE(Replace(*Bound("d"), "new"), 0);
    EXPECT_NE(Replace(*Bound("pipe"), "new"), 0);
    EXPECT_EQ(Replace(*Bound("missing/a"), "new"), 15);
    EXPECT_TRUE(fs::is_directory(Path("d")));
    EXPECT_TRUE(fs::is_fifo(Path("pipe")));
    EXPECT_EQ(Names(), (List{"d", "pipe"}));
}

TEST_F(FileTest, ReplaceThatFailsLeavesTheOldFile)
{
    fs::path const path = directory.File("a", "old");
    ino_t const before = InodeOf(path);
    int const result = InChild([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit const limit{50'000, 50'000};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 254;
        return static_cast<int>(Replace(*Bound("a"), std::string(100'000, 'x')));
    });
    EXPECT_EQ(result, 28);
    EXPECT_EQ(Content(path), "old");
    EXPECT_EQ(InodeOf(path), before);
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(FileTest, ReplaceTakesTheLongestName)
{
    std::string const longest(255, 'n');
    EXPECT_EQ(Replace(*Bound(longest), "text"), 0);
    EXPECT_EQ(Names(), List{longest});
}
} // namespace
} // namespace KORVA::TESTS
