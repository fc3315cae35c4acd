// Which component serves which URI scheme.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IURIFile.h>

namespace KORVA::IO
{
/// Class id `IID_URI_REGISTRY`. All objects of this class share one table and one default reporter, which are
/// not locked: register schemes while the process starts.
class TESSIO_EXPORT IURIRegistry : public IObject
{
public:
    /// Maps `scheme` (case matters) to a class whose objects are `IURIFile`s. Always 0: the first
    /// registration stands, and one with another class id is only logged.
    virtual HRESULT Register(STRING::CoreString const& scheme, REFIID classId) = 0;

    /// Creates the file object for the scheme of `uri` and initialises it with `reporter`, or with the
    /// default reporter when that is null. 0 and `file` adopts the object; -1004 for a scheme that nobody
    /// serves, 12 without a component registry, else its code or that of the object's `Init` (logged): `file`
    /// is then unchanged.
    virtual HRESULT Create(IURI& uri, IURIFilePtr& file, IReporter* reporter) = 0;

    /// Shares `reporter` for the files created from now on without one; null clears it. Always 0.
    virtual HRESULT SetDefaultReporter(IReporter* reporter) = 0;
};
} // namespace KORVA::IO
