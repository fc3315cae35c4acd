#include "Settings.h"

#include "HttpScheme.h"
#include <tessio/Logger/LogSite.h>

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace HTTP
{
namespace
{
using namespace KORVA;

constexpr LogSite kSiteBadTime{"Examples/http/Settings", "Settings HTTP::SettingsOfEnvironment()", 0};

constexpr long kDay = 86'400'000;

long TimeOf(char const* variable, long usual)
{
    char const* const text = std::getenv(variable);
    if (!text || !*text)
        return usual;
    char const* const end = text + std::strlen(text);
    long value = 0;
    auto const [stop, error] = std::from_chars(text, end, value);
    if (error == std::errc() && stop == end && value >= 1 && value <= kDay)
        return value;
    Log(kSiteBadTime, STRING::CoreString(variable), L" is no time in milliseconds: ",
        STRING::CoreString(text));
    return usual;
}
} // namespace

Settings SettingsOfEnvironment()
{
    char const* const caFile = std::getenv(kCAFileVariable);
    return {TimeOf(kConnectTimeoutVariable, kConnectTimeout), TimeOf(kStallTimeoutVariable, kStallTimeout),
            caFile ? caFile : ""};
}
} // namespace HTTP
