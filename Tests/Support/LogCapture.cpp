#include "Support/LogCapture.h"

#include <tessio/CoreString/CoreString.h>

#include <gtest/gtest.h>

#include <utility>

namespace KORVA::TESTS
{
namespace
{
std::string Narrow(wchar_t const* text)
{
    std::u16string units;
    for (; *text; ++text)
    {
        auto const codePoint = static_cast<char32_t>(*text);
        if (codePoint < 0x10000)
            units += static_cast<char16_t>(codePoint);
        else
        {
            units += static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
            units += static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
        }
    }
    return STRING::CoreString(units).ToUTF8();
}
} // namespace

std::ostream& operator<<(std::ostream& out, Logged const& logged)
{
    return out << "\n  {" << logged.source << " | " << logged.signature << " | " << logged.line << " | \""
               << logged.message << "\" | type " << logged.type << " level " << logged.level << "}";
}

LogCapture::LogCapture() : mBefore(KLoggerLibInterface::InstallSink(this)) {}

LogCapture::~LogCapture()
{
    KLoggerLibInterface::InstallSink(mBefore);
    EXPECT_EQ(mMessages, kNothing) << "messages that the test did not expect";
}

std::vector<Logged> LogCapture::Take()
{
    std::lock_guard const lock(mMutex);
    return std::exchange(mMessages, {});
}

bool LogCapture::OnMessage(KLogRecord const& record) noexcept
{
    std::lock_guard const lock(mMutex);
    mMessages.push_back({record.sourcePath, record.functionSignature, record.line, Narrow(record.message),
                         record.logType, record.logLevel});
    return false;
}
} // namespace KORVA::TESTS
