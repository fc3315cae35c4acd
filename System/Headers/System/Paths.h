// Paths as the system takes them. They are bytes, in whatever encoding.
#pragma once

#include <string>

namespace KORVA::SYSTEM
{
/// The part of a path before its last component; "." where it has none.
std::string DirectoryOf(std::string const& path);

/// Where a file of that name is, or would be made: the path behind the symbolic links that it ends in, also
/// those that lead to nothing. Links that go in a circle are followed no further than the system would.
std::string FollowLinks(std::string path);
} // namespace KORVA::SYSTEM
