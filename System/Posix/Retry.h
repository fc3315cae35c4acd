// Calls that a signal interrupts.
#pragma once

#include <cerrno>

namespace KORVA::SYSTEM
{
/// Makes a call of the system that answers -1 on failure until no signal interrupts it.
template <class Call>
auto Uninterrupted(Call call)
{
    for (;;)
    {
        auto const result = call();
        if (result != -1 || errno != EINTR)
            return result;
    }
}
} // namespace KORVA::SYSTEM
