#include "CoreRegistry/CoreRegistry.h"

#include "ObjectModel/TObject.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <vector>

namespace KORVA::COREREGISTRY
{
namespace
{
class CoreRegistry final : public TObject<ICoreRegistry>
{
public:
    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        *out = nullptr;
        // Factories run unlocked, on references of our own, so that one may register or create in turn.
        for (TInterfacePtr<IClassFactory> const& factory : Candidates(classId))
        {
            IObject* object = nullptr;
            if (factory->CreateInstance(classId, &object) != kNoError || !object)
                continue;
            Remember(classId, factory.Get());
            *out = object;
            return kNoError;
        }
        return kIdNotFound;
    }

    int RegisterFactory(IClassFactory* factory) override
    {
        if (!factory)
            return kIllegalArgument;
        std::lock_guard const lock(mMutex);
        if (Find(factory) == mFactories.end())
            mFactories.emplace_back().Share(factory);
        return kNoError;
    }

    int UnregisterFactory(IClassFactory* factory) override
    {
        if (!factory)
            return kIllegalArgument;
        TInterfacePtr<IClassFactory> removed;
        std::lock_guard const lock(mMutex);
        auto const found = Find(factory);
        if (found == mFactories.end())
            return kIdNotFound;
        // Released after the lock: what a factory does when it dies is its own business.
        removed = std::move(*found);
        mFactories.erase(found);
        std::erase_if(mServers, [factory](auto const& entry) { return entry.second == factory; });
        return kNoError;
    }

private:
    using Factories = std::vector<TInterfacePtr<IClassFactory>>;

    Factories::iterator Find(IClassFactory const* factory)
    {
        return std::find_if(mFactories.begin(), mFactories.end(),
                            [factory](auto const& entry) { return entry.Get() == factory; });
    }

    /// The factory that served the id before, then all in the order of registration.
    Factories Candidates(GUID const& classId)
    {
        std::lock_guard const lock(mMutex);
        Factories candidates;
        auto const server = mServers.find(classId);
        if (server != mServers.end())
            candidates.emplace_back().Share(server->second);
        for (TInterfacePtr<IClassFactory> const& factory : mFactories)
            if (server == mServers.end() || factory.Get() != server->second)
                candidates.push_back(factory);
        return candidates;
    }

    void Remember(GUID const& classId, IClassFactory* factory)
    {
        std::lock_guard const lock(mMutex);
        // It may have been unregistered while it ran.
        if (Find(factory) != mFactories.end())
            mServers.insert_or_assign(classId, factory);
    }

    std::mutex mMutex;
    Factories mFactories;
    std::map<GUID, IClassFactory*> mServers;
};

struct Installed
{
    std::mutex mutex;
    TInterfacePtr<ICoreRegistry> registry;
};

/// Never destroyed: components may ask for the registry while the process ends.
Installed& TheRegistry()
{
    static Installed* const sInstalled = new Installed;
    return *sInstalled;
}
} // namespace

ICoreRegistry* CreateCoreRegistry() { return new CoreRegistry; }

ICoreRegistry* GetCoreRegistry()
{
    Installed& installed = TheRegistry();
    std::lock_guard const lock(installed.mutex);
    return installed.registry.Get();
}

void InstallCoreRegistry(ICoreRegistry* registry)
{
    TInterfacePtr<ICoreRegistry> next;
    next.Share(registry);
    Installed& installed = TheRegistry();
    std::lock_guard const lock(installed.mutex);
    std::swap(installed.registry, next);
}
} // namespace KORVA::COREREGISTRY
