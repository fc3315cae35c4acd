// What a stream tells of bytes that the system refuses.
#include "Platform/FileStream.h"

#include "Platform/Source/FreshProcess.h"
#include "Platform/Source/ResourceLimit.h"
#include "Support/RowName.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
using PLATFORM::FileStream;
namespace fs = std::filesystem;

constexpr std::int64_t kLimit = 65'536;

/// One operation on a stream over a file of 1,000 bytes that may not grow beyond 65,536.
struct Step
{
    enum Kind
    {
        kWrite,
        kSeekTo,
        kSeekBy,
        kRead,
        kWriteOut,
        kFlush,
        kMakeRoom
    };

    Kind kind;
    std::int64_t count;
};

struct LossRow
{
    char const* name;
    std::vector<Step> steps;
    std::uint64_t lost;
    int error;
    std::int64_t position;
    std::int64_t size;
};

class FileStreamLoss : public ::testing::TestWithParam<LossRow>
{
protected:
    TemporaryDirectory mDirectory;
};

TEST_P(FileStreamLoss, IsCounted)
{
    ExpectInFreshProcess(mDirectory, [&](fs::path const&) {
        std::signal(SIGXFSZ, SIG_IGN);
        fs::path const path = mDirectory.File("file", std::string(1'000, 'x'));
        auto stream = FileStream::Over(open(path.c_str(), O_RDWR | O_CLOEXEC), "r+b");
        ASSERT_NE(stream, nullptr);
        std::optional<ResourceLimit> limit(std::in_place, RLIMIT_FSIZE, kLimit);
        std::string bytes;
        for (Step const& step : GetParam().steps)
        {
            bytes.assign(static_cast<std::size_t>(std::max<std::int64_t>(step.count, 0)), 'y');
            switch (step.kind)
            {
            case Step::kWrite:
                while (!bytes.empty())
                    bytes.erase(0, stream->Write(bytes.data(), bytes.size()));
                break;
            case Step::kSeekTo:
                EXPECT_TRUE(stream->Seek(step.count, SEEK_SET));
                break;
            case Step::kSeekBy:
                EXPECT_TRUE(stream->Seek(step.count, SEEK_CUR));
                break;
            case Step::kRead:
                EXPECT_LE(stream->Read(bytes.data(), bytes.size()), bytes.size());
                break;
            case Step::kWriteOut:
                EXPECT_EQ(stream->WriteOut(), step.count != 0);
                break;
            case Step::kFlush:
                EXPECT_EQ(stream->FlushToDevice(), step.count != 0);
                break;
            case Step::kMakeRoom:
                limit.reset();
                break;
            }
        }
        EXPECT_EQ(stream->LostBytes(), GetParam().lost);
        EXPECT_EQ(stream->FirstError(), GetParam().error);
        EXPECT_EQ(stream->Tell(), GetParam().position);
        stream.reset();
        EXPECT_EQ(static_cast<std::int64_t>(fs::file_size(path)), GetParam().size);
    });
}

LossRow const kLosses[] = {
    {"NothingYet",
     {{Step::kSeekTo, 65'000}, {Step::kWrite, 536}, {Step::kWriteOut, 1}},
     0,
     0,
     65'536,
     65'536},
    {"HeldBack", {{Step::kSeekTo, 65'536}, {Step::kWrite, 100}}, 0, 0, 65'636, 1'000},
    {"RefusedWhenWrittenOut",
     {{Step::kSeekTo, 65'536}, {Step::kWrite, 100}, {Step::kWriteOut, 0}, {Step::kWriteOut, 1}},
     100,
     EFBIG,
     65'536,
     1'000},
    {"RefusedWhenFlushed",
     {{Step::kSeekTo, 65'536}, {Step::kWrite, 100}, {Step::kFlush, 0}, {Step::kFlush, 1}},
     100,
     EFBIG,
     65'536,
     1'000},
    {"SomeOfIt",
     {{Step::kSeekTo, 65'500}, {Step::kWrite, 100}, {Step::kWriteOut, 0}},
     64,
     EFBIG,
     65'536,
     65'536},
    {"RefusedWhenSoughtFromTheStart",
     {{Step::kSeekTo, 65'536}, {Step::kWrite, 100}, {Step::kSeekTo, 10}},
     100,
     EFBIG,
     10,
     1'000},
    {"RefusedWhenSoughtFromThePosition",
     {{Step::kSeekTo, 65'536}, {Step::kWrite, 100}, {Step::kSeekBy, -200}},
     100,
     EFBIG,
     65'436,
     1'000},
    {"RefusedWhenRead",
     {{Step::kSeekTo, 65'500}, {Step::kWrite, 100}, {Step::kSeekTo, 0}, {Step::kRead, 10}},
     64,
     EFBIG,
     10,
     65'536},
    {"RefusedInTheMiddleOfAWrite",
     {{Step::kSeekTo, 60'000},
      {Step::kWrite, 5'536},
      {Step::kWrite, 4'000},
      {Step::kWrite, 4'000},
      {Step::kWriteOut, 0}},
     8'000,
     EFBIG,
     65'536,
     65'536},
    {"WhatComesAfterwardsIsThere",
     {{Step::kSeekTo, 65'536},
      {Step::kWrite, 100},
      {Step::kWriteOut, 0},
      {Step::kMakeRoom, 0},
      {Step::kWrite, 10},
      {Step::kWriteOut, 1}},
     100,
     EFBIG,
     65'546,
     65'546},
};
INSTANTIATE_TEST_SUITE_P(Losses, FileStreamLoss, ::testing::ValuesIn(kLosses), RowName());

/// A megabyte to a device that is always full, in pieces of any size.
struct FullRow
{
    char const* name;
    std::size_t piece;
};

class FullDevice : public ::testing::TestWithParam<FullRow>
{
};

TEST_P(FullDevice, TakesAndLosesAll)
{
    constexpr std::size_t kTotal = 1'000'000;
    auto const stream = FileStream::Over(open("/dev/full", O_RDWR | O_CLOEXEC), "r+b");
    ASSERT_NE(stream, nullptr);
    std::string const bytes(GetParam().piece, 'x');
    std::size_t left = kTotal;
    while (left > 0)
        left -= stream->Write(bytes.data(), std::min(left, bytes.size()));
    EXPECT_FALSE(stream->WriteOut() && stream->LostBytes() < kTotal);
    EXPECT_EQ(stream->LostBytes(), kTotal);
    EXPECT_EQ(stream->FirstError(), ENOSPC);
}

FullRow const kPieces[] = {
    {"Bytes", 1}, {"OddPieces", 999}, {"Pages", 4'096}, {"MoreThanPages", 10'000}, {"AllAtOnce", 1'000'000}};
INSTANTIATE_TEST_SUITE_P(Pieces, FullDevice, ::testing::ValuesIn(kPieces), RowName());

TEST(FailingRead, IsTold)
{
    // A directory can be opened for reading, and not be read.
    auto const stream = FileStream::Over(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC), "rb");
    ASSERT_NE(stream, nullptr);
    char byte = 0;
    EXPECT_EQ(stream->Read(&byte, 1), 0u);
    EXPECT_EQ(stream->FirstError(), EISDIR);
    EXPECT_EQ(stream->LostBytes(), 0u);
}

TEST(FullyDeliveredPipe, LosesNothing)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    auto const stream = FileStream::Over(ends[1], "wb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->Write("abc", 3), 3u);
    EXPECT_TRUE(stream->FlushToDevice());
    EXPECT_EQ(stream->LostBytes(), 0u);
    char read[3] = {};
    EXPECT_EQ(::read(ends[0], read, 3), 3);
    close(ends[0]);
}
/// A pipe with nobody who reads takes some bytes, and then none; emptied, it takes them again.
TEST(FullPipe, LosesWhatItWasGivenAndNoMore)
{
    TemporaryDirectory const directory;
    fs::path const path = directory.Path() / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    int const descriptor = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    std::string const page(4'096, 'x');
    while (write(descriptor, page.data(), page.size()) > 0)
    {}
    auto const stream = FileStream::Over(descriptor, "r+b");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->Write("0123456789", 10), 10u);
    EXPECT_FALSE(stream->WriteOut());
    EXPECT_EQ(stream->LostBytes(), 10u);
    EXPECT_EQ(stream->FirstError(), EAGAIN);
    std::string emptied(1 << 20, ' ');
    EXPECT_GT(read(descriptor, emptied.data(), emptied.size()), 0);
    EXPECT_EQ(stream->Write("abc", 3), 3u);
    EXPECT_TRUE(stream->WriteOut());
    EXPECT_EQ(stream->LostBytes(), 10u);
}
} // namespace
} // namespace KORVA::TESTS
