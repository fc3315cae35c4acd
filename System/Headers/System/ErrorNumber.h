// How the operating system's failures are told. The functions of this layer are safe from any thread, and
// throw nothing but for lack of memory; an object belongs to one thread at a time, where nothing else is
// said.
#pragma once

namespace KORVA::SYSTEM
{
/// A failure by the system's own number, to be compared with the constants of <cerrno>; 0 for none. No
/// operation of this layer answers EINTR, and none leaves the caller to look at `errno`.
using ErrorNumber = int;
} // namespace KORVA::SYSTEM
