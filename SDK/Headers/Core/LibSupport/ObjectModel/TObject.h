// The common implementation of IObject, to derive component classes from.
#pragma once

#include <tessio/ObjectModel/IObject.h>

#include <atomic>

namespace KORVA
{
/// How many objects live whose class is compiled into this program or shared object. Each has a number of its
/// own, which is why it is hidden: a plug-in may be unloaded when its own number says so (Host/PlugIn.h).
[[gnu::visibility("hidden")]] inline std::atomic<int32> sLiveObjects{0};

/// Implements `IObject` for the interface `I`. A new object has the count 1, owned by its creator.
/// The count is atomic; the aggregate table is not locked.
template <class I>
class TObject : public I
{
public:
    /// With the count 1 and no aggregates. Hidden, as the destructor is: another shared object's must not be
    /// called in their stead and count these objects as its own.
    [[gnu::visibility("hidden")]] TObject() noexcept { sLiveObjects.fetch_add(1, std::memory_order_relaxed); }
    TObject(TObject const&) = delete;
    TObject& operator=(TObject const&) = delete;

    /// Answers from the aggregates alone: a class that is to answer its own interface id overrides this.
    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        auto const found = mAggregates.find(iid);
        if (found == mAggregates.end())
            return kIdNotFound;
        if (out)
            *out = found->second;
        return kNoError;
    }

    /// Atomic.
    int32 AddRef() override { return mRefCount.fetch_add(1) + 1; }

    /// Atomic; deletes the object with the last reference.
    int32 Release() override
    {
        int32 const count = mRefCount.fetch_sub(1) - 1;
        if (count == 0)
            delete this;
        return count;
    }

    /// Not locked, nor are the two that follow.
    void Aggregate(IObject* object, GUID iid) override
    {
        if (!object)
            return;
        auto const [entry, inserted] = mAggregates.try_emplace(iid, object);
        if (!inserted)
        {
            if (entry->second == object)
                return;
            entry->second->Release();
        }
        object->AddRef();
        entry->second = object;
    }

    /// Releases the one aggregate.
    void UnAggregate(GUID const& iid) override
    {
        auto const found = mAggregates.find(iid);
        if (found == mAggregates.end())
            return;
        found->second->Release();
        mAggregates.erase(found);
    }

    /// Releases all in the order of `std::less<GUID>`.
    void ClearAggregates() override
    {
        for (auto const& [iid, object] : mAggregates)
            object->Release();
        mAggregates.clear();
    }

    /// Not a copy.
    AggregateMap const& GetAggregates() const override { return mAggregates; }

protected:
    /// Releases the aggregates.
    [[gnu::visibility("hidden")]] ~TObject() override
    {
        TObject::ClearAggregates();
        // What the object did happens before its plug-in is unloaded.
        sLiveObjects.fetch_sub(1, std::memory_order_release);
    }

private:
    friend struct KORVA::LayoutProbe;

    AggregateMap mAggregates;
    std::atomic<int32> mRefCount{1};
};
} // namespace KORVA
