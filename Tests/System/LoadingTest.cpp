// Shared objects, and what other threads are doing.
#include "System/Loading.h"

#include "System/Threads.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>

namespace KORVA::TESTS
{
namespace
{
using SYSTEM::LoadedObject;
using SYSTEM::ThreadNumber;

std::string const kProbe = TESSIO_PROBE;

TEST(Loading, AnObjectIsInMemoryAsLongAsSomebodyHasLoadedIt)
{
    std::string error;
    LoadedObject const first = SYSTEM::LoadObject(kProbe, error);
    ASSERT_NE(first, nullptr) << error;
    EXPECT_EQ(SYSTEM::LoadObject(kProbe, error), first);
    std::string const name = SYSTEM::NameOf(first);
    EXPECT_EQ(name, kProbe);
    SYSTEM::CloseObject(first);
    EXPECT_TRUE(SYSTEM::IsLoaded(name));
    SYSTEM::CloseObject(first);
    EXPECT_FALSE(SYSTEM::IsLoaded(name));
}

TEST(Loading, FindsWhatIsInAnObjectAndTellsWhereTheObjectLies)
{
    std::string error;
    LoadedObject const object = SYSTEM::LoadObject(kProbe, error);
    ASSERT_NE(object, nullptr) << error;
    void* const own = SYSTEM::FindSymbol(object, "Probe");
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)()>(own)(), 42);
    SYSTEM::MemoryRange const range = SYSTEM::RangeOf(object);
    EXPECT_TRUE(range.Has(own));
    // Of what it was linked to.
    void* const others = SYSTEM::FindSymbol(object, "getpid");
    ASSERT_NE(others, nullptr);
    EXPECT_FALSE(range.Has(others));
    EXPECT_EQ(SYSTEM::FindSymbol(object, "NoSuchFunction"), nullptr);
    EXPECT_EQ(SYSTEM::FileAround(own), kProbe);
    SYSTEM::CloseObject(object);
}

TEST(Loading, WhatIsNoObjectIsNotLoadedForAReason)
{
    std::string error;
    EXPECT_EQ(SYSTEM::LoadObject("/none/of/this.so", error), nullptr);
    EXPECT_NE(error.find("/none/of/this.so"), std::string::npos) << error;
    int const onTheStack = 0;
    EXPECT_EQ(SYSTEM::FileAround(&onTheStack), "");
    EXPECT_FALSE(SYSTEM::IsLoaded("/none/of/this.so"));
}

/// Another thread, until the end of the test.
class OtherThread
{
public:
    explicit OtherThread(bool spins)
        : mThread([this, spins] {
              mNumber = gettid();
              while (spins && !mEnds)
                  ;
              mEnds.wait(false);
          })
    {
        while (mNumber == 0)
            std::this_thread::yield();
    }
    OtherThread(OtherThread const&) = delete;
    OtherThread& operator=(OtherThread const&) = delete;
    ~OtherThread() { End(); }

    ThreadNumber Number() const { return mNumber; }
    void End()
    {
        mEnds = true;
        mEnds.notify_all();
        if (mThread.joinable())
            mThread.join();
    }

private:
    std::atomic<ThreadNumber> mNumber{0};
    std::atomic<bool> mEnds{false};
    std::thread mThread;
};

TEST(Threads, OthersAreListedAndTheCallersIsNot)
{
    OtherThread const other(false);
    std::vector<ThreadNumber> threads;
    EXPECT_EQ(SYSTEM::ListOtherThreads(threads), 0);
    EXPECT_EQ(std::ranges::count(threads, other.Number()), 1);
    EXPECT_EQ(std::ranges::count(threads, gettid()), 0);
}

TEST(Threads, OneThatSpinsRunsAndItsTimeGrows)
{
    OtherThread other(true);
    EXPECT_TRUE(SYSTEM::IsRunning(other.Number()));
    auto const before = SYSTEM::RunTimeOf(other.Number());
    while (SYSTEM::RunTimeOf(other.Number()) == before)
        std::this_thread::yield();
    EXPECT_GT(SYSTEM::RunTimeOf(other.Number()), before);
    other.End();
    // Who joins a thread may still see it go.
    while (SYSTEM::RunTimeOf(other.Number()).count() >= 0)
        std::this_thread::yield();
    EXPECT_FALSE(SYSTEM::IsRunning(other.Number()));
}

TEST(Threads, OneThatWaitsDoesNotRun)
{
    OtherThread const other(false);
    while (SYSTEM::IsRunning(other.Number()))
        std::this_thread::yield();
    EXPECT_GE(SYSTEM::RunTimeOf(other.Number()).count(), 0);
}
} // namespace
} // namespace KORVA::TESTS
