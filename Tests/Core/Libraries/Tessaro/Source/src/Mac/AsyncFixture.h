// What the tests of reading and writing at explicit positions share.
#pragma once

#include "Mac/FileProviderFixture.h"
#include <tessio/TessIO/IAsyncReader.h>
#include <tessio/TessIO/IAsyncWriter.h>

#include <chrono>
#include <cstddef>
#include <thread>
#include <vector>

namespace KORVA::TESTS
{
/// Waits for what nothing announces. False when it has not come after a time in which it must have.
template <class Condition>
bool ComesTrue(Condition condition)
{
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// The byte at an offset of the file of that number: neighbours differ, and so do pages, MiBs and files.
inline char PatternAt(std::size_t offset, std::size_t file = 0)
{
    return static_cast<char>(offset * 7 + offset / 4096 * 11 + offset / (1u << 20) * 13 + file * 101);
}

inline std::string Pattern(std::size_t size, std::size_t file = 0)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = PatternAt(i, file);
    return bytes;
}

class AsyncTest : public FileProviderTest
{
protected:
    /// The facade's own, which must be there.
    template <class Facade>
    static IO::IAsyncReader& ReaderOf(Facade const& facade)
    {
        return static_cast<IO::IAsyncReader&>(Aggregated(*facade, IO::IID_ASYNC_READER));
    }
    template <class Facade>
    static IO::IAsyncWriter& WriterOf(Facade const& facade)
    {
        return static_cast<IO::IAsyncWriter&>(Aggregated(*facade, IO::IID_ASYNC_WRITER));
    }

    static Logged CantEnableReader()
    {
        return {kFileSource, "void KORVA::IO::MAsyncReader::EnableAsync()", 121,
                "Unable to enable asynchronous reading for file."};
    }
    static Logged CantEnableWriter()
    {
        return {kFileSource, "void KORVA::IO::MAsyncWriter::EnableAsync()", 172,
                "Unable to enable asynchronous reading for file."};
    }
    static Logged ChannelBroke(int error)
    {
        return {kFileSource, "ErrCode KORVA::IO::FileDataProvider::EnableAsync()_block_invoke", 576,
                "GCD IO channel got broke. Error " + std::to_string(error)};
    }

    static Logged ReadAsyncFailed(int error)
    {
        return {kFileSource,
                "ErrCode KORVA::IO::FileDataProvider::ReadAsync(int64, void *, size_t, IAsyncTaskPtr "
                "&)_block_invoke",
                597, "GCD asynchronous read returned error " + std::to_string(error)};
    }
    static Logged ReadAsyncNotPlaced()
    {
        return {kFileSource,
                "ErrCode KORVA::IO::FileDataProvider::ReadAsync(int64, void *, size_t, IAsyncTaskPtr "
                "&)_block_invoke",
                613, "GCD failed in dispatch_data_apply"};
    }
    static Logged ReadAsyncWithoutChannel()
    {
        return {kFileSource,
                "ErrCode KORVA::IO::FileDataProvider::ReadAsync(int64, void *, size_t, IAsyncTaskPtr &)", 621,
                "File channel is not initialized."};
    }

    static Logged ReadSyncFailed(int error)
    {
        return {kFileSource,
                "ErrCode KORVA::IO::FileDataProvider::ReadSync(int64, void *, size_t)_block_invoke", 637,
                "GCD asynchronous read returned error " + std::to_string(error)};
    }
    static Logged ReadSyncWithoutChannel()
    {
        return {kFileSource, "ErrCode KORVA::IO::FileDataProvider::ReadSync(int64, void *, size_t)", 660,
                "File channel is not initialized."};
    }

    static Logged WriteAsyncFailed(int error)
    {
        return {kFileSource,
                "ErrCode KORVA::IO::FileDataProvider::WriteAsync(int64, const void *, size_t, IAsyncTaskPtr "
                "&)_block_invoke",
                682, "GCD Writing failed. Error " + std::to_string(error)};
    }
    static Logged WriteAsyncWithoutData()
    {
        return {
            kFileSource,
            "ErrCode KORVA::IO::FileDataProvider::WriteAsync(int64, const void *, size_t, IAsyncTaskPtr &)",
            697, "Failed to create dispatch data object."};
    }
    static Logged WriteAsyncWithoutChannel()
    {
        return {
            kFileSource,
            "ErrCode KORVA::IO::FileDataProvider::WriteAsync(int64, const void *, size_t, IAsyncTaskPtr &)",
            702, "File channel is not initialized."};
    }

    static Logged WriteSyncFailed(int error)
    {
        return {kFileSource,
                "ErrCode KORVA::IO::FileDataProvider::WriteSync(int64, const void *, size_t)_block_invoke",
                722, "GCD Writing failed. Error " + std::to_string(error)};
    }
    static Logged WriteSyncWithoutData()
    {
        return {kFileSource, "ErrCode KORVA::IO::FileDataProvider::WriteSync(int64, const void *, size_t)",
                735, "Failed to create dispatch data object."};
    }
    static Logged WriteSyncWithoutChannel()
    {
        return {kFileSource, "ErrCode KORVA::IO::FileDataProvider::WriteSync(int64, const void *, size_t)",
                747, "File channel is not initialized."};
    }

    /// Does once what a test is going to do without descriptors: a sanitizer opens a pipe to look at the
    /// first object of each class that it meets.
    void Rehearse()
    {
        Provider const facade = Open(mDirectory.File("rehearsal", "0123456789"), IO::kStreamReadWrite);
        EXPECT_EQ(facade->SetPosition(1, IO::IDataProvider::kFromStart), 0);
        EXPECT_EQ(facade->GetPosition(), 1);
        char byte = 0;
        IO::IAsyncTaskPtr task;
        EXPECT_EQ(ReaderOf(facade).ReadSync(0, &byte, 1), 0);
        EXPECT_EQ(ReaderOf(facade).ReadAsync(0, &byte, 1, task), 0);
        EXPECT_EQ(EndOf(task), 0);
        EXPECT_EQ(WriterOf(facade).WriteSync(0, "a", 1), 0);
        EXPECT_EQ(WriterOf(facade).WriteAsync(0, "a", 1, task), 0);
        EXPECT_EQ(EndOf(task), 0);
        EXPECT_EQ(task->CancelTask(), 0);
        EXPECT_EQ(log.Take().size(), 1u);
    }

    /// What the task came to.
    static ErrCode EndOf(IO::IAsyncTaskPtr const& task)
    {
        EXPECT_EQ(task->WaitForCompletion(), 0);
        EXPECT_TRUE(task->IsCompleted());
        return task->GetStatus();
    }

private:
    static IObject& Aggregated(IO::IDataProvider& facade, GUID const& iid)
    {
        IObject* found = nullptr;
        if (facade.QueryInterface(iid, &found) != 0 || !found)
            throw std::runtime_error("the facade has no such aggregate");
        return *found;
    }
};

template <class Row>
class AsyncTestWith : public AsyncTest, public ::testing::WithParamInterface<Row>
{
};
} // namespace KORVA::TESTS
