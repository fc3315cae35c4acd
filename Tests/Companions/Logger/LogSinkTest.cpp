// Sinks see every message whole.
#include <tessio/Logger/KLoggerLibInterface.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
class Sink final : public KLogSink
{
public:
    bool OnMessage(KLogRecord const& record) noexcept override
    {
        int const inside = ++mInside;
        if (inside != 1)
            ++overlaps;
        sources.emplace_back(record.sourcePath);
        signatures.emplace_back(record.functionSignature);
        messages.emplace_back(record.message);
        numbers.push_back({record.logType, record.line, record.logLevel});
        --mInside;
        return false;
    }

    std::vector<std::string> sources;
    std::vector<std::string> signatures;
    std::vector<std::wstring> messages;
    std::vector<std::vector<int>> numbers;
    std::atomic<int> overlaps = 0;

private:
    std::atomic<int> mInside = 0;
};

class LogSinkTest : public ::testing::Test
{
protected:
    ~LogSinkTest() override { KLoggerLibInterface::InstallSink(nullptr); }
};

TEST_F(LogSinkTest, TheServiceIsAlwaysTheSame)
{
    KLoggerLibInterface* const logger = KLoggerLibInterface::GetInstance();
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(KLoggerLibInterface::GetInstance(), logger);
}

TEST_F(LogSinkTest, ReceivesTheMessageWhole)
{
    Sink sink;
    KLoggerLibInterface::InstallSink(&sink);
    KLoggerLibInterface::GetInstance()->KLogMessage(1, "a/b", "void f()", 7, L"one\ntwo \U0001F600", 2);
    KLoggerLibInterface::GetInstance()->KLogMessage(2, "", "", 0, L"", 1);
    EXPECT_EQ(sink.sources, (std::vector<std::string>{"a/b", ""}));
    EXPECT_EQ(sink.signatures, (std::vector<std::string>{"void f()", ""}));
    EXPECT_EQ(sink.messages, (std::vector<std::wstring>{L"one\ntwo \U0001F600", L""}));
    EXPECT_EQ(sink.numbers, (std::vector<std::vector<int>>{{1, 7, 2}, {2, 0, 1}}));
}

TEST_F(LogSinkTest, InstallingGivesTheOneBefore)
{
    Sink first;
    Sink second;
    KLogSink* const before = KLoggerLibInterface::InstallSink(&first);
    EXPECT_EQ(before, nullptr);
    EXPECT_EQ(KLoggerLibInterface::InstallSink(&second), &first);
    KLoggerLibInterface::GetInstance()->KLogMessage(2, "a", "f", 1, L"text", 1);
    EXPECT_TRUE(first.messages.empty());
    EXPECT_EQ(second.messages.size(), 1u);
    EXPECT_EQ(KLoggerLibInterface::InstallSink(nullptr), &second);
    EXPECT_EQ(KLoggerLibInterface::InstallSink(nullptr), nullptr);
}

TEST_F(LogSinkTest, ReceivesOneMessageAtATimeFromAllThreads)
{
    Sink sink;
    KLoggerLibInterface::InstallSink(&sink);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 1000; ++round)
                KLoggerLibInterface::GetInstance()->KLogMessage(2, "a", "f", 1, L"text", 1);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(sink.messages.size(), 4000u);
    EXPECT_EQ(sink.overlaps, 0);
}
} // namespace
} // namespace KORVA::TESTS
