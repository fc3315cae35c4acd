// What the tool calls by the names of the records library.
#pragma once

namespace KORVA::RECORDS
{}

namespace TOOL
{
using namespace KORVA::RECORDS;
} // namespace TOOL
