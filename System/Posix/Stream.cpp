#include "System/Stream.h"

#include <cerrno>

namespace KORVA::SYSTEM
{
std::FILE* OpenStream(int descriptor, char const* mode, ErrorNumber& error)
{
    std::FILE* const stream = fdopen(descriptor, mode);
    error = stream ? 0 : errno;
    return stream;
}

int DescriptorOf(std::FILE* stream) { return fileno(stream); }

ErrorNumber SeekStream(std::FILE* stream, std::int64_t offset, int whence)
{
    return fseeko(stream, offset, whence) == 0 ? 0 : errno;
}

ErrorNumber ReadStreamPosition(std::FILE* stream, std::int64_t& position)
{
    off_t const found = ftello(stream);
    if (found < 0)
        return errno;
    position = found;
    return 0;
}
} // namespace KORVA::SYSTEM
