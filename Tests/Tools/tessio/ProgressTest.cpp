// The line on a terminal that says how far long work has come.
#include "Progress.h"

#include "Support/TemporaryDirectory.h"
#include "Support/Terminal.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>

namespace KORVA::TESTS
{
namespace
{
using namespace std::chrono_literals;

/// While it lives, standard error goes to that file.
class StandardError
{
public:
    explicit StandardError(std::string const& file) : mBefore(dup(STDERR_FILENO))
    {
        std::fflush(stderr);
        int const end = open(file.c_str(), O_WRONLY | O_NOCTTY);
        dup2(end, STDERR_FILENO);
        close(end);
    }
    StandardError(StandardError const&) = delete;
    StandardError& operator=(StandardError const&) = delete;
    ~StandardError()
    {
        std::fflush(stderr);
        dup2(mBefore, STDERR_FILENO);
        close(mBefore);
    }

private:
    int mBefore;
};

/// Standard error is a terminal.
class Progress : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!terminal.IsOpen())
            GTEST_SKIP() << terminal.Why();
        error.emplace(terminal.Name());
    }

    std::string Taken() const
    {
        std::fflush(stderr);
        return terminal.Shown();
    }

    Terminal const terminal;
    std::optional<StandardError> error;
};

TEST_F(Progress, IsShownAndGoesAway)
{
    {
        TOOL::Progress progress("reading", 200, {.patience = 0h, .pause = 0h});
        progress.At(100);
        EXPECT_EQ(Taken(), "\rtessio: reading  50 %");
        progress.At(300, 400);
        EXPECT_EQ(Taken(), "\rtessio: reading  75 %");
    }
    EXPECT_EQ(Taken(), "\r                       \r");
}

TEST_F(Progress, OfShortWorkIsNotShown)
{
    {
        TOOL::Progress progress("reading", 200, {.patience = 1h, .pause = 0h});
        progress.At(100);
    }
    EXPECT_EQ(Taken(), "");
}

TEST_F(Progress, IsNotShownAtEveryCall)
{
    TOOL::Progress progress("reading", 200, {.patience = 0h, .pause = 1h});
    progress.At(100);
    EXPECT_EQ(Taken(), "\rtessio: reading  50 %");
    progress.At(200);
    EXPECT_EQ(Taken(), "");
}

TEST_F(Progress, OfAnUnknownSizeIsNotShown)
{
    {
        TOOL::Progress progress("reading", 0, {.patience = 0h, .pause = 0h});
        progress.At(100);
    }
    EXPECT_EQ(Taken(), "");
}

TEST(ProgressElsewhere, IsNotShown)
{
    TemporaryDirectory const directory;
    std::string const file = directory.File("err", "").string();
    {
        StandardError const error(file);
        TOOL::Progress progress("reading", 200, {.patience = 0h, .pause = 0h});
        progress.At(100);
    }
    EXPECT_EQ(Content(file), "");
}
} // namespace
} // namespace KORVA::TESTS
