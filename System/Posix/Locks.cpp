#include "System/Locks.h"

#include "Retry.h"

#include <sys/file.h>

namespace KORVA::SYSTEM
{
ErrorNumber TryLock(int descriptor, LockKind kind)
{
    int const operation = (kind == LockKind::kShared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    return Uninterrupted([&] { return flock(descriptor, operation); }) == 0 ? 0 : errno;
}

void Unlock(int descriptor)
{
    Uninterrupted([&] { return flock(descriptor, LOCK_UN); });
}
} // namespace KORVA::SYSTEM
