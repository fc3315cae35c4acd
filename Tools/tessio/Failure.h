// How a command ends when it does not succeed.
#pragma once

#include <stdexcept>
#include <string>

namespace TOOL
{
enum class Exit
{
    kDone = 0,
    /// What was asked for is not there, or differs.
    kNotFound = 1,
    kUsage = 2,
    kInputOutput = 3,
    /// Or one that is damaged.
    kNotARecordFile = 4,
    /// Beyond a limit that was set.
    kLimit = 5
};

/// Ends the command with this message (what and where) on standard error.
class Failure : public std::runtime_error
{
public:
    Failure(Exit exit, std::string const& message) : std::runtime_error(message), mExit(exit) {}

    Exit Code() const { return mExit; }

private:
    Exit mExit;
};
} // namespace TOOL
