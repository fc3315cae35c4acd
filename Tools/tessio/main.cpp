#include "Commands.h"
#include "Failure.h"
#include "Help/Documents.h"
#include "Output.h"
#include "System/Signals.h"
#include "System/StandardStreams.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <tessio/TessIO/Version.h>

#include <clocale>
#include <cstdio>
#include <new>

namespace
{
using namespace TOOL;

constexpr char kAbout[] = "Reads, writes and names data through the TessIO library.\n"
                          "Exit codes: 0 done, 1 not found or differs, 2 usage, 3 input/output, 4 not a "
                          "record file or a damaged one, "
                          "5 beyond a limit.";

int Report(Exit code, std::string const& message)
{
    // What was printed before comes first, also where both go to one place.
    std::fflush(stdout);
    std::fprintf(stderr, "tessio: %s\n", message.c_str());
    return static_cast<int>(code);
}

/// The parser's words, or better ones where a command is missing or misspelt.
std::string WhyNot(CLI::App const& app, CLI::ParseError const& error)
{
    if (!dynamic_cast<CLI::RequiredError const*>(&error))
        return error.what();
    CLI::App const* command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    if (command->get_require_subcommand_min() == 0)
        return error.what();
    std::string const place = command == &app ? "" : " of " + command->get_name();
    // What a command does not know falls through to those above it.
    for (std::string const& argument : app.remaining(true))
        if (!argument.starts_with('-'))
            return "there is no command " + Quoted(argument) + place;
    return "a command" + place + " is missing";
}

int Run(int argc, char** argv)
{
    CLI::App app(kAbout, "tessio");
    Common common;
    app.require_subcommand(1);
    std::string const version =
        fmt::format("tessio {}.{}.{}", TESSIO_VERSION_MAJOR, TESSIO_VERSION_MINOR, TESSIO_VERSION_PATCH);
    app.set_version_flag("--version", version);
    app.add_flag("-v,--verbose", common.verbose, "Show the library's own messages on standard error");
    app.add_flag("--json", common.json, "Print one JSON document instead of text");
    app.add_option("--plugin", common.plugIns,
                   "Load a plug-in, whose code then runs with all your rights; may be given several times")
        ->type_name("LIB")
        ->allow_extra_args(false);
    app.add_option("--color,--colour", common.colour,
                   "Colours: auto (on terminals, unless NO_COLOR is set), "
                   "always or never")
        ->type_name("WHEN")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    app.add_option("--limit", common.limitTexts,
                   "Refuse record files beyond a bound: depth=N, count=N or bytes=N, commas between several")
        ->type_name("BOUND")
        ->delimiter(',');
    app.parse_complete_callback([&common] {
        ChooseColour(common.colour);
        common.limits = LimitsOf(common.limitTexts);
    });
    // All of these may stand behind the command's name as well.
    app.fallthrough();
    Command const commands(app);
    AddUriCommand(commands, common);
    AddDirsCommand(commands, common);
    AddStringsCommand(commands, common);
    AddDictCommand(commands, common);
    AddTreeCommand(commands, common);
    AddHexCommand(commands, common);
    AddVerifyCommands(commands, common);
    AddDiffCommand(commands, common);
    AddEditCommands(commands, common);
    AddSalvageCommand(commands, common);
    AddDumpCommands(commands, common);
    AddFileCommands(commands, common);
    AddCatCommand(commands, common);
    AddCopyCommand(commands, common);
    AddDocumentCommand(app, version);
    try
    {
        app.parse(argc, argv);
    }
    catch (CLI::Success const& help)
    {
        app.exit(help);
    }
    catch (CLI::ParseError const& error)
    {
        return Report(Exit::kUsage,
                      Escaped(WhyNot(app, error)) + "\nRun it with --help for more information.");
    }
    if (std::fflush(stdout) != 0)
        return Report(Exit::kInputOutput, "cannot write to standard output");
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    KORVA::SYSTEM::OccupyClosedStreams();
    // A limit on the size of files is an error like a full disk.
    KORVA::SYSTEM::IgnoreSizeLimitSignal();
    std::setlocale(LC_CTYPE, "C.UTF-8");
    try
    {
        return Run(argc, argv);
    }
    catch (Failure const& failure)
    {
        return Report(failure.Code(), failure.what());
    }
    catch (std::bad_alloc const&)
    {
        return Report(Exit::kInputOutput, "out of memory");
    }
    catch (std::exception const& error)
    {
        return Report(Exit::kInputOutput, error.what());
    }
}
