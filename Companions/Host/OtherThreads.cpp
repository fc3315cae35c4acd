#include "OtherThreads.h"

#include <unistd.h>

#include <charconv>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace KORVA::HOST
{
namespace
{
using namespace std::chrono_literals;

constexpr auto kEnoughTime = 1ms;
constexpr auto kPause = 200us;
/// For a thread that wants to run and may not.
constexpr int kMostPauses = 50'000;

constexpr char kThreads[] = "/proc/self/task";

/// How long the thread has run, ever; negative when it has ended.
std::chrono::nanoseconds TimeOf(pid_t thread)
{
    // How the kernel makes a thread's clock of its number.
    auto const clock = static_cast<clockid_t>((~static_cast<unsigned>(thread) << 3) | 6u);
    timespec time{};
    if (clock_gettime(clock, &time) != 0)
        return -1ns;
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Whether it runs or could.
bool IsRunning(pid_t thread)
{
    std::ifstream in(std::string(kThreads) + "/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(in, line);
    // "17 (a name) R 1 …"; the name may have anything in it.
    std::size_t const name = line.rfind(") ");
    return name != std::string::npos && line[name + 2] == 'R';
}

bool LetLeave(pid_t thread)
{
    std::chrono::nanoseconds const before = TimeOf(thread);
    for (int pauses = 0; pauses < kMostPauses; ++pauses)
    {
        std::chrono::nanoseconds const now = TimeOf(thread);
        if (now < 0ns || now - before >= kEnoughTime || !IsRunning(thread))
            return true;
        std::this_thread::sleep_for(kPause);
    }
    return false;
}
} // namespace

bool LetOtherThreadsLeave()
{
    std::error_code error;
    for (std::filesystem::directory_iterator i(kThreads, error), end; !error && i != end; i.increment(error))
    {
        std::string const name = i->path().filename().string();
        pid_t thread = 0;
        std::from_chars(name.data(), name.data() + name.size(), thread);
        if (thread != gettid() && !LetLeave(thread))
            return false;
    }
    return !error;
}
} // namespace KORVA::HOST
