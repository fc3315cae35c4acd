// What a data provider's answers leave out: bytes that are lost, and whether the rest is on the disk.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/Types.h>

namespace KORVA::IO
{
/// A file provider holds written bytes back and answers 0 for them. When the system takes them no more (a
/// full device, a limit of size), they are gone, and `Write` has answered 0. This interface tells.
///
/// The library's own providers have it: the facade (`IID_IDATAPROVIDER`) and the buffered provider. It is no
/// component and is in no aggregate table; ask the run-time type:
///
///     auto* const status = dynamic_cast<IDataProviderStatus*>(provider.Get());
///
/// Null for providers of others, which may hold nothing back. The result is borrowed and lives as long as the
/// provider. Used by one thread at a time, the provider's. Nothing is logged here: whoever asks knows what it
/// is about.
class TESSIO_EXPORT IDataProviderStatus
{
public:
    /// How many bytes the provider took, held back and could not deliver, since it was initialised. They are
    /// in no file and will not be. 0 for memory. Bytes that are still held back don't count: `WriteOut`
    /// first. What `IAsyncWriter::WriteSync` could not write counts, since it answers 0; of `WriteAsync` the
    /// task tells. What a buffered provider drops by its own rules (`SetBufferSize`, a seek back) doesn't
    /// count.
    virtual int64 GetLostBytes() const = 0;

    /// The system's number (`errno`) of the first failure in reading, writing or flushing since the provider
    /// was    /// initialised, those of `ReadAsync` and `WriteAsync` excepted; 0 when there was none. It
    /// tells a file that can't be read from one that has ended: `Read` answers 3 for both.
    virtual int32 GetSystemError() const = 0;

    /// Hands all that is held back to the system, so that every other reader of the file sees it. 0 when
    /// nothing was lost, now or before; 2 else. 0 for memory; 29 not initialised.
    virtual ErrCode WriteOut() = 0;

    /// The same, then waits until the file's content is on the device. 2 also when the device fails. What no
    /// device holds (a terminal, memory) is there at once. A buffered provider over one of others' make can
    /// do no more than that one's `Flush`.
    virtual ErrCode FlushToDevice() = 0;

protected:
    ~IDataProviderStatus() = default;
};
} // namespace KORVA::IO
