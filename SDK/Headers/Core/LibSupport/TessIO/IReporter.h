// What a client implements to hear of failing reads.
#pragma once

#include "ObjectModel/IObject.h"

namespace KORVA::IO
{
class IURI;

/// Given to file-backed providers, files and the URI registry, which share it.
class [[gnu::visibility("default")]] IReporter : public IObject
{
public:
    /// A read of the resource `uri` (borrowed) ended with `result`; `detail` is 13 for a null buffer, 0 when
    /// there was no data. Called on the reading thread.
    virtual void Report(IURI * uri, OperationId result, ErrCode detail) = 0;
};
} // namespace KORVA::IO
