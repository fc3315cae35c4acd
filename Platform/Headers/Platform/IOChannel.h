// Reading and writing at explicit positions of a file, on threads of the system's pool.
#pragma once

#include "Platform/Ref.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace KORVA::PLATFORM
{
/// Bytes that somebody else owns and keeps where they are. Empty when there are none.
class Data
{
public:
    Data() = default;
    Data(void const* bytes, std::size_t size) : mBytes(bytes), mSize(size) {}

    bool IsEmpty() const { return mSize == 0; }
    std::size_t Size() const { return mSize; }

    /// Calls `applier(offset, address, size)` for each contiguous region, with its offset in this object.
    /// False as soon as the applier answers so.
    template <class Applier>
    bool Apply(Applier&& applier) const
    {
        return IsEmpty() || applier(std::size_t{0}, mBytes, mSize);
    }

private:
    void const* mBytes = nullptr;
    std::size_t mSize = 0;
};

class ChannelCleanup;
class ChannelDescriptor;

/// A file for random access. Offsets are bytes from the file's start, wherever the descriptor stands; that
/// position is neither used nor moved. Any number of operations may be under way; those of one channel
/// and of others don't disturb each other. Safe from any thread.
///
/// Dropping the last reference lets the operations under way end, and the descriptor is closed before the
/// last of them tells that it has ended. All numbers of errors are the system's.
class IOChannel final : public Counted
{
public:
    /// Called once on the pool: with an error, at once, when the descriptor can't be used (a bad one, a
    /// directory, one without positions); with 0 when the last reference is gone and all operations have
    /// ended.
    using CleanupHandler = std::function<void(int error)>;

    /// Called once or twice, one call after the other, the last with `done`. All bytes come in one call, in
    /// one region: with `done`, where the file has all that was asked for; else without, followed by one with
    /// no data and the error, 0 at the end of the file. Nothing to deliver is the second call alone.
    /// `data` lasts as long as the call.
    using ReadHandler = std::function<void(bool done, Data const& data, int error)>;

    /// Called once or twice, one call after the other, the last with `done`. `data` is what is not written
    /// yet: none on success. A failure after the first bytes comes in two calls, the first without the error.
    using WriteHandler = std::function<void(bool done, Data const& data, int error)>;

    /// The channel works on a duplicate of `descriptor` (borrowed), which may be closed at once. Null when it
    /// can't be duplicated; one that can't be used gives a channel whose operations all fail.
    static Ref<IOChannel> Create(int descriptor, CleanupHandler cleanup);

    /// Begins to read. Bytes go to `destination` (borrowed until `done`) and are delivered there; null lets
    /// the channel use memory of its own. The handler is called on the pool, maybe before this returns.
    void Read(std::int64_t offset, std::size_t length, void* destination, ReadHandler handler);

    /// Begins to write; the bytes are borrowed until `done`.
    void Write(std::int64_t offset, Data data, WriteHandler handler);

    /// The same for a caller that waits anyway: served, and the handler called, on its own thread before this
    /// returns.
    void ReadHere(std::int64_t offset, std::size_t length, void* destination, ReadHandler const& handler);
    void WriteHere(std::int64_t offset, Data data, WriteHandler const& handler);

    /// For a caller that waits for one of the operations: performs one that no thread has begun yet, unless
    /// it is a long one, and calls its handler, on the calling thread. False when there is none.
    bool ServeOne();

    /// Gives up the advisory lock of the descriptor that the channel was made from: as soon as no write is
    /// under way, now or when the last one has ended. Reads under way don't keep it. To be called by an owner
    /// that has closed that descriptor; writes must not be begun afterwards.
    void UnlockAfterWrites();

    /// After this the cleanup handler is not called any more; waits for it where it is just running. To be
    /// called by an owner to whom the handler leads.
    void DropCleanupHandler();

private:
    friend class Ref<IOChannel>;

    IOChannel(Ref<ChannelDescriptor> descriptor, Ref<ChannelCleanup> cleanup);
    ~IOChannel();

    Ref<ChannelDescriptor> mDescriptor;
    Ref<ChannelCleanup> mCleanup;
};

using IOChannelRef = Ref<IOChannel>;
} // namespace KORVA::PLATFORM
