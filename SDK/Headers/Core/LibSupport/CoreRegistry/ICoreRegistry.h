// The component registry: where class factories are registered and objects created by class id.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IClassFactory.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

namespace KORVA::COREREGISTRY
{
/// Creates components by class id through the factories registered with it. Safe from any thread; no lock
/// is held while a factory runs, so a factory may itself use the registry.
///
/// `CreateInstance` asks the factories in the order of their registration and remembers which one served an
/// id; an id that none serves answers -1004 and null.
class TESSIO_EXPORT ICoreRegistry : public IClassFactory
{
public:
    /// Shares `factory` and asks it from now on. Result 0, also when it is registered already (it stays
    /// registered once); -50 for null.
    virtual int RegisterFactory(IClassFactory* factory) = 0;

    /// Releases `factory` and asks it no more; the classes of other factories are not touched.
    /// Result 0; -1004 when it is not registered; -50 for null.
    virtual int UnregisterFactory(IClassFactory* factory) = 0;
};

/// Creates a factory, registers it and drops the creating reference. The registry's result.
template <class Factory>
int RegisterNewFactory(ICoreRegistry* registry)
{
    TInterfacePtr<IClassFactory> factory;
    factory.Adopt(new Factory);
    return registry->RegisterFactory(factory.Get());
}
} // namespace KORVA::COREREGISTRY
