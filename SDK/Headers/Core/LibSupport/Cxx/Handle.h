// Owning handles of components.
#pragma once

#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Cxx/Result.h>
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IPersistentData.h>

#include <concepts>
#include <string>
#include <utility>

namespace KORVA::CXX
{
namespace DETAIL
{
/// A new object of the class `classId`, adopted; empty when none came. One that came counts, whatever code
/// came with it. `I` must be the interface of that class.
template <class I>
TInterfacePtr<I> CreateComponent(GUID const& classId)
{
    TInterfacePtr<I> object;
    if (COREREGISTRY::ICoreRegistry* const registry = COREREGISTRY::GetCoreRegistry())
        static_cast<void>(registry->CreateInstance(classId, object.Out()));
    return object;
}
} // namespace DETAIL

/// Owns one reference to a component behind the interface `I`. Copies share the component. As with every
/// smart pointer, a handle that was moved from is empty, and only to be destroyed or assigned to.
///
/// `*handle` and `handle->` reach the interface itself, for what this layer has no word for.
template <class I>
class Handle
{
public:
    /// The interface.
    using Interface = I;

    /// Takes over the reference of `pointer`, which must not be empty.
    explicit Handle(TInterfacePtr<I> pointer) noexcept : mPointer(std::move(pointer)) {}

    /// Shares an object that the caller has.
    explicit Handle(I& object) { mPointer.Share(&object); }

    /// The interface, borrowed.
    I& operator*() const noexcept { return *mPointer; }
    /// Into the interface.
    I* operator->() const noexcept { return mPointer.Get(); }
    /// The reference itself, borrowed.
    TInterfacePtr<I> const& Pointer() const noexcept { return mPointer; }

    /// False for a handle that was moved from.
    explicit operator bool() const noexcept { return static_cast<bool>(mPointer); }

    /// Whether both are the same object.
    template <class Other>
    bool IsSame(Handle<Other> const& other) const
    {
        return static_cast<IObject const*>(mPointer.Get()) ==
               static_cast<IObject const*>(other.Pointer().Get());
    }

private:
    TInterfacePtr<I> mPointer;
};

/// A component of any class.
using Object = Handle<IObject>;

/// A type that owns a component: `Handle<I>` or a class made from one.
template <class T>
concept HandleType = requires
{
    typename T::Interface;
}
&&std::derived_from<T, Handle<typename T::Interface>>&&
    std::constructible_from<T, TInterfacePtr<typename T::Interface>>;

/// The handle `T` on the same object. `kOtherClass` when the object is no `T::Interface`, which is asked of
/// its run-time type: many objects don't answer their own interface id.
template <HandleType T, class I>
Result<T> As(Handle<I> const& object)
{
    auto* const wanted = dynamic_cast<typename T::Interface*>(static_cast<IObject*>(object.Pointer().Get()));
    if (!wanted)
        return Error(kOtherClass, "use the object as what is asked for");
    TInterfacePtr<typename T::Interface> pointer;
    pointer.Share(wanted);
    return T(std::move(pointer));
}

/// A new object of the class `classId`, made through the process's registry. `kNoObject` when there is no
/// registry or nothing makes that class; `kOtherClass` when its objects are no `T::Interface`.
template <HandleType T>
Result<T> Create(GUID const& classId)
{
    auto object = DETAIL::CreateComponent<IObject>(classId);
    if (!object)
        return Error(IO::kNoObject, "create an object of class", GUIDToText(classId));
    Result<T> wanted = As<T>(Object(std::move(object)));
    if (!wanted)
        return Error(kOtherClass, "create an object of class", GUIDToText(classId));
    return wanted;
}

/// The class id under which the object is saved; `kNotPersistent` when it is not. A class that chooses its id
/// by the stream answers its usual one.
template <class I>
Result<GUID> ClassIdOf(Handle<I> const& object)
{
    IObject* found = nullptr;
    if (object->QueryInterface(IO::IPERSISTENT_DATA_EX, &found) == kNoError && found)
        return static_cast<IO::IPersistentDataEx*>(found)->GetUID();
    if (object->QueryInterface(IO::IPERSISTENT_DATA, &found) != kNoError || !found)
        return Error(kNotPersistent, "tell the class of the object");
    return static_cast<IO::IPersistentData*>(found)->GetUID();
}
} // namespace KORVA::CXX
