// Replacing a file whole.
#pragma once

#include "Descriptor.h"
#include "FileIO/IFile.h"

#include <sys/types.h>

#include <string>

namespace KORVA::FILE_SYS
{
/// A temporary file beside a target that takes its name on `Commit` and vanishes otherwise.
class AtomicFile
{
public:
    /// Opens the temporary beside `target`; where that is a symbolic link, beside what it points to. A
    /// temporary that replaces a file is for its user alone, one that does not has `permissions`, as far as
    /// the user's mask lets it.
    explicit AtomicFile(std::string const& target, mode_t permissions = 0666);
    AtomicFile(AtomicFile const&) = delete;
    AtomicFile& operator=(AtomicFile const&) = delete;
    ~AtomicFile();

    /// 0, or why there is no temporary.
    ErrCode Status() const { return mStatus; }
    int Get() const { return mDescriptor.Get(); }

    /// Gives the temporary the permissions (and, where the user may, the owner) of the file that it will
    /// replace; the user's default when there is none.
    ErrCode KeepPermissions();

    /// Flushes the content, renames, flushes the directory.
    ErrCode Commit();

private:
    std::string mTarget;
    std::string mTemporary;
    Descriptor mDescriptor{-1};
    ErrCode mStatus = kFailed;
};

/// Flushes the directory that holds `path`. 0 or a status.
ErrCode SyncDirectoryOf(std::string const& path);
} // namespace KORVA::FILE_SYS
