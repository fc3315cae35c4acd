// Advisory locks on open files and directories.
#pragma once

#include "System/ErrorNumber.h"

namespace KORVA::SYSTEM
{
enum class LockKind
{
    kShared,
    kExclusive
};

/// Takes the lock without waiting, or turns the one that is held into it. It belongs to the opening: to the
/// descriptor and its duplicates, also those of forked processes, and ends when the last of them is closed.
/// `EWOULDBLOCK` while another opening of the file, in whatever process, has a lock that conflicts.
ErrorNumber TryLock(int descriptor, LockKind kind);

/// Gives it up, for all duplicates.
void Unlock(int descriptor);
} // namespace KORVA::SYSTEM
