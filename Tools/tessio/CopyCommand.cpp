// tessio cp: copies a file, with progress on a terminal.
#include "Commands.h"
#include "Failure.h"
#include "FileIO/ICopyProgress.h"
#include "Location.h"
#include "ObjectModel/ClassFactory.h"
#include "Output.h"
#include "TessIO/ResultCodes.h"

#include <fmt/format.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace TOOL
{
namespace
{
using namespace KORVA;
using Clock = std::chrono::steady_clock;

struct Arguments
{
    std::string source;
    std::string target;
};

std::atomic<bool> sInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal handler");

/// Shows how far a copy has come, once it takes long enough for anyone to wonder, and stops it on an
/// interrupt.
class Progress final : public TObject<FILE_SYS::ICopyProgress>
{
public:
    bool OnCopied(uint64 done, uint64 total) override
    {
        Clock::time_point const now = Clock::now();
        if (mShows && total > 0 && now >= mNext)
        {
            std::fprintf(stderr, "\r%3d%%  %llu of %llu MiB",
                         static_cast<int>(static_cast<double>(done) * 100 / static_cast<double>(total)),
                         done >> 20, total >> 20);
            mNext = now + std::chrono::milliseconds(100);
            mShown = true;
        }
        return !sInterrupted;
    }

private:
    ~Progress() override
    {
        if (mShown)
            std::fputs("\r\033[K", stderr);
    }

    bool const mShows = isatty(STDERR_FILENO) == 1;
    bool mShown = false;
    Clock::time_point mNext = Clock::now() + std::chrono::milliseconds(500);
};

using ProgressFactory = TClassFactory<Makes<&New<Progress>, FILE_SYS::IID_COPY_PROGRESS>>;

/// While it lives an interrupt stops the copy, which then takes its temporary file away, and not the process.
class InterruptGuard
{
public:
    InterruptGuard()
    {
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
        {
            mBefore[i] = std::signal(kSignals[i], [](int) { sInterrupted = true; });
            // Who started the tool may want it to go on all the same.
            if (mBefore[i] == SIG_IGN)
                std::signal(kSignals[i], SIG_IGN);
        }
    }
    InterruptGuard(InterruptGuard const&) = delete;
    InterruptGuard& operator=(InterruptGuard const&) = delete;
    ~InterruptGuard()
    {
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            std::signal(kSignals[i], mBefore[i]);
    }

private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
    void (*mBefore[std::size(kSignals)])(int);
};

/// Into a directory a file goes under its own name.
std::string TargetOf(Session const& session, Arguments const& arguments)
{
    std::filesystem::path const path = URIOf(session, arguments.target)->GetPath().ToUTF8();
    std::error_code error;
    if (!std::filesystem::is_directory(path, error))
    {
        if (arguments.target.ends_with('/'))
            throw Failure(Exit::kInputOutput,
                          fmt::format("cannot copy {} to {}: no such directory", Quoted(arguments.source),
                                      Quoted(arguments.target)));
        return arguments.target;
    }
    std::filesystem::path const source = URIOf(session, arguments.source)->GetPath().ToUTF8();
    return (path / source.filename()).string();
}

[[noreturn]] void CannotCopy(Arguments const& arguments, IO::IURIFile const& source,
                             std::string const& target)
{
    std::filesystem::path const from = source.GetURI()->GetPath().ToUTF8();
    std::error_code error;
    std::string reason = "no permission, no such directory, or no space left";
    if (sInterrupted)
        reason = "interrupted";
    else if (std::filesystem::is_directory(from, error))
        reason = "is a directory";
    else if (std::filesystem::equivalent(from, target, error))
        reason = "source and target are the same file";
    throw Failure(Exit::kInputOutput, fmt::format("cannot copy {} to {}: {}; nothing is changed",
                                                  Quoted(arguments.source), Quoted(target), reason));
}

void Run(Common const& common, Arguments const& arguments)
{
    Session const session(common.verbose);
    IO::IURIFilePtr const source = FileOf(session, arguments.source);
    if (!source->Exists())
        throw Failure(Exit::kNotFound, "cannot copy " + Quoted(arguments.source) + ": no such file");
    std::string const target = TargetOf(session, arguments);
    IO::IURIFilePtr const copy = FileOf(session, target);
    COREREGISTRY::RegisterNewFactory<ProgressFactory>(session.Registry());
    InterruptGuard const guard;
    if (copy->Copy(*source) != kNoError)
        CannotCopy(arguments, *source, target);
}
} // namespace

void AddCopyCommand(CLI::App& app, Common const& common)
{
    CLI::App* const command = app.add_subcommand("cp", "Copy a file with its permissions and date");
    auto const arguments = std::make_shared<Arguments>();
    command->add_option("SOURCE", arguments->source, "Path or URL of the file")->required();
    command->add_option("TARGET", arguments->target, "Its new name, or a directory")->required();
    command->callback([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
