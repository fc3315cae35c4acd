#include "DataProviderStream.h"

#include "BoundedRead.h"
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace KORVA::IO
{
namespace
{
/// A string's units, addressed as the bytes that a provider delivers. Room for a false length is not touched
/// and so costs no memory.
class UnitBuffer final : public GrowingBuffer
{
public:
    unsigned char* Grow(std::size_t size) override
    {
        // An odd count has a last byte that belongs to no unit; the buffer must hold it all the same.
        std::size_t const units = (size + 1) / 2;
        if (units > mCapacity)
        {
            // Twice as much, so that a text that comes in steps is not copied at each.
            std::size_t const capacity = std::max(units, 2 * mCapacity);
            auto grown = std::make_unique_for_overwrite<UniChar[]>(capacity);
            std::copy_n(mUnits.get(), mCount, grown.get());
            mUnits = std::move(grown);
            mCapacity = capacity;
        }
        mCount = units;
        return reinterpret_cast<unsigned char*>(mUnits.get());
    }

    UniChar operator[](std::size_t index) const { return mUnits[index]; }

private:
    std::unique_ptr<UniChar[]> mUnits;
    std::size_t mCount = 0;
    std::size_t mCapacity = 0;
};

UniChar SwapBytes(UniChar unit) { return static_cast<UniChar>((unit << 8) | (unit >> 8)); }
} // namespace

DataProviderStream::DataProviderStream(IDataProvider& provider) { mProvider.Share(&provider); }

void DataProviderStream::Aggregate(IObject* object, GUID iid)
{
    // The one that is there is released first.
    if (object && iid == IID_RECORD_OBSERVER)
        mObserver = nullptr;
    TObject::Aggregate(object, iid);
    FindObserver();
}

void DataProviderStream::UnAggregate(GUID const& iid)
{
    if (iid == IID_RECORD_OBSERVER)
        mObserver = nullptr;
    TObject::UnAggregate(iid);
    FindObserver();
}

void DataProviderStream::ClearAggregates()
{
    mObserver = nullptr;
    TObject::ClearAggregates();
}

void DataProviderStream::FindObserver()
{
    IObject* found = nullptr;
    static_cast<void>(TObject::QueryInterface(IID_RECORD_OBSERVER, &found));
    mObserver = static_cast<IRecordObserver*>(found);
}

ErrCode DataProviderStream::Init(IDataProvider& provider)
{
    mProvider.Reset();
    mProvider.Share(&provider);
    return kNoError;
}

TInterfacePtr<IDataProvider> DataProviderStream::GetDataProvider() const { return mProvider; }

OperationId DataProviderStream::Write(void const* data, int count)
{
    if (!mProvider)
        return kNotInitialized;
    return mProvider->Write(data, static_cast<std::size_t>(static_cast<int64>(count)));
}

OperationId DataProviderStream::Read(void* data, int& count)
{
    return mProvider ? mProvider->Read(data, count) : kNotInitialized;
}

template <class Number>
DataProviderStream& DataProviderStream::WriteNumber(Number value)
{
    if (!mProvider)
        return *this;
    unsigned char bytes[sizeof(Number)];
    std::memcpy(bytes, &value, sizeof bytes);
    if constexpr (sizeof(Number) > 1)
        if (!mProvider->IsNative())
            std::reverse(bytes, bytes + sizeof bytes);
    static_cast<void>(mProvider->Write(bytes, sizeof bytes));
    return *this;
}

template <class Number>
DataProviderStream& DataProviderStream::ReadNumber(Number& value)
{
    if (!mProvider)
        return *this;
    unsigned char bytes[sizeof(Number)] = {};
    int32 count = sizeof bytes;
    static_cast<void>(mProvider->Read(bytes, count));
    if (count != static_cast<int32>(sizeof bytes))
        std::fill(bytes, bytes + sizeof bytes, static_cast<unsigned char>(0));
    else if constexpr (sizeof(Number) > 1)
        if (!mProvider->IsNative())
            std::reverse(bytes, bytes + sizeof bytes);
    std::memcpy(&value, bytes, sizeof bytes);
    return *this;
}

DataProviderStream& DataProviderStream::operator>>(signed char& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(unsigned char& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(short& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(unsigned short& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(int& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(unsigned int& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(long long& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(unsigned long long& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(bool& value)
{
    if (!mProvider)
        return *this;
    unsigned char byte = 0;
    ReadNumber(byte);
    value = byte != 0;
    return *this;
}

DataProviderStream& DataProviderStream::operator>>(float& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(double& value) { return ReadNumber(value); }

DataProviderStream& DataProviderStream::operator>>(STRING::CoreString& value)
{
    if (!mProvider)
        return *this;
    IDataProviderStream& self = *this;
    int count = 0;
    self >> count;
    value.clear();
    if (count < 2)
        return *this;
    UnitBuffer buffer;
    int32 const delivered = ReadBounded(*mProvider, count, buffer);
    std::size_t const units = static_cast<std::size_t>(delivered) / 2;
    value.reserve(units);
    for (std::size_t i = 0; i < units; ++i)
        value.push_back(mProvider->IsNative() ? buffer[i] : SwapBytes(buffer[i]));
    return *this;
}

DataProviderStream& DataProviderStream::operator>>(GUID& value)
{
    if (!mProvider)
        return *this;
    // Through the virtual operators: a stream that encodes integers its own way encodes identifiers so too.
    IDataProviderStream& self = *this;
    self >> value.Data1 >> value.Data2 >> value.Data3;
    for (unsigned char& byte : value.Data4)
        self >> byte;
    return *this;
}

DataProviderStream& DataProviderStream::operator<<(signed char value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(unsigned char value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(STRING::CoreString const& value)
{
    if (!mProvider)
        return *this;
    IDataProviderStream& self = *this;
    auto const length = static_cast<uint32>(value.size());
    self << static_cast<int>(2 * length);
    if (length == 0)
        return *this;
    std::vector<UniChar> units(value.data(), value.data() + length);
    if (!mProvider->IsNative())
        std::transform(units.begin(), units.end(), units.begin(), SwapBytes);
    static_cast<void>(mProvider->Write(units.data(), std::size_t{2} * length));
    return *this;
}

DataProviderStream& DataProviderStream::operator<<(short value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(unsigned short value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(int value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(unsigned int value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(long long value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(unsigned long long value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(float value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(double value) { return WriteNumber(value); }

DataProviderStream& DataProviderStream::operator<<(bool value)
{
    return WriteNumber(static_cast<unsigned char>(value));
}

DataProviderStream& DataProviderStream::operator<<(GUID const& value)
{
    IDataProviderStream& self = *this;
    self << value.Data1 << value.Data2 << value.Data3;
    for (unsigned char const byte : value.Data4)
        self << byte;
    return *this;
}
} // namespace KORVA::IO
