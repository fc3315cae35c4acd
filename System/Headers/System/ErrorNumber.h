// How the operating system's failures are told.
#pragma once

namespace KORVA::SYSTEM
{
/// A failure by the system's own number (`errno`); 0 for none.
using ErrorNumber = int;
} // namespace KORVA::SYSTEM
