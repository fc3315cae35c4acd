// Files opened with advisory locks, and the C streams over them.
#pragma once

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
/// held until the descriptor is closed. `descriptor` is set on `kOpened` only; the caller owns it.
OpenResult OpenFile(PathString const& path, Access access, Lock lock, int& descriptor);

void CloseFile(int descriptor);

/// Makes a stream that owns the descriptor. Null, and the descriptor stays the caller's, when `mode` (as of
/// fopen) does not match the access that the descriptor was opened with.
std::FILE* StreamOver(int descriptor, char const* mode);

/// The descriptor under a stream, standing where the stream stands: what the stream has buffered is written
/// and what it has read ahead is given back. The stream keeps the descriptor.
int SynchronizedDescriptor(std::FILE* stream);

/// Cuts or extends the file under a stream, past what the stream buffers. False on failure.
bool TruncateUnder(std::FILE* stream, std::int64_t length);

/// Moves the stream's position; `whence` as of fseek. False on failure.
bool Seek(std::FILE* stream, std::int64_t offset, int whence);

/// The stream's position in bytes; 0 when it has none.
std::int64_t Tell(std::FILE* stream);

/// Whether anything is there under the path, following links.
bool FileExists(PathString const& path);
bool IsDirectory(PathString const& path);
} // namespace KORVA::PLATFORM
