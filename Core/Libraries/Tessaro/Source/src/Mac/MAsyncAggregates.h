// What a file-based data provider answers for reading and writing at explicit positions.
#pragma once

#include "Platform/Semaphore.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IAsyncReader.h>
#include <tessio/TessIO/IAsyncWriter.h>

#include <atomic>
#include <functional>

namespace KORVA::IO
{
class FileDataProvider;

/// A lock for what is done once.
class BaseAsyncLockable
{
protected:
    BaseAsyncLockable() { mSemaphore->Signal(); }
    BaseAsyncLockable(BaseAsyncLockable const&) = delete;
    BaseAsyncLockable& operator=(BaseAsyncLockable const&) = delete;
    ~BaseAsyncLockable() = default;

    /// Held for as long as it lives.
    class Lock
    {
    public:
        explicit Lock(BaseAsyncLockable& owner) : mOwner(owner)
        {
            mOwner.mSemaphore->Wait(PLATFORM::kTimeForever);
        }
        Lock(Lock const&) = delete;
        Lock& operator=(Lock const&) = delete;
        ~Lock() { mOwner.mSemaphore->Signal(); }

    private:
        BaseAsyncLockable& mOwner;
    };

private:
    PLATFORM::SemaphoreRef mSemaphore{new PLATFORM::Semaphore(0)};
};

/// Enables asynchronous operation of the file at its first use, then only calls through.
class MAsyncReader final : public TObject<IAsyncReader>, public BaseAsyncLockable
{
public:
    /// Borrows the provider: both live and die with the facade.
    explicit MAsyncReader(FileDataProvider& owner);

    ErrCode ReadAsync(int64 offset, void* buffer, std::size_t length, IAsyncTaskPtr& task) override;
    ErrCode ReadSync(int64 offset, void* buffer, std::size_t length) override;

private:
    friend struct KORVA::LayoutProbe;

    using Operation = std::function<ErrCode()>;
    using Proc = ErrCode (*)(MAsyncReader& reader, Operation const& operation);

    void EnableAsync();
    static ErrCode UninitializedReadProc(MAsyncReader& reader, Operation const& operation);
    static ErrCode InitializedReadProc(MAsyncReader& reader, Operation const& operation);

    FileDataProvider* mOwner;
    std::atomic<bool8> mInitialized{false};
    std::atomic<Proc> mProc{&UninitializedReadProc};
};

class MAsyncWriter final : public TObject<IAsyncWriter>, public BaseAsyncLockable
{
public:
    /// As for the reader.
    explicit MAsyncWriter(FileDataProvider& owner);

    ErrCode WriteAsync(int64 offset, void const* buffer, std::size_t length, IAsyncTaskPtr& task) override;
    ErrCode WriteSync(int64 offset, void const* buffer, std::size_t length) override;

private:
    friend struct KORVA::LayoutProbe;

    using Operation = std::function<ErrCode()>;
    using Proc = ErrCode (*)(MAsyncWriter& writer, Operation const& operation);

    void EnableAsync();
    static ErrCode UninitializedWriteProc(MAsyncWriter& writer, Operation const& operation);
    static ErrCode InitializedWriteProc(MAsyncWriter& writer, Operation const& operation);

    FileDataProvider* mOwner;
    std::atomic<bool8> mInitialized{false};
    std::atomic<Proc> mProc{&UninitializedWriteProc};
};
} // namespace KORVA::IO
