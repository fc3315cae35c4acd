#include "WorkerPool.h"

#include "System/Fork.h"
#include "System/Signals.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace KORVA::PLATFORM
{
namespace
{
constexpr unsigned kFewestThreads = 4;
constexpr unsigned kMostThreads = 16;
constexpr std::size_t kFurthestLook = 256;
} // namespace

WorkerPool& WorkerPool::Instance()
{
    static WorkerPool pool;
    return pool;
}

unsigned WorkerPool::Width()
{
    // Asked once: the system looks it up in files.
    static unsigned const sWidth =
        std::clamp(std::thread::hardware_concurrency(), kFewestThreads, kMostThreads);
    return sWidth;
}

WorkerPool::WorkerPool() : mState(new State)
{
    // Where there is no memory for that, only the children have no pool.
    static_cast<void>(SYSTEM::CallAroundForks(&BeforeFork, &AfterForkInParent, &AfterForkInChild));
}

WorkerPool::~WorkerPool()
{
    {
        std::lock_guard const lock(mState->mutex);
        mState->ending = true;
    }
    mState->submitted.notify_all();
    // No thread starts any more. The state stays: what ends later may still submit, or fork.
    for (std::thread& thread : mState->threads)
        thread.join();
    mState->threads.clear();
}

// The child's copy must not be in the middle of anything.

void WorkerPool::BeforeFork()
{
    State& state = *Instance().mState;
    state.mutex.lock();
    state.jobsLock.lock();
}

void WorkerPool::AfterForkInParent()
{
    State& state = *Instance().mState;
    state.jobsLock.unlock();
    state.mutex.unlock();
}

void WorkerPool::AfterForkInChild()
{
    WorkerPool& pool = Instance();
    pool.mParents = pool.mState;
    pool.mState = new State;
}

bool WorkerPool::StartThread(State& state)
{
    std::lock_guard const lock(state.mutex);
    if (state.ending)
        return false;
    if (state.threads.size() == Width())
        return true;
    // Signals are for the host's threads.
    SYSTEM::HeldSignals const held(SYSTEM::HeldSignals::Which::kAllButFaults);
    try
    {
        state.threads.emplace_back([&state] { Work(state); });
    }
    catch (std::system_error const&)
    {
        return !state.threads.empty();
    }
    ++state.started;
    return true;
}

void WorkerPool::Submit(std::unique_ptr<Job> job)
{
    State& state = *mState;
    std::size_t waiting = 0;
    {
        std::lock_guard const lock(state.jobsLock);
        state.jobs.push_back(std::move(job));
        waiting = state.jobs.size();
    }
    if (state.idle > 0)
    {
        std::lock_guard const lock(state.mutex);
        state.submitted.notify_one();
    }
    if (state.ending || (waiting > state.idle && state.started < Width() && !StartThread(state)))
        // Nobody else is there to do it.
        if (std::unique_ptr<Job> const own = Take(state))
            own->Run();
}

bool WorkerPool::RunOneOf(void const* owner)
{
    State& state = *mState;
    std::unique_ptr<Job> job;
    {
        std::lock_guard const lock(state.jobsLock);
        // Not far: everybody else waits for the lock meanwhile.
        auto const end =
            state.jobs.begin() + static_cast<std::ptrdiff_t>(std::min(state.jobs.size(), kFurthestLook));
        auto const found = std::find_if(state.jobs.begin(), end,
                                        [owner](auto const& queued) { return queued->Owner() == owner; });
        if (found == end)
            return false;
        job = std::move(*found);
        state.jobs.erase(found);
    }
    job->Run();
    return true;
}

std::unique_ptr<WorkerPool::Job> WorkerPool::Take(State& state)
{
    std::lock_guard const lock(state.jobsLock);
    if (state.jobs.empty())
        return nullptr;
    std::unique_ptr<Job> job = std::move(state.jobs.front());
    state.jobs.pop_front();
    return job;
}

void WorkerPool::Work(State& state)
{
    for (;;)
    {
        while (std::unique_ptr<Job> const job = Take(state))
            job->Run();
        ++state.idle;
        std::unique_ptr<Job> job;
        {
            std::unique_lock lock(state.mutex);
            while (!(job = Take(state)) && !state.ending)
                state.submitted.wait(lock);
        }
        --state.idle;
        if (!job)
            return;
        job->Run();
    }
}
} // namespace KORVA::PLATFORM
