#include "Target.h"

#include "DirectoryLock.h"
#include "Failure.h"
#include "Location.h"
#include "OneFile.h"
#include "Output.h"
#include "Saving.h"
#include "System/Replacement.h"
#include "System/Signals.h"
#include "System/Times.h"
#include "System/Transfer.h"

#include <cerrno>

namespace TOOL
{
void AddTarget(Command const& command, Target& target)
{
    CommandOption const out =
        command.Option("-o,--output", target.out, "The file to write; - for standard output").Names("OUT");
    command.Flag("-i,--in-place", target.inPlace, "Change the file itself; FILE~ keeps what it was")
        .Excludes(out);
}

void CheckTarget(Session const& session, Target const& target, std::string const& file)
{
    if (target.out.empty() && !target.inPlace)
        throw Failure(Exit::kUsage,
                      "say where the result goes: -o OUT, or --in-place, which keeps " + Quoted(file + "~"));
    if (target.inPlace && file == "-")
        throw Failure(Exit::kUsage, "standard input can't be changed in place");
    if (!target.inPlace && target.out != "-" && AreOneFile(session, target.out, file))
        throw Failure(Exit::kUsage, Quoted(target.out) + " is the file itself: use --in-place, which keeps " +
                                        Quoted(file + "~"));
}

void CheckOther(Session const& session, std::string const& out, std::string const& file)
{
    if (out != "-" && AreOneFile(session, out, file))
        throw Failure(Exit::kUsage, Quoted(out) + " is the file itself, which is only read");
}

namespace
{
using namespace KORVA::SYSTEM;

[[noreturn]] void CannotWrite(std::string const& file, ErrorNumber error, std::string const& state)
{
    throw Failure(Exit::kInputOutput, "cannot write " + Quoted(file) + ": " + ReasonOf(error) + "; " + state);
}

/// Content and attributes of what is to stand there, on the disk but not under its name.
void Prepare(Replacement& file, std::string const& shown, Bytes const& content, int attributesOf,
             NotKept& notKept)
{
    ErrorNumber error = file.Error();
    if (error == 0)
        error = WriteAll(file.Get(), content.data(), content.size());
    if (error == 0 && attributesOf >= 0)
        error = CopyDates(attributesOf, file.Get());
    if (error == 0)
        error = attributesOf < 0 ? file.KeepAttributes(notKept)
                                 : KeepAttributes(attributesOf, file.Get(), notKept);
    if (error == 0)
        error = file.Flush();
    if (error != 0)
        CannotWrite(shown, error, "nothing is changed");
}

/// Replaces the file and keeps what it was, like the file and for whom it is for. Neither name is given away
/// before both contents are on the disk.
void ReplaceInPlace(Session const& session, Document const& document, Bytes const& content)
{
    std::string const kept = document.file + "~";
    std::string const path = SystemPathOf(session, document.file);
    // Links can make two names of one: the kept would go with the replaced.
    if (LeadToOneName(path, path + "~"))
        throw Failure(Exit::kInputOutput, "cannot keep " + Quoted(kept) + ": it leads to " +
                                              Quoted(document.file) + " itself; nothing is changed");
    // An interrupt waits until the temporary files are gone, or have their names.
    HeldSignals const held(HeldSignals::Which::kInterrupts);
    NotKept notKept;
    NotKept notKeptOfOld;
    Replacement file(path);
    Replacement old(path + "~", Replacement::Temporary::kUserAlone);
    if (file.Error() == 0 && !file.ReplacesFile())
        CannotWrite(document.file, ENOENT, "nothing is changed");
    Prepare(old, kept, document.content, file.Old(), notKeptOfOld);
    Prepare(file, document.file, content, -1, notKept);
    DirectoryLock const lock(path, document.file);
    if (ReadWhole(session, *OpenToRead(session, document.file), document.file) != document.content)
        throw Failure(Exit::kInputOutput,
                      Quoted(document.file) +
                          " was changed by another process; nothing is changed by this one");
    if (ErrorNumber const error = old.Rename(Replacement::Undoable::kYes))
        CannotWrite(kept, error, "nothing is changed");
    if (ErrorNumber const error = file.Rename())
        CannotWrite(document.file, error,
                    old.Undo() == 0 ? "nothing is changed"
                                    : "it is unchanged, but " + Quoted(kept) +
                                          " now holds the same, and not what it held before");
    ErrorNumber const flushed = file.FlushName();
    WarnOfSaved(document.file, flushed != 0 ? flushed : old.FlushName(), notKept);
}
} // namespace

void WriteTarget(Session const& session, Target const& target, Document const& document, Bytes const& content)
{
    if (target.inPlace)
        ReplaceInPlace(session, document, content);
    else
        WriteOutput(session, target.out, content);
}
} // namespace TOOL
