// Locks by name, and why a file can't be opened.
#include <tessio/FileIO/IFileAccess.h>

#include "Companions/FileIO/FileFixture.h"
#include "Platform/Source/ChildProcess.h"
#include "Platform/Source/ResourceLimit.h"
#include "Support/RowName.h"

#include <sys/syscall.h>

#include <atomic>
#include <cerrno>

namespace
{
std::atomic<int> sRefused{0};
std::atomic<int> sError{0};
} // namespace

// This stands before the system's own in this program, for all libraries in it.
extern "C" [[gnu::visibility("default")]] int flock(int descriptor, int operation) noexcept
{
    if (int const error = sError)
        return errno = error, -1;
    int const result = static_cast<int>(syscall(SYS_flock, descriptor, operation));
    if (result != 0)
        ++sRefused;
    return result;
}

namespace KORVA::TESTS
{
namespace
{
constexpr uint32 kLong = 60'000;

class FileAccessTest : public FileTest
{
protected:
    FileAccessTest() { sError = 0; }
    ~FileAccessTest() override { sError = 0; }

    static FILE_SYS::IFileAccessPtr Access()
    {
        return COREREGISTRY::CreateObject<FILE_SYS::IFileAccess>(FILE_SYS::IID_IFILE_ACCESS);
    }

    int TryLock(FILE_SYS::IFileAccessPtr const& access, std::string const& name) const
    {
        return access->Lock(Text(Path(name)), 0);
    }

    /// Where this process has that file open, or -1.
    static int DescriptorOf(fs::path const& path)
    {
        std::error_code ignored;
        for (auto const& entry : fs::directory_iterator("/proc/self/fd"))
            if (fs::read_symlink(entry.path(), ignored) == path)
                return std::stoi(entry.path().filename().string());
        return -1;
    }

    FILE_SYS::IFileAccessPtr mine = Access();
    FILE_SYS::IFileAccessPtr other = Access();
};

TEST_F(FileAccessTest, OneHoldsTheLockOfAFile)
{
    directory.File("a", "text");
    directory.File("b", "text");
    EXPECT_EQ(TryLock(mine, "a"), 0);
    EXPECT_EQ(TryLock(other, "a"), 93);
    EXPECT_EQ(TryLock(other, "b"), 0);
    mine->Unlock();
    EXPECT_EQ(TryLock(other, "a"), 0) << "and with it b is free";
    EXPECT_EQ(TryLock(mine, "b"), 0);
    other.Reset();
    EXPECT_EQ(TryLock(mine, "a"), 0) << "its holder is no more";
}

TEST_F(FileAccessTest, AFileThatIsNotThereYetIsLockedToo)
{
    directory.File("there", "text");
    EXPECT_EQ(TryLock(mine, "a"), 0);
    EXPECT_EQ(TryLock(other, "a"), 93);
    EXPECT_EQ(TryLock(other, "there"), 0);
    EXPECT_EQ(Bound("a")->Replace("text", 4), 0);
    EXPECT_EQ(TryLock(other, "a"), 0) << "now it has a lock of its own";
    fs::create_directory(Path("d"));
    fs::create_symlink("d/new", Path("link"));
    EXPECT_EQ(TryLock(mine, "link"), 0);
    EXPECT_EQ(TryLock(other, "d/new"), 93) << "the link leads there";
    EXPECT_EQ(TryLock(other, "b"), 0) << "in another directory";
    EXPECT_EQ(Names(), (List{"a", "d", "link", "there"}));
}

TEST_F(FileAccessTest, OthersLocksAreRespected)
{
    directory.File("a", "text");
    for (int const operation : {LOCK_SH, LOCK_EX})
    {
        LockHolder const holder(Path("a"), operation);
        EXPECT_EQ(TryLock(mine, "a"), 93) << operation;
    }
    EXPECT_EQ(TryLock(mine, "a"), 0) << "the system takes back what a killed process held";
}

TEST_F(FileAccessTest, WhoeverSavesIsWaitedForLongerThanAWriter)
{
    directory.File("a", "text");
    ASSERT_EQ(TryLock(mine, "a"), 0);
    // Each try is refused twice, and there is a pause of a quarter of a millisecond behind it.
    constexpr int kBeyondAWriter = 2 * 4 * 1000 + 2;
    sRefused = 0;
    std::atomic<int> result{-1};
    std::thread waiting([this, &result] { result = other->Lock(Text(Path("a")), 1000); });
    while (sRefused < kBeyondAWriter && result == -1)
        std::this_thread::yield();
    mine->Unlock();
    waiting.join();
    EXPECT_EQ(result, 0);
}

TEST_F(FileAccessTest, WhoWaitedHoldsTheFileThatHasTheName)
{
    directory.File("a", "old");
    ASSERT_EQ(TryLock(mine, "a"), 0);
    sRefused = 0;
    std::atomic<int> result{-1};
    std::thread waiting([this, &result] { result = other->Lock(Text(Path("a")), kLong); });
    while (sRefused == 0 && result == -1)
        std::this_thread::yield();
    EXPECT_EQ(Bound("a")->Replace("new", 3), 0);
    mine->Unlock();
    waiting.join();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(TryLock(mine, "a"), 93);
}

TEST_F(FileAccessTest, NoProgramThatIsStartedInheritsIt)
{
    directory.File("a", "text");
    ASSERT_EQ(TryLock(mine, "a"), 0);
    int const file = DescriptorOf(Path("a"));
    ASSERT_GE(file, 0);
    EXPECT_NE(fcntl(file, F_GETFD) & FD_CLOEXEC, 0);
    ASSERT_EQ(TryLock(mine, "b"), 0);
    EXPECT_EQ(DescriptorOf(Path("a")), -1);
    int const folder = DescriptorOf(directory.Path());
    ASSERT_GE(folder, 0);
    EXPECT_NE(fcntl(folder, F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(mine->TryOpen(Text(Path("a")), 1), 0);
    EXPECT_EQ(DescriptorOf(Path("a")), -1);
}

TEST_F(FileAccessTest, WhereThereAreNoLocksThatIsSaid)
{
    directory.File("a", "text");
    sError = ENOLCK;
    EXPECT_EQ(TryLock(mine, "a"), 94);
    EXPECT_EQ(mine->GetSystemError(), ENOLCK);
    sError = 0;
    fs::permissions(directory.Path(), fs::perms{0333});
    EXPECT_EQ(RunUnprivileged([this] { return TryLock(mine, "new"); }), 94);
    fs::permissions(directory.Path(), fs::perms{0755});
}

struct RefusedRow
{
    char const* name;
    char const* path;
    int lock;
    int reading;
    int writing;
    int error;
};

RefusedRow const kRefused[] = {
    {"Missing", "missing", 0, 15, 15, ENOENT},
    {"MissingDirectory", "no/such", 15, 15, 15, ENOENT},
    {"BehindAFile", "a/b", 15, 15, 15, ENOTDIR},
    {"Directory", "d", 21, 0, 21, EISDIR},
    {"WriteProtected", "protected", 21, 0, 21, EACCES},
    {"ReadProtected", "hidden", 21, 21, 21, EACCES},
    {"Circle", "circle", 1, 1, 1, ELOOP},
};

class FileAccessRefused : public FileAccessTest, public ::testing::WithParamInterface<RefusedRow>
{
};

TEST_P(FileAccessRefused, WithItsReason)
{
    directory.File("a", "text");
    fs::create_directory(Path("d"));
    fs::permissions(directory.File("protected", ""), fs::perms{0444});
    fs::permissions(directory.File("hidden", ""), fs::perms{0000});
    fs::create_symlink("circle", Path("circle"));
    STRING::CoreString const path = Text(Path(GetParam().path));
    EXPECT_EQ(RunUnprivileged([&] { return mine->Lock(path, 0); }), GetParam().lock);
    EXPECT_EQ(RunUnprivileged([&] { return mine->TryOpen(path, 0); }), GetParam().reading);
    EXPECT_EQ(RunUnprivileged([&] { return mine->TryOpen(path, 1); }), GetParam().writing);
    EXPECT_EQ(RunUnprivileged([&] { return mine->TryOpen(path, 1), mine->GetSystemError(); }),
              GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(Paths, FileAccessRefused, ::testing::ValuesIn(kRefused), RowName());

TEST_F(FileAccessTest, TellsThatTheSystemRanOut)
{
    directory.File("a", "text");
    ChildProcess child([this] {
        ResourceLimit const limit(RLIMIT_NOFILE, 3);
        return mine->TryOpen(Text(Path("a")), 0) != 0 ? mine->GetSystemError() : 0;
    });
    EXPECT_EQ(child.Wait(), EMFILE);
}

TEST_F(FileAccessTest, WhatIsNoPathIsNowhere)
{
    for (char16_t const* const text : {u"", u"\xD800"})
    {
        EXPECT_EQ(mine->Lock(STRING::CoreString(text), 0), 15);
        EXPECT_EQ(mine->TryOpen(STRING::CoreString(text), 0), 15);
    }
}
} // namespace
} // namespace KORVA::TESTS
