#include "Platform/Semaphore.h"

#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace
{
using KORVA::PLATFORM::kTimeForever;
using KORVA::PLATFORM::kTimeNow;
using KORVA::PLATFORM::Semaphore;
using KORVA::PLATFORM::SemaphoreRef;
using KORVA::PLATFORM::Time;
using KORVA::PLATFORM::TimeAfter;
using KORVA::TESTS::RowName;

constexpr std::int64_t kMillisecond = 1'000'000;

SemaphoreRef Make(int value) { return SemaphoreRef(new Semaphore(value)); }

/// The deadline that means no limit in effect.
Time FarOff() { return TimeAfter(kTimeNow, INT64_MAX); }

struct ValueRow
{
    char const* name;
    int value;
    int signals;
    int waits;
};

class SemaphoreValue : public ::testing::TestWithParam<ValueRow>
{
};

TEST_P(SemaphoreValue, LetsSoManyThrough)
{
    SemaphoreRef const semaphore = Make(GetParam().value);
    for (int i = 0; i < GetParam().signals; ++i)
        semaphore->Signal();
    for (int i = 0; i < GetParam().waits; ++i)
        EXPECT_EQ(semaphore->Wait(kTimeForever), 0);
    EXPECT_NE(semaphore->Wait(kTimeNow), 0);
    EXPECT_NE(semaphore->Wait(TimeAfter(kTimeNow, kMillisecond)), 0);
    semaphore->Signal();
    EXPECT_EQ(semaphore->Wait(kTimeNow), 0);
    EXPECT_NE(semaphore->Wait(kTimeNow), 0);
}

ValueRow const kValues[] = {
    {"Nothing", 0, 0, 0},      {"OneSignal", 0, 1, 1},       {"TwoSignals", 0, 2, 2},
    {"FromTheStart", 3, 0, 3}, {"StartAndSignals", 2, 3, 5},
};
INSTANTIATE_TEST_SUITE_P(Values, SemaphoreValue, ::testing::ValuesIn(kValues), RowName());

struct DeadlineRow
{
    char const* name;
    Time (*deadline)();
};

class SemaphoreDeadline : public ::testing::TestWithParam<DeadlineRow>
{
};

/// However early the deadline, what is there to take is taken.
TEST_P(SemaphoreDeadline, TakesWhatIsThere)
{
    SemaphoreRef const semaphore = Make(2);
    EXPECT_EQ(semaphore->Wait(GetParam().deadline()), 0);
    EXPECT_EQ(semaphore->Wait(GetParam().deadline()), 0);
}

DeadlineRow const kDeadlines[] = {
    {"Now", [] { return kTimeNow; }},
    {"LongAgo", [] { return TimeAfter(kTimeNow, INT64_MIN); }},
    {"JustNow", [] { return TimeAfter(kTimeNow, -1); }},
    {"Soon", [] { return TimeAfter(kTimeNow, kMillisecond); }},
    {"FarOff", FarOff},
    {"Forever", [] { return kTimeForever; }},
};
INSTANTIATE_TEST_SUITE_P(Deadlines, SemaphoreDeadline, ::testing::ValuesIn(kDeadlines), RowName());

struct PastRow
{
    char const* name;
    std::int64_t nanoseconds;
};

class SemaphorePast : public ::testing::TestWithParam<PastRow>
{
};

TEST_P(SemaphorePast, DoesNotWait)
{
    SemaphoreRef const semaphore = Make(0);
    EXPECT_NE(semaphore->Wait(TimeAfter(kTimeNow, GetParam().nanoseconds)), 0);
    semaphore->Signal();
    EXPECT_EQ(semaphore->Wait(TimeAfter(kTimeNow, GetParam().nanoseconds)), 0);
}

PastRow const kPast[] = {
    {"Now", 0}, {"JustNow", -1}, {"ASecondAgo", -1'000 * kMillisecond}, {"LongAgo", INT64_MIN}};
INSTANTIATE_TEST_SUITE_P(Times, SemaphorePast, ::testing::ValuesIn(kPast), RowName());

TEST(SemaphoreTime, AddsUp)
{
    Time const base = TimeAfter(kTimeNow, 1'000 * kMillisecond);
    EXPECT_EQ(TimeAfter(base, 0), base);
    EXPECT_EQ(TimeAfter(base, 5), base + 5);
    EXPECT_EQ(TimeAfter(base, -5), base - 5);
    EXPECT_EQ(TimeAfter(1'000, 234), 1'234u);
    EXPECT_EQ(TimeAfter(1'000, -999), 1u);
}

TEST(SemaphoreTime, GoesForward)
{
    Time const before = TimeAfter(kTimeNow, 0);
    Time const after = TimeAfter(kTimeNow, 0);
    EXPECT_GT(before, kTimeNow);
    EXPECT_GE(after, before);
    EXPECT_GT(TimeAfter(kTimeNow, kMillisecond), before);
}

TEST(SemaphoreTime, EndsInForever)
{
    EXPECT_EQ(TimeAfter(kTimeForever, 0), kTimeForever);
    EXPECT_EQ(TimeAfter(kTimeForever, 5), kTimeForever);
    EXPECT_EQ(TimeAfter(kTimeForever, -5), kTimeForever);
    EXPECT_EQ(TimeAfter(kTimeNow, INT64_MAX), kTimeForever);
    EXPECT_EQ(TimeAfter(2, INT64_MAX), kTimeForever);
    EXPECT_LT(TimeAfter(kTimeNow, INT64_MAX / 2), kTimeForever);
}

TEST(SemaphoreTime, NeverFallsBackToNow)
{
    // The past before the clock began is still a time of its own, and not the present.
    EXPECT_NE(TimeAfter(1'000, -1'000), kTimeNow);
    EXPECT_NE(TimeAfter(1'000, INT64_MIN), kTimeNow);
    EXPECT_NE(TimeAfter(kTimeNow, INT64_MIN), kTimeNow);
}

TEST(SemaphoreWait, EndsWithTheSignalOfAnotherThread)
{
    for (Time const deadline : {FarOff(), kTimeForever})
        for (int round = 0; round < 500; ++round)
        {
            SemaphoreRef const semaphore = Make(0);
            // Plain: the semaphore orders both.
            int written = 0;
            std::thread signaller([&] {
                written = 1;
                semaphore->Signal();
            });
            EXPECT_EQ(semaphore->Wait(deadline), 0);
            EXPECT_EQ(written, 1);
            signaller.join();
        }
}

TEST(SemaphoreWait, LastsUntilItsDeadline)
{
    SemaphoreRef const semaphore = Make(0);
    auto const before = std::chrono::steady_clock::now();
    EXPECT_NE(semaphore->Wait(TimeAfter(kTimeNow, 20 * kMillisecond)), 0);
    // No upper bound: that is the machine's affair.
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

TEST(SemaphoreWait, OneSignalIsForOneWaiter)
{
    constexpr int kWaiters = 8;
    SemaphoreRef const semaphore = Make(0);
    std::atomic<int> through{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < kWaiters; ++i)
        waiters.emplace_back([&] {
            EXPECT_EQ(semaphore->Wait(kTimeForever), 0);
            ++through;
        });
    for (int i = 1; i <= kWaiters; ++i)
    {
        semaphore->Signal();
        while (through < i)
            std::this_thread::yield();
        EXPECT_EQ(through, i);
        EXPECT_NE(semaphore->Wait(kTimeNow), 0);
    }
    for (std::thread& waiter : waiters)
        waiter.join();
}

TEST(SemaphoreWait, MayLetGoWhileTheSignallerIsStillInside)
{
    for (int round = 0; round < 2000; ++round)
    {
        SemaphoreRef semaphore = Make(0);
        std::thread signaller([shared = semaphore] { shared->Signal(); });
        EXPECT_EQ(semaphore->Wait(kTimeForever), 0);
        semaphore = {};
        signaller.join();
    }
}

TEST(SemaphoreWait, LocksOutAsAMutexDoes)
{
    SemaphoreRef const semaphore = Make(0);
    semaphore->Signal();
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round)
            {
                EXPECT_EQ(semaphore->Wait(kTimeForever), 0);
                ++count;
                semaphore->Signal();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, 4000);
}
} // namespace
