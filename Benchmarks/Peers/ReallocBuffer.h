// The peer of the memory block: the C allocator, growing by the same step.
#pragma once

#include <cstdlib>
#include <cstring>

namespace PEERS
{
/// Grows to what a write needs and a further 512 KiB, as the memory-handle provider does.
class ReallocBuffer
{
public:
    ReallocBuffer() = default;
    ReallocBuffer(ReallocBuffer const&) = delete;
    ReallocBuffer& operator=(ReallocBuffer const&) = delete;
    ~ReallocBuffer() { std::free(mData); }

    bool Write(void const* data, std::size_t count)
    {
        if (mSize + count > mCapacity)
        {
            std::size_t const capacity = mSize + count + 0x80000;
            void* const grown = std::realloc(mData, capacity);
            if (!grown)
                return false;
            mData = static_cast<char*>(grown);
            mCapacity = capacity;
        }
        std::memcpy(mData + mSize, data, count);
        mSize += count;
        return true;
    }

private:
    char* mData = nullptr;
    std::size_t mSize = 0;
    std::size_t mCapacity = 0;
};
} // namespace PEERS
