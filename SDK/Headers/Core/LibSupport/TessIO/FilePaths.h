// Between the standard library's file paths and URIs.
#pragma once

#include <tessio/ObjectModel/IClassFactory.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURI.h>
#include <tessio/TessIO/ResultCodes.h>

#include <filesystem>
#include <optional>
#include <string>

namespace KORVA::IO
{
/// Names a local file by its path, made absolute against the working directory. Unlike `IURI::Init` this
/// keeps every character as it is (`?`, `;`, `:`, `%`, decomposed letters), so that the URI's path is that
/// file. 0 and the URI in `uri`, which adopts it (releasing what it held); 12 when `factory` is null or
/// creates nothing; 13 when the path is empty or not valid UTF-8. `uri` is unchanged on failure.
inline ErrCode CreateFileURI(IClassFactory* factory, IURIPtr& uri, std::filesystem::path const& path)
{
    std::error_code error;
    std::string text = path.empty() ? std::string() : std::filesystem::absolute(path, error).string();
    while (text.size() > 1 && text.ends_with('/'))
        text.pop_back();
    std::optional<STRING::CoreString> const wanted = STRING::CoreString::FromUTF8(text);
    if (error || text.empty() || !wanted)
        return kBadArgument;
    if (!factory)
        return kNoObject;
    IURIPtr created;
    static_cast<void>(factory->CreateInstance(IID_IURI, created.Out()));
    if (!created)
        return kNoObject;
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string url = "file://";
    for (char const c : text)
    {
        bool const plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                           c == '/' || c == '-' || c == '.' || c == '_' || c == '~';
        auto const byte = static_cast<unsigned char>(c);
        if (plain)
            url += c;
        else
            url.append({'%', kDigits[byte >> 4], kDigits[byte & 0xF]});
    }
    // The text has a scheme, so the base does not matter; it only must be of the library's own class.
    created->InitRelative(*created, STRING::CoreString(url.c_str()));
    if (!(created->GetPath() == *wanted))
        return kBadArgument;
    uri = std::move(created);
    return kNoError;
}

/// The path of the file that `uri` names: 0; 13 and `path` unchanged when the URI has no path or its path is
/// no file name on this system (a lone surrogate, a null character).
inline ErrCode FilePathOf(IURI const& uri, std::filesystem::path& path)
{
    STRING::CoreString const text = uri.GetPath();
    if (text.empty() || !text.IsWellFormed() || text.find(u'\0') != STRING::CoreString::npos)
        return kBadArgument;
    path = text.ToUTF8();
    return kNoError;
}
} // namespace KORVA::IO
