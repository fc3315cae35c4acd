// The smart pointer that holds components.
#pragma once

#include <tessio/ObjectModel/IObject.h>

#include <utility>

namespace KORVA
{
/// Owns one reference to a component, or is empty. The two ways in are named, because mixing them up leaks
/// or kills the object: `Adopt` for what a creating call hands over, `Share` for what one only borrows.
template <class I>
class TInterfacePtr
{
public:
    /// Empty.
    TInterfacePtr() = default;
    /// Takes a reference of its own.
    TInterfacePtr(TInterfacePtr const& other) { Share(other.mInterface); }
    /// Takes over the reference; `other` is empty afterwards.
    TInterfacePtr(TInterfacePtr&& other) noexcept : mInterface(other.Detach()) {}
    /// Releases what is held.
    virtual ~TInterfacePtr() { Reset(); }

    /// Shares what `other` holds and releases what was held.
    TInterfacePtr& operator=(TInterfacePtr const& other)
    {
        if (this != &other)
            Share(other.mInterface);
        return *this;
    }

    /// Releases what was held and takes over the reference of `other`, which is empty afterwards.
    TInterfacePtr& operator=(TInterfacePtr&& other) noexcept
    {
        if (this != &other)
            Adopt(other.Detach());
        return *this;
    }

    /// Releases what is held and takes over the caller's reference to `object` (null empties).
    void Adopt(I* object)
    {
        I* const old = std::exchange(mInterface, nullptr);
        if (old)
            old->Release();
        mInterface = object;
    }

    /// Takes a reference of its own to `object` (null empties), then releases what was held: sharing the
    /// object already held is safe.
    void Share(I* object)
    {
        if (object)
            object->AddRef();
        I* const old = std::exchange(mInterface, nullptr);
        if (old)
            old->Release();
        mInterface = object;
    }

    /// Releases what is held; the pointer is empty before the object learns of it.
    void Reset()
    {
        if (I* const old = std::exchange(mInterface, nullptr))
            old->Release();
    }

    /// Hands the held reference to the caller and is empty afterwards.
    [[nodiscard]] I* Detach() noexcept { return std::exchange(mInterface, nullptr); }

    /// The component, borrowed; null when empty.
    I* Get() const noexcept { return mInterface; }
    /// Into the component; the pointer must not be empty.
    ///@{
    I* operator->() const noexcept { return mInterface; }
    I& operator*() const noexcept { return *mInterface; }
    ///@}
    /// Whether it holds a component.
    explicit operator bool() const noexcept { return mInterface != nullptr; }

    /// Receives the object of a creating call and adopts it when the full expression ends.
    class OutParameter
    {
    public:
        /// For `owner`, borrowed.
        explicit OutParameter(TInterfacePtr& owner) : mOwner(owner) {}
        OutParameter(OutParameter const&) = delete;
        OutParameter& operator=(OutParameter const&) = delete;
        ~OutParameter() { mOwner.Adopt(static_cast<I*>(mObject)); }
        /// Where the creating call puts its object.
        operator IObject**() { return &mObject; }

    private:
        TInterfacePtr& mOwner;
        IObject* mObject = nullptr;
    };

    /// For `CreateInstance(id, pointer.Out())`: the pointer adopts what the call creates, or is emptied.
    /// The class id must be one whose objects are `I`s.
    [[nodiscard]] OutParameter Out() { return OutParameter(*this); }

private:
    friend struct KORVA::LayoutProbe;

    I* mInterface = nullptr;
};
} // namespace KORVA
