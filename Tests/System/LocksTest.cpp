// Advisory locks.
#include "System/Locks.h"

#include "Support/TemporaryDirectory.h"
#include "System/Files.h"

#include <gtest/gtest.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace
{
int sInterruptions = 0;
} // namespace

// This stands before the system's own in this program.
extern "C" [[gnu::visibility("default")]] int flock(int descriptor, int operation) noexcept
{
    if (sInterruptions > 0)
        return --sInterruptions, errno = EINTR, -1;
    return static_cast<int>(syscall(SYS_flock, descriptor, operation));
}

namespace KORVA::TESTS
{
namespace
{
using SYSTEM::Descriptor;
using SYSTEM::LockKind;
using SYSTEM::TryLock;
using SYSTEM::Unlock;

class Locks : public ::testing::Test
{
protected:
    Descriptor Open() const
    {
        SYSTEM::ErrorNumber error = 0;
        return SYSTEM::OpenFile(path, SYSTEM::Access::kRead, error);
    }

    TemporaryDirectory directory;
    std::string const path = directory.File("a", "").string();
    Descriptor const first = Open();
    Descriptor const second = Open();
};

TEST_F(Locks, SharedOnesExcludeAnExclusiveOne)
{
    EXPECT_EQ(TryLock(first.Get(), LockKind::kShared), 0);
    EXPECT_EQ(TryLock(second.Get(), LockKind::kShared), 0);
    EXPECT_EQ(TryLock(second.Get(), LockKind::kExclusive), EWOULDBLOCK);
    Unlock(first.Get());
    EXPECT_EQ(TryLock(second.Get(), LockKind::kExclusive), 0);
    EXPECT_EQ(TryLock(first.Get(), LockKind::kShared), EWOULDBLOCK);
}

TEST_F(Locks, AnInterruptionIsNoRefusal)
{
    sInterruptions = 2;
    EXPECT_EQ(TryLock(first.Get(), LockKind::kExclusive), 0);
    EXPECT_EQ(sInterruptions, 0);
    sInterruptions = 2;
    Unlock(first.Get());
    EXPECT_EQ(TryLock(second.Get(), LockKind::kExclusive), 0);
}

TEST_F(Locks, DuplicatesShareOne)
{
    SYSTEM::ErrorNumber error = 0;
    Descriptor copy = SYSTEM::Duplicate(first.Get(), error);
    EXPECT_EQ(TryLock(first.Get(), LockKind::kExclusive), 0);
    EXPECT_EQ(TryLock(copy.Get(), LockKind::kExclusive), 0);
    EXPECT_EQ(copy.Close(), 0);
    EXPECT_EQ(TryLock(second.Get(), LockKind::kShared), EWOULDBLOCK);
}

TEST_F(Locks, WhatIsNotOpenIsNotLocked) { EXPECT_EQ(TryLock(-1, LockKind::kShared), EBADF); }

TEST_F(Locks, DirectoriesTakeThem)
{
    SYSTEM::ErrorNumber error = 0;
    Descriptor const folder = SYSTEM::OpenDirectory(directory.Path().string(), error);
    Descriptor const again = SYSTEM::OpenDirectory(directory.Path().string(), error);
    EXPECT_EQ(TryLock(folder.Get(), LockKind::kExclusive), 0);
    EXPECT_EQ(TryLock(again.Get(), LockKind::kExclusive), EWOULDBLOCK);
}
} // namespace
} // namespace KORVA::TESTS
