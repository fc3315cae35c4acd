#include "Location.h"

#include "Failure.h"
#include "FileIO/IFile.h"
#include "Output.h"
#include "TessIO/ClassIds.h"
#include "TessIO/FilePaths.h"
#include "TessIO/IURIRegistry.h"
#include "TessIO/ResultCodes.h"

#include <filesystem>

namespace TOOL
{
namespace
{
using namespace KORVA;
using IO::IDataProvider;
using IO::IDataProviderStream;

constexpr std::size_t kPiece = std::size_t{1} << 20;

bool IsForeign(std::string const& location)
{
    if (location.find("://") != std::string::npos)
        return true;
    if (location.starts_with('/'))
        return false;
    bool const looksForeign = location.starts_with("\\\\") || location.find(':') != std::string::npos;
    std::error_code error;
    return looksForeign && !std::filesystem::exists(std::filesystem::symlink_status(location, error));
}

/// Why a file can't be opened, in words.
[[noreturn]] void CannotOpen(IO::IURI const& uri, std::string const& location, ErrCode code)
{
    std::filesystem::path path;
    std::error_code error;
    bool const known = IO::FilePathOf(uri, path) == kNoError;
    std::string reason = "error " + std::to_string(code);
    Exit exit = Exit::kInputOutput;
    if (known && std::filesystem::is_directory(path, error))
        reason = "is a directory";
    else if (!known || !std::filesystem::exists(path, error))
    {
        reason = "no such file";
        exit = Exit::kNotFound;
    }
    else if (code == IO::kOpenRefused)
        reason = "permission denied";
    else if (code == IO::kLocked)
        reason = "locked by another process";
    throw Failure(exit, "cannot open " + Quoted(location) + ": " + reason);
}

TInterfacePtr<IDataProviderStream> Open(Session const& session, std::string const& location,
                                        ErrCode (IO::IURIFile::*open)(TInterfacePtr<IDataProviderStream>&)
                                            const)
{
    IO::IURIFilePtr const file = FileOf(session, location);
    TInterfacePtr<IDataProviderStream> stream;
    ErrCode const code = (file.Get()->*open)(stream);
    if (code != kNoError)
        CannotOpen(*file->GetURI(), location, code);
    return stream;
}
} // namespace

IO::IURIPtr URIOf(Session const& session, std::string const& location)
{
    if (IsForeign(location))
    {
        auto uri = session.Create<IO::IURI>(IO::IID_IURI);
        uri->Init(TextArgument(location, "location"));
        return uri;
    }
    IO::IURIPtr uri;
    if (IO::CreateFileURI(session.Registry(), uri, location) != kNoError)
        throw Failure(Exit::kUsage, location.empty() ? "the location is empty"
                                                     : "path " + Quoted(location) + " is not valid UTF-8");
    return uri;
}

IO::IURIFilePtr FileOf(Session const& session, std::string const& location)
{
    IO::IURIPtr const uri = URIOf(session, location);
    auto const registry = session.Create<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
    IO::IURIFilePtr file;
    ErrCode const code = registry->Create(*uri, file, nullptr);
    if (code == kIdNotFound)
        throw Failure(Exit::kUsage, "cannot open " + Quoted(location) + ": nothing serves the scheme " +
                                        Quoted(uri->GetScheme()));
    if (code != kNoError)
        throw Failure(Exit::kInputOutput,
                      "cannot open " + Quoted(location) + ": error " + std::to_string(code));
    return file;
}

TInterfacePtr<IDataProviderStream> OpenToRead(Session const& session, std::string const& location)
{
    return Open(session, location, &IO::IURIFile::Read);
}

TInterfacePtr<IDataProviderStream> OpenToWrite(Session const& session, std::string const& location)
{
    return Open(session, location, &IO::IURIFile::Write);
}

std::vector<unsigned char> ReadWhole(IDataProviderStream& stream, std::string const& location)
{
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    int64 const size = provider->Size();
    std::vector<unsigned char> content;
    static_cast<void>(provider->SetPosition(0, IDataProvider::kFromStart));
    for (;;)
    {
        std::size_t const done = content.size();
        content.resize(done + kPiece);
        int count = static_cast<int>(kPiece);
        static_cast<void>(stream.Read(content.data() + done, count));
        content.resize(done + static_cast<std::size_t>(count));
        if (count == 0)
            break;
    }
    // A file of a known size that ends early was cut meanwhile, or the disk fails.
    if (static_cast<int64>(content.size()) < size)
        throw Failure(Exit::kInputOutput, "cannot read " + Quoted(location) + ": " +
                                              std::to_string(content.size()) + " of " + std::to_string(size) +
                                              " bytes could be read");
    return content;
}

void ReplaceContent(Session const& session, std::string const& location,
                    std::vector<unsigned char> const& content)
{
    auto const file = session.Create<FILE_SYS::IFile>(FILE_SYS::IID_IFILE);
    FILE_SYS::ErrCode status = FILE_SYS::kNotFound;
    if (file->BindPath(URIOf(session, location)->GetPath()))
        status = file->Replace(content.data(), content.size());
    std::string reason;
    switch (status)
    {
    case FILE_SYS::kDone:
        return;
    case FILE_SYS::kNotFound:
        reason = "no such directory";
        break;
    case FILE_SYS::kNotPermitted:
        reason = "permission denied";
        break;
    case FILE_SYS::kNoSpace:
        reason = "no space left";
        break;
    default:
        reason = "error " + std::to_string(status);
        break;
    }
    throw Failure(Exit::kInputOutput,
                  "cannot write " + Quoted(location) + ": " + reason + "; nothing is changed");
}
} // namespace TOOL
