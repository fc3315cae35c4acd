// Positioned sources and sinks of bytes.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

#include <cstddef>

namespace KORVA::IO
{
class IReporter;
class IURI;

/// How a handle-based or URI-based provider is opened. Not every provider takes a mode for the same:
///
/// | mode | memory handle                    | file                                                  |
/// |------|----------------------------------|-------------------------------------------------------|
/// | 0    | read                             | read                                                  |
/// | 1    | write, resize                    | write (fails where streams must match the descriptor) |
/// | 2    | read, write, resize              | read and write, after a check that nobody locks it    |
/// | 3    | write, resize                    | read                                                  |
/// | 4    | resize                           | read and write, without the check                     |
///@{
using StreamMode = int32;
inline constexpr StreamMode kStreamRead = 0;
inline constexpr StreamMode kStreamWrite = 1;
inline constexpr StreamMode kStreamReadWrite = 2;
inline constexpr StreamMode kStreamMode3 = 3;
inline constexpr StreamMode kStreamMode4 = 4;
///@}

/// Bytes with a position: caller memory, a growable memory block, or a file. Class id `IID_IDATAPROVIDER`
/// (the facade over all three, to be initialised once); `IBufferedDataProvider` buffers any of them. Used by
/// one thread at a time. Counts, sizes and positions are bytes. Failures are logged,
/// but for those that opening a file answers with 1, 36 or 40 (or 26 for a directory), for 30 of read-only
/// memory's `SetSize`, and for reads that find less than asked.
class TESSIO_EXPORT IDataProvider : public IObject
{
public:
    /// The byte order in which a stream over the provider writes numbers.
    enum Endian : int32
    {
        /// The most significant byte first.
        kBigEndian = 0,
        /// The least significant byte first: the native order.
        kLittleEndian = 1,
        /// For constructors only, which turn it into the native order. `SetEndian` keeps it as it is, and a
        /// provider so set is not native.
        kNativeEndian = 2
    };

    /// Where `SetPosition` counts from. `kFromEnd` counts backwards, the end minus the offset, in memory
    /// and buffered providers; the file provider adds the offset to the end.
    enum Offset : int32
    {
        /// The offset is the position.
        kFromStart = 0,
        /// From the size, in the direction said above.
        kFromEnd = 1,
        /// From the position.
        kFromCurrent = 2
    };

    /// Uses a new growable memory block, opened with `mode`. Never fails and gives no status: where there is
    /// no memory for it, `Write` and `SetSize` answer 27.
    virtual void InitHandleBased(int mode) = 0;

    /// Uses `size` bytes at `data`, borrowed: they must outlive the provider. Read-only.
    /// 0; -50 for null or a size below 1.
    virtual ErrCode InitReadOnlyMem(void const* data, int32 size) = 0;

    /// Uses the file that `uri` names (shared) and reports failing reads to `reporter` (shared, may be null).
    /// The file must exist. 0, or the provider is not initialised: 26 no path, no such file, a directory, or
    /// a descriptor that makes no stream; 36 the system refuses (mode 2: also when the check fails, a
    /// missing file included); 40 mode 2 and somebody holds a lock; 1 no file-system library.
    /// On success the provider answers `IID_IURI`, `FILE_SYS::IID_IFILE`, in modes 0, 2 and 4
    /// `IID_ASYNC_READER`, and in modes 1 to 4 `IID_ASYNC_WRITER` (in mode 3 too, whose writes all fail).
    /// In modes 2 and 4 it holds a lock, which others that open the file in mode 2 meet. It goes with the
    /// provider; asynchronous writes that are still under way then keep it until the last one has ended,
    /// reads don't. Where streams must match the descriptor, as on Linux, mode 1 ends in 26 and leaves the
    /// descriptor open at every try, until the process ends.
    virtual ErrCode InitURIBased(IURI& uri, int mode, IReporter* reporter) = 0;

    /// Writes `count` bytes at the position and advances it. 0; 13 null data (a file; memory blocks don't
    /// look); 30 the mode or kind forbids it;
    /// 27 memory could not grow; 29 not initialised. A file opened for reading only (modes 0 and 3) must not
    /// be written to: its `Write` repeats until it succeeds and never returns. A file on a full device
    /// answers 0 and loses the bytes: `IDataProviderStatus` tells.
    virtual OperationId Write(void const* data, std::size_t count) = 0;

    /// Reads up to `count` bytes to `buffer`; `count` becomes the number delivered and the position advances
    /// by it. At the end of the data: read-only memory answers 0, a memory block 28 when it delivers less
    /// than asked, a file 3 when it delivers nothing. 13 null buffer (a file: 3 when bytes were asked for;
    /// memory blocks don't look);
    /// 30 the mode forbids it; 29 not initialised.
    virtual OperationId Read(void* buffer, int32& count) = 0;

    /// 0 when not initialised.
    virtual int64 Size() const = 0;

    /// 0; 30 read-only memory; 27 a memory block opened for reading, a size below 1 or above 0xFFFFFFFF, or
    /// no memory; 29 not initialised. A file always answers 0.
    virtual ErrCode SetSize(int64 size) = 0;

    /// 0; 13 out of range or an unknown origin, position unchanged; 29 not initialised. A memory block's
    /// bound is what is allocated (at first 512 KiB), not its size. A file always answers 0; neither file
    /// nor memory block refuses an unknown origin, they ignore it.
    virtual ErrCode SetPosition(int64 offset, Offset origin) = 0;

    /// 0 when not initialised.
    virtual int64 GetPosition() const = 0;

    /// The byte order as it was last set; `kLittleEndian` at first.
    virtual Endian GetEndian() const = 0;
    /// Whether the byte order is exactly `kLittleEndian`.
    virtual bool IsNative() const = 0;
    /// Takes effect at the next value that a stream reads or writes.
    virtual void SetEndian(Endian endian) = 0;

    /// Whether the position has reached the size. True when not initialised.
    virtual bool AtEnd() = 0;

    /// Delivers what a buffered provider holds back; 0 and nothing to do for the others. A file holds bytes
    /// back too: `IDataProviderStatus::WriteOut` hands them to the system.
    virtual ErrCode Flush() = 0;
    /// Meaningful for buffered providers only; the others answer true.
    ///@{
    virtual bool GetAutoFlush() = 0;
    virtual void SetAutoFlush(bool autoFlush) = 0;
    ///@}
};
} // namespace KORVA::IO
