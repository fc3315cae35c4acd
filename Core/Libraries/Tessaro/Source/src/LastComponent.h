// The name at the end of a path.
#pragma once

#include <tessio/CoreString/CoreString.h>

namespace KORVA::IO
{
/// What follows the last `/`, else the last `\`, else the whole path. The search leaves out the last
/// position: a separator there belongs to the name.
STRING::CoreString LastComponent(STRING::CoreString const& path);
} // namespace KORVA::IO
