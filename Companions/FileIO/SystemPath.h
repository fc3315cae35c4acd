// From the library's texts to paths of the system.
#pragma once

#include <tessio/CoreString/CoreString.h>

#include <string>

namespace KORVA::FILE_SYS
{
/// A path in the system's form; empty for a text that can't be one.
inline std::string SystemPath(STRING::CoreString const& path)
{
    if (!path.IsWellFormed() || path.find(u'\0') != STRING::CoreString::npos)
        return {};
    return path.ToUTF8();
}
} // namespace KORVA::FILE_SYS
