// The factory of the classes that serve the library's own URI schemes.
#include "FileProxy.h"
#include "ObjectModel/ClassFactory.h"
#include "Registration.h"
#include "TessIO/ClassIds.h"

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
