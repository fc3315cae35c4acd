// What the system says of files, and what stands there when one was written, in words.
#pragma once

#include "Names.h"
#include "System/Replacement.h"

#include <string>

namespace TOOL
{
/// Why the system refuses, in words.
std::string WordsOf(KORVA::SYSTEM::ErrorNumber error);

/// The same where a file was to be made or replaced: what is not there is its directory.
std::string ReasonOf(KORVA::SYSTEM::ErrorNumber error);

/// Says something on standard error that does not end the command.
void Warn(std::string const& message);

/// After a file was replaced: warns of what could not be kept of the old one, and when the new one may be
/// lost again with the power. `error` is why its name could not be flushed, or 0.
void WarnOfSaved(std::string const& shown, KORVA::SYSTEM::ErrorNumber error,
                 KORVA::SYSTEM::NotKept const& notKept);
} // namespace TOOL
