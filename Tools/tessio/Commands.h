// The commands: each adds itself, with its help, to the command line and runs when it is chosen.
#pragma once

#include "Common.h"
#include "Names.h"

#include "CommandLine.h"

#include <string>
#include <vector>

namespace TOOL
{
/// Ends the command for a bound that is none.
Limits LimitsOf(std::vector<std::string> const& texts);

void AddCatCommand(Command const& app, Common const& common);
void AddDirsCommand(Command const& app, Common const& common);
void AddUriCommand(Command const& app, Common const& common);
void AddStringsCommand(Command const& app, Common const& common);
void AddDictCommand(Command const& app, Common const& common);
void AddTreeCommand(Command const& app, Common const& common);
void AddDumpCommands(Command const& app, Common const& common);
void AddDiffCommand(Command const& app, Common const& common);
void AddSalvageCommand(Command const& app, Common const& common);
void AddEditCommands(Command const& app, Common const& common);
void AddFileCommands(Command const& app, Common const& common);
void AddHexCommand(Command const& app, Common const& common);
void AddVerifyCommands(Command const& app, Common const& common);
void AddCopyCommand(Command const& app, Common const& common);
} // namespace TOOL
