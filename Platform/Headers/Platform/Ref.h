// Counted references to the platform layer's own objects.
#pragma once

#include <atomic>
#include <utility>

namespace KORVA::PLATFORM
{
/// Base of objects held by `Ref`. Born with no reference.
class Counted
{
public:
    Counted() = default;
    Counted(Counted const&) = delete;
    Counted& operator=(Counted const&) = delete;

protected:
    ~Counted() = default;

private:
    template <class T>
    friend class Ref;

    mutable std::atomic<int> mReferences{0};
};

/// Shares an object, or is null. One pointer wide. Copies may be made and dropped from any thread.
template <class T>
class Ref
{
public:
    Ref() = default;
    explicit Ref(T* object) : mObject(object)
    {
        if (mObject)
            ++mObject->mReferences;
    }
    Ref(Ref const& other) : Ref(other.mObject) {}
    Ref(Ref&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
    Ref& operator=(Ref other) noexcept
    {
        std::swap(mObject, other.mObject);
        return *this;
    }
    ~Ref()
    {
        if (mObject && --mObject->mReferences == 0)
            delete mObject;
    }

    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    explicit operator bool() const { return mObject != nullptr; }

private:
    T* mObject = nullptr;
};
} // namespace KORVA::PLATFORM
