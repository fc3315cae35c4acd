// The three streams that a program is started with.
#pragma once

namespace KORVA::SYSTEM
{
enum class StandardStream
{
    kInput,
    kOutput,
    kErrors
};

bool IsTerminal(StandardStream stream);

/// Where a stream is closed, opens something instead that can't be used in its direction. A file that is
/// opened later must not get the stream's number, or messages would go into it. To be called first in a
/// program.
void OccupyClosedStreams();
} // namespace KORVA::SYSTEM
