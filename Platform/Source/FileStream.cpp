#include "Platform/FileStream.h"

#include "Platform/StringServices.h"
#include "System/Files.h"
#include "System/Locks.h"
#include "System/Status.h"
#include "System/Stream.h"
#include "System/Transfer.h"

#include <cerrno>
#include <optional>

namespace KORVA::PLATFORM
{
namespace
{
SYSTEM::Access SystemAccess(Access access)
{
    switch (access)
    {
    case Access::kRead:
        return SYSTEM::Access::kRead;
    case Access::kWrite:
        return SYSTEM::Access::kWrite;
    case Access::kReadWrite:
        return SYSTEM::Access::kReadWrite;
    }
    return SYSTEM::Access::kRead;
}

/// Whether the path leads to the opened file. Whoever saves replaces a file, and lets go of the old one: a
/// lock on that is worth nothing.
bool IsStillNamed(PathString const& path, SYSTEM::Descriptor const& opened)
{
    SYSTEM::Status own;
    SYSTEM::Status named;
    return SYSTEM::ReadStatus(opened.Get(), own) != 0 ||
           SYSTEM::ReadStatus(path.FileSystemRepresentation(), named) != 0 || own.identity == named.identity;
}

/// As `OpenFile`; nothing where the file was replaced before it was locked.
std::optional<OpenResult> OpenOnce(PathString const& path, Access access, Lock lock, int& descriptor)
{
    int error = 0;
    SYSTEM::Descriptor opened =
        SYSTEM::OpenFile(path.FileSystemRepresentation(), SystemAccess(access), error);
    if (opened && lock != Lock::kNone)
        error = SYSTEM::TryLock(opened.Get(), lock == Lock::kShared ? SYSTEM::LockKind::kShared
                                                                    : SYSTEM::LockKind::kExclusive);
    if (error != 0)
        return error == EWOULDBLOCK ? OpenResult::kLocked : OpenResult::kFailed;
    if (lock != Lock::kNone && !IsStillNamed(path, opened))
        return std::nullopt;
    descriptor = opened.Release();
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

void CloseFile(int descriptor) { SYSTEM::Descriptor const closed(descriptor); }

std::unique_ptr<FileStream> FileStream::Over(int descriptor, char const* mode)
{
    int error = 0;
    std::FILE* const stream = SYSTEM::OpenStream(descriptor, mode, error);
    if (!stream)
        return nullptr;
    std::int64_t position = 0;
    if (SYSTEM::ReadPosition(descriptor, position) != 0)
        position = -1;
    return std::unique_ptr<FileStream>(new FileStream(stream, position));
}

FileStream::~FileStream() { std::fclose(mStream); }

std::size_t FileStream::Write(void const* bytes, std::size_t count)
{
    if (mLast == Last::kRead)
        Seek(0, SEEK_CUR);
    mLast = Last::kWrite;
    std::size_t const held = SYSTEM::HeldBack(mStream);
    std::size_t const taken = std::fwrite(bytes, 1, count, mStream);
    // The C library answers that all was taken also when it has just dropped it.
    if (std::ferror(mStream))
        NoteLoss(errno, taken, held);
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
        NoteError(errno);
    if (mPosition >= 0)
        mPosition += static_cast<std::int64_t>(delivered);
    return delivered;
}

bool FileStream::Seek(std::int64_t offset, int whence)
{
    // Relative to where the caller stands, not to where the bytes have come.
    std::int64_t const from = mPosition;
    bool const hasWritten = mLast == Last::kWrite;
    std::size_t const held = SYSTEM::HeldBack(mStream);
    int error = SYSTEM::SeekStream(mStream, offset, whence);
    if (error != 0 && hasWritten && std::ferror(mStream))
    {
        NoteLoss(error, 0, held);
        error = whence == SEEK_CUR && from >= 0 ? SYSTEM::SeekStream(mStream, from, SEEK_SET) : 0;
        if (error == 0)
            error = SYSTEM::SeekStream(mStream, offset, whence);
    }
    bool const moved = error == 0;
    mLast = Last::kNeither;
    if (mPosition >= 0)
        mPosition = moved && whence == SEEK_SET ? offset : Tell();
    return moved;
}

std::int64_t FileStream::Tell() const
{
    std::int64_t position = 0;
    return SYSTEM::ReadStreamPosition(mStream, position) == 0 ? position : 0;
}

bool FileStream::Truncate(std::int64_t length) { return SYSTEM::SetSize(Descriptor(), length) == 0; }

bool FileStream::WriteOut()
{
    if (mLast != Last::kWrite)
        return true;
    std::size_t const held = SYSTEM::HeldBack(mStream);
    if (std::fflush(mStream) == 0)
        return true;
    NoteLoss(errno, 0, held);
    return false;
}

bool FileStream::FlushToDevice()
{
    bool const written = WriteOut();
    int const error = SYSTEM::FlushContent(Descriptor());
    // What is no file on a device has nothing to wait for.
    if (error != 0 && error != EINVAL && error != EROFS)
    {
        NoteError(error);
        return false;
    }
    return written;
}

int FileStream::Descriptor() const { return SYSTEM::DescriptorOf(mStream); }

void FileStream::NoteError(int error)
{
    if (mFirstError == 0)
        mFirstError = error;
    // It is noted; the next failure is to be seen as one.
    std::clearerr(mStream);
}

/// After a failure: what the caller was told minus where the stream has come is lost. `taken` is what the
/// call that failed has answered, `held` what was held back before.
void FileStream::NoteLoss(int error, std::size_t taken, std::size_t held)
{
    NoteError(error);
    if (mPosition < 0)
    {
        // Of a file without positions nobody knows how much of it went through.
        mLostBytes += held + taken - SYSTEM::HeldBack(mStream);
        return;
    }
    std::int64_t const told = mPosition + static_cast<std::int64_t>(taken);
    mPosition = Tell();
    if (told > mPosition)
        mLostBytes += static_cast<std::uint64_t>(told - mPosition);
}

bool FileExists(PathString const& path)
{
    SYSTEM::Status status;
    return SYSTEM::ReadStatus(path.FileSystemRepresentation(), status) == 0;
}

bool IsDirectory(PathString const& path)
{
    SYSTEM::Status status;
    return SYSTEM::ReadStatus(path.FileSystemRepresentation(), status) == 0 &&
           status.kind == SYSTEM::FileKind::kDirectory;
}
} // namespace KORVA::PLATFORM
