// A scenario in a process of its own, without the threads of the tests before it.
#pragma once

#include "Support/TemporaryDirectory.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

// Plain fork is what the sanitizers know. The flag is documented, but no header declares it.
GTEST_DECLARE_bool_(death_test_use_fork);

namespace KORVA::TESTS
{
namespace FRESH_PROCESS
{
constexpr char kDirectory[] = "TESSIO_TEST_DIRECTORY";

/// Generous: only a process that hangs is ended by it.
constexpr unsigned kMostSeconds = 120;

/// Leaves the process as the test's own end would not: without the fixture's directory behind.
[[noreturn]] inline void Leave(TemporaryDirectory const& own, int code)
{
    std::error_code ignored;
    std::filesystem::remove_all(own.Path(), ignored);
    // Nobody else says here what failed.
    auto const& results = *::testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < results.total_part_count(); ++i)
        if (results.GetTestPartResult(i).failed())
            std::fprintf(stderr, "%s:%d\n%s\n", results.GetTestPartResult(i).file_name(),
                         results.GetTestPartResult(i).line_number(), results.GetTestPartResult(i).message());
    _exit(code);
}

using Scenario = std::function<void(std::filesystem::path const& directory)>;

[[noreturn]] inline void Run(TemporaryDirectory const& own, Scenario const& scenario)
{
    alarm(kMostSeconds);
    scenario(std::getenv(kDirectory));
    Leave(own, ::testing::Test::HasFailure() ? 1 : 0);
}
} // namespace FRESH_PROCESS

/// Starts the test program anew, for the running test alone, up to this call, and there calls `scenario` with
/// the path of `directory` as it is in this process. Fails when the scenario fails or ends with another exit
/// status than 0. A forked process would not do: threads don't survive a fork.
inline void ExpectInFreshProcess(TemporaryDirectory const& directory, FRESH_PROCESS::Scenario const& scenario)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    GTEST_FLAG_SET(death_test_use_fork, true);
    // In the new process the variable is set already.
    setenv(FRESH_PROCESS::kDirectory, directory.Path().c_str(), 0);
    EXPECT_EXIT(FRESH_PROCESS::Run(directory, scenario), ::testing::ExitedWithCode(0), "");
    unsetenv(FRESH_PROCESS::kDirectory);
}

/// For scenarios: leaves the process with 0 when `reached` comes true and `call` still has not returned a
/// while later; with 1 when it returns.
[[noreturn]] inline void ExpectEndless(TemporaryDirectory const& own, std::function<void()> const& call,
                                       std::function<bool()> const& reached)
{
    constexpr std::chrono::milliseconds kAWhile{300};
    std::thread watcher([&] {
        while (!reached())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::this_thread::sleep_for(kAWhile);
        FRESH_PROCESS::Leave(own, ::testing::Test::HasFailure() ? 1 : 0);
    });
    call();
    FRESH_PROCESS::Leave(own, 1);
}
} // namespace KORVA::TESTS
