// What other commands share with those that edit record files.
#pragma once

#include "Common.h"
#include "Target.h"

#include <string>

namespace TOOL
{
/// Removes what a path of a record file names.
void RemovePlace(Common const& common, std::string const& file, std::string const& path,
                 Target const& target);
} // namespace TOOL
