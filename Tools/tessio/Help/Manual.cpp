#include "Help/Documents.h"
#include "Output.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace TOOL
{
namespace
{
/// Text in which nothing is a request or a special character.
std::string Roff(std::string_view text)
{
    std::string result;
    for (char const c : text)
    {
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else if (c == '\'' || c == '.')
            // Only at the beginning of a line these would be requests.
            result += (result.empty() || result.back() == '\n' ? "\\&" : "") + std::string(1, c);
        else
            result += c;
    }
    return result;
}

std::string Names(CLI::Option const& option)
{
    if (option.get_positional())
        return fmt::format("\\fI{}\\fR", Roff(option.get_name(true)));
    std::string names;
    for (std::string const& name : option.get_snames())
        names += fmt::format("{}\\fB\\-{}\\fR", names.empty() ? "" : ", ", Roff(name));
    for (std::string const& name : option.get_lnames())
        names += fmt::format("{}\\fB\\-\\-{}\\fR", names.empty() ? "" : ", ", Roff(name));
    if (option.get_items_expected_max() > 0 && option.get_type_size() > 0)
    {
        // What can be chosen stands behind a colon.
        std::string const type = option.get_type_name();
        names += fmt::format(" \\fI{}\\fR", Roff(type.substr(0, type.find(':'))));
    }
    return names;
}

void AppendOptions(std::string& text, CLI::App const& app)
{
    for (CLI::Option const* const option : app.get_options())
        if (option != app.get_help_ptr() && !option->get_group().empty())
            text += fmt::format(".TP\n{}\n{}\n", Names(*option), Roff(option->get_description()));
}

std::string Synopsis(CLI::App const& app, std::string const& name)
{
    std::string text = fmt::format("\\fBtessio {}\\fR", Roff(name));
    bool anyOption = false;
    for (CLI::Option const* const option : app.get_options())
        anyOption = anyOption || (!option->get_positional() && option != app.get_help_ptr());
    if (anyOption)
        text += " [\\fIOPTIONS\\fR]";
    for (CLI::Option const* const option : app.get_options())
        if (option->get_positional())
        {
            std::string const argument = fmt::format("\\fI{}\\fR", Roff(option->get_name(true)));
            text += (option->get_required() ? " " + argument : " [" + argument + "]") +
                    (option->get_items_expected_max() > 1 ? "..." : "");
        }
    return text;
}

void AppendCommands(std::string& text, CLI::App const& app, std::string const& above)
{
    for (CLI::App const* const command : app.get_subcommands([](CLI::App const*) { return true; }))
    {
        if (command->get_group().empty())
            continue;
        std::string const name = above + command->get_name();
        bool const isGroup = !command->get_subcommands([](CLI::App const*) { return true; }).empty();
        if (!isGroup)
        {
            text += fmt::format(".SS {}\n{}\n.PP\n{}\n", Roff(name), Synopsis(*command, name),
                                Roff(command->get_description()));
            AppendOptions(text, *command);
        }
        AppendCommands(text, *command, name + " ");
    }
}
} // namespace

std::string ManualOf(CLI::App const& app, std::string const& version)
{
    std::string text = fmt::format(".TH TESSIO 1 \"\" \"{}\" \"User Commands\"\n", Roff(version));
    text += ".SH NAME\ntessio \\- read, write, check and rescue record files\n";
    text += ".SH SYNOPSIS\n\\fBtessio\\fR [\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n";
    text += ".SH DESCRIPTION\n" + Roff(app.get_description()) + "\n";
    text += ".SH OPTIONS\nThese may stand before or behind the command.\n";
    AppendOptions(text, app);
    text += ".SH COMMANDS\n";
    AppendCommands(text, app, "");
    text += ".SH ENVIRONMENT\n.TP\n\\fBNO_COLOR\\fR\nIf it is set and not empty, there are no colours unless "
            "\\-\\-color always asks for them.\n";
    text += ".SH FILES\n.TP\n\\fIFILE\\fR~\nWhat a file was before a change in place.\n";
    return text;
}

void AddDocumentCommand(CLI::App& app, std::string const& version)
{
    CLI::App* const command = app.add_subcommand("document", "Print the manual page or a shell's completion");
    command->group("");
    auto const which = std::make_shared<std::string>();
    command->add_option("WHICH", *which, "man, bash, zsh or fish")
        ->required()
        ->check(CLI::IsMember({"man", "bash", "zsh", "fish"}));
    command->callback([&app, which, version] {
        Print(*which == "man"    ? ManualOf(app, version)
              : *which == "bash" ? BashCompletionOf(app)
              : *which == "zsh"  ? ZshCompletionOf(app)
                                 : FishCompletionOf(app));
    });
}
} // namespace TOOL
