#include "System/Transfer.h"

#include "Retry.h"

#include <unistd.h>

#include <algorithm>

namespace KORVA::SYSTEM
{
namespace
{
/// No more is asked for at once: some systems refuse larger counts.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

/// Repeats `move(done, left)`, a call as of write, until all of `count` is moved or nothing more moves.
/// `count` becomes how much was moved.
template <class Move>
ErrorNumber Repeat(std::size_t& count, Move move)
{
    std::size_t const wanted = count;
    for (count = 0; count < wanted;)
    {
        std::size_t const left = std::min(wanted - count, kMostAtOnce);
        ssize_t const moved = Uninterrupted([&] { return move(count, left); });
        if (moved < 0)
            return errno;
        if (moved == 0)
            break;
        count += static_cast<std::size_t>(moved);
    }
    return 0;
}

/// The same for a call that writes. One that takes nothing and says nothing could be asked for ever.
template <class Write>
ErrorNumber RepeatWriting(std::size_t& count, Write write)
{
    std::size_t const wanted = count;
    ErrorNumber const error = Repeat(count, write);
    return error == 0 && count < wanted ? ENOSPC : error;
}
} // namespace

ErrorNumber WriteAll(int descriptor, void const* data, std::size_t count)
{
    return RepeatWriting(count, [&](std::size_t done, std::size_t left) {
        return write(descriptor, static_cast<char const*>(data) + done, left);
    });
}

ErrorNumber ReadSome(int descriptor, void* data, std::size_t& count)
{
    std::size_t const wanted = std::min(count, kMostAtOnce);
    ssize_t const came = Uninterrupted([&] { return read(descriptor, data, wanted); });
    count = came < 0 ? 0 : static_cast<std::size_t>(came);
    return came < 0 ? errno : 0;
}

ErrorNumber ReadAll(int descriptor, void* data, std::size_t& count)
{
    return Repeat(count, [&](std::size_t done, std::size_t left) {
        return read(descriptor, static_cast<char*>(data) + done, left);
    });
}

ErrorNumber WriteAllAt(int descriptor, std::int64_t offset, void const* data, std::size_t& count)
{
    if (offset < 0)
    {
        count = 0;
        return EINVAL;
    }
    return RepeatWriting(count, [&](std::size_t done, std::size_t left) {
        return pwrite(descriptor, static_cast<char const*>(data) + done, left,
                      offset + static_cast<off_t>(done));
    });
}

ErrorNumber ReadAllAt(int descriptor, std::int64_t offset, void* data, std::size_t& count)
{
    if (offset < 0)
    {
        count = 0;
        return EINVAL;
    }
    return Repeat(count, [&](std::size_t done, std::size_t left) {
        return pread(descriptor, static_cast<char*>(data) + done, left, offset + static_cast<off_t>(done));
    });
}

ErrorNumber ReadPosition(int descriptor, std::int64_t& position)
{
    off_t const found = lseek(descriptor, 0, SEEK_CUR);
    if (found < 0)
        return errno;
    position = found;
    return 0;
}

ErrorNumber SetSize(int descriptor, std::int64_t size)
{
    return Uninterrupted([&] { return ftruncate(descriptor, size); }) == 0 ? 0 : errno;
}

ErrorNumber FlushToDevice(int descriptor)
{
    return Uninterrupted([&] { return fsync(descriptor); }) == 0 ? 0 : errno;
}

ErrorNumber FlushContent(int descriptor)
{
    return Uninterrupted([&] { return fdatasync(descriptor); }) == 0 ? 0 : errno;
}
} // namespace KORVA::SYSTEM
