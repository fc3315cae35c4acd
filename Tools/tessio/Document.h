// A record file as a command gets it.
#pragma once

#include "CommandLine.h"
#include "Common.h"
#include "Names.h"
#include "Outcome.h"
#include "Output.h"
#include "PlugInClasses.h"
#include "Progress.h"
#include "Session.h"
#include <tessio/Records/Edit/Edit.h>
#include <tessio/Records/Tree/Reader.h>

#include <optional>
#include <string>

namespace TOOL
{
/// What a command line says of the file to read.
struct Input
{
    std::string file;
    /// "big" or "little"; empty to find out.
    std::string endian;
};

/// Adds the FILE argument and what goes with it.
void AddSource(Command const& command, Input& source);

/// The order that the command line names.
std::optional<Order> OrderArgument(std::string const& endian);

/// A record file of which records are read as they are asked for.
class OpenDocument
{
public:
    /// Ends the command when the file can't be read, is larger than the limit, or is no record file in either
    /// byte order.
    OpenDocument(Session const& session, Common const& common, Input const& source);
    OpenDocument(OpenDocument const&) = delete;
    OpenDocument& operator=(OpenDocument const&) = delete;

    std::string const& File() const { return mFile; }
    Bytes const& Content() const { return mContent; }
    Order GetOrder() const { return mReader->GetOrder(); }
    Reader& Records() { return *mReader; }

    /// What the records library answers; ends the command, with the name of the file, where that is an error.
    template <class T>
    T Value(Result<T> result) const
    {
        return ValueOf(std::move(result), Quoted(mFile) + ": ");
    }

    /// The record or text entry that the path names, complete. Ends the command, naming how far the path
    /// leads, when there is none.
    Node Find(std::string const& path);

    /// All records, with everything in them.
    RecordTree Tree();

    /// Ends the command, naming the first damage, when there is any.
    void FailWhenDamaged();

private:
    std::string mFile;
    Bytes mContent;
    MemorySource mSource;
    PlugInClasses mClasses;
    Progress mProgress;
    std::optional<Reader> mReader;
    ReadOptions mOptions;
};

/// One that is read as a whole.
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

/// Reads a whole file or, for "-", standard input. Ends the command when it can't be read or is larger than
/// the limit.
Bytes ReadInput(Session const& session, Common const& common, std::string const& location);

/// Reads a record file. Ends the command for one that is none, in either byte order.
Document LoadDocument(Session const& session, Common const& common, Input const& source);

/// Writes a whole file, through a temporary one, or standard output for "-".
void WriteOutput(Session const& session, std::string const& location, Bytes const& content);
} // namespace TOOL
