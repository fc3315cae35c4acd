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
    Descriptor(Descriptor&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    ~Descriptor();

    int Get() const { return mDescriptor; }
    explicit operator bool() const { return mDescriptor >= 0; }

    /// Closes now, to hear of a failure: some file systems report a full disk only here.
    ErrorNumber Close();

private:
    int mDescriptor;
};
} // namespace KORVA::SYSTEM
