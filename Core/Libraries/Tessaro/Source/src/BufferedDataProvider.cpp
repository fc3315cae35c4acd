#include "BufferedDataProvider.h"

#include "Registration.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>
#include <cstring>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/BufferedDataProvider";

constexpr LogSite kSiteInitReadOnlyMem{
    kSource, "virtual ErrCode KORVA::IO::BufferedDataProvider::InitReadOnlyMem(const void *, int32)", 52};
constexpr LogSite kSiteGetPosition{kSource,
                                   "virtual int64 KORVA::IO::BufferedDataProvider::GetPosition() const", 170};
constexpr LogSite kSiteWrite{
    kSource, "virtual OperationId KORVA::IO::BufferedDataProvider::Write(const void *, size_t)", 248};
constexpr LogSite kSiteRead{
    kSource, "virtual OperationId KORVA::IO::BufferedDataProvider::Read(void *, int32 &)", 303};
constexpr LogSite kSiteSetPosition{
    kSource,
    "virtual ErrCode KORVA::IO::BufferedDataProvider::SetPosition(int64, KORVA::IO::IDataProvider::Offset)",
    355};

constexpr wchar_t kNoBuffer[] = L"Buffered data provider without a buffer?";

/// Wraps around: positions come from callers and from providers of any make.
int64 Sum(int64 a, int64 b) { return static_cast<int64>(static_cast<uint64>(a) + static_cast<uint64>(b)); }
int64 Difference(int64 a, int64 b)
{
    return static_cast<int64>(static_cast<uint64>(a) - static_cast<uint64>(b));
}

class BufferedDataFactory final
    : public TClassFactory<Makes<&New<BufferedDataProvider>, IID_BUFFERED_DATAPROVIDER>>
{
};
} // namespace

int RegisterBufferedDataProviderFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<BufferedDataFactory>(registry);
}

void BufferedDataProvider::Buffer::Alloc(int size)
{
    mData.reset();
    mData = std::make_unique<std::byte[]>(static_cast<std::size_t>(std::max(size, 0)));
    mCursor = 0;
    mLength = 0;
    mStart = 0;
}

BufferedDataProvider::~BufferedDataProvider()
{
    if (mAutoFlush || mDirty)
        FlushBuffers();
}

ErrCode BufferedDataProvider::Init(IDataProvider& provider, int bufferSize, int mode)
{
    mBufferSize = bufferSize;
    mMode = mode;
    mDirty = false;
    mRefused = 0;
    mBuffer.Alloc(bufferSize);
    mProvider.Reset();
    int32 const references = provider.AddRef();
    mProvider.Adopt(&provider);
    return references;
}

int BufferedDataProvider::GetBufferSize() const { return mBufferSize; }

void BufferedDataProvider::SetBufferSize(int size)
{
    mBufferSize = size;
    if (!BuffersAnything())
        return;
    mBuffer.Alloc(size);
    mDirty = false;
}

void BufferedDataProvider::InitHandleBased(int) {}

ErrCode BufferedDataProvider::InitReadOnlyMem(void const*, int32)
{
    Log(kSiteInitReadOnlyMem, L"Unimplemented.");
    return kNotInitialized;
}

ErrCode BufferedDataProvider::InitURIBased(IURI&, int, IReporter*) { return kNotInitialized; }

bool BufferedDataProvider::InBuffer(int64 position, Buffer const* buffer) const
{
    if (!buffer || position < buffer->mStart)
        return false;
    int64 const end = Sum(buffer->mStart, buffer->mLength);
    return buffer->mLength < Capacity() ? position <= end : position < end;
}

void BufferedDataProvider::FlushBuffers()
{
    if (BuffersWrites() && mDirty && mBuffer.mLength > 0)
    {
        ErrCode const placed = mProvider->SetPosition(mBuffer.mStart, kFromStart);
        // Up to the cursor, not to the length: a seek back gave up what stands behind.
        OperationId const written =
            mProvider->Write(mBuffer.mData.get(), static_cast<std::size_t>(mBuffer.mCursor));
        if (placed != kNoError || written != kNoError)
            mRefused += mBuffer.mCursor;
        mBuffer.mStart = mProvider->GetPosition();
        mDirty = false;
    }
    mBuffer.mLength = 0;
    mBuffer.mCursor = 0;
}

void BufferedDataProvider::GetReadBuffData()
{
    mBuffer.mStart = mProvider->GetPosition();
    // In 32 bits: of what lies 2 GiB and more before the end, nothing may be left.
    auto const left = static_cast<int32>(Difference(mProvider->Size(), mBuffer.mStart));
    auto const wanted = static_cast<int32>(std::clamp<int64>(left, 0, Capacity()));
    int32 count = wanted;
    if (wanted > 0)
        static_cast<void>(mProvider->Read(mBuffer.mData.get(), count));
    mBuffer.mLength = std::clamp(count, 0, wanted);
    mBuffer.mCursor = 0;
}

void BufferedDataProvider::Put(std::byte const* data, std::size_t count)
{
    if (count > 0)
        std::memcpy(mBuffer.mData.get() + mBuffer.mCursor, data, count);
    mBuffer.mCursor += static_cast<int64>(count);
    mBuffer.mLength = mBuffer.mCursor;
}

void BufferedDataProvider::Get(std::byte* data, int64 count)
{
    if (count <= 0)
        return;
    std::memcpy(data, mBuffer.mData.get() + mBuffer.mCursor, static_cast<std::size_t>(count));
    mBuffer.mCursor += count;
}

OperationId BufferedDataProvider::Write(void const* data, std::size_t count)
{
    if (BuffersWrites())
        return BufferedWrite(static_cast<std::byte const*>(data), count);
    if (BuffersReads())
    {
        Log(kSiteWrite, L"Write to read only Buffered data provider.");
        return kWrongDirection;
    }
    return mProvider->Write(data, count);
}

OperationId BufferedDataProvider::BufferedWrite(std::byte const* data, std::size_t count)
{
    mDirty = true;
    auto const room = static_cast<std::size_t>(Capacity() - mBuffer.mCursor);
    if (count < room)
    {
        Put(data, count);
        return kNoError;
    }
    Put(data, room);
    FlushBuffers();
    std::byte const* const rest = data + room;
    std::size_t const left = count - room;
    if (left >= static_cast<std::size_t>(Capacity()))
    {
        OperationId const result = mProvider->Write(rest, left);
        mBuffer.mStart = mProvider->GetPosition();
        return result;
    }
    Put(rest, left);
    mDirty = true;
    return kNoError;
}

OperationId BufferedDataProvider::Read(void* data, int32& count)
{
    if (BuffersReads())
        return BufferedRead(static_cast<std::byte*>(data), count);
    if (BuffersWrites())
    {
        Log(kSiteRead, L"Read from write only Buffered data provider.");
        return kWrongDirection;
    }
    return mProvider->Read(data, count);
}

OperationId BufferedDataProvider::BufferedRead(std::byte* data, int32& count)
{
    if (mBuffer.mLength == 0)
        GetReadBuffData();
    if (mBuffer.mCursor + count < mBuffer.mLength)
    {
        Get(data, count);
        return kNoError;
    }
    auto const taken = static_cast<int32>(mBuffer.mLength - mBuffer.mCursor);
    Get(data, taken);
    FlushBuffers();
    int32 rest = count - taken;
    if (rest >= Capacity())
    {
        static_cast<void>(mProvider->Read(data + taken, rest));
        GetReadBuffData();
    }
    else
    {
        GetReadBuffData();
        rest = static_cast<int32>(std::min<int64>(rest, mBuffer.mLength));
        Get(data + taken, rest);
    }
    count = taken + rest;
    return kNoError;
}

int64 BufferedDataProvider::Size() const { return mProvider->Size(); }

ErrCode BufferedDataProvider::SetSize(int64 size)
{
    FlushBuffers();
    return mProvider->SetSize(size);
}

int64 BufferedDataProvider::GetPosition() const
{
    if (!BuffersAnything())
    {
        Log(kSiteGetPosition, kNoBuffer);
        return mProvider->GetPosition();
    }
    return mBuffer.mLength > 0 ? Sum(mBuffer.mStart, mBuffer.mCursor) : mProvider->GetPosition();
}

ErrCode BufferedDataProvider::SetPosition(int64 offset, Offset from)
{
    if (!BuffersAnything())
    {
        Log(kSiteSetPosition, kNoBuffer);
        return kBadArgument;
    }
    int64 target = offset;
    if (from == kFromEnd)
        target = Difference(mProvider->Size(), offset);
    else if (from == kFromCurrent)
        target = Sum(offset,
                     mBuffer.mLength != 0 ? Sum(mBuffer.mStart, mBuffer.mCursor) : mProvider->GetPosition());
    if (InBuffer(target, &mBuffer))
    {
        mBuffer.mCursor = target - mBuffer.mStart;
        return kNoError;
    }
    FlushBuffers();
    ErrCode const result = mProvider->SetPosition(target, kFromStart);
    mBuffer.mStart = mProvider->GetPosition();
    return result;
}

BufferedDataProvider::Endian BufferedDataProvider::GetEndian() const { return mProvider->GetEndian(); }

bool BufferedDataProvider::IsNative() const { return mProvider->IsNative(); }

void BufferedDataProvider::SetEndian(Endian endian) { mProvider->SetEndian(endian); }

bool BufferedDataProvider::AtEnd() { return mProvider->AtEnd(); }

ErrCode BufferedDataProvider::Flush()
{
    FlushBuffers();
    return mProvider->Flush();
}

bool BufferedDataProvider::GetAutoFlush() { return mAutoFlush; }

void BufferedDataProvider::SetAutoFlush(bool autoFlush) { mAutoFlush = autoFlush; }

IDataProviderStatus* BufferedDataProvider::WrappedStatus() const
{
    return dynamic_cast<IDataProviderStatus*>(mProvider.Get());
}

int64 BufferedDataProvider::GetLostBytes() const
{
    IDataProviderStatus const* const wrapped = WrappedStatus();
    return mRefused + (wrapped ? wrapped->GetLostBytes() : 0);
}

int32 BufferedDataProvider::GetSystemError() const
{
    IDataProviderStatus const* const wrapped = WrappedStatus();
    return wrapped ? wrapped->GetSystemError() : 0;
}

ErrCode BufferedDataProvider::WriteOut() { return Deliver(&IDataProviderStatus::WriteOut); }

ErrCode BufferedDataProvider::FlushToDevice() { return Deliver(&IDataProviderStatus::FlushToDevice); }

ErrCode BufferedDataProvider::Deliver(ErrCode (IDataProviderStatus::*flush)())
{
    if (!mProvider)
        return kNotInitialized;
    // What was only read stays, and with it the position.
    if (mDirty)
        FlushBuffers();
    IDataProviderStatus* const wrapped = WrappedStatus();
    ErrCode const result = wrapped ? (wrapped->*flush)() : mProvider->Flush();
    return result == kNoError && mRefused > 0 ? kWriteFailed : result;
}
} // namespace KORVA::IO
