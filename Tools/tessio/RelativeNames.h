// Files named from a well-known directory.
#pragma once

#include "Directories.h"
#include "Failure.h"
#include <tessio/TessIO/IRelativeURI.h>

#include <string>

namespace TOOL
{
/// The relative URI of the path `way` from the directory. Ends the command when the directory is not known on
/// this system and, with `unusable`, when the way does not lead where it seems to: the library takes a
/// backslash for a separator and makes no usable path of one that ends in a dot segment.
KORVA::IO::IRelativeURIPtr RelativeURIOf(Directory const& directory, KORVA::STRING::CoreString const& way,
                                         Exit unusable);

/// What stands before and behind the colon of "documents:notes/a.txt".
struct RelativeName
{
    Directory directory;
    KORVA::STRING::CoreString way;
};

/// Ends the command when the text is not of that form.
RelativeName RelativeNameOf(std::string const& text);
} // namespace TOOL
