// tessio uri: what the library makes of a location.
#include "Commands.h"
#include "Output.h"
#include "Session.h"
#include "TessIO/ClassIds.h"
#include "TessIO/IURI.h"

#include <fmt/format.h>

#include <memory>

namespace TOOL
{
namespace
{
using KORVA::STRING::CoreString;

void Run(Common const& common, std::vector<std::string> const& locations)
{
    Session const session(common.verbose);
    Json all = Json::array();
    for (std::string const& location : locations)
    {
        auto const uri = session.Create<KORVA::IO::IURI>(KORVA::IO::IID_IURI);
        uri->Init(TextArgument(location, "location"));
        CoreString name;
        uri->GetName(name);
        if (common.json)
        {
            all.push_back({{"location", location},
                           {"scheme", uri->GetScheme().ToUTF8()},
                           {"host", uri->GetHost().ToUTF8()},
                           {"port", uri->GetPortNumber()},
                           {"path", uri->GetPath().ToUTF8()},
                           {"query", uri->GetQuery().ToUTF8()},
                           {"name", name.ToUTF8()},
                           {"absolute", uri->GetAbsoluteString().ToUTF8()}});
            continue;
        }
        std::uint32_t const port = uri->GetPortNumber();
        std::pair<char const*, std::string> const rows[] = {{"scheme", Escaped(uri->GetScheme())},
                                                            {"host", Escaped(uri->GetHost())},
                                                            {"port", port == 0 ? "" : std::to_string(port)},
                                                            {"path", Escaped(uri->GetPath())},
                                                            {"query", Escaped(uri->GetQuery())},
                                                            {"name", Escaped(name)},
                                                            {"absolute", Escaped(uri->GetAbsoluteString())}};
        std::string text = Escaped(location) + "\n";
        for (auto const& [label, value] : rows)
            text += value.empty() ? fmt::format("  {}\n", label) : fmt::format("  {:<9} {}\n", label, value);
        Print(text);
    }
    if (common.json)
        PrintJson({{"uris", all}});
}
} // namespace

void AddUriCommand(CLI::App& app, Common const& common)
{
    CLI::App* const command =
        app.add_subcommand("uri", "Show the parts of locations: URLs, POSIX, Windows and colon paths");
    auto const locations = std::make_shared<std::vector<std::string>>();
    command->add_option("LOCATION", *locations, "Anything that names a resource")->required();
    command->callback([&common, locations] { Run(common, *locations); });
}
} // namespace TOOL
