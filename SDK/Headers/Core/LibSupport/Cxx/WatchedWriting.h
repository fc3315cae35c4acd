// Sees which objects make it into their records whole.
#pragma once

#include "ObjectModel/TInterfacePtr.h"
#include "ObjectModel/TObject.h"
#include "TessIO/IDataProviderStream.h"
#include "TessIO/IPersistentData.h"

#include <map>
#include <memory>
#include <utility>

namespace KORVA::CXX::DETAIL
{
/// Stands in for an object while it is written. The stream catches what the object throws, and writes records
/// that are nested too deep as empty ones, both without a word; here both can be seen, of the object and of
/// everything that is written in it.
class WatchedObject final : public TObject<IO::IPersistentDataEx>
{
public:
    /// Empty when the object, which is borrowed, is not persistent. `lost` is set once something in it was
    /// not written whole; nothing more is written then.
    static TInterfacePtr<WatchedObject> Over(IObject const& object, std::shared_ptr<bool> lost)
    {
        IObject* found = nullptr;
        IO::IPersistentDataEx* extended = nullptr;
        IO::IPersistentData* persistence = nullptr;
        if (object.QueryInterface(IO::IPERSISTENT_DATA_EX, &found) == kNoError && found)
            persistence = extended = static_cast<IO::IPersistentDataEx*>(found);
        else if (object.QueryInterface(IO::IPERSISTENT_DATA, &found) == kNoError && found)
            persistence = static_cast<IO::IPersistentData*>(found);
        TInterfacePtr<WatchedObject> standIn;
        if (persistence)
            standIn.Adopt(new WatchedObject(object, *persistence, extended, std::move(lost)));
        return standIn;
    }

    /// Whether it was written to its end, and all that is in it.
    bool IsWhole() const
    {
        if (!mIsWritten || *mLost)
            return false;
        for (auto const& [iid, aggregate] : mWatched)
            if (!aggregate->IsWhole())
                return false;
        return true;
    }

    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        if (!(iid == IO::IPERSISTENT_DATA_EX))
            return mObject.QueryInterface(iid, out);
        if (out)
            *out = const_cast<WatchedObject*>(this);
        return kNoError;
    }

    /// Those that are written have stand-ins too.
    AggregateMap const& GetAggregates() const override
    {
        mAggregates = mObject.GetAggregates();
        for (auto& [iid, aggregate] : mAggregates)
        {
            if (aggregate->QueryInterface(IO::IPERSISTENT_DATA, nullptr) != kNoError)
                continue;
            TInterfacePtr<WatchedObject>& watched = mWatched[iid];
            if (!watched)
                watched = Over(*aggregate, mLost);
            if (watched)
                aggregate = watched.Get();
        }
        return mAggregates;
    }

    IObject* GetObj() const override { return mPersistence.GetObj(); }
    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream) override
    {
        return mPersistence.Read(stream);
    }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const override;
    GUID const& GetUID() const override { return mPersistence.GetUID(); }
    GUID GetUIDFor(IO::IDataProviderStream& stream) override
    {
        return mExtended ? mExtended->GetUIDFor(stream) : mPersistence.GetUID();
    }

private:
    WatchedObject(IObject const& object, IO::IPersistentData& persistence, IO::IPersistentDataEx* extended,
                  std::shared_ptr<bool> lost)
        : mObject(object), mPersistence(persistence), mExtended(extended), mLost(std::move(lost))
    {}

    IObject const& mObject;
    IO::IPersistentData& mPersistence;
    IO::IPersistentDataEx* mExtended;
    std::shared_ptr<bool> mLost;
    mutable bool mIsWritten = false;
    mutable AggregateMap mAggregates;
    mutable std::map<GUID, TInterfacePtr<WatchedObject>> mWatched;
};

/// Passes everything on to another stream, shared, but for objects: those it writes by stand-ins.
class WatchedStream final : public TObject<IO::IDataProviderStream>
{
    using Self = IO::IDataProviderStream;

public:
    WatchedStream(IO::IDataProviderStream& stream, std::shared_ptr<bool> lost) : mLost(std::move(lost))
    {
        mStream.Share(&stream);
    }

    /// What is found on the stream is found here.
    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        return mStream->QueryInterface(iid, out);
    }
    AggregateMap const& GetAggregates() const override { return mStream->GetAggregates(); }

    ErrCode Init(IO::IDataProvider& provider) override { return mStream->Init(provider); }
    TInterfacePtr<IO::IDataProvider> GetDataProvider() const override { return mStream->GetDataProvider(); }

    Self& operator>>(signed char& value) override { return Get(value); }
    Self& operator>>(unsigned char& value) override { return Get(value); }
    Self& operator>>(short& value) override { return Get(value); }
    Self& operator>>(unsigned short& value) override { return Get(value); }
    Self& operator>>(int& value) override { return Get(value); }
    Self& operator>>(unsigned int& value) override { return Get(value); }
    Self& operator>>(long long& value) override { return Get(value); }
    Self& operator>>(unsigned long long& value) override { return Get(value); }
    Self& operator>>(bool& value) override { return Get(value); }
    Self& operator>>(float& value) override { return Get(value); }
    Self& operator>>(double& value) override { return Get(value); }
    Self& operator>>(STRING::CoreString& value) override { return Get(value); }
    Self& operator>>(IObject** result) override { return Get(result); }
    Self& operator>>(GUID& value) override { return Get(value); }

    Self& operator<<(signed char value) override { return Put(value); }
    Self& operator<<(unsigned char value) override { return Put(value); }
    Self& operator<<(STRING::CoreString const& value) override { return Put(value); }
    Self& operator<<(short value) override { return Put(value); }
    Self& operator<<(unsigned short value) override { return Put(value); }
    Self& operator<<(int value) override { return Put(value); }
    Self& operator<<(unsigned int value) override { return Put(value); }
    Self& operator<<(long long value) override { return Put(value); }
    Self& operator<<(unsigned long long value) override { return Put(value); }
    Self& operator<<(float value) override { return Put(value); }
    Self& operator<<(double value) override { return Put(value); }
    Self& operator<<(bool value) override { return Put(value); }
    Self& operator<<(GUID const& value) override { return Put(value); }
    Self& operator<<(IObject const& object) override
    {
        // What can't be saved any more need not be written on: objects in a circle would go on for long.
        if (*mLost)
            return *this;
        TInterfacePtr<WatchedObject> const standIn = WatchedObject::Over(object, mLost);
        if (standIn)
            *mStream << static_cast<IObject const&>(*standIn);
        *mLost = !standIn || !standIn->IsWhole();
        return *this;
    }

    OperationId Write(void const* data, int count) override { return mStream->Write(data, count); }
    OperationId Read(void* data, int& count) override { return mStream->Read(data, count); }

private:
    template <class T>
    Self& Put(T const& value)
    {
        *mStream << value;
        return *this;
    }
    template <class T>
    Self& Get(T& value)
    {
        *mStream >> value;
        return *this;
    }

    TInterfacePtr<IO::IDataProviderStream> mStream;
    std::shared_ptr<bool> mLost;
};

inline IO::IDataProviderStream& WatchedObject::Write(IO::IDataProviderStream& stream) const
{
    TInterfacePtr<WatchedStream> watched;
    watched.Adopt(new WatchedStream(stream, mLost));
    static_cast<void>(mPersistence.Write(*watched));
    mIsWritten = true;
    return stream;
}
} // namespace KORVA::CXX::DETAIL
