#include "LogFile.h"
#include <tessio/Logger/KLoggerLibInterface.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace KORVA
{
namespace
{
std::filesystem::path LogDirectory()
{
    if (char const* const directory = std::getenv("KORVA_LOG_DIR"); directory && *directory)
        return directory;
    if (char const* const state = std::getenv("XDG_STATE_HOME"); state && *state == '/')
        return std::filesystem::path(state) / "korva";
    char const* const home = std::getenv("HOME");
    return home && *home ? std::filesystem::path(home) / ".local/state/korva" : std::filesystem::path();
}

std::string ToUTF8(wchar_t const* text)
{
    std::string utf8;
    for (; *text; ++text)
    {
        auto c = static_cast<char32_t>(*text);
        if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))
            c = 0xFFFD;
        // A message is one line of the log, whatever is in it.
        if (c < 0x20 || c == 0x7F)
            c = ' ';
        auto const tail = [&utf8, c](int shift) { utf8 += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
        if (c < 0x80)
            utf8 += static_cast<char>(c);
        else if (c < 0x800)
        {
            utf8 += static_cast<char>(0xC0 | (c >> 6));
            tail(0);
        }
        else if (c < 0x10000)
        {
            utf8 += static_cast<char>(0xE0 | (c >> 12));
            tail(6);
            tail(0);
        }
        else
        {
            utf8 += static_cast<char>(0xF0 | (c >> 18));
            tail(12);
            tail(6);
            tail(0);
        }
    }
    return utf8;
}

class KLogger final : public KLoggerLibInterface
{
public:
    void KLogMessage(int logType, char const* sourcePath, char const* functionSignature, int line,
                     wchar_t const* message, int logLevel) override
    {
        try
        {
            std::lock_guard const lock(mMutex);
            KLogRecord const record{logType, sourcePath, functionSignature, line, message, logLevel};
            if (mSink && !mSink->OnMessage(record))
                return;
            if (!mFile)
                return;
            mFile->Write("type " + std::to_string(logType) + " level " + std::to_string(logLevel) + " " +
                             sourcePath + ":" + std::to_string(line) + " [" + functionSignature + "] " +
                             ToUTF8(message),
                         logType == 2);
        }
        catch (std::exception const&)
        {
            // Logging must not fail its caller.
        }
    }

    void Name(wchar_t const* fileName)
    {
        std::lock_guard const lock(mMutex);
        std::filesystem::path const directory = LogDirectory();
        if (!mFile && fileName && *fileName && !directory.empty())
            mFile = std::make_unique<LogFile>(directory / std::filesystem::path(ToUTF8(fileName)).filename());
    }

    KLogSink* Install(KLogSink* sink)
    {
        std::lock_guard const lock(mMutex);
        return std::exchange(mSink, sink);
    }

    void Flush()
    {
        std::lock_guard const lock(mMutex);
        if (mFile)
            mFile->Flush();
    }

private:
    std::mutex mMutex;
    KLogSink* mSink = nullptr;
    std::unique_ptr<LogFile> mFile;
};

/// Never destroyed: components log while the process ends.
KLogger& TheLogger()
{
    static KLogger* const sLogger = [] {
        auto* const logger = new KLogger;
        std::atexit([] { TheLogger().Flush(); });
        return logger;
    }();
    return *sLogger;
}
} // namespace

KLoggerLibInterface* KLoggerLibInterface::GetInstance() { return &TheLogger(); }

KLoggerLibInterface* KLoggerLibInterface::InitInstance(wchar_t const* logFileName)
{
    try
    {
        TheLogger().Name(logFileName);
    }
    catch (std::exception const&)
    {
        // No file then; the service itself works.
    }
    return &TheLogger();
}

KLogSink* KLoggerLibInterface::InstallSink(KLogSink* sink) { return TheLogger().Install(sink); }
} // namespace KORVA
