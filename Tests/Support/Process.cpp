#include "Support/Process.h"

#include "Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace KORVA::TESTS
{
void EndWithParent() { prctl(PR_SET_PDEATHSIG, SIGKILL); }

Outcome RunProgram(std::vector<std::string> const& command, std::string const& directory,
                   std::string const& input)
{
    TemporaryDirectory const pipes;
    std::string const in = pipes.File("in", input).string();
    std::string const out = pipes.File("out", "").string();
    std::string const err = pipes.File("err", "").string();
    std::vector<char*> arguments;
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    pid_t const child = fork();
    if (child < 0)
        throw std::runtime_error("cannot fork");
    if (child == 0)
    {
        EndWithParent();
        bool const ready = chdir(directory.c_str()) == 0 && dup2(open(in.c_str(), O_RDONLY), 0) == 0 &&
                           dup2(open(out.c_str(), O_WRONLY), 1) == 1 &&
                           dup2(open(err.c_str(), O_WRONLY), 2) == 2;
        if (ready)
            execv(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), Content(out), Content(err)};
}
} // namespace KORVA::TESTS
