#include "UniCharUtils.h"

#include <tessio/Logger/LogSite.h>

#include <algorithm>
#include <cstring>

namespace KORVA
{
namespace
{
constexpr char kSource[] = "Core/Common/Constructs/UniCharUtils/UniCharUtils";
constexpr char kStrnCmp[] = "int32 KORVA::UniStrnCmp(const UniChar *, const UniChar *, int32)";

constexpr LogSite kSiteCreateNull{kSource, "UniChar *KORVA::UniStrCreate(const char *)", 0};
constexpr LogSite kSiteLenNull{kSource, "int32 KORVA::UniStrLen(const UniChar *)", 0};
constexpr LogSite kSiteCmpNull{kSource, "int32 KORVA::UniStrCmp(const UniChar *, const UniChar *)", 0};
constexpr LogSite kSiteNCmpNull{kSource, kStrnCmp, 0};
constexpr LogSite kSiteNCmpLimit{kSource, kStrnCmp, 0};
constexpr LogSite kSiteCpyNull{kSource, "UniChar *KORVA::UniStrCpy(UniChar *, const UniChar *)", 0};
constexpr LogSite kSiteCatNull{kSource, "UniChar *KORVA::UniStrCat(UniChar *, const UniChar *)", 0};
constexpr LogSite kSiteNCatNull{kSource, "UniChar *KORVA::UniStrnCat(UniChar *, const UniChar *, int32)", 0};

constexpr wchar_t kNull[] = L"Passed in a NULL pointer";

/// Not `std::toupper`, which follows the process's locale.
char ToUpperASCII(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string ToUpperASCII(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char c) { return ToUpperASCII(c); });
    return text;
}

UniChar* End(UniChar* text) { return text + UniStrLen(text); }
} // namespace

UniChar* UniStrCreate(char const* text)
{
    if (!text)
    {
        Log(kSiteCreateNull, kNull);
        return nullptr;
    }
    std::size_t const length = std::strlen(text);
    auto* const created = new UniChar[length + 1];
    for (std::size_t i = 0; i < length; ++i)
        created[i] = static_cast<UniChar>(static_cast<signed char>(text[i]));
    created[length] = 0;
    return created;
}

int32 UniStrLen(UniChar const* text)
{
    if (!text)
    {
        Log(kSiteLenNull, kNull);
        return 0;
    }
    int32 length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

int32 UniStrCmp(UniChar const* a, UniChar const* b)
{
    if (!a || !b)
    {
        Log(kSiteCmpNull, kNull);
        return 0;
    }
    if (a == b)
        return 0;
    for (; *a != 0 && *a == *b; ++a, ++b)
        ;
    return static_cast<int32>(*a) - static_cast<int32>(*b);
}

int32 UniStrnCmp(UniChar const* a, UniChar const* b, int32 n)
{
    if (!a || !b)
    {
        Log(kSiteNCmpNull, kNull);
        return 0;
    }
    if (a == b)
        return 0;
    if (n < 1)
    {
        Log(kSiteNCmpLimit, L"Called UniStrnCmp with a value of 0 for n.");
        return 0;
    }
    for (; n > 1 && *a != 0 && *a == *b; --n, ++a, ++b)
        ;
    return static_cast<int32>(*a) - static_cast<int32>(*b);
}

UniChar* UniStrCpy(UniChar* dst, UniChar const* src)
{
    if (!dst || !src)
    {
        Log(kSiteCpyNull, kNull);
        return nullptr;
    }
    std::memcpy(dst, src, (static_cast<std::size_t>(UniStrLen(src)) + 1) * sizeof(UniChar));
    return dst;
}

UniChar* UniStrnCpy(UniChar* dst, UniChar const* src, int32 n)
{
    for (int32 i = 0; i < n; ++i)
    {
        dst[i] = src[i];
        if (src[i] == 0)
            break;
    }
    return dst;
}

UniChar* UniStrCat(UniChar* dst, UniChar const* src)
{
    if (!dst || !src)
    {
        Log(kSiteCatNull, kNull);
        return nullptr;
    }
    UniStrCpy(End(dst), src);
    return dst;
}

UniChar* UniStrnCat(UniChar* dst, UniChar const* src, int32 n)
{
    if (!dst || !src)
    {
        Log(kSiteNCatNull, kNull);
        return nullptr;
    }
    if (n < 1)
        return dst;
    UniChar* to = End(dst);
    for (; n > 0 && *src != 0; --n)
        *to++ = *src++;
    *to = 0;
    return dst;
}

std::string GetStringFromUniStr(UniChar const* text)
{
    std::string narrowed;
    for (; *text != 0; ++text)
        narrowed += static_cast<char>(*text & 0xFF);
    return narrowed;
}

std::string GetExtFromUniStr(UniChar const* text)
{
    std::string const narrowed = GetStringFromUniStr(text);
    std::size_t const dot = narrowed.rfind('.');
    return dot == std::string::npos ? narrowed : ToUpperASCII(narrowed.substr(dot + 1));
}

std::string GetFileNameFromUniStr(UniChar const* text)
{
    std::string narrowed = GetStringFromUniStr(text);
    std::size_t const dot = narrowed.rfind('.');
    if (dot == std::string::npos)
        return narrowed;
    if (dot + 1 < narrowed.size())
        narrowed.erase(dot + 1, 1);
    return ToUpperASCII(std::move(narrowed));
}

CFMutableStringWrapper::CFMutableStringWrapper(char const* text) { Append(text); }

CFMutableStringWrapper::CFMutableStringWrapper(UniChar const* text) { Append(text); }

void CFMutableStringWrapper::Append(char const* text)
{
    mString->AppendMacRoman(text);
    mDirty = true;
}

void CFMutableStringWrapper::Append(UniChar const* text)
{
    mString->AppendCharacters(text, static_cast<std::size_t>(UniStrLen(text)));
    mDirty = true;
}

UniChar const* CFMutableStringWrapper::uni_str()
{
    Regenerate();
    return mUniCopy.get();
}

char const* CFMutableStringWrapper::c_str()
{
    Regenerate();
    return mCCopy.get();
}

int32 CFMutableStringWrapper::length() const { return static_cast<int32>(mString->Length()); }

void CFMutableStringWrapper::Regenerate()
{
    if (!mDirty)
        return;
    std::size_t const units = mString->Length();
    mUniCopy.reset();
    mCCopy.reset();
    mUniCopy = std::make_unique_for_overwrite<UniChar[]>(units + 1);
    mCCopy = std::make_unique<char[]>(units + 1);
    mString->GetCharacters(mUniCopy.get());
    mString->GetMacRoman(mCCopy.get(), units + 1);
    mDirty = false;
}
} // namespace KORVA
