// An operation in flight.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

namespace KORVA::IO
{
/// Made by `IAsyncReader::ReadAsync` and `IAsyncWriter::WriteAsync`. May be asked from any thread, and
/// dropped before the operation has ended, which does not end it: the bytes must stay where they are until
/// then.
class TESSIO_EXPORT IAsyncTask : public IObject
{
public:
    /// Waits until the operation has ended, however long that takes, and gives 0. To be called once: the end
    /// is signalled once, so a second call never returns, on another thread neither. Use `IsCompleted` to ask
    /// again.
    virtual ErrCode WaitForCompletion() = 0;

    /// Whether the operation has ended. What it did to the caller's bytes is visible once this is true.
    virtual bool8 IsCompleted() const = 0;

    /// 0 before the end and on success, 2 when a write failed, 3 when a read failed or met the end of the
    /// file; what was there is delivered even so.
    virtual ErrCode GetStatus() const = 0;

    /// Not implemented: logs so, answers 0, and the operation goes on.
    virtual ErrCode CancelTask() = 0;
};

/// Holds an operation.
using IAsyncTaskPtr = TInterfacePtr<IAsyncTask>;
} // namespace KORVA::IO
