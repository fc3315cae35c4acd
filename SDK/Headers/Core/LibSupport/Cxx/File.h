// Files, by path or URI.
#pragma once

#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/Stream.h>
#include <tessio/Cxx/SystemErrors.h>
#include <tessio/Cxx/URI.h>
#include <tessio/TessIO/IURIFile.h>
#include <tessio/TessIO/IURIRegistry.h>

#include <chrono>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace KORVA::CXX
{
/// Dates of files: nanoseconds since 1970-01-01T00:00:00Z.
using FileTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// Owns a file object: a name of a file, whether that exists or not, which is looked at anew by every call.
/// Copies share it. Used by one thread at a time.
class File : public Handle<IO::IURIFile>
{
public:
    using Handle::Handle;

    /// The file of that path. Any text is a path here; for URLs make a `URI`. Errors as `URI::FromPath`.
    static Result<File> At(std::filesystem::path const& path)
    {
        Result<URI> const uri = URI::FromPath(path);
        return uri ? At(*uri) : Result<File>(uri.error());
    }

    /// The file that a URI names, served by whoever serves its scheme. `kNotServed` when nobody does.
    static Result<File> At(URI const& uri)
    {
        auto const registry = DETAIL::CreateComponent<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
        if (!registry)
            return Error(IO::kNoObject, "use", Quoted(uri.AbsoluteText()));
        IO::IURIFilePtr file;
        HRESULT const code = registry->Create(*uri, file, nullptr);
        if (code == kIdNotFound)
            return Error(kNotServed, "use", Quoted(uri.AbsoluteText()));
        if (code != kNoError || !file)
            return Error(code == kNoError ? IO::kNoObject : code, "use", Quoted(uri.AbsoluteText()));
        return File(std::move(file));
    }

    /// What names it; `kNotInitialized` for an object that was given no name.
    Result<URI> Location() const
    {
        IO::IURIPtr uri = (*this)->GetURI();
        if (!uri)
            return Error(IO::kNotInitialized, "tell the name of the file");
        return URI(std::move(uri));
    }

    /// Whether it is there. False also where the system can't tell: `Size` says why.
    bool Exists() const { return (*this)->Exists(); }

    /// In bytes; `kFileNotFound`. Of a local file, here and below, what the system says where it can't tell:
    /// `kNotPermitted`, `kDeviceFailed`, `kOutOfResources`, `kFileSystemFailed`.
    Result<uint64> Size() const
    {
        uint64 size = 0;
        ErrCode const code = (*this)->GetSize(size);
        if (code != kNoError)
            return FailedToTell(code, "tell the size of");
        return size;
    }

    /// `kFileNotFound`; `kOutOfRange` for a date after the year 2262.
    Result<FileTime> ModificationDate() const { return Ask(&IO::IURIFile::GetModificationDate); }
    /// The same; `kFileNotFound` also where the file system keeps none.
    Result<FileTime> CreationDate() const { return Ask(&IO::IURIFile::GetCreationDate); }

    /// `kFileNotFound`; `kOutOfRange` for a date before 1970.
    Result<void> SetModificationDate(FileTime date)
    {
        if (date.time_since_epoch().count() < 0)
            return Failed(kOutOfRange, "set the date of");
        auto value = static_cast<uint64>(date.time_since_epoch().count());
        ErrCode const code = (*this)->SetModificationDate(value);
        return code == kNoError ? Result<void>() : Failed(code, "set the date of");
    }

    /// Opens it to be read. `kFileNotFound` (a directory, too), `kOpenRefused` (no permission), or the
    /// provider's code; of a local file also `kOutOfResources`, `kDeviceFailed` and `kFileSystemFailed`. `<<`
    /// and `Write` on the stream answer `kNotAllowed`.
    Result<Stream> Read() const { return Open(&IO::IURIFile::Read, Stream::Access::kReadOnly, "read"); }

    /// Opens the existing file to be read and written in place; nobody else can open it so meanwhile.
    /// `kLocked`; else as `Read`. A crash leaves some of what is written, and a device that is full takes
    /// only some of it, though each write was a success: ask `Stream::Close`. `Save` writes objects safely.
    Result<Stream> Write() const { return Open(&IO::IURIFile::Write, Stream::Access::kReadWrite, "write"); }

    /// Makes an empty file where there is none. `kCreateFailed`, `kBadArgument`.
    Result<void> Create() { return Answer((*this)->Create(), "create"); }
    /// Removes it. `kDeleteFailed`.
    Result<void> Delete() { return Answer((*this)->Delete(), "delete"); }
    /// Replaces it by a copy of `source`, whole or not at all. `kCopyFailed`, for another scheme too.
    Result<void> CopyFrom(File const& source) { return Answer((*this)->Copy(*source), "copy to"); }

private:
    std::string Subject() const
    {
        IO::IURIPtr const uri = (*this)->GetURI();
        if (!uri)
            return {};
        std::string const path = uri->GetPath().ToUTF8();
        return Quoted(uri->GetScheme().ToUTF8() == "file" ? path : uri->GetAbsoluteString().ToUTF8());
    }

    Error Failed(ErrCode code, std::string operation) const
    {
        return {code, std::move(operation), Subject()};
    }

    /// The path of a local file; nothing for another scheme.
    std::optional<std::filesystem::path> LocalPath() const
    {
        IO::IURIPtr const uri = (*this)->GetURI();
        std::filesystem::path path;
        if (!uri || uri->GetScheme().compare("file") != 0 || IO::FilePathOf(*uri, path) != kNoError)
            return std::nullopt;
        return path;
    }

    /// The library has one code for a file that is not there and for one of which the system can't tell.
    Error FailedToTell(ErrCode code, std::string operation) const
    {
        std::optional<std::filesystem::path> const path = LocalPath();
        std::error_code error;
        if (path && std::filesystem::status(*path, error).type() == std::filesystem::file_type::none)
            return DETAIL::SystemFailure(error.value(), IO::kFileSystemFailed, std::move(operation),
                                         Subject());
        return Failed(code, std::move(operation));
    }

    Result<void> Answer(ErrCode code, std::string operation) const
    {
        return code == kNoError ? Result<void>() : Failed(code, std::move(operation));
    }

    Result<FileTime> Ask(ErrCode (IO::IURIFile::*getter)(uint64&) const) const
    {
        uint64 date = 0;
        ErrCode const code = (Pointer().Get()->*getter)(date);
        if (code != kNoError)
            return FailedToTell(code, "tell the date of");
        if (date > static_cast<uint64>(std::numeric_limits<std::chrono::nanoseconds::rep>::max()))
            return Failed(kOutOfRange, "tell the date of");
        return FileTime(std::chrono::nanoseconds(static_cast<std::chrono::nanoseconds::rep>(date)));
    }

    Result<Stream> Open(ErrCode (IO::IURIFile::*open)(TInterfacePtr<IO::IDataProviderStream>&) const,
                        Stream::Access access, std::string operation) const
    {
        TInterfacePtr<IO::IDataProviderStream> stream;
        ErrCode const code = (Pointer().Get()->*open)(stream);
        bool const writes = access == Stream::Access::kReadWrite;
        std::optional<std::filesystem::path> path;
        if (code != kNoError && (path = LocalPath()))
            return DETAIL::OpeningFailed(code, *path, writes, std::move(operation), Subject());
        if (code != kNoError || !stream)
            return Failed(code == kNoError ? IO::kNoObject : code, std::move(operation));
        return writes ? Stream(std::move(stream), Subject()) : Stream(std::move(stream), access);
    }
};
} // namespace KORVA::CXX
