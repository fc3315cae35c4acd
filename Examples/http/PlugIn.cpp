// Where a host enters the plug-in.
#include "Host/PlugIn.h"
#include "CoreRegistry/CoreRegistry.h"
#include "HttpDataProvider.h"
#include "HttpFile.h"
#include "HttpScheme.h"
#include "ObjectModel/ClassFactory.h"
#include "TessIO/ClassIds.h"
#include "TessIO/IURIRegistry.h"
#include "TessIO/ResultCodes.h"
#include "TessIO/URISchemes.h"

#include <curl/curl.h>

//! [entry]
namespace
{
using namespace KORVA;
using HttpFactory = TClassFactory<Makes<&New<HTTP::HttpFile>, HTTP::IID_HTTP_FILE>,
                                  Makes<&New<HTTP::HttpDataProvider>, HTTP::IID_HTTP_DATAPROVIDER>>;

IClassFactory* sFactory = nullptr;
} // namespace

extern "C" [[gnu::visibility("default")]] int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    // A host that knows the file by two names may come twice.
    if (!registry || sFactory)
        return kIllegalArgument;
    auto const schemes = COREREGISTRY::CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
    if (!schemes || curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        return IO::kNoObject;
    sFactory = new HttpFactory;
    schemes->Register(IO::kHttpcheme, HTTP::IID_HTTP_FILE);
    schemes->Register(IO::kHttpscheme, HTTP::IID_HTTP_FILE);
    return registry->RegisterFactory(sFactory);
}

/// The schemes stay registered, as schemes do; without the factory they lead nowhere (-1004).
extern "C" [[gnu::visibility("default")]] int KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    if (!registry || !sFactory)
        return kIllegalArgument;
    int const result = registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
    curl_global_cleanup();
    return result;
}
//! [entry]
