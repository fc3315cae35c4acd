#include "Platform/FileStream.h"

#include "Platform/StringServices.h"

#include <fcntl.h>
#include <stdio_ext.h>
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

/// Whether the path leads to the opened file. Whoever saves replaces a file, and lets go of the old one: a
/// lock on that is worth nothing.
bool IsStillNamed(PathString const& path, int opened)
{
    struct stat own;
    struct stat named;
    return fstat(opened, &own) != 0 || stat(path.FileSystemRepresentation(), &named) != 0 ||
           (own.st_dev == named.st_dev && own.st_ino == named.st_ino);
}

/// As `OpenFile`; nothing where the file was replaced before it was locked.
std::optional<OpenResult> OpenOnce(PathString const& path, Access access, Lock lock, int& descriptor)
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
    if (lock != Lock::kNone && !IsStillNamed(path, opened))
    {
        close(opened);
        return std::nullopt;
    }
    descriptor = opened;
    return OpenResult::kOpened;
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
    constexpr int kAttempts = 10;
    for (int attempt = 0; attempt < kAttempts; ++attempt)
        if (std::optional<OpenResult> const result = OpenOnce(path, access, lock, descriptor))
            return *result;
    // Replaced again and again: others hold it all the time.
    return OpenResult::kLocked;
}

void CloseFile(int descriptor) { close(descriptor); }

std::unique_ptr<FileStream> FileStream::Over(int descriptor, char const* mode)
{
    std::FILE* const stream = fdopen(descriptor, mode);
    if (!stream)
        return nullptr;
    return std::unique_ptr<FileStream>(new FileStream(stream, lseek(descriptor, 0, SEEK_CUR)));
}

FileStream::~FileStream() { std::fclose(mStream); }

std::size_t FileStream::Write(void const* bytes, std::size_t count)
{
    if (mLast == Last::kRead)
        Seek(0, SEEK_CUR);
    mLast = Last::kWrite;
    std::size_t const held = __fpending(mStream);
    std::size_t const taken = std::fwrite(bytes, 1, count, mStream);
    // The C library answers that all was taken also when it has just dropped it.
    if (std::ferror(mStream))
        NoteLoss(taken, held);
    else if (mPosition >= 0)
        mPosition += static_cast<std::int64_t>(taken);
    return taken;
}

std::size_t FileStream::Read(void* buffer, std::size_t count)
{
    if (mLast == Last::kWrite)
        Seek(0, SEEK_CUR);
    mLast = Last::kRead;
    std::size_t const delivered = std::fread(buffer, 1, count, mStream);
    if (delivered < count && std::ferror(mStream))
        NoteError();
    if (mPosition >= 0)
        mPosition += static_cast<std::int64_t>(delivered);
    return delivered;
}

bool FileStream::Seek(std::int64_t offset, int whence)
{
    // Relative to where the caller stands, not to where the bytes have come.
    std::int64_t const from = mPosition;
    bool const hasWritten = mLast == Last::kWrite;
    std::size_t const held = __fpending(mStream);
    bool moved = fseeko(mStream, offset, whence) == 0;
    if (!moved && hasWritten && std::ferror(mStream))
    {
        NoteLoss(0, held);
        if (whence == SEEK_CUR && from >= 0)
            moved = fseeko(mStream, from, SEEK_SET) == 0 && fseeko(mStream, offset, SEEK_CUR) == 0;
        else
            moved = fseeko(mStream, offset, whence) == 0;
    }
    mLast = Last::kNeither;
    if (mPosition >= 0)
        mPosition = moved && whence == SEEK_SET ? offset : Tell();
    return moved;
}

std::int64_t FileStream::Tell() const
{
    off_t const position = ftello(mStream);
    return position < 0 ? 0 : position;
}

bool FileStream::Truncate(std::int64_t length) { return ftruncate(fileno(mStream), length) == 0; }

bool FileStream::WriteOut()
{
    if (mLast != Last::kWrite)
        return true;
    std::size_t const held = __fpending(mStream);
    if (std::fflush(mStream) == 0)
        return true;
    NoteLoss(0, held);
    return false;
}

bool FileStream::FlushToDevice()
{
    bool const written = WriteOut();
    int result = 0;
    do
        result = fdatasync(fileno(mStream));
    while (result != 0 && errno == EINTR);
    // What is no file on a device has nothing to wait for.
    if (result != 0 && errno != EINVAL && errno != EROFS)
    {
        NoteError();
        return false;
    }
    return written;
}

int FileStream::Descriptor() const { return fileno(mStream); }

void FileStream::NoteError()
{
    if (mFirstError == 0)
        mFirstError = errno;
    // It is noted; the next failure is to be seen as one.
    std::clearerr(mStream);
}

/// After a failure: what the caller was told minus where the stream has come is lost. `taken` is what the
/// call that failed has answered, `held` what was held back before.
void FileStream::NoteLoss(std::size_t taken, std::size_t held)
{
    NoteError();
    if (mPosition < 0)
    {
        // Of a file without positions nobody knows how much of it went through.
        mLostBytes += held + taken - __fpending(mStream);
        return;
    }
    std::int64_t const told = mPosition + static_cast<std::int64_t>(taken);
    mPosition = Tell();
    if (told > mPosition)
        mLostBytes += static_cast<std::uint64_t>(told - mPosition);
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
