// The file provider's operations at explicit positions.
#include "Mac/MAsyncTask.h"
#include "Mac/MFileDataProvider.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ResultCodes.h>

#include <cstring>
#include <functional>
#include <mutex>
#include <thread>

namespace KORVA::IO
{
namespace
{
using PLATFORM::Data;
using PLATFORM::IOChannel;
using PLATFORM::IOChannelRef;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider";
constexpr char kReadAsync[] =
    "ErrCode KORVA::IO::FileDataProvider::ReadAsync(int64, void *, size_t, IAsyncTaskPtr &)";
constexpr char kReadAsyncHandler[] =
    "ErrCode KORVA::IO::FileDataProvider::ReadAsync(int64, void *, size_t, IAsyncTaskPtr &)_block_invoke";
constexpr char kReadSync[] = "ErrCode KORVA::IO::FileDataProvider::ReadSync(int64, void *, size_t)";
constexpr char kReadSyncHandler[] =
    "ErrCode KORVA::IO::FileDataProvider::ReadSync(int64, void *, size_t)_block_invoke";
constexpr char kWriteAsync[] =
    "ErrCode KORVA::IO::FileDataProvider::WriteAsync(int64, const void *, size_t, IAsyncTaskPtr &)";
constexpr char kWriteAsyncHandler[] =
    "ErrCode KORVA::IO::FileDataProvider::WriteAsync(int64, const void *, size_t, IAsyncTaskPtr "
    "&)_block_invoke";
constexpr char kWriteSync[] = "ErrCode KORVA::IO::FileDataProvider::WriteSync(int64, const void *, size_t)";
constexpr char kWriteSyncHandler[] =
    "ErrCode KORVA::IO::FileDataProvider::WriteSync(int64, const void *, size_t)_block_invoke";

constexpr LogSite kSiteChannelBroke{kSource,
                                    "ErrCode KORVA::IO::FileDataProvider::EnableAsync()_block_invoke", 576};
constexpr LogSite kSiteReadAsyncError{kSource, kReadAsyncHandler, 597};
constexpr LogSite kSiteReadAsyncApply{kSource, kReadAsyncHandler, 613};
constexpr LogSite kSiteReadAsyncNoChannel{kSource, kReadAsync, 621};
constexpr LogSite kSiteReadSyncError{kSource, kReadSyncHandler, 637};
constexpr LogSite kSiteReadSyncNoChannel{kSource, kReadSync, 660};
constexpr LogSite kSiteWriteAsyncError{kSource, kWriteAsyncHandler, 682};
constexpr LogSite kSiteWriteAsyncNoData{kSource, kWriteAsync, 697};
constexpr LogSite kSiteWriteAsyncNoChannel{kSource, kWriteAsync, 702};
constexpr LogSite kSiteWriteSyncError{kSource, kWriteSyncHandler, 722};
constexpr LogSite kSiteWriteSyncNoData{kSource, kWriteSync, 735};
constexpr LogSite kSiteWriteSyncNoChannel{kSource, kWriteSync, 747};

constexpr wchar_t kNotInitializedText[] = L"File channel is not initialized.";
constexpr wchar_t kReadErrorText[] = L"GCD asynchronous read returned error ";
constexpr wchar_t kWriteErrorText[] = L"GCD Writing failed. Error ";
constexpr wchar_t kNoDataText[] = L"Failed to create dispatch data object.";

/// Reader and writer of one file may both be used for the first time at once, and each has its own lock.
std::mutex sEnabling;

/// False when there is nowhere to put a region. One that the channel has read into place stays.
bool Place(std::byte* to, void const* from, std::size_t size)
{
    if (!to)
        return false;
    if (to != from)
        std::memcpy(to, from, size);
    return true;
}

void WaitForEver(PLATFORM::Semaphore& ended)
{
    static_cast<void>(ended.Wait(PLATFORM::TimeAfter(PLATFORM::kTimeNow, INT64_MAX)));
}

/// Ends a read's task.
class ReadAsyncHandler
{
public:
    ReadAsyncHandler(void* buffer, MAsyncTask::CompletionRef completion)
        : mCursor(static_cast<std::byte*>(buffer)), mCompletion(std::move(completion))
    {}

    void operator()(bool done, Data const& data, int error)
    {
        if (error != 0 || data.IsEmpty())
        {
            Log(kSiteReadAsyncError, kReadErrorText, error);
            mCompletion->Finish(kNoData);
            return;
        }
        bool const applied = data.Apply([this](std::size_t offset, void const* address, std::size_t size) {
            if (!Place(mCursor ? mCursor + offset : nullptr, address, size))
                return false;
            mCursor += size;
            return true;
        });
        if (!applied)
        {
            Log(kSiteReadAsyncApply, L"GCD failed in dispatch_data_apply");
            mCompletion->Finish(kNoData);
        }
        else if (done)
            mCompletion->Finish(kNoError);
    }

private:
    /// Where the next delivery goes.
    std::byte* mCursor;
    MAsyncTask::CompletionRef mCompletion;
};

MAsyncTask::CompletionRef CreateTask(IOChannelRef const& channel, IAsyncTaskPtr& task)
{
    auto* const created = new MAsyncTask(channel);
    task.Adopt(created);
    return created->Done();
}
} // namespace

ErrCode FileDataProvider::EnableAsync()
{
    std::lock_guard const lock(sEnabling);
    static_cast<void>(SetPosition(0, IDataProvider::kFromStart));
    if (mAsyncEnabled)
        return kNoError;
    // Before the channel is there: its handler may run at once, and what that clears must stay so.
    mAsyncEnabled = true;
    IOChannelRef const channel = IOChannel::Create(mFile->Descriptor(), [this](int error) {
        if (error == 0)
            return;
        Log(kSiteChannelBroke, L"GCD IO channel got broke. Error ", error);
        mAsyncEnabled = false;
    });
    StoreChannel(channel);
    if (channel)
        return kNoError;
    mAsyncEnabled = false;
    return kNoChannel;
}

IOChannelRef FileDataProvider::Channel() const
{
    if (!mAsyncEnabled)
        return {};
    while (mChannelGuard.test_and_set())
        std::this_thread::yield();
    IOChannelRef channel = mChannel;
    mChannelGuard.clear();
    return channel;
}

void FileDataProvider::StoreChannel(IOChannelRef channel)
{
    while (mChannelGuard.test_and_set())
        std::this_thread::yield();
    std::swap(mChannel, channel);
    mChannelGuard.clear();
    // A broken one that another replaces must not lead here any more.
    if (channel)
        channel->DropCleanupHandler();
}

void FileDataProvider::NoteChannelError(int error)
{
    int32 none = 0;
    mChannelError.compare_exchange_strong(none, error);
}

ErrCode FileDataProvider::ReadAsync(int64 offset, void* buffer, std::size_t length, IAsyncTaskPtr& task)
{
    IOChannelRef const channel = Channel();
    if (!channel)
    {
        Log(kSiteReadAsyncNoChannel, kNotInitializedText);
        return kNoChannel;
    }
    channel->Read(offset, length, buffer, ReadAsyncHandler(buffer, CreateTask(channel, task)));
    return kNoError;
}

ErrCode FileDataProvider::ReadSync(int64 offset, void* buffer, std::size_t length)
{
    IOChannelRef const channel = Channel();
    if (!channel)
    {
        Log(kSiteReadSyncNoChannel, kNotInitializedText);
        return kNoChannel;
    }
    PLATFORM::SemaphoreRef const ended(new PLATFORM::Semaphore(0));
    auto handler = [&](bool done, Data const& data, int error) {
        if (error != 0)
        {
            Log(kSiteReadSyncError, kReadErrorText, error);
            NoteChannelError(error);
            ended->Signal();
            return;
        }
        // Each delivery begins at the buffer again.
        static_cast<void>(data.Apply([buffer](std::size_t from, void const* address, std::size_t size) {
            return Place(buffer ? static_cast<std::byte*>(buffer) + from : nullptr, address, size);
        }));
        if (done)
            ended->Signal();
    };
    channel->ReadHere(offset, length, buffer, std::ref(handler));
    WaitForEver(*ended);
    return kNoError;
}

ErrCode FileDataProvider::WriteAsync(int64 offset, void const* buffer, std::size_t length,
                                     IAsyncTaskPtr& task)
{
    IOChannelRef const channel = Channel();
    if (!channel)
    {
        Log(kSiteWriteAsyncNoChannel, kNotInitializedText);
        return kNoChannel;
    }
    Data const data(buffer, length);
    // A task that never ends holds no file.
    MAsyncTask::CompletionRef const completion = CreateTask(data.IsEmpty() ? IOChannelRef() : channel, task);
    if (data.IsEmpty())
    {
        Log(kSiteWriteAsyncNoData, kNoDataText);
        return kNothingToWrite;
    }
    channel->Write(offset, data, [completion](bool done, Data const&, int error) {
        if (error != 0)
        {
            Log(kSiteWriteAsyncError, kWriteErrorText, error);
            completion->Finish(kWriteFailed);
        }
        else if (done)
            completion->Finish(kNoError);
    });
    return kNoError;
}

ErrCode FileDataProvider::WriteSync(int64 offset, void const* buffer, std::size_t length)
{
    IOChannelRef const channel = Channel();
    if (!channel)
    {
        Log(kSiteWriteSyncNoChannel, kNotInitializedText);
        return kNoChannel;
    }
    PLATFORM::SemaphoreRef const ended(new PLATFORM::Semaphore(0));
    Data const data(buffer, length);
    if (data.IsEmpty())
    {
        Log(kSiteWriteSyncNoData, kNoDataText);
        // Nothing will signal it. Kept so: callers must not write nothing.
        WaitForEver(*ended);
        return kNothingToWrite;
    }
    auto handler = [this, &ended](bool done, Data const& left, int error) {
        if (error != 0)
        {
            Log(kSiteWriteSyncError, kWriteErrorText, error);
            NoteChannelError(error);
            mUnwritten += left.Size();
        }
        if (error != 0 || done)
            ended->Signal();
    };
    channel->WriteHere(offset, data, std::ref(handler));
    WaitForEver(*ended);
    return kNoError;
}
} // namespace KORVA::IO
