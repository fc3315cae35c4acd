// The system's own URL and file reference types, in the shape in which its other services hand them out.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace KORVA::PLATFORM
{
class CFURL;
/// An immutable URL, counted. Whoever gets one from a function with Create in its name owns it and ends that
/// with `CFRelease`. Null where none can be made. Safe from any thread.
using CFURLRef = CFURL const*;

/// Refers to an existing file, directory or symbolic link (not what it points to), by its name and by which
/// object that is: it resolves for as long as that very object is found there. To be copied at will; nothing
/// is held open.
struct FSRef
{
    /// Room for the longest path that the system takes.
    std::byte hidden[4096 + 2 * 8];
};
static_assert(std::is_trivially_copyable_v<FSRef>);

/// Of an absolute path, `/` between components. Null for one that is empty or not well-formed.
CFURLRef CFURLCreateWithFileSystemPath(std::u16string_view path, bool isDirectory);
/// Of a URL text, escaped. Null for one that makes no URL.
CFURLRef CFURLCreateWithString(std::u16string_view text);
/// Null when the reference does not resolve.
CFURLRef CFURLCreateFromFSRef(FSRef const& ref);

void CFRetain(CFURLRef url);
void CFRelease(CFURLRef url);

/// The path, unescaped and without a trailing `/`; "" of a host alone; nothing where the URL has none.
std::optional<std::u16string> CFURLCopyFileSystemPath(CFURLRef url);
/// The whole text, escaped: ASCII. Borrowed from the URL.
std::string const& CFURLGetString(CFURLRef url);
/// Makes `ref` refer to what the URL's path names. False, and `ref` unchanged, when nothing is there.
bool CFURLGetFSRef(CFURLRef url, FSRef& ref);
} // namespace KORVA::PLATFORM
