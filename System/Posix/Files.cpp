#include "System/Files.h"

#include "System/Transfer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace KORVA::SYSTEM
{
Descriptor OpenFile(std::string const& path, Access access, ErrorNumber& error)
{
    int const way = access == Access::kRead ? O_RDONLY : access == Access::kReadWrite ? O_RDWR : O_PATH;
    Descriptor opened(open(path.c_str(), way | O_NONBLOCK | O_CLOEXEC));
    error = opened ? 0 : errno;
    return opened;
}

std::string PathThrough(Descriptor const& descriptor)
{
    std::string path = "/proc/self/fd/" + std::to_string(descriptor.Get());
    struct stat through;
    struct stat itself;
    bool const isThere = stat(path.c_str(), &through) == 0 && fstat(descriptor.Get(), &itself) == 0 &&
                         through.st_dev == itself.st_dev && through.st_ino == itself.st_ino;
    return isThere ? path : std::string();
}

ErrorNumber MakeFile(std::string const& path)
{
    Descriptor made(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    return made || errno == EEXIST ? 0 : errno;
}

ErrorNumber RemoveFile(std::string const& path) { return unlink(path.c_str()) == 0 ? 0 : errno; }

ErrorNumber FlushDirectoryOf(std::string const& path)
{
    Descriptor const directory(open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return directory ? FlushNames(directory) : errno;
}

ErrorNumber FlushNames(Descriptor const& directory)
{
    ErrorNumber const error = FlushToDevice(directory.Get());
    return error == EINVAL || error == EROFS ? 0 : error;
}

std::string DirectoryOf(std::string const& path)
{
    std::size_t const slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}
} // namespace KORVA::SYSTEM
