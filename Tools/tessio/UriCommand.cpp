// tessio uri: what the library makes of a location.
#include "Commands.h"
#include "Failure.h"
#include "Location.h"
#include "Output.h"
#include "RelativeNames.h"
#include "Session.h"
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <optional>

namespace TOOL
{
namespace
{
using namespace KORVA;
using STRING::CoreString;

struct Arguments
{
    std::vector<std::string> locations;
    std::optional<std::string> directory;
    std::optional<std::string> base;
};

/// A labelled part. Numbers print nothing when they are 0.
struct Part
{
    char const* label;
    Json value;
};

Part TextPart(char const* label, CoreString const& text) { return {label, text.ToUTF8()}; }

std::string TextOf(Json const& value)
{
    if (value.is_string())
        return Escaped(value.get<std::string>());
    return value == 0 ? "" : value.dump();
}

std::vector<Part> PartsOf(IO::IURI const& uri)
{
    CoreString name;
    uri.GetName(name);
    return {TextPart("scheme", uri.GetScheme()),
            TextPart("host", uri.GetHost()),
            {"port", uri.GetPortNumber()},
            TextPart("path", uri.GetPath()),
            TextPart("query", uri.GetQuery()),
            TextPart("name", name),
            TextPart("absolute", uri.GetAbsoluteString())};
}

std::vector<Part> Plain(Session const& session, std::string const& location)
{
    auto const uri = session.Create<IO::IURI>(IO::IID_IURI);
    uri->Init(TextArgument(location, "location"));
    return PartsOf(*uri);
}

std::vector<Part> Resolved(Session const& session, std::string const& base, std::string const& location)
{
    auto const baseURI = session.Create<IO::IURI>(IO::IID_IURI);
    baseURI->Init(TextArgument(base, "base"));
    if (baseURI->GetScheme().empty())
        throw Failure(Exit::kUsage, "the base " + Quoted(base) + " names nothing that has a scheme");
    auto const uri = session.Create<IO::IURI>(IO::IID_IURI);
    uri->InitRelative(*baseURI, TextArgument(location, "location"));
    if (uri->GetAbsoluteString().empty())
        throw Failure(Exit::kUsage, "cannot resolve " + Quoted(location) + " against " + Quoted(base) +
                                        ": a reference must be escaped, a blank as %20");
    return PartsOf(*uri);
}

/// The way from the directory to an absolute path.
std::string WayTo(std::filesystem::path const& directory, std::filesystem::path const& path)
{
    std::string way = path.lexically_normal().lexically_relative(directory.lexically_normal()).string();
    return way == "." ? std::string() : way;
}

/// A path from the directory, or else the way from there to a file of this system.
CoreString WayOf(Session const& session, std::string const& base, std::string const& location)
{
    bool const isPathFromThere = !location.starts_with('/') && location.find("://") == std::string::npos;
    if (isPathFromThere)
        return TextArgument(location, "location");
    IO::IURIPtr const uri = URIOf(session, location);
    if (uri->GetScheme().compare("file") != 0 || !uri->GetHost().empty())
        throw Failure(Exit::kUsage, Quoted(location) + " is no file of this system");
    return CoreString(std::string_view(WayTo(base, uri->GetPath().ToUTF8())));
}

std::vector<Part> RelativeTo(Session const& session, Directory const& directory, std::string const& location)
{
    IO::IRelativeURIPtr uri = RelativeURIOf(directory, CoreString(), Exit::kUsage);
    CoreString const base = uri->GetPath();
    uri = RelativeURIOf(directory, WayOf(session, base.ToUTF8(), location), Exit::kUsage);
    CoreString name;
    uri->GetName(name);
    return {{"directory", directory.name},
            TextPart("at", base),
            TextPart("relative", uri->GetRelPath()),
            TextPart("path", uri->GetPath()),
            TextPart("name", name)};
}

void Run(Common const& common, Arguments const& arguments)
{
    Directory const* const directory = arguments.directory ? &DirectoryNamed(*arguments.directory) : nullptr;
    Session const session(common);
    Json all = Json::array();
    for (std::string const& location : arguments.locations)
    {
        std::vector<Part> const parts = directory        ? RelativeTo(session, *directory, location)
                                        : arguments.base ? Resolved(session, *arguments.base, location)
                                                         : Plain(session, location);
        if (common.json)
        {
            Json entry = {{"location", location}};
            for (Part const& part : parts)
                entry[part.label] = part.value;
            all.push_back(entry);
            continue;
        }
        std::string text = Escaped(location) + "\n";
        for (Part const& part : parts)
        {
            std::string const value = TextOf(part.value);
            text += value.empty() ? fmt::format("  {}\n", part.label)
                                  : fmt::format("  {:<9} {}\n", part.label, value);
        }
        Print(text);
    }
    if (common.json)
        PrintJson({{"uris", all}});
}
} // namespace

void AddUriCommand(Command const& app, Common const& common)
{
    Command const command =
        app.Add("uri", "Show the parts of locations: URLs, POSIX, Windows and colon paths");
    auto const arguments = std::make_shared<Arguments>();
    command.Option("LOCATION", arguments->locations, "Anything that names a resource").Required();
    CommandOption const directory = command.Option(
        "--relative-to", arguments->directory,
        "Name files from a well-known directory (documents, ...), as a reference that survives a move of it");
    command.Option("--resolve", arguments->base, "Take the locations, escaped as in a URL, against this one")
        .Excludes(directory);
    command.Runs([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
