// The common implementation of IObject, to derive component classes from.
#pragma once

#include "ObjectModel/IObject.h"

#include <atomic>

namespace KORVA
{
/// Implements `IObject` for the interface `I`. A new object has the count 1, owned by its creator.
/// The count is atomic; the aggregate table is not locked.
template <class I>
class TObject : public I
{
public:
    TObject() = default;
    TObject(TObject const&) = delete;
    TObject& operator=(TObject const&) = delete;

    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        auto const found = mAggregates.find(iid);
        if (found == mAggregates.end())
            return kIdNotFound;
        if (out)
            *out = found->second;
        return kNoError;
    }

    int32 AddRef() override { return mRefCount.fetch_add(1) + 1; }

    int32 Release() override
    {
        int32 const count = mRefCount.fetch_sub(1) - 1;
        if (count == 0)
            delete this;
        return count;
    }

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

    void UnAggregate(GUID const& iid) override
    {
        auto const found = mAggregates.find(iid);
        if (found == mAggregates.end())
            return;
        found->second->Release();
        mAggregates.erase(found);
    }

    void ClearAggregates() override
    {
        for (auto const& [iid, object] : mAggregates)
            object->Release();
        mAggregates.clear();
    }

    AggregateMap const& GetAggregates() const override { return mAggregates; }

protected:
    ~TObject() override { TObject::ClearAggregates(); }

private:
    friend struct KORVA::LayoutProbe;

    AggregateMap mAggregates;
    std::atomic<int32> mRefCount{1};
};
} // namespace KORVA
