#include <tessio/Records/Format/Directories.h>

#include <algorithm>

namespace KORVA::RECORDS
{
namespace
{
using namespace FILE_SYS;

constexpr Directory kDirectories[] = {
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
} // namespace

std::span<Directory const> Directories() { return kDirectories; }

Directory const* DirectoryOfType(int32 type)
{
    auto const found =
        std::ranges::find(kDirectories, type, [](Directory const& directory) { return directory.type; });
    return found == std::end(kDirectories) ? nullptr : &*found;
}

std::string DirectoryName(int32 type)
{
    Directory const* const directory = DirectoryOfType(type);
    return directory ? directory->name : std::to_string(type);
}
} // namespace KORVA::RECORDS
