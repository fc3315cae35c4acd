// The buffer over a real file.
#include "BufferedFixture.h"
#include "Support/TemporaryDirectory.h"

#include <filesystem>

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr int kSize = 100'000;

/// No two stretches of it are alike.
std::string Pattern()
{
    std::string content;
    for (int i = 0; i < kSize; ++i)
        content += static_cast<char>((i * 7 + i / 251) % 256);
    return content;
}

class BufferedFileTest : public LibraryTest
{
protected:
    void Open(std::string const& content, int size, IO::BufferMode mode)
    {
        path = directory.File("file", content);
        file = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
        ASSERT_EQ(file->InitURIBased(*MakeURI(path), IO::kStreamReadWrite, nullptr), 0);
        buffered = COREREGISTRY::CreateObject<IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
        ASSERT_EQ(buffered->Init(*file, size, mode), 2);
    }

    /// What is in the file once everything is closed.
    std::string Closed()
    {
        buffered.Reset();
        file.Reset();
        return Content(path);
    }

    std::string Read(int32 wanted)
    {
        std::string text(static_cast<std::size_t>(wanted), '*');
        int32 count = wanted;
        EXPECT_EQ(buffered->Read(text.data(), count), 0);
        text.resize(static_cast<std::size_t>(count));
        return text;
    }

    void Write(std::string const& text) { EXPECT_EQ(buffered->Write(text.data(), text.size()), 0); }

    void MoveTo(int64 position) { EXPECT_EQ(buffered->SetPosition(position, IDataProvider::kFromStart), 0); }

    TemporaryDirectory directory;
    std::filesystem::path path;
    TInterfacePtr<IDataProvider> file;
    TInterfacePtr<IBufferedDataProvider> buffered;
};

struct FileRow
{
    char const* name;
    int size;
    IO::BufferMode mode;
};

class TinyReadsTest : public BufferedFileTest, public ::testing::WithParamInterface<FileRow>
{
};

FileRow const kReaders[] = {
    {"OneByte", 1, IO::kBufferReads},
    {"SevenBytes", 7, IO::kBufferReads},
    {"OnePage", 4096, IO::kBufferReads},
    {"DividesTheFile", 10'000, IO::kBufferReads},
    {"OneByteShort", kSize - 1, IO::kBufferReads},
    {"WholeFile", kSize, IO::kBufferReads},
    {"MoreThanTheFile", 2 * kSize, IO::kBufferReads},
    {"OnePageForBoth", 4096, IO::kBufferBoth},
};

TEST_P(TinyReadsTest, GiveTheBytesOfTheFile)
{
    std::string const content = Pattern();
    Open(content, GetParam().size, GetParam().mode);
    std::string joined;
    for (int32 i = 0; joined.size() < content.size(); ++i)
    {
        std::string const piece = Read(1 + i % 13);
        ASSERT_FALSE(piece.empty());
        joined += piece;
        ASSERT_EQ(buffered->GetPosition(), static_cast<int64>(joined.size()));
    }
    EXPECT_TRUE(joined == content);
    EXPECT_EQ(Read(5), "");
    EXPECT_TRUE(Closed() == content);
}

TEST_P(TinyReadsTest, GiveTheBytesOfAnyPlace)
{
    std::string const content = Pattern();
    Open(content, GetParam().size, GetParam().mode);
    for (std::size_t i = 0; i < 500; ++i)
    {
        std::size_t const place = i * 7919 % (kSize - 20);
        MoveTo(static_cast<int64>(place));
        ASSERT_EQ(Read(3), content.substr(place, 3)) << place;
        ASSERT_EQ(buffered->SetPosition(-2, IDataProvider::kFromCurrent), 0);
        ASSERT_EQ(Read(5), content.substr(place + 1, 5)) << place;
    }
}

INSTANTIATE_TEST_SUITE_P(Buffered, TinyReadsTest, ::testing::ValuesIn(kReaders), RowName());

class TinyWritesTest : public BufferedFileTest, public ::testing::WithParamInterface<FileRow>
{
};

FileRow const kWriters[] = {
    {"OneByte", 1, IO::kBufferWrites},         {"SevenBytes", 7, IO::kBufferWrites},
    {"OnePage", 4096, IO::kBufferWrites},      {"MoreThanTheFile", 2 * kSize, IO::kBufferWrites},
    {"OnePageForBoth", 4096, IO::kBufferBoth},
};

TEST_P(TinyWritesTest, ReachTheFile)
{
    std::string const content = Pattern();
    Open("to be overwritten", GetParam().size, GetParam().mode);
    std::size_t written = 0;
    for (std::size_t i = 0; written < content.size(); ++i)
    {
        std::string const piece = content.substr(written, 1 + i % 13);
        Write(piece);
        written += piece.size();
        ASSERT_EQ(buffered->GetPosition(), static_cast<int64>(written));
    }
    EXPECT_TRUE(Closed() == content);
}

INSTANTIATE_TEST_SUITE_P(Buffered, TinyWritesTest, ::testing::ValuesIn(kWriters), RowName());

TEST_F(BufferedFileTest, FromTheEndCountsBackwardsUnlikeInTheFile)
{
    Open("0123456789", 4, IO::kBufferReads);
    ASSERT_EQ(file->SetPosition(4, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(file->GetPosition(), 14);
    EXPECT_EQ(buffered->SetPosition(0, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(buffered->GetPosition(), 10);
    EXPECT_EQ(buffered->SetPosition(4, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(buffered->GetPosition(), 6);
    EXPECT_EQ(Read(9), "6789");
}

TEST_F(BufferedFileTest, LargeReadBehindAWrite)
{
    Open("0123456789", 4, IO::kBufferBoth);
    Write("ab");
    EXPECT_EQ(Read(9), "23456789");
    EXPECT_EQ(Closed(), "ab23456789");
}

TEST_F(BufferedFileTest, LargeWriteBehindARead)
{
    Open("0123456789", 4, IO::kBufferBoth);
    EXPECT_EQ(Read(2), "01");
    Write("abcdefghijkl");
    EXPECT_EQ(buffered->GetPosition(), 14);
    EXPECT_EQ(Closed(), "01abcdefghijkl");
}

TEST_F(BufferedFileTest, ReadsAndWritesInTurn)
{
    std::string expected(1000, '.');
    Open(expected, 16, IO::kBufferBoth);
    for (std::size_t i = 0; i < 100; ++i)
    {
        std::size_t const place = i * 10;
        EXPECT_EQ(Read(3), "...");
        Write("ab");
        expected.replace(place + 3, 2, "ab");
        EXPECT_EQ(Read(5), ".....");
    }
    EXPECT_EQ(Read(1), "");
    EXPECT_EQ(Closed(), expected);
}

TEST_F(BufferedFileTest, SeekingBackInWhatWaitsDeliversUpToThere)
{
    Open("", 64, IO::kBufferWrites);
    Write("abcdefghij");
    EXPECT_EQ(buffered->SetPosition(-5, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(Closed(), "abcde");
}

TEST_F(BufferedFileTest, FlushedBytesCanBeCutOff)
{
    Open("0123456789", 64, IO::kBufferWrites);
    Write("abcdef");
    EXPECT_EQ(buffered->Size(), 10);
    EXPECT_EQ(buffered->SetSize(8), 0);
    EXPECT_EQ(buffered->Size(), 8);
    EXPECT_EQ(Closed(), "abcdef67");
}
} // namespace
} // namespace KORVA
