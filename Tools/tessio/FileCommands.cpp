// tessio stat, rm, touch: files through the URI registry.
#include "Commands.h"
#include "Dates.h"
#include "EditCommands.h"
#include "Failure.h"
#include "Location.h"
#include "Output.h"
#include "Saving.h"
#include "System/Files.h"
#include "System/Times.h"
#include <tessio/Records/Tree/Path.h>
#include <tessio/TessIO/ResultCodes.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

namespace TOOL
{
namespace
{
using namespace KORVA;
using IO::IURIFile;

struct Arguments
{
    std::vector<std::string> locations;
    std::string date;
    std::string user;
    Target target;
};

std::optional<uint64> Ask(IURIFile const& file, ErrCode (IURIFile::*get)(uint64&) const)
{
    uint64 value = 0;
    if ((file.*get)(value) != kNoError)
        return std::nullopt;
    return value;
}

/// Like ls: rwxr-x---, from the nine attributes.
std::string Permissions(IURIFile const& file)
{
    std::string text;
    for (IO::FileAttribute attribute = IO::kAttributeOwnerRead; attribute <= IO::kAttributeOthersExecute;
         ++attribute)
    {
        bool set = false;
        static_cast<void>(file.GetAttribute(attribute, set));
        text += set ? "rwx"[(attribute - IO::kAttributeOwnerRead) % 3] : '-';
    }
    return text;
}

void StatOne(Session const& session, std::string const& location, Common const& common, Json& all)
{
    IO::IURIFilePtr const file = FileOf(session, location);
    if (!file->Exists())
        NoSuchFile(session, "stat", location, *file);
    auto const size = Ask(*file, &IURIFile::GetSize);
    auto const modified = Ask(*file, &IURIFile::GetModificationDate);
    auto const created = Ask(*file, &IURIFile::GetCreationDate);
    bool hidden = false;
    static_cast<void>(file->GetAttribute(IO::kAttributeHidden, hidden));
    std::string const path = IsLocal(*file->GetURI())
                                 ? std::filesystem::absolute(SystemPathOf(session, location)).string()
                                 : file->GetURI()->GetPath().ToUTF8();
    if (common.json)
    {
        auto const date = [](std::optional<uint64> const& value) {
            return value ? Json(DateText(*value)) : Json(nullptr);
        };
        all.push_back({{"location", location},
                       {"scheme", file->GetURI()->GetScheme().ToUTF8()},
                       {"path", path},
                       {"size", size ? Json(*size) : Json(nullptr)},
                       {"modified", date(modified)},
                       {"created", date(created)},
                       {"permissions", Permissions(*file)},
                       {"hidden", hidden}});
        return;
    }
    auto const date = [](std::optional<uint64> const& value) { return value ? DateText(*value) : "unknown"; };
    Print(fmt::format("{}\n  {:<12} {}\n  {:<12} {}\n  {:<12} {}\n  {:<12} {}\n  {:<12} {}\n  {:<12} {}\n",
                      Escaped(location), "path", Escaped(path), "size",
                      size ? std::to_string(*size) : "unknown", "modified", date(modified), "created",
                      date(created), "permissions", Permissions(*file), "hidden", hidden ? "yes" : "no"));
}

void Stat(Common const& common, Arguments const& arguments)
{
    Session const session(common, arguments.user);
    Json all = Json::array();
    for (std::string const& location : arguments.locations)
        StatOne(session, location, common, all);
    if (common.json)
        PrintJson({{"files", all}});
}

/// Whether the two arguments are a record file and a path in it: the second one reads as such, and is no
/// file.
bool NamesPlace(Arguments const& arguments)
{
    std::error_code error;
    return arguments.locations.size() == 2 && ParsePath(arguments.locations[1]) &&
           !std::filesystem::exists(std::filesystem::symlink_status(arguments.locations[1], error));
}

void RemoveFile(Session const& session, std::string const& location)
{
    if (!IsLocal(session, location))
    {
        IO::IURIFilePtr const file = FileOf(session, location);
        if (file->Delete() == kNoError)
            return;
        if (!file->Exists())
            NoSuchFile(session, "remove", location, *file);
        throw Failure(Exit::kInputOutput, "cannot remove " + Quoted(location) + ": permission denied");
    }
    SYSTEM::ErrorNumber const error = SYSTEM::RemoveFile(SystemPathOf(session, location));
    if (error != 0)
        throw Failure(error == ENOENT || error == ENOTDIR ? Exit::kNotFound : Exit::kInputOutput,
                      "cannot remove " + Quoted(location) + ": " + WordsOf(error));
}

void RemoveFiles(Common const& common, Arguments const& arguments)
{
    if (NamesPlace(arguments))
        return RemovePlace(common, arguments.locations[0], arguments.locations[1], arguments.target);
    if (arguments.target.inPlace || !arguments.target.out.empty())
        throw Failure(Exit::kUsage,
                      "only what a path of a record file names can be removed so: rm FILE /0/dict[42]");
    Session const session(common);
    for (std::string const& location : arguments.locations)
        RemoveFile(session, location);
}

void TouchFile(Session const& session, std::string const& location, uint64 date)
{
    if (!IsLocal(session, location))
    {
        IO::IURIFilePtr const file = FileOf(session, location);
        if (file->Create() != kNoError)
            throw Failure(Exit::kInputOutput,
                          "cannot create " + Quoted(location) + ": no such directory, or no permission");
        if (file->SetModificationDate(date) != kNoError)
            throw Failure(Exit::kInputOutput, "cannot date " + Quoted(location) + ": no permission");
        return;
    }
    std::string const path = SystemPathOf(session, location);
    if (SYSTEM::ErrorNumber const error = SYSTEM::MakeFile(path); error != 0 && error != EEXIST)
        throw Failure(Exit::kInputOutput, "cannot create " + Quoted(location) + ": " + ReasonOf(error));
    if (SYSTEM::ErrorNumber const error = SYSTEM::SetModified(path, date))
        throw Failure(Exit::kInputOutput, "cannot date " + Quoted(location) + ": " + WordsOf(error));
}

void Touch(Common const& common, Arguments const& arguments)
{
    uint64 date = arguments.date.empty() ? Now() : DateFromText(arguments.date);
    Session const session(common);
    for (std::string const& location : arguments.locations)
        TouchFile(session, location, date);
}
} // namespace

void AddFileCommands(Command const& app, Common const& common)
{
    auto const arguments = std::make_shared<Arguments>();
    auto const add = [&](char const* name, char const* about, void (*run)(Common const&, Arguments const&)) {
        Command const command = app.Add(name, about);
        command.Option("LOCATION", arguments->locations, "Paths or URLs of files").Required();
        command.Runs([&common, arguments, run] { run(common, *arguments); });
        return command;
    };
    AddUserOption(add("stat", "Show size, dates and permissions of files", &Stat), arguments->user);
    AddTarget(add("rm", "Remove files, or what a path of a record file names: rm FILE /0/dict[42] -i",
                  &RemoveFiles),
              arguments->target);
    add("touch", "Create files that are not there, and set the modification date", &Touch)
        .Option("--date", arguments->date,
                "YYYY-MM-DDTHH:MM:SS[.fraction]Z, or nanoseconds since 1970; now when not given");
}
} // namespace TOOL
