// What the system knows of a file.
#pragma once

#include "System/ErrorNumber.h"

#include <cstdint>
#include <string>

namespace KORVA::SYSTEM
{
enum class FileKind
{
    kRegular,
    kDirectory,
    kSymbolicLink,
    kOther
};

/// Which file it is, whatever its names are.
struct FileIdentity
{
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    friend bool operator==(FileIdentity const&, FileIdentity const&) = default;
};

/// Since 1970-01-01T00:00:00Z; the seconds are negative before, the nanoseconds never.
struct Date
{
    std::int64_t seconds = 0;
    std::uint32_t nanoseconds = 0;
};

struct Status
{
    FileIdentity identity;
    FileKind kind = FileKind::kOther;
    /// In bytes.
    std::uint64_t size = 0;
    /// Of owner, group and all others, three bits each: octal 0750, say.
    unsigned permissions = 0;
    Date modified;
};

/// Of the file behind symbolic links. `status` is unchanged on failure, here and below.
ErrorNumber ReadStatus(std::string const& path, Status& status);

/// Of what has the name itself.
ErrorNumber ReadStatusOfLink(std::string const& path, Status& status);

/// Of the file that was opened; a reference will do.
ErrorNumber ReadStatus(int descriptor, Status& status);

/// When the file was made. `EOPNOTSUPP` where the file system does not keep that.
ErrorNumber ReadCreationDate(std::string const& path, Date& date);
} // namespace KORVA::SYSTEM
