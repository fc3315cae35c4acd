#include "System/Threads.h"

#include <unistd.h>

#include <charconv>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

namespace KORVA::SYSTEM
{
namespace
{
constexpr char kThreads[] = "/proc/self/task";
} // namespace

ErrorNumber ListOtherThreads(std::vector<ThreadNumber>& threads)
{
    threads.clear();
    std::error_code error;
    for (std::filesystem::directory_iterator i(kThreads, error), end; !error && i != end; i.increment(error))
    {
        std::string const name = i->path().filename().string();
        ThreadNumber thread = 0;
        std::from_chars(name.data(), name.data() + name.size(), thread);
        if (thread != gettid())
            threads.push_back(thread);
    }
    return error.value();
}

std::chrono::nanoseconds RunTimeOf(ThreadNumber thread)
{
    // How the kernel makes a thread's clock of its number.
    auto const clock = static_cast<clockid_t>((~static_cast<unsigned>(thread) << 3) | 6u);
    timespec time{};
    if (clock_gettime(clock, &time) != 0)
        return std::chrono::nanoseconds(-1);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

bool IsRunning(ThreadNumber thread)
{
    std::ifstream in(std::string(kThreads) + "/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(in, line);
    // "17 (a name) R 1 …"; the name may have anything in it.
    std::size_t const name = line.rfind(") ");
    return name != std::string::npos && line[name + 2] == 'R';
}
} // namespace KORVA::SYSTEM
