// Who may have a file now: locks, and why a file can't be opened.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/FileIO/IFile.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

namespace KORVA::FILE_SYS
{
/// `IFileAccess::Lock`: somebody else holds the lock, or has opened the file with one.
inline constexpr ErrCode kLockedByOthers = 93;
/// `IFileAccess::Lock`: no lock can be had there. The file system keeps none, or a file that is not there yet
/// would be in a directory that the user may not read.
inline constexpr ErrCode kNoLocks = 94;

/// Class and interface id of `IFileAccess`.
inline constexpr GUID IID_IFILE_ACCESS{
    0xF84EBD95, 0x7D0F, 0x4C67, {0xB7, 0x9C, 0xCF, 0x64, 0x30, 0xA4, 0x34, 0x0D}};

/// Made by the file-system library. Paths are those of `IFile`. An object holds one lock at most, and lets it
/// go when it dies; so does the system when the process dies. Used by one thread at a time.
class TESSIO_EXPORT IFileAccess : public IObject
{
public:
    /// Takes the exclusive lock of the file that `path` names, letting go of what this object held before.
    /// While it is held, no other `Lock` on that file succeeds, in this process or another, nor can the file
    /// be opened in a mode that asks for locks (`IO::kStreamReadWrite`). Locks are advisory: whoever does not
    /// ask for one is not kept away.
    ///
    /// The lock is that of the name. A file that is replaced is another one afterwards, so whoever waited for
    /// the old one waits for the new one. Where no file of that name is there yet, its directory is locked
    /// instead, as long as the lock is held. Hold the lock from before the file is read until it has been
    /// replaced, and nothing that another holder wrote is lost. Whoever makes, removes or renames the file by
    /// other means takes no part in this: then two may hold locks of one name.
    ///
    /// Waits up to `waitMilliseconds` for who has opened the file with a lock, and thirty times as long for
    /// others that hold a lock of this kind: they save, and may have to wait for the disk. 0; 93 it is still
    /// held; 94; 15 the directory is not there; 21 the file may not be written; another status. No lock is
    /// held after a failure.
    virtual ErrCode Lock(STRING::CoreString const& path, uint32 waitMilliseconds) = 0;

    /// Lets go of the lock, if there is one. A process forked meanwhile shares the lock: what the first of
    /// the two lets go is gone for both.
    virtual void Unlock() = 0;

    /// Opens the file as it stands, to be read or to be read and written, and closes it at once. 0, or the
    /// status that says why that can't be.
    virtual ErrCode TryOpen(STRING::CoreString const& path, bool8 forWriting) = 0;

    /// The system's number (`errno`) of the last call's failure; 0 after a success, and where no call of the
    /// system failed.
    virtual int32 GetSystemError() const = 0;
};

/// Holds an `IFileAccess`.
using IFileAccessPtr = TInterfacePtr<IFileAccess>;
} // namespace KORVA::FILE_SYS
