// Boots a process that uses the library.
#pragma once

#include "CoreRegistry/ICoreRegistry.h"

#include <memory>
#include <string>

/// Booting a process that uses the library.
namespace KORVA::HOST
{
/// A booted process: a component registry, the companions, the library, and plug-ins. One at a time; made,
/// used and destroyed on one thread.
class [[gnu::visibility("default")]] Host
{
public:
    /// Where the parts are.
    struct Options
    {
        /// The library's file; by default the one installed beside this companion.
        std::string library = "libTessIO.so.1";
        /// The file-system companion's file.
        std::string fileSystem = "libKorvaFileIO.so.1";
    };

    /// Installs a registry, loads the file-system companion and the library and initialises them. The caller
    /// owns the host; null and the reason in `error` when something can't be loaded or a host is there
    /// already.
    ///@{
    static std::unique_ptr<Host> Boot(Options const& options, std::string& error);
    static std::unique_ptr<Host> Boot(std::string & error) { return Boot(Options(), error); }
    ///@}

    /// Shuts down plug-ins in reverse order, then the library and the companions, and clears the registry.
    /// Code stays loaded, so that objects that are still held can be released afterwards.
    ~Host();

    /// Borrowed; lives as long as the host.
    COREREGISTRY::ICoreRegistry* Registry() const;

    /// Loads a shared object and calls its `KorvaPlugInInit` with the registry. False and the reason in
    /// `error` when it can't be loaded, has no such function, or answers anything but 0.
    bool LoadPlugIn(std::string const& file, std::string& error);

    /// Calls `KorvaPlugInShutdown` of a plug-in loaded under this very name and unloads it. No object of its
    /// classes may be held any more. False and the reason in `error` when it is not loaded.
    bool UnloadPlugIn(std::string const& file, std::string& error);

private:
    struct State;
    explicit Host(std::unique_ptr<State> state);

    std::unique_ptr<State> mState;
};
} // namespace KORVA::HOST
