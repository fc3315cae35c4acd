#include "System/Descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace KORVA::SYSTEM
{
Descriptor::~Descriptor()
{
    if (mDescriptor >= 0)
        close(mDescriptor);
}

ErrorNumber Descriptor::Close()
{
    // An interrupted close has closed it all the same.
    return close(std::exchange(mDescriptor, -1)) == 0 || errno == EINTR ? 0 : errno;
}
} // namespace KORVA::SYSTEM
