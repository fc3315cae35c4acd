// The scheme names as another source has them.
#pragma once

#include <tessio/CoreString/CoreString.h>

#include <array>

namespace KORVA::TESTS
{
using Schemes = std::array<STRING::CoreString const*, 5>;

Schemes SchemesOfAnotherSource();
} // namespace KORVA::TESTS
