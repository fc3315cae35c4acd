// Captures what the code under test logs.
#pragma once

#include <tessio/Logger/KLoggerLibInterface.h>

#include <mutex>
#include <ostream>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
/// One message, whole. Defaults are those of a failure.
struct Logged
{
    std::string source;
    std::string signature;
    int line = 0;
    std::string message;
    int type = 2;
    int level = 1;

    friend bool operator==(Logged const&, Logged const&) = default;
};

std::ostream& operator<<(std::ostream& out, Logged const& logged);

/// Takes every message of the process while it lives and lets none reach a log file. On destruction it fails
/// the current test if a message was not taken: silence must be asserted, too.
class LogCapture final : private KLogSink
{
public:
    LogCapture();
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;
    ~LogCapture();

    /// The messages since the last call, which are then forgotten.
    std::vector<Logged> Take();

private:
    bool OnMessage(KLogRecord const& record) noexcept override;

    std::mutex mMutex;
    std::vector<Logged> mMessages;
    KLogSink* mBefore;
};

/// For `EXPECT_EQ(log.Take(), kNothing)`.
inline std::vector<Logged> const kNothing;
} // namespace KORVA::TESTS
