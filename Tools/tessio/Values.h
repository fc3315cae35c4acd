// Dictionary values as people write and read them.
#pragma once

#include "Names.h"
#include <tessio/TessIO/IDictionary.h>

#include <string>
#include <vector>

namespace TOOL
{
/// Puts `text`, read as `type`, under `key`. Numbers in any base (10, 0x1F, 0o17, 0b101, -3), floating-point
/// numbers in any form of the C language, identifiers in registry form, `bytes` in hexadecimal, `file` the
/// bytes of the file so named, `text`, `uri` a location, `relative` a file named from a directory
/// ("documents:notes/a.txt"), `dict` a new empty dictionary (no text). Ends the command when the text does
/// not fit the type.
void PutValue(KORVA::IDictionary& dictionary, unsigned int key, std::string const& type,
              std::string const& text);

/// Every name that `PutValue` takes.
std::vector<std::string> const& ValueTypes();

/// A dictionary key, in any base.
unsigned int KeyOf(std::string const& text);
} // namespace TOOL
