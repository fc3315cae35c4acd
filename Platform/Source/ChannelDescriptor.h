// The descriptor under an I/O channel.
#pragma once

#include "Platform/IOChannel.h"
#include "System/Descriptor.h"

#include <atomic>
#include <cstdint>

namespace KORVA::PLATFORM
{
/// Owns a descriptor and moves bytes at positions of its file. Blocks the calling thread.
class ChannelDescriptor final : public Counted
{
public:
    /// A duplicate of `descriptor`; null when there can't be one.
    static Ref<ChannelDescriptor> Duplicate(int descriptor);

    /// Why the file can't be used so; 0 when it can.
    int Error() const { return mError; }

    struct Outcome
    {
        std::size_t moved;
        int error;
    };

    /// Until `length`, the end of the file or an error.
    Outcome Read(std::int64_t offset, std::size_t length, std::byte* destination) const;
    /// Until all is written or an error. The signal that a file's size limit raises is not let out.
    Outcome Write(std::int64_t offset, std::byte const* source, std::size_t length) const;

    /// Between these the descriptor's lock is kept, whatever the channel's owner does.
    void BeginWrite();
    void EndWrite();
    /// Gives up the advisory lock as soon as no write is under way.
    void UnlockAfterWrites();

    /// The bytes that lie behind `offset`, at most `length`; of what has no size, a piece.
    std::size_t Expected(std::int64_t offset, std::size_t length) const;

private:
    friend class Ref<ChannelDescriptor>;

    ChannelDescriptor(SYSTEM::Descriptor descriptor, int error);
    ~ChannelDescriptor();

    void Unlock();

    SYSTEM::Descriptor mDescriptor;
    int mError;
    std::atomic<std::uint32_t> mWrites{0};
    std::atomic<bool> mUnlocksAfterWrites{false};
};
} // namespace KORVA::PLATFORM
