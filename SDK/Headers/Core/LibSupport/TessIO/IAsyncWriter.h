// Writing at explicit positions of a file.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IAsyncTask.h>

#include <cstddef>

namespace KORVA::IO
{
/// A file-based data provider opened with mode 1 to 4 answers one under `IID_ASYNC_WRITER`; all that is said
/// of `IAsyncReader` holds here too. Mode 3 opens for reading: every write of it fails.
class TESSIO_EXPORT IAsyncWriter : public IObject
{
public:
    /// Begins to write `length` bytes of `buffer`, borrowed until the operation has ended, at `offset`, and
    /// returns at once. `task` adopts the operation (releasing what it held). 0, and the operation's status
    /// is 2 when writing fails; 3 and 35 as for `IAsyncReader::ReadAsync`. 11 (logged) for a length of 0,
    /// with a task in `task` that never ends: don't wait for it, and don't write nothing.
    virtual ErrCode WriteAsync(int64 offset, void const* buffer, std::size_t length, IAsyncTaskPtr& task) = 0;

    /// Writes `length` bytes of `buffer` at `offset`, waiting. 0, also when writing fails, which is logged; 3
    /// and 35 as above. With a length of 0 it never returns: don't write nothing.
    virtual ErrCode WriteSync(int64 offset, void const* buffer, std::size_t length) = 0;
};
} // namespace KORVA::IO
