// An operation on a file's channel.
#pragma once

#include "Platform/IOChannel.h"
#include "Platform/Semaphore.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IAsyncTask.h>

#include <atomic>
#include <mutex>
#include <utility>

namespace KORVA::IO
{
class MAsyncTask final : public TObject<IAsyncTask>
{
public:
    /// The semaphore of the end, and the way from an operation's handler to its task. The handler holds no
    /// reference to the task, which a caller may drop at any time: the task cuts the way when it dies.
    class Completion final : public PLATFORM::Counted
    {
    public:
        Completion(MAsyncTask& task, PLATFORM::IOChannelRef channel)
            : mTask(&task), mChannel(std::move(channel))
        {}

        /// Ends the operation with 0, 2 or 3; once.
        void Finish(ErrCode status);
        void Cut();
        /// Serves the channel meanwhile, as long as there is something to serve.
        ErrCode Wait();

    private:
        friend class PLATFORM::Ref<Completion>;
        ~Completion() = default;

        std::mutex mMutex;
        MAsyncTask* mTask;
        /// Null when the operation has ended, so that a task kept holds no file.
        PLATFORM::IOChannelRef mChannel;
        PLATFORM::SemaphoreRef mSemaphore{new PLATFORM::Semaphore(0)};
    };
    using CompletionRef = PLATFORM::Ref<Completion>;

    /// Of an operation on `channel`.
    explicit MAsyncTask(PLATFORM::IOChannelRef channel);
    ~MAsyncTask() override;

    ErrCode WaitForCompletion() override;
    bool8 IsCompleted() const override;
    ErrCode GetStatus() const override;
    ErrCode CancelTask() override;

    CompletionRef const& Done() const { return mDone; }

private:
    friend struct KORVA::LayoutProbe;

    CompletionRef mDone;
    std::atomic<int32> mStatus{kNoError};
    std::atomic<bool8> mCompleted{false};
};
} // namespace KORVA::IO
