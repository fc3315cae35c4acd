#include "System/Replacement.h"

#include "Retry.h"
#include "System/Files.h"
#include "System/Paths.h"
#include "System/References.h"
#include "System/Status.h"
#include "System/Transfer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <random>

namespace KORVA::SYSTEM
{
namespace
{
constexpr int kNameAttempts = 100;
constexpr std::size_t kMostOfName = 200;

/// A long name is cut so that a temporary's stays within the system's bound, and not within a character: some
/// file systems take only whole ones.
std::string Beginning(std::string const& name)
{
    std::size_t end = kMostOfName;
    if (name.size() <= end)
        return name;
    while (end > kMostOfName - 4 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80)
        --end;
    return name.substr(0, end);
}
/// 0 for a regular file.
ErrorNumber WhyNotReplaced(Descriptor const& old)
{
    Status status;
    if (ErrorNumber const error = ReadStatus(old.Get(), status))
        return error;
    switch (status.kind)
    {
    case FileKind::kRegular:
        return 0;
    case FileKind::kDirectory:
        return EISDIR;
    case FileKind::kSymbolicLink:
        return ELOOP;
    case FileKind::kOther:
        break;
    }
    return EPERM;
}
} // namespace

Replacement::Replacement(std::string const& target, Temporary temporary)
{
    std::string const path = FollowLinks(target);
    std::size_t const slash = path.rfind('/');
    mName = slash == std::string::npos ? path : path.substr(slash + 1);
    mDirectoryPath = DirectoryOf(path);
    // A reference, because a directory that may be written need not be one that may be read.
    mDirectory = OpenDirectoryReference(mDirectoryPath, mError);
    if (mDirectory && mName.empty())
        mError = EISDIR;
    if (mError != 0)
        return;
    mOld = OpenReferenceIn(mDirectory, mName, mError);
    if (mOld)
        mError = WhyNotReplaced(mOld);
    else if (mError == ENOENT)
        mError = 0;
    if (mError != 0)
        return;
    mode_t const permissions = mOld || temporary == Temporary::kUserAlone ? 0600 : 0666;
    for (int attempt = 0; attempt < kNameAttempts && !mDescriptor; ++attempt)
    {
        // Kept before the file is made: what throws afterwards must not leave it behind.
        mTemporary = NewName();
        mDescriptor = Descriptor(Uninterrupted([&] {
            return openat(mDirectory.Get(), mTemporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                          permissions);
        }));
        mError = mDescriptor ? 0 : errno;
        if (!mDescriptor)
            mTemporary.clear();
        if (mError != EEXIST)
            break;
    }
}

Replacement::~Replacement()
{
    if (!mTemporary.empty())
        unlinkat(mDirectory.Get(), mTemporary.c_str(), 0);
    if (!mHeldOld.empty())
        unlinkat(mDirectory.Get(), mHeldOld.c_str(), 0);
}

std::string Replacement::NewName() const
{
    std::random_device random;
    char suffix[16];
    std::snprintf(suffix, sizeof suffix, ".%08x", static_cast<unsigned>(random()));
    return "." + Beginning(mName) + suffix;
}

std::string Replacement::Path() const
{
    std::string path = PathThrough(mDescriptor);
    return path.empty() ? mDirectoryPath + "/" + mTemporary : path;
}

ErrorNumber Replacement::KeepAttributes(NotKept& notKept)
{
    return mOld ? SYSTEM::KeepAttributes(mOld.Get(), mDescriptor.Get(), notKept) : 0;
}

Outcome Replacement::Commit()
{
    if (ErrorNumber const error = Flush())
        return {Saved::kOld, error};
    if (ErrorNumber const error = Rename())
        return {Saved::kOld, error};
    if (ErrorNumber const error = FlushName())
        return {Saved::kNewNotFlushed, error};
    return {Saved::kNew, 0};
}

ErrorNumber Replacement::Flush()
{
    ErrorNumber const error = FlushToDevice(mDescriptor.Get());
    return error != 0 ? error : mDescriptor.Close();
}

ErrorNumber Replacement::Rename(Undoable undoable)
{
    std::string const held = undoable == Undoable::kYes && mOld ? NewName() : std::string();
    if (!held.empty() && linkat(mDirectory.Get(), mName.c_str(), mDirectory.Get(), held.c_str(), 0) == 0)
        mHeldOld = held;
    if (renameat(mDirectory.Get(), mTemporary.c_str(), mDirectory.Get(), mName.c_str()) != 0)
        return errno;
    mTemporary.clear();
    return 0;
}

ErrorNumber Replacement::Undo()
{
    if (!mOld)
        return unlinkat(mDirectory.Get(), mName.c_str(), 0) == 0 ? 0 : errno;
    if (mHeldOld.empty())
        return EOPNOTSUPP;
    if (renameat(mDirectory.Get(), mHeldOld.c_str(), mDirectory.Get(), mName.c_str()) != 0)
        return errno;
    mHeldOld.clear();
    return 0;
}

ErrorNumber Replacement::FlushName()
{
    Descriptor const readable(
        Uninterrupted([&] { return openat(mDirectory.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    return readable ? FlushNames(readable) : errno;
}

Outcome ReplaceFile(std::string const& path, void const* data, std::uint64_t count, NotKept& notKept)
{
    Replacement file(path);
    ErrorNumber error = file.Error();
    if (error == 0)
        error = WriteAll(file.Get(), data, static_cast<std::size_t>(count));
    if (error == 0)
        error = file.KeepAttributes(notKept);
    return error == 0 ? file.Commit() : Outcome{Saved::kOld, error};
}
} // namespace KORVA::SYSTEM
