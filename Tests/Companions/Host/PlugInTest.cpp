// Loading and unloading plug-ins.
#include "Support/LogCapture.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/Host.h>
#include <tessio/TessIO/ClassIds.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;

constexpr GUID kClassOfFirst{0x7E57C1A5, 0, 0, {}};
constexpr GUID kClassOfSecond{0x7E57C1A5, 1, 0, {}};
constexpr char kFirst[] = TESSIO_BINARY_DIR "/lib/libTestPlugInFirst.so";
constexpr char kSecond[] = TESSIO_BINARY_DIR "/lib/libTestPlugInSecond.so";
constexpr char kRefusing[] = TESSIO_BINARY_DIR "/lib/libTestPlugInRefusing.so";

class PlugInTest : public ::testing::Test
{
protected:
    PlugInTest()
    {
        setenv("TEST_PLUG_IN_LOG", file.c_str(), 1);
        host = HOST::Host::Boot(error);
    }

    ~PlugInTest() override
    {
        unsetenv("TEST_PLUG_IN_LOG");
        std::remove(file.c_str());
    }

    void SetUp() override { ASSERT_TRUE(host) << error; }

    /// What the plug-ins were asked, with their numbers.
    std::string Asked() const
    {
        std::ifstream in(file);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    LogCapture log;
    std::string const file = testing::TempDir() + "/tessio-plug-in-" + std::to_string(getpid()) + ".txt";
    std::string error;
    std::unique_ptr<HOST::Host> host;
};

TEST_F(PlugInTest, BringsItsClasses)
{
    EXPECT_FALSE(CreateObject<IObject>(kClassOfFirst));
    ASSERT_TRUE(host->LoadPlugIn(kFirst, error)) << error;
    EXPECT_TRUE(CreateObject<IObject>(kClassOfFirst));
    EXPECT_FALSE(CreateObject<IObject>(kClassOfSecond));
    EXPECT_TRUE(CreateObject<IObject>(IO::IID_IURI)) << "the library's classes stay";
    EXPECT_EQ(Asked(), "init 0\n");
}

TEST_F(PlugInTest, TakesItsClassesAndNoOthersAlong)
{
    ASSERT_TRUE(host->LoadPlugIn(kFirst, error)) << error;
    ASSERT_TRUE(host->LoadPlugIn(kSecond, error)) << error;
    EXPECT_TRUE(CreateObject<IObject>(kClassOfFirst));
    ASSERT_TRUE(host->UnloadPlugIn(kFirst, error)) << error;
    EXPECT_FALSE(CreateObject<IObject>(kClassOfFirst));
    EXPECT_TRUE(CreateObject<IObject>(kClassOfSecond));
    EXPECT_EQ(Asked(), "init 0\ninit 1\nshutdown 0\n");
    ASSERT_TRUE(host->LoadPlugIn(kFirst, error)) << error;
    EXPECT_TRUE(CreateObject<IObject>(kClassOfFirst));
}

TEST_F(PlugInTest, PlugInsAreShutDownInReverseOrder)
{
    ASSERT_TRUE(host->LoadPlugIn(kSecond, error)) << error;
    ASSERT_TRUE(host->LoadPlugIn(kFirst, error)) << error;
    host.reset();
    EXPECT_EQ(Asked(), "init 1\ninit 0\nshutdown 0\nshutdown 1\n");
}

TEST_F(PlugInTest, AMissingFileIsRefusedByName)
{
    EXPECT_FALSE(host->LoadPlugIn("/no/such/plugin.so", error));
    EXPECT_NE(error.find("/no/such/plugin.so"), std::string::npos) << error;
}

TEST_F(PlugInTest, AFileThatIsNoPlugInIsRefusedByName)
{
    EXPECT_FALSE(host->LoadPlugIn("libKorvaCoreString.so.1", error));
    EXPECT_NE(error.find("libKorvaCoreString.so.1"), std::string::npos) << error;
    EXPECT_FALSE(host->UnloadPlugIn("libKorvaCoreString.so.1", error));
    EXPECT_FALSE(host->LoadPlugIn("/dev/null", error));
    EXPECT_TRUE(CreateObject<IObject>(IO::IID_IURI));
}

TEST_F(PlugInTest, APlugInThatRefusesToStartIsNotLoaded)
{
    EXPECT_FALSE(host->LoadPlugIn(kRefusing, error));
    EXPECT_NE(error.find(kRefusing), std::string::npos) << error;
    EXPECT_NE(error.find("42"), std::string::npos) << error;
    EXPECT_FALSE(host->UnloadPlugIn(kRefusing, error));
    host.reset();
    EXPECT_EQ(Asked(), "init 2\n") << "what did not start is not shut down";
}

TEST_F(PlugInTest, UnloadingWhatIsNotLoadedIsRefused)
{
    EXPECT_FALSE(host->UnloadPlugIn(kFirst, error));
    EXPECT_NE(error, "");
    EXPECT_EQ(Asked(), "");
}
} // namespace
} // namespace KORVA::TESTS
