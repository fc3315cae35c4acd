// The terminal that the user sits at.
#pragma once

#include <string>

namespace KORVA::SYSTEM
{
/// Shows a question on the process's terminal and reads one line, which is not shown while it is typed.
/// `answer` is the line without its end. False when there is no terminal or no whole line; what came of the
/// line stays in `answer`.
///
/// An interrupt meanwhile ends the waiting. The terminal is as it was before, and the interrupt's usual
/// effect comes, before this returns.
bool AskSilently(std::string const& question, std::string& answer);
} // namespace KORVA::SYSTEM
