// Reading at explicit positions of a file.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IAsyncTask.h>

#include <cstddef>

namespace KORVA::IO
{
/// A file-based data provider opened with mode 0, 2 or 4 answers one under `IID_ASYNC_READER`, borrowed: it
/// works for as long as the provider lives. Releasing the provider while operations are in flight is safe;
/// they end as usual. May be used from any number of threads at once, beside one that uses the provider's own
/// operations, but see `ReadAsync` for the first call.
///
/// Offsets and lengths are bytes; offsets count from the start of the file. What the provider's stream still
/// buffers is not in the file yet, and what the writer puts there is not seen by what the stream has read
/// ahead.
class TESSIO_EXPORT IAsyncReader : public IObject
{
public:
    /// Begins to read `length` bytes at `offset` to `buffer`, borrowed until the operation has ended, and
    /// returns at once. `task` adopts the operation (releasing what it held). 0; 3 (logged) when the file
    /// can't be used so, and 35 (logged) when it can't any more, both with `task` unchanged.
    /// The operation's status is 3 where the file ends before `length` bytes, with those that are there
    /// delivered, and for a null buffer.
    ///
    /// The first call of this object, and of the provider's writer, sets the position of the provider to 0.
    virtual ErrCode ReadAsync(int64 offset, void* buffer, std::size_t length, IAsyncTaskPtr& task) = 0;

    /// Reads `length` bytes at `offset` to `buffer`, waiting. 0, also when the file ends before and when
    /// reading fails, which is logged; 3 and 35 as for `ReadAsync`. Nothing tells how much was delivered:
    /// compare with the size, or use a task.
    virtual ErrCode ReadSync(int64 offset, void* buffer, std::size_t length) = 0;
};
} // namespace KORVA::IO
