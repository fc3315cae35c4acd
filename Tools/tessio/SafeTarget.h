// The file that a copy becomes.
#pragma once

#include "FileIO/IFile.h"
#include "Session.h"

#include <filesystem>
#include <string>

namespace TOOL
{
/// An empty temporary file beside a target, for the user alone; goes away unless it takes the target's name.
/// A symbolic link at the target is followed. Ends the command, in the words of a copy, when it can't be
/// made.
class SafeTarget
{
public:
    /// `what` is how messages begin: cannot copy "a" to "b".
    SafeTarget(Session const& session, std::filesystem::path target, std::string what);
    SafeTarget(SafeTarget const&) = delete;
    SafeTarget& operator=(SafeTarget const&) = delete;
    ~SafeTarget();

    std::string const& Temporary() const { return mTemporary; }

    /// Gives it the permissions (but no set-user and set-group bits) and the modification date, waits until
    /// it is on the disk and renames it.
    void Commit(std::filesystem::perms permissions, KORVA::uint64 modified);

private:
    [[noreturn]] void Fail(KORVA::FILE_SYS::ErrCode status) const;

    KORVA::FILE_SYS::IFilePtr mFile;
    std::filesystem::path mTarget;
    std::string mTemporary;
    std::string mWhat;
};
} // namespace TOOL
