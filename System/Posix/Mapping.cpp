#include "System/Mapping.h"

#include "System/Status.h"

#include <sys/mman.h>

#include <cerrno>
#include <limits>

namespace KORVA::SYSTEM
{
Mapping::~Mapping()
{
    if (!mBytes.empty())
        munmap(const_cast<std::byte*>(mBytes.data()), mBytes.size());
}

Mapping Mapping::Of(int descriptor, ErrorNumber& error)
{
    Status status;
    error = ReadStatus(descriptor, status);
    if (error == 0 && status.kind != FileKind::kRegular)
        error = status.kind == FileKind::kDirectory ? EISDIR : ENODEV;
    if (error == 0 && status.size > std::numeric_limits<std::size_t>::max())
        error = ENOMEM;
    if (error != 0 || status.size == 0)
        return {};
    auto const size = static_cast<std::size_t>(status.size);
    void* const address = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (address == MAP_FAILED)
    {
        error = errno;
        return {};
    }
    return Mapping({static_cast<std::byte const*>(address), size});
}
} // namespace KORVA::SYSTEM
