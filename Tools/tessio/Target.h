// Where the result of a change goes.
#pragma once

#include "CommandLine.h"
#include "Common.h"
#include "Document.h"
#include "Names.h"
#include "Session.h"

#include <string>

namespace TOOL
{
/// Another file, or the same one while a copy of it as it was is kept beside it.
struct Target
{
    std::string out;
    bool inPlace = false;
};

/// Adds the options -o and --in-place.
void AddTarget(Command const& command, Target& target);

/// Ends the command unless it is said where the result of changing `file` goes.
void CheckTarget(Session const& session, Target const& target, std::string const& file);

/// Ends the command when the output is a file that is read.
void CheckOther(Session const& session, std::string const& out, std::string const& file);

/// Writes the result. In place, the file must still be what was read, and "FILE~" keeps it.
void WriteTarget(Session const& session, Target const& target, Document const& document,
                 Bytes const& content);
} // namespace TOOL
