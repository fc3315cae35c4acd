// Running the tool as its users do, and under worse conditions.
#pragma once

#include "Support/Process.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
/// A program under way.
class Running
{
public:
    /// `prepare` is called in the new process, last of all.
    Running(std::vector<std::string> const& command, std::string const& directory,
            std::function<void()> const& prepare = {});
    Running(Running const&) = delete;
    Running& operator=(Running const&) = delete;
    /// Kills it when nobody waited.
    ~Running();

    void Signal(int signal) const;
    bool HasEnded();
    Outcome Wait();

private:
    TemporaryDirectory mPipes;
    pid_t mChild = -1;
    int mStatus = 0;
};

/// Every stretch of it differs from every other, so that no piece can stand in another's place.
std::string Pattern(std::size_t size);

/// In `prepare`: root may no more than the permissions of its own files say.
void WithoutPrivileges();

/// In `prepare`: no file grows beyond this.
void WithLargestFile(std::uint64_t bytes);

/// In `prepare`: no more descriptors than these.
void WithDescriptors(unsigned count);

/// The tool in a directory of its own, for a user whose home is /home/ada and who has configured nothing.
class ToolRun : public ::testing::Test
{
protected:
    std::vector<std::string> Command(std::vector<std::string> const& arguments) const;

    Outcome Do(std::vector<std::string> const& arguments, std::function<void()> const& prepare = {}) const;
    void Succeeds(std::vector<std::string> const& arguments, std::string const& out = {},
                  std::string const& err = {}) const;
    void Fails(std::vector<std::string> const& arguments, int exitCode, std::string const& err,
               std::function<void()> const& prepare = {}) const;

    /// Every name in the directory, in order, blanks between them.
    std::string Names() const;
    std::filesystem::path Path(std::string const& name) const { return directory.Path() / name; }

    TemporaryDirectory directory;
    /// For the tool alone: NAME=VALUE.
    std::vector<std::string> environment{"HOME=/home/ada", "XDG_CONFIG_HOME=/none"};
};
} // namespace KORVA::TESTS
