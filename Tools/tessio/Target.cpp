#include "Target.h"

#include "Failure.h"
#include "Location.h"
#include "Output.h"
#include "SafeTarget.h"
#include "TessIO/FilePaths.h"

#include <filesystem>

namespace TOOL
{
void AddTarget(Command const& command, Target& target)
{
    CommandOption const out =
        command.Option("-o,--output", target.out, "The file to write; - for standard output").Names("OUT");
    command.Flag("-i,--in-place", target.inPlace, "Change the file itself; FILE~ keeps what it was")
        .Excludes(out);
}

void CheckTarget(Target const& target, std::string const& file)
{
    if (target.out.empty() && !target.inPlace)
        throw Failure(Exit::kUsage,
                      "say where the result goes: -o OUT, or --in-place, which keeps " + Quoted(file + "~"));
    if (target.inPlace && file == "-")
        throw Failure(Exit::kUsage, "standard input can't be changed in place");
    std::error_code error;
    if (!target.inPlace && target.out != "-" && std::filesystem::equivalent(target.out, file, error))
        throw Failure(Exit::kUsage, Quoted(target.out) + " is the file itself: use --in-place, which keeps " +
                                        Quoted(file + "~"));
}

void CheckOther(std::string const& out, std::string const& file)
{
    std::error_code error;
    if (out != "-" && std::filesystem::equivalent(out, file, error))
        throw Failure(Exit::kUsage, Quoted(out) + " is the file itself, which is only read");
}

namespace
{
/// Like the file, for whom it is for.
void KeepBackup(Session const& session, Document const& document)
{
    KORVA::IO::IURIPtr const uri = URIOf(session, document.file);
    std::filesystem::path path;
    if (KORVA::IO::FilePathOf(*uri, path) != KORVA::kNoError)
        throw Failure(Exit::kUsage, Quoted(document.file) + " can't be changed in place");
    KORVA::uint64 modified = 0;
    static_cast<void>(FileOf(session, document.file)->GetModificationDate(modified));
    SafeTarget backup(session, path.string() + "~", "cannot keep " + Quoted(document.file + "~"));
    ReplaceContent(session, backup.Temporary(), document.content, document.file + "~");
    backup.Commit(std::filesystem::status(path).permissions(), modified);
}
} // namespace

void WriteTarget(Session const& session, Target const& target, Document const& document, Bytes const& content)
{
    if (!target.inPlace)
        return WriteOutput(session, target.out, content);
    KeepBackup(session, document);
    if (ReadWhole(session, *OpenToRead(session, document.file), document.file) != document.content)
        throw Failure(Exit::kInputOutput,
                      Quoted(document.file) +
                          " was changed by another process; nothing is changed by this one");
    ReplaceContent(session, document.file, content);
}
} // namespace TOOL
