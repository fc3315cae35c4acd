#include "Support/SystemCalls.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <string>
#include <utility>

namespace KORVA::TESTS
{
namespace
{
Faults* sFaults = nullptr;

bool IsRegular(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// The error of this call; 0 for none, also where nobody wants any.
int ErrorOf(Call call) { return sFaults ? sFaults->Next(call) : 0; }

/// A call that moves bytes: `count` becomes what it may move, or the call has failed.
bool HasFailed(Call call, std::size_t& count)
{
    int const error = ErrorOf(call);
    if (error == kShort && count > 1)
        count /= 2;
    if (error == kTakesNothing)
        count = 0;
    if (error <= 0)
        return false;
    errno = error;
    return true;
}

bool HasFailed(Call call)
{
    std::size_t none = 0;
    return HasFailed(call, none);
}
} // namespace

Faults::Faults(std::vector<Fault> faults) : mFaults(std::move(faults)), mCounts(mFaults.size(), 0)
{
    sFaults = this;
}

Faults::~Faults() { sFaults = nullptr; }

int Faults::Next(Call call)
{
    int error = 0;
    for (std::size_t i = 0; i < mFaults.size(); ++i)
    {
        Fault const& fault = mFaults[i];
        if (fault.call != call)
            continue;
        int const number = ++mCounts[i];
        if (number >= fault.first && number - fault.first < fault.times)
            error = fault.error;
    }
    return error;
}
} // namespace KORVA::TESTS

using namespace KORVA::TESTS;

extern "C" [[gnu::visibility("default")]] ssize_t read(int descriptor, void* data, std::size_t count)
{
    if (sFaults && IsRegular(descriptor) && HasFailed(Call::kRead, count))
        return -1;
    return syscall(SYS_read, descriptor, data, count);
}

extern "C" [[gnu::visibility("default")]] ssize_t write(int descriptor, void const* data, std::size_t count)
{
    if (sFaults && IsRegular(descriptor) && HasFailed(Call::kWrite, count))
        return -1;
    return syscall(SYS_write, descriptor, data, count);
}

extern "C" [[gnu::visibility("default")]] ssize_t pread(int descriptor, void* data, std::size_t count,
                                                        off_t at)
{
    if (HasFailed(Call::kReadAt, count))
        return -1;
    return syscall(SYS_pread64, descriptor, data, count, at);
}

extern "C" [[gnu::visibility("default")]] ssize_t pwrite(int descriptor, void const* data, std::size_t count,
                                                         off_t at)
{
    if (HasFailed(Call::kWriteAt, count))
        return -1;
    return syscall(SYS_pwrite64, descriptor, data, count, at);
}

extern "C" [[gnu::visibility("default")]] int openat(int directory, char const* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    mode_t const mode = flags & O_CREAT ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if (HasFailed(Call::kOpen))
        return -1;
    return static_cast<int>(syscall(SYS_openat, directory, path, flags, mode));
}

extern "C" [[gnu::visibility("default")]] int open(char const* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    mode_t const mode = flags & O_CREAT ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return openat(AT_FDCWD, path, flags, mode);
}

extern "C" [[gnu::visibility("default")]] int ftruncate(int descriptor, off_t size) noexcept
{
    if (HasFailed(Call::kSetSize))
        return -1;
    return static_cast<int>(syscall(SYS_ftruncate, descriptor, size));
}

extern "C" [[gnu::visibility("default")]] int fdatasync(int descriptor)
{
    if (HasFailed(Call::kFlushContent))
        return -1;
    return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}

extern "C" [[gnu::visibility("default")]] int sigtimedwait(sigset_t const* signals, siginfo_t* what,
                                                           timespec const* time)
{
    if (HasFailed(Call::kTakeSignal))
        return -1;
    // The kernel's own sets have a bit for each signal.
    return static_cast<int>(syscall(SYS_rt_sigtimedwait, signals, what, time, _NSIG / 8));
}

extern "C" [[gnu::visibility("default")]] ssize_t
copy_file_range(int from, off64_t* fromAt, int to, off64_t* toAt, std::size_t count, unsigned flags)
{
    if (HasFailed(Call::kCopyFileRange, count))
        return -1;
    return syscall(SYS_copy_file_range, from, fromAt, to, toAt, count, flags);
}

extern "C" [[gnu::visibility("default")]] ssize_t sendfile(int to, int from, off_t* at,
                                                           std::size_t count) noexcept
{
    if (HasFailed(Call::kSendFile, count))
        return -1;
    return syscall(SYS_sendfile, to, from, at, count);
}

extern "C" [[gnu::visibility("default")]] int stat(char const* path, struct stat* status) noexcept
{
    if (HasFailed(Call::kStat))
        return -1;
    return static_cast<int>(syscall(SYS_newfstatat, AT_FDCWD, path, status, 0));
}

extern "C" [[gnu::visibility("default")]] int fsync(int descriptor)
{
    struct stat status;
    if (sFaults && fstat(descriptor, &status) == 0)
    {
        bool const isDirectory = S_ISDIR(status.st_mode);
        sFaults->Note(isDirectory ? "flush the directory" : "flush the file");
        if (HasFailed(isDirectory ? Call::kFlushDirectory : Call::kFlushFile))
            return -1;
    }
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

extern "C" [[gnu::visibility("default")]] int renameat(int fromAt, char const* from, int toAt,
                                                       char const* to) noexcept
{
    if (sFaults)
        sFaults->Note("rename");
    if (HasFailed(Call::kRename))
        return -1;
    return static_cast<int>(syscall(SYS_renameat2, fromAt, from, toAt, to, 0));
}

extern "C" [[gnu::visibility("default")]] int rename(char const* from, char const* to) noexcept
{
    return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

extern "C" [[gnu::visibility("default")]] int fsetxattr(int descriptor, char const* name, void const* value,
                                                        std::size_t size, int flags) noexcept
{
    if (HasFailed(Call::kSetAttribute))
        return -1;
    return static_cast<int>(syscall(SYS_fsetxattr, descriptor, name, value, size, flags));
}
