#include <tessio/Host/Host.h>

#include "EntryPoints.h"
#include "PlugIn.h"
#include <tessio/CoreRegistry/CoreRegistry.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace KORVA::HOST
{
using COREREGISTRY::ICoreRegistry;

struct Host::State
{
    explicit State(Options const& options)
    {
        registry.Adopt(COREREGISTRY::CreateCoreRegistry());
        fileSystem.emplace(options.fileSystem, registry.Get());
    }

    auto Find(std::string const& file)
    {
        return std::find_if(plugIns.begin(), plugIns.end(),
                            [&file](PlugIn const& plugIn) { return plugIn.File() == file; });
    }

    TInterfacePtr<ICoreRegistry> registry;
    std::optional<PlugIn> fileSystem;
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
    auto state = std::make_unique<State>(options);
    if (!state->fileSystem->Start(error))
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
    for (auto plugIn = mState->plugIns.rbegin(); plugIn != mState->plugIns.rend(); ++plugIn)
        plugIn->Shutdown();
    if (auto* const shutdown = mState->library.Find<LibraryShutdown>(kLibraryShutdown))
        shutdown();
    mState->library.LeaveLoaded();
    mState->fileSystem->Shutdown();
    COREREGISTRY::InstallCoreRegistry(nullptr);
}

ICoreRegistry* Host::Registry() const { return mState->registry.Get(); }

bool Host::LoadPlugIn(std::string const& file, std::string& error)
{
    if (mState->Find(file) != mState->plugIns.end())
    {
        error = file + ": loaded already";
        return false;
    }
    PlugIn plugIn(file, Registry());
    if (!plugIn.Start(error))
        return false;
    mState->plugIns.push_back(std::move(plugIn));
    return true;
}

bool Host::UnloadPlugIn(std::string const& file, std::string& error)
{
    auto const found = mState->Find(file);
    if (found == mState->plugIns.end())
    {
        error = file + ": not loaded";
        return false;
    }
    if (!found->Stop(error))
        return false;
    mState->plugIns.erase(found);
    return true;
}
} // namespace KORVA::HOST
