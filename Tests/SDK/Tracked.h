// A component that tells what happens to it.
#pragma once

#include <tessio/ObjectModel/TObject.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
/// What happened, in order: "+a" a reference to `a` was taken, "-a" dropped, "~a" the object died.
using Events = std::vector<std::string>;

/// Records its references. `onDeath` runs while the object is destroyed.
template <class I>
class TTracked : public TObject<I>
{
public:
    TTracked(std::string name, Events& events, std::function<void()> onDeath = {})
        : mName(std::move(name)), mEvents(events), mOnDeath(std::move(onDeath))
    {}

    ~TTracked() override
    {
        mEvents.push_back("~" + mName);
        if (mOnDeath)
            mOnDeath();
    }

    int32 AddRef() override
    {
        mEvents.push_back("+" + mName);
        return TObject<I>::AddRef();
    }

    int32 Release() override
    {
        mEvents.push_back("-" + mName);
        return TObject<I>::Release();
    }

private:
    std::string mName;
    Events& mEvents;
    std::function<void()> mOnDeath;
};

using Tracked = TTracked<IObject>;

/// The count, read by taking a reference and dropping it again.
inline int32 CountOf(IObject& object)
{
    object.AddRef();
    return object.Release();
}
} // namespace KORVA::TESTS
