// Replacing a file whole.
#pragma once

#include "System/Attributes.h"
#include "System/Descriptor.h"

#include <cstdint>
#include <string>

namespace KORVA::SYSTEM
{
/// What stands under a file's name after it was to be replaced.
enum class Saved
{
    /// What stood there before, or nothing.
    kOld,
    kNew,
    /// The new content, whole. After a power cut the old may be back.
    kNewNotFlushed
};

struct Outcome
{
    Saved state = Saved::kOld;
    /// Why it is not `kNew`; 0 when it is.
    ErrorNumber error = 0;
};

/// A temporary file beside a target. It takes the target's name, or vanishes when this object does. The
/// target's directory is held, so a path of any length that the system takes will do.
///
/// Write to `Get()`, call `KeepAttributes` or set them otherwise, then `Commit`. Who replaces two files
/// together calls the steps of `Commit` one by one. Used by one thread at a time.
class Replacement
{
public:
    /// The permissions of the temporary where no file is replaced. One that replaces a file is for its user
    /// alone until `KeepAttributes`.
    enum class Temporary
    {
        kUsersDefault,
        kUserAlone
    };

    /// Where `target` is a symbolic link, what it points to is replaced, whether it is there yet or not.
    explicit Replacement(std::string const& target, Temporary temporary = Temporary::kUsersDefault);
    Replacement(Replacement const&) = delete;
    Replacement& operator=(Replacement const&) = delete;
    ~Replacement();

    /// 0, or why there is no temporary: `EISDIR` for a directory, `EPERM` for another target that is no
    /// regular file.
    ErrorNumber Error() const { return mError; }
    /// Whether a file was there when this object was made.
    bool ReplacesFile() const { return static_cast<bool>(mOld); }

    /// Open for reading and writing; borrowed. -1 after `Flush`.
    int Get() const { return mDescriptor.Get(); }
    /// By which others in this process may open the temporary, until `Flush`.
    std::string Path() const;
    /// The replaced file; borrowed, a reference only. -1 where there was none.
    int Old() const { return mOld.Get(); }

    /// Gives the temporary what the replaced file has beside its content (see `System/Attributes.h`). Does
    /// nothing where no file is replaced.
    ErrorNumber KeepAttributes(NotKept& notKept);

    /// `Flush`, `Rename`, `FlushName`.
    Outcome Commit();

    /// Waits until the content is on the device, and closes the temporary.
    ErrorNumber Flush();
    enum class Undoable
    {
        kNo,
        /// The replaced file is held under another name beside it, as far as the file system can.
        kYes
    };
    /// Gives the temporary the target's name. On failure the target is as it was.
    ErrorNumber Rename(Undoable undoable = Undoable::kNo);
    /// After `Rename(kYes)`: puts the replaced file back, or removes the new one where there was none. On
    /// failure the new one stays.
    ErrorNumber Undo();
    /// Waits until the name is on the device.
    ErrorNumber FlushName();

private:
    std::string NewName() const;

    Descriptor mDirectory;
    Descriptor mOld;
    Descriptor mDescriptor;
    std::string mDirectoryPath;
    std::string mName;
    /// Empty while there is none.
    std::string mTemporary;
    std::string mHeldOld;
    ErrorNumber mError = 0;
};

/// Makes `count` bytes the file's whole content: what `IFile::Replace` does, on a system path.
Outcome ReplaceFile(std::string const& path, void const* data, std::uint64_t count, NotKept& notKept);
} // namespace KORVA::SYSTEM
