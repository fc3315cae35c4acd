#include "PlugIn.h"

#include "OtherThreads.h"
#include <tessio/CoreRegistry/IFactoryGate.h>

#include <utility>

namespace KORVA::HOST
{
namespace
{
/// The factories of a shared object, and the registry's gate before them.
class Factories final : private COREREGISTRY::IFactorySet
{
public:
    Factories(SharedObject const& object, COREREGISTRY::ICoreRegistry* registry)
        : mRange(object.Range()), mGate(dynamic_cast<COREREGISTRY::IFactoryGate&>(*registry))
    {}
    Factories(Factories const&) = delete;
    Factories& operator=(Factories const&) = delete;
    ~Factories() { mGate.Open(*this); }

    bool AreAroundThisThread() const { return mGate.IsInside(*this); }
    /// Until this object goes, to all other threads; returns when nobody is inside.
    void Close() { mGate.Close(*this); }
    void Remove() { mGate.Remove(*this); }

private:
    bool Has(std::type_info const& type) const override { return mRange.Has(&type); }

    SYSTEM::MemoryRange const mRange;
    COREREGISTRY::IFactoryGate& mGate;
};

std::string Objects(int32 count) { return std::to_string(count) + (count == 1 ? " object" : " objects"); }
} // namespace

PlugIn::PlugIn(std::string file, COREREGISTRY::ICoreRegistry* registry)
    : mFile(std::move(file)), mRegistry(registry)
{}

bool PlugIn::Start(std::string& error)
{
    if (!mObject.Load(mFile, error))
        return false;
    auto* const init = mObject.Find<PlugInFunction>(kPlugInInit);
    if (!init)
    {
        error = mFile + ": no function " + kPlugInInit;
        mObject.Unload();
        return false;
    }
    mObjects = mObject.Find<ObjectsFunction>(kPlugInObjects);
    // Nobody else gets an object of a plug-in that has not started: what it has then is its own.
    Factories factories(mObject, mRegistry);
    if (!factories.AreAroundThisThread())
        factories.Close();
    int32 const before = mObjects ? mObjects() : 0;
    if (int const result = init(mRegistry); result != kNoError)
    {
        error = mFile + ": " + kPlugInInit + " answered " + std::to_string(result);
        // It may have left something behind. What was there before belongs to another plug-in: the same file,
        // loaded under another name.
        if (mObjects && mObjects() <= before)
            mObject.Unload();
        mObject.LeaveLoaded();
        return false;
    }
    mOwnObjects = mObjects ? mObjects() : 0;
    return true;
}

void PlugIn::Shutdown()
{
    CallShutdown();
    mObject.LeaveLoaded();
}

void PlugIn::CallShutdown() const
{
    if (auto* const shutdown = mObject.Find<PlugInFunction>(kPlugInShutdown))
        shutdown(mRegistry);
}

bool PlugIn::Stop(std::string& error)
{
    Factories factories(mObject, mRegistry);
    if (factories.AreAroundThisThread())
    {
        error = mFile +
                ": not unloaded: one of its own factories asks for it, whose code would go; ask when the "
                "factory has returned";
        return false;
    }
    // Asked before anybody is kept out, too: a refusal should cost nobody anything.
    if (IsRefused(error))
        return false;
    factories.Close();
    if (IsRefused(error))
        return false;
    CallShutdown();
    factories.Remove();
    std::string const reason = TakeOut();
    mObject.LeaveLoaded();
    error = reason.empty() ? "" : mFile + ": shut down, but its code stays in memory: " + reason;
    return true;
}

bool PlugIn::IsRefused(std::string& error) const
{
    int32 const count = mObjects ? mObjects() - mOwnObjects : 0;
    if (count <= 0)
        return false;
    error = mFile + ": not unloaded: " + Objects(count) + " of its classes " + (count == 1 ? "is" : "are") +
            " in use; release " + (count == 1 ? "it" : "them") + " first";
    return true;
}

std::string PlugIn::TakeOut()
{
    if (!mObjects)
        return std::string("it has no function ") + kPlugInObjects + " to say whether its objects are gone";
    if (int32 const count = mObjects(); count != 0)
        return Objects(count) + " of its classes " + (count == 1 ? "is" : "are") + " left";
    if (!LetOtherThreadsLeave())
        return "another thread may be in it";
    return mObject.Unload()
               ? ""
               : "somebody else has loaded it, or symbols that are unique in the process keep it";
}
} // namespace KORVA::HOST
