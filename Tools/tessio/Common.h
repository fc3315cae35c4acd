// What every command is told.
#pragma once

#include "Names.h"
#include <tessio/Records/Format/Work.h>

#include <string>
#include <vector>

namespace TOOL
{
/// The options that stand before or behind any command.
struct Common
{
    bool verbose = false;
    bool json = false;
    /// Files of the plug-ins to load.
    std::vector<std::string> plugIns;
    Limits limits;
    /// As they are on the command line.
    std::string colour = "auto";
    std::vector<std::string> limitTexts;
};
} // namespace TOOL
