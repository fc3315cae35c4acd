#include "CommandLine.h"

#include <CLI/CLI.hpp>

namespace TOOL
{
using KORVA::uint64;

CommandOption CommandOption::Required(bool required) const
{
    mOption->required(required);
    return *this;
}

CommandOption CommandOption::Names(std::string const& value) const
{
    mOption->type_name(value);
    return *this;
}

CommandOption CommandOption::OneOf(std::vector<std::string> const& values) const
{
    mOption->check(CLI::IsMember(values));
    return *this;
}

CommandOption CommandOption::Excludes(CommandOption const& other) const
{
    mOption->excludes(other.mOption);
    return *this;
}

Command Command::Add(std::string const& name, std::string const& about) const
{
    return Command(*mApp->add_subcommand(name, about));
}

void Command::NeedsCommand() const { mApp->require_subcommand(1); }

void Command::Runs(std::function<void()> const& run) const { mApp->callback(run); }

CommandOption Command::Option(std::string const& names, std::string& value, std::string const& about) const
{
    return CommandOption(mApp->add_option(names, value, about));
}

CommandOption Command::Option(std::string const& names, std::optional<std::string>& value,
                              std::string const& about) const
{
    return CommandOption(mApp->add_option(names, value, about));
}

CommandOption Command::Option(std::string const& names, std::vector<std::string>& values,
                              std::string const& about) const
{
    return CommandOption(mApp->add_option(names, values, about));
}

CommandOption Command::Flag(std::string const& names, bool& value, std::string const& about) const
{
    return CommandOption(mApp->add_flag(names, value, about));
}

CommandOption Command::Size(std::string const& names, uint64& value, uint64 most,
                            std::string const& about) const
{
    return CommandOption(mApp->add_option(names, value, about)
                             ->transform(CLI::AsSizeValue(false))
                             ->check(CLI::Range(uint64{1}, most)));
}

CommandOption Command::Find(std::string const& name) const { return CommandOption(mApp->get_option(name)); }
} // namespace TOOL
