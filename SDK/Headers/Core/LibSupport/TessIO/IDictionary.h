// A persistent map from numbers to values and objects.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

namespace KORVA
{
/// Class id `IO::IID_DICTIONARY`, which the object answers with itself. Used by one thread at a time.
///
/// Plain values are wrapped in objects that keep a number both as a 64-bit integer and as a double, so that
/// a number put as one type can be fetched as any other. Any object can be put; those without persistence
/// are not saved. Values are shared, not copied.
class TESSIO_EXPORT IDictionary : public IObject
{
public:
    /// What `ForEach` calls.
    class TESSIO_EXPORT IDictionaryFunctor
    {
    public:
        virtual ~IDictionaryFunctor() = default;
        /// `value` is borrowed. True ends the walk. The dictionary must not be changed meanwhile.
        virtual bool OnEntry(unsigned int key, IObject* value) = 0;
    };

    /// Copies the entries to `target`, sharing the values. An empty pointer gets a new dictionary; one that
    /// holds a dictionary has it cleared first, and filled only when it is of this class. Always 0.
    virtual ErrCode Clone(TInterfacePtr<IDictionary>& target) const = 0;
    /// Releases every value and forgets it.
    virtual void Clear() = 0;
    /// Releases the value under `key`, if there is one, and forgets it.
    virtual void Remove(unsigned int key) = 0;

    /// Puts a value under `key`, replacing what is there.
    ///@{
    virtual void Put(unsigned int key, signed char value) = 0;
    virtual void Put(unsigned int key, unsigned char value) = 0;
    virtual void Put(unsigned int key, short value) = 0;
    virtual void Put(unsigned int key, unsigned short value) = 0;
    virtual void Put(unsigned int key, int value) = 0;
    virtual void Put(unsigned int key, unsigned int value) = 0;
    virtual void Put(unsigned int key, long long value) = 0;
    virtual void Put(unsigned int key, unsigned long long value) = 0;
    virtual void Put(unsigned int key, float value) = 0;
    virtual void Put(unsigned int key, double value) = 0;
    virtual void Put(unsigned int key, GUID value) = 0;
    ///@}
    /// Copies `length` bytes. Null, or a length below 1, is logged and changes nothing.
    virtual void Put(unsigned int key, unsigned char const* data, int length) = 0;
    /// Copies `count` UTF-16 units. Null, or a count below 1, is logged and changes nothing.
    virtual void Put(unsigned int key, UniChar const* data, int count) = 0;
    /// Shares `value`. Null removes what is there; the very object that is there is logged and stays. What is
    /// there is released before `value` is shared: when it dies by that, and held the last reference to
    /// `value`, `value` is dead too. So hold a reference of your own to what you take out of an entry to put
    /// it in that entry's place.
    virtual void Put(unsigned int key, IObject* value) = 0;

    /// Number getters: 0; -1 and `value` unchanged when the key is absent or its value not a plain one. The
    /// type does not matter: integers are cut to the width asked for, buffers and identifiers give 0.
    ///@{
    virtual ErrCode Get(unsigned int key, signed char& value) const = 0;
    virtual ErrCode Get(unsigned int key, unsigned char& value) const = 0;
    virtual ErrCode Get(unsigned int key, short& value) const = 0;
    virtual ErrCode Get(unsigned int key, unsigned short& value) const = 0;
    virtual ErrCode Get(unsigned int key, int& value) const = 0;
    virtual ErrCode Get(unsigned int key, unsigned int& value) const = 0;
    virtual ErrCode Get(unsigned int key, long long& value) const = 0;
    virtual ErrCode Get(unsigned int key, unsigned long long& value) const = 0;
    virtual ErrCode Get(unsigned int key, float& value) const = 0;
    virtual ErrCode Get(unsigned int key, double& value) const = 0;
    ///@}
    /// 0; -1 as above; 10 and `value` unchanged when the value is not an identifier.
    virtual ErrCode Get(unsigned int key, GUID& value) const = 0;
    /// 0 and the value's own bytes, borrowed while the value lives; -1 as above; 10 when the value is not a
    /// byte buffer: `data` is then unchanged, `length` is nevertheless that of its buffer, in bytes.
    virtual ErrCode Get(unsigned int key, unsigned char const** data, int& length) const = 0;
    /// The same for UTF-16 units; `count` is the buffer's length halved.
    virtual ErrCode Get(unsigned int key, UniChar const** data, int& count) const = 0;
    /// The object under `key`, borrowed, or null.
    virtual IObject* Get(unsigned int key) const = 0;

    /// The number of entries.
    virtual uint32 Size() const = 0;
    /// Same size, and `SubSet`.
    virtual bool8 Equals(IDictionary const& other) const = 0;
    /// Whether each plain value is found under its key in `other`, equal after conversion to its own type.
    /// Entries that are no plain values are logged and pass. A value read with no type never is equal.
    virtual bool8 SubSet(IDictionary const& other) const = 0;
    /// Calls the functor with each entry in ascending key order until it answers true.
    virtual void ForEach(IDictionaryFunctor& functor) const = 0;
};
} // namespace KORVA
