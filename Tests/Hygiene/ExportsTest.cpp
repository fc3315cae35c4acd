// What the shared library shows to the world.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>
#include <string>

namespace KORVA::TESTS
{
namespace
{
/// Names that the dynamic symbol table defines, without their versions.
std::set<std::string> ExportsOf(std::string const& library)
{
    std::set<std::string> names;
    std::FILE* const nm = popen(("nm -D --defined-only '" + library + "'").c_str(), "r");
    if (!nm)
        return names;
    char line[4096];
    while (std::fgets(line, sizeof line, nm))
    {
        std::istringstream in(line);
        std::string address;
        std::string type;
        std::string name;
        in >> address >> type >> name;
        names.insert(name.substr(0, name.find('@')));
    }
    EXPECT_EQ(pclose(nm), 0);
    return names;
}

TEST(Exports, AreTheEntryPointsAndTheInterfacesTypeRecords)
{
    std::set<std::string> expected{
        "_ZN5KORVA2IO4InitEPNS_12COREREGISTRY13ICoreRegistryE",
        "_ZN5KORVA2IO8ShutdownEv",
        "TESSIO_1",
    };
    for (char const* const interface :
         {"7IObject", "13IClassFactory", "11IDictionary", "17IStringDictionary", "2IO13IDataProvider",
          "2IO19IDataProviderStream", "2IO15IPersistentData", "2IO4IURI", "2IO16IURIDataProvider",
          "2IO8IURIFile", "2IO12IURIRegistry", "2IO12IAsyncReader", "2IO10IAsyncTask", "2IO12IAsyncWriter",
          "2IO21IBufferedDataProvider", "2IO12IRelativeURI", "2IO27IURIAuthenticationChallenge",
          "2IO14IURICredential"})
    {
        expected.insert(std::string("_ZTIN5KORVA") + interface + "E");
        expected.insert(std::string("_ZTSN5KORVA") + interface + "E");
    }
    EXPECT_EQ(ExportsOf(TESSIO_BINARY_DIR "/lib/libTessIO.so"), expected);
}

TEST(Exports, OfTheFileSystemCompanionAreThoseOfAPlugIn)
{
    std::set<std::string> const names = ExportsOf(TESSIO_BINARY_DIR "/lib/libKorvaFileIO.so");
    EXPECT_TRUE(names.contains("KorvaPlugInInit"));
    EXPECT_TRUE(names.contains("KorvaPlugInShutdown"));
}
} // namespace
} // namespace KORVA::TESTS
