#include "ValidURLString.h"

#include "Platform/URL.h"

#include <optional>

namespace KORVA::IO::UTILITIES
{
namespace
{
using STRING::CoreString;

constexpr UniChar schemeSeparator[] = u"://";
constexpr UniChar winLocalPathWithReverseSolidusCheck[] = u":\\";
constexpr UniChar winLocalPathWithSolidusCheck[] = u":/";
constexpr UniChar winNetworkPath[] = u"\\\\";

constexpr UniChar kEmptyHostPrefix[] = u"file:///";
constexpr UniChar kAbsolutePathPrefix[] = u"file://";
constexpr UniChar kNetworkPrefix[] = u"file:";

bool Holds(CoreString const& text, UniChar const* part)
{
    return text.find(CoreString(part)) != CoreString::npos;
}

/// The prefix and the location, with each `separator` of the location turned into `/`.
CoreString WithSeparators(UniChar const* prefix, CoreString const& location, UniChar separator)
{
    CoreString text(prefix);
    auto const start = static_cast<int>(text.size());
    text.append(location);
    FindAndReplaceUniChar(text, start, separator, u'/');
    return text;
}

CoreString FromColonPath(CoreString const& in)
{
    PLATFORM::URLRef const url = PLATFORM::URL::FromColonPath(in.view());
    std::optional<std::u16string> const path = url ? url->Path() : std::nullopt;
    if (path)
        return CoreString(kAbsolutePathPrefix) + CoreString(*path);
    return WithSeparators(kEmptyHostPrefix, in, u':');
}

CoreString URLStringOf(CoreString const& in)
{
    std::size_t const slash = in.find(u'/');
    std::size_t const colon = in.find(u':');
    if (Holds(in, schemeSeparator))
        return in;
    if ((Holds(in, winLocalPathWithReverseSolidusCheck) && slash == CoreString::npos) ||
        Holds(in, winLocalPathWithSolidusCheck))
        return WithSeparators(kEmptyHostPrefix, in, u'\\');
    if (in.find(CoreString(winNetworkPath)) == 0)
        return WithSeparators(kNetworkPrefix, in, u'\\');
    if (slash == CoreString::npos && colon == CoreString::npos)
        return in;
    if (slash < colon)
        return CoreString(slash == 0 ? kAbsolutePathPrefix : kEmptyHostPrefix) + in;
    return FromColonPath(in);
}
} // namespace

void CreateValidURLString(CoreString const& in, CoreString& out) { out = URLStringOf(in); }

void FindAndReplaceUniChar(CoreString& s, int start, UniChar find, UniChar)
{
    if (start < 0)
        return;
    std::size_t const first = s.find(find, static_cast<std::size_t>(start));
    if (first == CoreString::npos)
        return;
    for (std::size_t i = first; i < s.size(); ++i)
        if (s[i] == find)
            s[i] = u'/';
}
} // namespace KORVA::IO::UTILITIES
