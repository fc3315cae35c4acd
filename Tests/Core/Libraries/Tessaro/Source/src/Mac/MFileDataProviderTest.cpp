// Reading, writing and moving about in a file.
#include "Mac/MFileDataProvider.h"

#include "Mac/FileProviderFixture.h"
#include "Platform/Source/ChildProcess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include <chrono>

namespace KORVA
{
namespace
{
using IO::IDataProvider;
using TESTS::Content;
using TESTS::FileProviderTest;
using TESTS::FileProviderTestWith;
using TESTS::kNothing;
using TESTS::Logged;
using TESTS::Reported;
using TESTS::RowName;
namespace fs = std::filesystem;

Logged const kWriteNull{"Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider",
                        "virtual OperationId KORVA::IO::FileDataProvider::Write(const void *, size_t)", 440,
                        "inBuffer == NULL"};
Logged const kReadNull{"Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider",
                       "virtual OperationId KORVA::IO::FileDataProvider::Read(void *, int32 &)", 480,
                       "outBuffer == NULL"};

struct ReadRow
{
    char const* name;
    int64 position;
    int32 wanted;
    bool null;
    OperationId result;
    int32 count;
    char const* bytes;
    int64 after;
    bool reported = false;
    ErrCode detail = 0;
};

class FileRead : public FileProviderTestWith<ReadRow>
{
protected:
    void ReadFrom(IDataProvider& provider)
    {
        ReadRow const& row = GetParam();
        ASSERT_EQ(provider.SetPosition(row.position, IDataProvider::kFromStart), 0);
        char buffer[17] = "****************";
        int32 count = row.wanted;
        EXPECT_EQ(provider.Read(row.null ? nullptr : buffer, count), row.result);
        EXPECT_EQ(count, row.count);
        EXPECT_STREQ(buffer, row.bytes);
        EXPECT_EQ(provider.GetPosition(), row.after);
        EXPECT_EQ(log.Take(), row.null ? std::vector<Logged>{kReadNull} : kNothing);
    }
};

TEST_P(FileRead, ReportsWhatItDoesNotFind)
{
    ReadRow const& row = GetParam();
    auto const reporter = TESTS::MakeReporter();
    IO::IURIPtr const uri = MakeURI(mDirectory.File("file", "0123456789"));
    Provider const provider = MakeFacade();
    ASSERT_EQ(provider->InitURIBased(*uri, IO::kStreamRead, reporter.Get()), 0);
    ReadFrom(*provider);
    std::vector<Reported> expected;
    if (row.reported)
        expected.push_back({uri.Get(), row.result, row.detail});
    EXPECT_EQ(reporter->reports, expected);
}

TEST_P(FileRead, NeedsNoReporter)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    ReadFrom(*Open(path, IO::kStreamReadWrite));
    ReadFrom(*Open(path, IO::kStreamMode3));
}

ReadRow const kReads[] = {
    {"FromTheStart", 0, 4, false, 0, 4, "0123************", 4},
    {"Everything", 0, 10, false, 0, 10, "0123456789******", 10},
    {"CutShort", 6, 8, false, 0, 4, "6789************", 10},
    {"LastByte", 9, 16, false, 0, 1, "9***************", 10},
    {"AtTheEnd", 10, 4, false, 3, 0, "****************", 10, true, 0},
    {"PastTheEnd", 12, 1, false, 3, 0, "****************", 12, true, 0},
    {"Nothing", 4, 0, false, 0, 0, "****************", 4},
    {"NothingAtTheEnd", 10, 0, false, 0, 0, "****************", 10},
    {"ToNull", 4, 3, true, 3, 0, "****************", 4, true, 13},
    {"ToNullAtTheEnd", 10, 1, true, 3, 0, "****************", 10, true, 13},
    {"NothingToNull", 4, 0, true, 13, 0, "****************", 4, true, 13},
    {"FewerThanNoneToNull", 4, -1, true, 13, 0, "****************", 4, true, 13},
};
INSTANTIATE_TEST_SUITE_P(Reads, FileRead, ::testing::ValuesIn(kReads), RowName());

struct MoveRow
{
    char const* name;
    int64 offset;
    int origin;
    int64 position;
};

class FileSetPosition : public FileProviderTestWith<MoveRow>
{
};

TEST_P(FileSetPosition, NeverFails)
{
    Provider const provider = Open(mDirectory.File("file", "0123456789"), IO::kStreamRead);
    ASSERT_EQ(provider->SetPosition(4, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->SetPosition(GetParam().offset, static_cast<IDataProvider::Offset>(GetParam().origin)),
              0);
    EXPECT_EQ(provider->GetPosition(), GetParam().position);
}

MoveRow const kMoves[] = {
    {"ToTheStart", 0, 0, 0},
    {"ToTheEnd", 10, 0, 10},
    {"PastTheEnd", 15, 0, 15},
    {"Beyond32Bits", 5000000000, 0, 5000000000},
    {"BeforeTheStart", -1, 0, 4},
    {"End", 0, 1, 10},
    {"EndPlusANegativeOffset", -3, 1, 7},
    {"EndPlusAPositiveOffset", 3, 1, 13},
    {"BackFromTheEndToTheStart", -10, 1, 0},
    {"BackFromTheEndBeforeTheStart", -11, 1, 4},
    {"NowhereFromHere", 0, 2, 4},
    {"ForwardFromHere", 2, 2, 6},
    {"ForwardFromHerePastTheEnd", 20, 2, 24},
    {"BackFromHere", -4, 2, 0},
    {"BackFromHereBeforeTheStart", -5, 2, 4},
    {"OriginAfterTheLast", 7, 3, 4},
    {"OriginBeforeTheFirst", 7, -1, 4},
    {"OriginFarOff", 0, 1000, 4},
};
INSTANTIATE_TEST_SUITE_P(Moves, FileSetPosition, ::testing::ValuesIn(kMoves), RowName());

class FileDataProvider : public FileProviderTest
{
protected:
    std::string ReadAt(IDataProvider& provider, int64 position, int32 wanted)
    {
        EXPECT_EQ(provider.SetPosition(position, IDataProvider::kFromStart), 0);
        std::string text(static_cast<std::size_t>(wanted), '*');
        EXPECT_EQ(provider.Read(text.data(), wanted), 0);
        text.resize(static_cast<std::size_t>(wanted));
        return text;
    }
};

TEST_F(FileDataProvider, SizeLeavesThePosition)
{
    Provider const provider = Open(mDirectory.File("file", "0123456789"), IO::kStreamReadWrite);
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(provider->GetPosition(), 0);
    for (int64 const position : {3, 10, 25})
    {
        ASSERT_EQ(provider->SetPosition(position, IDataProvider::kFromStart), 0);
        EXPECT_EQ(provider->Size(), 10);
        EXPECT_EQ(provider->GetPosition(), position);
    }
    EXPECT_TRUE(provider->AtEnd());
}

TEST_F(FileDataProvider, SizeCountsWhatIsNotYetInTheFile)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const provider = Open(path, IO::kStreamReadWrite);
    ASSERT_EQ(provider->SetPosition(0, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(provider->Write("abc", 3), 0);
    EXPECT_EQ(provider->GetPosition(), 13);
    EXPECT_EQ(provider->Size(), 13);
    EXPECT_EQ(provider->GetPosition(), 13);
    EXPECT_TRUE(provider->AtEnd());
}

TEST_F(FileDataProvider, EmptyFile)
{
    Provider const provider = Open(mDirectory.File("file", ""), IO::kStreamRead);
    EXPECT_EQ(provider->Size(), 0);
    EXPECT_TRUE(provider->AtEnd());
    char byte = '*';
    int32 count = 1;
    EXPECT_EQ(provider->Read(&byte, count), 3);
    EXPECT_EQ(count, 0);
}

TEST_F(FileDataProvider, EveryMissingReadIsReported)
{
    auto const reporter = TESTS::MakeReporter();
    IO::IURIPtr const uri = MakeURI(mDirectory.File("file", "01"));
    Provider const provider = MakeFacade();
    ASSERT_EQ(provider->InitURIBased(*uri, IO::kStreamReadWrite, reporter.Get()), 0);
    char buffer[4];
    int32 count = 4;
    EXPECT_EQ(provider->Read(buffer, count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(reporter->reports, std::vector<Reported>());
    for (int i = 0; i < 2; ++i)
    {
        count = 4;
        EXPECT_EQ(provider->Read(buffer, count), 3);
    }
    EXPECT_EQ(reporter->reports, (std::vector<Reported>{{uri.Get(), 3, 0}, {uri.Get(), 3, 0}}));
    ASSERT_EQ(provider->SetPosition(1, IDataProvider::kFromStart), 0);
    count = 4;
    EXPECT_EQ(provider->Read(buffer, count), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(reporter->reports.size(), 2u);
}

TEST_F(FileDataProvider, NothingButReadsIsReported)
{
    auto const reporter = TESTS::MakeReporter();
    Provider const provider = Open(mDirectory.File("file", "0123"), IO::kStreamReadWrite, reporter.Get());
    EXPECT_EQ(provider->Write(nullptr, 1), 13);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kWriteNull));
    EXPECT_EQ(provider->SetPosition(-1, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->SetPosition(0, static_cast<IDataProvider::Offset>(9)), 0);
    EXPECT_EQ(provider->SetSize(-1), 0);
    EXPECT_EQ(provider->Size(), 4);
    EXPECT_EQ(provider->Flush(), 0);
    fs::path const missing = mDirectory.Path() / "missing";
    EXPECT_EQ(MakeFacade()->InitURIBased(*MakeURI(missing), IO::kStreamRead, reporter.Get()), 26);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(OpenFailed(missing)));
    EXPECT_EQ(reporter->reports, std::vector<Reported>());
}

TEST_F(FileDataProvider, PipeIsReadWithoutWaiting)
{
    fs::path const path = mDirectory.Path() / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    int const writer = open(path.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(writer, 0);
    Provider const provider = Open(path, IO::kStreamRead);
    ASSERT_EQ(write(writer, "ab", 2), 2);
    char text[8] = {};
    int32 count = 7;
    EXPECT_EQ(provider->Read(text, count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(text, "ab");
    EXPECT_EQ(provider->Read(text, count), 3);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(provider->GetPosition(), 0);
    EXPECT_EQ(provider->Size(), 0);
    close(writer);
}

struct NullRow
{
    char const* name;
    int mode;
    std::size_t count;
};

class FileWriteFromNull : public FileProviderTestWith<NullRow>
{
};

TEST_P(FileWriteFromNull, IsRefusedWhateverTheCount)
{
    fs::path const path = mDirectory.File("file", "0123");
    Provider provider = Open(path, GetParam().mode);
    EXPECT_EQ(provider->Write(nullptr, GetParam().count), 13);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kWriteNull));
    EXPECT_EQ(provider->GetPosition(), 0);
    provider.Reset();
    EXPECT_EQ(Content(path), "0123");
}

NullRow const kNulls[] = {
    {"SomeBytes", 2, 3}, {"Nothing", 2, 0}, {"ReadOnly", 0, 3}, {"NothingReadOnly", 0, 0}};
INSTANTIATE_TEST_SUITE_P(Counts, FileWriteFromNull, ::testing::ValuesIn(kNulls), RowName());

TEST_F(FileDataProvider, WritingNothingTouchesNothing)
{
    fs::path const path = mDirectory.File("file", "0123");
    Provider provider = Open(path, IO::kStreamReadWrite);
    ASSERT_EQ(provider->SetPosition(9, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->Write("abc", 0), 0);
    EXPECT_EQ(provider->GetPosition(), 9);
    EXPECT_EQ(provider->Size(), 4);
    provider.Reset();
    EXPECT_EQ(Content(path), "0123");
    EXPECT_EQ(Open(path, IO::kStreamRead)->Write("abc", 0), 0);
}

TEST_F(FileDataProvider, WritesAndReadsInTurn)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider provider = Open(path, IO::kStreamReadWrite);
    EXPECT_EQ(ReadAt(*provider, 0, 3), "012");
    ASSERT_EQ(provider->SetPosition(3, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->Write("abc", 3), 0);
    EXPECT_EQ(provider->GetPosition(), 6);
    EXPECT_EQ(ReadAt(*provider, 2, 6), "2abc67");
    ASSERT_EQ(provider->SetPosition(0, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(provider->Write("xyz", 3), 0);
    EXPECT_EQ(ReadAt(*provider, 8, 16), "89xyz");
    provider.Reset();
    EXPECT_EQ(Content(path), "012abc6789xyz");
}

TEST_F(FileDataProvider, GapReadsAsZero)
{
    fs::path const path = mDirectory.File("file", "01");
    Provider provider = Open(path, IO::kStreamMode4);
    ASSERT_EQ(provider->SetPosition(2, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(provider->Write("a", 1), 0);
    EXPECT_EQ(provider->Size(), 5);
    provider.Reset();
    EXPECT_EQ(Content(path), std::string("01\0\0a", 5));
}

TEST_F(FileDataProvider, WritesMoreThanAStreamBuffers)
{
    fs::path const path = mDirectory.File("file", "");
    std::string const text(3'000'001, 'q');
    Provider provider = Open(path, IO::kStreamReadWrite);
    EXPECT_EQ(provider->Write(text.data(), text.size()), 0);
    EXPECT_EQ(provider->GetPosition(), 3'000'001);
    EXPECT_EQ(provider->Size(), 3'000'001);
    EXPECT_TRUE(ReadAt(*provider, 0, 3'000'005) == text);
    provider.Reset();
    EXPECT_TRUE(Content(path) == text);
}

TEST_F(FileDataProvider, FileBeyond32Bits)
{
    fs::path const path = mDirectory.File("file", "");
    fs::resize_file(path, 5'000'000'000);
    Provider const provider = Open(path, IO::kStreamReadWrite);
    EXPECT_EQ(provider->Size(), 5'000'000'000);
    ASSERT_EQ(provider->SetPosition(-1, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(provider->GetPosition(), 4'999'999'999);
    EXPECT_EQ(provider->Write("yz", 2), 0);
    EXPECT_EQ(provider->Size(), 5'000'000'001);
    EXPECT_EQ(ReadAt(*provider, 4'999'999'998, 5), std::string("\0yz", 3));
    EXPECT_EQ(provider->SetSize(4'999'999'990), 0);
    EXPECT_EQ(provider->Size(), 4'999'999'990);
}

TEST_F(FileDataProvider, FlushDoesNothing)
{
    fs::path const path = mDirectory.File("file", "");
    Provider provider = Open(path, IO::kStreamReadWrite);
    ASSERT_EQ(provider->Write("hello", 5), 0);
    EXPECT_EQ(provider->Flush(), 0);
    EXPECT_EQ(Content(path), "");
    EXPECT_TRUE(provider->GetAutoFlush());
    provider->SetAutoFlush(false);
    EXPECT_TRUE(provider->GetAutoFlush());
    provider.Reset();
    EXPECT_EQ(Content(path), "hello");
}

TEST_F(FileDataProvider, SetSizeDoesNotFlush)
{
    fs::path const path = mDirectory.File("file", "");
    Provider provider = Open(path, IO::kStreamReadWrite);
    ASSERT_EQ(provider->Write("hello", 5), 0);
    EXPECT_EQ(provider->SetSize(2), 0);
    EXPECT_EQ(Content(path), std::string(2, '\0'));
    provider.Reset();
    EXPECT_EQ(Content(path), "hello");
}

struct SizeRow
{
    char const* name;
    int mode;
    int64 size;
    std::string content;
};

class FileSetSize : public FileProviderTestWith<SizeRow>
{
};

TEST_P(FileSetSize, NeverFails)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const provider = Open(path, GetParam().mode);
    ASSERT_EQ(provider->SetPosition(7, IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider->SetSize(GetParam().size), 0);
    EXPECT_EQ(Content(path), GetParam().content);
    EXPECT_EQ(provider->GetPosition(), 7);
    EXPECT_EQ(provider->Size(), static_cast<int64>(GetParam().content.size()));
}

SizeRow const kSizes[] = {
    {"Smaller", 2, 4, "0123"},
    {"Same", 2, 10, "0123456789"},
    {"Larger", 2, 13, std::string("0123456789\0\0\0", 13)},
    {"Nothing", 2, 0, ""},
    {"FewerThanNone", 2, -1, "0123456789"},
    {"WithoutTheCheck", 4, 4, "0123"},
    {"ReadOnly", 0, 4, "0123456789"},
    {"ReadOnlyThree", 3, 4, "0123456789"},
};
INSTANTIATE_TEST_SUITE_P(Sizes, FileSetSize, ::testing::ValuesIn(kSizes), RowName());

struct EndlessRow
{
    char const* name;
    int mode;
    bool ends;
};

class FileWrite : public FileProviderTestWith<EndlessRow>
{
};

TEST_P(FileWrite, IsRepeatedUntilAllIsWritten)
{
    fs::path const path = mDirectory.File("file", "0123");
    TESTS::ChildProcess writer([&] {
        Provider provider = Open(path, GetParam().mode);
        OperationId const result = provider->Write("abc", 3);
        provider.Reset();
        return result == 0 ? 42 : 1;
    });
    if (GetParam().ends)
    {
        EXPECT_EQ(writer.Wait(), 42);
        EXPECT_EQ(Content(path), "abc3");
    }
    else
    {
        EXPECT_FALSE(writer.EndsWithin(std::chrono::milliseconds(300)));
        EXPECT_EQ(Content(path), "0123");
    }
}

EndlessRow const kWrites[] = {
    {"EndlessBeforeTheFirstMode", -1, false},
    {"EndlessForRead", 0, false},
    {"EndsForReadWrite", 2, true},
    {"EndlessForThree", 3, false},
    {"EndsForFour", 4, true},
    {"EndlessAfterTheLastMode", 5, false},
};
INSTANTIATE_TEST_SUITE_P(Modes, FileWrite, ::testing::ValuesIn(kWrites), RowName());
} // namespace
} // namespace KORVA
