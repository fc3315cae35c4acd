#include "Help/Documents.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace TOOL
{
namespace
{
std::vector<CLI::App const*> CommandsOf(CLI::App const& app)
{
    std::vector<CLI::App const*> commands;
    for (CLI::App const* const command : app.get_subcommands([](CLI::App const*) { return true; }))
        if (!command->get_group().empty())
            commands.push_back(command);
    return commands;
}

bool HasValue(CLI::Option const& option)
{
    return option.get_items_expected_max() > 0 && option.get_type_size() > 0;
}

std::string OptionNames(CLI::App const& app)
{
    std::string names;
    for (CLI::Option const* const option : app.get_options())
    {
        if (option->get_positional())
            continue;
        for (std::string const& name : option->get_lnames())
            names += (names.empty() ? "--" : " --") + name;
        for (std::string const& name : option->get_snames())
            names += (names.empty() ? "-" : " -") + name;
    }
    return names;
}

std::string CommandNames(CLI::App const& app)
{
    std::string names;
    for (CLI::App const* const command : CommandsOf(app))
        names += (names.empty() ? "" : " ") + command->get_name();
    return names;
}

/// What an option's value can be, where that is a few words; otherwise it is a file.
std::string Choices(CLI::Option const& option)
{
    if (!option.get_lnames().empty() && option.get_lnames().front() == "limit")
        return "depth= count= bytes=";
    std::string type = option.get_type_name();
    std::size_t const open = type.find('{');
    if (open == std::string::npos)
        return "";
    type = type.substr(open + 1, type.find('}') - open - 1);
    std::ranges::replace(type, ',', ' ');
    return type;
}

/// Calls `visit(words, app)` for the program and every command: "", "tree", "dict", "dict set".
template <class Visit>
void Each(CLI::App const& app, std::string const& words, Visit const& visit)
{
    visit(words, app);
    for (CLI::App const* const command : CommandsOf(app))
        Each(*command, words.empty() ? command->get_name() : words + " " + command->get_name(), visit);
}

/// Between single quotes of a shell.
std::string ShellQuoted(std::string const& text)
{
    std::string result = "'";
    for (char const c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}
} // namespace

std::string BashCompletionOf(CLI::App const& app)
{
    std::string text = "# Completion of tessio for bash.\n"
                       "_tessio()\n{\n"
                       "    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
                       "    local command= commands= words= word\n"
                       "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
                       "        case \"$command $word\" in\n";
    Each(app, "", [&](std::string const& words, CLI::App const&) {
        if (!words.empty())
            text += fmt::format("            {}) command={} ;;\n",
                                ShellQuoted((words.find(' ') == std::string::npos ? " " : "") + words),
                                ShellQuoted(words));
    });
    text += "        esac\n    done\n    case $before in\n";
    std::string done = " ";
    Each(app, "", [&](std::string const&, CLI::App const& each) {
        for (CLI::Option const* const option : each.get_options())
        {
            std::string const choices = Choices(*option);
            if (choices.empty() || option->get_lnames().empty() ||
                done.find(" " + option->get_lnames().front() + " ") != std::string::npos)
                continue;
            done += option->get_lnames().front() + " ";
            text += fmt::format("        --{}) COMPREPLY=($(compgen -W '{}' -- \"$current\")); return ;;\n",
                                option->get_lnames().front(), choices);
        }
    });
    text += "    esac\n    case $command in\n";
    std::string const common = OptionNames(app);
    Each(app, "", [&](std::string const& words, CLI::App const& each) {
        text +=
            fmt::format("        {}) commands={} words={} ;;\n", ShellQuoted(words),
                        ShellQuoted(CommandNames(each)), ShellQuoted(words.empty() ? "" : OptionNames(each)));
    });
    text += "    esac\n"
            "    if [[ $current == -* ]]; then\n"
            "        COMPREPLY=($(compgen -W \"$words " +
            common +
            "\" -- \"$current\"))\n"
            "    else\n"
            "        [[ -n $commands ]] && COMPREPLY=($(compgen -W \"$commands\" -- \"$current\"))\n"
            "        [[ -z $commands ]] && COMPREPLY=($(compgen -f -- \"$current\"))\n"
            "    fi\n}\n"
            "complete -o filenames -F _tessio tessio\n";
    return text;
}

std::string ZshCompletionOf(CLI::App const& app)
{
    // zsh has commands and options of its own form; each command's are told in one place.
    std::string text = "#compdef tessio\n# Completion of tessio for zsh.\n_tessio()\n{\n"
                       "    local -a choices\n    local command= word\n"
                       "    for word in ${words[2,CURRENT-1]}; do\n"
                       "        case \"$command $word\" in\n";
    Each(app, "", [&](std::string const& words, CLI::App const&) {
        if (!words.empty())
            text += fmt::format("            {}) command={} ;;\n",
                                ShellQuoted((words.find(' ') == std::string::npos ? " " : "") + words),
                                ShellQuoted(words));
    });
    text += "        esac\n    done\n    case $command in\n";
    Each(app, "", [&](std::string const& words, CLI::App const& each) {
        text += fmt::format("        {})\n            choices=(", ShellQuoted(words));
        for (CLI::App const* const command : CommandsOf(each))
            text +=
                "\n                " + ShellQuoted(command->get_name() + ":" + command->get_description());
        text += "\n            )\n";
        for (CLI::Option const* const option : each.get_options())
            for (std::string const& name : option->get_lnames())
                text += fmt::format("            [[ $PREFIX == -* ]] && choices+=({})\n",
                                    ShellQuoted("--" + name + ":" + option->get_description()));
        text += "            ;;\n";
    });
    text += "    esac\n"
            "    (( ${#choices} )) && _describe tessio choices && return\n"
            "    [[ -n $command ]] && _files\n}\n_tessio \"$@\"\n";
    return text;
}

std::string FishCompletionOf(CLI::App const& app)
{
    std::string text = "# Completion of tessio for fish.\n";
    std::string const names = CommandNames(app);
    Each(app, "", [&](std::string const& words, CLI::App const& each) {
        std::string const condition =
            words.empty()
                ? ""
                : " -n " + ShellQuoted("__fish_seen_subcommand_from " + words.substr(words.rfind(' ') + 1));
        for (CLI::App const* const command : CommandsOf(each))
            text += fmt::format(
                "complete -c tessio{} -f -a {} -d {}\n",
                words.empty() ? " -n " + ShellQuoted("not __fish_seen_subcommand_from " + names) : condition,
                command->get_name(), ShellQuoted(command->get_description()));
        for (CLI::Option const* const option : each.get_options())
        {
            if (option->get_positional())
                continue;
            std::string const choices = Choices(*option);
            text += "complete -c tessio" + condition;
            for (std::string const& name : option->get_snames())
                text += " -s " + name;
            for (std::string const& name : option->get_lnames())
                text += " -l " + name;
            if (!choices.empty())
                text += " -x -a " + ShellQuoted(choices);
            else if (HasValue(*option))
                text += " -r";
            text += " -d " + ShellQuoted(option->get_description()) + "\n";
        }
    });
    return text;
}
} // namespace TOOL
