// Boots a process that uses the library.
#pragma once

#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/ObjectModel/Export.h>

#include <memory>
#include <string>

/// Booting a process that uses the library.
namespace KORVA::HOST
{
/// A booted process: a component registry, the companions, the library, and plug-ins. One at a time; made,
/// used and destroyed on one thread.
class TESSIO_EXPORT Host
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
    static std::unique_ptr<Host> Boot(std::string& error) { return Boot(Options(), error); }
    ///@}

    /// Shuts down plug-ins in reverse order, then the library and the companions, and clears the registry.
    /// Code stays loaded, so that objects that are still held can be released afterwards.
    ~Host();

    /// Borrowed; lives as long as the host.
    COREREGISTRY::ICoreRegistry* Registry() const;

    /// Loads a shared object and calls its `KorvaPlugInInit` with the registry. Other threads get objects of
    /// its classes when that has returned. False and the reason in `error` when it can't be loaded, has no
    /// such function, or answers anything but 0.
    bool LoadPlugIn(std::string const& file, std::string& error);

    /// Shuts down a plug-in that is loaded under this very name, when nobody is inside one of its factories
    /// any more: waits for other threads, whose calls of `CreateInstance` for its classes answer -1004
    /// meanwhile, and calls `KorvaPlugInShutdown`. Then takes its code out of memory. Every call of its
    /// objects must have returned.
    ///
    /// False, with the reason in `error` and the plug-in at work as before, when it is not loaded, when more
    /// objects of its classes live than it had made when it had started, or when the calling thread is inside
    /// one of its factories.
    ///
    /// When it is shut down and its code has to stay in memory, the answer is true and `error` says why; else
    /// `error` is empty. Code stays where the plug-in does not say how many of its objects live
    /// (Host/PlugIn.h), where it has left some of its own, and where the system keeps it: for somebody else
    /// who has loaded the file, or for variables that are unique in the process, which g++ makes without
    /// `-fno-gnu-unique`.
    bool UnloadPlugIn(std::string const& file, std::string& error);

private:
    struct State;
    explicit Host(std::unique_ptr<State> state);

    std::unique_ptr<State> mState;
};
} // namespace KORVA::HOST
