#include "Host/Host.h"

#include "CoreRegistry/CoreRegistry.h"
#include "EntryPoints.h"
#include "SharedObject.h"

#include <algorithm>
#include <vector>

namespace KORVA::HOST
{
namespace
{
using COREREGISTRY::ICoreRegistry;

struct PlugIn
{
    std::string file;
    SharedObject object;
};

bool StartPlugIn(PlugIn& plugIn, ICoreRegistry* registry, std::string& error)
{
    if (!plugIn.object.Load(plugIn.file, error))
        return false;
    auto* const init = plugIn.object.Find<PlugInFunction>(kPlugInInit);
    if (!init)
    {
        error = plugIn.file + ": no function " + kPlugInInit;
        plugIn.object.Unload();
        return false;
    }
    if (int const result = init(registry); result != kNoError)
    {
        error = plugIn.file + ": " + kPlugInInit + " answered " + std::to_string(result);
        plugIn.object.Unload();
        return false;
    }
    return true;
}

void StopPlugIn(PlugIn const& plugIn, ICoreRegistry* registry)
{
    if (auto* const shutdown = plugIn.object.Find<PlugInFunction>(kPlugInShutdown))
        shutdown(registry);
}
} // namespace

struct Host::State
{
    TInterfacePtr<ICoreRegistry> registry;
    PlugIn fileSystem;
    SharedObject library;
    std::vector<PlugIn> plugIns;
};

std::unique_ptr<Host> Host::Boot(Options const& options, std::string& error)
{
    if (COREREGISTRY::GetCoreRegistry())
    {
        error = "a host is running in this process already";
        return nullptr;
    }
    auto state = std::make_unique<State>();
    state->registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    state->fileSystem.file = options.fileSystem;
    if (!StartPlugIn(state->fileSystem, state->registry.Get(), error))
        return nullptr;
    COREREGISTRY::InstallCoreRegistry(state->registry.Get());
    // From here on the destructor takes everything back.
    std::unique_ptr<Host> host(new Host(std::move(state)));
    if (!host->mState->library.Load(options.library, error))
        return nullptr;
    auto* const init = host->mState->library.Find<LibraryInit>(kLibraryInit);
    if (!init)
    {
        error = options.library + ": no function KORVA::IO::Init";
        return nullptr;
    }
    if (int const result = init(host->Registry()); result != kNoError)
    {
        error = options.library + ": KORVA::IO::Init answered " + std::to_string(result);
        return nullptr;
    }
    return host;
}

Host::Host(std::unique_ptr<State> state) : mState(std::move(state)) {}

Host::~Host()
{
    ICoreRegistry* const registry = mState->registry.Get();
    for (auto plugIn = mState->plugIns.rbegin(); plugIn != mState->plugIns.rend(); ++plugIn)
        StopPlugIn(*plugIn, registry);
    if (auto* const shutdown = mState->library.Find<LibraryShutdown>(kLibraryShutdown))
        shutdown();
    StopPlugIn(mState->fileSystem, registry);
    COREREGISTRY::InstallCoreRegistry(nullptr);
}

ICoreRegistry* Host::Registry() const { return mState->registry.Get(); }

bool Host::LoadPlugIn(std::string const& file, std::string& error)
{
    if (std::any_of(mState->plugIns.begin(), mState->plugIns.end(),
                    [&file](PlugIn const& loaded) { return loaded.file == file; }))
    {
        error = file + ": loaded already";
        return false;
    }
    PlugIn plugIn{file, {}};
    if (!StartPlugIn(plugIn, Registry(), error))
        return false;
    mState->plugIns.push_back(std::move(plugIn));
    return true;
}

bool Host::UnloadPlugIn(std::string const& file, std::string& error)
{
    auto const found = std::find_if(mState->plugIns.begin(), mState->plugIns.end(),
                                    [&file](PlugIn const& plugIn) { return plugIn.file == file; });
    if (found == mState->plugIns.end())
    {
        error = file + ": not loaded";
        return false;
    }
    StopPlugIn(*found, Registry());
    found->object.Unload();
    mState->plugIns.erase(found);
    return true;
}
} // namespace KORVA::HOST
