// What a file provider makes, shares and gives its facade.
#include "Mac/FileProviderFixture.h"
#include "Mac/MFileDataProvider.h"
#include "Platform/Source/ChildProcess.h"
#include <tessio/FileIO/IFile.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/IAsyncReader.h>
#include <tessio/TessIO/IAsyncWriter.h>

#include <fcntl.h>

#include <gmock/gmock.h>

#include <climits>
#include <set>

namespace KORVA
{
namespace
{
using TESTS::DescriptorsOf;
using TESTS::FileProviderTest;
using TESTS::FileProviderTestWith;
using TESTS::Logged;
using TESTS::ReferencesTo;
using TESTS::RowName;
namespace fs = std::filesystem;

constexpr char kNotInitialized[] = "Attempting to use a non-initialized data provider";
Logged const kInitFailed{
    "Core/Libraries/Tessaro/Source/src/DataProvider",
    "virtual HRESULT KORVA::IO::DataProvider::Init(KORVA::IO::IURI &, KORVA::IO::IReporter *)", 164,
    "InitURIBased failed."};
Logged const kCreateFailed{
    "Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider",
    "ErrCode KORVA::IO::FileDataProvider::Init(KORVA::IO::IURI &, StreamMode, KORVA::IO::IDataProvider *)",
    299, "CreateSystemFile failed. Error = 1"};
Logged const kNoFactory{"../../../../SDK/Headers/Core/LibSupport/FileIO/LibUtils",
                        "ErrCode KORVA::FILE_SYS::CreateSystemFile(KORVA::IClassFactory *, IFilePtr &, const "
                        "STRING::CoreString &)",
                        147, "Attempted to use a library util without a factory pointer"};

class FileInit : public FileProviderTest
{
protected:
    /// Logged by the facade that is still without a provider.
    void ExpectUninitialized(IO::IDataProvider& facade)
    {
        EXPECT_EQ(facade.SetSize(1), 29);
        EXPECT_THAT(log.Take(),
                    ::testing::ElementsAre(Logged{"Core/Libraries/Tessaro/Source/src/DataProvider",
                                                  "virtual ErrCode KORVA::IO::DataProvider::SetSize(int64)",
                                                  210, kNotInitialized}));
    }
};

struct ModeRow
{
    char const* name;
    int mode;
};

class FileAggregates : public FileProviderTestWith<ModeRow>
{
};

TEST_P(FileAggregates, AreTheURIAndTheFile)
{
    fs::path const path = mDirectory.File("file", "content");
    IO::IURIPtr const uri = MakeURI(path);
    Provider const facade = MakeFacade();
    ASSERT_EQ(facade->InitURIBased(*uri, GetParam().mode, nullptr), 0);
    IObject* found = nullptr;
    EXPECT_EQ(facade->QueryInterface(IO::IID_IURI, &found), 0);
    EXPECT_EQ(found, uri.Get());
    found = nullptr;
    ASSERT_EQ(facade->QueryInterface(FILE_SYS::IID_IFILE, &found), 0);
    auto* const file = static_cast<FILE_SYS::IFile*>(found);
    uint64 size = 0;
    EXPECT_EQ(file->GetSize(size), 0);
    EXPECT_EQ(size, 7u);
    EXPECT_EQ(facade->QueryInterface(IO::IID_IDATAPROVIDER, nullptr), -1004);
}

ModeRow const kModes[] = {{"Unknown", -1}, {"Read", 0}, {"ReadWrite", 2}, {"Three", 3}, {"Four", 4}};
INSTANTIATE_TEST_SUITE_P(Modes, FileAggregates, ::testing::ValuesIn(kModes), RowName());

struct AsyncRow
{
    char const* name;
    int mode;
    bool reader;
    bool writer;
};

class FileAsyncAggregates : public FileProviderTestWith<AsyncRow>
{
};

TEST_P(FileAsyncAggregates, AreThoseOfTheMode)
{
    Provider facade = Open(mDirectory.File("file", "content"), GetParam().mode);
    std::size_t aggregates = 2;
    auto const expect = [&](GUID const& iid, bool there) {
        aggregates += there;
        IObject* found = nullptr;
        EXPECT_EQ(facade->QueryInterface(iid, &found), there ? 0 : -1004);
        EXPECT_EQ(found != nullptr, there);
        if (!found)
            return TInterfacePtr<IObject>();
        // The table's one.
        EXPECT_EQ(ReferencesTo(*found), 1);
        EXPECT_TRUE(found->GetAggregates().empty());
        TInterfacePtr<IObject> kept;
        kept.Share(found);
        return kept;
    };
    TInterfacePtr<IObject> const reader = expect(IO::IID_ASYNC_READER, GetParam().reader);
    EXPECT_EQ(dynamic_cast<IO::IAsyncReader*>(reader.Get()) != nullptr, GetParam().reader);
    TInterfacePtr<IObject> const writer = expect(IO::IID_ASYNC_WRITER, GetParam().writer);
    EXPECT_EQ(dynamic_cast<IO::IAsyncWriter*>(writer.Get()) != nullptr, GetParam().writer);
    EXPECT_EQ(facade->GetAggregates().size(), aggregates);
    facade.Reset();
    if (reader)
    {
        EXPECT_EQ(ReferencesTo(*reader), 1);
    }
    if (writer)
    {
        EXPECT_EQ(ReferencesTo(*writer), 1);
    }
}

AsyncRow const kAsync[] = {
    {"Read", 0, true, false},           {"ReadWrite", 2, true, true},
    {"Three", 3, false, true},          {"Four", 4, true, true},
    {"AfterTheLast", 5, false, false},  {"BeforeTheFirst", -1, false, false},
    {"Largest", INT_MAX, false, false}, {"Smallest", INT_MIN, false, false},
};
INSTANTIATE_TEST_SUITE_P(Modes, FileAsyncAggregates, ::testing::ValuesIn(kAsync), RowName());

TEST_F(FileInit, ReaderAndWriterAreTheFacadesOwn)
{
    fs::path const path = mDirectory.File("file", "content");
    Provider const first = Open(path, IO::kStreamMode4);
    Provider const second = Open(path, IO::kStreamMode4);
    std::vector<IObject*> objects;
    for (Provider const& facade : {first, second})
        for (GUID const& iid : {IO::IID_ASYNC_READER, IO::IID_ASYNC_WRITER})
            EXPECT_EQ(facade->QueryInterface(iid, &objects.emplace_back()), 0);
    EXPECT_EQ(std::set<IObject*>(objects.begin(), objects.end()).size(), 4u);
}

TEST_F(FileInit, SharesWhileItLives)
{
    fs::path const path = mDirectory.File("file", "content");
    IO::IURIPtr const uri = MakeURI(path);
    auto const reporter = TESTS::MakeReporter();
    Provider facade = MakeFacade();
    ASSERT_EQ(facade->InitURIBased(*uri, IO::kStreamReadWrite, reporter.Get()), 0);
    // The provider and the facade's table, beside the test.
    EXPECT_EQ(ReferencesTo(*uri), 3);
    EXPECT_EQ(ReferencesTo(*reporter), 2);
    EXPECT_EQ(ReferencesTo(*facade), 1);
    IObject* found = nullptr;
    ASSERT_EQ(facade->QueryInterface(FILE_SYS::IID_IFILE, &found), 0);
    FILE_SYS::IFilePtr file;
    file.Share(static_cast<FILE_SYS::IFile*>(found));
    EXPECT_EQ(ReferencesTo(*file), 2);
    facade.Reset();
    EXPECT_EQ(ReferencesTo(*uri), 1);
    EXPECT_EQ(ReferencesTo(*reporter), 1);
    EXPECT_EQ(ReferencesTo(*file), 1);
    EXPECT_TRUE(DescriptorsOf(path).empty());
}

TEST_F(FileInit, ProviderOutlivesTheCallersReferences)
{
    auto reporter = TESTS::MakeReporter();
    IO::IURIPtr uri = MakeURI(mDirectory.File("file", "content"));
    Provider const facade = MakeFacade();
    ASSERT_EQ(facade->InitURIBased(*uri, IO::kStreamRead, reporter.Get()), 0);
    uri.Reset();
    TESTS::RecordingReporter* const borrowed = reporter.Get();
    reporter.Reset();
    int32 count = 1;
    EXPECT_EQ(facade->Read(nullptr, count), 3);
    EXPECT_EQ(log.Take().size(), 1u);
    ASSERT_EQ(borrowed->reports.size(), 1u);
    EXPECT_EQ(borrowed->reports[0].uri->GetScheme().ToUTF8(), "file");
}

struct FailRow
{
    char const* name;
    /// Within the directory; empty for the directory itself.
    char const* file;
    int mode;
    ErrCode result;
    std::size_t messages;
};

class FileInitFailing : public FileProviderTestWith<FailRow>
{
protected:
    fs::path PathOfRow() const
    {
        std::string const file = GetParam().file;
        return file.empty() ? mDirectory.Path() : mDirectory.Path() / file;
    }
};

TEST_P(FileInitFailing, GivesEverythingBack)
{
    fs::path const path = PathOfRow();
    IO::IURIPtr const uri = MakeURI(path);
    auto const reporter = TESTS::MakeReporter();
    Provider facade = MakeFacade();
    EXPECT_EQ(facade->InitURIBased(*uri, GetParam().mode, reporter.Get()), GetParam().result);
    EXPECT_EQ(log.Take().size(), GetParam().messages);
    EXPECT_TRUE(facade->GetAggregates().empty());
    EXPECT_EQ(ReferencesTo(*uri), 1);
    EXPECT_EQ(ReferencesTo(*reporter), 1);
    EXPECT_EQ(ReferencesTo(*facade), 1);
    EXPECT_TRUE(DescriptorsOf(path).empty());
}

TEST_P(FileInitFailing, LeavesTheResultAlone)
{
    IO::IURIPtr const uri = MakeURI(PathOfRow());
    Provider const outer = MakeFacade();
    IO::FileDataProvider other(nullptr);
    IO::DataProviderImpl* result = &other;
    EXPECT_EQ(IO::CreateFileBasedDataProvider(*uri, GetParam().mode, outer.Get(), result, nullptr),
              GetParam().result);
    EXPECT_EQ(result, &other);
    EXPECT_EQ(log.Take().size(), GetParam().messages);
    EXPECT_TRUE(outer->GetAggregates().empty());
}

FailRow const kFails[] = {
    {"Missing", "missing", 0, 26, 1},
    {"MissingForReadWrite", "missing", 2, 36, 0},
    {"Directory", "", 0, 26, 0},
    {"DirectoryForFour", "", 4, 36, 0},
};
INSTANTIATE_TEST_SUITE_P(Causes, FileInitFailing, ::testing::ValuesIn(kFails), RowName());

TEST_F(FileInit, SuccessStoresTheResult)
{
    fs::path const path = mDirectory.File("file", "content");
    Provider const outer = MakeFacade();
    IO::DataProviderImpl* result = nullptr;
    EXPECT_EQ(IO::CreateFileBasedDataProvider(*MakeURI(path), IO::kStreamRead, outer.Get(), result, nullptr),
              0);
    ASSERT_NE(result, nullptr);
    int64 size = -1;
    EXPECT_EQ(result->GetSize(size), 0);
    EXPECT_EQ(size, 7);
    EXPECT_EQ(outer->QueryInterface(IO::IID_IURI, nullptr), 0);
    delete result;
    EXPECT_TRUE(DescriptorsOf(path).empty());
}

TEST_F(FileInit, ProviderThatWasNeverInitialisedDies)
{
    auto const reporter = TESTS::MakeReporter();
    {
        IO::FileDataProvider const provider(reporter.Get());
        EXPECT_EQ(ReferencesTo(*reporter), 2);
    }
    EXPECT_EQ(ReferencesTo(*reporter), 1);
}

TEST_F(FileInit, SecondTimeForgetsTheFirst)
{
    fs::path const path = mDirectory.File("file", "content");
    IO::IURIPtr const uri = MakeURI(path);
    auto const unnamed = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    Logged const noPath{kFileSource, kOpenFile, 373, "No mPathUrl so cannot open the file."};
    // The first stream is never closed: not in a process that is looked at for leaks.
    auto const initialiseTwice = [&] {
        Provider const first = MakeFacade();
        Provider const second = MakeFacade();
        {
            IO::FileDataProvider provider(nullptr);
            if (provider.Init(*uri, IO::kStreamRead, first.Get()) != 0 || ReferencesTo(*uri) != 3)
                return 1;
            if (provider.Init(*unnamed, IO::kStreamRead, second.Get()) != 26)
                return 2;
            if (log.Take() != std::vector<Logged>{noPath} || !second->GetAggregates().empty())
                return 3;
            // What is left is the reference of the first facade.
            if (ReferencesTo(*uri) != 2 || ReferencesTo(*unnamed) != 2)
                return 4;
        }
        return DescriptorsOf(path).size() == 1 ? 0 : 5;
    };
    EXPECT_EQ(TESTS::ChildProcess(initialiseTwice).Wait(), 0);
}

TEST_F(FileInit, FailedFacadeCanBeInitialisedAgain)
{
    Provider const facade = MakeFacade();
    EXPECT_EQ(facade->InitURIBased(*MakeURI(mDirectory.Path()), IO::kStreamRead, nullptr), 26);
    ExpectUninitialized(*facade);
    EXPECT_EQ(facade->InitURIBased(*MakeURI(mDirectory.File("file", "content")), IO::kStreamRead, nullptr),
              0);
    EXPECT_EQ(facade->Size(), 7);
}

TEST_F(FileInit, WithoutAModeReadsOnly)
{
    fs::path const path = mDirectory.File("file", "content");
    IO::IURIPtr const uri = MakeURI(path);
    auto const reporter = TESTS::MakeReporter();
    Provider const facade = MakeFacade();
    EXPECT_EQ(facade->Init(*uri, reporter.Get()), 0);
    std::vector<int> const descriptors = DescriptorsOf(path);
    ASSERT_EQ(descriptors.size(), 1u);
    EXPECT_EQ(fcntl(descriptors[0], F_GETFL) & O_ACCMODE, O_RDONLY);
    char text[8] = {};
    int32 count = 8;
    EXPECT_EQ(facade->Read(text, count), 0);
    EXPECT_STREQ(text, "content");
    count = 1;
    EXPECT_EQ(facade->Read(text, count), 3);
    EXPECT_EQ(reporter->reports, (std::vector<TESTS::Reported>{{uri.Get(), 3, 0}}));
    // Reading takes no lock: somebody else may open the file for both.
    EXPECT_EQ(TryToOpen(path, IO::kStreamReadWrite), 0);
}

TEST_F(FileInit, WithoutAModeLogsOnceMoreWhenItFails)
{
    fs::path const missing = mDirectory.Path() / "missing";
    Provider const facade = MakeFacade();
    EXPECT_EQ(facade->Init(*MakeURI(missing), nullptr), -1000);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(OpenFailed(missing), kInitFailed));
    ExpectUninitialized(*facade);
    EXPECT_EQ(facade->Init(*MakeURI(mDirectory.Path()), nullptr), -1000);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kInitFailed));
    EXPECT_TRUE(facade->GetAggregates().empty());
}

class FileInitWithoutFileLibrary : public FileInit
{
protected:
    /// Made while the library can still be reached.
    FileInitWithoutFileLibrary()
        : mPath(mDirectory.File("file", "content")), mURI(MakeURI(mPath)), mFacade(MakeFacade())
    {}

    void ExpectNothingOpened()
    {
        EXPECT_TRUE(mFacade->GetAggregates().empty());
        EXPECT_TRUE(DescriptorsOf(mPath).empty());
        EXPECT_EQ(ReferencesTo(*mURI), 1);
    }

    fs::path mPath;
    IO::IURIPtr mURI;
    Provider mFacade;
};

TEST_F(FileInitWithoutFileLibrary, RegistryMakesNoFile)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> bare;
    bare.Adopt(COREREGISTRY::CreateCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(bare.Get());
    EXPECT_EQ(mFacade->InitURIBased(*mURI, IO::kStreamRead, nullptr), 1);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kCreateFailed));
    ExpectNothingOpened();
    EXPECT_EQ(mFacade->Init(*mURI, nullptr), -1000);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kCreateFailed, kInitFailed));
}

TEST_F(FileInitWithoutFileLibrary, NoRegistry)
{
    COREREGISTRY::InstallCoreRegistry(nullptr);
    EXPECT_EQ(mFacade->InitURIBased(*mURI, IO::kStreamReadWrite, nullptr), 1);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kNoFactory, kCreateFailed));
    ExpectNothingOpened();
}

TEST_F(FileInitWithoutFileLibrary, IsNoticedBeforeThePath)
{
    auto const unnamed = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    COREREGISTRY::InstallCoreRegistry(nullptr);
    EXPECT_EQ(mFacade->InitURIBased(*unnamed, IO::kStreamRead, nullptr), 1);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(kNoFactory, kCreateFailed));
}
} // namespace
} // namespace KORVA
