// The provider that buffers another.
#pragma once

#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IBufferedDataProvider.h>
#include <tessio/TessIO/IDataProviderStatus.h>

#include <memory>

namespace KORVA::IO
{
/// A window on the wrapped provider:
///
///     wrapped  ....|==========#####______|....
///                start      cursor  start + length     up to the buffer's size
///
/// Reading fills the window and moves the cursor through it; writing moves the cursor and makes the length
/// end there.
class BufferedDataProvider final : public TObject<IBufferedDataProvider>, public IDataProviderStatus
{
public:
    struct Buffer
    {
        std::unique_ptr<std::byte[]> mData;
        int64 mCursor = 0;
        int64 mLength = 0;
        int64 mStart = 0;

        /// Loses what is there.
        void Alloc(int size);
    };

    BufferedDataProvider() = default;
    ~BufferedDataProvider() override;

    void InitHandleBased(int mode) override;
    ErrCode InitReadOnlyMem(void const* data, int32 size) override;
    ErrCode InitURIBased(IURI& uri, int mode, IReporter* reporter) override;
    OperationId Write(void const* data, std::size_t count) override;
    OperationId Read(void* data, int32& count) override;
    int64 Size() const override;
    ErrCode SetSize(int64 size) override;
    ErrCode SetPosition(int64 offset, Offset from) override;
    int64 GetPosition() const override;
    Endian GetEndian() const override;
    bool IsNative() const override;
    void SetEndian(Endian endian) override;
    bool AtEnd() override;
    ErrCode Flush() override;
    bool GetAutoFlush() override;
    void SetAutoFlush(bool autoFlush) override;

    ErrCode Init(IDataProvider& provider, int bufferSize, int mode) override;
    int GetBufferSize() const override;
    void SetBufferSize(int size) override;

    int64 GetLostBytes() const override;
    int32 GetSystemError() const override;
    ErrCode WriteOut() override;
    ErrCode FlushToDevice() override;

    /// Whether the cursor may be put on `position`. A full buffer ends before its last position, one with
    /// room left behind it.
    bool InBuffer(int64 position, Buffer const* buffer) const;

private:
    friend struct KORVA::LayoutProbe;

    bool BuffersReads() const { return (mMode & kBufferReads) != 0; }
    bool BuffersWrites() const { return (mMode & kBufferWrites) != 0; }
    bool BuffersAnything() const { return BuffersReads() || BuffersWrites(); }
    int64 Capacity() const { return mBufferSize > 0 ? mBufferSize : 0; }

    /// Delivers written bytes and empties the buffer.
    void FlushBuffers();
    /// The wrapped provider's, null where it has none.
    IDataProviderStatus* WrappedStatus() const;
    /// Delivers written bytes, then has `flush` do the same below.
    ErrCode Deliver(ErrCode (IDataProviderStatus::*flush)());
    /// Fills the buffer from where the wrapped provider stands.
    void GetReadBuffData();
    OperationId BufferedWrite(std::byte const* data, std::size_t count);
    OperationId BufferedRead(std::byte* data, int32& count);
    /// Copies into the buffer at the cursor; the length ends there.
    void Put(std::byte const* data, std::size_t count);
    /// Copies out of the buffer at the cursor.
    void Get(std::byte* data, int64 count);

    TInterfacePtr<IDataProvider> mProvider;
    int32 mBufferSize = 0;
    int32 mMode = kBufferNothing;
    Buffer mBuffer;
    bool8 mDirty = false;
    bool8 mAutoFlush = true;
    /// Bytes that the wrapped provider refused, or would not have at their place, when the buffer was
    /// flushed.
    int64 mRefused = 0;
};
} // namespace KORVA::IO
