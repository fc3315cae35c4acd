#include "SystemDirs.h"

#include "System/User.h"
#include "UserDirs.h"

#include <cstdlib>
#include <string_view>

namespace KORVA::FILE_SYS
{
namespace
{
std::string Trimmed(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

/// The variable where it holds an absolute path; else nothing.
std::string FromEnvironment(char const* variable)
{
    char const* const value = std::getenv(variable);
    return value && *value == '/' ? Trimmed(value) : std::string();
}

/// The first absolute path of a list.
std::string FirstFromEnvironment(char const* variable)
{
    char const* const value = std::getenv(variable);
    std::string_view rest = value ? value : "";
    while (!rest.empty())
    {
        std::size_t const end = rest.find(':');
        std::string_view const path = rest.substr(0, end);
        if (path.starts_with('/'))
            return Trimmed(std::string(path));
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    return {};
}

std::string Home()
{
    std::string home = FromEnvironment("HOME");
    if (home.empty())
        home = Trimmed(SYSTEM::HomeInUserDatabase());
    return home.starts_with('/') ? home : std::string();
}

std::string Below(std::string const& directory, char const* name)
{
    if (directory.empty())
        return {};
    return (directory == "/" ? std::string() : directory) + '/' + name;
}

std::string OrBelowHome(std::string path, char const* name)
{
    return path.empty() ? Below(Home(), name) : path;
}

std::string Or(std::string path, char const* other) { return path.empty() ? std::string(other) : path; }

std::string UserConfig() { return OrBelowHome(FromEnvironment("XDG_CONFIG_HOME"), ".config"); }

/// One of the user's own directories, by its key in the user's list, or by its usual name.
std::string UserDir(char const* key, char const* usualName)
{
    std::string const home = Home();
    std::string const config = UserConfig();
    if (config.empty())
        return {};
    return OrBelowHome(Trimmed(ListedUserDir(Below(config, "user-dirs.dirs"), home, key)), usualName);
}
} // namespace

std::string SystemDirPath(DirType type)
{
    switch (type)
    {
    case kNoDir:
        break;
    case kHomeDir:
        return Home();
    case kDesktopDir:
        return UserDir("DESKTOP", "Desktop");
    case kDocumentsDir:
        return UserDir("DOCUMENTS", "Documents");
    case kDownloadsDir:
        return UserDir("DOWNLOAD", "Downloads");
    case kMusicDir:
        return UserDir("MUSIC", "Music");
    case kPicturesDir:
        return UserDir("PICTURES", "Pictures");
    case kVideosDir:
        return UserDir("VIDEOS", "Videos");
    case kTemplatesDir:
        return UserDir("TEMPLATES", "Templates");
    case kPublicShareDir:
        return UserDir("PUBLICSHARE", "Public");
    case kUserDataDir:
        return OrBelowHome(FromEnvironment("XDG_DATA_HOME"), ".local/share");
    case kUserConfigDir:
        return UserConfig();
    case kCacheDir:
        return OrBelowHome(FromEnvironment("XDG_CACHE_HOME"), ".cache");
    case kStateDir:
        return OrBelowHome(FromEnvironment("XDG_STATE_HOME"), ".local/state");
    case kTemporaryDir:
        return Or(FromEnvironment("TMPDIR"), "/tmp");
    case kSystemDataDir:
        return Or(FirstFromEnvironment("XDG_DATA_DIRS"), "/usr/local/share");
    case kSystemConfigDir:
        return Or(FirstFromEnvironment("XDG_CONFIG_DIRS"), "/etc/xdg");
    }
    return {};
}
} // namespace KORVA::FILE_SYS
