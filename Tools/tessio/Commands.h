// The commands: each adds itself, with its help, to the command line and runs when it is chosen.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace TOOL
{
/// What every command is told.
struct Common
{
    bool verbose = false;
    bool json = false;
    /// Files of the plug-ins to load.
    std::vector<std::string> plugIns;
};

void AddCatCommand(CLI::App& app, Common const& common);
void AddDirsCommand(CLI::App& app, Common const& common);
void AddUriCommand(CLI::App& app, Common const& common);
void AddStringsCommand(CLI::App& app, Common const& common);
void AddDictCommand(CLI::App& app, Common const& common);
void AddTreeCommand(CLI::App& app, Common const& common);
void AddFileCommands(CLI::App& app, Common const& common);
void AddCopyCommand(CLI::App& app, Common const& common);
} // namespace TOOL
