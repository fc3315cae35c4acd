// Sees which objects make it into their records whole.
#pragma once

#include <tessio/Cxx/WatchedProvider.h>
#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IPersistentData.h>

#include <map>
#include <utility>

namespace KORVA::CXX::DETAIL
{
/// Passes everything on to another stream, but for objects: those it writes by stand-ins. The stream catches
/// what objects throw, and writes records that are nested too deep as empty ones, both without a word; here
/// both can be seen, of an object and of everything that is written in it.
class WatchedStream final : public TObject<IO::IDataProviderStream>
{
    using Self = IO::IDataProviderStream;

public:
    /// Shares the stream, and the provider under it.
    WatchedStream(IO::IDataProviderStream& stream, WatchedProvider& provider)
    {
        mStream.Share(&stream);
        mProvider.Share(&provider);
    }

    /// Whether something was not written whole. Nothing more is written then: objects that hold each other
    /// would go on without end.
    bool HasLost() const { return mHasLost || mProvider->WriteResult() != kNoError; }

    /// An object's record begins; its body comes next, unless it is nested too deep.
    void OnHead() { mHasLost = std::exchange(mIsBodyDue, true) || mHasLost; }
    void OnBody() { mIsBodyDue = false; }

    /// What is found on the stream is found here, and what is put here is put there.
    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        return mStream->QueryInterface(iid, out);
    }
    AggregateMap const& GetAggregates() const override { return mStream->GetAggregates(); }
    void Aggregate(IObject* object, GUID iid) override { mStream->Aggregate(object, iid); }
    void UnAggregate(GUID const& iid) override { mStream->UnAggregate(iid); }
    void ClearAggregates() override { mStream->ClearAggregates(); }

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
    Self& operator<<(IObject const& object) override;

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
    TInterfacePtr<WatchedProvider> mProvider;
    bool mHasLost = false;
    bool mIsBodyDue = false;
};

/// Stands in for an object while it is written.
class WatchedObject final : public TObject<IO::IPersistentDataEx>
{
public:
    /// Empty when the object, which is shared, is not persistent. The stream is borrowed.
    static TInterfacePtr<WatchedObject> Over(IObject const& object, WatchedStream& stream)
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
            standIn.Adopt(new WatchedObject(object, *persistence, extended, stream));
        return standIn;
    }

    /// Whether it was written to its end, and all that is in it.
    bool IsWhole() const
    {
        if (!mIsWritten || !mIsListed || mStream.HasLost())
            return false;
        for (auto const& [iid, aggregate] : mWatched)
            if (!aggregate->IsWhole())
                return false;
        return true;
    }

    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        bool const isAsked = iid == IO::IPERSISTENT_DATA_EX;
        if (mStream.HasLost() && (isAsked || iid == IO::IPERSISTENT_DATA))
            return kIdNotFound;
        if (!isAsked)
            return mObject->QueryInterface(iid, out);
        if (out)
            *out = const_cast<WatchedObject*>(this);
        return kNoError;
    }

    /// Those that are written have stand-ins too.
    AggregateMap const& GetAggregates() const override
    {
        mAggregates.clear();
        if (mStream.HasLost())
            return mAggregates;
        mAggregates = mObject->GetAggregates();
        for (auto& [iid, aggregate] : mAggregates)
        {
            if (aggregate->QueryInterface(IO::IPERSISTENT_DATA, nullptr) != kNoError)
                continue;
            TInterfacePtr<WatchedObject>& watched = mWatched[iid];
            watched = Over(*aggregate, mStream);
            if (watched)
                aggregate = watched.Get();
            else
                mWatched.erase(iid);
        }
        mIsListed = true;
        return mAggregates;
    }

    IObject* GetObj() const override { return mPersistence.GetObj(); }
    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream) override
    {
        return mPersistence.Read(stream);
    }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const override
    {
        mStream.OnBody();
        if (mStream.HasLost())
            return stream;
        static_cast<void>(mPersistence.Write(mStream));
        mIsWritten = true;
        return stream;
    }
    GUID const& GetUID() const override { return mPersistence.GetUID(); }
    GUID GetUIDFor(IO::IDataProviderStream&) override
    {
        mStream.OnHead();
        return mExtended ? mExtended->GetUIDFor(mStream) : mPersistence.GetUID();
    }

private:
    WatchedObject(IObject const& object, IO::IPersistentData& persistence, IO::IPersistentDataEx* extended,
                  WatchedStream& stream)
        : mPersistence(persistence), mExtended(extended), mStream(stream)
    {
        mObject.Share(const_cast<IObject*>(&object));
    }

    TInterfacePtr<IObject> mObject;
    IO::IPersistentData& mPersistence;
    IO::IPersistentDataEx* mExtended;
    WatchedStream& mStream;
    mutable bool mIsWritten = false;
    mutable bool mIsListed = false;
    mutable AggregateMap mAggregates;
    mutable std::map<GUID, TInterfacePtr<WatchedObject>> mWatched;
};

inline IO::IDataProviderStream& WatchedStream::operator<<(IObject const& object)
{
    if (HasLost())
        return *this;
    TInterfacePtr<WatchedObject> const standIn = WatchedObject::Over(object, *this);
    // What is not persistent is left out with a message in the log.
    if (!standIn)
        return Put(object);
    *mStream << static_cast<IObject const&>(*standIn);
    mHasLost = !standIn->IsWhole();
    return *this;
}
} // namespace KORVA::CXX::DETAIL
