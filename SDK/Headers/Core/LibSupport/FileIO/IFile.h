// The file-system library's file object.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

/// Files and well-known directories.
namespace KORVA::FILE_SYS
{
/// 0 for success, else one of the statuses below or another non-zero number.
using ErrCode = int32;

/// It did what it says.
inline constexpr ErrCode kDone = 0;
/// A failure that has no status of its own.
inline constexpr ErrCode kFailed = 1;
/// `Create`: the file is there already.
inline constexpr ErrCode kAlreadyThere = 9;
/// There is no such file or directory.
inline constexpr ErrCode kNotFound = 15;
/// The system does not permit it.
inline constexpr ErrCode kNotPermitted = 21;
/// The device, quota or size limit is reached.
inline constexpr ErrCode kNoSpace = 28;
/// The user stopped a copy.
inline constexpr ErrCode kCancelled = 89;
/// `CopyTo`, `Replace`: the new content is there, whole and under its name. Only that the name is on the disk
/// could not be confirmed: after a power cut the file may be the old one again.
inline constexpr ErrCode kNotFlushed = 90;
/// The device, or the path to it, fails.
inline constexpr ErrCode kDeviceFailed = 91;
/// The system ran out of memory, of descriptors or of other resources of its own.
inline constexpr ErrCode kOutOfResources = 92;

/// Class and interface id of `IFile`.
inline constexpr GUID IID_IFILE{0xF123396E, 0x0378, 0x4B45, {0x82, 0xE5, 0x65, 0x71, 0x70, 0xE3, 0x1A, 0x2A}};

/// A file named by a path, whether it exists or not. Paths are absolute or relative to the working
/// directory, with `/` between components. Dates are nanoseconds since 1970-01-01T00:00:00Z, sizes bytes.
/// An object that is not bound answers 15 (`Exists`: false). Used by one thread at a time.
class TESSIO_EXPORT IFile : public IObject
{
public:
    /// Names the file. False, and the object stays unbound, for an empty path, one with a null character
    /// or one that is not well-formed.
    virtual bool BindPath(STRING::CoreString const& path) = 0;

    /// Whether anything of that name is there; a symbolic link counts by what it points to. What can't be
    /// looked at counts as not there: ask `GetSize` why.
    virtual bool Exists() = 0;

    /// Sets `flag` to 1 for a hidden file (one whose name begins with a dot), else to 0.
    virtual ErrCode QueryFlag(uchar& flag) = 0;

    /// Owner, group and others, each read 4, write 2, execute 1. Unchanged on failure.
    virtual ErrCode ReadPermissions(uchar (&permissions)[3]) = 0;

    /// Makes an empty file. 9 when it is there already, 15 when its directory is not.
    virtual ErrCode Create() = 0;

    /// Removes the file (not a directory: that answers 21).
    virtual ErrCode Delete() = 0;

    /// Each getter leaves its argument unchanged on failure. The creation date is there only where the file
    /// system keeps one; a date before 1970 is a failure.
    ///@{
    virtual ErrCode GetSize(uint64& size) = 0;
    virtual ErrCode GetModificationDate(uint64& date) = 0;
    virtual ErrCode SetModificationDate(uint64& date) = 0;
    virtual ErrCode GetCreationDate(uint64& date) = 0;
    ///@}
    /// Always a failure: no interface of this system sets a creation date.
    virtual ErrCode SetCreationDate(uint64& date) = 0;

    /// Copies content, permissions, access list and modification date to `target`, replacing a file of that
    /// name at once and whole: a crash leaves the old one or the new one. Each status but 0 and 90 means that
    /// the old one is there. Set-user and set-group bits are not copied, nor are owner, group and extended
    /// attributes. Where the access list can't be set, nobody may do more with the copy than with the source,
    /// and a notice in the log says so. A symbolic link at `target` is followed. Copying a file onto itself,
    /// and copying anything but a regular file, is a failure.
    virtual ErrCode CopyTo(STRING::CoreString const& target) = 0;

    /// Renames to `target` within one file system, replacing a file of that name. The object stays bound to
    /// the old name.
    virtual ErrCode MoveTo(STRING::CoreString const& target) = 0;

    /// Waits until content and directory entry are on the disk.
    virtual ErrCode Sync() = 0;

    /// Makes `count` bytes the file's whole content, at once: they go to a temporary file beside it, are
    /// flushed to the disk, and the temporary takes the name. A crash leaves the old file or the new one.
    /// Each status but 0 and 90 means that the old one is there, 90 that the new one is and may be lost again
    /// with the power: as in a directory that may be written but not read, which nobody can flush.
    ///
    /// A replaced file's permissions, owner and group, access list and extended attributes are kept as far as
    /// the user may set them, its set-user and set-group bits and the system's rights of a program are not.
    /// What can't be kept is named by a notice in the log, and nobody may do more with the new file than with
    /// the old one: what only one of the old group and all others might, neither the new group nor the others
    /// may. A new file gets the user's default, or what its directory says. A symbolic link is followed.
    virtual ErrCode Replace(void const* data, uint64 count) = 0;
};

/// Holds a file.
using IFilePtr = TInterfacePtr<IFile>;
} // namespace KORVA::FILE_SYS
