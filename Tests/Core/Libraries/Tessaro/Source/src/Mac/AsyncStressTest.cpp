// Thousands of operations of all kinds on several files from several threads, checked byte for byte.
#include "Mac/AsyncFixture.h"

#include <array>

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using TESTS::AsyncTest;
using TESTS::Content;
using TESTS::PatternAt;
namespace fs = std::filesystem;

constexpr std::size_t kThreads = 4;
constexpr std::size_t kOperationsOfThread = 2'500;
constexpr std::size_t kFiles = 8;
constexpr std::size_t kOutstanding = 32;

/// A file's regions are of one length, and each belongs to one operation.
constexpr std::array<std::size_t, kFiles> kLengths{1, 7, 64, 200, 511, 512, 1000, 4096};
constexpr std::size_t kRegions = kThreads * ((kOperationsOfThread + kFiles - 1) / kFiles);

/// What the files have at first and what is written, as numbers of patterns.
constexpr std::size_t Before(std::size_t file) { return file; }
constexpr std::size_t After(std::size_t file) { return kFiles + file; }

struct Place
{
    std::size_t file;
    std::size_t offset;
    std::size_t length;
    bool writes;
    bool waits;
};

Place PlaceOf(std::size_t thread, std::size_t operation)
{
    std::size_t const file = operation % kFiles;
    std::size_t const region = operation / kFiles * kThreads + thread;
    std::size_t const kind = (operation + operation / kFiles + thread) % 4;
    return {file, region * kLengths[file], kLengths[file], kind % 2 == 0,
            kind == 3 || (kind == 0 && region % 3 == 0)};
}

std::string BytesOfRegion(Place const& place, std::size_t pattern)
{
    std::string bytes(place.length, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = PatternAt(place.offset + i, pattern);
    return bytes;
}

class AsyncStress : public AsyncTest
{
protected:
    AsyncStress()
    {
        for (std::size_t file = 0; file < kFiles; ++file)
        {
            std::string const content = TESTS::Pattern(kRegions * kLengths[file], Before(file));
            mPaths.push_back(mDirectory.File(std::to_string(file), content));
            mFacades.push_back(Open(mPaths.back(), IO::kStreamReadWrite));
        }
    }

    /// One operation under way, with its bytes.
    struct Slot
    {
        Place place{};
        std::string bytes;
        IAsyncTaskPtr task;
    };

    void Begin(Slot& slot) const
    {
        Place const& place = slot.place;
        auto const offset = static_cast<int64>(place.offset);
        Provider const& facade = mFacades[place.file];
        slot.task.Reset();
        if (place.writes)
        {
            slot.bytes = BytesOfRegion(place, After(place.file));
            ASSERT_EQ(place.waits
                          ? WriterOf(facade).WriteSync(offset, slot.bytes.data(), place.length)
                          : WriterOf(facade).WriteAsync(offset, slot.bytes.data(), place.length, slot.task),
                      0);
        }
        else
        {
            slot.bytes.assign(place.length, '\0');
            ASSERT_EQ(place.waits
                          ? ReaderOf(facade).ReadSync(offset, slot.bytes.data(), place.length)
                          : ReaderOf(facade).ReadAsync(offset, slot.bytes.data(), place.length, slot.task),
                      0);
        }
    }

    static void End(Slot const& slot)
    {
        if (slot.task)
        {
            EXPECT_EQ(EndOf(slot.task), 0);
        }
        // What was written is still as it was; what was read is what the file had at first.
        std::size_t const pattern = slot.place.writes ? After(slot.place.file) : Before(slot.place.file);
        EXPECT_TRUE(slot.bytes == BytesOfRegion(slot.place, pattern));
    }

    void RunThread(std::size_t thread) const
    {
        std::vector<Slot> slots(kOutstanding);
        for (std::size_t operation = 0; operation < kOperationsOfThread; ++operation)
        {
            Slot& slot = slots[operation % kOutstanding];
            if (operation >= kOutstanding)
                End(slot);
            slot.place = PlaceOf(thread, operation);
            Begin(slot);
        }
        for (Slot const& slot : slots)
            End(slot);
    }

    std::vector<fs::path> mPaths;
    std::vector<Provider> mFacades;
};

TEST_F(AsyncStress, TenThousandOperationsOnEightFiles)
{
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([this, thread] { RunThread(thread); });
    for (std::thread& thread : threads)
        thread.join();
    std::vector<std::string> expected;
    for (std::size_t file = 0; file < kFiles; ++file)
        expected.push_back(TESTS::Pattern(kRegions * kLengths[file], Before(file)));
    std::size_t kinds[2][2] = {};
    for (std::size_t thread = 0; thread < kThreads; ++thread)
        for (std::size_t operation = 0; operation < kOperationsOfThread; ++operation)
        {
            Place const place = PlaceOf(thread, operation);
            ++kinds[place.writes][place.waits];
            if (place.writes)
                expected[place.file].replace(place.offset, place.length,
                                             BytesOfRegion(place, After(place.file)));
        }
    for (std::size_t file = 0; file < kFiles; ++file)
        EXPECT_TRUE(Content(mPaths[file]) == expected[file]) << file;
    // Of each kind there were many.
    for (auto const& forms : kinds)
        for (std::size_t count : forms)
            EXPECT_GE(count, 500u);
}
} // namespace
} // namespace KORVA
