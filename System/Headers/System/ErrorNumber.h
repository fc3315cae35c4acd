// How the operating system's failures are told.
#pragma once

namespace KORVA::SYSTEM
{
/// A failure by the system's own number, to be compared with the constants of <cerrno>; 0 for none. No
/// operation of this layer answers EINTR, and none leaves the caller to look at `errno`.
using ErrorNumber = int;
} // namespace KORVA::SYSTEM
