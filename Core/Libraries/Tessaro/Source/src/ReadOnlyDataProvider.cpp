#include "ReadOnlyDataProvider.h"

#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>
#include <cstring>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/DataProvider";
constexpr char kSetPosition[] =
    "virtual ErrCode KORVA::IO::ReadOnlyDataProvider::SetPosition(int64, IDataProvider::Offset)";

constexpr LogSite kSiteWrite{
    kSource, "virtual OperationId KORVA::IO::ReadOnlyDataProvider::Write(const void *, size_t)", 45};
constexpr LogSite kSiteReadNull{
    kSource, "virtual OperationId KORVA::IO::ReadOnlyDataProvider::Read(void *, int32 &)", 51};
constexpr LogSite kSiteUnknownOrigin{kSource, kSetPosition, 86};
constexpr LogSite kSiteBeyondFromStart{kSource, kSetPosition, 97};
constexpr LogSite kSiteBeyondFromEnd{kSource, kSetPosition, 100};
constexpr LogSite kSiteBeyondFromCurrent{kSource, kSetPosition, 103};
constexpr LogSite kSiteNegative{kSource, kSetPosition, 109};

/// Sums of what a caller passes may pass the ends of the range; they wrap around and are then refused.
int64 Plus(int64 a, int64 b) { return static_cast<int64>(static_cast<uint64>(a) + static_cast<uint64>(b)); }

int64 Minus(int64 a, int64 b) { return static_cast<int64>(static_cast<uint64>(a) - static_cast<uint64>(b)); }
} // namespace

ReadOnlyDataProvider::ReadOnlyDataProvider(void const* data, int32 size)
    : mData(static_cast<unsigned char const*>(data)), mSize(size)
{}

OperationId ReadOnlyDataProvider::Write(void const*, std::size_t)
{
    Log(kSiteWrite, L"Write called on read only data");
    return kNotAllowed;
}

OperationId ReadOnlyDataProvider::Read(void* buffer, int32& count)
{
    if (!buffer)
    {
        Log(kSiteReadNull, L"outBuffer == NULL");
        return kBadArgument;
    }
    if (count < 1)
        return kNoError;
    count = std::min(count, static_cast<int32>(mSize - mPosition));
    std::memcpy(buffer, mData + mPosition, static_cast<std::size_t>(count));
    mPosition += count;
    return kNoError;
}

ErrCode ReadOnlyDataProvider::GetSize(int64& size) const
{
    size = mSize;
    return kNoError;
}

ErrCode ReadOnlyDataProvider::SetSize(int64) { return kNotAllowed; }

ErrCode ReadOnlyDataProvider::SetPosition(int64 offset, IDataProvider::Offset origin)
{
    int64 target = 0;
    switch (origin)
    {
    case IDataProvider::kFromStart:
        target = offset;
        break;
    case IDataProvider::kFromEnd:
        target = Minus(mSize, offset);
        break;
    case IDataProvider::kFromCurrent:
        target = Plus(mPosition, offset);
        break;
    default:
        Log(kSiteUnknownOrigin, L"offset type is unknown. Parameter blooper.");
        return kBadArgument;
    }
    if (target < 0)
    {
        Log(kSiteNegative, L"The offset supplied is ", offset, L" from the marker ", mPosition,
            L" but this would set the offset to negative.");
        return kBadArgument;
    }
    if (target <= mSize)
    {
        mPosition = target;
        return kNoError;
    }
    constexpr wchar_t kBeyond[] = L" but this would set the offset beyond the size of the data provider (";
    if (origin == IDataProvider::kFromStart)
        Log(kSiteBeyondFromStart, L"The offset supplied is ", offset, L" from the start of file", kBeyond,
            mSize, L").");
    else if (origin == IDataProvider::kFromEnd)
        Log(kSiteBeyondFromEnd, L"The offset supplied is ", offset, L" from the end of file", kBeyond, mSize,
            L").");
    else
        Log(kSiteBeyondFromCurrent, L"The offset supplied is ", offset, L" from the marker ", mPosition,
            kBeyond, mSize, L").");
    return kBadArgument;
}

int64 ReadOnlyDataProvider::GetPosition() const { return mPosition; }
} // namespace KORVA::IO
