// What a client implements to hear of failing reads.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA::IO
{
class IURI;

/// Given to file-backed providers, files and the URI registry, which share it.
class TESSIO_EXPORT IReporter : public IObject
{
public:
    /// A read of the resource `uri` (borrowed) ended with `result`. `detail` is the cause: of a local file 13
    /// for a null buffer, 0 when there was no data. What serves other schemes tells an error number of the
    /// system (`ETIMEDOUT`) or, from 400 on, what its server answered. Called on the reading thread.
    virtual void Report(IURI* uri, OperationId result, ErrCode detail) = 0;
};
} // namespace KORVA::IO
