// From what a person types to the file that it names.
#pragma once

#include "FileIO/IFile.h"
#include "Session.h"
#include "TessIO/IURIFile.h"

#include <string>
#include <vector>

namespace TOOL
{
/// The URI of a location: a URL, or else a path of this system, absolute or relative, every character of it
/// kept.
KORVA::IO::IURIPtr URIOf(Session const& session, std::string const& location);

/// The file object that serves the location's scheme.
KORVA::IO::IURIFilePtr FileOf(Session const& session, std::string const& location);

/// Whether it is a file of this system, which everything else is to be asked of as well.
bool IsLocal(KORVA::IO::IURI const& uri);

/// Ends the command: a file that can't be found to stat, copy or remove it.
[[noreturn]] void NoSuchFile(Session const& session, char const* operation, std::string const& location,
                             KORVA::IO::IURIFile const& file);

/// Ends the command: a file of `size` bytes (what is known of it) of which only `done` could be read.
/// `reason` may be empty.
[[noreturn]] void CutShort(std::string const& location, std::string const& reason, KORVA::int64 done,
                           KORVA::int64 size);

/// Opens the file for reading, or for reading and writing (which locks it against others).
KORVA::TInterfacePtr<KORVA::IO::IDataProviderStream> OpenToRead(Session const& session,
                                                                std::string const& location);
KORVA::TInterfacePtr<KORVA::IO::IDataProviderStream> OpenToWrite(Session const& session,
                                                                 std::string const& location);

/// Reads a stream's file from the start to the end. Ends the command for one of 2 GiB and more.
std::vector<unsigned char> ReadWhole(Session const& session, KORVA::IO::IDataProviderStream& stream,
                                     std::string const& location);

/// Why the file-system library could not write a file, in words.
std::string ReasonOf(KORVA::FILE_SYS::ErrCode status);

/// Makes the bytes the file's whole content, at once and safely. Empty, or why the file is as it was.
std::string TryReplaceContent(Session const& session, std::string const& location,
                              std::vector<unsigned char> const& content);

/// The same; ends the command when it can't be done.
/// `shown` is its name in messages; the location when it is empty.
void ReplaceContent(Session const& session, std::string const& location,
                    std::vector<unsigned char> const& content, std::string const& shown = {});
} // namespace TOOL
