#include "OneFile.h"

#include "Failure.h"
#include "Location.h"
#include "System/Paths.h"

#include <filesystem>
#include <optional>

namespace TOOL
{
namespace
{
namespace fs = std::filesystem;

/// Nothing for what is no file of this system.
std::optional<std::string> PathOf(Session const& session, std::string const& location)
{
    if (location == "-")
        return "/dev/stdin";
    try
    {
        if (location.empty() || !IsLocal(session, location))
            return std::nullopt;
        return SystemPathOf(session, location);
    }
    catch (Failure const&)
    {
        // Whoever opens it says what is wrong with it.
        return std::nullopt;
    }
}

/// Where a file of that name is, or would be made.
fs::path Place(std::string const& name)
{
    std::error_code error;
    fs::path const path = fs::absolute(KORVA::SYSTEM::FollowLinks(name), error);
    return fs::weakly_canonical(path.parent_path(), error) / path.filename();
}
} // namespace

bool AreOneFile(Session const& session, std::string const& a, std::string const& b)
{
    std::optional<std::string> const first = PathOf(session, a);
    std::optional<std::string> const second = PathOf(session, b);
    if (!first || !second)
        return false;
    std::error_code error;
    return fs::equivalent(*first, *second, error) || LeadToOneName(*first, *second);
}

bool LeadToOneName(std::string const& a, std::string const& b) { return Place(a) == Place(b); }
} // namespace TOOL
