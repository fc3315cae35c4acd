#include "DirectoryLock.h"

#include "Failure.h"
#include "Output.h"
#include "System/Files.h"
#include "System/Locks.h"

#include <cerrno>
#include <chrono>
#include <thread>

namespace TOOL
{
namespace
{
using namespace KORVA;

constexpr int kAttempts = 500;
constexpr std::chrono::milliseconds kPause{20};
} // namespace

DirectoryLock::DirectoryLock(std::filesystem::path const& file, std::string const& location)
{
    std::error_code error;
    std::filesystem::path const directory =
        std::filesystem::weakly_canonical(std::filesystem::absolute(file, error), error).parent_path();
    SYSTEM::ErrorNumber why = 0;
    mDirectory = SYSTEM::OpenDirectory(directory.string(), why);
    // Where directories can't be locked, the comparison before saving must do.
    for (int attempt = 0;
         mDirectory && SYSTEM::TryLock(mDirectory.Get(), SYSTEM::LockKind::kExclusive) == EWOULDBLOCK;
         ++attempt)
    {
        if (attempt == kAttempts)
            throw Failure(Exit::kInputOutput,
                          "cannot open " + Quoted(location) + ": its directory is locked by another process");
        std::this_thread::sleep_for(kPause);
    }
}
} // namespace TOOL
