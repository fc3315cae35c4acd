// The names of the functions that a host calls in what it loads.
#pragma once

#include <tessio/CoreRegistry/ICoreRegistry.h>

namespace KORVA::HOST
{
using PlugInFunction = int(COREREGISTRY::ICoreRegistry*);
using ObjectsFunction = int32();
using LibraryInit = int(COREREGISTRY::ICoreRegistry*);
using LibraryShutdown = void();

// The library exports C++ functions: KORVA::IO::Init(ICoreRegistry*) and KORVA::IO::Shutdown().
inline constexpr char kLibraryInit[] = "_ZN5KORVA2IO4InitEPNS_12COREREGISTRY13ICoreRegistryE";
inline constexpr char kLibraryShutdown[] = "_ZN5KORVA2IO8ShutdownEv";
inline constexpr char kPlugInInit[] = "KorvaPlugInInit";
inline constexpr char kPlugInShutdown[] = "KorvaPlugInShutdown";
inline constexpr char kPlugInObjects[] = "KorvaPlugInObjects";
} // namespace KORVA::HOST
