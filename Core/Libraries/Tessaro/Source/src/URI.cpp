#include "URI.h"

#include "LastComponent.h"
#include "Platform/StringServices.h"
#include "Registration.h"
#include "ValidURLString.h"
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/PersistentData.h>

#include <optional>
#include <utility>

namespace KORVA::IO
{
namespace
{
using STRING::CoreString;

class URIFactory final : public TClassFactory<Makes<&New<URI>, IID_IURI>>
{
};

/// A part as text; empty where the URL has none.
CoreString TextOf(std::optional<std::u16string> part)
{
    return part ? CoreString(std::move(*part)) : CoreString();
}

/// A part unescaped; nothing where the URL has none, empty where its escapes are malformed.
std::optional<CoreString> Unescaped(std::optional<std::u16string> const& part)
{
    if (!part)
        return std::nullopt;
    return TextOf(PLATFORM::ReplacePercentEscapes(*part));
}
} // namespace

int RegisterURIFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<URIFactory>(registry);
}

URI::URI() { SetupPersistence(*this); }

void URI::Init(CoreString const& location)
{
    if (location.empty())
        return;
    CoreString text;
    UTILITIES::CreateValidURLString(location, text);
    std::optional<std::u16string> const escaped =
        PLATFORM::AddPercentEscapes(PLATFORM::ComposeCanonical(text.view()));
    mURL = escaped ? PLATFORM::URL::FromString(*escaped) : PLATFORM::URLRef();
}

void URI::InitRelative(IURI const& base, CoreString const& relative)
{
    auto const* const baseURI = dynamic_cast<URI const*>(&base);
    if (!baseURI)
        return;
    mURL = PLATFORM::URL::FromString(relative.view(), baseURI->mURL);
}

CoreString URI::GetScheme() const { return mURL ? TextOf(mURL->Scheme()) : CoreString(); }

CoreString URI::GetHost() const { return mURL ? TextOf(mURL->Host()) : CoreString(); }

uint32 URI::GetPortNumber() const { return mURL ? static_cast<uint32>(mURL->Port().value_or(0)) : 0; }

CoreString URI::GetPath() const
{
    std::optional<std::u16string> const path = mURL ? mURL->Path() : std::nullopt;
    if (!path)
        return CoreString();
    CoreString result(*path);
    if (std::optional<CoreString> const parameters = Unescaped(mURL->ParameterString()))
        result.append(CoreString(u";")).append(*parameters);
    std::optional<CoreString> const query = Unescaped(mURL->Query());
    std::size_t const separator = query ? query->rfind(u'?') : CoreString::npos;
    if (separator == CoreString::npos)
        return result;
    // The last `?` separates the query, so an earlier one belongs to the path, and so does a separator before
    // it, which the URL's own path has lost.
    CoreString const absolute = TextOf(mURL->AbsoluteString());
    std::size_t const slash = absolute.rfind(u'/');
    bool const lostSeparator =
        slash != CoreString::npos && slash + 1 < absolute.size() && absolute[slash + 1] == u'?';
    result.append(CoreString(lostSeparator ? u"/?" : u"?"));
    return result.append(query->substr(0, separator));
}

CoreString URI::GetQuery() const
{
    std::optional<CoreString> const query = mURL ? Unescaped(mURL->Query()) : std::nullopt;
    if (!query)
        return CoreString();
    std::size_t const separator = query->rfind(u'?');
    return separator == CoreString::npos ? *query : query->substr(separator);
}

CoreString URI::GetAbsoluteString() const
{
    return mURL ? Unescaped(mURL->AbsoluteString()).value_or(CoreString()) : CoreString();
}

void URI::GetName(CoreString& name) const
{
    IURI const& self = *this;
    name = LastComponent(self.GetPath());
    for (std::size_t i = 0; i < name.size(); ++i)
        if (name[i] == u':')
            name[i] = u'/';
}

bool URI::operator==(IURI const& other) const
{
    if (&other == this)
        return true;
    auto const* const otherURI = dynamic_cast<URI const*>(&other);
    if (!otherURI)
        return false;
    if (!mURL || !otherURI->mURL)
        return !mURL && !otherURI->mURL;
    return mURL->IsEqual(*otherURI->mURL);
}

IDataProviderStream& URI::Write(IDataProviderStream& stream) const { return stream << GetAbsoluteString(); }

IDataProviderStream& URI::Read(IDataProviderStream& stream)
{
    mURL = PLATFORM::URLRef();
    CoreString location;
    stream >> location;
    Init(location);
    return stream;
}
} // namespace KORVA::IO
