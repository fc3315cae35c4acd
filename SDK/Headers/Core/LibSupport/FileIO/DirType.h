// The directories that a desktop system knows by purpose.
#pragma once

#include <tessio/ObjectModel/Types.h>

namespace KORVA::FILE_SYS
{
/// Written into files as 32 bits: no value may ever change.
enum DirType : int32
{
    /// No directory.
    kNoDir = 0,
    kHomeDir = 1,
    kDesktopDir = 2,
    kDocumentsDir = 3,
    kDownloadsDir = 4,
    kMusicDir = 5,
    kPicturesDir = 6,
    kVideosDir = 7,
    kTemplatesDir = 8,
    kPublicShareDir = 9,
    kUserDataDir = 10,
    kUserConfigDir = 11,
    kCacheDir = 12,
    kStateDir = 13,
    kTemporaryDir = 14,
    kSystemDataDir = 15,
    kSystemConfigDir = 16
};
} // namespace KORVA::FILE_SYS
