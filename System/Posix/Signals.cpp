#include "System/Signals.h"

#include "Retry.h"

#include <csignal>
#include <ctime>
#include <iterator>

namespace KORVA::SYSTEM
{
namespace
{
constexpr int kInterrupts[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int kFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS};

void Fill(sigset_t& set, HeldSignals::Which which)
{
    sigemptyset(&set);
    switch (which)
    {
    case HeldSignals::Which::kInterrupts:
        for (int const signal : kInterrupts)
            sigaddset(&set, signal);
        break;
    case HeldSignals::Which::kSizeLimit:
        sigaddset(&set, SIGXFSZ);
        break;
    case HeldSignals::Which::kAllButFaults:
        sigfillset(&set);
        for (int const signal : kFaults)
            sigdelset(&set, signal);
        break;
    }
}

template <class Room>
sigset_t& In(Room& room)
{
    static_assert(sizeof(sigset_t) <= sizeof(Room) && alignof(sigset_t) <= alignof(Room));
    return reinterpret_cast<sigset_t&>(room);
}

template <class Room>
sigset_t const& In(Room const& room)
{
    return In(const_cast<Room&>(room));
}
} // namespace

HeldSignals::HeldSignals(Which which)
{
    Fill(In(mHeld), which);
    // Faults are let through also where somebody held them before.
    int const how = which == Which::kAllButFaults ? SIG_SETMASK : SIG_BLOCK;
    pthread_sigmask(how, &In(mHeld), &In(mBefore));
}

HeldSignals::~HeldSignals() { pthread_sigmask(SIG_SETMASK, &In(mBefore), nullptr); }

void HeldSignals::Discard() const
{
    if (sigismember(&In(mBefore), SIGXFSZ) == 1)
        return;
    timespec const now{};
    Uninterrupted([&] { return sigtimedwait(&In(mHeld), nullptr, &now); });
}

CaughtInterrupts::CaughtInterrupts(Handler* handler)
{
    static_assert(std::size(kInterrupts) <= kMost);
    for (std::size_t i = 0; i < std::size(kInterrupts); ++i)
    {
        mBefore[i] = std::signal(kInterrupts[i], handler);
        // Who started the program may want it to go on all the same.
        if (mBefore[i] == SIG_IGN)
            std::signal(kInterrupts[i], SIG_IGN);
    }
}

CaughtInterrupts::~CaughtInterrupts()
{
    for (std::size_t i = 0; i < std::size(kInterrupts); ++i)
        std::signal(kInterrupts[i], mBefore[i]);
}

void IgnoreSizeLimitSignal() { std::signal(SIGXFSZ, SIG_IGN); }
} // namespace KORVA::SYSTEM
