// The identity of a log message, and the one way to log.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/Logger/KLoggerLibInterface.h>

#include <concepts>
#include <string>

namespace KORVA
{
/// Where a message comes from. People filter logs by source, signature and line, so a row stays as it is
/// when the code around the call moves; 0 stands for a site without a line.
struct LogSite
{
    /// The source's path, without its ending.
    char const* source;
    /// The whole signature of the logging function.
    char const* signature;
    /// The line that is reported, wherever the call stands.
    int line;
    /// 1 notice, 2 failure.
    int type = 2;
    /// 1 normal, 2 informative.
    int level = 1;
};

namespace LOGGING
{
inline void Append(std::wstring& message, wchar_t const* text) { message += text; }

inline void Append(std::wstring& message, STRING::CoreString const& text) { message += text.ToWide(); }

/// Plain decimal, whatever the process's locale.
template <std::integral Number>
void Append(std::wstring& message, Number number)
{
    message += std::to_wstring(number);
}
} // namespace LOGGING

/// Joins the parts (wide texts, strings, integers) to one message and logs it under `site`.
template <class... Parts>
void Log(LogSite const& site, Parts const&... parts)
{
    std::wstring message;
    (LOGGING::Append(message, parts), ...);
    KLoggerLibInterface::GetInstance()->KLogMessage(site.type, site.source, site.signature, site.line,
                                                    message.c_str(), site.level);
}
} // namespace KORVA
