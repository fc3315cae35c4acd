// The page around the data: markup, style and script.
#pragma once

namespace TOOL
{
/// With {{title}} and {{data}} where the file's name and its data go.
extern char const kPageTemplate[];
} // namespace TOOL
