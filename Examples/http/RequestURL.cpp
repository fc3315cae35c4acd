#include "RequestURL.h"

#include <curl/curl.h>

#include <memory>
#include <string_view>

namespace HTTP
{
namespace
{
bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

/// Whether a character may stand in a path, query or fragment as it is.
bool IsPlain(char c)
{
    return static_cast<unsigned char>(c) > ' ' && static_cast<unsigned char>(c) < 0x7F &&
           std::string_view("\"<>\\^`{|}").find(c) == std::string_view::npos;
}

struct URLDeleter
{
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct TextDeleter
{
    void operator()(char* text) const { curl_free(text); }
};

/// Null where there is none.
std::unique_ptr<char, TextDeleter> PartOf(CURLU* url, CURLUPart part)
{
    char* text = nullptr;
    static_cast<void>(curl_url_get(url, part, &text, CURLU_DEFAULT_PORT));
    return std::unique_ptr<char, TextDeleter>(text);
}
} // namespace

//! [escape]
std::string RequestURLOf(KORVA::IO::IURI const& uri)
{
    // The URI's own text is unescaped: what a person typed, as a rule. A "%" in it is an escape where digits
    // follow. Of a URI that was made of an escaped text no more than this is to be had.
    std::string const text = uri.GetAbsoluteString().ToUTF8();
    std::size_t const host = text.find("://") + 3;
    if ((!text.starts_with("http://") && !text.starts_with("https://")) || uri.GetHost().empty())
        return {};
    std::size_t const path = std::min(text.find_first_of("/?#", host), text.size());
    if (text.find('@', host) < path)
        return {};
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string url = text.substr(0, path);
    for (std::size_t i = path; i < text.size(); ++i)
    {
        char const c = text[i];
        bool const isEscape =
            c == '%' && i + 2 < text.size() && IsHexDigit(text[i + 1]) && IsHexDigit(text[i + 2]);
        auto const byte = static_cast<unsigned char>(c);
        if (isEscape || (IsPlain(c) && c != '%'))
            url += c;
        else
            url.append({'%', kDigits[byte >> 4], kDigits[byte & 0xF]});
    }
    return url;
}
//! [escape]

bool IsSameServer(char const* url, char const* other)
{
    std::unique_ptr<CURLU, URLDeleter> const parsed[] = {std::unique_ptr<CURLU, URLDeleter>(curl_url()),
                                                         std::unique_ptr<CURLU, URLDeleter>(curl_url())};
    char const* const texts[] = {url, other};
    for (int const i : {0, 1})
        if (curl_url_set(parsed[i].get(), CURLUPART_URL, texts[i], 0) != CURLUE_OK)
            return false;
    for (CURLUPart const part : {CURLUPART_SCHEME, CURLUPART_HOST, CURLUPART_PORT})
    {
        auto const mine = PartOf(parsed[0].get(), part);
        auto const its = PartOf(parsed[1].get(), part);
        if (!mine || !its || curl_strequal(mine.get(), its.get()) == 0)
            return false;
    }
    return true;
}
} // namespace HTTP
