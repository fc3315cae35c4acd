#include "Platform/SecureMemory.h"

#include "System/Memory.h"

namespace KORVA::PLATFORM
{
void WipeMemory(void* address, std::size_t size) { SYSTEM::Wipe(address, size); }
} // namespace KORVA::PLATFORM
