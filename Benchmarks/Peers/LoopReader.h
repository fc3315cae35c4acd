// The peer of asynchronous reading: libuv's loop and thread pool.
#pragma once

#include <fcntl.h>
#include <unistd.h>
#include <uv.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace PEERS
{
/// Keeps a number of reads outstanding, each into a buffer of its own; the end of one begins the next.
class LoopReader
{
public:
    LoopReader(std::string const& path, std::size_t outstanding, std::size_t length)
        : mDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)), mSlots(outstanding)
    {
        uv_loop_init(&mLoop);
        for (Slot& slot : mSlots)
        {
            slot.owner = this;
            slot.bytes.resize(length);
            slot.request.data = &slot;
        }
    }
    LoopReader(LoopReader const&) = delete;
    LoopReader& operator=(LoopReader const&) = delete;
    ~LoopReader()
    {
        uv_loop_close(&mLoop);
        close(mDescriptor);
    }

    /// Reads `count` pieces where `nextOffset` says. False when one failed.
    bool Run(std::size_t count, std::function<std::int64_t()> nextOffset)
    {
        mLeft = count;
        mNextOffset = std::move(nextOffset);
        for (Slot& slot : mSlots)
            Begin(slot);
        uv_run(&mLoop, UV_RUN_DEFAULT);
        return mGood;
    }

private:
    struct Slot
    {
        LoopReader* owner = nullptr;
        uv_fs_t request{};
        std::vector<char> bytes;
    };

    void Begin(Slot& slot)
    {
        if (mLeft == 0)
            return;
        --mLeft;
        uv_buf_t const buffer = uv_buf_init(slot.bytes.data(), static_cast<unsigned>(slot.bytes.size()));
        uv_fs_read(&mLoop, &slot.request, mDescriptor, &buffer, 1, mNextOffset(), &OnRead);
    }

    static void OnRead(uv_fs_t* request)
    {
        auto& slot = *static_cast<Slot*>(request->data);
        LoopReader& owner = *slot.owner;
        if (request->result != static_cast<ssize_t>(slot.bytes.size()))
            owner.mGood = false;
        uv_fs_req_cleanup(request);
        owner.Begin(slot);
    }

    int mDescriptor;
    uv_loop_t mLoop{};
    std::vector<Slot> mSlots;
    std::size_t mLeft = 0;
    std::function<std::int64_t()> mNextOffset;
    bool mGood = true;
};
} // namespace PEERS
