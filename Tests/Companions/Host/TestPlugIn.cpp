// A plug-in for the host's tests. It writes what is asked of it to the file that TEST_PLUG_IN_LOG names.
#include "CoreRegistry/ICoreRegistry.h"
#include "ObjectModel/ClassFactory.h"

#include <cstdlib>
#include <fstream>

namespace
{
using namespace KORVA;

enum class Kind
{
    kFirst,
    kSecond,
    kRefusing
};

constexpr Kind kKind = Kind::TEST_PLUG_IN;
constexpr GUID kClassId{0x7E57C1A5, static_cast<std::uint16_t>(kKind), 0, {}};

class Thing final : public TObject<IObject>
{
};

using Factory = TClassFactory<Makes<&New<Thing>, kClassId>>;

IClassFactory* sFactory = nullptr;

void Note(char const* what)
{
    if (char const* const file = std::getenv("TEST_PLUG_IN_LOG"))
        std::ofstream(file, std::ios::app) << what << ' ' << static_cast<int>(kKind) << '\n';
}
} // namespace

extern "C" [[gnu::visibility("default")]] int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    Note("init");
    if (kKind == Kind::kRefusing)
        return 42;
    sFactory = new Factory;
    return registry->RegisterFactory(sFactory);
}

extern "C" [[gnu::visibility("default")]] int KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    Note("shutdown");
    if (!sFactory)
        return 0;
    int const result = registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
    return result;
}
