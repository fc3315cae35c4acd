// Signals that are held back or caught.
#include "System/Signals.h"

#include "Support/SystemCalls.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cerrno>
#include <csignal>
#include <thread>

namespace KORVA::TESTS
{
namespace
{
using SYSTEM::HeldSignals;

volatile std::sig_atomic_t sCaught = 0;

void Catch(int signal) { sCaught = signal; }

bool IsPending(int signal)
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}

class Signals : public ::testing::Test
{
protected:
    Signals() { sCaught = 0; }
    ~Signals() override
    {
        std::signal(SIGTERM, SIG_DFL);
        std::signal(SIGXFSZ, SIG_DFL);
    }
};

TEST_F(Signals, AnInterruptWaitsUntilItIsLetThrough)
{
    std::signal(SIGTERM, &Catch);
    {
        HeldSignals const held(HeldSignals::Which::kInterrupts);
        pthread_kill(pthread_self(), SIGTERM);
        EXPECT_EQ(sCaught, 0);
    }
    EXPECT_EQ(sCaught, SIGTERM);
}

TEST_F(Signals, OfASizeLimitNothingIsLeftWhenItIsDiscarded)
{
    std::signal(SIGXFSZ, &Catch);
    {
        HeldSignals const held(HeldSignals::Which::kSizeLimit);
        pthread_kill(pthread_self(), SIGXFSZ);
        EXPECT_TRUE(IsPending(SIGXFSZ));
        held.Discard();
        EXPECT_FALSE(IsPending(SIGXFSZ));
        // Nothing waits: nothing is taken, and nobody waits for it.
        held.Discard();
    }
    EXPECT_EQ(sCaught, 0);
}

TEST_F(Signals, DiscardingIsRepeatedWhenInterrupted)
{
    std::signal(SIGXFSZ, &Catch);
    {
        HeldSignals const held(HeldSignals::Which::kSizeLimit);
        pthread_kill(pthread_self(), SIGXFSZ);
        Faults const faults({{Call::kTakeSignal, EINTR, 1, 2}});
        held.Discard();
    }
    EXPECT_EQ(sCaught, 0);
}

TEST_F(Signals, WhatSomebodyElseHoldsIsNotDiscarded)
{
    HeldSignals const others(HeldSignals::Which::kSizeLimit);
    pthread_kill(pthread_self(), SIGXFSZ);
    {
        HeldSignals const held(HeldSignals::Which::kSizeLimit);
        held.Discard();
    }
    EXPECT_TRUE(IsPending(SIGXFSZ));
    others.Discard();
    EXPECT_FALSE(IsPending(SIGXFSZ));
}

TEST_F(Signals, AThreadStartedMeanwhileTakesFaultsAlone)
{
    sigset_t mask;
    sigemptyset(&mask);
    {
        HeldSignals const held(HeldSignals::Which::kAllButFaults);
        std::thread([&mask] { pthread_sigmask(SIG_BLOCK, nullptr, &mask); }).join();
    }
    for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1, SIGCHLD, SIGPIPE, SIGXFSZ})
        EXPECT_EQ(sigismember(&mask, signal), 1) << signal;
    for (int const signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS})
        EXPECT_EQ(sigismember(&mask, signal), 0) << signal;
}

TEST_F(Signals, CaughtInterruptsEndNothingAndIgnoredOnesStayIgnored)
{
    std::signal(SIGHUP, SIG_IGN);
    {
        SYSTEM::CaughtInterrupts const caught(&Catch);
        std::raise(SIGHUP);
        EXPECT_EQ(sCaught, 0);
        std::raise(SIGTERM);
        EXPECT_EQ(sCaught, SIGTERM);
    }
    EXPECT_TRUE(std::signal(SIGHUP, SIG_DFL) == SIG_IGN);
    EXPECT_TRUE(std::signal(SIGTERM, SIG_DFL) == SIG_DFL);
}
} // namespace
} // namespace KORVA::TESTS
