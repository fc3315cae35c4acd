// What the threads of this process are doing.
#pragma once

#include "System/ErrorNumber.h"

#include <chrono>
#include <vector>

namespace KORVA::SYSTEM
{
/// By which the system knows a thread. A number is given again when its thread has ended.
using ThreadNumber = int;

/// All threads of the process but the calling one.
ErrorNumber ListOtherThreads(std::vector<ThreadNumber>& threads);

/// How long the thread has run, ever; negative when it has ended.
std::chrono::nanoseconds RunTimeOf(ThreadNumber thread);

/// Whether it runs or could: false while it waits in the kernel, and when it has ended.
bool IsRunning(ThreadNumber thread);
} // namespace KORVA::SYSTEM
