// What other threads of the process are doing.
#pragma once

namespace KORVA::HOST
{
/// Waits until every other thread has come out of the functions that it was about to come out of. Whoever
/// drops the last reference to an object is still in the object's code for some instructions after the object
/// is gone; nothing in the process can tell when they are behind it, but a thread that has run for a
/// millisecond, or sleeps in the kernel, has left them. False when that is not to be found out, or a thread
/// gets no time to run for seconds.
bool LetOtherThreadsLeave();
} // namespace KORVA::HOST
