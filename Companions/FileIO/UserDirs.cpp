#include "UserDirs.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

namespace KORVA::FILE_SYS
{
namespace
{
/// Takes `token` off the beginning of `text`, with blanks before it.
bool Take(std::string_view& text, std::string_view token)
{
    std::string_view rest = text;
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
    if (!rest.starts_with(token))
        return false;
    text = rest.substr(token.size());
    return true;
}

/// What stands up to the closing quote; nothing where there is none.
std::optional<std::string> Quoted(std::string_view text)
{
    std::string value;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] == '"')
            return value;
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        value += text[i];
    }
    return std::nullopt;
}

/// The directory of a line for `key`; nothing for any other line.
std::optional<std::string> DirOfLine(std::string_view line, std::string const& home, std::string_view key)
{
    if (!Take(line, "XDG_") || !line.starts_with(key))
        return std::nullopt;
    line.remove_prefix(key.size());
    if (!line.starts_with("_DIR"))
        return std::nullopt;
    line.remove_prefix(4);
    if (!Take(line, "=") || !Take(line, "\""))
        return std::nullopt;
    bool const belowHome = line.starts_with("$HOME");
    if (belowHome)
        line.remove_prefix(5);
    std::optional<std::string> path = Quoted(line);
    if (!path || path->find('\0') != std::string::npos)
        return std::nullopt;
    if (belowHome && path->empty())
        return home;
    if (!path->starts_with('/') || (belowHome && home.empty()))
        return std::nullopt;
    return belowHome ? (home == "/" ? std::string() : home) + *path : *path;
}
} // namespace

std::string ListedUserDir(std::string const& file, std::string const& home, std::string_view key)
{
    std::string found;
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return found;
    std::ifstream list(file);
    for (std::string line; std::getline(list, line);)
        if (std::optional<std::string> path = DirOfLine(line, home, key))
            found = std::move(*path);
    return found;
}
} // namespace KORVA::FILE_SYS
