// The commands: each adds itself, with its help, to the command line and runs when it is chosen.
#pragma once

#include "Common.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace TOOL
{
/// Ends the command for a bound that is none.
Limits LimitsOf(std::vector<std::string> const& texts);

void AddCatCommand(CLI::App& app, Common const& common);
void AddDirsCommand(CLI::App& app, Common const& common);
void AddUriCommand(CLI::App& app, Common const& common);
void AddStringsCommand(CLI::App& app, Common const& common);
void AddDictCommand(CLI::App& app, Common const& common);
void AddTreeCommand(CLI::App& app, Common const& common);
void AddDumpCommands(CLI::App& app, Common const& common);
void AddDiffCommand(CLI::App& app, Common const& common);
void AddSalvageCommand(CLI::App& app, Common const& common);
void AddEditCommands(CLI::App& app, Common const& common);
void AddFileCommands(CLI::App& app, Common const& common);
void AddHexCommand(CLI::App& app, Common const& common);
void AddVerifyCommands(CLI::App& app, Common const& common);
void AddCopyCommand(CLI::App& app, Common const& common);
} // namespace TOOL
