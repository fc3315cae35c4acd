#include "System/References.h"

#include "../Posix/Retry.h"
#include "System/Status.h"

#include <fcntl.h>

namespace KORVA::SYSTEM
{
namespace
{
Descriptor Open(int directory, std::string const& path, int flags, ErrorNumber& error)
{
    Descriptor opened(
        Uninterrupted([&] { return openat(directory, path.c_str(), flags | O_PATH | O_CLOEXEC); }));
    error = opened ? 0 : errno;
    return opened;
}
} // namespace

Descriptor OpenReference(std::string const& path, ErrorNumber& error)
{
    return Open(AT_FDCWD, path, 0, error);
}

Descriptor OpenDirectoryReference(std::string const& path, ErrorNumber& error)
{
    return Open(AT_FDCWD, path, O_DIRECTORY, error);
}

Descriptor OpenReferenceIn(Descriptor const& directory, std::string const& name, ErrorNumber& error)
{
    return Open(directory.Get(), name, O_NOFOLLOW, error);
}

std::string PathThrough(Descriptor const& descriptor)
{
    std::string path = "/proc/self/fd/" + std::to_string(descriptor.Get());
    Status through;
    Status itself;
    bool const isThere = ReadStatus(path, through) == 0 && ReadStatus(descriptor.Get(), itself) == 0 &&
                         through.identity == itself.identity;
    return isThere ? path : std::string();
}
} // namespace KORVA::SYSTEM
