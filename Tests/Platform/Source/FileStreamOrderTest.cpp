// Reading and writing through one stream, one after the other, without a seek in between.
#include "Platform/FileStream.h"

#include "Support/RowName.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace KORVA
{
namespace
{
using PLATFORM::Access;
using PLATFORM::FileStream;
using PLATFORM::Lock;
using PLATFORM::OpenResult;
using PLATFORM::PathString;
using TESTS::RowName;
namespace fs = std::filesystem;

/// One operation, and how many bytes it moves.
struct Step
{
    enum Kind
    {
        kWrite,
        kRead,
        kSeek,
        kEnd
    };

    Kind kind;
    std::size_t count;
};

struct OrderRow
{
    char const* name;
    std::size_t size;
    std::vector<Step> steps;
};

class FileStreamOrder : public ::testing::TestWithParam<OrderRow>
{
protected:
    /// Byte `at` of the file before, and of what is written over it.
    static char Old(std::size_t at) { return static_cast<char>('a' + at % 23); }
    static char New(std::size_t at) { return static_cast<char>('A' + at % 19); }

    TESTS::TemporaryDirectory mDirectory;
};

TEST_P(FileStreamOrder, MovesTheBytesOfAPlainFile)
{
    std::string model;
    for (std::size_t at = 0; at < GetParam().size; ++at)
        model += Old(at);
    fs::path const path = mDirectory.File("file", model);
    int descriptor = -1;
    ASSERT_EQ(
        PLATFORM::OpenFile(*PathString::From(path.u16string()), Access::kReadWrite, Lock::kNone, descriptor),
        OpenResult::kOpened);
    auto stream = FileStream::Over(descriptor, "r+b");
    ASSERT_NE(stream, nullptr);
    std::size_t position = 0;
    for (Step const& step : GetParam().steps)
    {
        if (step.kind == Step::kSeek || step.kind == Step::kEnd)
        {
            position = step.kind == Step::kSeek ? step.count : model.size();
            EXPECT_TRUE(stream->Seek(static_cast<std::int64_t>(position), SEEK_SET));
        }
        else if (step.kind == Step::kWrite)
        {
            std::string written;
            for (std::size_t at = position; at < position + step.count; ++at)
                written += New(at);
            EXPECT_EQ(stream->Write(written.data(), written.size()), written.size());
            model.resize(std::max(model.size(), position + step.count));
            model.replace(position, step.count, written);
            position += step.count;
        }
        else
        {
            std::string read(step.count, '*');
            std::size_t const there = std::min(step.count, model.size() - position);
            EXPECT_EQ(stream->Read(read.data(), step.count), there);
            EXPECT_TRUE(read.substr(0, there) == model.substr(position, there));
            position += there;
        }
        EXPECT_EQ(stream->Tell(), static_cast<std::int64_t>(position));
    }
    EXPECT_EQ(stream->LostBytes(), 0u);
    EXPECT_EQ(stream->FirstError(), 0);
    stream.reset();
    EXPECT_TRUE(TESTS::Content(path) == model);
}

OrderRow const kOrders[] = {
    {"ReadOfAPageAfterAWrite", 10'000, {{Step::kSeek, 5'000}, {Step::kWrite, 100}, {Step::kRead, 4'096}}},
    {"ReadOfMoreThanAPageAfterAWrite",
     10'000,
     {{Step::kSeek, 100}, {Step::kWrite, 100}, {Step::kRead, 9'000}, {Step::kWrite, 10}}},
    {"ReadOfLittleAfterAWrite", 10'000, {{Step::kWrite, 1}, {Step::kRead, 1}, {Step::kRead, 4'096}}},
    {"ReadAtTheEndAfterAWriteThere", 10'000, {{Step::kEnd, 0}, {Step::kWrite, 100}, {Step::kRead, 5'000}}},
    {"WriteAfterARead", 10'000, {{Step::kRead, 10}, {Step::kWrite, 100}, {Step::kRead, 5'000}}},
    {"WriteAfterAReadOfAPage", 10'000, {{Step::kRead, 4'096}, {Step::kWrite, 4'096}, {Step::kRead, 4'096}}},
    {"WriteAfterTheEndWasRead", 10, {{Step::kRead, 100}, {Step::kWrite, 20}, {Step::kRead, 1}}},
    {"TurnsByBytes",
     100,
     {{Step::kRead, 1},
      {Step::kWrite, 1},
      {Step::kRead, 1},
      {Step::kWrite, 1},
      {Step::kRead, 90},
      {Step::kWrite, 50},
      {Step::kRead, 1},
      {Step::kWrite, 5}}},
    {"MuchOfBoth",
     300'000,
     {{Step::kWrite, 100'000}, {Step::kRead, 100'000}, {Step::kWrite, 100'000}, {Step::kRead, 10}}},
};
INSTANTIATE_TEST_SUITE_P(Orders, FileStreamOrder, ::testing::ValuesIn(kOrders), RowName());
} // namespace
} // namespace KORVA
