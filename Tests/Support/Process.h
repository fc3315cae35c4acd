// Running programs and looking at what they say.
#pragma once

#include <string>
#include <vector>

namespace KORVA::TESTS
{
struct Outcome
{
    int exitCode = -1;
    std::string out;
    std::string err;
};

/// For a child that has just been forked: it ends with the thread that made it, so that nothing outlives a
/// test program that was ended.
void EndWithParent();

/// Runs a program with exactly these arguments and waits for it. `input` is its standard input; `directory`
/// its working directory.
Outcome RunProgram(std::vector<std::string> const& command, std::string const& directory,
                   std::string const& input = {});
} // namespace KORVA::TESTS
