#include "Progress.h"

#include "System/StandardStreams.h"

#include <cstdio>

namespace TOOL
{
using namespace KORVA::SYSTEM;

Progress::Progress(std::string what, KORVA::int64 total, Pace pace)
    : mWhat(std::move(what)), mTotal(total), mPace(pace), mIsTerminal(IsTerminal(StandardStream::kErrors)),
      mNext(std::chrono::steady_clock::now() + pace.patience)
{}

Progress::~Progress()
{
    // Blanks instead of a terminal's own command: every terminal has them.
    if (mIsShown)
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(mWhat.size()) + 16, "");
}

void Progress::At(KORVA::int64 done)
{
    if (!mIsTerminal || mTotal <= 0)
        return;
    auto const now = std::chrono::steady_clock::now();
    if (now < mNext)
        return;
    mNext = now + mPace.pause;
    mIsShown = true;
    std::fprintf(stderr, "\rtessio: %s %3d %%", mWhat.c_str(), static_cast<int>(done * 100 / mTotal));
    std::fflush(stderr);
}
} // namespace TOOL
