// A file descriptor that closes itself.
#pragma once

#include "System/Descriptor.h"

namespace KORVA::FILE_SYS
{
using SYSTEM::Descriptor;
} // namespace KORVA::FILE_SYS
