// The rotating file behind the logging service.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace KORVA
{
/// Queues lines for a worker that writes them to a rotating file (1 MiB, three old ones kept). A full queue
/// drops its oldest line, a failing disk drops what can't be written: the caller is never held up.
class LogFile
{
public:
    explicit LogFile(std::filesystem::path path);
    LogFile(LogFile const&) = delete;
    LogFile& operator=(LogFile const&) = delete;
    ~LogFile();

    void Write(std::string line, bool isFailure) noexcept;

    /// Waits until the lines queued so far are in the file, half a second at most.
    void Flush() noexcept;

private:
    struct State;
    std::shared_ptr<State> mState;
};
} // namespace KORVA
