// What the tests of I/O channels share.
#pragma once

#include "Platform/IOChannel.h"
#include "Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace KORVA::TESTS
{
using PLATFORM::IOChannel;
using PLATFORM::IOChannelRef;

/// One call of a handler.
struct Call
{
    bool done = false;
    std::string bytes;
    int error = 0;
    /// Of bytes that a read delivers.
    void const* address = nullptr;

    friend bool operator==(Call const&, Call const&) = default;
};
using Calls = std::vector<Call>;

inline std::ostream& operator<<(std::ostream& out, Call const& call)
{
    return out << "{" << (call.done ? "done" : "more") << " \"" << call.bytes.substr(0, 50) << "\" ("
               << call.bytes.size() << " bytes) error " << call.error << " at " << call.address << "}";
}

inline Calls WithoutAddresses(Calls calls)
{
    for (Call& call : calls)
        call.address = nullptr;
    return calls;
}

/// Notes what one operation tells its handler. Outlives the operation.
class Recorder
{
public:
    IOChannel::ReadHandler Handler()
    {
        return [this](bool done, PLATFORM::Data const& data, int error) { Note(done, data, error); };
    }

    /// All calls, when the last has come.
    Calls Wait()
    {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [this] { return !mCalls.empty() && mCalls.back().done; });
        return mCalls;
    }

    /// Where the last call came.
    std::thread::id Thread() const { return mThread; }

private:
    void Note(bool done, PLATFORM::Data const& data, int error)
    {
        Call call{done, {}, error, nullptr};
        int regions = 0;
        EXPECT_TRUE(data.Apply([&](std::size_t offset, void const* address, std::size_t size) {
            EXPECT_EQ(offset, call.bytes.size());
            EXPECT_GT(size, 0u);
            call.bytes.append(static_cast<char const*>(address), size);
            call.address = address;
            ++regions;
            return true;
        }));
        EXPECT_EQ(regions, data.IsEmpty() ? 0 : 1);
        // What is left of a write lies where the caller has it, and that is no news.
        if (error != 0)
            call.address = nullptr;
        std::lock_guard const lock(mMutex);
        EXPECT_TRUE(mCalls.empty() || !mCalls.back().done) << "a call after the last";
        mCalls.push_back(std::move(call));
        mThread = std::this_thread::get_id();
        mChanged.notify_all();
    }

    std::mutex mMutex;
    std::condition_variable mChanged;
    Calls mCalls;
    std::thread::id mThread;
};

/// Notes the calls of a cleanup handler.
class Cleanups
{
public:
    IOChannel::CleanupHandler Handler()
    {
        return [this](int error) {
            std::lock_guard const lock(mMutex);
            mErrors.push_back(error);
            mChanged.notify_all();
        };
    }

    /// What the first call says, when it has come.
    int Wait()
    {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [this] { return !mErrors.empty(); });
        return mErrors.front();
    }

    int Count()
    {
        std::lock_guard const lock(mMutex);
        return static_cast<int>(mErrors.size());
    }

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<int> mErrors;
};

class ChannelTest : public ::testing::Test
{
protected:
    /// A channel over a new file of that content; its descriptor, which stood at `position`, is closed again.
    IOChannelRef Open(std::string const& content, int access, off_t position = 0,
                      IOChannel::CleanupHandler cleanup = nullptr)
    {
        mPath = mDirectory.File("file", content);
        int const descriptor = open(mPath.c_str(), access);
        if (descriptor < 0 || lseek(descriptor, position, SEEK_SET) != position)
            throw std::runtime_error("cannot open " + mPath.string());
        IOChannelRef channel = IOChannel::Create(descriptor, std::move(cleanup));
        close(descriptor);
        EXPECT_TRUE(channel);
        return channel;
    }

    TemporaryDirectory mDirectory;
    std::filesystem::path mPath;
};

template <class Row>
class ChannelTestWith : public ChannelTest, public ::testing::WithParamInterface<Row>
{
};

/// The two ways to have an operation performed.
struct FormRow
{
    char const* name;
    bool here;
};
inline constexpr FormRow kForms[] = {{"OnThePool", false}, {"Here", true}};
} // namespace KORVA::TESTS
