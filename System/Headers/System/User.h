// The user of this process.
#pragma once

#include <string>

namespace KORVA::SYSTEM
{
/// The home directory as the user database has it; empty where there is none.
std::string HomeInUserDatabase();
} // namespace KORVA::SYSTEM
