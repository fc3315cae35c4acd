#include "System/Stream.h"

#include <stdio_ext.h>

namespace KORVA::SYSTEM
{
std::size_t HeldBack(std::FILE* stream) { return __fpending(stream); }
} // namespace KORVA::SYSTEM
