// From what a person types to the file that it names.
#pragma once

#include "Session.h"
#include <tessio/TessIO/IURIFile.h>

#include <string>
#include <vector>

namespace TOOL
{
/// The URI of a location: a URL, or else a path of this system, absolute or relative, every character of it
/// kept. Ends the command for a path that is not UTF-8, which no URI holds.
KORVA::IO::IURIPtr URIOf(Session const& session, std::string const& location);

/// Whether a location is a file of this system.
bool IsLocal(Session const& session, std::string const& location);

/// The path of a file of this system, in the system's own bytes. Ends the command for anything else.
std::string SystemPathOf(Session const& session, std::string const& location);

/// Whether a file is there. Ends the command when the system can't say.
bool Exists(Session const& session, std::string const& location);

/// The file object that serves the location's scheme. A path that is not UTF-8 must lead to a file that is
/// there, which then has another path. To make, replace or remove such a file ask for its `SystemPathOf`.
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

/// Why reading from the provider failed, if it did and its system says so. Empty else.
std::string ReadFailureOf(KORVA::IO::IDataProvider const& provider);

/// Makes the bytes the file's whole content, at once and safely. Empty, or why the file is as it was. Warns
/// when the file is new, but not safe yet, or not all of the old one could be kept.
std::string TryReplaceContent(Session const& session, std::string const& location,
                              std::vector<unsigned char> const& content);

/// The same; ends the command when it can't be done.
void ReplaceContent(Session const& session, std::string const& location,
                    std::vector<unsigned char> const& content);
} // namespace TOOL
