#include <tessio/CoreRegistry/CoreRegistry.h>

#include <tessio/CoreRegistry/IFactoryGate.h>
#include <tessio/ObjectModel/TObject.h>

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace KORVA::COREREGISTRY
{
namespace
{
class CoreRegistry final : public TObject<ICoreRegistry>, public IFactoryGate
{
public:
    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        *out = nullptr;
        // Factories run unlocked, so that one may register or create in turn.
        for (IClassFactory* const factory : Candidates(classId))
        {
            Call const call(*this, factory);
            IObject* object = nullptr;
            if (!call.IsAllowed() || call->CreateInstance(classId, &object) != kNoError || !object)
                continue;
            Remember(classId, factory);
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

    bool IsInside(IFactorySet const& factories) override
    {
        std::lock_guard const lock(mMutex);
        return std::ranges::any_of(mCalls, [&factories](Call const* call) {
            return call->thread == std::this_thread::get_id() && factories.Has(*call->type);
        });
    }

    void Close(IFactorySet const& factories) override
    {
        std::unique_lock lock(mMutex);
        mClosed.push_back({&factories, std::this_thread::get_id()});
        mLeft.wait(lock, [this, &factories] {
            return std::ranges::none_of(
                mCalls, [&factories](Call const* call) { return factories.Has(*call->type); });
        });
    }

    void Open(IFactorySet const& factories) override
    {
        std::lock_guard const lock(mMutex);
        std::erase_if(mClosed, [&factories](Closed const& closed) { return closed.factories == &factories; });
    }

    void Remove(IFactorySet const& factories) override
    {
        Factories removed;
        std::lock_guard const lock(mMutex);
        auto const first =
            std::stable_partition(mFactories.begin(), mFactories.end(), [&factories](auto const& factory) {
                return !factories.Has(typeid(*factory.Get()));
            });
        removed.assign(std::make_move_iterator(first), std::make_move_iterator(mFactories.end()));
        mFactories.erase(first, mFactories.end());
        std::erase_if(mServers, [this](auto const& entry) { return Find(entry.second) == mFactories.end(); });
    }

private:
    using Factories = std::vector<TInterfacePtr<IClassFactory>>;

    struct Closed
    {
        IFactorySet const* factories;
        /// The thread that they are not closed to.
        std::thread::id closer;
    };

    /// One call of a factory, from before it begins until nothing of the factory is used any more.
    class Call
    {
    public:
        Call(CoreRegistry& registry, IClassFactory* factory) : mRegistry(registry)
        {
            std::lock_guard const lock(registry.mMutex);
            auto const found = registry.Find(factory);
            if (found == registry.mFactories.end() || registry.IsClosedTo(thread, typeid(*factory)))
                return;
            type = &typeid(*factory);
            registry.mCalls.push_back(this);
            mIsNoted = true;
            mFactory = *found;
        }
        Call(Call const&) = delete;
        Call& operator=(Call const&) = delete;
        ~Call()
        {
            if (!mIsNoted)
                return;
            // If this was the last reference, the code of the factory is still needed.
            mFactory.Reset();
            std::lock_guard const lock(mRegistry.mMutex);
            std::erase(mRegistry.mCalls, this);
            mRegistry.mLeft.notify_all();
        }

        /// False when the factory is not to be asked.
        bool IsAllowed() const { return static_cast<bool>(mFactory); }
        IClassFactory* operator->() const { return mFactory.Get(); }

        std::thread::id const thread = std::this_thread::get_id();
        std::type_info const* type = nullptr;

    private:
        CoreRegistry& mRegistry;
        TInterfacePtr<IClassFactory> mFactory;
        bool mIsNoted = false;
    };

    Factories::iterator Find(IClassFactory const* factory)
    {
        return std::find_if(mFactories.begin(), mFactories.end(),
                            [factory](auto const& entry) { return entry.Get() == factory; });
    }

    /// The factory that served the id before, then all in the order of registration. Names, not references:
    /// none is used unless it is still registered then.
    std::vector<IClassFactory*> Candidates(GUID const& classId)
    {
        std::lock_guard const lock(mMutex);
        std::vector<IClassFactory*> candidates;
        auto const server = mServers.find(classId);
        if (server != mServers.end())
            candidates.push_back(server->second);
        for (TInterfacePtr<IClassFactory> const& factory : mFactories)
            if (server == mServers.end() || factory.Get() != server->second)
                candidates.push_back(factory.Get());
        return candidates;
    }

    bool IsClosedTo(std::thread::id thread, std::type_info const& type) const
    {
        return std::ranges::any_of(mClosed, [this, thread, &type](Closed const& closed) {
            // Who is inside one of the closed has to come out of it, whatever that takes.
            return closed.closer != thread && closed.factories->Has(type) &&
                   std::ranges::none_of(mCalls, [thread, &closed](Call const* call) {
                       return call->thread == thread && closed.factories->Has(*call->type);
                   });
        });
    }

    void Remember(GUID const& classId, IClassFactory* factory)
    {
        std::lock_guard const lock(mMutex);
        // It may have been unregistered while it ran.
        if (Find(factory) != mFactories.end())
            mServers.insert_or_assign(classId, factory);
    }

    std::mutex mMutex;
    std::condition_variable mLeft;
    Factories mFactories;
    std::map<GUID, IClassFactory*> mServers;
    std::vector<Call const*> mCalls;
    std::vector<Closed> mClosed;
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
