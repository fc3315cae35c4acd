// Records in one line each.
#pragma once

#include "Records/Node.h"

#include <string>

namespace TOOL
{
/// What a record is and what it holds; long values are cut.
std::string Summary(Node const& node);

/// The same without colours, whatever was chosen.
std::string PlainSummary(Node const& node);
} // namespace TOOL
