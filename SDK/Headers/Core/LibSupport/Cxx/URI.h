// Names of resources.
#pragma once

#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/Text.h>
#include <tessio/TessIO/FilePaths.h>
#include <tessio/TessIO/IURI.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace KORVA::CXX
{
/// Owns a URI. Copies share it. Filled by one thread, it may then be read by several.
///
/// Its texts are UTF-8; a lone surrogate comes out as U+FFFD. The interface's own getters keep it.
class URI : public Handle<IO::IURI>
{
public:
    using Handle::Handle;

    /// Names a local file by its path, made absolute, keeping every character as it is. `kBadArgument` for
    /// an empty path or one that is not valid UTF-8; `kNoObject` when the library is not there.
    static Result<URI> FromPath(std::filesystem::path const& path)
    {
        IO::IURIPtr uri;
        ErrCode const code = IO::CreateFileURI(COREREGISTRY::GetCoreRegistry(), uri, path);
        if (code != kNoError)
            return Error(code, "name the file", Quoted(path.string()));
        return URI(std::move(uri));
    }

    /// Names a resource by what a person would write: see `IO::IURI::Init`. `kNoConversion` when that makes
    /// no URL, `kBadText` for UTF-8 that is not well-formed, `kNoObject` when the library is not there.
    template <Text T>
    static Result<URI> FromText(T const& text)
    {
        Result<STRING::CoreString> const location = ToCoreString(text);
        if (!location)
            return location.error();
        Result<URI> uri = CXX::Create<URI>(IO::IID_IURI);
        if (!uri)
            return uri;
        (*uri)->Init(*location);
        if ((*uri)->GetAbsoluteString().empty())
            return Error(IO::kNoConversion, "make a URI of", Quoted(location->ToUTF8()));
        return uri;
    }

    /// What `relative`, escaped already, names from here. `kNoConversion` when that makes no URL.
    template <Text T>
    Result<URI> Resolve(T const& relative) const
    {
        Result<STRING::CoreString> const text = ToCoreString(relative);
        if (!text)
            return text.error();
        Result<URI> uri = CXX::Create<URI>(IO::IID_IURI);
        if (!uri)
            return uri;
        (*uri)->InitRelative(**this, *text);
        if ((*uri)->GetAbsoluteString().empty())
            return Error(IO::kNoConversion, "resolve", Quoted(text->ToUTF8()));
        return uri;
    }

    /// "file", "http"; empty when there is none.
    std::string Scheme() const { return (*this)->GetScheme().ToUTF8(); }
    /// Empty when there is none.
    std::string Host() const { return (*this)->GetHost().ToUTF8(); }
    /// Nothing when the URI names none.
    std::optional<uint32> Port() const
    {
        uint32 const port = (*this)->GetPortNumber();
        return port == 0 ? std::nullopt : std::optional(port);
    }
    /// Unescaped, without a trailing separator.
    std::string Path() const { return (*this)->GetPath().ToUTF8(); }
    /// Unescaped; empty when there is none.
    std::string Query() const { return (*this)->GetQuery().ToUTF8(); }
    /// The last component of the path, with `/` for each `:`.
    std::string Name() const
    {
        STRING::CoreString name;
        (*this)->GetName(name);
        return name.ToUTF8();
    }
    /// The whole text, resolved and unescaped.
    std::string AbsoluteText() const { return (*this)->GetAbsoluteString().ToUTF8(); }

    /// The path as the system takes it; `kBadArgument` where it is no file name.
    Result<std::filesystem::path> FilePath() const
    {
        std::filesystem::path path;
        ErrCode const code = IO::FilePathOf(**this, path);
        if (code != kNoError)
            return Error(code, "make a file path of", Quoted(AbsoluteText()));
        return path;
    }

    /// Same class, same URL text and same base. Case and escapes matter.
    friend bool operator==(URI const& a, URI const& b) { return *a == *b; }
};
} // namespace KORVA::CXX
