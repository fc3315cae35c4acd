// How deep the records stand in each other that a thread reads and writes.
#pragma once

namespace KORVA::IO
{
/// Counts the records that are open on this thread, while it lives. One too deep counts as a body that threw,
/// so that a crafted or cyclic structure costs one record and not the stack.
class Nesting
{
public:
    /// Throws `std::length_error` when there are too many.
    Nesting();
    Nesting(Nesting const&) = delete;
    Nesting& operator=(Nesting const&) = delete;
    ~Nesting() { --sDepth; }

    /// How many are open.
    static int Depth() { return sDepth; }

private:
    static thread_local int sDepth;
};
} // namespace KORVA::IO
