// Initialisation: what is registered, in which order, and what failures do.
#include <tessio/TessIO/TessIO.h>

#include "Registration.h"
#include "SDK/TessIO/RecordingRegistry.h"
#include "SDK/Tracked.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include "URI.h"
#include "URIRegistry.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURIRegistry.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::ICoreRegistry;

Logged const kNoHost{"Core/Libraries/Tessaro/Source/src/LibUtils",
                     "int KORVA::IO::Init(KORVA::COREREGISTRY::ICoreRegistry *)", 47, "No host"};

/// A recording registry that is the process's own for the duration of a test.
class InitTest : public ::testing::Test
{
protected:
    InitTest() { Use(new RecordingRegistry); }
    ~InitTest() override { COREREGISTRY::InstallCoreRegistry(nullptr); }

    void Use(RecordingRegistry* made)
    {
        registry.Adopt(made);
        COREREGISTRY::InstallCoreRegistry(made);
    }

    LogCapture log;
    TInterfacePtr<RecordingRegistry> registry;
};

TEST_F(InitTest, WithoutARegistryLogsAndRegistersNothing)
{
    EXPECT_EQ(IO::Init(nullptr), -50);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoHost});
    EXPECT_EQ(registry->registrations, 0);
    EXPECT_TRUE(registry->asked.empty());
}

struct Named
{
    char const* name;
    GUID id;
};

Named const kClasses[] = {
    {"URI", IO::IID_IURI},
    {"RelativeURI", IO::IID_IRELATIVE_URI},
    {"BufferedDataProvider", IO::IID_BUFFERED_DATAPROVIDER},
    {"DataProvider", IO::IID_IDATAPROVIDER},
    {"DataProviderStream", IO::IID_DATAPROVIDERSTREAM},
    {"PersistentDictionary", IO::IID_PERSISTENT_DICTIONARY},
    {"Dictionary", IO::IID_DICTIONARY},
    {"DictionaryValue", IO::IID_IDICTIONARY_VALUE},
    {"StringDictionary", IO::IID_STRING_DICTIONARY},
    {"URIRegistry", IO::IID_URI_REGISTRY},
    {"FileProxy", IO::IID_FILEPROXY},
    {"URICredential", IO::IID_URI_CREDENTIAL},
    {"URIAuthenticationChallenge", IO::IID_URI_AUTHENTICATION_CHALLENGE},
};

/// The classes that a factory makes, by name.
std::string Served(IClassFactory& factory)
{
    std::string names;
    for (Named const& known : kClasses)
    {
        TInterfacePtr<IObject> object;
        if (factory.CreateInstance(known.id, object.Out()) == 0)
            names += std::string(names.empty() ? "" : " ") + known.name;
    }
    return names;
}

TEST_F(InitTest, RegistersTheFactoriesInTheirOrder)
{
    EXPECT_EQ(IO::Init(registry.Get()), 0);
    std::vector<std::string> served;
    for (auto const& factory : registry->factories)
        served.push_back(Served(*factory));
    EXPECT_EQ(served, (std::vector<std::string>{
                          "URI", "RelativeURI", "BufferedDataProvider", "DataProvider DataProviderStream",
                          "PersistentDictionary Dictionary DictionaryValue", "StringDictionary",
                          "URIRegistry", "FileProxy", "URICredential", "URIAuthenticationChallenge"}));
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(InitTest, LeavesTheRegistryTheOnlyReferenceToEachFactory)
{
    EXPECT_EQ(IO::Init(registry.Get()), 0);
    for (auto const& factory : registry->factories)
        EXPECT_EQ(CountOf(*factory), 1);
}

TEST_F(InitTest, AnswersZeroWhenEveryRegistrationIsRejected)
{
    Use(new RecordingRegistry(5, true));
    EXPECT_EQ(IO::Init(registry.Get()), 0);
    EXPECT_EQ(registry->registrations, 10);
    EXPECT_EQ(CountOf(*registry->witness), 1) << "factories that nobody keeps are gone";
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(InitTest, RegistersTheSameAgainWithAnotherRegistry)
{
    EXPECT_EQ(IO::Init(registry.Get()), 0);
    Use(new RecordingRegistry);
    EXPECT_EQ(IO::Init(registry.Get()), 0);
    EXPECT_EQ(registry->factories.size(), 10u);
}

TEST_F(InitTest, ShutdownUnregistersNothing)
{
    EXPECT_EQ(IO::Init(registry.Get()), 0);
    IO::Shutdown();
    EXPECT_EQ(registry->unregistrations, 0);
    EXPECT_EQ(registry->factories.size(), 10u);
    EXPECT_EQ(Served(*registry->factories[5]), "StringDictionary");
    TInterfacePtr<IObject> object;
    EXPECT_EQ(registry->factories[0]->CreateInstance(IO::IID_IURI, object.Out()), 0);
    EXPECT_TRUE(object);
}

struct Registration
{
    char const* name;
    int (*registerFactory)(ICoreRegistry*);
    char const* serves;
};

Registration const kRegistrations[] = {
    {"URI", &IO::RegisterURIFactory, "URI"},
    {"RelativeURI", &IO::RegisterRelativeURIFactory, "RelativeURI"},
    {"BufferedDataProvider", &IO::RegisterBufferedDataProviderFactory, "BufferedDataProvider"},
    {"DataProvider", &IO::RegisterDataProviderFactory, "DataProvider DataProviderStream"},
    {"PersisentDictionary", &IO::RegisterPersisentDictionaryFactory,
     "PersistentDictionary Dictionary DictionaryValue"},
    {"StringDictionary", &IO::RegisterStringDictionaryFactory, "StringDictionary"},
    {"URIRegistry", &IO::RegisterURIRegistryFactory, "URIRegistry"},
    {"URIScheme", &IO::RegisterURISchemeFactory, "FileProxy"},
    {"URICredential", &IO::RegisterURICredentialFactory, "URICredential"},
    {"URIAuthenticationChallenge", &IO::RegisterURIAuthenticationChallengeFactory,
     "URIAuthenticationChallenge"},
};

class RegistrationTest : public ::testing::TestWithParam<Registration>
{
protected:
    static TInterfacePtr<RecordingRegistry> Make(int result, bool rejects)
    {
        TInterfacePtr<RecordingRegistry> registry;
        registry.Adopt(new RecordingRegistry(result, rejects));
        return registry;
    }
};

TEST_P(RegistrationTest, RegistersItsFactoryOnceAndReleasesIt)
{
    auto const registry = Make(0, false);
    EXPECT_EQ(GetParam().registerFactory(registry.Get()), 0);
    ASSERT_EQ(registry->factories.size(), 1u);
    EXPECT_EQ(CountOf(*registry->factories[0]), 1);
    EXPECT_EQ(Served(*registry->factories[0]), GetParam().serves);
}

TEST_P(RegistrationTest, GivesTheRegistrysResultUnchanged)
{
    EXPECT_EQ(GetParam().registerFactory(Make(77, false).Get()), 77);
    auto const rejecting = Make(-3, true);
    EXPECT_EQ(GetParam().registerFactory(rejecting.Get()), -3);
    EXPECT_EQ(CountOf(*rejecting->witness), 1) << "a factory that the registry does not keep is gone";
}

INSTANTIATE_TEST_SUITE_P(Factories, RegistrationTest, ::testing::ValuesIn(kRegistrations), RowName());

/// The table of schemes is the process's and never shrinks, so these run in a process of their own.
class FreshProcessDeathTest : public ::testing::Test
{
protected:
    FreshProcessDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// What creating a file object for a "file" URI answers through `registry`.
    static int CreateFileObject(RecordingRegistry& registry)
    {
        COREREGISTRY::InstallCoreRegistry(&registry);
        IO::IURIPtr uri;
        uri.Adopt(new IO::URI);
        uri->Init(u"file:///a");
        TInterfacePtr<IO::IURIRegistry> schemes;
        schemes.Adopt(new IO::URIRegistry);
        IO::IURIFilePtr file;
        int const result = schemes->Create(*uri, file, nullptr);
        COREREGISTRY::InstallCoreRegistry(nullptr);
        return result;
    }

    /// 0 when all holds, else the number of the first thing that does not.
    static int TryRejecting()
    {
        TInterfacePtr<RecordingRegistry> registry;
        registry.Adopt(new RecordingRegistry(5, true));
        registry->creation = 77;
        if (CreateFileObject(*registry) != -1004)
            return 1;
        if (IO::Init(registry.Get()) != 0)
            return 2;
        if (CreateFileObject(*registry) != 77)
            return 3;
        bool const proxy = registry->asked.size() == 1 && registry->asked[0] == IO::IID_FILEPROXY;
        return proxy ? 0 : 4;
    }

    static int TryNull()
    {
        LogCapture log;
        int const result = IO::Init(nullptr);
        if (log.Take().size() != 1 || result != -50)
            return 1;
        TInterfacePtr<RecordingRegistry> registry;
        registry.Adopt(new RecordingRegistry);
        registry->creation = 77;
        return CreateFileObject(*registry) == -1004 && registry->asked.empty() ? 0 : 2;
    }
};

TEST_F(FreshProcessDeathTest, ARejectingRegistryStillGetsTheSchemeMapped)
{
    EXPECT_EXIT(std::exit(TryRejecting()), ::testing::ExitedWithCode(0), "");
}

/// Logs a message past every sink and waits until it is in the library's log file, for a minute at most.
int LogToFile(std::filesystem::path const& directory)
{
    alarm(60);
    static_cast<void>(IO::Init(nullptr));
    std::filesystem::path const file = directory / "Vantorel.log";
    while (!std::filesystem::exists(file) || Content(file).find("No host") == std::string::npos)
        usleep(10'000);
    return 0;
}

TEST_F(FreshProcessDeathTest, TheLogFileHasTheLibrarysName)
{
    // The library names its file while it is loaded, so the directory must be known to the new process
    // before.
    constexpr char kMark[] = "TESSIO_TEST_LOG_DIR";
    std::optional<TemporaryDirectory> directory;
    if (!std::getenv(kMark))
    {
        directory.emplace();
        setenv(kMark, directory->Path().c_str(), 1);
        setenv("KORVA_LOG_DIR", directory->Path().c_str(), 1);
    }
    EXPECT_EXIT(std::exit(LogToFile(std::getenv(kMark))), ::testing::ExitedWithCode(0), "");
    unsetenv(kMark);
    unsetenv("KORVA_LOG_DIR");
}

TEST_F(FreshProcessDeathTest, WithoutARegistryNoSchemeIsMapped)
{
    EXPECT_EXIT(std::exit(TryNull()), ::testing::ExitedWithCode(0), "");
}
} // namespace
} // namespace KORVA::TESTS
