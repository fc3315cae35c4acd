// The list in which a desktop keeps where the user's own directories are.
#pragma once

#include <string>
#include <string_view>

namespace KORVA::FILE_SYS
{
/// The path that `file` gives for XDG_`key`_DIR, an absolute one or one below `home`; empty where it gives
/// none or can't be read. The last of several lines counts, and a line that is not of the form is passed
/// over:
///
///     XDG_DOCUMENTS_DIR="$HOME/Papers"
///     XDG_MUSIC_DIR="/srv/music"
///
/// Blanks may stand before the key, the sign and the quote; within the quotes a backslash takes the next
/// character as it is. Without a `home` (empty) what lies below it is passed over.
std::string ListedUserDir(std::string const& file, std::string const& home, std::string_view key);
} // namespace KORVA::FILE_SYS
