// The line on a terminal that says how far long work has come.
#include "Progress.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace KORVA::TESTS
{
namespace
{
using namespace std::chrono_literals;

/// While it lives, standard error is what a test reads.
class StandardError
{
public:
    explicit StandardError(bool isTerminal) : mBefore(dup(STDERR_FILENO))
    {
        int ends[2];
        if (isTerminal ? openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) != 0 : pipe(ends) != 0)
            throw std::runtime_error("no terminal");
        std::fflush(stderr);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        mReader = ends[0];
        fcntl(mReader, F_SETFL, O_NONBLOCK);
    }
    StandardError(StandardError const&) = delete;
    StandardError& operator=(StandardError const&) = delete;
    ~StandardError()
    {
        dup2(mBefore, STDERR_FILENO);
        close(mBefore);
        close(mReader);
    }

    std::string Take() const
    {
        std::fflush(stderr);
        char text[256];
        ssize_t const count = read(mReader, text, sizeof text);
        return count > 0 ? std::string(text, static_cast<std::size_t>(count)) : "";
    }

private:
    int mBefore;
    int mReader = -1;
};

TEST(Progress, IsShownAndGoesAway)
{
    StandardError const terminal(true);
    {
        TOOL::Progress progress("reading", 200, {.patience = 0h, .pause = 0h});
        progress.At(100);
        EXPECT_EQ(terminal.Take(), "\rtessio: reading  50 %");
        progress.At(300, 400);
        EXPECT_EQ(terminal.Take(), "\rtessio: reading  75 %");
    }
    EXPECT_EQ(terminal.Take(), "\r                       \r");
}

TEST(Progress, OfShortWorkIsNotShown)
{
    StandardError const terminal(true);
    {
        TOOL::Progress progress("reading", 200, {.patience = 1h, .pause = 0h});
        progress.At(100);
    }
    EXPECT_EQ(terminal.Take(), "");
}

TEST(Progress, IsNotShownAtEveryCall)
{
    StandardError const terminal(true);
    TOOL::Progress progress("reading", 200, {.patience = 0h, .pause = 1h});
    progress.At(100);
    EXPECT_EQ(terminal.Take(), "\rtessio: reading  50 %");
    progress.At(200);
    EXPECT_EQ(terminal.Take(), "");
}

TEST(Progress, OfAnUnknownSizeIsNotShown)
{
    StandardError const terminal(true);
    {
        TOOL::Progress progress("reading", 0, {.patience = 0h, .pause = 0h});
        progress.At(100);
    }
    EXPECT_EQ(terminal.Take(), "");
}

TEST(Progress, IsForTerminalsOnly)
{
    StandardError const file(false);
    {
        TOOL::Progress progress("reading", 200, {.patience = 0h, .pause = 0h});
        progress.At(100);
    }
    EXPECT_EQ(file.Take(), "");
}
} // namespace
} // namespace KORVA::TESTS
