// Streams opened through the file proxy: real files, locks, and providers and streams that fail.
#include "FileFakes.h"

#include "Support/TemporaryDirectory.h"
#include <tessio/TessIO/ClassIds.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace KORVA
{
namespace
{
namespace fs = std::filesystem;
using TESTS::Content;
using TESTS::CountedReporter;
using TESTS::CountOf;
using TESTS::Logged;
using TESTS::ProxyFor;
using StreamPtr = TInterfacePtr<IO::IDataProviderStream>;

constexpr char kProviderSource[] = "Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider";
constexpr char kOpenFile[] = "ErrCode KORVA::IO::FileDataProvider::OpenFile(StreamMode)";

class FileProxyStreamTest : public TESTS::LibraryTest
{
protected:
    static TInterfacePtr<IO::IURIFile> Proxy(fs::path const& path)
    {
        return ProxyFor(*MakeURI(path.string()));
    }

    /// What is left of the stream's provider.
    static std::string RestOf(IO::IDataProviderStream& stream)
    {
        auto const provider = stream.GetDataProvider();
        std::string text(100, '\0');
        int32 count = 100;
        EXPECT_EQ(provider->Read(text.data(), count), 0);
        return text.substr(0, static_cast<std::size_t>(count));
    }

    TESTS::TemporaryDirectory directory;
};

TEST_F(FileProxyStreamTest, ReadGivesAStreamAtTheStart)
{
    StreamPtr stream;
    EXPECT_EQ(Proxy(directory.File("f", "content"))->Read(stream), 0);
    ASSERT_TRUE(stream);
    EXPECT_EQ(CountOf(*stream), 1);
    {
        auto const provider = stream->GetDataProvider();
        // The stream's reference and this one.
        EXPECT_EQ(CountOf(*provider), 2);
        EXPECT_EQ(provider->GetPosition(), 0);
        EXPECT_EQ(provider->Size(), 7);
    }
    EXPECT_EQ(RestOf(*stream), "content");
}

TEST_F(FileProxyStreamTest, WriteGivesAStreamForBothWays)
{
    fs::path const path = directory.File("f", "content");
    StreamPtr stream;
    EXPECT_EQ(Proxy(path)->Write(stream), 0);
    ASSERT_TRUE(stream);
    EXPECT_EQ(CountOf(*stream), 1);
    EXPECT_EQ(stream->GetDataProvider()->GetPosition(), 0);
    EXPECT_EQ(stream->Write("CON", 3), 0);
    EXPECT_EQ(stream->GetDataProvider()->SetPosition(0, IO::IDataProvider::kFromStart), 0);
    EXPECT_EQ(RestOf(*stream), "CONtent");
    stream.Reset();
    EXPECT_EQ(Content(path), "CONtent");
}

TEST_F(FileProxyStreamTest, StreamHeldBeforeIsReleased)
{
    auto const held = COREREGISTRY::CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    StreamPtr stream = held;
    auto const proxy = Proxy(directory.File("f", "content"));
    EXPECT_EQ(proxy->Read(stream), 0);
    EXPECT_NE(stream.Get(), held.Get());
    EXPECT_EQ(CountOf(*held), 1);
    EXPECT_EQ(proxy->Write(stream), 0);
    EXPECT_EQ(CountOf(*stream), 1);
}

TEST_F(FileProxyStreamTest, MissingFile)
{
    fs::path const path = directory.Path() / "missing file";
    auto const held = COREREGISTRY::CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    StreamPtr stream = held;
    auto const proxy = Proxy(path);
    EXPECT_EQ(proxy->Read(stream), 26);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{{kProviderSource, kOpenFile, 367,
                                                "open failed to open the path \"" + path.string() + "\"."}}));
    // The look for locks fails first, silently.
    EXPECT_EQ(proxy->Write(stream), 36);
    EXPECT_EQ(stream.Get(), held.Get());
    EXPECT_EQ(CountOf(*held), 2);
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(FileProxyStreamTest, DirectoryIsNoFile)
{
    StreamPtr stream;
    EXPECT_EQ(Proxy(directory.Path())->Read(stream), 26);
    EXPECT_EQ(Proxy(directory.Path())->Write(stream), 36);
    EXPECT_FALSE(stream);
}

TEST_F(FileProxyStreamTest, URIWithoutPath)
{
    StreamPtr stream;
    auto const proxy = ProxyFor(*MakeURI(""));
    std::vector<Logged> const noPath{
        {kProviderSource, kOpenFile, 373, "No mPathUrl so cannot open the file."}};
    EXPECT_EQ(proxy->Read(stream), 26);
    EXPECT_EQ(log.Take(), noPath);
    EXPECT_EQ(proxy->Write(stream), 26);
    EXPECT_EQ(log.Take(), noPath);
    EXPECT_FALSE(stream);
}

TEST_F(FileProxyStreamTest, ReporterHearsOfReadsWithoutData)
{
    TInterfacePtr<CountedReporter> reporter;
    reporter.Adopt(new CountedReporter);
    auto const uri = MakeURI(directory.File("f", "x").string());
    for (bool const forWriting : {false, true})
    {
        auto const proxy = ProxyFor(*uri, reporter.Get());
        StreamPtr stream;
        EXPECT_EQ(forWriting ? proxy->Write(stream) : proxy->Read(stream), 0);
        char buffer[4] = {};
        int count = 4;
        EXPECT_EQ(stream->Read(buffer, count), 0);
        EXPECT_EQ(count, 1);
        reporter->reports = 0;
        reporter->lastURI = nullptr;
        EXPECT_EQ(stream->Read(buffer, count), 3);
        EXPECT_EQ(reporter->reports, 1);
        EXPECT_EQ(reporter->lastURI, uri.Get());
        EXPECT_EQ(reporter->lastResult, 3);
        EXPECT_EQ(reporter->lastDetail, 0);
    }
    EXPECT_EQ(CountOf(*reporter), 1);
    EXPECT_EQ(CountOf(*uri), 1);
}

TEST_F(FileProxyStreamTest, StreamOutlivesTheProxy)
{
    auto uri = MakeURI(directory.File("f", "content").string());
    auto proxy = ProxyFor(*uri);
    StreamPtr stream;
    EXPECT_EQ(proxy->Read(stream), 0);
    proxy.Reset();
    uri.Reset();
    EXPECT_EQ(RestOf(*stream), "content");
}

/// Another process that holds a lock on a file while this object lives.
class LockHolder
{
public:
    LockHolder(fs::path const& path, int lock)
    {
        int ready[2];
        int done[2];
        EXPECT_EQ(pipe(ready), 0);
        EXPECT_EQ(pipe(done), 0);
        mProcess = fork();
        if (mProcess == 0)
        {
            close(done[1]);
            int const file = open(path.c_str(), O_RDONLY);
            char const answer = flock(file, lock) == 0 ? 'y' : 'n';
            char end;
            // Until the other side closes its end.
            if (write(ready[1], &answer, 1) != 1 || read(done[0], &end, 1) != 0)
                _exit(1);
            _exit(0);
        }
        char answer = 'n';
        EXPECT_EQ(read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'y') << "the other process has no lock";
        close(ready[0]);
        close(ready[1]);
        close(done[0]);
        mDone = done[1];
    }
    LockHolder(LockHolder const&) = delete;
    LockHolder& operator=(LockHolder const&) = delete;
    ~LockHolder()
    {
        close(mDone);
        int status = -1;
        EXPECT_EQ(waitpid(mProcess, &status, 0), mProcess);
        EXPECT_EQ(status, 0);
    }

private:
    pid_t mProcess = -1;
    int mDone = -1;
};

struct LockRow
{
    char const* name;
    int lock;
};

class FileProxyLockTest : public FileProxyStreamTest, public ::testing::WithParamInterface<LockRow>
{
};

TEST_P(FileProxyLockTest, KeepsWritersOut)
{
    fs::path const path = directory.File("f", "content");
    auto const proxy = Proxy(path);
    auto const held = COREREGISTRY::CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    StreamPtr stream = held;
    {
        LockHolder const holder(path, GetParam().lock);
        EXPECT_EQ(proxy->Write(stream), 40);
        EXPECT_EQ(stream.Get(), held.Get());
        // Readers take no lock.
        StreamPtr reading;
        EXPECT_EQ(proxy->Read(reading), 0);
    }
    EXPECT_EQ(proxy->Write(stream), 0);
    EXPECT_NE(stream.Get(), held.Get());
}

LockRow const kLocks[] = {{"Exclusive", LOCK_EX}, {"Shared", LOCK_SH}};
INSTANTIATE_TEST_SUITE_P(OfAnotherProcess, FileProxyLockTest, ::testing::ValuesIn(kLocks), TESTS::RowName());

TEST_F(FileProxyStreamTest, OneWriterKeepsTheNextOut)
{
    fs::path const path = directory.File("f", "content");
    StreamPtr first;
    StreamPtr second;
    EXPECT_EQ(Proxy(path)->Write(first), 0);
    EXPECT_EQ(Proxy(path)->Write(second), 40);
    EXPECT_FALSE(second);
    EXPECT_EQ(Proxy(path)->Read(second), 0);
    first.Reset();
    EXPECT_EQ(Proxy(path)->Write(first), 0);
}

class FakeFileStreamTest : public TESTS::FakeFileTest
{
};

TEST_F(FakeFileStreamTest, WithoutFileObjectsTheProviderFails)
{
    script.supply = 0;
    StreamPtr stream;
    std::vector<Logged> const failed{{kProviderSource,
                                      "ErrCode KORVA::IO::FileDataProvider::Init(KORVA::IO::IURI &, "
                                      "StreamMode, KORVA::IO::IDataProvider *)",
                                      299, "CreateSystemFile failed. Error = 1"}};
    EXPECT_EQ(Proxy()->Read(stream), 1);
    EXPECT_EQ(log.Take(), failed);
    EXPECT_EQ(Proxy()->Write(stream), 1);
    EXPECT_EQ(log.Take(), failed);
    EXPECT_FALSE(stream);
}
} // namespace
} // namespace KORVA
