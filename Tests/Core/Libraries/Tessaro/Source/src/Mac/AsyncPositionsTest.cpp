// The position of a file's stream and the offsets of reader and writer.
#include "Mac/AsyncFixture.h"

namespace KORVA
{
namespace
{
using IO::IAsyncTaskPtr;
using IO::IDataProvider;
using TESTS::AsyncTest;
using TESTS::AsyncTestWith;
using TESTS::Content;
using TESTS::DescriptorsOf;
using TESTS::Pattern;
using TESTS::RowName;
namespace fs = std::filesystem;

class AsyncPositions : public AsyncTest
{
};

TEST_F(AsyncPositions, SecondAggregateResetsThePositionToo)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    for (bool const readerFirst : {true, false})
    {
        Provider const facade = Open(path, IO::kStreamMode4);
        char read = 0;
        auto const use = [&](bool reader) {
            EXPECT_EQ(facade->SetPosition(7, IDataProvider::kFromStart), 0);
            EXPECT_EQ(reader ? ReaderOf(facade).ReadSync(0, &read, 1) : WriterOf(facade).WriteSync(0, "0", 1),
                      0);
        };
        use(readerFirst);
        EXPECT_EQ(facade->GetPosition(), 0);
        use(!readerFirst);
        EXPECT_EQ(facade->GetPosition(), 0);
        EXPECT_EQ(DescriptorsOf(path).size(), 2u);
        use(readerFirst);
        EXPECT_EQ(facade->GetPosition(), 7);
        use(!readerFirst);
        EXPECT_EQ(facade->GetPosition(), 7);
    }
}

TEST_F(AsyncPositions, WhatTheStreamHasWrittenIsThere)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    EXPECT_EQ(facade->SetPosition(4, IDataProvider::kFromStart), 0);
    EXPECT_EQ(facade->Write("abc", 3), 0);
    char read[10] = {};
    EXPECT_EQ(ReaderOf(facade).ReadSync(0, read, 10), 0);
    EXPECT_EQ(std::string(read, 10), "0123abc789");
}

/// Where the stream and its descriptor stand when the reader is used for the first time.
struct PositionRow
{
    char const* name;
    int64 position;
    int32 count;
};

class AsyncOffsets : public AsyncTestWith<PositionRow>
{
protected:
    static constexpr std::size_t kSize = 100'000;

    /// The stream reads ahead, and its descriptor then stands somewhere else.
    static void MoveStream(Provider const& facade)
    {
        EXPECT_EQ(facade->SetPosition(GetParam().position, IDataProvider::kFromStart), 0);
        if (GetParam().count == 0)
            return;
        std::string read(static_cast<std::size_t>(GetParam().count), '\0');
        int32 count = GetParam().count;
        EXPECT_EQ(facade->Read(read.data(), count), 0);
    }
};

TEST_P(AsyncOffsets, CountFromTheStartOfTheFile)
{
    std::string content = Pattern(kSize);
    fs::path const path = mDirectory.File("file", content);
    Provider const facade = Open(path, IO::kStreamReadWrite);
    MoveStream(facade);
    char read[16] = {};
    EXPECT_EQ(ReaderOf(facade).ReadSync(5, read, 16), 0);
    EXPECT_EQ(std::string(read, 16), content.substr(5, 16));
    MoveStream(facade);
    EXPECT_EQ(WriterOf(facade).WriteSync(50'000, "abcd", 4), 0);
    MoveStream(facade);
    IAsyncTaskPtr task;
    ASSERT_EQ(WriterOf(facade).WriteAsync(3, "efgh", 4, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    ASSERT_EQ(ReaderOf(facade).ReadAsync(49'995, read, 16, task), 0);
    EXPECT_EQ(EndOf(task), 0);
    content.replace(50'000, 4, "abcd");
    content.replace(3, 4, "efgh");
    EXPECT_EQ(std::string(read, 16), content.substr(49'995, 16));
    EXPECT_TRUE(Content(path) == content);
}

PositionRow const kPositions[] = {
    {"FreshStream", 0, 0},
    {"ReadAheadFromTheStart", 0, 10},
    {"ReadAheadFromTheMiddle", 60'000, 10},
    {"AtTheEndOfWhatWasReadAhead", 0, 4096},
    {"JustPutElsewhere", 12'345, 0},
    {"ReadToTheEnd", 99'000, 5'000},
    {"PutBehindTheEnd", 200'000, 0},
};
INSTANTIATE_TEST_SUITE_P(Positions, AsyncOffsets, ::testing::ValuesIn(kPositions), RowName());
} // namespace
} // namespace KORVA
