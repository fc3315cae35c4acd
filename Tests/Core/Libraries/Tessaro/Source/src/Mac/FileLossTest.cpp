// Files that can't take what is written to them: what the operations answer, and what the status tells.
#include "Mac/AsyncFixture.h"
#include "Platform/Source/FreshProcess.h"
#include "Platform/Source/ResourceLimit.h"
#include <tessio/TessIO/IBufferedDataProvider.h>
#include <tessio/TessIO/IDataProviderStatus.h>

#include <cerrno>
#include <csignal>
#include <optional>

namespace KORVA::TESTS
{
namespace
{
using IO::IDataProvider;
using IO::IDataProviderStatus;
namespace fs = std::filesystem;

constexpr std::int64_t kLimit = 65'536;

/// The provider's own, which it must have.
template <class Provider>
IDataProviderStatus& StatusOf(TInterfacePtr<Provider> const& provider)
{
    auto* const status = dynamic_cast<IDataProviderStatus*>(static_cast<IDataProvider*>(provider.Get()));
    if (!status)
        throw std::runtime_error("the provider tells no status");
    return *status;
}

class FileLoss : public AsyncTest
{
protected:
    TInterfacePtr<IO::IBufferedDataProvider> Buffered(IDataProvider& provider, int size)
    {
        auto const buffered =
            COREREGISTRY::CreateObject<IO::IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
        buffered->Init(provider, size, IO::kBufferWrites);
        return buffered;
    }
};

TEST_F(FileLoss, FullDeviceAnswersZeroAndTheStatusTells)
{
    Provider const facade = Open("/dev/full", IO::kStreamMode4);
    IDataProviderStatus& status = StatusOf(facade);
    std::string const bytes(1'000'000, 'x');
    EXPECT_EQ(facade->Write(bytes.data(), bytes.size()), 0);
    EXPECT_EQ(status.WriteOut(), 2);
    EXPECT_EQ(status.GetLostBytes(), 1'000'000);
    EXPECT_EQ(status.GetSystemError(), ENOSPC);
    // What was lost is not forgotten.
    EXPECT_EQ(status.WriteOut(), 2);
    EXPECT_EQ(status.FlushToDevice(), 2);
}

TEST_F(FileLoss, NothingIsLostInAFileWithRoom)
{
    fs::path const path = mDirectory.File("file", "");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    IDataProviderStatus& status = StatusOf(facade);
    EXPECT_EQ(facade->Write("abc", 3), 0);
    EXPECT_EQ(Content(path), "");
    EXPECT_EQ(status.WriteOut(), 0);
    EXPECT_EQ(Content(path), "abc");
    EXPECT_EQ(facade->Write("def", 3), 0);
    EXPECT_EQ(status.FlushToDevice(), 0);
    EXPECT_EQ(Content(path), "abcdef");
    EXPECT_EQ(status.GetLostBytes(), 0);
    EXPECT_EQ(status.GetSystemError(), 0);
}

TEST_F(FileLoss, FailingReadIsToldFromTheEnd)
{
    fs::path const path = mDirectory.File("file", "ab");
    Provider const facade = Open(path, IO::kStreamRead);
    char buffer[4];
    int32 count = 4;
    EXPECT_EQ(facade->Read(buffer, count), 0);
    EXPECT_EQ(facade->Read(buffer, count), 3);
    EXPECT_EQ(StatusOf(facade).GetSystemError(), 0);
    // Memory of the process that is not there to read: an error of the device's kind.
    Provider const failing = Open("/proc/self/mem", IO::kStreamRead);
    count = 4;
    EXPECT_EQ(failing->Read(buffer, count), 3);
    EXPECT_EQ(StatusOf(failing).GetSystemError(), EIO);
}

TEST_F(FileLoss, MemoryHoldsNothingBack)
{
    auto const memory = MakeMemory();
    EXPECT_EQ(memory->Write("abc", 3), 0);
    EXPECT_EQ(StatusOf(memory).WriteOut(), 0);
    EXPECT_EQ(StatusOf(memory).FlushToDevice(), 0);
    EXPECT_EQ(StatusOf(memory).GetLostBytes(), 0);
    EXPECT_EQ(StatusOf(memory).GetSystemError(), 0);
}

TEST_F(FileLoss, FacadeWithoutAProviderHasNoStatusToTell)
{
    Provider const facade = MakeFacade();
    EXPECT_EQ(StatusOf(facade).WriteOut(), 29);
    EXPECT_EQ(StatusOf(facade).FlushToDevice(), 29);
    EXPECT_EQ(StatusOf(facade).GetLostBytes(), 0);
    EXPECT_EQ(StatusOf(facade).GetSystemError(), 0);
    auto const buffered =
        COREREGISTRY::CreateObject<IO::IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
    EXPECT_EQ(StatusOf(buffered).WriteOut(), 29);
    EXPECT_EQ(StatusOf(buffered).FlushToDevice(), 29);
    EXPECT_EQ(StatusOf(buffered).GetLostBytes(), 0);
    EXPECT_EQ(StatusOf(buffered).GetSystemError(), 0);
}

TEST_F(FileLoss, BufferTellsWhatTheFileLoses)
{
    Provider const facade = Open("/dev/full", IO::kStreamMode4);
    auto const buffered = Buffered(*facade, 64);
    EXPECT_EQ(buffered->Write("0123456789", 10), 0);
    EXPECT_EQ(StatusOf(buffered).GetLostBytes(), 0);
    EXPECT_EQ(StatusOf(buffered).WriteOut(), 2);
    EXPECT_EQ(StatusOf(buffered).GetLostBytes(), 10);
    EXPECT_EQ(StatusOf(buffered).GetSystemError(), ENOSPC);
    EXPECT_EQ(StatusOf(facade).GetLostBytes(), 10);
}

TEST_F(FileLoss, BufferTellsWhatTheProviderRefuses)
{
    auto const memory = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
    char const fixed[] = "abc";
    ASSERT_EQ(memory->InitReadOnlyMem(fixed, 3), 0);
    auto const buffered = Buffered(*memory, 64);
    EXPECT_EQ(buffered->Write("0123456789", 10), 0);
    EXPECT_EQ(StatusOf(buffered).WriteOut(), 2);
    EXPECT_EQ(StatusOf(buffered).GetLostBytes(), 10);
    EXPECT_EQ(StatusOf(buffered).GetSystemError(), 0);
    EXPECT_EQ(log.Take().size(), 1u);
}

TEST_F(FileLoss, BufferKeepsItsPositionWhenWrittenOut)
{
    fs::path const path = mDirectory.File("file", "0123456789");
    Provider const facade = Open(path, IO::kStreamReadWrite);
    auto const buffered =
        COREREGISTRY::CreateObject<IO::IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
    buffered->Init(*facade, 64, IO::kBufferBoth);
    char byte = 0;
    int32 count = 1;
    EXPECT_EQ(buffered->Read(&byte, count), 0);
    EXPECT_EQ(StatusOf(buffered).WriteOut(), 0);
    EXPECT_EQ(buffered->GetPosition(), 1);
    EXPECT_EQ(buffered->Read(&byte, count), 0);
    EXPECT_EQ(byte, '1');
}

/// The operation that meets the limit of a file's size first.
struct FirstUseRow
{
    char const* name;
    bool writer;
};

class FirstAsyncUse : public AsyncTestWith<FirstUseRow>
{
};

TEST_P(FirstAsyncUse, CountsFromTheStartWhenTheStreamCantBeFlushed)
{
    ExpectInFreshProcess(mDirectory, [&](fs::path const&) {
        std::signal(SIGXFSZ, SIG_IGN);
        std::string const content = Pattern(kLimit);
        fs::path const path = mDirectory.File("file", content);
        Provider const facade = Open(path, IO::kStreamReadWrite);
        char read[4] = {};
        {
            ResourceLimit const limit(RLIMIT_FSIZE, kLimit);
            EXPECT_EQ(facade->SetPosition(kLimit, IDataProvider::kFromStart), 0);
            EXPECT_EQ(facade->Write("held back", 9), 0);
            EXPECT_EQ(GetParam().writer ? WriterOf(facade).WriteSync(kLimit, "over", 4)
                                        : ReaderOf(facade).ReadSync(0, read, 4),
                      0);
            EXPECT_EQ(facade->GetPosition(), 0);
        }
        EXPECT_EQ(WriterOf(facade).WriteSync(0, "HEAD", 4), 0);
        EXPECT_EQ(ReaderOf(facade).ReadSync(100, read, 4), 0);
        EXPECT_EQ(std::string(read, 4), content.substr(100, 4));
        EXPECT_EQ(StatusOf(facade).GetLostBytes(), GetParam().writer ? 13 : 9);
        EXPECT_EQ(StatusOf(facade).GetSystemError(), EFBIG);
        EXPECT_EQ(StatusOf(facade).WriteOut(), 2);
        EXPECT_TRUE(Content(path) == "HEAD" + content.substr(4));
        EXPECT_EQ(log.Take(), GetParam().writer ? std::vector<Logged>{WriteSyncFailed(EFBIG)} : kNothing);
    });
}

FirstUseRow const kFirstUses[] = {{"Reader", false}, {"Writer", true}};
INSTANTIATE_TEST_SUITE_P(Uses, FirstAsyncUse, ::testing::ValuesIn(kFirstUses), RowName());
} // namespace
} // namespace KORVA::TESTS
