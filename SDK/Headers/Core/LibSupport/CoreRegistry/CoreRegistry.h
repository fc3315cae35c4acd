// Access to the process's component registry.
#pragma once

#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/ObjectModel/Export.h>

/// Where class factories are registered and objects created by class id.
namespace KORVA::COREREGISTRY
{
/// Creates an empty registry of the reference implementation; the caller adopts it.
TESSIO_EXPORT ICoreRegistry* CreateCoreRegistry();

/// The process's registry, borrowed, or null when no host has installed one. Safe from any thread.
TESSIO_EXPORT ICoreRegistry* GetCoreRegistry();

/// Shares `registry` as the process's registry and releases the one installed before; null clears.
/// A host calls this at start-up and shutdown, while no other thread uses the registry.
TESSIO_EXPORT void InstallCoreRegistry(ICoreRegistry* registry);

/// Creates an object by class id through the process's registry. The pointer adopts it; it is empty when
/// there is no registry or no factory serves the id. `I` must be the interface of that class.
template <class I>
TInterfacePtr<I> CreateObject(GUID const& classId)
{
    TInterfacePtr<I> object;
    ICoreRegistry* const registry = GetCoreRegistry();
    if (registry && registry->CreateInstance(classId, object.Out()) != kNoError)
        object.Reset();
    return object;
}
} // namespace KORVA::COREREGISTRY
