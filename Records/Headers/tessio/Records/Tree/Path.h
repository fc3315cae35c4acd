// Paths to what is in a record file: /0/dict[42]/dict[7], /0/{GUID}, /1/strings["NAME"].
#pragma once

#include <tessio/Records/Format/Result.h>
#include <tessio/Records/Tree/Node.h>

#include <string>
#include <string_view>
#include <vector>

namespace KORVA::RECORDS
{
using Path = std::vector<Label>;

/// Fails with `ErrorCode::kImpossible` when the text is no path. A bare number stands for a dictionary's key,
/// the key of a string dictionary may lack its quotes where it has no bracket, and numbers may be in any
/// base.
Result<Path> ParsePath(std::string_view text);

std::string PathText(Path const& path);

/// The node, or null with the number of components that do lead somewhere in `found`. Of a key that is there
/// twice the last one is found, as the library reads it.
Node const* FindNode(RecordTree const& tree, Path const& path, std::size_t& found);
/// The same as a result, which says how far the path leads; the words follow the name of the file.
Result<Node const*> NodeAt(RecordTree const& tree, Path const& path);
} // namespace KORVA::RECORDS
