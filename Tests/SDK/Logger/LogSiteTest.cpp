// Building and sending one message.
#include <tessio/Logger/LogSite.h>

#include "Support/LogCapture.h"

#include <gtest/gtest.h>

#include <limits>

namespace KORVA::TESTS
{
namespace
{
constexpr LogSite kSite{"Some/Source", "void Some::Function(int)", 12};
constexpr LogSite kNotice{"Some/Source", "void Some::Function(int)", 13, 1, 2};

Logged Message(std::string const& text)
{
    return {"Some/Source", "void Some::Function(int)", 12, text, 2, 1};
}

TEST(LogSite, IsAFailureUnlessItSaysOtherwise)
{
    LogCapture log;
    Log(kSite, L"text");
    Log(kNotice, L"text");
    EXPECT_EQ(log.Take(),
              (std::vector<Logged>{{"Some/Source", "void Some::Function(int)", 12, "text", 2, 1},
                                   {"Some/Source", "void Some::Function(int)", 13, "text", 1, 2}}));
}

TEST(LogSite, JoinsThePartsWithoutSeparators)
{
    LogCapture log;
    Log(kSite, L"a ", 1, L" b ", STRING::CoreString(u"päth"), L"\".");
    Log(kSite);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{Message("a 1 b p\xC3\xA4th\"."), Message("")}));
}

TEST(LogSite, WritesIntegersInPlainDecimal)
{
    LogCapture log;
    Log(kSite, -5, L" ", std::numeric_limits<int64>::min(), L" ", std::numeric_limits<uint64>::max(), L" ",
        static_cast<std::int16_t>(-108), L" ", 4294967295u);
    EXPECT_EQ(log.Take(),
              std::vector<Logged>{Message("-5 -9223372036854775808 18446744073709551615 -108 4294967295")});
}

TEST(LogSite, WritesCodePointsBeyondTheFirst65536)
{
    LogCapture log;
    Log(kSite, STRING::CoreString(u"\U0001F600"));
    EXPECT_EQ(log.Take(), std::vector<Logged>{Message("\xF0\x9F\x98\x80")});
}
} // namespace
} // namespace KORVA::TESTS
