// The logging service.
#pragma once

#include <tessio/ObjectModel/Export.h>

namespace KORVA
{
/// One message as the service receives it. The texts are borrowed for the duration of the call.
struct KLogRecord
{
    /// 1 notice, 2 failure.
    int logType;
    /// Where the message comes from: see `LogSite`.
    ///@{
    char const* sourcePath;
    char const* functionSignature;
    int line;
    ///@}
    /// The text.
    wchar_t const* message;
    /// 1 normal, 2 informative.
    int logLevel;
};

/// Receives every message of the process whole, before it goes to the log file.
class TESSIO_EXPORT KLogSink
{
public:
    /// True lets the message go on to the log file. Called on the logging thread, one message at a time;
    /// it must not log itself.
    virtual bool OnMessage(KLogRecord const& record) noexcept = 0;

protected:
    ~KLogSink() = default;
};

/// Writes messages to a rotating log file. Nothing here throws or waits for a failing disk: a message that
/// can't be written is dropped. Safe from any thread.
class TESSIO_EXPORT KLoggerLibInterface
{
public:
    /// The process's logging service; never null. Without `InitInstance` there is no log file.
    static KLoggerLibInterface* GetInstance();

    /// Names the log file and gives the service. The file lies in the directory named by the environment
    /// variable KORVA_LOG_DIR, else in `korva` under the user's state directory (XDG_STATE_HOME, by default
    /// ~/.local/state). It is opened at the first message; a second call with another name is ignored.
    static KLoggerLibInterface* InitInstance(wchar_t const* logFileName);

    /// Installs a sink, borrowed until the next call; null removes it. Gives the sink installed before.
    static KLogSink* InstallSink(KLogSink* sink);

    /// Logs one message. Types: 1 notice, 2 failure. Levels: 1 normal, 2 informative.
    virtual void KLogMessage(int logType, char const* sourcePath, char const* functionSignature, int line,
                             wchar_t const* message, int logLevel) = 0;

protected:
    virtual ~KLoggerLibInterface() = default;
};
} // namespace KORVA
