// What a host asks of its registry before it takes the code of factories out of memory.
#pragma once

#include <tessio/ObjectModel/Export.h>

#include <typeinfo>

namespace KORVA::COREREGISTRY
{
/// Says which factories are meant.
class IFactorySet
{
public:
    /// By the type that the factory has at run time. Called while the registry is locked: must not use it.
    virtual bool Has(std::type_info const& type) const = 0;

protected:
    ~IFactorySet() = default;
};

/// Found on the registry of `CreateCoreRegistry` by its run-time type (`dynamic_cast`). Safe from any thread.
class TESSIO_EXPORT IFactoryGate
{
public:
    /// Whether the calling thread is inside a call of one of them that the registry makes. Then `Close` would
    /// wait for its own caller.
    virtual bool IsInside(IFactorySet const& factories) = 0;

    /// Asks them no more, nor those of them that are registered later, and waits until nobody is inside one
    /// or about to release one. Exempt is the calling thread, which must not be inside; and a thread that is
    /// inside already goes on to be served by them until it comes out. Others are told -1004, as if the
    /// factories were not registered. Borrows `factories` until `Open`.
    virtual void Close(IFactorySet const& factories) = 0;

    /// Ends what `Close` began with the same object.
    virtual void Open(IFactorySet const& factories) = 0;

    /// Unregisters them.
    virtual void Remove(IFactorySet const& factories) = 0;

protected:
    ~IFactoryGate() = default;
};
} // namespace KORVA::COREREGISTRY
