#include "Registration.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/TessIO.h>

namespace KORVA::IO
{
namespace
{
constexpr LogSite kSiteNoHost{"Core/Libraries/Tessaro/Source/src/LibUtils",
                              "int KORVA::IO::Init(KORVA::COREREGISTRY::ICoreRegistry *)", 47};
} // namespace

int Init(COREREGISTRY::ICoreRegistry* registry)
{
    if (!registry)
    {
        Log(kSiteNoHost, L"No host");
        return kIllegalArgument;
    }
    // A registration that fails stops neither the others nor the host.
    static_cast<void>(RegisterURIFactory(registry));
    static_cast<void>(RegisterRelativeURIFactory(registry));
    static_cast<void>(RegisterBufferedDataProviderFactory(registry));
    static_cast<void>(RegisterDataProviderFactory(registry));
    static_cast<void>(RegisterPersisentDictionaryFactory(registry));
    static_cast<void>(RegisterStringDictionaryFactory(registry));
    static_cast<void>(RegisterURIRegistryFactory(registry));
    static_cast<void>(RegisterURISchemeFactory(registry));
    static_cast<void>(RegisterURICredentialFactory(registry));
    static_cast<void>(RegisterURIAuthenticationChallengeFactory(registry));
    RegisterURIScheme();
    return kNoError;
}

void Shutdown() {}
} // namespace KORVA::IO
