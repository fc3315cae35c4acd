#include "Directories.h"

#include "Failure.h"
#include "Output.h"

#include <algorithm>

namespace TOOL
{
Directory const& DirectoryNamed(std::string const& name)
{
    auto const all = Directories();
    auto const found = std::ranges::find(all, name, &Directory::name);
    if (found != all.end())
        return *found;
    std::string names;
    for (Directory const& directory : all)
        names += std::string(names.empty() ? "" : ", ") + directory.name;
    throw Failure(Exit::kUsage, "there is no directory " + Quoted(name) + "; there are " + names);
}
} // namespace TOOL
