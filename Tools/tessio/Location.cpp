#include "Location.h"

#include "Failure.h"
#include "Output.h"
#include "Saving.h"
#include "System/Files.h"
#include "System/References.h"
#include "System/Signals.h"
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/FilePaths.h>
#include <tessio/TessIO/IDataProviderStatus.h>
#include <tessio/TessIO/IURIRegistry.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

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

/// Whether a look at a file failed otherwise than that it is not there.
bool IsTrouble(std::error_code const& error)
{
    return error && error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory;
}

/// Why a file of this system can't be opened, in words. The library's code does not tell what the system
/// said, so the system is asked again.
Reason LocalReason(IO::IURI const& uri, ErrCode code, SYSTEM::Access access)
{
    std::filesystem::path path;
    std::error_code error;
    bool const known = IO::FilePathOf(uri, path) == kNoError;
    std::filesystem::file_status const status = std::filesystem::status(path, error);
    if (IsTrouble(error))
        return {.text = WordsOf(error.value())};
    if (known && std::filesystem::is_directory(status))
        return {.text = "is a directory"};
    if (!known || !std::filesystem::exists(status))
        return {Exit::kNotFound, "no such file"};
    if (code == IO::kLocked)
        return {.text = "locked by another process"};
    SYSTEM::ErrorNumber why = 0;
    static_cast<void>(SYSTEM::OpenFile(path.string(), access, why));
    return {.text = why != 0 ? WordsOf(why) : "error " + std::to_string(code)};
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
    SYSTEM::Access const access =
        open == &IO::IURIFile::Write ? SYSTEM::Access::kReadWrite : SYSTEM::Access::kRead;
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
        Reason const reason = isLocal ? LocalReason(*uri, code, access) : RemoteReason(session, *file, code);
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
    if (IsTrouble(error))
        reason = {.text = WordsOf(error.value())};
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

bool IsLocal(Session const& session, std::string const& location)
{
    return !IsURL(location) || IsLocal(*URIOf(session, location));
}

std::string SystemPathOf(Session const& session, std::string const& location)
{
    if (location.empty())
        throw Failure(Exit::kUsage, "the location is empty");
    std::string path = location;
    if (IsURL(location))
    {
        IO::IURIPtr const uri = URIOf(session, location);
        std::filesystem::path named;
        if (!IsLocal(*uri))
            throw Failure(Exit::kUsage,
                          Quoted(location) + " is no file of this system: only these can be written");
        if (IO::FilePathOf(*uri, named) != kNoError)
            throw Failure(Exit::kUsage, Quoted(location) + " names no file");
        path = named.string();
    }
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

bool Exists(Session const& session, std::string const& location)
{
    if (!IsLocal(session, location))
        return FileOf(session, location)->Exists();
    std::error_code error;
    bool const isThere = std::filesystem::exists(SystemPathOf(session, location), error);
    if (IsTrouble(error))
        throw Failure(Exit::kInputOutput, "cannot open " + Quoted(location) + ": " + WordsOf(error.value()));
    return isThere;
}

namespace
{
/// The URI by which a file can be reached. Where its name is not UTF-8, which no URI holds, that is by
/// another path, and the file must be there.
IO::IURIPtr WayTo(Session const& session, std::string const& location)
{
    IO::IURIPtr uri;
    if (location.empty() || IsURL(location) ||
        IO::CreateFileURI(session.Registry(), uri, location) == kNoError)
        return URIOf(session, location);
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor file = SYSTEM::OpenReference(location, error);
    if (!file)
        throw Failure(error == ENOENT || error == ENOTDIR ? Exit::kNotFound : Exit::kInputOutput,
                      "cannot open " + Quoted(location) + ": " + WordsOf(error));
    std::string const path = SYSTEM::PathThrough(file);
    session.Keep(std::move(file));
    if (path.empty() || IO::CreateFileURI(session.Registry(), uri, path) != kNoError)
        throw Failure(Exit::kInputOutput,
                      "cannot open " + Quoted(location) +
                          ": its name is not valid UTF-8, and without /proc there is no other way to it: "
                          "rename it first");
    return uri;
}

} // namespace

IO::IURIFilePtr FileOf(Session const& session, std::string const& location)
{
    IO::IURIPtr const uri = WayTo(session, location);
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
    std::string reason = session.Failures().Take();
    if (reason.empty())
        reason = ReadFailureOf(*provider);
    // A file of a known size that ends early was cut meanwhile, or the disk fails.
    if (!reason.empty() || static_cast<int64>(content.size()) < size)
        CutShort(location, reason, static_cast<int64>(content.size()), std::max(size, provider->Size()));
    return content;
}

std::string ReadFailureOf(IDataProvider const& provider)
{
    auto const* const status = dynamic_cast<IO::IDataProviderStatus const*>(&provider);
    int const error = status ? status->GetSystemError() : 0;
    return error == 0 ? "" : WordsOf(error);
}

std::string TryReplaceContent(Session const& session, std::string const& location,
                              std::vector<unsigned char> const& content)
{
    std::string const path = SystemPathOf(session, location);
    // An interrupt waits until the temporary file is gone, or has its name.
    SYSTEM::HeldSignals const held(SYSTEM::HeldSignals::Which::kInterrupts);
    SYSTEM::NotKept notKept;
    SYSTEM::Outcome const outcome = SYSTEM::ReplaceFile(path, content.data(), content.size(), notKept);
    if (outcome.state == SYSTEM::Saved::kOld)
        return ReasonOf(outcome.error);
    WarnOfSaved(location, outcome.error, notKept);
    return {};
}

void ReplaceContent(Session const& session, std::string const& location,
                    std::vector<unsigned char> const& content)
{
    if (auto const why = TryReplaceContent(session, location, content); !why.empty())
        throw Failure(Exit::kInputOutput,
                      "cannot write " + Quoted(location) + ": " + why + "; nothing is changed");
}
} // namespace TOOL
