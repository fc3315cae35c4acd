#include "Platform/IOChannel.h"

#include "ChannelDescriptor.h"
#include "WorkerPool.h"

#include <cerrno>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace KORVA::PLATFORM
{
namespace
{
class CallJob final : public WorkerPool::Job
{
public:
    explicit CallJob(std::function<void()> call) : Job(nullptr), mCall(std::move(call)) {}
    void Run() override { mCall(); }

private:
    std::function<void()> mCall;
};
} // namespace

/// Tells an owner of the end of a channel, once. Held by the channel and by each operation for as long as its
/// handler runs.
class ChannelCleanup final : public Counted
{
public:
    explicit ChannelCleanup(IOChannel::CleanupHandler handler) : mHandler(std::move(handler)) {}

    void Run(int error)
    {
        std::lock_guard const lock(mMutex);
        if (IOChannel::CleanupHandler const handler = std::exchange(mHandler, nullptr))
            handler(error);
    }

    void Drop()
    {
        std::lock_guard const lock(mMutex);
        mHandler = nullptr;
    }

private:
    friend class Ref<ChannelCleanup>;

    ~ChannelCleanup()
    {
        if (mHandler)
            WorkerPool::Instance().Submit(
                std::make_unique<CallJob>([handler = std::move(mHandler)] { handler(0); }));
    }

    std::mutex mMutex;
    IOChannel::CleanupHandler mHandler;
};

namespace
{
using CleanupRef = Ref<ChannelCleanup>;
using DescriptorRef = Ref<ChannelDescriptor>;
using Handler = IOChannel::ReadHandler;

/// Reads and delivers. Lets go of the descriptor before the handler is told of the end: whoever waits for
/// that may go on to close and reopen the file, and a lock on it must not outlive the channel.
void PerformRead(DescriptorRef descriptor, std::int64_t offset, std::size_t length, std::byte* destination,
                 Handler const& handler)
{
    ChannelDescriptor::Outcome outcome{0, descriptor->Error()};
    std::unique_ptr<std::byte[]> own;
    std::size_t room = length;
    if (outcome.error == 0 && !destination)
    {
        room = descriptor->Expected(offset, length);
        own.reset(new (std::nothrow) std::byte[room]);
        destination = own.get();
        if (!own)
            outcome.error = ENOMEM;
    }
    if (outcome.error == 0 && length > 0)
        outcome = descriptor->Read(offset, room, destination);
    descriptor = {};
    Data const data(destination, outcome.moved);
    if (outcome.error == 0 && outcome.moved == length)
    {
        handler(true, data, 0);
        return;
    }
    if (outcome.moved > 0)
        handler(false, data, 0);
    handler(true, Data(), outcome.error);
}

/// A write under way: keeps the descriptor and its lock. To be ended before the handler is told, like a
/// read's descriptor.
class WriteTurn
{
public:
    explicit WriteTurn(DescriptorRef descriptor) : mDescriptor(std::move(descriptor))
    {
        mDescriptor->BeginWrite();
    }
    WriteTurn(WriteTurn&&) = default;
    WriteTurn& operator=(WriteTurn&&) = delete;
    ~WriteTurn() { End(); }

    void End()
    {
        if (DescriptorRef const descriptor = std::exchange(mDescriptor, {}))
            descriptor->EndWrite();
    }

    ChannelDescriptor& operator*() const { return *mDescriptor; }
    ChannelDescriptor* operator->() const { return &*mDescriptor; }

private:
    DescriptorRef mDescriptor;
};

void PerformWrite(WriteTurn descriptor, std::int64_t offset, Data data, Handler const& handler)
{
    std::byte const* source = nullptr;
    data.Apply([&](std::size_t, void const* address, std::size_t) {
        source = static_cast<std::byte const*>(address);
        return true;
    });
    ChannelDescriptor::Outcome outcome{0, descriptor->Error()};
    if (outcome.error == 0 && !data.IsEmpty())
        outcome = descriptor->Write(offset, source, data.Size());
    descriptor.End();
    Data const left(source + outcome.moved, data.Size() - outcome.moved);
    if (outcome.error != 0 && outcome.moved > 0)
        handler(false, left, 0);
    handler(true, left, outcome.error);
}

/// More than this is left to the pool: a thread that waits for something short is not to be kept.
constexpr std::size_t kShort = 1 << 20;

/// By what a thread that waits for the file knows what it may take over; null for what it may not.
void const* OwnerOf(ChannelDescriptor const& descriptor, std::size_t length)
{
    return length <= kShort ? &descriptor : nullptr;
}

class ReadJob final : public WorkerPool::Job
{
public:
    ReadJob(CleanupRef cleanup, DescriptorRef descriptor, std::int64_t offset, std::size_t length,
            void* destination, Handler handler)
        : Job(OwnerOf(*descriptor, length)), mCleanup(std::move(cleanup)), mDescriptor(std::move(descriptor)),
          mOffset(offset), mLength(length), mDestination(static_cast<std::byte*>(destination)),
          mHandler(std::move(handler))
    {}

    void Run() override { PerformRead(std::move(mDescriptor), mOffset, mLength, mDestination, mHandler); }

private:
    CleanupRef mCleanup;
    DescriptorRef mDescriptor;
    std::int64_t mOffset;
    std::size_t mLength;
    std::byte* mDestination;
    Handler mHandler;
};

class WriteJob final : public WorkerPool::Job
{
public:
    WriteJob(CleanupRef cleanup, DescriptorRef descriptor, std::int64_t offset, Data data, Handler handler)
        : Job(OwnerOf(*descriptor, data.Size())), mCleanup(std::move(cleanup)), mTurn(std::move(descriptor)),
          mOffset(offset), mData(data), mHandler(std::move(handler))
    {}

    void Run() override { PerformWrite(std::move(mTurn), mOffset, mData, mHandler); }

private:
    CleanupRef mCleanup;
    WriteTurn mTurn;
    std::int64_t mOffset;
    Data mData;
    Handler mHandler;
};

} // namespace

IOChannelRef IOChannel::Create(int descriptor, CleanupHandler cleanup)
{
    DescriptorRef own = ChannelDescriptor::Duplicate(descriptor);
    if (!own)
        return {};
    int const error = own->Error();
    CleanupRef const owner(new ChannelCleanup(std::move(cleanup)));
    IOChannelRef const channel(new IOChannel(std::move(own), owner));
    if (error != 0)
        WorkerPool::Instance().Submit(std::make_unique<CallJob>([owner, error] { owner->Run(error); }));
    return channel;
}

IOChannel::IOChannel(DescriptorRef descriptor, CleanupRef cleanup)
    : mDescriptor(std::move(descriptor)), mCleanup(std::move(cleanup))
{}

IOChannel::~IOChannel() = default;

void IOChannel::UnlockAfterWrites() { mDescriptor->UnlockAfterWrites(); }

void IOChannel::DropCleanupHandler() { mCleanup->Drop(); }

void IOChannel::Read(std::int64_t offset, std::size_t length, void* destination, ReadHandler handler)
{
    WorkerPool::Instance().Submit(
        std::make_unique<ReadJob>(mCleanup, mDescriptor, offset, length, destination, std::move(handler)));
}

void IOChannel::Write(std::int64_t offset, Data data, WriteHandler handler)
{
    WorkerPool::Instance().Submit(
        std::make_unique<WriteJob>(mCleanup, mDescriptor, offset, data, std::move(handler)));
}

bool IOChannel::ServeOne() { return WorkerPool::Instance().RunOneOf(&*mDescriptor); }

void IOChannel::ReadHere(std::int64_t offset, std::size_t length, void* destination,
                         ReadHandler const& handler)
{
    PerformRead(mDescriptor, offset, length, static_cast<std::byte*>(destination), handler);
}

void IOChannel::WriteHere(std::int64_t offset, Data data, WriteHandler const& handler)
{
    PerformWrite(WriteTurn(mDescriptor), offset, data, handler);
}
} // namespace KORVA::PLATFORM
