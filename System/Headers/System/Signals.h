// Signals that must not come in between.
#pragma once

#include <cstddef>

namespace KORVA::SYSTEM
{
/// While it lives, some signals don't reach the calling thread, nor the threads that it starts; those that
/// come for it wait. To be ended by the thread that made it, the last made first.
class HeldSignals
{
public:
    enum class Which
    {
        /// By which a user or a closing session ends programs.
        kInterrupts,
        /// What a write beyond the limit of a file's size raises: the write's error tells enough.
        kSizeLimit,
        /// All but those that a thread raises by what it does, which crash handlers want to see.
        kAllButFaults
    };

    explicit HeldSignals(Which which);
    HeldSignals(HeldSignals const&) = delete;
    HeldSignals& operator=(HeldSignals const&) = delete;
    ~HeldSignals();

    /// Takes one back that waits; it is as if it had never been raised. Does nothing where all of them were
    /// held before this object was made. For `kSizeLimit`.
    void Discard() const;

private:
    /// Room for the system's own type.
    struct Set
    {
        alignas(std::max_align_t) std::byte room[128];
    };

    Set mHeld;
    Set mBefore;
};

/// While it lives, an interrupt calls `handler` and does not end the process. One that was ignored stays so.
/// One such object at a time.
class CaughtInterrupts
{
public:
    /// The handler may do what is safe in signal handlers, and is given the signal's number.
    using Handler = void(int signal);

    explicit CaughtInterrupts(Handler* handler);
    CaughtInterrupts(CaughtInterrupts const&) = delete;
    CaughtInterrupts& operator=(CaughtInterrupts const&) = delete;
    ~CaughtInterrupts();

private:
    static constexpr std::size_t kMost = 4;
    Handler* mBefore[kMost] = {};
};

/// From now on a write beyond the limit of a file's size only fails.
void IgnoreSizeLimitSignal();
} // namespace KORVA::SYSTEM
