#include "System/Terminal.h"

#include "Retry.h"
#include "System/Descriptor.h"
#include "System/Transfer.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>

#include <csignal>
#include <iterator>

namespace KORVA::SYSTEM
{
namespace
{
volatile std::sig_atomic_t sInterrupted = 0;

/// A terminal that does not show what is typed, until it is as it was before, whatever interrupts.
class SilentTerminal
{
public:
    SilentTerminal() : mTerminal(Uninterrupted([] { return open("/dev/tty", O_RDWR | O_CLOEXEC); }))
    {
        if (!mTerminal || tcgetattr(mTerminal.Get(), &mBefore) != 0)
            return;
        struct sigaction action
        {
        };
        action.sa_handler = [](int signal) { sInterrupted = signal; };
        sigset_t held;
        sigemptyset(&held);
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
        {
            sigaddset(&held, kSignals[i]);
            sigaction(kSignals[i], &action, &mActions[i]);
        }
        // They arrive while it waits for a key, and at no other time.
        pthread_sigmask(SIG_BLOCK, &held, &mMask);
        mIsGuarded = true;
        termios silent = mBefore;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        mIsSilent = tcsetattr(mTerminal.Get(), TCSAFLUSH, &silent) == 0;
    }
    SilentTerminal(SilentTerminal const&) = delete;
    SilentTerminal& operator=(SilentTerminal const&) = delete;
    ~SilentTerminal()
    {
        if (mIsSilent)
        {
            tcsetattr(mTerminal.Get(), TCSAFLUSH, &mBefore);
            Say("\n");
        }
        if (mIsGuarded)
        {
            for (std::size_t i = 0; i < std::size(kSignals); ++i)
                sigaction(kSignals[i], &mActions[i], nullptr);
            pthread_sigmask(SIG_SETMASK, &mMask, nullptr);
        }
        if (sInterrupted != 0)
            std::raise(sInterrupted);
    }

    bool IsThere() const { return mIsSilent; }

    bool Ask(std::string const& question, std::string& line) const
    {
        Say(question);
        for (pollfd key{mTerminal.Get(), POLLIN, 0}; ppoll(&key, 1, nullptr, &mMask) == 1;)
        {
            char byte = 0;
            std::size_t count = 1;
            if (ReadSome(mTerminal.Get(), &byte, count) != 0 || count == 0)
                return false;
            if (byte == '\n')
                return true;
            line += byte;
        }
        return false;
    }

private:
    /// A terminal that takes no question may still give an answer.
    void Say(std::string const& text) const
    {
        static_cast<void>(WriteAll(mTerminal.Get(), text.data(), text.size()));
    }

    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    Descriptor mTerminal;
    bool mIsGuarded = false;
    bool mIsSilent = false;
    sigset_t mMask{};
    termios mBefore{};
    struct sigaction mActions[std::size(kSignals)] = {};
};
} // namespace

bool AskSilently(std::string const& question, std::string& answer)
{
    answer.clear();
    SilentTerminal const terminal;
    return terminal.IsThere() && terminal.Ask(question, answer);
}
} // namespace KORVA::SYSTEM
