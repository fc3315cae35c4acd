// Work done in a process of its own.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace KORVA::TESTS
{
/// Runs `work` in a copy of this process; its result (0 to 255), or -1 when the copy was killed.
inline int InChild(std::function<int()> const& work)
{
    pid_t const child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

/// The same as a user without privileges.
inline int InUnprivilegedChild(std::function<int()> const& work)
{
    constexpr uid_t kNobody = 65534;
    return InChild([&work] {
        if (geteuid() == 0 && (setegid(kNobody) != 0 || seteuid(kNobody) != 0))
            return 255;
        return work();
    });
}
} // namespace KORVA::TESTS
