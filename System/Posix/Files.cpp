#include "System/Files.h"

#include "Retry.h"
#include "System/Paths.h"
#include "System/Transfer.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace KORVA::SYSTEM
{
namespace
{
int FlagsOf(Access access)
{
    switch (access)
    {
    case Access::kRead:
        return O_RDONLY;
    case Access::kWrite:
        return O_WRONLY;
    case Access::kReadWrite:
        return O_RDWR;
    }
    return O_RDONLY;
}

Descriptor Open(std::string const& path, int flags, ErrorNumber& error)
{
    Descriptor opened(Uninterrupted([&] { return open(path.c_str(), flags | O_CLOEXEC, 0666); }));
    error = opened ? 0 : errno;
    return opened;
}
} // namespace

Descriptor OpenFile(std::string const& path, Access access, ErrorNumber& error)
{
    return Open(path, FlagsOf(access) | O_NONBLOCK | O_NOCTTY, error);
}

Descriptor OpenFileAndWait(std::string const& path, ErrorNumber& error)
{
    return Open(path, O_RDONLY | O_NOCTTY, error);
}

Descriptor OpenDirectory(std::string const& path, ErrorNumber& error)
{
    return Open(path, O_RDONLY | O_DIRECTORY, error);
}

ErrorNumber MakeFile(std::string const& path)
{
    ErrorNumber error = 0;
    static_cast<void>(Open(path, O_WRONLY | O_CREAT | O_EXCL, error));
    return error;
}

ErrorNumber RemoveFile(std::string const& path) { return unlink(path.c_str()) == 0 ? 0 : errno; }

ErrorNumber RenameFile(std::string const& from, std::string const& to)
{
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

ErrorNumber FlushDirectoryOf(std::string const& path)
{
    ErrorNumber error = 0;
    Descriptor const directory = OpenDirectory(DirectoryOf(path), error);
    return directory ? FlushNames(directory) : error;
}

ErrorNumber FlushNames(Descriptor const& directory)
{
    ErrorNumber const error = FlushToDevice(directory.Get());
    return error == EINVAL || error == EROFS ? 0 : error;
}
} // namespace KORVA::SYSTEM
