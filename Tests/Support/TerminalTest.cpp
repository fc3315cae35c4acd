// A terminal for tests, where there is one and where there is none.
#include "Support/Terminal.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace KORVA::TESTS
{
namespace
{
TEST(Terminal, ShowsWhatIsWritten)
{
    Terminal const terminal;
    if (!terminal.IsOpen())
        GTEST_SKIP() << terminal.Why();
    EXPECT_EQ(terminal.Why(), "");
    EXPECT_EQ(terminal.Shown(), "");
    int const end = open(terminal.Name().c_str(), O_WRONLY | O_NOCTTY);
    ASSERT_EQ(write(end, "a\nb?", 4), 4);
    close(end);
    EXPECT_EQ(terminal.ShownUpTo("?"), "a\r\nb?");
}

/// As in a container without terminals: the reason is what a skipped test says.
TEST(Terminal, SaysWhyThereIsNone)
{
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit const none{0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    Terminal const terminal;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_FALSE(terminal.IsOpen());
    EXPECT_EQ(terminal.Why(), "this system gives no pseudo-terminal: Too many open files");
}
} // namespace
} // namespace KORVA::TESTS
