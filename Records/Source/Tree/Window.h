// A piece of a source in memory.
#pragma once

#include <tessio/Records/Tree/Source.h>

namespace KORVA::RECORDS
{
/// What is read from a source stays until something else is asked for, so that small steps forward and back
/// cost one reading. Of a source in memory nothing is copied.
class Window
{
public:
    /// Borrows the source.
    explicit Window(Source const& source) : mSource(source), mMemory(source.Memory()), mSize(source.Size()) {}

    int64 Size() const { return mSize; }

    /// The bytes from `offset` on, `length` of which are in the source; until the next call. Raises an error
    /// where they can't be read.
    unsigned char const* At(int64 offset, int64 length)
    {
        if (mMemory)
            return mMemory + offset;
        if (offset < mOffset || offset + length > mOffset + static_cast<int64>(mPiece.size()))
            Fetch(offset, length);
        return mPiece.data() + (offset - mOffset);
    }

private:
    void Fetch(int64 offset, int64 length);

    Source const& mSource;
    unsigned char const* mMemory;
    int64 mSize;
    Bytes mPiece;
    int64 mOffset = 0;
};
} // namespace KORVA::RECORDS
