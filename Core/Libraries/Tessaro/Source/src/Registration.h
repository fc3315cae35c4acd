// The registration function of each factory: creates it, hands it to the registry, drops the creating
// reference and returns the registry's result.
#pragma once

#include <tessio/CoreRegistry/ICoreRegistry.h>

namespace KORVA::IO
{
int RegisterURIFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterRelativeURIFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterBufferedDataProviderFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterDataProviderFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterPersisentDictionaryFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterStringDictionaryFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterURIRegistryFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterURISchemeFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterURICredentialFactory(COREREGISTRY::ICoreRegistry* registry);
int RegisterURIAuthenticationChallengeFactory(COREREGISTRY::ICoreRegistry* registry);

/// Maps the scheme "file" to the file proxy.
void RegisterURIScheme();
} // namespace KORVA::IO
