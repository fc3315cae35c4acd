#include "Host/PlugIn.h"
#include "CoreRegistry/CoreRegistry.h"
#include "CoreString/StringTokenizer.h"
#include "Counter.h"
#include "Logger/LogSite.h"
#include "ObjectModel/ClassFactory.h"

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

extern "C" [[gnu::visibility("default")]] int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    // A plug-in with a registry of its own would be a stranger to its host.
    if (registry != COREREGISTRY::GetCoreRegistry())
        return 1;
    sFactory = new Factory;
    return registry->RegisterFactory(sFactory);
}

extern "C" [[gnu::visibility("default")]] void KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
}
