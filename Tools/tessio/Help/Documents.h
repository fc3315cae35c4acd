// The manual page and the completions of shells, made of what --help knows.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace TOOL
{
/// In the form of man(7).
std::string ManualOf(CLI::App const& app, std::string const& version);

std::string BashCompletionOf(CLI::App const& app);
std::string ZshCompletionOf(CLI::App const& app);
std::string FishCompletionOf(CLI::App const& app);

/// Adds the command that prints these; it is for builds and stands in no help.
void AddDocumentCommand(CLI::App& app, std::string const& version);
} // namespace TOOL
