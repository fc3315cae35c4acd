// Where a host enters the plug-in.
#include "HttpDataProvider.h"
#include "HttpFile.h"
#include "HttpScheme.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/PlugIn.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURIRegistry.h>
#include <tessio/TessIO/ResultCodes.h>
#include <tessio/TessIO/URISchemes.h>

#include <curl/curl.h>

//! [entry]
namespace
{
using namespace KORVA;
using HttpFactory = TClassFactory<Makes<&New<HTTP::HttpFile>, HTTP::IID_HTTP_FILE>,
                                  Makes<&New<HTTP::HttpDataProvider>, HTTP::IID_HTTP_DATAPROVIDER>>;

IClassFactory* sFactory = nullptr;
} // namespace

extern "C" TESSIO_EXPORT int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
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
extern "C" TESSIO_EXPORT int KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
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
