// The variables that say where a user's directories are.
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace KORVA::TESTS
{
/// Clears the variables that move a system directory and gives back, on destruction, what they were.
class Environment
{
public:
    Environment()
    {
        for (char const* const name : kNames)
        {
            char const* const value = std::getenv(name);
            mBefore[name] = value ? std::optional<std::string>(value) : std::nullopt;
        }
        Clear();
    }
    Environment(Environment const&) = delete;
    Environment& operator=(Environment const&) = delete;
    ~Environment()
    {
        for (auto const& [name, value] : mBefore)
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
    }

    static void Clear()
    {
        for (char const* const name : kNames)
            unsetenv(name);
    }

    static void Set(char const* name, std::string const& value) { setenv(name, value.c_str(), 1); }

private:
    static constexpr char const* kNames[] = {
        "HOME",
        "XDG_DATA_HOME",
        "XDG_CONFIG_HOME",
        "XDG_CACHE_HOME",
        "XDG_STATE_HOME",
        "XDG_DATA_DIRS",
        "XDG_CONFIG_DIRS",
        "TMPDIR",
        "XDG_DESKTOP_DIR",
        "XDG_DOCUMENTS_DIR",
        "XDG_DOWNLOAD_DIR",
        "XDG_MUSIC_DIR",
    };

    std::map<std::string, std::optional<std::string>> mBefore;
};
} // namespace KORVA::TESTS
