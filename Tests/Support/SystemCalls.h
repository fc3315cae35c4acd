// Calls of the system that fail, come back early or are interrupted when a test wants it. Whoever links the
// source has them stand before the system's own, for all libraries in the program.
#pragma once

#include <string>
#include <vector>

namespace KORVA::TESTS
{
/// Reading, writing and flushing at the descriptor's position count for regular files alone.
enum class Call
{
    kOpen,
    kRead,
    kWrite,
    kReadAt,
    kWriteAt,
    kCopyFileRange,
    kSendFile,
    kStat,
    kFlushFile,
    kFlushContent,
    kFlushDirectory,
    kSetSize,
    kTakeSignal,
    kRename,
    kSetAttribute
};

constexpr int kForEver = 1 << 30;
/// Half of the bytes are moved, at least one.
constexpr int kShort = -1;
/// Nothing is moved, and nothing said.
constexpr int kTakesNothing = -2;

struct Fault
{
    Call call;
    /// The system's number, `kShort` or `kTakesNothing`.
    int error;
    /// The first call that fails, counted from 1, and how many do.
    int first = 1;
    int times = 1;
};

/// While it lives, calls fail as it says, and those that change what is on the disk are noted. One at a time.
class Faults
{
public:
    explicit Faults(std::vector<Fault> faults = {});
    Faults(Faults const&) = delete;
    Faults& operator=(Faults const&) = delete;
    ~Faults();

    /// "flush the file", "rename", "flush the directory", in their order.
    std::vector<std::string> const& Events() const { return mEvents; }

    /// The error that the next call ends with; 0 for none. For the calls themselves.
    int Next(Call call);
    void Note(char const* event) { mEvents.emplace_back(event); }

private:
    std::vector<Fault> mFaults;
    std::vector<int> mCounts;
    std::vector<std::string> mEvents;
};
} // namespace KORVA::TESTS
