// A file that is locked while it is read and replaced.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/Cxx/FileState.h>
#include <tessio/Cxx/LocalFile.h>
#include <tessio/Cxx/Records.h>
#include <tessio/Cxx/SystemErrors.h>
#include <tessio/FileIO/IFile.h>
#include <tessio/FileIO/IFileAccess.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <system_error>

namespace KORVA::CXX::DETAIL
{
/// The codes of this layer for the statuses of the file-system library.
inline ErrCode CodeOfFileStatus(FILE_SYS::ErrCode status)
{
    switch (status)
    {
    case FILE_SYS::kDone:
        return kNoError;
    case FILE_SYS::kNotFound:
        return IO::kFileNotFound;
    case FILE_SYS::kNotPermitted:
        return IO::kNotPermitted;
    case FILE_SYS::kNoSpace:
        return kNoSpace;
    case FILE_SYS::kNotFlushed:
        return kNotFlushed;
    case FILE_SYS::kDeviceFailed:
        return kDeviceFailed;
    case FILE_SYS::kOutOfResources:
        return kOutOfResources;
    case FILE_SYS::kLockedByOthers:
        return IO::kLocked;
    default:
        return IO::kFileSystemFailed;
    }
}

/// Keeps others from saving to a file, and from opening it to write, until this dies. Copies share the lock.
class LockedFile
{
public:
    /// What becomes of a file whose file system keeps no locks.
    enum class Need
    {
        /// It is taken for locked: replacing it is safe, only what others save at this moment may be lost.
        kWherePossible,
        /// It is refused: what is read from it now is to be written back.
        kAlways
    };

    /// Waits a second for a writer, and thirty for others that save. Errors as of `Save`.
    static Result<LockedFile> Lock(std::filesystem::path const& path, Need need, Task const& task)
    {
        constexpr uint32 kWaitMilliseconds = 1000;
        std::optional<STRING::CoreString> const name = STRING::CoreString::FromUTF8(path.string());
        if (!name)
            return task.Failed(kBadText, "the path is not UTF-8");
        LockedFile file;
        std::error_code error;
        std::filesystem::file_status const status = std::filesystem::status(path, error);
        if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
            return task.Failed(kNotAFile);
        file.mFile = CreateComponent<FILE_SYS::IFile>(FILE_SYS::IID_IFILE);
        file.mAccess = CreateComponent<FILE_SYS::IFileAccess>(FILE_SYS::IID_IFILE_ACCESS);
        if (!file.mFile || !file.mAccess)
            return task.Failed(IO::kNoObject);
        if (!file.mFile->BindPath(*name))
            return task.Failed(IO::kBadArgument);
        file.mPath = path;
        FILE_SYS::ErrCode const locked = file.mAccess->Lock(*name, kWaitMilliseconds);
        int const number = file.mAccess->GetSystemError();
        if (locked == FILE_SYS::kDone || (locked == FILE_SYS::kNoLocks && need == Need::kWherePossible))
            return file;
        if (locked == FILE_SYS::kNoLocks && CodeOfSystemError(number, kNoError) != IO::kNotPermitted)
            return task.Failed(IO::kFileSystemFailed, "it can't be locked there");
        if (number != 0)
            return SystemFailure(number, CodeOfFileStatus(locked), task.operation, task.subject);
        return task.Failed(CodeOfFileStatus(locked));
    }

    /// Makes `bytes` the whole content, at once or not at all. Where `state` is not null, the file must be in
    /// it, and then is in the new one.
    Result<void> Replace(std::span<std::byte const> bytes, FileState* state, Task const& task) const
    {
        if (state)
        {
            Result<FileState> const now = CurrentState(task);
            if (!now)
                return now.error();
            if (*now != *state)
                return task.Failed(kChanged);
        }
        ErrCode const code = CodeOfFileStatus(mFile->Replace(bytes.data(), bytes.size()));
        if (state && (code == kNoError || code == kNotFlushed))
            *state = FileState::Of(bytes);
        if (code == kNotFlushed)
            return Error(code, "make sure of", task.subject);
        return code == kNoError ? Result<void>() : task.Failed(code);
    }

private:
    LockedFile() = default;

    Result<FileState> CurrentState(Task const& task) const
    {
        Result<DataProvider> const provider = OpenToLoad(mPath, task);
        if (!provider && provider.error().Code() == IO::kFileNotFound)
            return FileState();
        if (!provider)
            return provider.error();
        Result<FileState> const state = StateOf(*provider);
        return state ? state : task.Failed(state.error().Code());
    }

    std::filesystem::path mPath;
    FILE_SYS::IFilePtr mFile;
    FILE_SYS::IFileAccessPtr mAccess;
};
} // namespace KORVA::CXX::DETAIL
