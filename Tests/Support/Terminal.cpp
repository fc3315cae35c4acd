#include "Support/Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace KORVA::TESTS
{
namespace
{
constexpr int kPatience = 60'000;
} // namespace

Terminal::Terminal()
{
    int const screen = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char name[64];
    if (screen >= 0 && grantpt(screen) == 0 && unlockpt(screen) == 0 &&
        ptsname_r(screen, name, sizeof name) == 0)
        mHeld = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (mHeld < 0)
    {
        mWhy = std::string("this system gives no pseudo-terminal: ") + std::strerror(errno);
        if (screen >= 0)
            close(screen);
        return;
    }
    mName = name;
    mScreen = screen;
    fcntl(mScreen, F_SETFL, O_NONBLOCK);
}

Terminal::~Terminal()
{
    if (!IsOpen())
        return;
    close(mHeld);
    close(mScreen);
}

void Terminal::Take() const
{
    setsid();
    // The first terminal that the leader of a session opens is the session's.
    int const terminal = open(mName.c_str(), O_RDWR);
    for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(terminal, stream);
    if (terminal > STDERR_FILENO)
        close(terminal);
}

void Terminal::Type(std::string const& text) const
{
    // What does not arrive is missed by the test.
    static_cast<void>(!write(mScreen, text.data(), text.size()));
}

std::string Terminal::Shown() const
{
    std::string shown;
    char piece[4096];
    for (ssize_t count = 0; (count = read(mScreen, piece, sizeof piece)) > 0;)
        shown.append(piece, static_cast<std::size_t>(count));
    return shown;
}

std::string Terminal::ShownUpTo(std::string const& end) const
{
    std::string shown = Shown();
    pollfd wait{mScreen, POLLIN, 0};
    while (!shown.ends_with(end) && poll(&wait, 1, kPatience) > 0)
    {
        std::string const more = Shown();
        if (more.empty())
            break;
        shown += more;
    }
    return shown;
}
} // namespace KORVA::TESTS
