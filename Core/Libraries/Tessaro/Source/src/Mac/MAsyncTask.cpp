#include "Mac/MAsyncTask.h"

#include <tessio/Logger/LogSite.h>

namespace KORVA::IO
{
namespace
{
constexpr LogSite kSiteCancel{"Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider",
                              "virtual ErrCode KORVA::IO::MAsyncTask::CancelTask()", 222};
} // namespace

void MAsyncTask::Completion::Finish(ErrCode status)
{
    std::lock_guard const lock(mMutex);
    mChannel = {};
    if (!mTask || mTask->mCompleted)
        return;
    mTask->mStatus = status;
    mTask->mCompleted = true;
    mSemaphore->Signal();
}

ErrCode MAsyncTask::Completion::Wait()
{
    for (;;)
    {
        PLATFORM::IOChannelRef channel;
        {
            std::lock_guard const lock(mMutex);
            channel = mChannel;
        }
        if (!channel || !channel->ServeOne())
            break;
    }
    return mSemaphore->Wait(PLATFORM::TimeAfter(PLATFORM::kTimeNow, INT64_MAX));
}

void MAsyncTask::Completion::Cut()
{
    std::lock_guard const lock(mMutex);
    mTask = nullptr;
}

MAsyncTask::MAsyncTask(PLATFORM::IOChannelRef channel) : mDone(new Completion(*this, std::move(channel))) {}

MAsyncTask::~MAsyncTask() { mDone->Cut(); }

ErrCode MAsyncTask::WaitForCompletion() { return mDone->Wait(); }

bool8 MAsyncTask::IsCompleted() const { return mCompleted; }

ErrCode MAsyncTask::GetStatus() const { return mStatus; }

ErrCode MAsyncTask::CancelTask()
{
    Log(kSiteCancel, L"Currently unimplemented.");
    return kNoError;
}
} // namespace KORVA::IO
