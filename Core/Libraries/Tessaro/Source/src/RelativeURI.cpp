#include "RelativeURI.h"

#include "LastComponent.h"
#include "Registration.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/CoreString/StringTokenizer.h>
#include <tessio/FileIO/ISystemDirContainer.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/PersistentData.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>
#include <vector>

namespace KORVA::IO
{
namespace
{
using FILE_SYS::ISystemDirContainer;
using STRING::CoreString;
using STRING::StringTokenizer;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/RelativeURI";
constexpr char kInit[] =
    "virtual FILE_SYS::ErrCode KORVA::IO::RelativeURI::Init(FILE_SYS::DirType, const STRING::CoreString &, "
    "const STRING::CoreString &, uint32, const STRING::CoreString &, bool8)";

constexpr LogSite kSiteInit{kSource, "virtual void KORVA::IO::RelativeURI::Init(const STRING::CoreString &)",
                            47};
constexpr LogSite kSiteInitRelative{
    kSource,
    "virtual void KORVA::IO::RelativeURI::InitRelative(const KORVA::IO::IURI &, const STRING::CoreString &)",
    52};
constexpr LogSite kSiteNoContainer{kSource, kInit, 143};
constexpr LogSite kSiteNoDir{kSource, kInit, 173};

constexpr wchar_t kInvalidInit[] = L"Invalid init for a relative URI";

class RelativeURIFactory final : public TClassFactory<Makes<&New<RelativeURI>, IID_IRELATIVE_URI>>
{
};

/// The registry's code, or 12 where there is no registry or it gave nothing.
ErrCode CreateContainer(TInterfacePtr<ISystemDirContainer>& container)
{
    COREREGISTRY::ICoreRegistry* const registry = COREREGISTRY::GetCoreRegistry();
    if (!registry)
        return kNoObject;
    ErrCode const code = registry->CreateInstance(FILE_SYS::IID_SYSTEM_DIR_CONTAINER, container.Out());
    return code == kNoError && !container ? kNoObject : code;
}

CoreString Join(CoreString const& directory, CoreString const& path)
{
    return directory + CoreString(u"/") + path;
}
} // namespace

int RegisterRelativeURIFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<RelativeURIFactory>(registry);
}

RelativeURI::RelativeURI() { SetupPersistence(*this); }

void RelativeURI::Init(CoreString const&) { Log(kSiteInit, kInvalidInit); }

void RelativeURI::InitRelative(IURI const&, CoreString const&) { Log(kSiteInitRelative, kInvalidInit); }

FILE_SYS::ErrCode RelativeURI::Init(FILE_SYS::DirType dirType, CoreString const& scheme,
                                    CoreString const& host, uint32 port, CoreString const& path,
                                    bool8 pathIsRelative)
{
    mScheme = scheme;
    mHost = host;
    mPort = port;
    mDirType = dirType;
    TInterfacePtr<ISystemDirContainer> container;
    ErrCode const created = CreateContainer(container);
    if (created != kNoError)
    {
        Log(kSiteNoContainer, L"RelativeURI could not be manufactured. FILE_SYS::ErrCode ", created);
        return created;
    }
    FILE_SYS::IDir* const dir = container->GetDir(dirType);
    if (!dir)
    {
        Log(kSiteNoDir, L"ISystemDirContainer returned NULL IDir");
        return FILE_SYS::kDone;
    }
    mBaseDir.Share(dir);
    CoreString const base = BaseDirPath();
    if (!pathIsRelative)
    {
        FindRelPath(path);
        mFullPath = Join(base, mRelPath);
    }
    else if (path.empty())
        mFullPath = base;
    else
    {
        mRelPath = path;
        mFullPath = Join(base, mRelPath);
    }
    ResolvePath();
    return FILE_SYS::kDone;
}

void RelativeURI::Init(IURI const& uri, int dirType)
{
    mScheme = uri.GetScheme();
    mHost = uri.GetHost();
    mPort = uri.GetPortNumber();
    mDirType = static_cast<FILE_SYS::DirType>(dirType);
    TInterfacePtr<ISystemDirContainer> container;
    if (CreateContainer(container) == kNoError)
        mBaseDir.Share(container->GetDir(mDirType));
    FindRelPath(uri.GetPath());
    mFullPath = Join(BaseDirPath(), mRelPath);
    ResolvePath();
}

CoreString RelativeURI::BaseDirPath() const
{
    CoreString path;
    if (mBaseDir)
        static_cast<void>(mBaseDir->GetPath(1, path));
    return path;
}

void RelativeURI::FindRelPath(CoreString const& target)
{
    CoreString const delimiters("\\/");
    StringTokenizer const base(BaseDirPath(), delimiters, 0);
    StringTokenizer const wanted(target, delimiters, 0);
    int32 const common = std::min(base.NumTokens(), wanted.NumTokens());
    int32 parting = 0;
    while (parting < common && base.Get(parting).comparei(wanted.Get(parting)) == 0)
        ++parting;
    // A target inside the directory parts nowhere: no way is written down.
    if (parting == common)
        return;
    for (int32 up = base.NumTokens() - parting; up > 0; --up)
        mRelPath.append(CoreString(u"../"));
    // Nor is one to a target that shares not even the first component.
    if (parting == 0)
        return;
    for (int32 i = parting; i < wanted.NumTokens(); ++i)
    {
        if (i > parting)
            mRelPath.push_back(u'/');
        mRelPath.append(wanted.Get(i));
    }
}

void RelativeURI::ResolvePath()
{
    StringTokenizer const tokens(mFullPath, CoreString("/\\"), 0);
    int32 const last = tokens.NumTokens() - 1;
    int32 skip = 0;
    // What stays in front of the path, from the back.
    std::vector<int32> kept;
    CoreString rest = mFullPath;
    for (int32 i = last; i >= 0; --i)
    {
        CoreString const token = tokens.Get(i);
        if (token.compare("..") == 0)
            ++skip;
        else if (token.compare(".") == 0)
            continue;
        else if (skip > 0)
            --skip;
        else if (i == last)
            // Only the last component begins the path anew.
            rest = token;
        else
            kept.push_back(i);
    }
    mFullPath = CoreString(u"/");
    for (auto i = kept.rbegin(); i != kept.rend(); ++i)
    {
        mFullPath.append(tokens.Get(*i));
        mFullPath.push_back(u'/');
    }
    mFullPath.append(rest);
}

void RelativeURI::FixPathForDrives() {}

CoreString RelativeURI::GetScheme() const { return mScheme; }

CoreString RelativeURI::GetHost() const { return mHost; }

uint32 RelativeURI::GetPortNumber() const { return mPort; }

CoreString RelativeURI::GetPath() const { return mFullPath; }

CoreString RelativeURI::GetQuery() const { return mQuery; }

CoreString RelativeURI::GetAbsoluteString() const { return CoreString(); }

void RelativeURI::GetName(CoreString& name) const { name = LastComponent(mFullPath); }

bool RelativeURI::operator==(IURI const& other) const
{
    if (&other == this)
        return true;
    if (mPort != other.GetPortNumber() || !(mScheme == other.GetScheme()))
        return false;
    auto const* const otherURI = dynamic_cast<RelativeURI const*>(&other);
    return otherURI && mHost == otherURI->mHost && mFullPath == otherURI->mFullPath;
}

CoreString const& RelativeURI::GetRelPath() const { return mRelPath; }

void RelativeURI::GetBaseDir(FILE_SYS::IDir** dir) const { *dir = mBaseDir.Get(); }

IDataProviderStream& RelativeURI::Write(IDataProviderStream& stream) const
{
    return stream << mScheme << mHost << mPort << mRelPath << static_cast<int32>(mDirType);
}

IDataProviderStream& RelativeURI::Read(IDataProviderStream& stream)
{
    int32 dirType = mDirType;
    stream >> mScheme >> mHost >> mPort >> mRelPath >> dirType;
    mDirType = static_cast<FILE_SYS::DirType>(dirType);
    ResolvePath();
    TInterfacePtr<ISystemDirContainer> container;
    if (CreateContainer(container) == kNoError)
        mBaseDir.Share(container->GetDir(mDirType));
    return stream;
}
} // namespace KORVA::IO
