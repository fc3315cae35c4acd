// Paths to what is in a record file: /0/dict[42]/dict[7], /0/{GUID}, /1/strings["NAME"].
#pragma once

#include "Records/Node.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TOOL
{
using Path = std::vector<Label>;

/// Nothing when the text is no path. A bare number stands for a dictionary's key, the key of a string
/// dictionary may lack its quotes where it has no bracket, and numbers may be in any base.
std::optional<Path> ParsePath(std::string_view text);

/// Ends the command when the text is no path.
Path PathArgument(std::string const& text);

std::string PathText(Path const& path);

/// The node, or null with the number of components that do lead somewhere in `found`.
Node const* FindNode(RecordTree const& tree, Path const& path, std::size_t& found);

/// Ends the command, naming how far the path leads, when there is no such node. Of a key that is there twice
/// the last one is found, as the library reads it.
Node const& NodeAt(RecordTree const& tree, std::string const& path, std::string const& file);
} // namespace TOOL
