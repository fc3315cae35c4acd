// The inline helper that makes file objects, against factories of every kind.
#include <tessio/FileIO/LibUtils.h>

#include "Mac/FileProviderFixture.h"
#include <tessio/CoreRegistry/CoreRegistry.h>

#include <gmock/gmock.h>

namespace KORVA
{
namespace
{
using FILE_SYS::CreateSystemFile;
using STRING::CoreString;
using TESTS::FileProviderTest;
using TESTS::FileProviderTestWith;
using TESTS::Logged;
using TESTS::ReferencesTo;
using TESTS::RowName;

/// Remembers what it was bound to and refuses everything.
class UselessFile final : public TObject<FILE_SYS::IFile>
{
public:
    bool BindPath(CoreString const& path) override
    {
        bound.push_back(path.ToUTF8());
        return false;
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

    std::vector<std::string> bound;
};

/// Answers `code`, whether it makes an object or not.
class StubbornFactory final : public TObject<IClassFactory>
{
public:
    StubbornFactory(ErrCode code, bool makes) : mCode(code), mMakes(makes) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        asked.push_back(classId);
        // Not even null is stored where there is no object.
        if (mMakes)
        {
            made = new UselessFile;
            *out = made;
        }
        return mCode;
    }

    std::vector<GUID> asked;
    UselessFile* made = nullptr;

private:
    ErrCode mCode;
    bool mMakes;
};

TInterfacePtr<StubbornFactory> MakeFactory(ErrCode code, bool makes)
{
    TInterfacePtr<StubbornFactory> factory;
    factory.Adopt(new StubbornFactory(code, makes));
    return factory;
}

FILE_SYS::IFilePtr MakeUselessFile()
{
    FILE_SYS::IFilePtr file;
    file.Adopt(new UselessFile);
    return file;
}

struct Row
{
    char const* name;
    ErrCode code;
    bool makes;
    ErrCode result;
};

class SystemFile : public FileProviderTestWith<Row>
{
};

TEST_P(SystemFile, DependsOnTheObjectAlone)
{
    auto const factory = MakeFactory(GetParam().code, GetParam().makes);
    FILE_SYS::IFilePtr const before = MakeUselessFile();
    FILE_SYS::IFilePtr file = before;
    EXPECT_EQ(CreateSystemFile(factory.Get(), file, CoreString("/a/b")), GetParam().result);
    EXPECT_EQ(factory->asked, std::vector<GUID>{FILE_SYS::IID_IFILE});
    if (GetParam().makes)
    {
        EXPECT_EQ(file.Get(), factory->made);
        EXPECT_EQ(factory->made->bound, std::vector<std::string>{"/a/b"});
        EXPECT_EQ(ReferencesTo(*file), 1);
        EXPECT_EQ(ReferencesTo(*before), 1);
    }
    else
    {
        EXPECT_EQ(file.Get(), before.Get());
        EXPECT_EQ(ReferencesTo(*before), 2);
    }
}

Row const kRows[] = {
    {"Made", 0, true, 0},
    {"MadeInSpiteOfTheCode", -1004, true, 0},
    {"NotMade", -1004, false, 1},
    {"NotMadeInSpiteOfTheCode", 0, false, 1},
};
INSTANTIATE_TEST_SUITE_P(Factories, SystemFile, ::testing::ValuesIn(kRows), RowName());

class SystemFileTest : public FileProviderTest
{
};

TEST_F(SystemFileTest, NoFactory)
{
    FILE_SYS::IFilePtr const before = MakeUselessFile();
    FILE_SYS::IFilePtr file = before;
    EXPECT_EQ(CreateSystemFile(nullptr, file, CoreString("/a/b")), 1);
    EXPECT_EQ(file.Get(), before.Get());
    EXPECT_THAT(log.Take(),
                ::testing::ElementsAre(Logged{
                    "../../../../SDK/Headers/Core/LibSupport/FileIO/LibUtils",
                    "ErrCode KORVA::FILE_SYS::CreateSystemFile(KORVA::IClassFactory *, IFilePtr &, const "
                    "STRING::CoreString &)",
                    147, "Attempted to use a library util without a factory pointer"}));
}

TEST_F(SystemFileTest, PathThatCanNotBeBound)
{
    FILE_SYS::IFilePtr file;
    EXPECT_EQ(CreateSystemFile(Registry(), file, CoreString()), 0);
    EXPECT_TRUE(file);
}

TEST_F(SystemFileTest, ObjectOfAnotherMakerIsAggregated)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    ASSERT_EQ(registry->RegisterFactory(MakeFactory(0, true).Get()), 0);
    std::filesystem::path const path = mDirectory.File("file", "content");
    IO::IURIPtr const uri = MakeURI(path);
    Provider const facade = MakeFacade();
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    EXPECT_EQ(facade->InitURIBased(*uri, IO::kStreamRead, nullptr), 0);
    IObject* found = nullptr;
    ASSERT_EQ(facade->QueryInterface(FILE_SYS::IID_IFILE, &found), 0);
    auto* const file = dynamic_cast<UselessFile*>(found);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->bound, std::vector<std::string>{path.string()});
    EXPECT_EQ(ReferencesTo(*file), 1);
}
} // namespace
} // namespace KORVA
