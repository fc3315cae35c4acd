// The root of every interface: reference counting, interface queries and aggregation of helper objects.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/GUID.h>
#include <tessio/ObjectModel/Types.h>

#include <map>

namespace KORVA
{
class IObject;

/// Helper objects by the interface id under which they answer. Owns one reference to each; never holds null.
using AggregateMap = std::map<GUID, IObject*>;

/// A reference-counted component. The order of the operations is the binary contract with hosts and
/// plug-ins: an interface that derives from this one adds its own operations after these slots.
class TESSIO_EXPORT IObject
{
public:
    /// Finds the facet of this object that answers `iid`.
    /// Result 0, or -1004 when there is none. `out` receives the facet, borrowed: no reference is added and
    /// the caller must not release it. On failure `out` is not written. A null `out` only tests presence.
    /// An object answers its own interface id only where its class says so.
    virtual ErrCode QueryInterface(GUID const& iid, IObject** out) const = 0;

    /// Takes a reference; the result is the new count. Safe from any thread.
    virtual int32 AddRef() = 0;

    /// Drops a reference; the result is the new count. At 0 the object is gone. Safe from any thread.
    virtual int32 Release() = 0;

    /// Shares `object` and makes it answer `iid`, replacing (and releasing) another object known under that
    /// id, which is released first: hold a reference of your own to an object that only that one holds. Null,
    /// or the object already known there, changes nothing. Not thread-safe: set up aggregates before an
    /// object is shared between threads.
    virtual void Aggregate(IObject* object, GUID iid) = 0;

    /// Releases and forgets the object known under `iid`, if any.
    virtual void UnAggregate(GUID const& iid) = 0;

    /// Releases every aggregated object in key order and forgets them.
    virtual void ClearAggregates() = 0;

    /// The table itself, borrowed; valid while the object lives, changed by the three operations above.
    virtual AggregateMap const& GetAggregates() const = 0;

    /// Objects die by `Release` only.
    virtual ~IObject() = default;
};
} // namespace KORVA
