// Processes that fork.
#pragma once

#include "System/ErrorNumber.h"

namespace KORVA::SYSTEM
{
/// Has these functions called around each fork, until the shared object that calls this is unloaded.
ErrorNumber CallAroundForks(void (*before)(), void (*afterInParent)(), void (*afterInChild)());
} // namespace KORVA::SYSTEM
