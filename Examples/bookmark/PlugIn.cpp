// Where a host enters the plug-in.
#include "Bookmark.h"
#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/Host/PlugIn.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/Export.h>

//! [entry]
namespace
{
using namespace KORVA;
using BookmarkFactory = TClassFactory<Makes<&New<BOOKMARKS::Bookmark>, BOOKMARKS::IID_BOOKMARK>>;

IClassFactory* sFactory = nullptr;
} // namespace

extern "C" TESSIO_EXPORT int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    // A host that knows the file by two names may come twice.
    if (!registry || sFactory)
        return kIllegalArgument;
    sFactory = new BookmarkFactory;
    return registry->RegisterFactory(sFactory);
}

extern "C" TESSIO_EXPORT int KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    if (!registry || !sFactory)
        return kIllegalArgument;
    int const result = registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
    return result;
}
//! [entry]
