#include "DictValue.h"

#include "BoundedRead.h"
#include <tessio/TessIO/PersistentData.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

namespace KORVA::IO
{
namespace
{
/// The bits of an unsigned 64-bit conversion: values from 2^63 upwards lose 2^63 and get the top bit. What no
/// 64-bit integer can hold becomes 0x8000000000000000, as the processors' own conversions have it.
uint64 ToInteger(double value)
{
    constexpr double kTopBit = 9223372036854775808.0;
    constexpr uint64 kOutOfRange = 0x8000000000000000ULL;
    if (value >= kTopBit)
        return value < 2 * kTopBit ? static_cast<uint64>(static_cast<int64>(value - kTopBit)) ^ kOutOfRange
                                   : kOutOfRange;
    if (std::isnan(value) || value < -kTopBit)
        return kOutOfRange;
    return static_cast<uint64>(static_cast<int64>(value));
}

/// Integers widen with their own sign.
uint64 Widen(int64 value) { return static_cast<uint64>(value); }

/// At least one byte, so that an empty buffer still has an address.
void* Allocate(std::size_t size)
{
    void* const block = std::malloc(std::max<std::size_t>(size, 1));
    if (!block)
        throw std::bad_alloc();
    return block;
}

class CAllocatedBuffer final : public GrowingBuffer
{
public:
    CAllocatedBuffer() = default;
    CAllocatedBuffer(CAllocatedBuffer const&) = delete;
    CAllocatedBuffer& operator=(CAllocatedBuffer const&) = delete;
    ~CAllocatedBuffer() { std::free(mBlock); }

    unsigned char* Grow(std::size_t size) override
    {
        void* const block = std::realloc(mBlock, std::max<std::size_t>(size, 1));
        if (!block)
            throw std::bad_alloc();
        mBlock = block;
        mSize = size;
        return static_cast<unsigned char*>(mBlock);
    }

    /// Gives the block away, cut to `used` bytes where that gives much back.
    void* Detach(std::size_t used)
    {
        constexpr std::size_t kMuch = 4096;
        // Where the allocator can't, the larger block does as well.
        if (mSize - used >= kMuch)
            if (void* const smaller = std::realloc(mBlock, std::max<std::size_t>(used, 1)))
                mBlock = smaller;
        return std::exchange(mBlock, nullptr);
    }

private:
    void* mBlock = nullptr;
    std::size_t mSize = 0;
};
} // namespace

DictValue::DictValue(ValueTag tag, uint64 integer, double floating)
    : mTag(tag), mInteger(integer), mFloating(floating)
{
    SetupPersistence(*this);
}

DictValue::DictValue(ValueTag tag, void const* data, int length)
    : mTag(tag), mBuffer(Allocate(static_cast<std::size_t>(length))), mBufferLength(length)
{
    std::memcpy(mBuffer, data, static_cast<std::size_t>(length));
    SetupPersistence(*this);
}

DictValue::DictValue() : DictValue(ValueTag::kNone, 0, 0.0) {}
DictValue::DictValue(signed char value) : DictValue(ValueTag::kInt8, Widen(value), value) {}
DictValue::DictValue(unsigned char value) : DictValue(ValueTag::kUInt8, value, value) {}
DictValue::DictValue(short value) : DictValue(ValueTag::kInt16, Widen(value), value) {}
DictValue::DictValue(unsigned short value) : DictValue(ValueTag::kUInt16, value, value) {}
DictValue::DictValue(int value) : DictValue(ValueTag::kInt32, Widen(value), value) {}
DictValue::DictValue(unsigned int value) : DictValue(ValueTag::kUInt32, value, value) {}
DictValue::DictValue(long long value) : DictValue(ValueTag::kInt64, Widen(value), static_cast<double>(value))
{}
DictValue::DictValue(unsigned long long value)
    : DictValue(ValueTag::kUInt64, value, static_cast<double>(value))
{}
DictValue::DictValue(float value)
    : DictValue(ValueTag::kFloat, ToInteger(static_cast<double>(value)), static_cast<double>(value))
{}
DictValue::DictValue(double value) : DictValue(ValueTag::kDouble, ToInteger(value), value) {}
DictValue::DictValue(GUID const& value) : DictValue(ValueTag::kGUID, &value, static_cast<int>(sizeof value))
{}
DictValue::DictValue(unsigned char const* data, int length) : DictValue(ValueTag::kBytes, data, length) {}
DictValue::DictValue(UniChar const* data, int count)
    : DictValue(ValueTag::kUnits, data, static_cast<int>(static_cast<uint32>(count) * sizeof(UniChar)))
{}

DictValue::~DictValue() { std::free(mBuffer); }

ErrCode DictValue::QueryInterface(GUID const& iid, IObject** out) const
{
    if (!(iid == IID_IDICTIONARY_VALUE))
        return TObject::QueryInterface(iid, out);
    if (out)
        *out = const_cast<DictValue*>(this);
    return kNoError;
}

IDataProviderStream& DictValue::Write(IDataProviderStream& stream) const
{
    stream << static_cast<uint32>(mTag);
    if (IsNumber(mTag))
        return stream << mInteger << mFloating;
    if (HasLength(mTag))
        stream << mBufferLength;
    // Straight to the provider: buffers, and identifiers here, keep the order they have in memory.
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    // An identifier is whole, also one that was read from a cut file: what was missing is zero.
    auto const size = mTag == ValueTag::kGUID ? sizeof(GUID) : static_cast<std::size_t>(mBufferLength);
    if ((HasLength(mTag) || mTag == ValueTag::kGUID) && provider && mBuffer && size > 0)
        static_cast<void>(provider->Write(mBuffer, size));
    return stream;
}

IDataProviderStream& DictValue::Read(IDataProviderStream& stream)
{
    uint32 tag = 0;
    stream >> tag;
    mTag = static_cast<ValueTag>(tag);
    std::free(mBuffer);
    mBuffer = nullptr;
    mBufferLength = 0;
    mInteger = 0;
    mFloating = 0;
    if (IsNumber(mTag))
        return stream >> mInteger >> mFloating;
    if (mTag == ValueTag::kGUID)
        ReadBuffer(stream, sizeof(GUID));
    else if (HasLength(mTag))
    {
        int length = 0;
        stream >> length;
        ReadBuffer(stream, length);
    }
    return stream;
}

void DictValue::ReadBuffer(IDataProviderStream& stream, int length)
{
    CAllocatedBuffer buffer;
    // An identifier has all its bytes, whatever comes.
    std::size_t const least = mTag == ValueTag::kGUID ? sizeof(GUID) : 0;
    std::memset(buffer.Grow(least), 0, least);
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    if (length > 0 && provider)
        mBufferLength = ReadBounded(*provider, length, buffer);
    mBuffer = buffer.Detach(std::max(least, static_cast<std::size_t>(mBufferLength)));
}
} // namespace KORVA::IO
