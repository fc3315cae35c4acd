// What the environment says of transfers.
#pragma once

#include <string>

namespace HTTP
{
struct Settings
{
    long connectTimeout;
    long stallTimeout;
    /// Empty for none.
    std::string caFile;
};

Settings SettingsOfEnvironment();
} // namespace HTTP
