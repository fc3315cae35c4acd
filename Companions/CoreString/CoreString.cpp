#include <tessio/CoreString/CoreString.h>

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <limits>

namespace KORVA::STRING
{
namespace
{
std::u16string UnitsFromUTF8(std::string_view utf8)
{
    // UTF-16 never needs more units than UTF-8 needs bytes.
    std::u16string units(utf8.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length, utf8.data(),
                         static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr, &status);
    units.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return units;
}

int Sign(int difference) { return (difference > 0) - (difference < 0); }
} // namespace

CoreString::CoreString(char const* utf8) : mUnits(utf8 ? UnitsFromUTF8(utf8) : std::u16string()) {}

CoreString::CoreString(std::string_view utf8) : mUnits(UnitsFromUTF8(utf8)) {}

CoreString::CoreString(UniChar const* units) : mUnits(units ? std::u16string(units) : std::u16string()) {}

CoreString::CoreString(UniChar const* units, std::size_t length) : mUnits(units, length) {}

CoreString::CoreString(std::u16string units) : mUnits(std::move(units)) {}

std::optional<CoreString> CoreString::FromUTF8(std::string_view utf8)
{
    std::u16string units(utf8.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, utf8.data(),
                  static_cast<int32_t>(utf8.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    units.resize(static_cast<std::size_t>(length));
    return CoreString(std::move(units));
}

CoreString& CoreString::append(CoreString const& text)
{
    mUnits.append(text.mUnits);
    return *this;
}

CoreString& CoreString::append(UniChar const* units, std::size_t length)
{
    mUnits.append(units, length);
    return *this;
}

std::size_t CoreString::find(CoreString const& text, std::size_t from) const
{
    return mUnits.find(text.mUnits, from);
}

std::size_t CoreString::find(UniChar unit, std::size_t from) const { return mUnits.find(unit, from); }

std::size_t CoreString::rfind(CoreString const& text, std::size_t from) const
{
    return mUnits.rfind(text.mUnits, from);
}

std::size_t CoreString::rfind(UniChar unit, std::size_t from) const { return mUnits.rfind(unit, from); }

CoreString CoreString::substr(std::size_t from, std::size_t length) const
{
    return from < mUnits.size() ? CoreString(mUnits.substr(from, length)) : CoreString();
}

int CoreString::compare(CoreString const& other) const { return Sign(mUnits.compare(other.mUnits)); }

int CoreString::compare(char const* utf8) const { return compare(CoreString(utf8)); }

int CoreString::comparei(CoreString const& other) const
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t const order =
        u_strCaseCompare(mUnits.data(), static_cast<int32_t>(mUnits.size()), other.mUnits.data(),
                         static_cast<int32_t>(other.mUnits.size()), U_FOLD_CASE_DEFAULT, &status);
    return Sign(order);
}

std::string CoreString::ToUTF8() const
{
    std::string utf8(mUnits.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(utf8.data(), static_cast<int32_t>(utf8.size()), &length, mUnits.data(),
                       static_cast<int32_t>(mUnits.size()), 0xFFFD, nullptr, &status);
    utf8.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return utf8;
}

std::wstring CoreString::ToWide() const
{
    static_assert(sizeof(wchar_t) == 4, "a wide character holds a code point");
    std::wstring wide;
    wide.reserve(mUnits.size());
    for (std::size_t i = 0; i < mUnits.size();)
    {
        char32_t codePoint = mUnits[i++];
        if (U16_IS_LEAD(codePoint) && i < mUnits.size() && U16_IS_TRAIL(mUnits[i]))
            codePoint = static_cast<char32_t>(U16_GET_SUPPLEMENTARY(codePoint, mUnits[i++]));
        wide += static_cast<wchar_t>(codePoint);
    }
    return wide;
}

bool CoreString::IsWellFormed() const
{
    for (std::size_t i = 0; i < mUnits.size(); ++i)
    {
        if (!U16_IS_SURROGATE(mUnits[i]))
            continue;
        if (!U16_IS_LEAD(mUnits[i]) || i + 1 == mUnits.size() || !U16_IS_TRAIL(mUnits[i + 1]))
            return false;
        ++i;
    }
    return true;
}

CoreString operator+(CoreString const& a, CoreString const& b)
{
    CoreString joined = a;
    return joined.append(b);
}
} // namespace KORVA::STRING
