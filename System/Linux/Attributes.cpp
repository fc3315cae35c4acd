#include "System/Attributes.h"

#include "AccessList.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace KORVA::SYSTEM
{
namespace
{
constexpr mode_t kWithoutSetBits = S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO;

/// A reference can't be asked for attributes, but its path can.
std::string PathOf(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

/// Not the file's own to hand on: the access list goes its own way, a program's rights are for that program,
/// and signatures fit the old content alone.
bool StaysBehind(std::string_view name)
{
    return name.starts_with("system.posix_acl_") || name == "security.capability" || name == "security.ima" ||
           name == "security.evm";
}

/// Each name ends with a null character. False when they can't be told.
bool ListNames(std::string const& path, std::string& names)
{
    ssize_t const size = listxattr(path.c_str(), nullptr, 0);
    names.assign(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    ssize_t const came = names.empty() ? size : listxattr(path.c_str(), names.data(), names.size());
    names.resize(came > 0 ? static_cast<std::size_t>(came) : 0);
    return came >= 0 || errno == EOPNOTSUPP;
}

bool KeepOne(std::string const& path, std::string const& name, int to)
{
    ssize_t const size = getxattr(path.c_str(), name.c_str(), nullptr, 0);
    if (size < 0)
        return errno == ENODATA;
    std::string value(static_cast<std::size_t>(size), '\0');
    ssize_t const came = getxattr(path.c_str(), name.c_str(), value.data(), value.size());
    return came >= 0 && fsetxattr(to, name.c_str(), value.data(), static_cast<std::size_t>(came), 0) == 0;
}

void KeepExtended(int from, int to, NotKept& notKept)
{
    std::string const path = PathOf(from);
    std::string names;
    if (!ListNames(path, names))
        notKept.emplace_back("extended attributes");
    for (std::size_t at = 0; at < names.size();)
    {
        std::string const name = names.c_str() + at;
        at += name.size() + 1;
        if (!StaysBehind(name) && !KeepOne(path, name, to))
            notKept.push_back("extended attribute " + name);
    }
}

/// Both group and others may do what both might.
mode_t NarrowedForOtherGroup(mode_t mode)
{
    mode_t const both = mode & (mode >> 3) & mode_t{S_IRWXO};
    return (mode & ~mode_t{S_IRWXG | S_IRWXO}) | both << 3 | both;
}

ErrorNumber SetPermissions(int from, int to, mode_t mode, bool isOtherGroup, NotKept& notKept)
{
    ErrorNumber error = 0;
    std::optional<AccessList> list = AccessList::Of(PathOf(from), error);
    if (list)
    {
        if (isOtherGroup)
            list->NarrowForOtherGroup();
        if (list->SetTo(to) == 0)
            return 0;
        auto const common = static_cast<mode_t>(list->Common());
        mode = (mode & ~mode_t{S_IRWXG | S_IRWXO}) | common << 3 | common;
        notKept.emplace_back("access list");
    }
    else if (error != 0)
    {
        // There may be a list, of which the group's bits are only the mask.
        mode &= ~mode_t{S_IRWXG | S_IRWXO};
        notKept.emplace_back("access list");
    }
    else if (isOtherGroup)
        mode = NarrowedForOtherGroup(mode);
    if (ErrorNumber const left = AccessList::RemoveFrom(to))
        return left;
    return fchmod(to, mode) == 0 ? 0 : errno;
}
} // namespace

ErrorNumber KeepAttributes(int from, int to, NotKept& notKept)
{
    struct stat status;
    struct stat own;
    if (fstat(from, &status) != 0 || fstat(to, &own) != 0)
        return errno;
    // As long as the file is writable and the user's own, as these need.
    KeepExtended(from, to, notKept);
    // Only a privileged user can give a file away; for others the file becomes theirs, as with any editor.
    bool isOtherGroup = false;
    if ((status.st_uid != own.st_uid || status.st_gid != own.st_gid) &&
        fchown(to, status.st_uid, status.st_gid) != 0)
    {
        if (status.st_uid != own.st_uid)
            notKept.emplace_back("owner");
        isOtherGroup = fchown(to, static_cast<uid_t>(-1), status.st_gid) != 0;
        if (isOtherGroup)
            notKept.emplace_back("group");
    }
    return SetPermissions(from, to, status.st_mode & kWithoutSetBits, isOtherGroup, notKept);
}

ErrorNumber CopyPermissions(int from, int to, NotKept& notKept)
{
    struct stat status;
    if (fstat(from, &status) != 0)
        return errno;
    return SetPermissions(from, to, status.st_mode & mode_t{S_IRWXU | S_IRWXG | S_IRWXO}, false, notKept);
}
} // namespace KORVA::SYSTEM
