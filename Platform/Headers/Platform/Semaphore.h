// Counting semaphores and the times that they wait for.
#pragma once

#include "Platform/Ref.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace KORVA::PLATFORM
{
/// A point of the steady clock, in nanoseconds.
using Time = std::uint64_t;
inline constexpr Time kTimeNow = 0;
inline constexpr Time kTimeForever = ~Time{0};

/// `nanoseconds` after `from`; `kTimeForever` where that is further away than the clock goes (some 292
/// years).
Time TimeAfter(Time from, std::int64_t nanoseconds);

/// Safe from any thread. Counted, because whoever signals may still be inside when the waiter is through.
class Semaphore final : public Counted
{
public:
    explicit Semaphore(int value) : mValue(value) {}

    /// Takes one from the value as soon as there is one to take: 0; non-zero when the deadline came first.
    int Wait(Time deadline);
    /// Adds one and lets one waiter through.
    void Signal();

private:
    friend class Ref<Semaphore>;
    ~Semaphore() = default;

    std::mutex mMutex;
    std::condition_variable mSignalled;
    int mValue;
};

using SemaphoreRef = Ref<Semaphore>;
} // namespace KORVA::PLATFORM
