// The factory of the classes that serve the library's own URI schemes.
#include "FileProxy.h"
#include "Registration.h"
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/ClassIds.h>

namespace KORVA::IO
{
namespace
{
IObject* NewFileProxy() { return CreateFileProxy(); }

class URISchemeFactory final : public TClassFactory<Makes<&NewFileProxy, IID_FILEPROXY>>
{
};
} // namespace

int RegisterURISchemeFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<URISchemeFactory>(registry);
}
} // namespace KORVA::IO
