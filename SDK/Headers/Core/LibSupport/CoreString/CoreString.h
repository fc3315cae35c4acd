// The UTF-16 string that all interfaces pass.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/Types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The texts that all interfaces pass.
namespace KORVA::STRING
{
/// A value type over UTF-16 code units with the vocabulary of the standard string. Any sequence of units is
/// kept as it is, lone surrogates included; positions and lengths count code units.
class TESSIO_EXPORT CoreString
{
public:
    /// No position.
    static constexpr std::size_t npos = std::u16string::npos;

    /// Empty.
    CoreString() = default;
    /// From UTF-8; each malformed sequence becomes U+FFFD. `FromUTF8` tells malformed text apart.
    ///@{
    CoreString(char const* utf8);
    explicit CoreString(std::string_view utf8);
    ///@}
    /// From units up to the first null.
    CoreString(UniChar const* units);
    /// From units as they are, nulls included.
    ///@{
    CoreString(UniChar const* units, std::size_t length);
    explicit CoreString(std::u16string units);
    ///@}

    /// The text, or nothing when `utf8` is not well-formed.
    static std::optional<CoreString> FromUTF8(std::string_view utf8);

    /// In code units.
    std::size_t size() const noexcept { return mUnits.size(); }
    /// Whether there is no unit.
    bool empty() const noexcept { return mUnits.empty(); }
    /// The units, borrowed until the string changes; a null stands behind them.
    UniChar const* data() const noexcept { return mUnits.data(); }
    /// The units, borrowed until the string changes.
    std::u16string_view view() const noexcept { return mUnits; }
    /// The unit there; `position` must be less than the size.
    ///@{
    UniChar const& operator[](std::size_t position) const { return mUnits[position]; }
    UniChar& operator[](std::size_t position) { return mUnits[position]; }
    ///@}

    /// Makes it empty.
    void clear() noexcept { mUnits.clear(); }
    /// Makes room, so that no allocation comes before that many units.
    void reserve(std::size_t units) { mUnits.reserve(units); }
    /// Puts a unit at the end.
    void push_back(UniChar unit) { mUnits.push_back(unit); }
    /// Puts text at the end and gives this string.
    ///@{
    CoreString& append(CoreString const& text);
    CoreString& append(UniChar const* units, std::size_t length);
    ///@}

    /// Where it first begins at `from` or later; `npos` when it does not.
    ///@{
    std::size_t find(CoreString const& text, std::size_t from = 0) const;
    std::size_t find(UniChar unit, std::size_t from = 0) const;
    ///@}
    /// Where it last begins at `from` or earlier; `npos` when it does not.
    ///@{
    std::size_t rfind(CoreString const& text, std::size_t from = npos) const;
    std::size_t rfind(UniChar unit, std::size_t from = npos) const;
    ///@}
    /// The units from `from` (at most `length` of them); empty when `from` lies beyond the end.
    CoreString substr(std::size_t from, std::size_t length = npos) const;

    /// Negative, 0 or positive, by code unit; the narrow text is UTF-8.
    ///@{
    int compare(CoreString const& other) const;
    int compare(char const* utf8) const;
    ///@}
    /// The same without regard to case, by Unicode default case folding.
    int comparei(CoreString const& other) const;

    /// UTF-8; each lone surrogate becomes U+FFFD.
    std::string ToUTF8() const;
    /// One element per code point; each lone surrogate stays as it is.
    std::wstring ToWide() const;
    /// Whether every surrogate is paired, so that `ToUTF8` loses nothing.
    bool IsWellFormed() const;

    /// Whether all units are equal.
    friend bool operator==(CoreString const& a, CoreString const& b) { return a.mUnits == b.mUnits; }
    /// By code unit.
    friend bool operator<(CoreString const& a, CoreString const& b) { return a.mUnits < b.mUnits; }

private:
    std::u16string mUnits;
};

/// The two texts joined.
TESSIO_EXPORT CoreString operator+(CoreString const& a, CoreString const& b);
} // namespace KORVA::STRING
