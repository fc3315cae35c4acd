#include "Directories.h"

#include "Failure.h"
#include "Output.h"

#include <algorithm>

namespace TOOL
{
std::vector<Directory> const& Directories()
{
    using namespace KORVA::FILE_SYS;
    static std::vector<Directory> const sDirectories = {
        {kHomeDir, "home"},
        {kDesktopDir, "desktop"},
        {kDocumentsDir, "documents"},
        {kDownloadsDir, "downloads"},
        {kMusicDir, "music"},
        {kPicturesDir, "pictures"},
        {kVideosDir, "videos"},
        {kTemplatesDir, "templates"},
        {kPublicShareDir, "public"},
        {kUserDataDir, "data"},
        {kUserConfigDir, "config"},
        {kCacheDir, "cache"},
        {kStateDir, "state"},
        {kTemporaryDir, "temporary"},
        {kSystemDataDir, "system-data"},
        {kSystemConfigDir, "system-config"},
    };
    return sDirectories;
}

Directory const& DirectoryNamed(std::string const& name)
{
    auto const& all = Directories();
    auto const found = std::ranges::find(all, name, &Directory::name);
    if (found != all.end())
        return *found;
    std::string names;
    for (Directory const& directory : all)
        names += std::string(names.empty() ? "" : ", ") + directory.name;
    throw Failure(Exit::kUsage, "there is no directory " + Quoted(name) + "; there are " + names);
}

Directory const* DirectoryOfType(KORVA::int32 type)
{
    auto const& all = Directories();
    auto const found =
        std::ranges::find(all, type, [](Directory const& directory) { return directory.type; });
    return found == all.end() ? nullptr : &*found;
}

std::string DirectoryName(KORVA::int32 type)
{
    Directory const* const directory = DirectoryOfType(type);
    return directory ? directory->name : std::to_string(type);
}
} // namespace TOOL
