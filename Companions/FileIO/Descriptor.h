// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace KORVA::FILE_SYS
{
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    ~Descriptor()
    {
        if (mDescriptor >= 0)
            close(mDescriptor);
    }

    int Get() const { return mDescriptor; }
    explicit operator bool() const { return mDescriptor >= 0; }

    /// Closes now, to hear of a failure: some file systems report a full disk only here.
    bool Close() { return close(std::exchange(mDescriptor, -1)) == 0; }

private:
    int mDescriptor;
};
} // namespace KORVA::FILE_SYS
