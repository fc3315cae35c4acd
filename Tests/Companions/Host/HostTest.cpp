// Booting a process through the installed libraries, found by name.
#include <tessio/Host/Host.h>

#include "Support/LogCapture.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/FileIO/IFile.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IURIFile.h>
#include <tessio/TessIO/IURIRegistry.h>
#include <tessio/TessIO/LibUtils.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <string>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;
using HOST::Host;

class HostTest : public ::testing::Test
{
protected:
    ~HostTest() override { EXPECT_EQ(error, ""); }

    LogCapture log;
    std::string error;
};

TEST_F(HostTest, BootsTheLibraryAndTheCompanions)
{
    auto const host = Host::Boot(error);
    ASSERT_TRUE(host) << error;
    EXPECT_NE(host->Registry(), nullptr);
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), host->Registry());
    for (GUID const& id :
         {IO::IID_IURI, IO::IID_IDATAPROVIDER, IO::IID_DATAPROVIDERSTREAM, IO::IID_PERSISTENT_DICTIONARY,
          IO::IID_DICTIONARY, IO::IID_IDICTIONARY_VALUE, IO::IID_STRING_DICTIONARY, IO::IID_URI_REGISTRY,
          IO::IID_FILEPROXY, FILE_SYS::IID_IFILE})
        EXPECT_TRUE(CreateObject<IObject>(id));
}

TEST_F(HostTest, ADictionaryGoesToAFileAndBack)
{
    auto const host = Host::Boot(error);
    ASSERT_TRUE(host) << error;
    std::string name = (std::string(P_tmpdir) + "/tessio-host-XXXXXX");
    int const descriptor = mkstemp(name.data());
    ASSERT_GE(descriptor, 0);
    ASSERT_EQ(close(descriptor), 0);

    IO::IURIPtr uri;
    ASSERT_EQ(IO::CreateURI(host->Registry(), uri, STRING::CoreString(name.c_str())), 0);
    auto const schemes = CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
    IO::IURIFilePtr file;
    ASSERT_EQ(schemes->Create(*uri, file, nullptr), 0);
    {
        TInterfacePtr<IO::IDataProviderStream> stream;
        ASSERT_EQ(file->Write(stream), 0);
        auto const dictionary = CreateObject<IDictionary>(IO::IID_DICTIONARY);
        dictionary->Put(1, 7);
        *stream << static_cast<IObject const&>(*dictionary);
    }
    uint64 size = 0;
    EXPECT_EQ(file->GetSize(size), 0);
    EXPECT_EQ(size, 84u);
    {
        TInterfacePtr<IO::IDataProviderStream> stream;
        ASSERT_EQ(file->Read(stream), 0);
        IObject* read = nullptr;
        *stream >> &read;
        TInterfacePtr<IDictionary> dictionary;
        dictionary.Adopt(static_cast<IDictionary*>(read));
        ASSERT_TRUE(dictionary);
        int value = 0;
        EXPECT_EQ(dictionary->Get(1, value), 0);
        EXPECT_EQ(value, 7);
    }
    EXPECT_EQ(file->Delete(), 0);
}

TEST_F(HostTest, TheLibrarysFailuresReachTheLoggingService)
{
    auto const host = Host::Boot(error);
    ASSERT_TRUE(host) << error;
    auto const provider = CreateObject<IO::IDataProvider>(IO::IID_IDATAPROVIDER);
    EXPECT_EQ(provider->Size(), 0);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{{"Core/Libraries/Tessaro/Source/src/DataProvider",
                                                "virtual int64 KORVA::IO::DataProvider::Size() const", 201,
                                                "Attempting to use a non-initialized data provider"}}));
}

TEST_F(HostTest, ASecondHostIsRefused)
{
    auto const host = Host::Boot(error);
    ASSERT_TRUE(host) << error;
    std::string refusal;
    EXPECT_FALSE(Host::Boot(refusal));
    EXPECT_NE(refusal, "");
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), host->Registry());
    EXPECT_TRUE(CreateObject<IO::IURI>(IO::IID_IURI));
}

TEST_F(HostTest, BootsAgain)
{
    for (int i = 0; i < 3; ++i)
    {
        auto const host = Host::Boot(error);
        ASSERT_TRUE(host) << error;
        EXPECT_TRUE(CreateObject<IO::IURI>(IO::IID_IURI));
        EXPECT_TRUE(CreateObject<FILE_SYS::IFile>(FILE_SYS::IID_IFILE));
    }
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), nullptr);
}

TEST_F(HostTest, ObjectsMayBeReleasedAfterTheHost)
{
    auto host = Host::Boot(error);
    ASSERT_TRUE(host) << error;
    auto dictionary = CreateObject<IDictionary>(IO::IID_DICTIONARY);
    auto const file = CreateObject<FILE_SYS::IFile>(FILE_SYS::IID_IFILE);
    dictionary->Put(1, 7);
    host.reset();
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_FALSE(file->Exists());
}

TEST_F(HostTest, SaysWhichLibraryIsMissing)
{
    std::string reason;
    EXPECT_FALSE(Host::Boot({"libNoSuchLibrary.so", "libKorvaFileIO.so.1"}, reason));
    EXPECT_NE(reason.find("libNoSuchLibrary.so"), std::string::npos) << reason;
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), nullptr) << "nothing is left of a boot that failed";
    EXPECT_TRUE(Host::Boot(error)) << error;
}

TEST_F(HostTest, SaysWhichFileSystemIsMissing)
{
    std::string reason;
    EXPECT_FALSE(Host::Boot({"libTessIO.so.1", "libNoSuchFileSystem.so"}, reason));
    EXPECT_NE(reason.find("libNoSuchFileSystem.so"), std::string::npos) << reason;
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), nullptr);
    EXPECT_TRUE(Host::Boot(error)) << error;
}

TEST_F(HostTest, RefusesALibraryThatIsNotTheLibrary)
{
    std::string reason;
    EXPECT_FALSE(Host::Boot({"libKorvaCoreString.so.1", "libKorvaFileIO.so.1"}, reason));
    EXPECT_NE(reason.find("libKorvaCoreString.so.1"), std::string::npos) << reason;
    EXPECT_FALSE(Host::Boot({"libTessIO.so.1", "libKorvaCoreString.so.1"}, reason));
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), nullptr);
    EXPECT_TRUE(Host::Boot(error)) << error;
}
} // namespace
} // namespace KORVA::TESTS
