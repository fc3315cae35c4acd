// The interface through which objects are created by class id.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA
{
/// Makes objects of the classes that it serves; registered with the component registry.
class TESSIO_EXPORT IClassFactory : public IObject
{
public:
    /// Creates an object of class `classId`.
    /// Result 0 and the new object in `out`, which adopts its one reference; or -1004 and null when the
    /// factory does not make that class. `out` must not be null.
    virtual ErrCode CreateInstance(GUID const& classId, IObject** out) = 0;
};
} // namespace KORVA
