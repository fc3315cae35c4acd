// What makes an object persistent.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA::IO
{
class IDataProviderStream;

/// Found under `IPERSISTENT_DATA`. A class gets it from `PersistentData<T>`.
class TESSIO_EXPORT IPersistentData : public IObject
{
public:
    /// The object that is served, borrowed.
    virtual IObject* GetObj() const = 0;
    /// Reads the body of a record. It need not end exactly at the record's end; the stream sees to that.
    /// An exception makes the stream drop the object and skip the record.
    virtual IDataProviderStream& Read(IDataProviderStream& stream) = 0;
    /// Writes the body of a record.
    virtual IDataProviderStream& Write(IDataProviderStream& stream) const = 0;
    /// The class id under which the object is written, and by which the registry creates it again.
    virtual GUID const& GetUID() const = 0;
};

/// Found under `IPERSISTENT_DATA_EX`, which is asked for first on writing: for a class that chooses its class
/// id by the stream it is written to. Reading always goes through `IPersistentData`.
class TESSIO_EXPORT IPersistentDataEx : public IPersistentData
{
public:
    /// The class id to write to this very stream, in place of `GetUID`.
    virtual GUID GetUIDFor(IDataProviderStream& stream) = 0;
};
} // namespace KORVA::IO
