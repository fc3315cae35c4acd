// The library's entry points.
#pragma once

#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/ObjectModel/Export.h>

/// The library: data providers, streams and object records, dictionaries, URIs.
namespace KORVA::IO
{
/// Registers the library's class factories with `registry` and maps the scheme "file" to the file proxy.
/// A host calls it once, before it creates any object of the library. Result 0, whatever the registry
/// answers to the single registrations; -50 (logged) when `registry` is null.
TESSIO_EXPORT int Init(COREREGISTRY::ICoreRegistry* registry);

/// Does nothing: the factories stay with the registry, which owns them.
TESSIO_EXPORT void Shutdown();
} // namespace KORVA::IO
