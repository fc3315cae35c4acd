#include "System/Paths.h"

#include <unistd.h>

#include <climits>

namespace KORVA::SYSTEM
{
namespace
{
constexpr int kMostLinks = 40;
} // namespace

std::string DirectoryOf(std::string const& path)
{
    std::size_t const slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string FollowLinks(std::string path)
{
    char target[PATH_MAX];
    for (int links = 0; links < kMostLinks; ++links)
    {
        ssize_t const length = readlink(path.c_str(), target, sizeof target);
        if (length <= 0)
            break;
        std::string const next(target, static_cast<std::size_t>(length));
        path = next.starts_with('/') ? next : DirectoryOf(path) + "/" + next;
    }
    return path;
}
} // namespace KORVA::SYSTEM
