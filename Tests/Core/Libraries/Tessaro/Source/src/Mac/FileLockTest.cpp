// How long the lock of a file outlives its provider.
#include "Mac/AsyncFixture.h"
#include "Platform/Source/FreshProcess.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace
{
/// Positional reads and writes at this offset wait until the gate is open.
constexpr off_t kGatedOffset = 5;

class Gate
{
public:
    void Close()
    {
        std::lock_guard const lock(mMutex);
        mIsClosed = true;
    }
    void Open()
    {
        std::lock_guard const lock(mMutex);
        mIsClosed = false;
        mOpened.notify_all();
    }
    void Pass()
    {
        std::unique_lock lock(mMutex);
        mInFront += mIsClosed ? 1 : 0;
        mOpened.wait(lock, [this] { return !mIsClosed; });
    }
    bool HasSomebodyInFront()
    {
        std::lock_guard const lock(mMutex);
        return mInFront > 0;
    }

private:
    std::mutex mMutex;
    std::condition_variable mOpened;
    bool mIsClosed = false;
    int mInFront = 0;
};

Gate sGate;

template <class Call>
Call* Real(char const* name)
{
    return reinterpret_cast<Call*>(dlsym(RTLD_NEXT, name));
}
} // namespace

// The program's own calls come here first.
extern "C" ssize_t pread(int descriptor, void* buffer, size_t count, off_t offset)
{
    static auto* const sReal = Real<ssize_t(int, void*, size_t, off_t)>("pread");
    if (offset == kGatedOffset)
        sGate.Pass();
    return sReal(descriptor, buffer, count, offset);
}

extern "C" ssize_t pwrite(int descriptor, void const* bytes, size_t count, off_t offset)
{
    static auto* const sReal = Real<ssize_t(int, void const*, size_t, off_t)>("pwrite");
    if (offset == kGatedOffset)
        sGate.Pass();
    return sReal(descriptor, bytes, count, offset);
}

namespace KORVA::TESTS
{
namespace
{
using IO::IAsyncTaskPtr;
namespace fs = std::filesystem;

struct LockRow
{
    char const* name;
    bool reads;
    bool writes;
    /// What reopening in mode 2 answers while the operations are under way and the provider is gone.
    ErrCode meanwhile;
};

class LockOfAReleasedProvider : public AsyncTestWith<LockRow>
{
};

TEST_P(LockOfAReleasedProvider, LastsAsLongAsWrites)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider facade = Open(path, IO::kStreamReadWrite);
    char read = 0;
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, &read, 1), 0);
    EXPECT_EQ(WriterOf(facade).WriteSync(0, "0", 1), 0);
    sGate.Close();
    IAsyncTaskPtr reading;
    IAsyncTaskPtr writing;
    if (GetParam().reads)
    {
        EXPECT_EQ(ReaderOf(facade).ReadAsync(5, &read, 1, reading), 0);
    }
    if (GetParam().writes)
    {
        EXPECT_EQ(WriterOf(facade).WriteAsync(5, "x", 1, writing), 0);
    }
    EXPECT_TRUE(ComesTrue([] { return sGate.HasSomebodyInFront(); }));
    EXPECT_EQ(TryToOpen(path, IO::kStreamReadWrite), 40);
    facade.Reset();
    EXPECT_EQ(TryToOpen(path, IO::kStreamReadWrite), GetParam().meanwhile);
    sGate.Open();
    if (reading)
    {
        EXPECT_EQ(EndOf(reading), 0);
        EXPECT_TRUE(read == '5' || read == 'x');
    }
    if (writing)
    {
        EXPECT_EQ(EndOf(writing), 0);
    }
    EXPECT_EQ(TryToOpen(path, IO::kStreamReadWrite), 0);
    EXPECT_EQ(Content(path), GetParam().writes ? "01234x6789" : "0123456789");
}

LockRow const kLocks[] = {
    {"Reading", true, false, 0},
    {"Writing", false, true, 40},
    {"Both", true, true, 40},
};
INSTANTIATE_TEST_SUITE_P(Operations, LockOfAReleasedProvider, ::testing::ValuesIn(kLocks), RowName());
} // namespace
} // namespace KORVA::TESTS
