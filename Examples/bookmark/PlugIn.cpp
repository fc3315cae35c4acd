// Where a host enters the plug-in.
#include "Host/PlugIn.h"
#include "Bookmark.h"
#include "CoreRegistry/ICoreRegistry.h"
#include "ObjectModel/ClassFactory.h"

//! [entry]
namespace
{
using namespace KORVA;
using BookmarkFactory = TClassFactory<Makes<&New<BOOKMARKS::Bookmark>, BOOKMARKS::IID_BOOKMARK>>;

IClassFactory* sFactory = nullptr;
} // namespace

extern "C" [[gnu::visibility("default")]] int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    // A host that knows the file by two names may come twice.
    if (!registry || sFactory)
        return kIllegalArgument;
    sFactory = new BookmarkFactory;
    return registry->RegisterFactory(sFactory);
}

extern "C" [[gnu::visibility("default")]] int KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    if (!registry || !sFactory)
        return kIllegalArgument;
    int const result = registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
    return result;
}
//! [entry]
