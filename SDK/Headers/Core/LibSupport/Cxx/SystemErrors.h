// The system's reasons, which the library's codes don't tell.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/Cxx/Error.h>
#include <tessio/Cxx/Handle.h>
#include <tessio/FileIO/IFileAccess.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/IDataProviderStatus.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace KORVA::CXX::DETAIL
{
/// The code of this layer for a number of the system (`errno`), or `otherwise`.
inline ErrCode CodeOfSystemError(int number, ErrCode otherwise)
{
    switch (number)
    {
    case ENOENT:
    case ENOTDIR:
        return IO::kFileNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
        return IO::kNotPermitted;
    case EISDIR:
        return kNotAFile;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return kNoSpace;
    case EIO:
    case ENXIO:
    case ENODEV:
    case ESTALE:
        return kDeviceFailed;
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case EAGAIN:
    case ENOBUFS:
    case ENOLCK:
        return kOutOfResources;
    default:
        return otherwise;
    }
}

/// The system's own words.
inline std::string WordsOfSystemError(int number) { return std::generic_category().message(number); }

/// The failure that a number of the system stands for. Its words are told where the code alone says less.
inline Error SystemFailure(int number, ErrCode otherwise, std::string operation, std::string subject = {})
{
    ErrCode const code = CodeOfSystemError(number, otherwise);
    bool const isPlain =
        code == IO::kFileNotFound || code == IO::kNotPermitted || code == kNotAFile || code == kNoSpace;
    return {code, std::move(operation), std::move(subject),
            isPlain ? std::string() : WordsOfSystemError(number)};
}

/// The number of the first failure that the provider met; 0 where there was none, or the provider doesn't
/// tell.
inline int SystemErrorOf(IO::IDataProvider const& provider)
{
    auto const* const status = dynamic_cast<IO::IDataProviderStatus const*>(&provider);
    return status ? status->GetSystemError() : 0;
}

/// Why the library answered `code` when it opened a local file: it has one code for a file that is not there
/// and for whatever else the system says, and one for all that it refuses.
inline Error OpeningFailed(ErrCode code, std::filesystem::path const& path, bool forWriting,
                           std::string operation, std::string subject)
{
    std::optional<STRING::CoreString> const name = STRING::CoreString::FromUTF8(path.string());
    auto const access = CreateComponent<FILE_SYS::IFileAccess>(FILE_SYS::IID_IFILE_ACCESS);
    bool const isVague = code == IO::kFileNotFound || code == IO::kOpenRefused;
    if (!isVague || !name || !access || access->TryOpen(*name, forWriting) == FILE_SYS::kDone)
        return {code, std::move(operation), std::move(subject)};
    int const number = access->GetSystemError();
    if (CodeOfSystemError(number, code) == IO::kNotPermitted)
        return {IO::kOpenRefused, std::move(operation), std::move(subject)};
    return SystemFailure(number, IO::kFileSystemFailed, std::move(operation), std::move(subject));
}
} // namespace KORVA::CXX::DETAIL
