#include "LogFile.h"

#include <spdlog/details/log_msg.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>

namespace KORVA
{
namespace
{
constexpr std::size_t kMaxFileSize = std::size_t{1} << 20;
constexpr std::size_t kOldFiles = 3;
constexpr std::size_t kMaxQueued = 4096;
constexpr std::chrono::milliseconds kPatience{500};

struct Line
{
    std::string text;
    bool isFailure;
};
} // namespace

/// Shared with the worker, which may outlast the `LogFile` when the disk hangs.
struct LogFile::State
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Line> queue;
    bool writing = false;
    bool closing = false;
    bool started = false;
    std::filesystem::path path;

    void Run()
    {
        std::unique_ptr<spdlog::logger> logger;
        std::unique_lock lock(mutex);
        for (;;)
        {
            changed.wait(lock, [this] { return !queue.empty() || closing; });
            if (queue.empty())
                return;
            Line const line = std::move(queue.front());
            queue.pop_front();
            writing = true;
            lock.unlock();
            if (!logger)
                logger = Open();
            if (logger)
            {
                logger->log(line.isFailure ? spdlog::level::err : spdlog::level::info, line.text);
                logger->flush();
            }
            lock.lock();
            writing = false;
            changed.notify_all();
        }
    }

    std::unique_ptr<spdlog::logger> Open() const
    {
        try
        {
            std::filesystem::create_directories(path.parent_path());
            auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path.string(), kMaxFileSize,
                                                                               kOldFiles);
            auto logger = std::make_unique<spdlog::logger>("korva", std::move(sink));
            logger->set_pattern("%Y-%m-%dT%H:%M:%S.%e%z %P %l %v");
            logger->set_error_handler([](std::string const&) {});
            return logger;
        }
        catch (std::exception const&)
        {
            return nullptr;
        }
    }
};

LogFile::LogFile(std::filesystem::path path) : mState(std::make_shared<State>())
{
    mState->path = std::move(path);
}

LogFile::~LogFile()
{
    Flush();
    std::lock_guard const lock(mState->mutex);
    mState->closing = true;
    mState->changed.notify_all();
}

void LogFile::Write(std::string line, bool isFailure) noexcept
{
    try
    {
        std::lock_guard const lock(mState->mutex);
        if (!mState->started)
        {
            std::thread([state = mState] { state->Run(); }).detach();
            mState->started = true;
        }
        if (mState->queue.size() == kMaxQueued)
            mState->queue.pop_front();
        mState->queue.push_back({std::move(line), isFailure});
        mState->changed.notify_all();
    }
    catch (std::exception const&)
    {
        // No memory or no thread: the line is dropped.
    }
}

void LogFile::Flush() noexcept
{
    std::unique_lock lock(mState->mutex);
    if (mState->started)
        mState->changed.wait_for(lock, kPatience,
                                 [this] { return mState->queue.empty() && !mState->writing; });
}
} // namespace KORVA
