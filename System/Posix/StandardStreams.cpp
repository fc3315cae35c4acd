#include "System/StandardStreams.h"

#include "Retry.h"

#include <fcntl.h>
#include <unistd.h>

namespace KORVA::SYSTEM
{
namespace
{
constexpr int kStreams[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};

int DescriptorOf(StandardStream stream)
{
    switch (stream)
    {
    case StandardStream::kInput:
        return STDIN_FILENO;
    case StandardStream::kOutput:
        return STDOUT_FILENO;
    case StandardStream::kErrors:
        return STDERR_FILENO;
    }
    return -1;
}
} // namespace

bool IsTerminal(StandardStream stream) { return isatty(DescriptorOf(stream)) != 0; }

void OccupyClosedStreams()
{
    // In the order of their numbers: each opening gets the lowest that is free. Programs that are started
    // inherit them like the others.
    for (int const stream : kStreams)
        if (fcntl(stream, F_GETFD) < 0)
            Uninterrupted([&] { return open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY); });
}
} // namespace KORVA::SYSTEM
