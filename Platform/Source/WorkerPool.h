// The threads that serve what nobody waits for.
#pragma once

#include "SpinLock.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace KORVA::PLATFORM
{
/// One for the process, made when it is first used; a thread starts when there is work and all others are
/// busy. Ends with the process, or when the library is unloaded, after all that has been submitted. A forked
/// child has a pool of its own, and nothing of what its parent has submitted is done there. Safe from any
/// thread.
class WorkerPool
{
public:
    class Job
    {
    public:
        /// `owner` tells jobs apart that a waiting thread may take; null for one that none may.
        explicit Job(void const* owner) : mOwner(owner) {}
        virtual ~Job() = default;
        virtual void Run() = 0;
        void const* Owner() const { return mOwner; }

    private:
        void const* mOwner;
    };

    static WorkerPool& Instance();

    /// Adopts `job` and runs it once, in the order of submission as far as there are threads.
    void Submit(std::unique_ptr<Job> job);

    /// Runs, on the calling thread, a job of `owner` that no thread has begun and that is among the next.
    /// False when there is none.
    bool RunOneOf(void const* owner);

    /// The threads at most.
    static unsigned Width();

private:
    struct State
    {
        SpinLock jobsLock;
        std::deque<std::unique_ptr<Job>> jobs;

        /// Of the threads, and what the idle ones sleep on. Taken before the other lock where both are held.
        std::mutex mutex;
        std::condition_variable submitted;
        std::vector<std::thread> threads;
        std::atomic<bool> ending{false};
        /// Threads that sleep or are about to; whoever submits looks here after the job is in the queue, and
        /// a thread looks there after it has said so here.
        std::atomic<std::size_t> idle{0};
        std::atomic<std::size_t> started{0};
    };

    WorkerPool();
    ~WorkerPool();

    static void BeforeFork();
    static void AfterForkInParent();
    static void AfterForkInChild();

    static void Work(State& state);
    /// The first job; null when there is none.
    static std::unique_ptr<Job> Take(State& state);
    /// False when the system has no thread to give.
    static bool StartThread(State& state);

    State* mState;
    /// What a child has of its parent: threads that are not there can't be ended, and nothing may touch it.
    State* mParents = nullptr;
};
} // namespace KORVA::PLATFORM
