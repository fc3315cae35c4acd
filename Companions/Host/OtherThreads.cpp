#include "OtherThreads.h"

#include "System/Threads.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace KORVA::HOST
{
namespace
{
using namespace std::chrono_literals;

constexpr auto kEnoughTime = 1ms;
constexpr auto kPause = 200us;
/// For a thread that wants to run and may not.
constexpr int kMostPauses = 50'000;

bool LetLeave(SYSTEM::ThreadNumber thread)
{
    std::chrono::nanoseconds const before = SYSTEM::RunTimeOf(thread);
    for (int pauses = 0; pauses < kMostPauses; ++pauses)
    {
        std::chrono::nanoseconds const now = SYSTEM::RunTimeOf(thread);
        if (now < 0ns || now - before >= kEnoughTime || !SYSTEM::IsRunning(thread))
            return true;
        std::this_thread::sleep_for(kPause);
    }
    return false;
}
} // namespace

bool LetOtherThreadsLeave()
{
    std::vector<SYSTEM::ThreadNumber> threads;
    return SYSTEM::ListOtherThreads(threads) == 0 && std::ranges::all_of(threads, &LetLeave);
}
} // namespace KORVA::HOST
