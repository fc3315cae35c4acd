// A program that logs, for tests of the log file: logger_program MODE [ARGUMENT...]
//   message NAME TEXT       names the file NAME and logs TEXT
//   unnamed TEXT            logs TEXT without naming a file
//   renamed NAME NAME TEXT  names the file twice, then logs
//   sink NAME TEXT TEXT     lets a sink take the first and pass the second
//   many NAME COUNT         logs COUNT lines of 1,000 characters and waits for the last
#include <tessio/Logger/KLoggerLibInterface.h>

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace
{
using KORVA::KLoggerLibInterface;

std::wstring Wide(char const* text) { return {text, text + std::strlen(text)}; }

void LogText(std::wstring const& text)
{
    KLoggerLibInterface::GetInstance()->KLogMessage(2, "Some/Source", "void Some::Function(int)", 123456789,
                                                    text.c_str(), 1);
}

class TakeOne final : public KORVA::KLogSink
{
public:
    explicit TakeOne(std::wstring text) : mText(std::move(text)) {}
    bool OnMessage(KORVA::KLogRecord const& record) noexcept override { return mText != record.message; }

private:
    std::wstring mText;
};

std::string ContentOf(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Seconds after which a program that is held up is killed, which the test sees.
constexpr unsigned kPatience = 120;
} // namespace

int main(int count, char** arguments)
{
    alarm(kPatience);
    std::string const mode = count > 1 ? arguments[1] : "";
    if (mode == "unnamed" && count == 3)
        LogText(Wide(arguments[2]));
    else if (mode == "message" && count == 4)
    {
        KLoggerLibInterface* const logger = KLoggerLibInterface::InitInstance(Wide(arguments[2]).c_str());
        if (logger != KLoggerLibInterface::GetInstance())
            return 2;
        LogText(Wide(arguments[3]));
    }
    else if (mode == "renamed" && count == 5)
    {
        KLoggerLibInterface::InitInstance(Wide(arguments[2]).c_str());
        KLoggerLibInterface::InitInstance(Wide(arguments[3]).c_str());
        LogText(Wide(arguments[4]));
    }
    else if (mode == "sink" && count == 5)
    {
        KLoggerLibInterface::InitInstance(Wide(arguments[2]).c_str());
        TakeOne sink(Wide(arguments[3]));
        KLoggerLibInterface::InstallSink(&sink);
        LogText(Wide(arguments[3]));
        LogText(Wide(arguments[4]));
        KLoggerLibInterface::InstallSink(nullptr);
    }
    else if (mode == "many" && count == 4)
    {
        KLoggerLibInterface::InitInstance(Wide(arguments[2]).c_str());
        int const lines = std::stoi(arguments[3]);
        for (int i = 0; i < lines; ++i)
            LogText(std::wstring(1000, L'x'));
        LogText(L"the end");
        while (ContentOf(std::string(std::getenv("KORVA_LOG_DIR")) + "/" + arguments[2]).find("the end") ==
               std::string::npos)
            usleep(10'000);
    }
    else
        return 1;
    return 0;
}
