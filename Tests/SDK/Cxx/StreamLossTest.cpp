// Bytes that a file took, held back and could not deliver: who asks is told, and a log where nobody asks.
#include <tessio/Cxx/File.h>

#include "Platform/Source/ChildProcess.h"
#include "Platform/Source/ResourceLimit.h"
#include "SDK/Cxx/StandIns.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"

#include <array>
#include <cerrno>
#include <memory>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
using CXX::File;
using CXX::Stream;

Logged Lost(std::string const& path, int bytes)
{
    return {"../../../../SDK/Headers/Core/LibSupport/Cxx/OpenFile",
            "KORVA::CXX::DETAIL::OpenFile::~OpenFile()", 0,
            "Bytes written to " + CXX::Quoted(path) + " that are lost: " + std::to_string(bytes)};
}

/// Files whose bytes get lost as a test wants.
class CxxStreamLoss : public LibraryTest
{
protected:
    CxxStreamLoss()
    {
        TInterfacePtr<COREREGISTRY::ICoreRegistry> below;
        below.Share(COREREGISTRY::GetCoreRegistry());
        replacing = std::make_unique<Replacing>(IO::IID_IDATAPROVIDER, [this, below]() -> IObject* {
            TInterfacePtr<IO::IDataProvider> provider;
            below->CreateInstance(IO::IID_IDATAPROVIDER, provider.Out());
            return new FailingProvider(std::move(provider), trouble);
        });
    }

    Stream Writer() const { return File::At(path)->Write().value(); }

    std::string Subject() const { return CXX::Quoted(path.string()); }

    Trouble trouble;
    TemporaryDirectory directory;
    std::filesystem::path path = directory.File("a", "text");
    std::unique_ptr<Replacing> replacing;
};

struct LossRow
{
    char const* name;
    int error;
    int64 bytes;
    int code;
    char const* words;
};

LossRow const kLosses[] = {
    {"FullDevice", ENOSPC, 4096, 2015,
     "no space left (kNoSpace): 4096 bytes are lost: No space left on device"},
    {"Quota", EDQUOT, 1, 2015, "no space left (kNoSpace): 1 byte is lost: Disk quota exceeded"},
    {"SizeLimit", EFBIG, 2, 2015, "no space left (kNoSpace): 2 bytes are lost: File too large"},
    {"Device", EIO, 5, 2016,
     "the device, or the way to it, fails (kDeviceFailed): 5 bytes are lost: Input/output error"},
    {"Another", EPIPE, 6, 2, "writing failed (kWriteFailed): 6 bytes are lost: Broken pipe"},
    {"Unknown", 0, 7, 2, "writing failed (kWriteFailed): 7 bytes are lost"},
};

class CxxStreamLossOf : public CxxStreamLoss, public ::testing::WithParamInterface<LossRow>
{
};

TEST_P(CxxStreamLossOf, IsTold)
{
    trouble = {.error = GetParam().error, .lostEachTime = GetParam().bytes};
    Stream stream = Writer();
    stream << 7;
    EXPECT_TRUE(stream.Status()) << "nothing is known yet";
    auto const flushed = stream.Flush();
    EXPECT_EQ(flushed.error().Code(), GetParam().code);
    EXPECT_EQ(flushed.error().Message(), "cannot flush " + Subject() + ": " + GetParam().words);
    EXPECT_EQ(stream.Provider()->Flush().error().Code(), GetParam().code);
    EXPECT_EQ(stream.Close().error().Code(), GetParam().code);
    EXPECT_EQ(log.Take(), kNothing) << "who asked was told";
}

INSTANTIATE_TEST_SUITE_P(Losses, CxxStreamLossOf, ::testing::ValuesIn(kLosses), RowName());

TEST_F(CxxStreamLoss, OfWhichNobodyAsksIsLoggedAtTheEnd)
{
    trouble = {.error = ENOSPC, .lostEachTime = 5};
    {
        Stream stream = Writer();
        stream << 7;
    }
    EXPECT_EQ(log.Take(), std::vector{Lost(path.string(), 5)});
    {
        Stream stream = Writer();
        stream << 7;
        EXPECT_FALSE(stream.Flush());
        stream << 8;
    }
    EXPECT_EQ(log.Take(), std::vector{Lost(path.string(), 10)}) << "more was lost since";
}

TEST_F(CxxStreamLoss, OfCopiesOnlyTheLastOneLogs)
{
    trouble = {.error = ENOSPC, .lostEachTime = 5};
    std::optional<Stream> last;
    {
        Stream first = Writer();
        first << 7;
        last = first;
        Stream const moved = std::move(first);
        EXPECT_FALSE(first);
        EXPECT_EQ(first.Flush().error().Code(), 29);
        EXPECT_TRUE(first.Close());
    }
    EXPECT_EQ(log.Take(), kNothing);
    last.reset();
    EXPECT_EQ(log.Take(), std::vector{Lost(path.string(), 5)});
}

TEST_F(CxxStreamLoss, NothingIsSaidWhereNothingIsLost)
{
    {
        Stream stream = Writer();
        stream << 7;
        EXPECT_TRUE(stream.Flush());
        EXPECT_TRUE(stream.Close());
        EXPECT_EQ(trouble.writtenOut, 3) << "when flushed, when closed, and at the end";
        EXPECT_FALSE(stream);
        stream << 7;
        EXPECT_EQ(stream.Status().error().Code(), 29);
        std::array<std::byte, 4> bytes{};
        EXPECT_EQ(stream.Read(bytes).error().Code(), 29);
        EXPECT_EQ(stream.Read<int>().error().Code(), 29);
        EXPECT_TRUE(stream.Close()) << "again";
    }
    {
        Stream const unasked = Writer();
    }
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(CxxStreamLoss, AStreamToReadHoldsNothingBack)
{
    trouble = {.error = ENOSPC, .lostEachTime = 5};
    {
        Stream stream = File::At(path)->Read().value();
        EXPECT_TRUE(stream.Flush());
        EXPECT_TRUE(stream.Close());
    }
    EXPECT_EQ(trouble.writtenOut, 0);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(CxxStreamLoss, ClosingLetsGoOfTheFile)
{
    replacing.reset();
    Stream stream = Writer();
    EXPECT_EQ(File::At(path)->Write().error().Code(), 40);
    ASSERT_TRUE(stream.Close());
    EXPECT_TRUE(File::At(path)->Write());
}

TEST_F(CxxStreamLoss, OfMemoryThereIsNone)
{
    replacing.reset();
    Stream stream = Stream::Over(*CXX::DataProvider::Memory()).value();
    stream << 7;
    EXPECT_TRUE(stream.Flush());
    EXPECT_TRUE(stream.Close());
}

TEST_F(CxxStreamLoss, OnARealFullDevice)
{
    replacing.reset();
    path = "/dev/full";
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << "this system has no device that is always full";
    {
        Stream stream = Writer();
        stream << 7;
        EXPECT_TRUE(stream.Status());
        EXPECT_EQ(stream.Close().error().Message(),
                  "cannot flush \"/dev/full\": no space left (kNoSpace): 4 bytes are lost: "
                  "No space left on device");
    }
    EXPECT_EQ(log.Take(), kNothing);
    {
        Stream stream = Writer();
        stream << 7 << 8;
    }
    EXPECT_EQ(log.Take(), std::vector{Lost("/dev/full", 8)});
}

TEST_F(CxxStreamLoss, AtARealLimitOfSize)
{
    replacing.reset();
    ChildProcess child([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        ResourceLimit const limit(RLIMIT_FSIZE, 50'000);
        Stream stream = Writer();
        for (int i = 0; i < 50'000; ++i)
            stream << 7;
        return stream.Close().error().Code() == CXX::kNoSpace ? 0 : 1;
    });
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(std::filesystem::file_size(path), 50'000u);
}

TEST_F(CxxStreamLoss, WhatIsFlushedIsSeenByAll)
{
    replacing.reset();
    Stream stream = Writer();
    ASSERT_TRUE(stream.Write(std::as_bytes(std::span("XY", 2))));
    ASSERT_TRUE(stream.Flush());
    EXPECT_EQ(Content(path), "XYxt");
}

/// Of another maker: it tells nothing, and its own `Flush` is believed.
class Foreign final : public TObject<IO::IDataProvider>
{
public:
    explicit Foreign(ErrCode answer) : mAnswer(answer) {}
    void InitHandleBased(int) override {}
    ErrCode InitReadOnlyMem(void const*, int32) override { return 0; }
    ErrCode InitURIBased(IO::IURI&, int, IO::IReporter*) override { return 0; }
    OperationId Write(void const*, std::size_t) override { return 0; }
    OperationId Read(void*, int32& count) override { return count = 0; }
    ErrCode SetPosition(int64, Offset) override { return 0; }
    int64 Size() const override { return 0; }
    ErrCode SetSize(int64) override { return 0; }
    int64 GetPosition() const override { return 0; }
    Endian GetEndian() const override { return kNativeEndian; }
    bool IsNative() const override { return true; }
    void SetEndian(Endian) override {}
    bool AtEnd() override { return true; }
    ErrCode Flush() override { return mAnswer; }
    bool GetAutoFlush() override { return false; }
    void SetAutoFlush(bool) override {}

private:
    ErrCode mAnswer;
};

TEST_F(CxxStreamLoss, AProviderOfAnotherMakerIsBelieved)
{
    for (ErrCode const answer : {0, 77})
    {
        Replacing const foreign(IO::IID_IDATAPROVIDER, [answer] { return new Foreign(answer); });
        Stream stream = Writer();
        EXPECT_EQ(stream.Flush().error().Code(), answer);
        EXPECT_EQ(stream.Close().error().Code(), answer);
    }
    EXPECT_EQ(log.Take(), kNothing);
}
} // namespace
} // namespace KORVA::TESTS
