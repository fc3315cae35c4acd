#include "DirectoryLock.h"

#include "Failure.h"
#include "Output.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace TOOL
{
namespace
{
constexpr int kAttempts = 500;
constexpr std::chrono::milliseconds kPause{20};
} // namespace

DirectoryLock::DirectoryLock(std::filesystem::path const& file, std::string const& location)
{
    std::error_code error;
    std::filesystem::path const directory =
        std::filesystem::weakly_canonical(std::filesystem::absolute(file, error), error).parent_path();
    mDescriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int attempt = 0; mDescriptor >= 0 && flock(mDescriptor, LOCK_EX | LOCK_NB) != 0; ++attempt)
    {
        // Where directories can't be locked, the comparison before saving must do.
        if (errno != EWOULDBLOCK)
            return;
        if (attempt == kAttempts)
        {
            close(mDescriptor);
            throw Failure(Exit::kInputOutput,
                          "cannot open " + Quoted(location) + ": its directory is locked by another process");
        }
        std::this_thread::sleep_for(kPause);
    }
}

DirectoryLock::~DirectoryLock()
{
    if (mDescriptor >= 0)
        close(mDescriptor);
}
} // namespace TOOL
