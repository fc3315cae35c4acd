#include "Platform/SecureMemory.h"

#include <cstring>

namespace KORVA::PLATFORM
{
void WipeMemory(void* address, std::size_t size) { explicit_bzero(address, size); }
} // namespace KORVA::PLATFORM
