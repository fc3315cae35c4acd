// From what people write to URL text.
#pragma once

#include <tessio/CoreString/CoreString.h>

namespace KORVA::IO::UTILITIES
{
/// Turns any location (URL, POSIX path, Windows drive or network path, colon-separated path, bare name) into
/// URL text, unescaped. `out` is replaced.
void CreateValidURLString(STRING::CoreString const& in, STRING::CoreString& out);

/// Replaces each `find` at or after `start`, always by `/`: that is what every caller wants, and `replace` is
/// not looked at.
void FindAndReplaceUniChar(STRING::CoreString& s, int start, UniChar find, UniChar replace);
} // namespace KORVA::IO::UTILITIES
