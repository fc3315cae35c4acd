#include "Platform/URL.h"

#include "Platform/StringServices.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace KORVA::PLATFORM
{
namespace
{
using std::string;
using std::string_view;
using OptionalText = std::optional<string>;

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool IsAlphanumeric(char c) { return IsLetter(c) || (c >= '0' && c <= '9'); }

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

/// Whether a text may be a URL at all: the characters that escaping keeps, brackets, one `#`, whole escapes.
bool IsLegal(string_view text)
{
    bool fragment = false;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        char const c = text[i];
        if (c == '%')
        {
            if (i + 2 >= text.size() || !IsHexDigit(text[i + 1]) || !IsHexDigit(text[i + 2]))
                return false;
            i += 2;
        }
        else if (c == '#')
        {
            if (fragment)
                return false;
            fragment = true;
        }
        else if (!IsAlphanumeric(c) && string_view("!$&'()*+,-./:;=?@_~[]").find(c) == string_view::npos)
            return false;
    }
    return true;
}

/// The text after the first `separator`, which is cut off with it; nothing where there is none.
OptionalText CutOff(string_view& text, char separator)
{
    std::size_t const at = text.find(separator);
    if (at == string_view::npos)
        return std::nullopt;
    string part(text.substr(at + 1));
    text = text.substr(0, at);
    return part;
}

std::size_t SchemeLength(string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && (IsAlphanumeric(text[i]) || text[i] == '+' || text[i] == '-' || text[i] == '.'))
        ++i;
    return i < text.size() && text[i] == ':' ? i : string_view::npos;
}

URL::Parts Split(string_view text)
{
    URL::Parts parts;
    string_view rest = text;
    parts.fragment = CutOff(rest, '#');
    if (std::size_t const length = SchemeLength(rest); length != string_view::npos)
    {
        parts.scheme = string(rest.substr(0, length));
        rest = rest.substr(length + 1);
        if (rest.empty() || rest.front() != '/')
        {
            parts.opaque = true;
            parts.fragment.reset();
            return parts;
        }
    }
    if (rest.starts_with("//"))
    {
        rest = rest.substr(2);
        std::size_t const end = std::min(rest.find_first_of("/?"), rest.size());
        if (end > 0)
            parts.authority = string(rest.substr(0, end));
        rest = rest.substr(end);
    }
    parts.query = CutOff(rest, '?');
    parts.parameters = CutOff(rest, ';');
    if (!rest.empty() || parts.authority)
        parts.path = string(rest);
    return parts;
}

/// Where host and port lie in an authority.
struct HostAndPort
{
    std::size_t hostBegin;
    std::size_t hostEnd;
    std::optional<std::size_t> portBegin;
};

HostAndPort SplitAuthority(string_view authority)
{
    HostAndPort result{0, authority.size(), std::nullopt};
    if (std::size_t const at = authority.find('@'); at != string_view::npos)
        result.hostBegin = at + 1;
    bool inBrackets = false;
    for (std::size_t i = result.hostBegin; i < authority.size(); ++i)
    {
        if (authority[i] == '[' || authority[i] == ']')
            inBrackets = authority[i] == '[';
        else if (authority[i] == ':' && !inBrackets)
        {
            result.hostEnd = i;
            result.portBegin = i + 1;
            break;
        }
    }
    return result;
}

std::optional<std::u16string> Decode(string_view escaped)
{
    return ReplacePercentEscapes(std::u16string(escaped.begin(), escaped.end()));
}

std::optional<std::u16string> Widen(OptionalText const& text)
{
    if (!text)
        return std::nullopt;
    return std::u16string(text->begin(), text->end());
}

/// Escapes brackets except those around the host.
string EscapeBrackets(string_view text, std::size_t hostBegin, std::size_t hostEnd)
{
    string result;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        bool const atHostEnd = hostEnd > hostBegin && (i == hostBegin || i == hostEnd - 1);
        if (text[i] == '[' && !atHostEnd)
            result += "%5B";
        else if (text[i] == ']' && !atHostEnd)
            result += "%5D";
        else
            result += text[i];
    }
    return result;
}

/// A text in the form that the URL shows it.
string Shown(string const& text)
{
    URL::Parts const parts = Split(text);
    if (parts.opaque)
    {
        // A `#` is data here, not the start of a fragment.
        string shown = EscapeBrackets(text, 0, 0);
        if (std::size_t const hash = shown.find('#'); hash != string::npos)
            shown.replace(hash, 1, "%23");
        return shown;
    }
    if (text.find_first_of("[]") == string::npos)
        return text;
    if (!parts.authority)
        return EscapeBrackets(text, 0, 0);
    std::size_t const begin = (parts.scheme ? parts.scheme->size() + 1 : 0) + 2;
    HostAndPort const where = SplitAuthority(*parts.authority);
    return EscapeBrackets(text, begin + where.hostBegin, begin + where.hostEnd);
}

bool EndsAsDirectory(string_view path)
{
    return path.ends_with("/") || path.ends_with("/.") || path.ends_with("/..");
}

/// Merges a relative path with a base path and collapses dot segments. Surplus `..` stay.
string MergePaths(string_view basePath, string_view relative)
{
    string merged(basePath.substr(0, basePath.rfind('/') + 1));
    bool const rooted = merged.starts_with('/');
    merged += relative;

    std::vector<string_view> segments;
    string_view rest = merged;
    if (rooted)
        rest = rest.substr(1);
    for (bool more = true; more;)
    {
        std::size_t const slash = rest.find('/');
        more = slash != string_view::npos;
        string_view const segment = rest.substr(0, slash);
        if (more)
            rest = rest.substr(slash + 1);
        if (segment == "." || (segment == ".." && !segments.empty() && segments.back() != ".."))
        {
            if (segment == "..")
                segments.pop_back();
            if (!more)
                segments.push_back("");
        }
        else
            segments.push_back(segment);
    }
    // A last `..` that uses a relative path up leaves this: measured, and of no use to anybody.
    if (!rooted && merged.ends_with("/..") && segments.size() == 1 && segments.front().empty())
        return "./%00";
    string result = rooted ? "/" : "";
    for (std::size_t i = 0; i < segments.size(); ++i)
    {
        if (i > 0)
            result += '/';
        result += segments[i];
    }
    return result;
}

/// The parts of a reference without a scheme taken against those of its base.
URL::Parts Resolve(URL::Parts const& base, URL::Parts const& reference)
{
    URL::Parts result;
    result.scheme = base.scheme;
    result.query = reference.query;
    result.fragment = reference.fragment;
    result.parameters = reference.parameters;
    if (reference.authority)
    {
        result.authority = reference.authority;
        result.path = reference.path;
        return result;
    }
    result.authority = base.authority;
    if (!reference.path)
    {
        result.path = base.path;
        if (reference.parameters)
            return result;
        result.parameters = base.parameters;
        if (reference.query)
            return result;
        result.query = base.query;
        if (!reference.fragment)
            result.fragment = base.fragment;
        return result;
    }
    if (reference.path->starts_with('/'))
        result.path = reference.path;
    else if (base.path && !base.path->empty())
        result.path = MergePaths(*base.path, *reference.path);
    else
        result.path = "/" + *reference.path;
    return result;
}

string Compose(URL::Parts const& parts)
{
    string text;
    if (parts.scheme)
        text = *parts.scheme + ":";
    text += "//" + parts.authority.value_or("") + parts.path.value_or("");
    if (parts.parameters)
        text += ";" + *parts.parameters;
    if (parts.query)
        text += "?" + *parts.query;
    if (parts.fragment)
        text += "#" + *parts.fragment;
    return text;
}
} // namespace

void URL::Take(string const& text, Parts const& own)
{
    mText = Shown(text);
    mAbsolute = mText;
    mScheme = own.scheme;
    mAuthority = own.authority;
    Parts const shown = Split(mText);
    mPath = shown.path;
    mParameters = shown.parameters;
    mQuery = shown.query;
    mNamesDirectory = mPath && EndsAsDirectory(*mPath);
}

URLRef URL::FromString(std::u16string_view wide, URLRef const& base)
{
    string text;
    for (char16_t const unit : wide)
    {
        if (unit > 0x7E)
            return {};
        text += static_cast<char>(unit);
    }
    if (!IsLegal(text))
        return {};
    Parts const own = Split(text);

    URL* const url = new URL;
    URLRef result(url);
    // What does not begin with a letter is a scheme, but not one that makes the text absolute.
    bool const isAbsolute = own.scheme && !own.scheme->empty() && IsLetter(own.scheme->front());
    url->Take(text, own);
    if (!base || isAbsolute)
        return result;
    url->mBase = base;
    Parts const resolved = Resolve(Split(base->mAbsolute), Split(url->mText));
    url->mAbsolute = Shown(Compose(resolved));
    url->mPath = Split(url->mAbsolute).path;
    if (own.opaque)
        return result;
    if (!own.scheme)
        url->mScheme = base->mScheme;
    if (!own.authority)
        url->mAuthority = base->mAuthority;
    url->mParameters = resolved.parameters;
    url->mQuery = resolved.query;
    return result;
}

URLRef URL::FromFilePath(std::u16string_view path, bool isDirectory)
{
    // The system's paths end at a null character.
    std::u16string trimmed(path.substr(0, path.find(u'\0')));
    if (trimmed.empty())
        return {};
    if (isDirectory)
    {
        if (!trimmed.ends_with(u'/'))
            trimmed += u'/';
    }
    else
        while (trimmed.size() > 1 && trimmed.ends_with(u'/'))
            trimmed.pop_back();
    std::optional<string> const escaped = EscapeFilePath(trimmed);
    if (!escaped)
        return {};
    string const text = "file://" + *escaped;
    URL* const url = new URL;
    URLRef result(url);
    url->Take(text, Split(text));
    url->mNamesDirectory = isDirectory;
    return result;
}

URLRef URL::FromColonPath(std::u16string_view) { return {}; }

std::optional<std::u16string> URL::Scheme() const { return Widen(mScheme); }

std::optional<std::u16string> URL::Host() const
{
    if (!mAuthority)
        return std::nullopt;
    HostAndPort const where = SplitAuthority(*mAuthority);
    string_view host = string_view(*mAuthority).substr(where.hostBegin, where.hostEnd - where.hostBegin);
    // Brackets belong around the whole host. Where one stands elsewhere, a character is cut at either end all
    // the same: measured.
    bool const begins = host.starts_with('[') && host.find(']') != string_view::npos;
    bool const ends = host.ends_with(']') && host.find('[') != string_view::npos;
    if (begins || ends)
        host = host.substr(1, host.size() - 2);
    return Decode(host);
}

std::optional<std::int32_t> URL::Port() const
{
    if (!mAuthority)
        return std::nullopt;
    HostAndPort const where = SplitAuthority(*mAuthority);
    if (!where.portBegin)
        return std::nullopt;
    string_view digits = string_view(*mAuthority).substr(*where.portBegin);
    bool const negative = digits.starts_with('-');
    if (negative || digits.starts_with('+'))
        digits = digits.substr(1);
    if (digits.empty())
        return std::nullopt;
    std::int64_t value = 0;
    for (char const c : digits)
    {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = std::min<std::int64_t>(value * 10 + (c - '0'), std::int64_t{1} << 32);
    }
    using Limits = std::numeric_limits<std::int32_t>;
    value = std::clamp<std::int64_t>(negative ? -value : value, Limits::min(), Limits::max());
    if (value == -1)
        return std::nullopt;
    return static_cast<std::int32_t>(value);
}

std::optional<std::u16string> URL::Path() const
{
    if (!mPath)
        return std::nullopt;
    string_view const escaped = *mPath;
    std::optional<std::u16string> path = Decode(escaped);
    if (!path)
        return std::nullopt;
    if (path->size() > 1 && path->back() == u'/')
        path->pop_back();
    if (escaped.find('%') != string_view::npos && path->size() > 1 && path->back() == u'/' &&
        EndsAsDirectory(escaped))
        path->pop_back();
    return path;
}

std::optional<std::u16string> URL::ParameterString() const { return Widen(mParameters); }

std::optional<std::u16string> URL::Query() const { return Widen(mQuery); }

std::optional<std::u16string> URL::AbsoluteString() const { return Widen(mAbsolute); }

bool URL::IsEqual(URL const& other) const
{
    if (mText != other.mText || mNamesDirectory != other.mNamesDirectory ||
        static_cast<bool>(mBase) != static_cast<bool>(other.mBase))
        return false;
    return !mBase || mBase->IsEqual(*other.mBase);
}
} // namespace KORVA::PLATFORM
