// What a dictionary's entry holds, and how it becomes a value of C++.
#pragma once

#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/Text.h>
#include <tessio/TessIO/IDictionary.h>

#include <cmath>
#include <concepts>
#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace KORVA::CXX
{
/// The number types of a dictionary, and `long` and `unsigned long`, which are kept as integers of their
/// size. Neither `bool` nor a character type: they would come back as numbers.
template <class T>
concept Number = std::same_as<T, signed char> || std::same_as<T, unsigned char> || std::same_as<T, short> ||
    std::same_as<T, unsigned short> || std::same_as<T, int> || std::same_as<T, unsigned int> ||
    std::same_as<T, long> || std::same_as<T, unsigned long> || std::same_as<T, long long> ||
    std::same_as<T, unsigned long long> || std::same_as<T, float> || std::same_as<T, double>;

/// What points into the dictionary's value instead of holding a copy.
template <class T>
concept BorrowedValue = std::same_as<T, std::u16string_view> ||
    std::same_as<T, std::span<unsigned char const>> || std::same_as<T, std::span<std::byte const>>;

/// What can be fetched as a value of its own.
template <class T>
concept OwnedValue = Number<T> || std::same_as<T, GUID> || std::same_as<T, std::u16string> ||
    std::same_as<T, std::string> || std::same_as<T, std::vector<unsigned char>> || HandleType<T>;

/// What can be fetched.
template <class T>
concept DictionaryValue = OwnedValue<T> || BorrowedValue<T>;

/// What an entry holds, as far as the interface tells. All numbers look alike: 5 may have been put as any of
/// the types, and only a fraction says that it was a floating one. A value that was read with no type or with
/// an unknown one looks like the number 0.
enum class ValueKind
{
    /// Of any of the ten types.
    kNumber,
    /// An identifier.
    kGUID,
    /// A buffer of bytes.
    kBytes,
    /// UTF-16 units.
    kText,
    /// Anything that is no plain value: another dictionary, a URI, a plug-in's object.
    kObject
};

namespace DETAIL
{
inline std::string KeyText(unsigned int key) { return "key " + std::to_string(key); }

inline Error EntryError(ErrCode code, unsigned int key) { return {code, "get", KeyText(key)}; }

/// The number as `T` holds it, from the two forms in which a dictionary keeps it.
template <std::integral T>
bool ToInteger(double floating, unsigned long long bits, T& value)
{
    constexpr double kExact = 9007199254740992.0;
    constexpr double kTopBit = 9223372036854775808.0;
    using Limits = std::numeric_limits<T>;
    // Up to there the floating form alone says everything; from there on integers are rounded in it.
    if (std::abs(floating) < kExact)
    {
        if (std::trunc(floating) != floating)
            return false;
        auto const whole = static_cast<long long>(floating);
        value = static_cast<T>(whole);
        return std::in_range<T>(whole);
    }
    if (floating > 0)
    {
        value = static_cast<T>(bits);
        return static_cast<double>(bits) == floating &&
               bits <= static_cast<unsigned long long>(Limits::max());
    }
    auto const whole = static_cast<long long>(bits);
    value = static_cast<T>(whole);
    return floating >= -kTopBit && static_cast<double>(whole) == floating && std::in_range<T>(whole);
}
} // namespace DETAIL

/// What `dictionary` holds under `key`, or `kNoEntry`.
inline Result<ValueKind> KindOf(IDictionary const& dictionary, unsigned int key)
{
    double number = 0;
    GUID id{};
    unsigned char const* bytes = nullptr;
    UniChar const* units = nullptr;
    int length = 0;
    if (!dictionary.Get(key))
        return DETAIL::EntryError(kNoEntry, key);
    if (dictionary.Get(key, number) != kNoError)
        return ValueKind::kObject;
    if (dictionary.Get(key, id) == kNoError)
        return ValueKind::kGUID;
    if (dictionary.Get(key, &bytes, length) == kNoError)
        return ValueKind::kBytes;
    return dictionary.Get(key, &units, length) == kNoError ? ValueKind::kText : ValueKind::kNumber;
}

/// The value under `key` as a `T`. What does not point into the value is a copy; a `BorrowedValue` lives
/// until the entry is replaced or removed and nobody else shares its value.
///
/// - A number: of whatever type it was put, where `T` holds it; `kOutOfRange` where an integer type can't
///   hold it or would cut its fraction, and where it is beyond `float`. Floating types round.
/// - `std::string`: the text in UTF-8, `kBadText` where it has a lone surrogate.
/// - A handle: the object itself, shared; `kWrongType` when it is of another class.
///
/// `kNoEntry` when there is no entry, `kWrongType` when it holds something else.
template <DictionaryValue T>
Result<T> GetValue(IDictionary const& dictionary, unsigned int key)
{
    Result<ValueKind> const kind = KindOf(dictionary, key);
    if (!kind)
        return kind.error();
    Error const wrongType = DETAIL::EntryError(IO::kWrongType, key);
    if constexpr (Number<T>)
    {
        double floating = 0;
        unsigned long long bits = 0;
        if (*kind != ValueKind::kNumber || dictionary.Get(key, floating) != kNoError ||
            dictionary.Get(key, bits) != kNoError)
            return wrongType;
        T value{};
        bool fits = true;
        if constexpr (std::integral<T>)
            fits = DETAIL::ToInteger(floating, bits, value);
        else
        {
            // Beyond the largest `float` the conversion is undefined, not infinite.
            fits = !std::isfinite(floating) || std::abs(floating) <= std::numeric_limits<T>::max();
            if (fits)
                value = static_cast<T>(floating);
        }
        if (!fits)
            return DETAIL::EntryError(kOutOfRange, key);
        return value;
    }
    else if constexpr (std::same_as<T, GUID>)
    {
        GUID id{};
        if (dictionary.Get(key, id) != kNoError)
            return wrongType;
        return id;
    }
    else if constexpr (std::same_as<T, std::u16string_view>)
    {
        UniChar const* units = nullptr;
        int count = 0;
        if (dictionary.Get(key, &units, count) != kNoError)
            return wrongType;
        return std::u16string_view(units, static_cast<std::size_t>(count));
    }
    else if constexpr (std::same_as<T, std::span<unsigned char const>>)
    {
        unsigned char const* bytes = nullptr;
        int length = 0;
        if (dictionary.Get(key, &bytes, length) != kNoError)
            return wrongType;
        return std::span<unsigned char const>(bytes, static_cast<std::size_t>(length));
    }
    else if constexpr (std::same_as<T, std::span<std::byte const>>)
        return GetValue<std::span<unsigned char const>>(dictionary, key)
            .transform([](std::span<unsigned char const> bytes) { return std::as_bytes(bytes); });
    else if constexpr (std::same_as<T, std::u16string>)
        return GetValue<std::u16string_view>(dictionary, key).transform([](std::u16string_view text) {
            return std::u16string(text);
        });
    else if constexpr (std::same_as<T, std::string>)
    {
        Result<std::u16string_view> const text = GetValue<std::u16string_view>(dictionary, key);
        if (!text)
            return text.error();
        Result<std::string> converted = ToUTF8(*text);
        if (!converted)
            return DETAIL::EntryError(kBadText, key);
        return converted;
    }
    else if constexpr (std::same_as<T, std::vector<unsigned char>>)
        return GetValue<std::span<unsigned char const>>(dictionary, key)
            .transform([](std::span<unsigned char const> bytes) {
                return std::vector<unsigned char>(bytes.begin(), bytes.end());
            });
    else
    {
        TInterfacePtr<IObject> object;
        object.Share(dictionary.Get(key));
        Result<T> wanted = As<T>(Object(std::move(object)));
        if (!wanted)
            return wrongType;
        return wanted;
    }
}
} // namespace KORVA::CXX
