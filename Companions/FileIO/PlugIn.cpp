// Entry points of the file-system companion: a host loads it like a plug-in.
#include "File.h"
#include "FileAccess.h"
#include "SystemDirContainer.h"
#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/Export.h>

namespace
{
using namespace KORVA;

using FileFactory =
    TClassFactory<Makes<&New<FILE_SYS::File>, FILE_SYS::IID_IFILE>,
                  Makes<&New<FILE_SYS::FileAccess>, FILE_SYS::IID_IFILE_ACCESS>,
                  Makes<&New<FILE_SYS::SystemDirContainer>, FILE_SYS::IID_SYSTEM_DIR_CONTAINER>>;

IClassFactory* sFactory = nullptr;
} // namespace

extern "C" TESSIO_EXPORT int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    // A host that knows the file by two names may come twice.
    if (!registry || sFactory)
        return kIllegalArgument;
    sFactory = new FileFactory;
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
