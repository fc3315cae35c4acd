#include "Platform/FileStream.h"

#include "Platform/StringServices.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

namespace KORVA::PLATFORM
{
namespace
{
int AccessFlags(Access access)
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
} // namespace

std::unique_ptr<PathString> PathString::From(std::u16string_view path)
{
    std::optional<std::string> utf8 = ToUTF8(path);
    if (!utf8 || utf8->find('\0') != std::string::npos)
        return nullptr;
    return std::unique_ptr<PathString>(new PathString(std::move(*utf8)));
}

OpenResult OpenFile(PathString const& path, Access access, Lock lock, int& descriptor)
{
    int const opened = open(path.FileSystemRepresentation(), AccessFlags(access) | O_NONBLOCK | O_CLOEXEC);
    if (opened < 0)
        return errno == EAGAIN ? OpenResult::kLocked : OpenResult::kFailed;
    if (lock != Lock::kNone && flock(opened, (lock == Lock::kShared ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0)
    {
        bool const held = errno == EWOULDBLOCK;
        close(opened);
        return held ? OpenResult::kLocked : OpenResult::kFailed;
    }
    descriptor = opened;
    return OpenResult::kOpened;
}

void CloseFile(int descriptor) { close(descriptor); }

std::FILE* StreamOver(int descriptor, char const* mode) { return fdopen(descriptor, mode); }

int SynchronizedDescriptor(std::FILE* stream)
{
    std::fflush(stream);
    return fileno(stream);
}

bool TruncateUnder(std::FILE* stream, std::int64_t length) { return ftruncate(fileno(stream), length) == 0; }

bool Seek(std::FILE* stream, std::int64_t offset, int whence) { return fseeko(stream, offset, whence) == 0; }

std::int64_t Tell(std::FILE* stream)
{
    off_t const position = ftello(stream);
    return position < 0 ? 0 : position;
}

bool FileExists(PathString const& path)
{
    struct stat status;
    return stat(path.FileSystemRepresentation(), &status) == 0;
}

bool IsDirectory(PathString const& path)
{
    struct stat status;
    return stat(path.FileSystemRepresentation(), &status) == 0 && S_ISDIR(status.st_mode);
}
} // namespace KORVA::PLATFORM
