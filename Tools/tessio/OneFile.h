// Whether two arguments name one file.
#pragma once

#include "Session.h"

#include <string>

namespace TOOL
{
/// Whether writing to the one would replace the other, however each is named: by a path, a URL, a link (also
/// one that leads to nothing yet), or "-" for standard input. Neither need be there. Files of servers are no
/// file of this system.
bool AreOneFile(Session const& session, std::string const& a, std::string const& b);

/// The same for paths of the system, by their names alone: two hard links are two files.
bool LeadToOneName(std::string const& a, std::string const& b);
} // namespace TOOL
