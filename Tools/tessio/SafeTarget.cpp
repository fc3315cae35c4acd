#include "SafeTarget.h"

#include "Failure.h"
#include "Location.h"

#include <fmt/format.h>

#include <sys/stat.h>

#include <random>
#include <utility>

namespace TOOL
{
namespace
{
using namespace KORVA;
namespace fs = std::filesystem;
using STRING::CoreString;

constexpr int kNameAttempts = 100;
constexpr int kMostLinks = 40;

/// The path behind symbolic links, whether a file is there or not; empty for a loop.
fs::path Followed(fs::path path)
{
    std::error_code error;
    for (int links = 0; links < kMostLinks; ++links)
    {
        fs::path const next = fs::read_symlink(path, error);
        if (error)
            return path;
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return {};
}

/// At most 200 bytes of a name, no character cut.
std::string Beginning(std::string name)
{
    std::size_t end = 200;
    if (name.size() <= end)
        return name;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80)
        --end;
    return name.substr(0, end);
}

CoreString Text(std::string const& path) { return CoreString(std::string_view(path)); }
} // namespace

SafeTarget::SafeTarget(Session const& session, fs::path target, std::string what)
    : mFile(session.Create<FILE_SYS::IFile>(FILE_SYS::IID_IFILE)), mTarget(Followed(std::move(target))),
      mWhat(std::move(what))
{
    std::error_code error;
    fs::file_status const there = fs::status(mTarget, error);
    if (mTarget.empty() || (fs::exists(there) && !fs::is_regular_file(there)))
        throw Failure(Exit::kInputOutput, mWhat + ": the target is no regular file; nothing is changed");
    std::random_device random;
    FILE_SYS::ErrCode status = FILE_SYS::kAlreadyThere;
    for (int attempt = 0; attempt < kNameAttempts && status == FILE_SYS::kAlreadyThere; ++attempt)
    {
        // A long name is cut so that the temporary's stays within the system's bound.
        std::string const name = fmt::format(".{}.{:08x}", Beginning(mTarget.filename().string()), random());
        mTemporary = (mTarget.parent_path() / name).string();
        // Nobody else is to open it before it has the permissions of its source.
        mode_t const before = umask(077);
        status = mFile->BindPath(Text(mTemporary)) ? mFile->Create() : FILE_SYS::kNotFound;
        umask(before);
    }
    if (status != FILE_SYS::kDone)
    {
        mTemporary.clear();
        Fail(status);
    }
}

SafeTarget::~SafeTarget()
{
    if (!mTemporary.empty())
        static_cast<void>(mFile->Delete());
}

void SafeTarget::Commit(fs::perms permissions, uint64 modified)
{
    // The date first: once it is read-only it is nobody's to change.
    FILE_SYS::ErrCode status = mFile->SetModificationDate(modified);
    if (status == FILE_SYS::kDone)
        status = mFile->Sync();
    std::error_code error;
    fs::permissions(mTemporary, permissions & fs::perms::all, error);
    if (error)
        status = FILE_SYS::kNotPermitted;
    if (status == FILE_SYS::kDone)
        status = mFile->MoveTo(Text(mTarget.string()));
    if (status != FILE_SYS::kDone)
        Fail(status);
    mTemporary.clear();
    // The name too is to survive a crash; where that can't be waited for the copy is there all the same.
    if (mFile->BindPath(Text(mTarget.string())))
        static_cast<void>(mFile->Sync());
}

void SafeTarget::Fail(FILE_SYS::ErrCode status) const
{
    throw Failure(Exit::kInputOutput, fmt::format("{}: {}; nothing is changed", mWhat, ReasonOf(status)));
}
} // namespace TOOL
