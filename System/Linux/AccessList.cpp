#include "AccessList.h"

#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>

namespace KORVA::SYSTEM
{
namespace
{
constexpr char kName[] = "system.posix_acl_access";
constexpr std::uint32_t kVersion = 2;
constexpr std::size_t kHeader = 4;
constexpr std::size_t kEntry = 8;
/// Larger than any list that a file system takes.
constexpr std::size_t kMost = 65536;

// Whom an entry is for. Named users (2) are nowhere treated by themselves.
constexpr unsigned kOwner = 0x01;
constexpr unsigned kGroup = 0x04;
constexpr unsigned kNamedGroup = 0x08;
constexpr unsigned kMask = 0x10;
constexpr unsigned kOthers = 0x20;
constexpr unsigned kAllRights = 7;

std::uint32_t Number(std::string const& bytes, std::size_t at, std::size_t size)
{
    std::uint32_t value = 0;
    for (std::size_t i = size; i > 0; --i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
    return value;
}

void Append(std::string& bytes, std::uint32_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i, value >>= 8)
        bytes += static_cast<char>(value & 0xFF);
}

/// Whether a failure says that there are no lists here.
bool SaysNone(int error) { return error == ENODATA || error == EOPNOTSUPP || error == ENOSYS; }
} // namespace

std::optional<AccessList> AccessList::Of(std::string const& path, ErrorNumber& error)
{
    error = 0;
    std::string bytes(kMost, '\0');
    ssize_t const size = getxattr(path.c_str(), kName, bytes.data(), bytes.size());
    if (size < 0)
    {
        error = SaysNone(errno) ? 0 : errno;
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(size));
    if (bytes.size() < kHeader || (bytes.size() - kHeader) % kEntry != 0 || Number(bytes, 0, 4) != kVersion)
    {
        error = EPROTO;
        return std::nullopt;
    }
    AccessList list;
    for (std::size_t at = kHeader; at < bytes.size(); at += kEntry)
        list.mEntries.push_back({Number(bytes, at, 2), Number(bytes, at + 2, 2), Number(bytes, at + 4, 4)});
    return list;
}

ErrorNumber AccessList::SetTo(int descriptor) const
{
    std::string bytes;
    Append(bytes, kVersion, 4);
    for (Entry const& entry : mEntries)
    {
        Append(bytes, entry.tag, 2);
        Append(bytes, entry.rights, 2);
        Append(bytes, entry.id, 4);
    }
    return fsetxattr(descriptor, kName, bytes.data(), bytes.size(), 0) == 0 ? 0 : errno;
}

ErrorNumber AccessList::RemoveFrom(int descriptor)
{
    return fremovexattr(descriptor, kName) == 0 || SaysNone(errno) ? 0 : errno;
}

void AccessList::NarrowForOtherGroup()
{
    // Who was in the former group is now one of the others. Who is in the new one may have been held back as
    // one of the others or by a named group, and now has the new group's rights beside those.
    unsigned former = kAllRights;
    unsigned others = kAllRights;
    unsigned named = kAllRights;
    for (Entry const& entry : mEntries)
    {
        if (entry.tag == kGroup || entry.tag == kMask)
            former &= entry.rights;
        else if (entry.tag == kOthers)
            others &= entry.rights;
        else if (entry.tag == kNamedGroup)
            named &= entry.rights;
    }
    for (Entry& entry : mEntries)
    {
        if (entry.tag == kGroup)
            entry.rights = former & others & named;
        else if (entry.tag == kOthers)
            entry.rights = former & others;
    }
}

unsigned AccessList::Common() const
{
    unsigned common = kAllRights;
    for (Entry const& entry : mEntries)
        if (entry.tag != kOwner)
            common &= entry.rights;
    return common;
}
} // namespace KORVA::SYSTEM
