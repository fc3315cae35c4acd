#include "URIRegistry.h"

#include "LoggingInterface.h"
#include "Registration.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/ResultCodes.h>
#include <tessio/TessIO/URISchemes.h>

#include <map>

namespace KORVA::IO
{
KLoggerLibInterface* loggingInterface = KLoggerLibInterface::InitInstance(L"Vantorel.log");

namespace
{
using STRING::CoreString;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/URIRegistry";
constexpr char kRegister[] =
    "virtual HRESULT KORVA::IO::URIRegistry::Register(const STRING::CoreString &, REFIID)";
constexpr int kNotice = 1;
constexpr int kInformative = 2;

constexpr LogSite kSiteOtherClass{kSource, kRegister, 46, kNotice, kInformative};
constexpr LogSite kSiteUntranslatable{kSource, kRegister, 50, kNotice, kInformative};
constexpr LogSite kSiteCreateFailed{
    kSource,
    "virtual HRESULT KORVA::IO::URIRegistry::Create(KORVA::IO::IURI &, IURIFilePtr "
    "&, KORVA::IO::IReporter *)",
    75};

class URIRegistryFactory final : public TClassFactory<Makes<&New<URIRegistry>, IID_URI_REGISTRY>>
{
};

using SchemeMap = std::map<CoreString, GUID>;

// Both are made at first use, so that a registration may come before this source is initialised.
SchemeMap& Schemes()
{
    static SchemeMap sURISchemeMap;
    return sURISchemeMap;
}

TInterfacePtr<IReporter>& DefaultReporter()
{
    static TInterfacePtr<IReporter> sURIReporter;
    return sURIReporter;
}

/// What fits into 255 bytes of UTF-8; empty for a text that has no UTF-8.
CoreString Translatable(CoreString const& scheme)
{
    constexpr std::size_t kMaxBytes = 255;
    if (!scheme.IsWellFormed())
        return CoreString();
    CoreString text = scheme.substr(0, kMaxBytes);
    while (text.ToUTF8().size() > kMaxBytes || !text.IsWellFormed())
        text = text.substr(0, text.size() - 1);
    return text;
}
} // namespace

int RegisterURIRegistryFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<URIRegistryFactory>(registry);
}

void RegisterURIScheme()
{
    TInterfacePtr<IURIRegistry> registry;
    registry.Adopt(new URIRegistry);
    static_cast<void>(registry->Register(kFileScheme, IID_FILEPROXY));
}

HRESULT URIRegistry::Register(CoreString const& scheme, REFIID classId)
{
    auto const [entry, inserted] = Schemes().try_emplace(scheme, classId);
    if (inserted)
        return kNoError;
    CoreString const name = Translatable(scheme);
    if (name.empty())
        Log(kSiteUntranslatable, L"There is already an untranslatable  URI scheme registered.");
    else if (!(entry->second == classId))
        Log(kSiteOtherClass, L"There is already a URI scheme for \"", name,
            L"\" registered with a different UID");
    return kNoError;
}

HRESULT URIRegistry::Create(IURI& uri, IURIFilePtr& file, IReporter* reporter)
{
    auto const found = Schemes().find(uri.GetScheme());
    if (found == Schemes().end())
        return kIdNotFound;
    COREREGISTRY::ICoreRegistry* const registry = COREREGISTRY::GetCoreRegistry();
    if (!registry)
        return kNoObject;
    IURIFilePtr created;
    ErrCode const made = registry->CreateInstance(found->second, created.Out());
    if (!created)
        return made;
    ErrCode const initialised = created->Init(uri, reporter ? reporter : DefaultReporter().Get());
    if (initialised != kNoError)
    {
        created.Reset();
        Log(kSiteCreateFailed, L"Could not instantiate or initialize URI data provider");
        return initialised;
    }
    file = std::move(created);
    return kNoError;
}

HRESULT URIRegistry::SetDefaultReporter(IReporter* reporter)
{
    DefaultReporter().Share(reporter);
    return kNoError;
}
} // namespace KORVA::IO
