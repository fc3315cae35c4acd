// A data provider with one memory buffer in front of another.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IDataProvider.h>

namespace KORVA::IO
{
/// What `IBufferedDataProvider::Init` is to buffer; the values add up.
///@{
using BufferMode = int;
inline constexpr BufferMode kBufferNothing = 0;
inline constexpr BufferMode kBufferReads = 1;
inline constexpr BufferMode kBufferWrites = 2;
///@}
/// Both, through the same buffer.
inline constexpr BufferMode kBufferBoth = 3;

/// Class id `IID_BUFFERED_DATAPROVIDER`. Turns many small reads or writes of the wrapped provider into few
/// large ones. Used by one thread at a time, and nobody else may use the wrapped provider meanwhile. No
/// operation but `Init`, and what has no provider below it, may be called before `Init`.
///
/// Don't lay the object operators of a stream over a provider that buffers writes. Each buffered `Write`
/// ends the buffered bytes at its own end, so the jump back that fills in a record's length, while that is
/// still in the buffer, cuts the record off there and its body is lost. Nor over one that buffers nothing,
/// which does not jump at all. Write records to a memory block and that to the file, in one piece.
///
/// How it differs from what `IDataProvider` says:
///
/// - `InitHandleBased` does nothing; `InitReadOnlyMem` (logged) and `InitURIBased` (not logged) answer 29.
/// - `Write` answers 35 (logged) when reads alone are buffered, `Read` 35 when writes alone are. Otherwise
///   both answer 0, whatever the wrapped provider said, except that what is at least a buffer beyond the
///   buffer is written directly and passes its result on. A short read shows in `count` alone, and one that
///   the wrapped provider refuses without saying so in `count` does not show at all: wrap what can be read.
///   Buffering nothing forwards both.
/// - Written bytes go to the place of the buffer, which `SetPosition` and filling the buffer set. After
///   `Init` and `SetBufferSize` that is position 0 of the wrapped provider, wherever that stands: call
///   `SetPosition` first.
/// - `SetPosition` within the buffer only moves the cursor. Where bytes have been written to the buffer, the
///   next flush writes those up to the cursor, and a `Write` ends them: seeking back without returning gives
///   up what stands behind. `kFromEnd` counts backwards, also over a file; an unknown origin counts from the
///   start. Outside of the buffer it flushes and gives the wrapped provider's result. Buffering nothing
///   answers 13 (logged). An empty buffer still has its place, and going there moves nothing: position 0
///   after `Init` and `SetBufferSize`, where the buffer was last filled from after `Flush` and `SetSize`.
/// - `GetPosition` logs when nothing is buffered, and answers all the same.
/// - `Size` and `AtEnd` are the wrapped provider's: bytes that wait to be written are not counted, and a
///   reader is at the end once the buffer has been filled from the last bytes. Read until `count` comes back
///   short instead.
/// - `SetSize` and `Flush` flush the buffer first and then give the wrapped provider's result. Where nothing
///   waits to be written, what had been read ahead is dropped and reading goes on behind it.
/// - What is left to read is counted in 32 bits: while that is 2 GiB or more, reads shorter than the buffer
///   may find nothing.
/// - The last `Release` flushes; `SetAutoFlush(false)` does not keep it from delivering written bytes.
class TESSIO_EXPORT IBufferedDataProvider : public IDataProvider
{
public:
    /// Releases the provider wrapped before, shares `provider`, which must not live by that one reference,
    /// and allocates `bufferSize` bytes (without room, what is buffered is passed on). Bytes waiting in the
    /// buffer are lost. Gives the new reference count of `provider`: a result that is not 0 is no failure.
    virtual ErrCode Init(IDataProvider& provider, int bufferSize, int mode) = 0;

    /// In bytes, as last set.
    virtual int GetBufferSize() const = 0;

    /// Empties the buffer, when anything is buffered: bytes not yet delivered are lost. Call `Flush` before
    /// and `SetPosition` after.
    virtual void SetBufferSize(int size) = 0;
};
} // namespace KORVA::IO
