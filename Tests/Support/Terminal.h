// A terminal that a test looks at and types on.
#pragma once

#include <string>

namespace KORVA::TESTS
{
/// A pseudo-terminal, where the system gives any: a container may have none. A test that needs one is skipped
/// there:
///
///     Terminal const terminal;
///     if (!terminal.IsOpen())
///         GTEST_SKIP() << terminal.Why();
class Terminal
{
public:
    Terminal();
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;
    ~Terminal();

    bool IsOpen() const { return mScreen >= 0; }
    /// Why it is not open, in words.
    std::string const& Why() const { return mWhy; }

    /// The end that programs write to, as a file. It stays open as long as this object lives, so that nothing
    /// is lost when the last program closes it.
    std::string const& Name() const { return mName; }

    /// For a child that has just been forked: begins a session on this terminal, with it as the standard
    /// streams.
    void Take() const;

    void Type(std::string const& text) const;
    /// What was shown and has not been answered yet; does not wait for more.
    std::string Shown() const;
    /// The same, waiting until it ends with `end`. What did come, if that does not within a minute.
    std::string ShownUpTo(std::string const& end) const;

private:
    int mScreen = -1;
    int mHeld = -1;
    std::string mName;
    std::string mWhy;
};
} // namespace KORVA::TESTS
