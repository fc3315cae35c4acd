// What commands take from the command line. The parser's own headers, which are slow to compile, stay behind
// it.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace TOOL
{
/// An option or argument of a command; the parser owns it.
class CommandOption
{
public:
    explicit CommandOption(CLI::Option* option) : mOption(option) {}

    CommandOption Required(bool required = true) const;
    /// What stands for its value in the help.
    CommandOption Names(std::string const& value) const;
    CommandOption OneOf(std::vector<std::string> const& values) const;
    /// Both together are a mistake.
    CommandOption Excludes(CommandOption const& other) const;

private:
    CLI::Option* mOption;
};

/// A command; the parser owns it. What is filled in must live until the command has run.
class Command
{
public:
    explicit Command(CLI::App& app) : mApp(&app) {}

    /// A command of this one, or of the tool.
    Command Add(std::string const& name, std::string const& about) const;
    /// One of its commands must be chosen.
    void NeedsCommand() const;
    /// What is done when it is chosen.
    void Runs(std::function<void()> const& run) const;

    /// Options have names with dashes ("-o,--output"), arguments have none.
    CommandOption Option(std::string const& names, std::string& value, std::string const& about) const;
    /// The same where it matters whether it was given at all.
    CommandOption Option(std::string const& names, std::optional<std::string>& value,
                         std::string const& about) const;
    CommandOption Option(std::string const& names, std::vector<std::string>& values,
                         std::string const& about) const;
    CommandOption Flag(std::string const& names, bool& value, std::string const& about) const;
    /// A number of bytes between 1 and `most`, also as 64K or 1M.
    CommandOption Size(std::string const& names, KORVA::uint64& value, KORVA::uint64 most,
                       std::string const& about) const;
    /// One that was added before.
    CommandOption Find(std::string const& name) const;

private:
    CLI::App* mApp;
};
} // namespace TOOL
