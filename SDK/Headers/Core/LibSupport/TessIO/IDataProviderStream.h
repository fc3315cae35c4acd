// The typed stream over a data provider.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/TessIO/IDataProvider.h>

namespace KORVA::IO
{
/// Reads and writes typed values at the provider's position, in the provider's byte order, which is asked
/// anew for each value. Class id `IID_DATAPROVIDERSTREAM`. Keeps no buffer, position or error of its own.
///
/// The typed operators report nothing: a number that can't be read in full becomes 0, a string keeps the
/// units that were there, a failed write is lost. Without a provider they do nothing. Compare positions or
/// sizes where truncation matters. Encodings: two's complement and IEEE 754 in the provider's order, bytes
/// as they are, `bool` one byte, strings a 32-bit byte count and UTF-16 units (docs: Format).
///
/// Objects go out and come back as self-delimiting records: class id, length, body, persistent aggregates.
/// Writing one sets the provider's position back to patch lengths in, so a write-buffered provider loses
/// bytes: serialize into a memory block and write its bytes out in one piece. What becomes of each record is
/// told to an `IRecordObserver` that is aggregated here under `IID_RECORD_OBSERVER`.
class TESSIO_EXPORT IDataProviderStream : public IObject
{
public:
    /// Releases the provider held, then shares `provider`: re-initialising with a provider that only the
    /// stream keeps alive destroys it. Always 0.
    virtual ErrCode Init(IDataProvider& provider) = 0;
    /// The provider, with a reference of its own; empty when there is none.
    virtual TInterfacePtr<IDataProvider> GetDataProvider() const = 0;

    /// Reads a value and gives this stream.
    ///@{
    virtual IDataProviderStream& operator>>(signed char& value) = 0;
    virtual IDataProviderStream& operator>>(unsigned char& value) = 0;
    virtual IDataProviderStream& operator>>(short& value) = 0;
    virtual IDataProviderStream& operator>>(unsigned short& value) = 0;
    virtual IDataProviderStream& operator>>(int& value) = 0;
    virtual IDataProviderStream& operator>>(unsigned int& value) = 0;
    virtual IDataProviderStream& operator>>(long long& value) = 0;
    virtual IDataProviderStream& operator>>(unsigned long long& value) = 0;
    virtual IDataProviderStream& operator>>(bool& value) = 0;
    virtual IDataProviderStream& operator>>(float& value) = 0;
    virtual IDataProviderStream& operator>>(double& value) = 0;
    virtual IDataProviderStream& operator>>(STRING::CoreString& value) = 0;
    ///@}
    /// Reads a record and re-creates its object through the registry. `*result` adopts it, or becomes null
    /// when the class is unknown or not persistent, the body threw, or the length is out of range (below 0
    /// or above `kGreatestLength`). Whatever the body did, the position is the record's end afterwards; only
    /// after a length out of range it stays behind the length. A record nested more than 1,000 deep is
    /// skipped.
    virtual IDataProviderStream& operator>>(IObject** result) = 0;
    /// Reads an identifier and gives this stream.
    virtual IDataProviderStream& operator>>(GUID& value) = 0;

    /// Writes a value and gives this stream.
    ///@{
    virtual IDataProviderStream& operator<<(signed char value) = 0;
    virtual IDataProviderStream& operator<<(unsigned char value) = 0;
    virtual IDataProviderStream& operator<<(STRING::CoreString const& value) = 0;
    virtual IDataProviderStream& operator<<(short value) = 0;
    virtual IDataProviderStream& operator<<(unsigned short value) = 0;
    virtual IDataProviderStream& operator<<(int value) = 0;
    virtual IDataProviderStream& operator<<(unsigned int value) = 0;
    virtual IDataProviderStream& operator<<(long long value) = 0;
    virtual IDataProviderStream& operator<<(unsigned long long value) = 0;
    virtual IDataProviderStream& operator<<(float value) = 0;
    virtual IDataProviderStream& operator<<(double value) = 0;
    virtual IDataProviderStream& operator<<(bool value) = 0;
    ///@}
    /// Writes the object's record, its persistent aggregates included. An object without a persistence
    /// interface writes nothing and is logged; a body that throws leaves the record cut short but whole. An
    /// object is written wherever it stands, so one that contains itself is written 1,000 levels deep; one
    /// that does so twice would never end.
    virtual IDataProviderStream& operator<<(IObject const& object) = 0;
    /// Writes an identifier and gives this stream.
    virtual IDataProviderStream& operator<<(GUID const& value) = 0;

    /// Straight to the provider: its result, or 29 when there is none.
    virtual OperationId Write(void const* data, int count) = 0;
    /// Straight to the provider; `count` becomes the bytes read. Its result, or 29 and `count` unchanged
    /// when there is none.
    virtual OperationId Read(void* data, int& count) = 0;
};
} // namespace KORVA::IO
