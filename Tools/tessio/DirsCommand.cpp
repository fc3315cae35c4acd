// tessio dirs: where the well-known directories are.
#include "Commands.h"
#include "Directories.h"
#include "Failure.h"
#include "Output.h"
#include "Session.h"
#include <tessio/FileIO/ISystemDirContainer.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>

namespace TOOL
{
namespace
{
using namespace KORVA;
using FILE_SYS::IDir;
using STRING::CoreString;

/// The names asked for, or all.
std::vector<Directory> Wanted(std::vector<std::string> const& names)
{
    if (names.empty())
        return {Directories().begin(), Directories().end()};
    std::vector<Directory> wanted;
    for (std::string const& name : names)
        wanted.push_back(DirectoryNamed(name));
    return wanted;
}

void Run(Common const& common, std::vector<std::string> const& names)
{
    std::vector<Directory> const wanted = Wanted(names);
    Session const session(common);
    auto const container = session.Create<FILE_SYS::ISystemDirContainer>(FILE_SYS::IID_SYSTEM_DIR_CONTAINER);
    Json all = Json::array();
    for (Directory const& directory : wanted)
    {
        IDir* const found = container->GetDir(directory.type);
        CoreString path;
        if (found)
            static_cast<void>(found->GetPath(1, path));
        std::error_code error;
        bool const exists = found && std::filesystem::is_directory(path.ToUTF8(), error);
        if (common.json)
            all.push_back({{"name", directory.name},
                           {"path", found ? Json(path.ToUTF8()) : Json(nullptr)},
                           {"exists", exists}});
        else
            Print(fmt::format("{:<13} {}{}\n", directory.name, found ? Escaped(path) : "unknown",
                              !found || exists ? "" : "  (not there)"));
    }
    if (common.json)
        PrintJson({{"directories", all}});
}
} // namespace

void AddDirsCommand(Command const& app, Common const& common)
{
    Command const command = app.Add("dirs", "Show where the well-known directories are");
    auto const names = std::make_shared<std::vector<std::string>>();
    command.Option("NAME", *names, "Only these: home, desktop, documents, downloads, ...");
    command.Runs([&common, names] { Run(common, *names); });
}
} // namespace TOOL
