// Which component serves which URI scheme.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IURIRegistry.h>

namespace KORVA::IO
{
/// Has no state of its own: the table and the default reporter are the process's.
class URIRegistry final : public TObject<IURIRegistry>
{
public:
    HRESULT Register(STRING::CoreString const& scheme, REFIID classId) override;
    HRESULT Create(IURI& uri, IURIFilePtr& file, IReporter* reporter) override;
    HRESULT SetDefaultReporter(IReporter* reporter) override;
};
} // namespace KORVA::IO
