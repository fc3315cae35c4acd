// Files opened with advisory locks, and the C streams over them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace KORVA::PLATFORM
{
/// A path in the system's own representation.
class PathString
{
public:
    /// Null for a text that the system can't take as a path: a lone surrogate or a null character in it.
    static std::unique_ptr<PathString> From(std::u16string_view path);

    char const* FileSystemRepresentation() const { return mPath.c_str(); }

private:
    explicit PathString(std::string path) : mPath(std::move(path)) {}

    std::string mPath;
};

enum class Access
{
    kRead,
    kWrite,
    kReadWrite
};

enum class Lock
{
    kNone,
    kShared,
    kExclusive
};

enum class OpenResult
{
    kOpened,
    /// Somebody else holds a lock that conflicts.
    kLocked,
    kFailed
};

/// Opens an existing file without waiting, neither for a lock nor for a peer, and takes the lock, which is
/// held until the descriptor is closed. A locked file is the one that the path names once it is locked.
/// `descriptor` is set on `kOpened` only; the caller owns it.
OpenResult OpenFile(PathString const& path, Access access, Lock lock, int& descriptor);

void CloseFile(int descriptor);

/// A buffered C stream over a descriptor, which it owns. It tells what a C stream keeps to itself: bytes that
/// it took and dropped later, because the system refused them. The C library's own rule that reading and
/// writing may follow each other only after a seek is kept in here. One thread at a time.
class FileStream
{
public:
    /// Null, and the descriptor stays the caller's, when `mode` (as of fopen) does not match the access that
    /// the descriptor was opened with.
    static std::unique_ptr<FileStream> Over(int descriptor, char const* mode);

    FileStream(FileStream const&) = delete;
    FileStream& operator=(FileStream const&) = delete;
    /// Writes what is held back, and closes the descriptor. What fails here nobody learns: `WriteOut` first.
    ~FileStream();

    /// As fwrite with an element size of 1, but for the order of reading and writing: how many bytes were
    /// taken. A failing stream may take bytes and drop them; `LostBytes` counts these.
    std::size_t Write(void const* bytes, std::size_t count);
    /// As fread with an element size of 1, but for the order of reading and writing.
    std::size_t Read(void* buffer, std::size_t count);

    /// Moves the position; `whence` as of fseek. What is held back is written first. It is lost when that
    /// fails, and the position is moved all the same. False when the position is not moved.
    bool Seek(std::int64_t offset, int whence);
    /// The position in bytes; 0 for a file without one.
    std::int64_t Tell() const;

    /// Cuts or extends the file, past what the stream holds back. False on failure.
    bool Truncate(std::int64_t length);

    /// Hands what is held back to the system. False when the system refuses it; it is lost then.
    bool WriteOut();
    /// The same, then waits until the content is on the device. False when either fails.
    bool FlushToDevice();

    /// Bytes that were taken and that no file has. For a file without positions, all that may be lost.
    std::uint64_t LostBytes() const { return mLostBytes; }
    /// The system's number of the first failure in moving bytes; 0 when there was none.
    int FirstError() const { return mFirstError; }

    /// The descriptor, which stays the stream's.
    int Descriptor() const;

private:
    enum class Last
    {
        kNeither,
        kRead,
        kWrite
    };

    FileStream(std::FILE* stream, std::int64_t position) : mStream(stream), mPosition(position) {}

    void NoteError(int error);
    void NoteLoss(int error, std::size_t taken, std::size_t held);

    std::FILE* mStream;
    /// Where the stream stands by all that was answered; negative for a file without positions.
    std::int64_t mPosition;
    std::uint64_t mLostBytes = 0;
    int mFirstError = 0;
    Last mLast = Last::kNeither;
};

/// Whether anything is there under the path, following links.
bool FileExists(PathString const& path);
bool IsDirectory(PathString const& path);
} // namespace KORVA::PLATFORM
