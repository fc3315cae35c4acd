// Ends a test program when one of its tests does not: linked into every one of them.
#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

namespace KORVA::TESTS
{
namespace
{
/// What hangs is named here; ctest, which grants more, can't say which test of a program it is.
constexpr unsigned kMostSeconds = TESSIO_TEST_SECONDS;
/// Other limits are for trying this one.
constexpr char kVariable[] = "TESSIO_TEST_LIMIT";
constexpr int kTimedOut = 124;

unsigned Limit()
{
    char const* const given = std::getenv(kVariable);
    return given ? static_cast<unsigned>(std::atoi(given)) : kMostSeconds;
}

/// Made while there is time for it, for the signal to write: what hangs may hold any lock.
std::string& Complaint()
{
    static std::string sText;
    return sText;
}

void EndAll(int)
{
    static_cast<void>(!write(STDERR_FILENO, Complaint().data(), Complaint().size()));
    _exit(kTimedOut);
}

class TimeLimit final : public ::testing::EmptyTestEventListener
{
    void OnTestStart(::testing::TestInfo const& test) override
    {
        unsigned const limit = Limit();
        Complaint() = std::string(test.test_suite_name()) + "." + test.name() + " has not ended after " +
                      std::to_string(limit) + " s: it waits for something that does not come\n";
        std::signal(SIGALRM, EndAll);
        alarm(limit);
    }

    void OnTestEnd(::testing::TestInfo const&) override { alarm(0); }
};

bool const sIsListening = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new TimeLimit);
    return true;
}();
} // namespace
} // namespace KORVA::TESTS
