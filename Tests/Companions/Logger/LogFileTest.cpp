// Where the log file lies and what gets into it.
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

using Environment = std::map<std::string, std::string>;

/// Runs the program that logs with exactly these variables. Its exit code, -1 when it was killed.
int RunLogger(Environment const& environment, std::vector<std::string> arguments)
{
    std::string const program = TESSIO_BINARY_DIR "/bin/logger_program";
    arguments.insert(arguments.begin(), program);
    std::vector<std::string> settings;
    for (auto const& [name, value] : environment)
        settings.push_back(name + "=" + value);
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (std::string& setting : settings)
        envp.push_back(setting.data());
    envp.push_back(nullptr);
    pid_t const child = fork();
    if (child == 0)
    {
        execve(program.c_str(), argv.data(), envp.data());
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

std::vector<std::string> NamesIn(fs::path const& directory)
{
    std::vector<std::string> names;
    for (auto const& entry : fs::recursive_directory_iterator(directory))
        if (!entry.is_directory())
            names.push_back(entry.path().lexically_relative(directory).string());
    std::sort(names.begin(), names.end());
    return names;
}

class LogFileTest : public ::testing::Test
{
protected:
    fs::path Path(char const* name) const { return directory.Path() / name; }

    /// How often `text` occurs in the file.
    static int Occurrences(fs::path const& file, std::string const& text)
    {
        std::string const content = Content(file);
        int count = 0;
        for (std::size_t at = content.find(text); at != std::string::npos; at = content.find(text, at + 1))
            ++count;
        return count;
    }

    TemporaryDirectory directory;
};

TEST_F(LogFileTest, LiesInTheDirectoryThatTheVariableNames)
{
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", directory.Path()}, {"HOME", Path("home")}},
                        {"message", "Some.log", "the text"}),
              0);
    EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"Some.log"});
    EXPECT_EQ(Occurrences(Path("Some.log"), "the text"), 1);
    EXPECT_EQ(Occurrences(Path("Some.log"), "Some/Source"), 1);
    EXPECT_EQ(Occurrences(Path("Some.log"), "void Some::Function(int)"), 1);
    EXPECT_EQ(Occurrences(Path("Some.log"), "123456789"), 1);
    EXPECT_EQ(Occurrences(Path("Some.log"), "\n"), 1);
}

TEST_F(LogFileTest, ItsDirectoryIsMade)
{
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", Path("new") / "newer"}}, {"message", "Some.log", "the text"}), 0);
    EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"new/newer/Some.log"});
}

TEST_F(LogFileTest, LiesUnderTheStateDirectoryByDefault)
{
    EXPECT_EQ(RunLogger({{"XDG_STATE_HOME", Path("state")}, {"HOME", Path("home")}},
                        {"message", "Some.log", "the text"}),
              0);
    EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"state/korva/Some.log"});
}

TEST_F(LogFileTest, LiesUnderTheHomeDirectoryWithoutAStateDirectory)
{
    EXPECT_EQ(RunLogger({{"HOME", Path("home")}}, {"message", "Some.log", "the text"}), 0);
    EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"home/.local/state/korva/Some.log"});
    EXPECT_EQ(RunLogger({{"HOME", Path("home2")}, {"XDG_STATE_HOME", ""}, {"KORVA_LOG_DIR", ""}},
                        {"message", "Some.log", "the text"}),
              0);
    EXPECT_TRUE(fs::exists(Path("home2/.local/state/korva/Some.log")));
}

TEST_F(LogFileTest, IsOpenedAtTheEnd)
{
    Environment const environment{{"KORVA_LOG_DIR", directory.Path()}};
    EXPECT_EQ(RunLogger(environment, {"message", "Some.log", "the first"}), 0);
    EXPECT_EQ(RunLogger(environment, {"message", "Some.log", "the second"}), 0);
    EXPECT_EQ(Occurrences(Path("Some.log"), "the first"), 1);
    EXPECT_EQ(Occurrences(Path("Some.log"), "the second"), 1);
}

TEST_F(LogFileTest, KeepsTheFirstName)
{
    EXPECT_EQ(
        RunLogger({{"KORVA_LOG_DIR", directory.Path()}}, {"renamed", "First.log", "Second.log", "the text"}),
        0);
    EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"First.log"});
}

TEST_F(LogFileTest, IsNoneWithoutAName)
{
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", directory.Path()}}, {"unnamed", "the text"}), 0);
    EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>());
}

TEST_F(LogFileTest, GetsWhatASinkLetsThrough)
{
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", directory.Path()}}, {"sink", "Some.log", "swallowed", "passed"}),
              0);
    EXPECT_EQ(Occurrences(Path("Some.log"), "swallowed"), 0);
    EXPECT_EQ(Occurrences(Path("Some.log"), "passed"), 1);
}

TEST_F(LogFileTest, Rotates)
{
    // More than a file and its old ones hold, even when the queue dropped all that it may.
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", directory.Path()}}, {"many", "Some.log", "6000"}), 0);
    EXPECT_EQ(NamesIn(directory.Path()),
              (std::vector<std::string>{"Some.1.log", "Some.2.log", "Some.3.log", "Some.log"}));
    for (std::string const& name : NamesIn(directory.Path()))
        EXPECT_LE(fs::file_size(directory.Path() / name), 1024u * 1024u) << name;
}

TEST_F(LogFileTest, ADirectoryThatCannotBeMadeFailsNobody)
{
    fs::path const file = directory.File("file", "in the way");
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", file}}, {"message", "Some.log", "the text"}), 0);
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", "/proc/no/such/place"}}, {"message", "Some.log", "the text"}), 0);
    EXPECT_EQ(Content(file), "in the way");
}

TEST_F(LogFileTest, NoDirectoryAtAllFailsNobody)
{
    EXPECT_EQ(RunLogger({}, {"message", "Some.log", "the text"}), 0);
}

TEST_F(LogFileTest, AFileThatNeverOpensHoldsNobodyUp)
{
    // Opening a pipe that nobody reads waits for ever.
    ASSERT_EQ(mkfifo(Path("Some.log").c_str(), 0600), 0);
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", directory.Path()}}, {"message", "Some.log", "the text"}), 0);
}

TEST_F(LogFileTest, AFullDiskFailsNobody)
{
    fs::create_symlink("/dev/full", Path("Some.log"));
    EXPECT_EQ(RunLogger({{"KORVA_LOG_DIR", directory.Path()}}, {"message", "Some.log", "the text"}), 0);
}
} // namespace
} // namespace KORVA::TESTS
