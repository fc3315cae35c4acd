// Providers and streams that the file proxy can't have, or that fail it.
#include "FileFakes.h"

#include <tessio/TessIO/ClassIds.h>

#include <gtest/gtest.h>

namespace KORVA
{
namespace
{
using STRING::CoreString;
using TESTS::CountedReporter;
using TESTS::CountOf;
using TESTS::ProxyFor;
using StreamPtr = TInterfacePtr<IO::IDataProviderStream>;

/// What the providers and streams of a test answer, and what became of them.
struct Pieces
{
    bool makesProviders = true;
    bool makesStreams = true;
    ErrCode providerResult = 0;
    ErrCode streamResult = 0;
    int providers = 0;
    int streams = 0;
    int streamsMade = 0;
    /// What the last provider was initialised with.
    IO::IURI* uri = nullptr;
    int mode = -1;
    IO::IReporter* reporter = nullptr;
    /// What the last stream was initialised with.
    IO::IDataProvider* provider = nullptr;
    IO::IDataProvider* lastProvider = nullptr;
};

class FakeProvider final : public TObject<IO::IDataProvider>
{
public:
    explicit FakeProvider(Pieces& pieces) : mPieces(pieces)
    {
        ++mPieces.providers;
        mPieces.lastProvider = this;
    }

    ErrCode InitURIBased(IO::IURI& uri, int mode, IO::IReporter* reporter) override
    {
        mPieces.uri = &uri;
        mPieces.mode = mode;
        mPieces.reporter = reporter;
        return mPieces.providerResult;
    }
    void InitHandleBased(int) override { ADD_FAILURE(); }
    ErrCode InitReadOnlyMem(void const*, int32) override { return 1; }
    OperationId Write(void const*, std::size_t) override { return 1; }
    OperationId Read(void*, int32&) override { return 1; }
    int64 Size() const override { return 0; }
    ErrCode SetSize(int64) override { return 1; }
    ErrCode SetPosition(int64, Offset) override { return 1; }
    int64 GetPosition() const override { return 0; }
    Endian GetEndian() const override { return kLittleEndian; }
    bool IsNative() const override { return true; }
    void SetEndian(Endian) override {}
    bool AtEnd() override { return true; }
    ErrCode Flush() override { return 0; }
    bool GetAutoFlush() override { return true; }
    void SetAutoFlush(bool) override {}

private:
    ~FakeProvider() override { --mPieces.providers; }

    Pieces& mPieces;
};

class FakeStream final : public TObject<IO::IDataProviderStream>
{
public:
    explicit FakeStream(Pieces& pieces) : mPieces(pieces)
    {
        ++mPieces.streams;
        ++mPieces.streamsMade;
    }

    ErrCode Init(IO::IDataProvider& provider) override
    {
        mPieces.provider = &provider;
        if (mPieces.streamResult == 0)
            mProvider.Share(&provider);
        return mPieces.streamResult;
    }
    TInterfacePtr<IO::IDataProvider> GetDataProvider() const override { return mProvider; }

    IDataProviderStream& operator>>(signed char&) override { return *this; }
    IDataProviderStream& operator>>(unsigned char&) override { return *this; }
    IDataProviderStream& operator>>(short&) override { return *this; }
    IDataProviderStream& operator>>(unsigned short&) override { return *this; }
    IDataProviderStream& operator>>(int&) override { return *this; }
    IDataProviderStream& operator>>(unsigned int&) override { return *this; }
    IDataProviderStream& operator>>(long long&) override { return *this; }
    IDataProviderStream& operator>>(unsigned long long&) override { return *this; }
    IDataProviderStream& operator>>(bool&) override { return *this; }
    IDataProviderStream& operator>>(float&) override { return *this; }
    IDataProviderStream& operator>>(double&) override { return *this; }
    IDataProviderStream& operator>>(CoreString&) override { return *this; }
    IDataProviderStream& operator>>(IObject**) override { return *this; }
    IDataProviderStream& operator>>(GUID&) override { return *this; }
    IDataProviderStream& operator<<(signed char) override { return *this; }
    IDataProviderStream& operator<<(unsigned char) override { return *this; }
    IDataProviderStream& operator<<(CoreString const&) override { return *this; }
    IDataProviderStream& operator<<(short) override { return *this; }
    IDataProviderStream& operator<<(unsigned short) override { return *this; }
    IDataProviderStream& operator<<(int) override { return *this; }
    IDataProviderStream& operator<<(unsigned int) override { return *this; }
    IDataProviderStream& operator<<(long long) override { return *this; }
    IDataProviderStream& operator<<(unsigned long long) override { return *this; }
    IDataProviderStream& operator<<(float) override { return *this; }
    IDataProviderStream& operator<<(double) override { return *this; }
    IDataProviderStream& operator<<(bool) override { return *this; }
    IDataProviderStream& operator<<(IObject const&) override { return *this; }
    IDataProviderStream& operator<<(GUID const&) override { return *this; }
    OperationId Write(void const*, int) override { return 1; }
    OperationId Read(void*, int&) override { return 1; }

private:
    ~FakeStream() override { --mPieces.streams; }

    Pieces& mPieces;
    TInterfacePtr<IO::IDataProvider> mProvider;
};

class PieceFactory final : public TObject<IClassFactory>
{
public:
    explicit PieceFactory(Pieces& pieces) : mPieces(pieces) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        *out = nullptr;
        if (classId == IO::IID_IDATAPROVIDER && mPieces.makesProviders)
            *out = new FakeProvider(mPieces);
        if (classId == IO::IID_DATAPROVIDERSTREAM && mPieces.makesStreams)
            *out = new FakeStream(mPieces);
        return *out ? 0 : -1004;
    }

private:
    Pieces& mPieces;
};

/// A registry that makes nothing but fake providers and streams. The parameter: for writing.
class FakePiecesTest : public TESTS::LibraryTest, public ::testing::WithParamInterface<bool>
{
protected:
    FakePiecesTest() : uri(MakeURI("/a"))
    {
        reporter.Adopt(new CountedReporter);
        proxy = ProxyFor(*uri, reporter.Get());
        held.Adopt(new FakeStream(elsewhere));
        stream = held;
        TInterfacePtr<IClassFactory> factory;
        factory.Adopt(new PieceFactory(pieces));
        mRegistry.Adopt(COREREGISTRY::CreateCoreRegistry());
        EXPECT_EQ(mRegistry->RegisterFactory(factory.Get()), 0);
        COREREGISTRY::InstallCoreRegistry(mRegistry.Get());
    }
    ~FakePiecesTest() override
    {
        stream.Reset();
        EXPECT_EQ(pieces.providers, 0);
        EXPECT_EQ(pieces.streams, 0);
        EXPECT_EQ(CountOf(*uri), 2);
        EXPECT_EQ(CountOf(*reporter), 2);
    }

    ErrCode Open() { return GetParam() ? proxy->Write(stream) : proxy->Read(stream); }

    /// Nothing is left of a failed attempt.
    void ExpectUntouched()
    {
        EXPECT_EQ(stream.Get(), held.Get());
        EXPECT_EQ(CountOf(*held), 2);
        EXPECT_EQ(pieces.providers, 0);
        EXPECT_EQ(pieces.streams, 0);
    }

    Pieces pieces;
    Pieces elsewhere;
    IO::IURIPtr uri;
    TInterfacePtr<CountedReporter> reporter;
    TInterfacePtr<IO::IURIFile> proxy;
    StreamPtr held;
    StreamPtr stream;

private:
    TInterfacePtr<COREREGISTRY::ICoreRegistry> mRegistry;
};

TEST_P(FakePiecesTest, ModeURIAndReporterArePassedOn)
{
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(pieces.mode, GetParam() ? 2 : 0);
    EXPECT_EQ(pieces.uri, uri.Get());
    EXPECT_EQ(pieces.reporter, reporter.Get());
    EXPECT_EQ(pieces.provider, pieces.lastProvider);
    // Only the stream keeps the provider, and only the caller the stream.
    EXPECT_EQ(CountOf(*pieces.provider), 1);
    EXPECT_EQ(CountOf(*stream), 1);
    EXPECT_EQ(CountOf(*held), 1);
    EXPECT_EQ(proxy->Init(*uri, nullptr), 0);
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(pieces.reporter, nullptr);
    EXPECT_EQ(pieces.providers, 1);
    EXPECT_EQ(proxy->Init(*uri, reporter.Get()), 0);
}

TEST_P(FakePiecesTest, FailingProviderGivesItsCode)
{
    pieces.providerResult = -1234;
    EXPECT_EQ(Open(), -1234);
    EXPECT_EQ(pieces.streamsMade, 0);
    ExpectUntouched();
}

TEST_P(FakePiecesTest, MissingStream)
{
    pieces.makesStreams = false;
    EXPECT_EQ(Open(), 12);
    ExpectUntouched();
}

TEST_P(FakePiecesTest, FailingStreamGivesItsCode)
{
    pieces.streamResult = 77;
    EXPECT_EQ(Open(), 77);
    EXPECT_EQ(pieces.streamsMade, 1);
    ExpectUntouched();
}

TEST_P(FakePiecesTest, MissingProvider)
{
    pieces.makesProviders = false;
    EXPECT_EQ(Open(), 12);
    EXPECT_EQ(pieces.streamsMade, 0);
    ExpectUntouched();
}

TEST_P(FakePiecesTest, MissingRegistry)
{
    COREREGISTRY::InstallCoreRegistry(nullptr);
    EXPECT_EQ(Open(), 12);
    ExpectUntouched();
}

INSTANTIATE_TEST_SUITE_P(For, FakePiecesTest, ::testing::Bool(),
                         [](auto const& row) { return row.param ? "Writing" : "Reading"; });
} // namespace
} // namespace KORVA
