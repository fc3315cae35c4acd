#include "Platform/Semaphore.h"

#include <chrono>
#include <limits>

namespace KORVA::PLATFORM
{
namespace
{
using Clock = std::chrono::steady_clock;
constexpr Time kFurthest = std::numeric_limits<std::int64_t>::max();
} // namespace

Time TimeAfter(Time from, std::int64_t nanoseconds)
{
    if (from == kTimeForever)
        return kTimeForever;
    Time const base = from != kTimeNow
                          ? from
                          : static_cast<Time>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                                  Clock::now().time_since_epoch())
                                                  .count());
    if (nanoseconds < 0)
        return base > Time{0} - static_cast<Time>(nanoseconds) ? base + static_cast<Time>(nanoseconds) : 1;
    return static_cast<Time>(nanoseconds) > kFurthest - base ? kTimeForever
                                                             : base + static_cast<Time>(nanoseconds);
}

int Semaphore::Wait(Time deadline)
{
    std::unique_lock lock(mMutex);
    auto const signalled = [this] { return mValue > 0; };
    if (deadline == kTimeForever)
        mSignalled.wait(lock, signalled);
    else if (!mSignalled.wait_until(
                 lock, Clock::time_point(std::chrono::nanoseconds(static_cast<std::int64_t>(deadline))),
                 signalled))
        return 1;
    --mValue;
    return 0;
}

void Semaphore::Signal()
{
    std::lock_guard const lock(mMutex);
    ++mValue;
    mSignalled.notify_one();
}
} // namespace KORVA::PLATFORM
