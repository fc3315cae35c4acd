// Object records: one object written, one object read, and what was the matter.
#pragma once

#include "Cxx/DataProvider.h"
#include "Cxx/Handle.h"
#include "Cxx/WatchedProvider.h"
#include "ObjectModel/GUIDText.h"
#include "ObjectModel/TObject.h"
#include "TessIO/IDataProviderStream.h"
#include "TessIO/IPersistentData.h"

#include <limits>
#include <string>
#include <utility>

namespace KORVA::CXX::DETAIL
{
/// The bytes of a class id and a length, which stand before a body.
inline constexpr int64 kRecordHeader = 24;
inline constexpr int64 kIdBytes = 16;
inline constexpr int64 kLongestBody = std::numeric_limits<int32>::max();

/// What is under way, for the errors that come of it.
struct Task
{
    std::string operation;
    std::string subject;

    Error Failed(ErrCode code, std::string detail = {}) const
    {
        return {code, operation, subject, std::move(detail)};
    }
};

/// A new stream over a provider.
inline Result<TInterfacePtr<IO::IDataProviderStream>> StreamOver(IO::IDataProvider& provider)
{
    auto stream = COREREGISTRY::CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    if (!stream)
        return Error(IO::kNoObject, "create an object of class", GUIDToText(IO::IID_DATAPROVIDERSTREAM));
    ErrCode const code = stream->Init(provider);
    if (code != kNoError)
        return Error(code, "set up the stream");
    return stream;
}

/// Stands in for an object while it is written, and sees the exception that the stream catches.
class WatchedObject final : public TObject<IO::IPersistentDataEx>
{
public:
    /// Both are borrowed; `extended` may be null.
    WatchedObject(IO::IPersistentData& persistence, IO::IPersistentDataEx* extended, IObject const& object)
        : mPersistence(persistence), mExtended(extended), mObject(object)
    {}

    bool HasThrown() const { return mHasThrown; }

    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        if (!(iid == IO::IPERSISTENT_DATA_EX))
            return mObject.QueryInterface(iid, out);
        if (out)
            *out = const_cast<WatchedObject*>(this);
        return kNoError;
    }
    AggregateMap const& GetAggregates() const override { return mObject.GetAggregates(); }

    IObject* GetObj() const override { return mPersistence.GetObj(); }
    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream) override
    {
        return mPersistence.Read(stream);
    }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const override
    {
        mHasThrown = true;
        IO::IDataProviderStream& result = mPersistence.Write(stream);
        mHasThrown = false;
        return result;
    }
    GUID const& GetUID() const override { return mPersistence.GetUID(); }
    GUID GetUIDFor(IO::IDataProviderStream& stream) override
    {
        return mExtended ? mExtended->GetUIDFor(stream) : mPersistence.GetUID();
    }

private:
    IO::IPersistentData& mPersistence;
    IO::IPersistentDataEx* mExtended;
    IObject const& mObject;
    mutable bool mHasThrown = false;
};

/// Writes the record of `object` at the provider's position. On failure something may have been written.
inline Result<void> WriteRecord(IO::IDataProvider& provider, IObject const& object, Task const& task)
{
    IObject* found = nullptr;
    IO::IPersistentDataEx* extended = nullptr;
    IO::IPersistentData* persistence = nullptr;
    if (object.QueryInterface(IO::IPERSISTENT_DATA_EX, &found) == kNoError && found)
        persistence = extended = static_cast<IO::IPersistentDataEx*>(found);
    else if (object.QueryInterface(IO::IPERSISTENT_DATA, &found) == kNoError && found)
        persistence = static_cast<IO::IPersistentData*>(found);
    else
        return task.Failed(kNotPersistent);

    TInterfacePtr<WatchedProvider> watched;
    watched.Adopt(new WatchedProvider(provider));
    TInterfacePtr<WatchedObject> standIn;
    standIn.Adopt(new WatchedObject(*persistence, extended, object));
    auto const stream = StreamOver(*watched);
    if (!stream)
        return stream.error();
    int64 const start = provider.GetPosition();
    **stream << static_cast<IObject const&>(*standIn);
    int64 const length = provider.GetPosition() - start;
    if (watched->WriteResult() != kNoError)
        return task.Failed(watched->WriteResult());
    if (standIn->HasThrown() || length < kRecordHeader)
        return task.Failed(kNotSerialized);
    if (length - kRecordHeader > kLongestBody)
        return task.Failed(kTooLarge);
    return {};
}

/// What stands before a body.
struct RecordHead
{
    GUID classId{};
    int64 length = 0;

    bool IsPlausible(int64 left) const
    {
        return length >= 0 && length <= kLongestBody && length <= left - kRecordHeader;
    }
};

/// Looks at the head of the record at the provider's position, which stays. Zeros where there is none.
inline Result<RecordHead> PeekHead(IO::IDataProvider& provider)
{
    auto const stream = StreamOver(provider);
    if (!stream)
        return stream.error();
    RecordHead head;
    int64 const start = provider.GetPosition();
    **stream >> head.classId >> head.length;
    static_cast<void>(provider.SetPosition(start, IO::IDataProvider::kFromStart));
    return head;
}

/// An object of that class, to see what it is; empty when nothing makes it.
inline TInterfacePtr<IObject> Probe(GUID const& classId)
{
    return COREREGISTRY::CreateObject<IObject>(classId);
}

/// Finds out in which byte order a record begins at the provider's position, and sets the provider to it. A
/// class id that the registry knows decides, else a length that the data has room for. `kNotARecord` when
/// neither is there in any order.
inline Result<void> FindOrder(IO::IDataProvider& provider, Task const& task)
{
    int64 const left = provider.Size() - provider.GetPosition();
    if (left <= 0)
        return task.Failed(kNotARecord, "there is nothing in it");
    IO::IDataProvider::Endian const before = provider.GetEndian();
    IO::IDataProvider::Endian plausible = IO::IDataProvider::kNativeEndian;
    for (auto const order : {IO::IDataProvider::kLittleEndian, IO::IDataProvider::kBigEndian})
    {
        provider.SetEndian(order);
        Result<RecordHead> const head = PeekHead(provider);
        if (!head)
            return head.error();
        if (left >= kIdBytes && Probe(head->classId))
            return {};
        if (plausible == IO::IDataProvider::kNativeEndian && left >= kRecordHeader &&
            !(head->classId == GUID{}) && head->IsPlausible(left))
            plausible = order;
    }
    provider.SetEndian(plausible == IO::IDataProvider::kNativeEndian ? before : plausible);
    if (plausible == IO::IDataProvider::kNativeEndian)
        return task.Failed(kNotARecord);
    return {};
}

/// Reads the record at the provider's position as a `T`. The position is the record's end afterwards, on
/// failure too where that is known, else it stays. With `keepDamaged`, an object that did not come out of
/// its record quite as it should is a success. `size` is the provider's: a file is slow to tell it.
template <HandleType T>
Result<T> ReadRecord(IO::IDataProvider& provider, int64 size, Task const& task, bool keepDamaged)
{
    int64 const start = provider.GetPosition();
    int64 const left = size - start;
    if (left <= 0)
        return task.Failed(IO::kEndOfData);
    Result<RecordHead> const head = PeekHead(provider);
    if (!head)
        return head.error();
    TInterfacePtr<IObject> probe = left >= kIdBytes ? Probe(head->classId) : TInterfacePtr<IObject>();
    bool const isWhole = left >= kRecordHeader && head->IsPlausible(left);
    if (!probe && !isWhole)
        return task.Failed(kNotARecord);
    if (left >= kRecordHeader && (head->length < 0 || head->length > kLongestBody))
        return task.Failed(kDamaged, "its length is " + std::to_string(head->length));
    if (!isWhole)
        return task.Failed(kTruncated);

    int64 const end = start + kRecordHeader + head->length;
    std::string const classText = GUIDToText(head->classId);
    auto const skip = [&provider, end, &task](ErrCode code, std::string detail) {
        static_cast<void>(provider.SetPosition(end, IO::IDataProvider::kFromStart));
        return task.Failed(code, std::move(detail));
    };
    if (!probe)
        return skip(kUnknownClass, classText);
    if (probe->QueryInterface(IO::IPERSISTENT_DATA, nullptr) != kNoError)
        return skip(kNotPersistent, classText);
    if (!As<T>(Object(std::move(probe))))
        return skip(kOtherClass, classText);

    TInterfacePtr<WatchedProvider> watched;
    watched.Adopt(new WatchedProvider(provider));
    auto const stream = StreamOver(*watched);
    if (!stream)
        return stream.error();
    TInterfacePtr<IObject> object;
    **stream >> object.Out();
    if (!object || (!keepDamaged && (watched->HasShortRead() || watched->HasMoved())))
        return skip(kDamaged, {});
    return As<T>(Object(std::move(object)));
}
} // namespace KORVA::CXX::DETAIL
