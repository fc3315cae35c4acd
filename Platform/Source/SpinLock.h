// A lock for a few instructions.
#pragma once

#include <atomic>
#include <thread>

namespace KORVA::PLATFORM
{
/// To be held so shortly that whoever waits had better not sleep. A standard lockable.
class SpinLock
{
public:
    void lock()
    {
        for (int tries = 0; mHeld.test_and_set(std::memory_order_acquire); ++tries)
            while (mHeld.test(std::memory_order_relaxed))
                if (++tries > kTries)
                {
                    // The holder may have been put aside.
                    std::this_thread::yield();
                    tries = 0;
                }
    }
    void unlock() { mHeld.clear(std::memory_order_release); }

private:
    static constexpr int kTries = 100;

    std::atomic_flag mHeld;
};
} // namespace KORVA::PLATFORM
