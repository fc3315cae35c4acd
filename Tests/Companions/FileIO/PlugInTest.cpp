// The companion's entry points.
#include "Companions/FileIO/FileFixture.h"
#include "SDK/Tracked.h"

namespace KORVA::TESTS
{
namespace
{
TEST(FileSystemPlugIn, RegistersAndTakesBackItsFactory)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    EXPECT_EQ(KorvaPlugInInit(registry.Get()), 0);
    TInterfacePtr<IObject> file;
    EXPECT_EQ(registry->CreateInstance(FILE_SYS::IID_IFILE, file.Out()), 0);
    ASSERT_TRUE(file);
    EXPECT_EQ(CountOf(*file), 1);
    EXPECT_EQ(KorvaPlugInShutdown(registry.Get()), 0);
    EXPECT_EQ(registry->CreateInstance(FILE_SYS::IID_IFILE, file.Out()), -1004);
    EXPECT_FALSE(file);
}

TEST(FileSystemPlugIn, RefusesASecondStart)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    ASSERT_EQ(KorvaPlugInInit(registry.Get()), 0);
    EXPECT_NE(KorvaPlugInInit(registry.Get()), 0);
    // Nothing of a second factory is left behind.
    EXPECT_EQ(KorvaPlugInShutdown(registry.Get()), 0);
    TInterfacePtr<IObject> file;
    EXPECT_EQ(registry->CreateInstance(FILE_SYS::IID_IFILE, file.Out()), -1004);
    EXPECT_NE(KorvaPlugInShutdown(registry.Get()), 0);
}

TEST(FileSystemPlugIn, RefusesNull)
{
    EXPECT_NE(KorvaPlugInInit(nullptr), 0);
    EXPECT_NE(KorvaPlugInShutdown(nullptr), 0);
}
} // namespace
} // namespace KORVA::TESTS
