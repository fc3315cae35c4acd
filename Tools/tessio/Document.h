// A record file as a command gets it.
#pragma once

#include "CommandLine.h"
#include "Common.h"
#include "Names.h"
#include "Session.h"
#include <tessio/Records/Edit/Edit.h>
#include <tessio/Records/Tree/Decoder.h>
#include <tessio/Records/Tree/Layout.h>

#include <optional>
#include <string>

namespace TOOL
{
/// What a command line says of the file to read.
struct Source
{
    std::string file;
    /// "big" or "little"; empty to find out.
    std::string endian;
};

/// Adds the FILE argument and what goes with it.
void AddSource(Command const& command, Source& source);

/// The order that the command line names.
std::optional<Order> OrderArgument(std::string const& endian);

struct Document
{
    std::string file;
    Bytes content;
    RecordTree tree;

    /// For editing.
    KORVA::RECORDS::Original Original() const { return {content, tree, file}; }
};

/// Ends the command when the text is no path.
Path PathArgument(std::string const& text);

/// Ends the command, naming how far the path leads, when there is no such node.
Node const& NodeNamed(Document const& document, std::string const& path);

/// Reads a whole file or, for "-", standard input. Ends the command when it can't be read or is larger than
/// the limit.
Bytes ReadInput(Session const& session, Common const& common, std::string const& location);

/// Reads a record file. Ends the command for one that is none, in either byte order.
Document LoadDocument(Session const& session, Common const& common, Source const& source);

/// Every byte of the document and what it is.
std::vector<LayoutRow> LayoutOf(Session const& session, Common const& common, Document const& document);

/// Writes a whole file, through a temporary one, or standard output for "-".
void WriteOutput(Session const& session, std::string const& location, Bytes const& content);

/// Ends the command, naming the first damage, when there is any.
void FailWhenDamaged(Document const& document);
} // namespace TOOL
