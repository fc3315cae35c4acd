#include "System/Fork.h"

#include <pthread.h>

namespace KORVA::SYSTEM
{
ErrorNumber CallAroundForks(void (*before)(), void (*afterInParent)(), void (*afterInChild)())
{
    return pthread_atfork(before, afterInParent, afterInChild);
}
} // namespace KORVA::SYSTEM
