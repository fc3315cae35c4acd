// A record file as one page for a browser.
#pragma once

#include "CommandLine.h"
#include "Document.h"
#include "Names.h"
#include <tessio/Records/Tree/Layout.h>

#include <string>

namespace TOOL
{
/// The largest file that a page takes, in bytes.
constexpr KORVA::int64 kLargestPage = KORVA::int64{8} << 20;

/// A page that needs nothing else: the records beside the bytes, each showing where the other is. Everything
/// from the file is data in it, never markup or script.
std::string PageOf(OpenDocument& document);

/// Adds the option --html.
void AddPage(Command const& command, std::string& out);

/// Writes the page to a file, or to standard output for "-". Ends the command for a file that is too large.
void WritePage(Session const& session, OpenDocument& document, std::string const& out);
} // namespace TOOL
