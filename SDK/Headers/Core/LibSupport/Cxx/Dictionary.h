// The dictionary from numbers to values and objects.
#pragma once

#include <tessio/Cxx/DictionaryValues.h>
#include <tessio/Cxx/SnapshotIterator.h>

#include <cstddef>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace KORVA::CXX
{
/// Owns a dictionary. Copies share it; `Clone` makes another one. Used by one thread at a time.
class Dictionary : public Handle<IDictionary>
{
public:
    using Handle::Handle;

    /// A value of the snapshot that a range goes over. It keeps the snapshot alive and does not change when
    /// the dictionary does.
    class Value
    {
    public:
        /// What the entry holds.
        ValueKind Kind() const { return KindOf(*mSnapshot, mKey).value_or(ValueKind::kObject); }

        /// As `Dictionary::Get`; what is borrowed lives as long as this value or a copy of it.
        template <OwnedValue T>
        Result<T> Get() const
        {
            return GetValue<T>(*mSnapshot, mKey);
        }
        /// The same for what is borrowed.
        template <BorrowedValue T>
        Result<T> Get() const&
        {
            return GetValue<T>(*mSnapshot, mKey);
        }
        /// A temporary lends nothing.
        template <BorrowedValue T>
        Result<T> Get() const&& = delete;

    private:
        friend class Dictionary;
        Value(TInterfacePtr<IDictionary> snapshot, unsigned int key)
            : mSnapshot(std::move(snapshot)), mKey(key)
        {}

        TInterfacePtr<IDictionary> mSnapshot;
        unsigned int mKey;
    };

    /// A key and its value, for `auto [key, value]`.
    struct Entry
    {
        /// The entry's key.
        unsigned int key;
        /// What is under it.
        Value value;
    };

    /// A new, empty dictionary; `kNoObject` when the library is not there.
    static Result<Dictionary> Create() { return CXX::Create<Dictionary>(IO::IID_DICTIONARY); }

    /// The value under `key` as a `T`: see `GetValue`.
    template <OwnedValue T>
    Result<T> Get(unsigned int key) const
    {
        return GetValue<T>(**this, key);
    }
    /// The value under `key` without a copy. It lives until the entry is replaced or removed, or the
    /// dictionary dies, unless somebody else (a clone, a snapshot) shares the value.
    template <BorrowedValue T>
    Result<T> Get(unsigned int key) const&
    {
        return GetValue<T>(**this, key);
    }
    /// A temporary lends nothing.
    template <BorrowedValue T>
    Result<T> Get(unsigned int key) const&& = delete;

    /// What is under `key`; `kNoEntry` when there is nothing.
    Result<ValueKind> Kind(unsigned int key) const { return KindOf(**this, key); }

    /// Puts a number under `key`, replacing what is there. Cannot fail.
    template <Number T>
    void Set(unsigned int key, T value)
    {
        if constexpr (std::same_as<T, long>)
            (*this)->Put(key, static_cast<std::conditional_t<sizeof(long) == 8, long long, int>>(value));
        else if constexpr (std::same_as<T, unsigned long>)
            (*this)->Put(
                key,
                static_cast<std::conditional_t<sizeof(long) == 8, unsigned long long, unsigned int>>(value));
        else
            (*this)->Put(key, value);
    }

    /// Puts an identifier under `key`, replacing what is there. Cannot fail.
    void Set(unsigned int key, GUID const& value) { (*this)->Put(key, value); }

    /// Copies a text. `kEmptyValue`, `kTooLarge` or `kBadText` (UTF-8 that is not well-formed), and what is
    /// there stays: a dictionary can't keep an empty text, so remove the entry instead.
    template <Text T>
    Result<void> Set(unsigned int key, T const& text)
    {
        if constexpr (UTF16Text<T> && !std::same_as<T, STRING::CoreString>)
            return PutUnits(key, text);
        else
        {
            Result<STRING::CoreString> const converted = ToCoreString(text);
            if (!converted)
                return Error(kBadText, "set", DETAIL::KeyText(key));
            return PutUnits(key, converted->view());
        }
    }

    /// Copies bytes. `kEmptyValue` or `kTooLarge`, and what is there stays.
    Result<void> Set(unsigned int key, std::span<unsigned char const> bytes)
    {
        if (bytes.empty())
            return Error(kEmptyValue, "set", DETAIL::KeyText(key));
        if (bytes.size() > kMostBytes)
            return Error(kTooLarge, "set", DETAIL::KeyText(key));
        (*this)->Put(key, bytes.data(), static_cast<int>(bytes.size()));
        return {};
    }
    /// Copies bytes. `kEmptyValue` or `kTooLarge`, and what is there stays.
    Result<void> Set(unsigned int key, std::span<std::byte const> bytes)
    {
        return Set(key, std::span(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size()));
    }

    /// Shares an object. `kNoObject` for an empty handle, `kOwnContainer` for this very dictionary, and what
    /// is there stays. Objects that are not persistent can be put; saving leaves them out.
    template <class I>
    Result<void> Set(unsigned int key, Handle<I> const& object)
    {
        return PutObject(key, object.Pointer().Get());
    }
    /// The same for the pointer that the interfaces pass.
    template <class I>
    Result<void> Set(unsigned int key, TInterfacePtr<I> const& object)
    {
        return PutObject(key, object.Get());
    }

    /// Whether there is an entry.
    bool Contains(unsigned int key) const { return (*this)->Get(key) != nullptr; }

    /// Removes the entry; whether there was one.
    bool Remove(unsigned int key)
    {
        bool const isThere = Contains(key);
        (*this)->Remove(key);
        return isThere;
    }

    /// The number of entries.
    std::size_t Size() const { return (*this)->Size(); }
    /// Whether there is none.
    bool IsEmpty() const { return Size() == 0; }
    /// Removes every entry.
    void Clear() { (*this)->Clear(); }

    /// Another dictionary with the same entries, sharing their values.
    Dictionary Clone() const
    {
        TInterfacePtr<IDictionary> copy;
        static_cast<void>((*this)->Clone(copy));
        return Dictionary(std::move(copy));
    }

    /// What `IDictionary::Equals` of the left one says: as many entries, and each plain value of the left one
    /// is equal, after conversion to its own type, to that under the same key on the right. So 5 as any
    /// number type equals 5 as any other, objects of other kinds all pass (and are logged), and sides that
    /// hold such may not be exchanged. `IsSame` tells whether two handles are on one dictionary.
    friend bool operator==(Dictionary const& a, Dictionary const& b) { return a->Equals(*b); }

    /// The entries as they are now, in ascending key order, to go over, sort or keep: later changes of the
    /// dictionary don't touch them, and changing it meanwhile is safe. The values are shared, not copied.
    std::vector<Entry> Entries() const
    {
        struct Collector final : IDictionary::IDictionaryFunctor
        {
            explicit Collector(TInterfacePtr<IDictionary> of) : snapshot(std::move(of)) {}
            bool OnEntry(unsigned int key, IObject*) override
            {
                entries.push_back({key, Value(snapshot, key)});
                return false;
            }
            TInterfacePtr<IDictionary> snapshot;
            std::vector<Entry> entries;
        };
        Collector collector{Clone().Pointer()};
        collector.snapshot->ForEach(collector);
        return std::move(collector.entries);
    }

    /// For `for (auto [key, value] : dictionary)`: goes over `Entries` as they are at this call.
    SnapshotIterator<Entry> begin() const { return SnapshotIterator<Entry>(Entries()); }
    /// The end of every range.
    std::default_sentinel_t end() const { return {}; }

private:
    static constexpr std::size_t kMostBytes = std::numeric_limits<int>::max();

    Result<void> PutUnits(unsigned int key, std::u16string_view text)
    {
        if (text.empty())
            return Error(kEmptyValue, "set", DETAIL::KeyText(key));
        if (text.size() > kMostBytes / sizeof(UniChar))
            return Error(kTooLarge, "set", DETAIL::KeyText(key));
        (*this)->Put(key, text.data(), static_cast<int>(text.size()));
        return {};
    }

    Result<void> PutObject(unsigned int key, IObject* object)
    {
        if (!object)
            return Error(IO::kNoObject, "set", DETAIL::KeyText(key));
        if (object == static_cast<IObject*>(Pointer().Get()))
            return Error(kOwnContainer, "set", DETAIL::KeyText(key));
        // The object that is there already is refused, and logged, by the interface.
        if ((*this)->Get(key) != object)
            (*this)->Put(key, object);
        return {};
    }
};
} // namespace KORVA::CXX
