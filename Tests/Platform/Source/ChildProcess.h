// A copy of the test process that does something on the side.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>

namespace KORVA::TESTS
{
/// Runs a function in a forked process and answers what the function returns as exit status. The process is
/// killed when it is still there on destruction. It inherits open files: fork before opening what the
/// parent is to close.
class ChildProcess
{
public:
    explicit ChildProcess(std::function<int()> const& body) : mId(fork())
    {
        if (mId < 0)
            throw std::runtime_error("no child process");
        if (mId == 0)
            _exit(body());
    }
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;
    ~ChildProcess()
    {
        if (mEnded)
            return;
        kill(mId, SIGKILL);
        Wait();
    }

    /// The exit status, or the negative number of the signal that ended it.
    int Wait()
    {
        int status = 0;
        waitpid(mId, &status, 0);
        mEnded = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    /// Whether it ended by itself within that time.
    bool EndsWithin(std::chrono::milliseconds time)
    {
        auto const end = std::chrono::steady_clock::now() + time;
        while (!mEnded && std::chrono::steady_clock::now() < end)
        {
            int status = 0;
            mEnded = waitpid(mId, &status, WNOHANG) == mId;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return mEnded;
    }

private:
    pid_t mId;
    bool mEnded = false;
};

/// What the function returns in a process without the superuser's privileges (0 to 255).
inline int RunUnprivileged(std::function<int()> const& body)
{
    constexpr unsigned kNobody = 65534;
    constexpr int kNotDropped = 255;
    return ChildProcess([&body] {
               if (geteuid() == 0 && (setgroups(0, nullptr) || setegid(kNobody) || seteuid(kNobody)))
                   return kNotDropped;
               return body();
           })
        .Wait();
}

/// Another process that holds a lock on a file for as long as this object lives.
class LockHolder
{
public:
    /// `operation` as of flock.
    LockHolder(std::filesystem::path const& path, int operation)
        : mReady(MakePipe()), mProcess([this, &path, operation] { return Hold(path, operation); })
    {
        close(mReady.write);
        char token = 0;
        bool const locked = read(mReady.read, &token, 1) == 1;
        close(mReady.read);
        if (!locked)
            throw std::runtime_error("no lock on " + path.string());
    }

private:
    struct Pipe
    {
        int read;
        int write;
    };

    static Pipe MakePipe()
    {
        int ends[2];
        if (pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        return {ends[0], ends[1]};
    }

    int Hold(std::filesystem::path const& path, int operation) const
    {
        int const descriptor = open(path.c_str(), O_RDONLY);
        if (descriptor < 0 || flock(descriptor, operation | LOCK_NB) != 0 || write(mReady.write, "1", 1) != 1)
            return 1;
        for (;;)
            pause();
    }

    Pipe mReady;
    ChildProcess mProcess;
};
} // namespace KORVA::TESTS
