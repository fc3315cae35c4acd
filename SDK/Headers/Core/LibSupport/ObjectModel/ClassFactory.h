// Class factories from a table of class ids.
#pragma once

#include <tessio/ObjectModel/IClassFactory.h>
#include <tessio/ObjectModel/TObject.h>

namespace KORVA
{
/// Creates a default-constructed `T` with the count 1.
template <class T>
IObject* New()
{
    return new T;
}

/// A row of a factory: the creating function and the class ids under which it is called.
template <IObject* (*Create)(), GUID const&... ClassIds>
struct Makes
{
    /// A new object with the count 1 where `classId` is one of the row's, else null.
    static IObject* Try(GUID const& classId) { return ((classId == ClassIds) || ...) ? Create() : nullptr; }
};

/// A factory that serves the ids of its rows and answers -1004 and null for any other.
template <class... Rows>
class TClassFactory : public TObject<IClassFactory>
{
public:
    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        IObject* object = nullptr;
        static_cast<void>(((object = Rows::Try(classId)) || ...));
        *out = object;
        return object ? kNoError : kIdNotFound;
    }
};
} // namespace KORVA
