#include "Location.h"

#include "Failure.h"
#include "FileIO/IFile.h"
#include "Output.h"
#include "TessIO/ClassIds.h"
#include "TessIO/FilePaths.h"
#include "TessIO/IURIRegistry.h"
#include "TessIO/ResultCodes.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <limits>

namespace TOOL
{
namespace
{
using namespace KORVA;
using IO::IDataProvider;
using IO::IDataProviderStream;

constexpr std::size_t kPiece = std::size_t{1} << 20;

/// Whether a location is a URL. Everything else is a name of this system, whatever characters are in it: a
/// command that writes must never take a name for something else.
bool IsURL(std::string const& location)
{
    std::size_t const separator = location.find("://");
    std::size_t const notScheme =
        location.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+-.");
    return separator != std::string::npos && separator > 0 && notScheme == separator;
}

struct Reason
{
    Exit exit = Exit::kInputOutput;
    std::string text;
};

/// Why a file of this system can't be opened, in words.
Reason LocalReason(IO::IURI const& uri, ErrCode code)
{
    std::filesystem::path path;
    std::error_code error;
    bool const known = IO::FilePathOf(uri, path) == kNoError;
    std::filesystem::file_status const status = std::filesystem::status(path, error);
    if (error == std::errc::permission_denied)
        return {.text = "permission denied"};
    if (known && std::filesystem::is_directory(status))
        return {.text = "is a directory"};
    if (!known || !std::filesystem::exists(status))
        return {Exit::kNotFound, "no such file"};
    if (code == IO::kOpenRefused)
        return {.text = "permission denied"};
    if (code == IO::kLocked)
        return {.text = "locked by another process"};
    return {.text = "error " + std::to_string(code)};
}

/// Why a server's file can't be had: what the server says of the user, what was reported, or what the code
/// says.
Reason RemoteReason(Session const& session, IO::IURIFile const& file, ErrCode code)
{
    std::string const reported = session.Failures().Take();
    if (std::string const refusal = RefusalOf(file); !refusal.empty())
        return {.text = refusal};
    if (!reported.empty())
        return {.text = reported};
    switch (code)
    {
    case IO::kFileNotFound:
        return {Exit::kNotFound, "no such file"};
    case IO::kBadArgument:
        return {Exit::kUsage, "is no URL that can be asked for"};
    case IO::kNotAllowed:
        return {.text = "can't be written"};
    default:
        return {.text = "error " + std::to_string(code)};
    }
}

TInterfacePtr<IDataProviderStream> Open(Session const& session, std::string const& location,
                                        ErrCode (IO::IURIFile::*open)(TInterfacePtr<IDataProviderStream>&)
                                            const)
{
    IO::IURIFilePtr const file = FileOf(session, location);
    IO::IURIPtr const uri = file->GetURI();
    bool const isLocal = IsLocal(*uri);
    // A pipe without data looks like the end of a file, and a device may have none.
    std::filesystem::path path;
    std::error_code error;
    std::filesystem::file_status status;
    if (isLocal && IO::FilePathOf(*uri, path) == kNoError)
        status = std::filesystem::status(path, error);
    if (std::filesystem::is_other(status))
        throw Failure(Exit::kInputOutput, "cannot open " + Quoted(location) + ": is not a regular file");
    TInterfacePtr<IDataProviderStream> stream;
    if (ErrCode const code = (file.Get()->*open)(stream); code != kNoError)
    {
        Reason const reason = isLocal ? LocalReason(*uri, code) : RemoteReason(session, *file, code);
        throw Failure(reason.exit, "cannot open " + Quoted(location) + ": " + reason.text);
    }
    // What failed before and did not matter is no reason for what may fail now.
    static_cast<void>(session.Failures().Take());
    return stream;
}
} // namespace

bool IsLocal(IO::IURI const& uri) { return uri.GetScheme().compare("file") == 0; }

void NoSuchFile(Session const& session, char const* operation, std::string const& location,
                IO::IURIFile const& file)
{
    IO::IURIPtr const uri = file.GetURI();
    Reason reason{Exit::kNotFound, "no such file"};
    std::filesystem::path path;
    std::error_code error;
    if (!IsLocal(*uri))
        reason = RemoteReason(session, file, IO::kFileNotFound);
    else if (IO::FilePathOf(*uri, path) == kNoError)
        static_cast<void>(std::filesystem::status(path, error));
    if (error == std::errc::permission_denied)
        reason = {.text = "permission denied"};
    throw Failure(reason.exit,
                  std::string("cannot ") + operation + " " + Quoted(location) + ": " + reason.text);
}

void CutShort(std::string const& location, std::string const& reason, int64 done, int64 size)
{
    std::string const of = size > done ? " of " + std::to_string(size) : "";
    std::string const bytes = of.empty() ? ByteCount(done) : std::to_string(done) + of + " bytes";
    throw Failure(Exit::kInputOutput,
                  "cannot read " + Quoted(location) + ": " +
                      (reason.empty() ? bytes + " could be read" : reason + " after " + bytes));
}

std::string ReasonOf(FILE_SYS::ErrCode status)
{
    switch (status)
    {
    case FILE_SYS::kNotFound:
        return "no such directory";
    case FILE_SYS::kNotPermitted:
        return "permission denied";
    case FILE_SYS::kNoSpace:
        return "no space left";
    default:
        return "error " + std::to_string(status);
    }
}

IO::IURIPtr URIOf(Session const& session, std::string const& location)
{
    if (IsURL(location))
    {
        auto uri = session.Create<IO::IURI>(IO::IID_IURI);
        uri->Init(TextArgument(location, "location"));
        if (session.Credential())
            uri->Aggregate(session.Credential(), IO::IID_URI_CREDENTIAL);
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
    ErrCode const code = registry->Create(*uri, file, &session.Failures());
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

std::vector<unsigned char> ReadWhole(Session const& session, IDataProviderStream& stream,
                                     std::string const& location)
{
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    int64 const size = provider->Size();
    if (size > std::numeric_limits<int32>::max())
        throw Failure(Exit::kInputOutput,
                      "cannot read " + Quoted(location) + ": files of 2 GiB and more are not supported");
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
    std::string const reason = session.Failures().Take();
    // A file of a known size that ends early was cut meanwhile, or the disk fails.
    if (!reason.empty() || static_cast<int64>(content.size()) < size)
        CutShort(location, reason, static_cast<int64>(content.size()), std::max(size, provider->Size()));
    return content;
}

std::string TryReplaceContent(Session const& session, std::string const& location,
                              std::vector<unsigned char> const& content)
{
    auto const file = session.Create<FILE_SYS::IFile>(FILE_SYS::IID_IFILE);
    FILE_SYS::ErrCode status = FILE_SYS::kNotFound;
    if (file->BindPath(URIOf(session, location)->GetPath()))
    {
        // An interrupt waits until the temporary file is gone.
        sigset_t held;
        sigset_t before;
        sigemptyset(&held);
        for (int const signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&held, signal);
        pthread_sigmask(SIG_BLOCK, &held, &before);
        status = file->Replace(content.data(), content.size());
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
    return status == FILE_SYS::kDone ? "" : ReasonOf(status);
}

void ReplaceContent(Session const& session, std::string const& location,
                    std::vector<unsigned char> const& content, std::string const& shown)
{
    if (auto const why = TryReplaceContent(session, location, content); !why.empty())
        throw Failure(Exit::kInputOutput, "cannot write " + Quoted(shown.empty() ? location : shown) + ": " +
                                              why + "; nothing is changed");
}
} // namespace TOOL
