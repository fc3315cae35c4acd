// The dictionary from texts to texts.
#pragma once

#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/SnapshotIterator.h>
#include <tessio/Cxx/Text.h>
#include <tessio/TessIO/IStringDictionary.h>
#include <tessio/TessIO/RecordFormat.h>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::CXX
{
/// What a text can be fetched as.
template <class T>
concept OwnedText = std::same_as<T, std::u16string> || std::same_as<T, std::string>;

/// Owns a dictionary of texts. Copies share it. Keys and values may be empty, and each may be given in UTF-16
/// or in UTF-8. Used by one thread at a time.
class StringDictionary : public Handle<IStringDictionary>
{
public:
    using Handle::Handle;

    /// A key and its value, for `auto [key, value]`.
    struct Entry
    {
        /// The entry's key.
        std::u16string key;
        /// What is under it.
        std::u16string value;
    };

    /// A new, empty dictionary; `kNoObject` when the library is not there.
    static Result<StringDictionary> Create()
    {
        return CXX::Create<StringDictionary>(IO::IID_STRING_DICTIONARY);
    }

    /// A copy of the value, as `std::u16string` or, in UTF-8, as `std::string`. `kNoEntry` when there is
    /// none, `kBadText` for a key that is not well-formed UTF-8, or a value that UTF-8 can't say.
    template <OwnedText T = std::u16string, Text Key>
    Result<T> Get(Key const& key) const
    {
        Result<STRING::CoreString> const name = ToCoreString(key);
        if (!name)
            return name.error();
        STRING::CoreString value;
        if (!(*this)->Get(*name, value))
            return Error(kNoEntry, "get", Quoted(name->ToUTF8()));
        if constexpr (std::same_as<T, std::string>)
            return CXX::ToUTF8(value);
        else
            return std::u16string(value.view());
    }

    /// Copies both, replacing what is there. `kBadText` for UTF-8 that is not well-formed, `kTooLarge` for a
    /// text of 2^30 units and more; nothing is changed then.
    template <Text Key, Text Value>
    Result<void> Set(Key const& key, Value const& value)
    {
        Result<STRING::CoreString> const name = ToCoreString(key);
        if (!name)
            return name.error();
        Result<STRING::CoreString> const content = ToCoreString(value);
        if (!content)
            return content.error();
        if (std::max(name->size(), content->size()) > IO::kMostStringUnits)
            return Error(kTooLarge, "put the text");
        (*this)->Put(*name, *content);
        return {};
    }

    /// Whether there is an entry; false for a key that is not well-formed UTF-8.
    template <Text Key>
    bool Contains(Key const& key) const
    {
        Result<STRING::CoreString> const name = ToCoreString(key);
        return name && (*this)->Has(*name);
    }

    /// Removes the entry; whether there was one.
    template <Text Key>
    bool Remove(Key const& key)
    {
        Result<STRING::CoreString> const name = ToCoreString(key);
        if (!name || !(*this)->Has(*name))
            return false;
        (*this)->Remove(*name);
        return true;
    }

    /// The number of entries.
    std::size_t Size() const { return (*this)->Size(); }
    /// Whether there is none.
    bool IsEmpty() const { return Size() == 0; }
    /// Removes every entry.
    void Clear() { (*this)->Clear(); }

    /// Copies of the entries as they are now, in ascending key order (by UTF-16 unit).
    std::vector<Entry> Entries() const
    {
        struct Collector final : IStringDictionary::IForEachFunctor
        {
            void OnEntry(STRING::CoreString const& key, STRING::CoreString const& value) override
            {
                entries.push_back({std::u16string(key.view()), std::u16string(value.view())});
            }
            std::vector<Entry> entries;
        };
        Collector collector;
        (*this)->ForEach(collector);
        return std::move(collector.entries);
    }

    /// For `for (auto [key, value] : dictionary)`: goes over `Entries` as they are at this call.
    SnapshotIterator<Entry> begin() const { return SnapshotIterator<Entry>(Entries()); }
    /// The end of every range.
    std::default_sentinel_t end() const { return {}; }
};
} // namespace KORVA::CXX
