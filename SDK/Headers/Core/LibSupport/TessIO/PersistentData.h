// The adapter that makes a class of one's own persistent.
#pragma once

#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IPersistentData.h>

namespace KORVA::IO
{
/// Forwards to `T::Read` and `T::Write`. `T` is a component class with
///
///     static GUID const& GetClassId();                           // served by a registered factory
///     IDataProviderStream& Read(IDataProviderStream& stream);
///     IDataProviderStream& Write(IDataProviderStream& stream) const;
///
/// The adapter borrows its `T`, which owns it through the aggregate table.
template <class T>
class PersistentData final : public TObject<IPersistentData>
{
public:
    /// Serves `object`, borrowed.
    explicit PersistentData(T& object) : mObject(&object) {}

    /// As `IPersistentData` says.
    ///@{
    IObject* GetObj() const override { return mObject; }
    IDataProviderStream& Read(IDataProviderStream& stream) override { return mObject->Read(stream); }
    IDataProviderStream& Write(IDataProviderStream& stream) const override { return mObject->Write(stream); }
    GUID const& GetUID() const override { return T::GetClassId(); }
    ///@}

private:
    friend struct KORVA::LayoutProbe;

    T* mObject;
};

/// Makes `object` persistent; to be called once, in its constructor.
template <class T>
void SetupPersistence(T& object)
{
    TInterfacePtr<IPersistentData> adapter;
    adapter.Adopt(new PersistentData<T>(object));
    object.Aggregate(adapter.Get(), IPERSISTENT_DATA);
}
} // namespace KORVA::IO
