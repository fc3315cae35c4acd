// A data provider for the resource that a URI names.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IDataProvider.h>

namespace KORVA::IO
{
/// What the class `DataProvider` implements.
class TESSIO_EXPORT IURIDataProvider : public IDataProvider
{
public:
    /// Opens the resource for reading. 0, or -1000 (logged) whatever the cause.
    virtual HRESULT Init(IURI& uri, IReporter* reporter) = 0;
};
} // namespace KORVA::IO
