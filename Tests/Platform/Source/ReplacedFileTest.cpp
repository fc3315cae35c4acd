// Files that are replaced between being opened and being locked.
#include "Platform/FileStream.h"

#include "Support/TemporaryDirectory.h"

#include <dlfcn.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace
{
/// Called before the system is asked for a lock; empty for nothing.
std::function<void()> sBeforeLocking;
} // namespace

// The program's own calls come here first.
extern "C" int flock(int descriptor, int operation)
{
    static auto* const sReal = reinterpret_cast<int (*)(int, int)>(dlsym(RTLD_NEXT, "flock"));
    if (sBeforeLocking && (operation & LOCK_UN) == 0)
        sBeforeLocking();
    return sReal(descriptor, operation);
}

namespace KORVA
{
namespace
{
using PLATFORM::Access;
using PLATFORM::Lock;
using PLATFORM::OpenResult;
using PLATFORM::PathString;
namespace fs = std::filesystem;

class ReplacedFile : public ::testing::Test
{
protected:
    ~ReplacedFile() override { sBeforeLocking = nullptr; }

    void Replace()
    {
        ++mReplaced;
        fs::rename(mDirectory.File("new" + std::to_string(mReplaced), "new"), mPath);
    }

    OpenResult Open(int& descriptor) const
    {
        return PLATFORM::OpenFile(*PathString::From(mPath.u16string()), Access::kReadWrite, Lock::kExclusive,
                                  descriptor);
    }

    TESTS::TemporaryDirectory mDirectory;
    fs::path mPath = mDirectory.File("file", "old");
    int mReplaced = 0;
};

TEST_F(ReplacedFile, IsOpenedAnew)
{
    sBeforeLocking = [this] {
        if (mReplaced == 0)
            Replace();
    };
    int descriptor = -1;
    ASSERT_EQ(Open(descriptor), OpenResult::kOpened);
    char read[3] = {};
    EXPECT_EQ(::read(descriptor, read, 3), 3);
    EXPECT_EQ(std::string(read, 3), "new");
    PLATFORM::CloseFile(descriptor);
}

TEST_F(ReplacedFile, IsLockedWhereThatNeverEnds)
{
    sBeforeLocking = [this] { Replace(); };
    int descriptor = -7;
    EXPECT_EQ(Open(descriptor), OpenResult::kLocked);
    EXPECT_EQ(descriptor, -7);
    EXPECT_GE(mReplaced, 2);
}

TEST_F(ReplacedFile, IsKeptWhereItOnlyLostItsName)
{
    sBeforeLocking = [this] { fs::remove(mPath); };
    int descriptor = -1;
    EXPECT_EQ(Open(descriptor), OpenResult::kOpened);
    PLATFORM::CloseFile(descriptor);
}
} // namespace
} // namespace KORVA
