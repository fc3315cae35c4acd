// One plug-in, from loading to unloading.
#pragma once

#include "EntryPoints.h"
#include "SharedObject.h"

#include <string>

namespace KORVA::HOST
{
class PlugIn
{
public:
    PlugIn(std::string file, COREREGISTRY::ICoreRegistry* registry);

    std::string const& File() const { return mFile; }

    /// Loads the file and calls its entry point. False and the reason in `error`; then it is not loaded.
    bool Start(std::string& error);

    /// Calls its exit point. Its code stays in memory, for objects that are still held.
    void Shutdown();

    /// Shuts it down and takes its code out of memory, once nobody is in one of its factories. False, with
    /// the reason in `error` and everything as it was, while its objects are in use or where this thread is
    /// in one of its factories. When code has to stay in memory that is no failure, but `error` says why;
    /// else it is empty.
    bool Stop(std::string& error);

private:
    void CallShutdown() const;
    bool IsRefused(std::string& error) const;
    /// Why the code must stay, or "".
    std::string TakeOut();

    std::string mFile;
    COREREGISTRY::ICoreRegistry* mRegistry;
    SharedObject mObject;
    ObjectsFunction* mObjects = nullptr;
    /// How many it had when it had started: those that it keeps for itself.
    int32 mOwnObjects = 0;
};
} // namespace KORVA::HOST
