// The provider over a file.
#pragma once

#include "DataProviderImpl.h"
#include "Platform/FileStream.h"
#include "Platform/IOChannel.h"
#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/TessIO/IAsyncTask.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IURI.h>

#include <atomic>
#include <memory>

namespace KORVA::IO
{
/// Opens an existing file once, as a buffered stream, and keeps it open for its whole life.
class FileDataProvider final : public DataProviderImpl
{
public:
    /// Shares the reporter, which may be null.
    explicit FileDataProvider(IReporter* reporter);
    FileDataProvider(FileDataProvider const&) = delete;
    FileDataProvider& operator=(FileDataProvider const&) = delete;
    ~FileDataProvider() override;

    /// Opens the file that `uri` (shared) names and aggregates the URI, the file object and, as the mode
    /// has it, the asynchronous reader and writer on `outer`. To be called once. 0, or a code of
    /// `IDataProvider::InitURIBased` and nothing aggregated.
    ErrCode Init(IURI& uri, StreamMode mode, IDataProvider* outer);

    /// 13 for a null buffer. Repeats until the stream has taken all: on a file that was opened for reading it
    /// never returns. On a full device the stream takes bytes and drops them: 0, and `GetLostBytes` tells.
    OperationId Write(void const* inBuffer, std::size_t count) override;
    OperationId Read(void* outBuffer, int32& count) override;
    ErrCode GetSize(int64& size) const override;
    /// Cuts or extends the file at once, past what the stream still buffers.
    ErrCode SetSize(int64 length) override;
    /// `kFromEnd` adds the offset to the end.
    ErrCode SetPosition(int64 offset, IDataProvider::Offset from) override;
    int64 GetPosition() const override;
    int64 GetLostBytes() const override;
    int32 GetSystemError() const override;
    ErrCode WriteOut() override;
    ErrCode FlushToDevice() override;

    // What the asynchronous reader and writer call; safe from any thread.

    /// Puts the position to 0 and makes the channel unless there is one that works. 0, or 35.
    ErrCode EnableAsync();
    ErrCode ReadAsync(int64 offset, void* buffer, std::size_t length, IAsyncTaskPtr& task);
    ErrCode ReadSync(int64 offset, void* buffer, std::size_t length);
    ErrCode WriteAsync(int64 offset, void const* buffer, std::size_t length, IAsyncTaskPtr& task);
    ErrCode WriteSync(int64 offset, void const* buffer, std::size_t length);

private:
    friend struct KORVA::LayoutProbe;

    ErrCode OpenFile(StreamMode mode);
    /// Keeps the first error.
    void NoteChannelError(int error);
    /// Null when asynchronous operation is off.
    PLATFORM::IOChannelRef Channel() const;
    void StoreChannel(PLATFORM::IOChannelRef channel);

    std::unique_ptr<PLATFORM::PathString> mPathUrl;
    PLATFORM::FileStream* mFile = nullptr;
    TInterfacePtr<IReporter> mReporter;
    TInterfacePtr<IURI> mURI;
    PLATFORM::IOChannelRef mChannel;
    /// Cleared by the channel when it fails.
    std::atomic<bool8> mAsyncEnabled{false};
    /// What `WriteSync` could not write, and the first error of it and `ReadSync`: their answers don't tell.
    std::atomic<uint64> mUnwritten{0};
    std::atomic<int32> mChannelError{0};
    /// Held while `mChannel` is copied or exchanged.
    mutable std::atomic_flag mChannelGuard;
};
} // namespace KORVA::IO
