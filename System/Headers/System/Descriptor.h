// A file descriptor that closes itself.
#pragma once

#include "System/ErrorNumber.h"

#include <utility>

namespace KORVA::SYSTEM
{
class Descriptor
{
public:
    /// Owns `descriptor`; a negative one is none.
    explicit Descriptor(int descriptor = -1) : mDescriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : mDescriptor(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    ~Descriptor();

    int Get() const { return mDescriptor; }
    explicit operator bool() const { return mDescriptor >= 0; }

    /// Gives it to the caller, who closes it.
    int Release() { return std::exchange(mDescriptor, -1); }
    /// Closes now, to hear of a failure: some file systems report a full disk only here.
    ErrorNumber Close();

private:
    int mDescriptor;
};

/// Another descriptor of what `descriptor` (borrowed) was opened for: both share position and lock. Closed in
/// programs that are started. None on failure, with the reason in `error`.
Descriptor Duplicate(int descriptor, ErrorNumber& error);
} // namespace KORVA::SYSTEM
