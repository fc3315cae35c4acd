// A persistent map from strings to strings.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA
{
/// Class id `IO::IID_STRING_DICTIONARY`; the object does not answer that id. Keys are ordered by code unit.
/// Used by one thread at a time. Reading from a stream merges into what is there.
class TESSIO_EXPORT IStringDictionary : public IObject
{
public:
    /// What `ForEach` calls.
    class TESSIO_EXPORT IForEachFunctor
    {
    public:
        virtual ~IForEachFunctor() = default;
        /// The dictionary must not be changed meanwhile.
        virtual void OnEntry(STRING::CoreString const& key, STRING::CoreString const& value) = 0;
    };

    /// Puts `value` under `key`, replacing what is there.
    virtual void Put(STRING::CoreString const& key, STRING::CoreString const& value) = 0;
    /// True and a copy of the value; false and `value` unchanged when the key is absent.
    virtual bool Get(STRING::CoreString const& key, STRING::CoreString& value) const = 0;
    /// Whether there is an entry under `key`.
    virtual bool Has(STRING::CoreString const& key) const = 0;
    /// Removes the entry under `key`, if there is one.
    virtual void Remove(STRING::CoreString const& key) = 0;
    /// Removes every entry.
    virtual void Clear() = 0;
    /// The number of entries.
    virtual uint32 Size() const = 0;
    /// Calls the functor with each entry in ascending key order.
    virtual void ForEach(IForEachFunctor& functor) const = 0;
};
} // namespace KORVA
