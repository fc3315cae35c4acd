// A plug-in for the host's tests. It writes what is asked of it to the file that TEST_PLUG_IN_LOG names.
#include "Companions/Host/IMeeting.h"
#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/Export.h>

#include <cstddef>
#include <cstdlib>
#include <fstream>

namespace
{
using namespace KORVA;

enum class Kind
{
    kFirst,
    kSecond,
    kRefusing,
    /// Keeps an object when it is shut down.
    kLeaving,
    /// Does not unregister its factory.
    kForgetful,
    /// Built without Host/PlugIn.h.
    kSilent,
};

constexpr Kind kKind = Kind::TEST_PLUG_IN;
constexpr auto kNumber = static_cast<std::uint16_t>(kKind);
constexpr GUID kMadeAtOnce = TESTS::ClassOf(kNumber, TESTS::kAtOnce);
constexpr GUID kMadeAfterMeeting = TESTS::ClassOf(kNumber, TESTS::kAfterMeeting);
constexpr GUID kNeverMade = TESTS::ClassOf(kNumber, TESTS::kMeetingOnly);

COREREGISTRY::ICoreRegistry* sRegistry = nullptr;
IClassFactory* sFactory = nullptr;
/// What is left behind on purpose, so that it is not taken for forgotten. The code stays with it.
IObject* sLeft[8];
std::size_t sLeftCount = 0;

void Leave(IObject* object) { sLeft[sLeftCount++ % 8] = object; }

class Thing final : public TObject<IObject>
{
};

void Meet()
{
    IObject* meeting = nullptr;
    if (sRegistry->CreateInstance(TESTS::IID_MEETING, &meeting) != kNoError)
        return;
    static_cast<TESTS::IMeeting*>(meeting)->Meet();
    meeting->Release();
}

IObject* MakeAfterMeeting()
{
    Meet();
    return new Thing;
}

IObject* OnlyMeet()
{
    Meet();
    return nullptr;
}

using Factory = TClassFactory<Makes<&New<Thing>, kMadeAtOnce>, Makes<&MakeAfterMeeting, kMadeAfterMeeting>,
                              Makes<&OnlyMeet, kNeverMade>>;

void Note(char const* what)
{
    if (char const* const file = std::getenv("TEST_PLUG_IN_LOG"))
        std::ofstream(file, std::ios::app) << what << ' ' << static_cast<int>(kKind) << '\n';
}
} // namespace

extern "C" TESSIO_EXPORT int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    Note("init");
    if (kKind == Kind::kRefusing)
        return 42;
    sRegistry = registry;
    sFactory = new Factory;
    return registry->RegisterFactory(sFactory);
}

extern "C" TESSIO_EXPORT int KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    Note("shutdown");
    if (!sFactory)
        return 0;
    if (kKind == Kind::kForgetful)
    {
        Leave(sFactory);
        return 0;
    }
    if (kKind == Kind::kLeaving)
        Leave(new Thing);
    int const result = registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
    return result;
}
