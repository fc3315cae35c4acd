#include "System/Descriptor.h"

#include <fcntl.h>
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
    return close(Release()) == 0 || errno == EINTR ? 0 : errno;
}

Descriptor Duplicate(int descriptor, ErrorNumber& error)
{
    Descriptor own(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    error = own ? 0 : errno;
    return own;
}
} // namespace KORVA::SYSTEM
