#include "Counter.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/CoreString/StringTokenizer.h>
#include <tessio/Host/PlugIn.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/Export.h>

namespace
{
using namespace KORVA;

constexpr LogSite kSiteCounting{"PlugIn", "int CONSUMER::Counter::Words(char const*) const", 1, 1, 1};

class Counter final : public TObject<CONSUMER::ICounter>
{
public:
    int Words(char const* text) const override
    {
        Log(kSiteCounting, L"Counting words");
        STRING::StringTokenizer const words(STRING::CoreString(text), STRING::CoreString(" "), 0);
        return static_cast<int>(words.NumTokens());
    }
};

using Factory = TClassFactory<Makes<&New<Counter>, CONSUMER::IID_COUNTER>>;

IClassFactory* sFactory = nullptr;
} // namespace

extern "C" TESSIO_EXPORT int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    // A plug-in with a registry of its own would be a stranger to its host.
    if (registry != COREREGISTRY::GetCoreRegistry())
        return 1;
    sFactory = new Factory;
    return registry->RegisterFactory(sFactory);
}

extern "C" TESSIO_EXPORT void KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
}
