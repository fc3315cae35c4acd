// The logging service of the library.
#pragma once

#include <tessio/Logger/KLoggerLibInterface.h>

namespace KORVA::IO
{
/// Set while the library is loaded, which names the log file.
extern KLoggerLibInterface* loggingInterface;
} // namespace KORVA::IO
