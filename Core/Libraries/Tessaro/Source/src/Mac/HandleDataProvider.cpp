#include "Mac/HandleDataProvider.h"

#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>
#include <cstring>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/HandleDataProvider";
constexpr char kSetSize[] = "virtual ErrCode KORVA::IO::HandleDataProvider::SetSize(int64)";
constexpr char kSetPosition[] =
    "virtual ErrCode KORVA::IO::HandleDataProvider::SetPosition(int64, IDataProvider::Offset)";

constexpr LogSite kSiteWriteForbidden{
    kSource, "virtual OperationId KORVA::IO::HandleDataProvider::Write(const void *, size_t)", 98};
constexpr LogSite kSiteReadForbidden{
    kSource, "virtual OperationId KORVA::IO::HandleDataProvider::Read(void *, int32 &)", 141};
constexpr LogSite kSiteNoMemory{kSource, kSetSize, 161};
constexpr LogSite kSiteSizeRange{kSource, kSetSize, 173};
constexpr LogSite kSiteResizeForbidden{kSource, kSetSize, 177};
constexpr LogSite kSiteFromStart{kSource, kSetPosition, 205};
constexpr LogSite kSiteFromCurrent{kSource, kSetPosition, 214};
constexpr LogSite kSiteFromEnd{kSource, kSetPosition, 223};

constexpr uint32 kGrowth = 0x80000;
constexpr int64 kMaxSize = 0xFFFFFFFF;

bool MayWrite(StreamMode mode)
{
    return mode == kStreamWrite || mode == kStreamReadWrite || mode == kStreamMode3;
}

bool MayRead(StreamMode mode) { return mode == kStreamRead || mode == kStreamReadWrite; }

ErrCode OutOfRange(LogSite const& site, int64 target, uint32 capacity)
{
    Log(site, L"Attempted to move buffer position to ", target, L"  when buffer size is ", capacity);
    return kBadArgument;
}
} // namespace

DataProviderImpl* CreateHandleDataProvider(int mode) { return new HandleDataProvider(mode); }

HandleDataProvider::HandleDataProvider(int mode)
    : mHandle(PLATFORM::NewHandle(kGrowth)), mMode(mode), mCapacity(kGrowth)
{}

HandleDataProvider::~HandleDataProvider() { PLATFORM::DisposeHandle(mHandle); }

OperationId HandleDataProvider::Write(void const* data, std::size_t count)
{
    if (count == 0)
        return kNoError;
    if (!MayWrite(mMode))
    {
        Log(kSiteWriteForbidden, L"Attempted to write data to a read only data provider");
        return kNotAllowed;
    }
    // A count beyond what a block can hold is refused by SetSize like any other size.
    int64 const end = static_cast<int64>(mPosition + std::min<std::size_t>(count, 1ULL << 62));
    // A block whose first memory was refused has a capacity, and no room.
    if (end > mCapacity || !mHandle)
    {
        // Growing the block must not make the data longer.
        uint32 const size = mSize;
        DataProviderImpl& self = *this;
        ErrCode const result = self.SetSize(end + kGrowth);
        mSize = size;
        if (result != kNoError)
            return result;
    }
    std::memcpy(PLATFORM::HandleAddress(mHandle) + mPosition, data, count);
    mPosition += static_cast<uint32>(count);
    mSize = std::max(mSize, mPosition);
    return kNoError;
}

OperationId HandleDataProvider::Read(void* buffer, int32& count)
{
    if (count == 0)
        return kNoError;
    if (!MayRead(mMode))
    {
        Log(kSiteReadForbidden, L"Attempted to read data from a write only data provider.");
        return kNotAllowed;
    }
    // The position may lie past the data; nothing is there to read then, nor for a negative count.
    int64 const left = std::max<int64>(0, static_cast<int64>(mSize) - mPosition);
    bool const cutShort = count < 0 || count > left;
    count = static_cast<int32>(std::clamp<int64>(count, 0, left));
    if (count > 0)
        std::memcpy(buffer, PLATFORM::HandleAddress(mHandle) + mPosition, static_cast<std::size_t>(count));
    mPosition += static_cast<uint32>(count);
    return cutShort ? kEndOfData : kNoError;
}

ErrCode HandleDataProvider::GetSize(int64& size) const
{
    size = mSize;
    return kNoError;
}

ErrCode HandleDataProvider::SetSize(int64 size)
{
    if (mMode == kStreamRead)
    {
        Log(kSiteResizeForbidden, L"Attempting to resize a dataprovider that is read only");
        return kResizeFailed;
    }
    if (size < 1 || size > kMaxSize)
    {
        Log(kSiteSizeRange, L"Memory handles only support up to 0xFFFFFFFF for size and cannot be negative");
        return kResizeFailed;
    }
    PLATFORM::SetHandleSize(mHandle, static_cast<std::size_t>(size));
    if (PLATFORM::MemError() != 0)
    {
        // The size named is the one that the block has, not the one that was asked for.
        Log(kSiteNoMemory, L"Too low memory. SetHandleSize failed with error code: ", PLATFORM::MemError(),
            L" and requested handle size: ", mCapacity);
        return kResizeFailed;
    }
    mCapacity = static_cast<uint32>(size);
    mPosition = std::min(mPosition, mCapacity);
    mSize = mCapacity;
    return kNoError;
}

ErrCode HandleDataProvider::SetPosition(int64 offset, IDataProvider::Offset origin)
{
    int64 const capacity = mCapacity;
    switch (origin)
    {
    case IDataProvider::kFromStart:
        if (offset < 0 || offset > capacity)
            return OutOfRange(kSiteFromStart, offset, mCapacity);
        mPosition = static_cast<uint32>(offset);
        return kNoError;
    case IDataProvider::kFromEnd:
        if (offset < 0 || offset > capacity)
            return OutOfRange(kSiteFromEnd, offset, mCapacity);
        mPosition = static_cast<uint32>(capacity - offset);
        return kNoError;
    case IDataProvider::kFromCurrent: {
        // An offset near the ends of the range wraps around and is refused like any other target outside.
        auto const target = static_cast<int64>(static_cast<uint64>(offset) + mPosition);
        if (target < 0 || target > capacity)
            return OutOfRange(kSiteFromCurrent, target, mCapacity);
        mPosition = static_cast<uint32>(target);
        return kNoError;
    }
    }
    return kNoError;
}

int64 HandleDataProvider::GetPosition() const { return mPosition; }
} // namespace KORVA::IO
