#include "Integration/ToolRun.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <linux/capability.h>

#include <csignal>
#include <set>
#include <stdexcept>

namespace KORVA::TESTS
{
Running::Running(std::vector<std::string> const& command, std::string const& directory,
                 std::function<void()> const& prepare)
{
    std::string const out = mPipes.File("out", "").string();
    std::string const err = mPipes.File("err", "").string();
    std::vector<char*> arguments;
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    mChild = fork();
    if (mChild < 0)
        throw std::runtime_error("cannot fork");
    if (mChild > 0)
        return;
    EndWithParent();
    if (chdir(directory.c_str()) == 0 && dup2(open("/dev/null", O_RDONLY), 0) == 0 &&
        dup2(open(out.c_str(), O_WRONLY | O_APPEND), 1) == 1 &&
        dup2(open(err.c_str(), O_WRONLY | O_APPEND), 2) == 2)
    {
        closefrom(3);
        if (prepare)
            prepare();
        execv(arguments[0], arguments.data());
    }
    _exit(127);
}

Running::~Running()
{
    if (mChild < 0)
        return;
    kill(mChild, SIGKILL);
    waitpid(mChild, nullptr, 0);
}

void Running::Signal(int signal) const
{
    if (mChild >= 0)
        kill(mChild, signal);
}

bool Running::HasEnded()
{
    if (mChild >= 0 && waitpid(mChild, &mStatus, WNOHANG) == mChild)
        mChild = -1;
    return mChild < 0;
}

Outcome Running::Wait()
{
    if (mChild >= 0)
        waitpid(mChild, &mStatus, 0);
    mChild = -1;
    return {WIFEXITED(mStatus) ? WEXITSTATUS(mStatus) : 128 + WTERMSIG(mStatus),
            Content(mPipes.Path() / "out"), Content(mPipes.Path() / "err")};
}

std::string Pattern(std::size_t size)
{
    std::string text;
    for (std::size_t line = 0; text.size() < size; ++line)
        text += "line " + std::to_string(line) + "\n";
    text.resize(size);
    return text;
}

void WithoutPrivileges()
{
    // What is not in the bounding set is lost with the next program. Nobody but root has any of it.
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
}

void WithLargestFile(std::uint64_t bytes)
{
    rlimit const limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

void WithDescriptors(unsigned count)
{
    rlimit const limit{count, count};
    setrlimit(RLIMIT_NOFILE, &limit);
}

std::vector<std::string> ToolRun::Command(std::vector<std::string> const& arguments) const
{
    std::vector<std::string> command{"/usr/bin/env"};
    for (char const* const name : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                   "XDG_STATE_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_DIRS"})
        command.insert(command.end(), {"-u", name});
    command.insert(command.end(), environment.begin(), environment.end());
    command.emplace_back(TESSIO_BINARY_DIR "/bin/tessio");
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

Outcome ToolRun::Do(std::vector<std::string> const& arguments, std::function<void()> const& prepare) const
{
    return Running(Command(arguments), directory.Path().string(), prepare).Wait();
}

void ToolRun::Succeeds(std::vector<std::string> const& arguments, std::string const& out,
                       std::string const& err) const
{
    Outcome const outcome = Do(arguments);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, out);
    EXPECT_EQ(outcome.err, err);
}

void ToolRun::Fails(std::vector<std::string> const& arguments, int exitCode, std::string const& err,
                    std::function<void()> const& prepare) const
{
    Outcome const outcome = Do(arguments, prepare);
    EXPECT_EQ(outcome.exitCode, exitCode);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, err);
}

std::string ToolRun::Names() const
{
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(directory.Path()))
        names.insert(entry.path().filename().string());
    std::string all;
    for (std::string const& name : names)
        all += (all.empty() ? "" : " ") + name;
    return all;
}
} // namespace KORVA::TESTS
