#include "ChannelDescriptor.h"

#include "System/Locks.h"
#include "System/Signals.h"
#include "System/Status.h"
#include "System/Transfer.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace KORVA::PLATFORM
{
namespace
{
constexpr std::size_t kPieceOfUnknown = 1 << 20;
} // namespace

Ref<ChannelDescriptor> ChannelDescriptor::Duplicate(int descriptor)
{
    int error = 0;
    SYSTEM::Descriptor own = SYSTEM::Duplicate(descriptor, error);
    if (!own && error != EBADF)
        return {};
    if (own)
    {
        // Asked for the error alone: a file without positions can't be read and written at positions.
        std::int64_t position = 0;
        error = SYSTEM::ReadPosition(own.Get(), position);
        SYSTEM::Status status;
        if (SYSTEM::ReadStatus(own.Get(), status) == 0 && status.kind == SYSTEM::FileKind::kDirectory)
            error = EISDIR;
    }
    return Ref<ChannelDescriptor>(new ChannelDescriptor(std::move(own), error));
}

ChannelDescriptor::ChannelDescriptor(SYSTEM::Descriptor descriptor, int error)
    : mDescriptor(std::move(descriptor)), mError(error)
{}

ChannelDescriptor::~ChannelDescriptor() = default;

ChannelDescriptor::Outcome ChannelDescriptor::Read(std::int64_t offset, std::size_t length,
                                                   std::byte* destination) const
{
    int const error = SYSTEM::ReadAllAt(mDescriptor.Get(), offset, destination, length);
    return {length, error};
}

ChannelDescriptor::Outcome ChannelDescriptor::Write(std::int64_t offset, std::byte const* source,
                                                    std::size_t length) const
{
    // A write beyond the limit of a file's size must not end the process: the error tells.
    SYSTEM::HeldSignals const held(SYSTEM::HeldSignals::Which::kSizeLimit);
    int const error = SYSTEM::WriteAllAt(mDescriptor.Get(), offset, source, length);
    if (error == EFBIG)
        held.Discard();
    return {length, error};
}

void ChannelDescriptor::BeginWrite() { ++mWrites; }

void ChannelDescriptor::EndWrite()
{
    if (--mWrites == 0 && mUnlocksAfterWrites)
        Unlock();
}

void ChannelDescriptor::UnlockAfterWrites()
{
    mUnlocksAfterWrites = true;
    if (mWrites == 0)
        Unlock();
}

/// Duplicates share one lock, and giving it up through one of them gives it up for all.
void ChannelDescriptor::Unlock()
{
    if (mDescriptor)
        SYSTEM::Unlock(mDescriptor.Get());
}

std::size_t ChannelDescriptor::Expected(std::int64_t offset, std::size_t length) const
{
    SYSTEM::Status status;
    if (offset < 0 || SYSTEM::ReadStatus(mDescriptor.Get(), status) != 0 ||
        status.kind != SYSTEM::FileKind::kRegular)
        return std::min(length, kPieceOfUnknown);
    std::uint64_t const begin = std::min(static_cast<std::uint64_t>(offset), status.size);
    return static_cast<std::size_t>(std::min<std::uint64_t>(length, status.size - begin));
}
} // namespace KORVA::PLATFORM
