// Creating and binding a file object through a factory.
#include <tessio/FileIO/LibUtils.h>

#include "SDK/Tracked.h"
#include "Support/LogCapture.h"
#include <tessio/ObjectModel/TObject.h>

#include <gtest/gtest.h>

#include <vector>

namespace KORVA::TESTS
{
namespace
{
using FILE_SYS::CreateSystemFile;
using FILE_SYS::IFile;
using FILE_SYS::IFilePtr;
using STRING::CoreString;

Logged const kNoFactory{"../../../../SDK/Headers/Core/LibSupport/FileIO/LibUtils",
                        "ErrCode KORVA::FILE_SYS::CreateSystemFile(KORVA::IClassFactory *, IFilePtr &, const "
                        "STRING::CoreString &)",
                        147, "Attempted to use a library util without a factory pointer"};

/// Records the paths it is bound to and answers `binds`.
class FakeFile final : public TObject<IFile>
{
public:
    FakeFile(std::vector<std::string>& paths, bool binds) : mPaths(paths), mBinds(binds) {}

    bool BindPath(CoreString const& path) override
    {
        mPaths.push_back(path.ToUTF8());
        return mBinds;
    }
    bool Exists() override { return false; }
    FILE_SYS::ErrCode QueryFlag(uchar&) override { return 1; }
    FILE_SYS::ErrCode ReadPermissions(uchar (&)[3]) override { return 1; }
    FILE_SYS::ErrCode Create() override { return 1; }
    FILE_SYS::ErrCode Delete() override { return 1; }
    FILE_SYS::ErrCode GetSize(uint64&) override { return 1; }
    FILE_SYS::ErrCode GetModificationDate(uint64&) override { return 1; }
    FILE_SYS::ErrCode SetModificationDate(uint64&) override { return 1; }
    FILE_SYS::ErrCode GetCreationDate(uint64&) override { return 1; }
    FILE_SYS::ErrCode SetCreationDate(uint64&) override { return 1; }
    FILE_SYS::ErrCode CopyTo(CoreString const&) override { return 1; }
    FILE_SYS::ErrCode MoveTo(CoreString const&) override { return 1; }
    FILE_SYS::ErrCode Sync() override { return 1; }
    FILE_SYS::ErrCode Replace(void const*, uint64) override { return 1; }

private:
    std::vector<std::string>& mPaths;
    bool mBinds;
};

/// Answers `result` and, once, the object it was made with. Keeps the ids it is asked for.
class FakeFactory final : public TObject<IClassFactory>
{
public:
    FakeFactory(ErrCode result, IObject* object) : mResult(result), mObject(object) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        asked.push_back(classId);
        *out = std::exchange(mObject, nullptr);
        return mResult;
    }

    std::vector<GUID> asked;

private:
    ErrCode mResult;
    IObject* mObject;
};

class CreateSystemFileTest : public ::testing::Test
{
protected:
    CreateSystemFileTest() { held.Adopt(new FakeFile(paths, true)); }

    LogCapture log;
    std::vector<std::string> paths;
    IFilePtr held;
};

TEST_F(CreateSystemFileTest, WithoutAFactoryLogsAndAnswers1)
{
    IFile* const before = held.Get();
    EXPECT_EQ(CreateSystemFile(nullptr, held, u"/a"), 1);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoFactory});
    EXPECT_EQ(held.Get(), before);
    EXPECT_TRUE(paths.empty());
}

TEST_F(CreateSystemFileTest, AFactoryThatMakesNothingIsAnsweredWith1InSilence)
{
    IFile* const before = held.Get();
    for (ErrCode const result : {-1004, 0})
    {
        TInterfacePtr<FakeFactory> factory;
        factory.Adopt(new FakeFactory(result, nullptr));
        EXPECT_EQ(CreateSystemFile(factory.Get(), held, u"/a"), 1);
        EXPECT_EQ(log.Take(), kNothing);
        EXPECT_EQ(held.Get(), before);
    }
    EXPECT_TRUE(paths.empty());
}

TEST_F(CreateSystemFileTest, StoresAndBindsTheObject)
{
    std::vector<std::string> boundPaths;
    auto* const file = new FakeFile(boundPaths, true);
    TInterfacePtr<FakeFactory> factory;
    factory.Adopt(new FakeFactory(0, file));
    IFilePtr before = held;
    EXPECT_EQ(CreateSystemFile(factory.Get(), held, u"/tmp/a b"), 0);
    EXPECT_EQ(held.Get(), file);
    EXPECT_EQ(CountOf(*file), 1) << "the creating reference is adopted";
    EXPECT_EQ(CountOf(*before), 1) << "what was held is released";
    EXPECT_EQ(boundPaths, std::vector<std::string>{"/tmp/a b"});
    EXPECT_TRUE(paths.empty());
    ASSERT_EQ(factory->asked.size(), 1u);
    EXPECT_TRUE(factory->asked[0] ==
                (GUID{0xF123396E, 0x0378, 0x4B45, {0x82, 0xE5, 0x65, 0x71, 0x70, 0xE3, 0x1A, 0x2A}}));
}

TEST_F(CreateSystemFileTest, LooksNeitherAtTheFactorysNorAtTheBindingsResult)
{
    std::vector<std::string> boundPaths;
    TInterfacePtr<FakeFactory> factory;
    factory.Adopt(new FakeFactory(55, new FakeFile(boundPaths, false)));
    IFilePtr file;
    EXPECT_EQ(CreateSystemFile(factory.Get(), file, u""), 0);
    EXPECT_TRUE(file);
    EXPECT_EQ(boundPaths, std::vector<std::string>{""});
}
} // namespace
} // namespace KORVA::TESTS
