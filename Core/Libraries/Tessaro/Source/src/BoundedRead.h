// Reads blocks whose length comes from a file.
#pragma once

#include <tessio/TessIO/IDataProvider.h>

namespace KORVA::IO
{
/// Where `ReadBounded` puts what it reads; grows on demand.
class GrowingBuffer
{
public:
    /// Makes room for `size` bytes, keeping what is there. Gives the address of the whole.
    virtual unsigned char* Grow(std::size_t size) = 0;

protected:
    ~GrowingBuffer() = default;
};

/// Reads `length` bytes (at least 1) from the provider's position into `buffer`; the result is the number
/// delivered, as one read of that length would have. A length above 1 MiB that exceeds what the provider
/// has left is read in steps of 1 MiB up to the first that comes back short, so that a damaged length costs
/// no more memory than there is data. Throws when the provider's file has been read too much in vain already.
int32 ReadBounded(IDataProvider& provider, int32 length, GrowingBuffer& buffer);
} // namespace KORVA::IO
