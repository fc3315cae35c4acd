// Copying: whole or not at all.
#include "Companions/Child.h"
#include "Companions/FileIO/FileFixture.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

namespace KORVA::TESTS
{
namespace
{
/// Some bytes that no shift or repetition of themselves equals.
std::string Pattern(std::size_t size)
{
    std::string text(size, '\0');
    unsigned state = 1;
    for (char& byte : text)
    {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    return text;
}

TEST_F(FileTest, CopiesTheContent)
{
    for (std::size_t const size : {0u, 1u, 4096u, 1'000'000u})
    {
        std::string const content = Pattern(size);
        directory.File("a", content);
        EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
        EXPECT_EQ(Content(Path("b")), content) << size;
        EXPECT_EQ(Content(Path("a")), content) << size;
        EXPECT_EQ(Names(), (List{"a", "b"}));
    }
}

TEST_F(FileTest, CopyHasThePermissionsAndTheDate)
{
    fs::path const path = directory.File("a", "text");
    ASSERT_EQ(chmod(path.c_str(), 0751), 0);
    uint64 date = 1234567890123456789u;
    EXPECT_EQ(Bound("a")->SetModificationDate(date), 0);
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(ModeOf(Path("b")), 0751u);
    uint64 copied = 0;
    EXPECT_EQ(Bound("b")->GetModificationDate(copied), 0);
    EXPECT_EQ(copied, 1234567890123456789u);
}

TEST_F(FileTest, CopyOfAReadOnlyFileIsReadOnly)
{
    fs::path const path = directory.File("a", "text");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(Content(Path("b")), "text");
    EXPECT_EQ(ModeOf(Path("b")), 0444u);
}

TEST_F(FileTest, CopyReplacesTheTargetAtOnce)
{
    directory.File("a", "new");
    fs::path const target = directory.File("b", "old and longer");
    ASSERT_EQ(chmod(target.c_str(), 0600), 0);
    std::ifstream reader(target);
    EXPECT_EQ(Bound("a")->CopyTo(Text(target)), 0);
    EXPECT_EQ(Content(target), "new");
    EXPECT_EQ(ModeOf(target), 0644u) << "the permissions are those of the source";
    std::string seen;
    std::getline(reader, seen);
    EXPECT_EQ(seen, "old and longer") << "whoever has the old file open keeps it whole";
    EXPECT_EQ(Names(), (List{"a", "b"}));
}

TEST_F(FileTest, CopyFollowsALinkAtTheTarget)
{
    directory.File("a", "new");
    fs::create_directory(Path("d"));
    directory.File("d/real", "old");
    fs::create_symlink("d/real", Path("link"));
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("link"))), 0);
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Content(Path("d/real")), "new");
    EXPECT_EQ(Names(), (List{"a", "d", "link"}));
    EXPECT_EQ(std::distance(fs::directory_iterator(Path("d")), fs::directory_iterator()), 1);
}

TEST_F(FileTest, CopyFollowsALinkToAFileThatIsNotThereYet)
{
    directory.File("a", "new");
    fs::create_directory(Path("d"));
    fs::create_symlink("d/real", Path("link"));
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("link"))), 0);
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Content(Path("link")), "new");
}

TEST_F(FileTest, CopyFollowsALinkAtTheSource)
{
    directory.File("a", "text");
    fs::create_symlink("a", Path("link"));
    EXPECT_EQ(Bound("link")->CopyTo(Text(Path("b"))), 0);
    EXPECT_FALSE(fs::is_symlink(Path("b")));
    EXPECT_EQ(Content(Path("b")), "text");
}

TEST_F(FileTest, CopyOntoItselfIsRefused)
{
    directory.File("a", "text");
    fs::create_hard_link(Path("a"), Path("same"));
    fs::create_symlink("a", Path("link"));
    for (char const* const target : {"a", "./a", "same", "link"})
    {
        EXPECT_NE(Bound("a")->CopyTo(Text(Path(target))), 0) << target;
        EXPECT_EQ(Content(Path("a")), "text") << target;
    }
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(InodeOf(Path("a")), InodeOf(Path("same")));
    EXPECT_EQ(Names(), (List{"a", "link", "same"}));
}

TEST_F(FileTest, CopyOfWhatIsNoRegularFileIsRefused)
{
    fs::create_directory(Path("d"));
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_NE(Bound("d")->CopyTo(Text(Path("b"))), 0);
    EXPECT_NE(Bound("pipe")->CopyTo(Text(Path("b"))), 0);
    EXPECT_NE(At("/dev/zero")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(Bound("missing")->CopyTo(Text(Path("b"))), 15);
    EXPECT_EQ(Names(), (List{"d", "pipe"}));
}

TEST_F(FileTest, CopyOntoADirectoryIsRefused)
{
    directory.File("a", "text");
    fs::create_directory(Path("d"));
    EXPECT_NE(Bound("a")->CopyTo(Text(Path("d"))), 0);
    EXPECT_NE(Bound("a")->CopyTo(Text(directory.Path().native() + "/d/")), 0);
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("missing/b"))), 15);
    EXPECT_NE(Bound("a")->CopyTo(u""), 0);
    EXPECT_EQ(Names(), (List{"a", "d"}));
    EXPECT_TRUE(fs::is_empty(Path("d")));
}

TEST_F(FileTest, CopyOfALongNameSucceeds)
{
    std::string const longest(255, 'n');
    directory.File("a", "text");
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path(longest))), 0);
    EXPECT_EQ(Content(Path(longest)), "text");
    EXPECT_EQ(Names().size(), 2u);
}

TEST_F(FileTest, CopyThatFailsHalfWayLeavesTheTarget)
{
    directory.File("a", Pattern(100'000));
    directory.File("b", "old");
    int const result = InChild([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit const limit{50'000, 50'000};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 254;
        return static_cast<int>(Bound("a")->CopyTo(Text(Path("b"))));
    });
    EXPECT_EQ(result, 28);
    EXPECT_EQ(Content(Path("b")), "old");
    EXPECT_EQ(Names(), (List{"a", "b"}));
}

TEST_F(FileTest, CopyOfAFileOfTheKernelsOwn)
{
    // Claims the size 0.
    EXPECT_EQ(At("/proc/version")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(Content(Path("b")), Content("/proc/version"));
}

TEST_F(FileTest, CopyOfAFileThatTheKernelDoesNotCopyItself)
{
    ASSERT_EQ(At("/proc/self/cmdline")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(Content(Path("b")), Content("/proc/self/cmdline"));
}
} // namespace
} // namespace KORVA::TESTS
