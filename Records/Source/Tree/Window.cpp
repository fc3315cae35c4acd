#include "Tree/Window.h"

#include "Format/Guard.h"

#include <algorithm>

namespace KORVA::RECORDS
{
namespace
{
/// What is read at once: large enough that a call into the system costs little, small enough to stay in the
/// processor's cache.
constexpr int64 kPiece = int64{64} << 10;
} // namespace

void Window::Fetch(int64 offset, int64 length)
{
    mPiece.clear();
    // What one long text needed is not kept for all the short ones behind it.
    if (static_cast<int64>(mPiece.capacity()) > std::max(length, kPiece))
        mPiece.shrink_to_fit();
    mPiece.resize(static_cast<std::size_t>(std::min(std::max(length, kPiece), mSize - offset)));
    mOffset = offset;
    if (std::optional<Error> error = mSource.Read(offset, mPiece))
    {
        mPiece.clear();
        throw Raised{std::move(*error)};
    }
}
} // namespace KORVA::RECORDS
