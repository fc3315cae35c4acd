// Reading KEY=value texts.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TOOL
{
/// The assignments of a text in the form of os-release(5): one KEY=value a line, blank lines and lines that
/// begin with # ignored, values quoted as a shell would take them (single quotes, double quotes with \" \$
/// \\ \` escaped, or bare without blanks and quotes). Ends the command, naming `source` and the line, at
/// anything else.
std::vector<std::pair<std::string, std::string>> ParseAssignments(std::string_view text,
                                                                  std::string const& source);
} // namespace TOOL
