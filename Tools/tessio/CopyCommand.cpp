// tessio cp: copies a file, with progress on a terminal.
#include "Blocks.h"
#include "Commands.h"
#include "Dates.h"
#include "Failure.h"
#include "Location.h"
#include "Output.h"
#include "Progress.h"
#include "Saving.h"
#include "System/CopyFile.h"
#include "System/Files.h"
#include "System/References.h"
#include "System/Signals.h"
#include "System/Times.h"
#include <tessio/TessIO/ResultCodes.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace TOOL
{
namespace
{
using namespace KORVA;

struct Arguments
{
    std::string source;
    std::string target;
    std::string user;
    bool clone = false;
};

std::atomic<bool> sInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal handler");

/// The copy ends at its next step and takes its temporary file away.
void StopCopying(int) { sInterrupted = true; }

/// Shows how far a copy has come and stops it on an interrupt.
class CopyWatch
{
public:
    bool OnCopied(uint64 done, uint64 total)
    {
        mProgress.At(static_cast<int64>(done), static_cast<int64>(total));
        return !sInterrupted;
    }

private:
    Progress mProgress{"copying", 0};
};

/// Into a directory a file goes under its own name.
std::string TargetOf(Session const& session, Arguments const& arguments)
{
    std::filesystem::path const path = std::filesystem::absolute(SystemPathOf(session, arguments.target));
    std::error_code error;
    if (!std::filesystem::is_directory(path, error))
    {
        if (arguments.target.ends_with('/'))
            throw Failure(Exit::kInputOutput,
                          fmt::format("cannot copy {} to {}: no such directory", Quoted(arguments.source),
                                      Quoted(arguments.target)));
        return arguments.target;
    }
    std::filesystem::path const source = IsLocal(session, arguments.source)
                                             ? SystemPathOf(session, arguments.source)
                                             : URIOf(session, arguments.source)->GetPath().ToUTF8();
    return (path / source.filename()).string();
}

std::string WhatOf(Arguments const& arguments, std::string const& target)
{
    return fmt::format("cannot copy {} to {}", Quoted(arguments.source), Quoted(target));
}

[[noreturn]] void CannotCopy(Arguments const& arguments, std::string const& target, std::string const& reason)
{
    throw Failure(Exit::kInputOutput, fmt::format("{}: {}; nothing is changed", WhatOf(arguments, target),
                                                  sInterrupted ? "interrupted" : reason));
}

/// What became of the copy: ends the command, or warns, or neither.
void Conclude(Arguments const& arguments, std::string const& target, SYSTEM::Outcome const& outcome,
              SYSTEM::NotKept const& notKept)
{
    if (outcome.state != SYSTEM::Saved::kOld)
        return WarnOfSaved(target, outcome.error, notKept);
    CannotCopy(arguments, target,
               outcome.error == ENODATA ? "the source became shorter" : ReasonOf(outcome.error));
}

/// Lets the file system copy, which may only share the blocks.
void Clone(Session const& session, Arguments const& arguments, std::string const& target)
{
    CopyWatch watch;
    SYSTEM::NotKept notKept;
    SYSTEM::Outcome const outcome = SYSTEM::CopyFile(
        SystemPathOf(session, arguments.source), SystemPathOf(session, target),
        [&watch](uint64 done, uint64 total) { return watch.OnCopied(done, total); }, notKept);
    Conclude(arguments, target, outcome, notKept);
}

constexpr char kSourceShort[] = "the source can't be read, or became shorter";

/// Reads and writes many pieces at once, so that neither side waits for the other. Empty, or why not.
std::string Transfer(IO::IAsyncReader& reader, IO::IAsyncWriter& writer, int64 size, CopyWatch& watch)
{
    constexpr auto kPiece = static_cast<int64>(Block::kSize);
    constexpr auto kAll = static_cast<int64>(kBlocks);
    // Half of the blocks are being read, half written.
    constexpr int64 kAhead = kAll / 2;
    int64 const pieces = (size + kPiece - 1) / kPiece;
    std::array<Block, kBlocks> blocks;
    for (int64 i = 0; i < pieces + kAll; ++i)
    {
        Block& block = blocks[static_cast<std::size_t>(i % kAll)];
        if (i >= kAll && !block.Wait())
            return "writing failed, or no space left";
        if (!watch.OnCopied(static_cast<uint64>(std::clamp<int64>((i - kAll) * kPiece, 0, size)),
                            static_cast<uint64>(size)))
            return "interrupted";
        if (i < pieces && !block.BeginRead(reader, i * kPiece,
                                           static_cast<std::size_t>(std::min(kPiece, size - i * kPiece))))
            return "the source can't be read";
        int64 const read = i - kAhead;
        if (read < 0 || read >= pieces)
            continue;
        Block& full = blocks[static_cast<std::size_t>(read % kAll)];
        if (!full.Wait())
            return kSourceShort;
        if (!full.BeginWrite(writer))
            return "the target can't be written";
    }
    return {};
}

/// A target beside which the copy is made, and the library's way to write it.
struct SafeTarget
{
    SafeTarget(Session const& session, Arguments const& arguments, std::string const& target,
               SYSTEM::Replacement::Temporary temporary)
        : file(SystemPathOf(session, target), temporary)
    {
        if (file.Error() != 0)
            CannotCopy(arguments, target, ReasonOf(file.Error()));
        try
        {
            provider = OpenToWrite(session, file.Path())->GetDataProvider();
        }
        catch (Failure const& failure)
        {
            // The temporary's name is nobody's concern.
            std::string_view const words = failure.what();
            CannotCopy(arguments, target, std::string(words.substr(words.rfind(": ") + 2)));
        }
        writer = WriterOf(*provider);
        if (!writer)
            CannotCopy(arguments, target, "the target can't be written");
    }

    SYSTEM::Replacement file;
    TInterfacePtr<IO::IDataProvider> provider;
    IO::IAsyncWriter* writer = nullptr;
};

/// The library's channels don't tell why they failed. Where the system gives nothing more, it says so when
/// asked for another descriptor.
std::string WhyNot(std::string const& source, std::string const& otherwise)
{
    SYSTEM::ErrorNumber error = 0;
    static_cast<void>(SYSTEM::OpenFile(source, SYSTEM::Access::kRead, error));
    return error != 0 ? WordsOf(error) : otherwise;
}

/// Copies through the asynchronous interfaces. False, and nothing done, where the source has none or tells no
/// size.
bool CopyPieces(Session const& session, Arguments const& arguments, std::string const& target)
{
    auto const from = OpenToRead(session, arguments.source)->GetDataProvider();
    IO::IAsyncReader* const reader = ReaderOf(*from);
    int64 const size = from->Size();
    if (!reader || size <= 0)
        return false;
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const source = SYSTEM::OpenReference(SystemPathOf(session, arguments.source), error);
    if (!source)
        CannotCopy(arguments, target, WordsOf(error));
    SafeTarget safe(session, arguments, target, SYSTEM::Replacement::Temporary::kUserAlone);
    CopyWatch watch;
    std::string const reason = Transfer(*reader, *safe.writer, size, watch);
    // The system's own files may have less than they say.
    if (!reason.empty() && reason == kSourceShort && from->Size() == size)
        return false;
    if (!reason.empty())
        CannotCopy(arguments, target, WhyNot(SystemPathOf(session, arguments.source), reason));
    safe.provider.Reset();
    SYSTEM::NotKept notKept;
    error = SYSTEM::CopyDates(source.Get(), safe.file.Get());
    if (error == 0)
        error = SYSTEM::CopyPermissions(source.Get(), safe.file.Get(), notKept);
    Conclude(arguments, target, error == 0 ? safe.file.Commit() : SYSTEM::Outcome{SYSTEM::Saved::kOld, error},
             notKept);
    return true;
}

/// Copies a file that is no file of this system: forward, piece by piece, to its end, wherever that is.
void CopyForward(Session const& session, Arguments const& arguments, IO::IURIFile const& source,
                 std::string const& target)
{
    uint64 told = 0;
    int64 const size = source.GetSize(told) == kNoError ? static_cast<int64>(told) : 0;
    SafeTarget safe(session, arguments, target, SYSTEM::Replacement::Temporary::kUsersDefault);
    auto const from = OpenToRead(session, arguments.source)->GetDataProvider();
    CopyWatch watch;
    std::vector<char> piece(Block::kSize);
    int64 done = 0;
    for (;;)
    {
        auto count = static_cast<int32>(piece.size());
        static_cast<void>(from->Read(piece.data(), count));
        if (count <= 0)
            break;
        IO::IAsyncTaskPtr task;
        if (safe.writer->WriteAsync(done, piece.data(), static_cast<std::size_t>(count), task) != kNoError)
            CannotCopy(arguments, target, "the target can't be written");
        static_cast<void>(task->WaitForCompletion());
        if (task->GetStatus() != kNoError)
            CannotCopy(arguments, target, "writing failed, or no space left");
        done += count;
        if (!watch.OnCopied(static_cast<uint64>(done), told))
            CannotCopy(arguments, target, "interrupted");
    }
    std::string const reason = session.Failures().Take();
    if (!reason.empty() || done < size)
        CutShort(arguments.source, reason, done, size);
    uint64 modified = 0;
    if (source.GetModificationDate(modified) != kNoError)
        modified = Now();
    safe.provider.Reset();
    SYSTEM::NotKept notKept;
    SYSTEM::ErrorNumber error = SYSTEM::SetModified(safe.file.Get(), modified);
    if (error == 0)
        error = safe.file.KeepAttributes(notKept);
    Conclude(arguments, target, error == 0 ? safe.file.Commit() : SYSTEM::Outcome{SYSTEM::Saved::kOld, error},
             notKept);
}

/// Whether both names lead to one file.
bool IsSameFile(std::string const& a, std::string const& b)
{
    std::error_code error;
    return std::filesystem::equivalent(a, b, error);
}

void CheckTarget(Session const& session, Arguments const& arguments, std::string const& target)
{
    std::error_code error;
    std::filesystem::file_status const there = std::filesystem::status(SystemPathOf(session, target), error);
    if (std::filesystem::exists(there) && !std::filesystem::is_regular_file(there))
        CannotCopy(arguments, target, "the target is no regular file");
}

void Run(Common const& common, Arguments const& arguments)
{
    Session const session(common, arguments.user);
    IO::IURIFilePtr const source = FileOf(session, arguments.source);
    if (!source->Exists())
        NoSuchFile(session, "copy", arguments.source, *source);
    bool const isLocalTarget =
        IsLocal(session, arguments.target) || IsLocal(*FileOf(session, arguments.target)->GetURI());
    if (!isLocalTarget)
        throw Failure(Exit::kUsage,
                      WhatOf(arguments, arguments.target) + ": only files of this system can be written");
    std::string const target = TargetOf(session, arguments);
    if (!IsLocal(*source->GetURI()))
    {
        if (arguments.clone)
            throw Failure(Exit::kUsage,
                          WhatOf(arguments, target) + ": only files of this system can be cloned");
        CheckTarget(session, arguments, target);
        SYSTEM::CaughtInterrupts const caught(&StopCopying);
        return CopyForward(session, arguments, *source, target);
    }
    std::string const from = SystemPathOf(session, arguments.source);
    std::error_code error;
    if (std::filesystem::is_directory(from, error))
        CannotCopy(arguments, target, "is a directory");
    if (IsSameFile(from, SystemPathOf(session, target)))
        CannotCopy(arguments, target, "source and target are the same file");
    CheckTarget(session, arguments, target);
    SYSTEM::CaughtInterrupts const caught(&StopCopying);
    if (arguments.clone || !CopyPieces(session, arguments, target))
        Clone(session, arguments, target);
}
} // namespace

void AddCopyCommand(Command const& app, Common const& common)
{
    Command const command = app.Add("cp", "Copy a file with its permissions and date");
    auto const arguments = std::make_shared<Arguments>();
    command.Option("SOURCE", arguments->source, "Path or URL of the file").Required();
    command.Option("TARGET", arguments->target, "Its new name, or a directory").Required();
    command.Flag("--clone", arguments->clone, "Let the file system copy, which may share the blocks instead");
    AddUserOption(command, arguments->user);
    command.Runs([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
