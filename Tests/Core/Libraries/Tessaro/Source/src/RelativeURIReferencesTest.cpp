// Who keeps the directory and the container, and how long.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

class RelativeURIReferencesTest : public RelativeURITest
{
protected:
    static void Read(IO::IRelativeURI& uri, std::string_view body)
    {
        auto const memory = MakeMemory(kNative, Hex(body));
        PersistenceOf(uri)->Read(*MakeStream(*memory));
    }
};

constexpr char kDocumentsBody[] = "00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00 66 00 03 00 00 00";

TEST_F(RelativeURIReferencesTest, DirectoryOutlivesItsContainer)
{
    auto const uri = Below(kDocuments, "f");
    EXPECT_EQ(script.containersMade, 1);
    EXPECT_EQ(script.containersAlive, 0);
    ASSERT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(References(*BaseOf(*uri)), 1);
}

TEST_F(RelativeURIReferencesTest, AbsolutePathKeepsTheDirectory)
{
    auto const uri = Beside(kDocuments, "/Users/u/f");
    EXPECT_EQ(script.containersMade, 1);
    EXPECT_EQ(script.containersAlive, 0);
    ASSERT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(References(*BaseOf(*uri)), 1);
}

TEST_F(RelativeURIReferencesTest, InitByURIKeepsTheDirectory)
{
    auto const uri = NewRelative();
    uri->Init(*MakeURI("/Users/u/f"), 3);
    EXPECT_EQ(script.containersMade, 1);
    EXPECT_EQ(script.containersAlive, 0);
    ASSERT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(References(*BaseOf(*uri)), 1);
}

TEST_F(RelativeURIReferencesTest, ReadingKeepsTheDirectory)
{
    auto const uri = NewRelative();
    Read(*uri, kDocumentsBody);
    EXPECT_EQ(script.containersMade, 1);
    EXPECT_EQ(script.containersAlive, 0);
    ASSERT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(References(*BaseOf(*uri)), 1);
}

TEST_F(RelativeURIReferencesTest, DirectoryDiesWithTheURI)
{
    auto uri = Below(kDocuments, "f");
    EXPECT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(uri.Detach()->Release(), 0);
    EXPECT_EQ(script.dirsAlive, 0);
}

TEST_F(RelativeURIReferencesTest, AskingForTheDirectoryTakesNone)
{
    auto const uri = Below(kDocuments, "f");
    FILE_SYS::IDir* const dir = BaseOf(*uri);
    EXPECT_EQ(BaseOf(*uri), dir);
    EXPECT_EQ(BaseOf(*uri), dir);
    EXPECT_EQ(References(*dir), 1);
}

TEST_F(RelativeURIReferencesTest, AskingANewOneGivesNull)
{
    TInterfacePtr<FakeDir> before;
    before.Adopt(new FakeDir(script, "/before"));
    FILE_SYS::IDir* dir = before.Get();
    NewRelative()->GetBaseDir(&dir);
    EXPECT_EQ(dir, nullptr);
    EXPECT_EQ(References(*before), 1) << "what stood in the variable is not released";
}

TEST_F(RelativeURIReferencesTest, LaterDirectoryReplacesTheFormer)
{
    auto const uri = Below(kDocuments, "f");
    InitBelow(*uri, kDesktop, "f");
    EXPECT_EQ(script.dirsAlive, 1);
    uri->Init(*MakeURI("/Users/u/f"), 3);
    EXPECT_EQ(script.dirsAlive, 1);
    Read(*uri, kDocumentsBody);
    EXPECT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(script.containersMade, 4);
    EXPECT_EQ(script.containersAlive, 0);
    EXPECT_EQ(References(*BaseOf(*uri)), 1);
}

// A container may give everybody the same object.
TEST_F(RelativeURIReferencesTest, SameDirectoryAgainIsHeldOnce)
{
    script.shared.Adopt(new FakeDir(script, "/Users/u/Documents"));
    FILE_SYS::IDir& dir = *script.shared;
    auto uri = Below(kDocuments, "f");
    EXPECT_EQ(References(dir), 2);
    InitBelow(*uri, kDocuments, "g");
    EXPECT_EQ(References(dir), 2);
    InitBeside(*uri, kDocuments, "/Users/u/g");
    EXPECT_EQ(References(dir), 2);
    uri->Init(*MakeURI("/Users/u/f"), 3);
    EXPECT_EQ(References(dir), 2);
    Read(*uri, kDocumentsBody);
    EXPECT_EQ(References(dir), 2);
    EXPECT_EQ(BaseOf(*uri), &dir);

    auto const second = Below(kDesktop, "f");
    EXPECT_EQ(References(dir), 3);
    uri.Reset();
    EXPECT_EQ(References(dir), 2);
}

// The last reference but the URI's own may be gone when the same directory comes again.
TEST_F(RelativeURIReferencesTest, SameDirectoryThatOnlyTheURIHoldsSurvives)
{
    class Lender final : public TObject<FILE_SYS::ISystemDirContainer>
    {
    public:
        explicit Lender(FILE_SYS::IDir* dir) : mDir(dir) {}
        FILE_SYS::IDir* GetDir(FILE_SYS::DirType) override { return mDir; }

    private:
        FILE_SYS::IDir* mDir;
    };
    class LenderFactory final : public TObject<IClassFactory>
    {
    public:
        ErrCode CreateInstance(GUID const& classId, IObject** out) override
        {
            bool const makes = classId == FILE_SYS::IID_SYSTEM_DIR_CONTAINER;
            *out = makes ? new Lender(dir) : nullptr;
            return makes ? 0 : -1004;
        }
        FILE_SYS::IDir* dir = nullptr;
    };
    auto const uri = Below(kDocuments, "f");
    auto const factory = Make<LenderFactory>();
    factory->dir = BaseOf(*uri);
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    registry->RegisterFactory(factory.Get());
    TInterfacePtr<COREREGISTRY::ICoreRegistry> before;
    before.Share(COREREGISTRY::GetCoreRegistry());
    auto const source = MakeURI("/Users/u/g");

    COREREGISTRY::InstallCoreRegistry(registry.Get());
    InitBelow(*uri, kDocuments, "g");
    uri->Init(*source, 3);
    COREREGISTRY::InstallCoreRegistry(before.Get());
    EXPECT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(BaseOf(*uri), factory->dir);
    EXPECT_EQ(References(*factory->dir), 1);
}

TEST_F(RelativeURIReferencesTest, FailuresKeepTheDirectory)
{
    auto const uri = Below(kDocuments, "f");
    FILE_SYS::IDir* const dir = BaseOf(*uri);

    // A type without a directory.
    EXPECT_EQ(uri->Init(kUnknown, CoreString(), CoreString(), 0, CoreString(u"f"), true), 0);
    EXPECT_EQ(script.containersMade, 2);
    EXPECT_EQ(script.containersAlive, 0);
    EXPECT_EQ(BaseOf(*uri), dir);

    // No container.
    script.registryCode = -1004;
    EXPECT_EQ(uri->Init(kDesktop, CoreString(), CoreString(), 0, CoreString(u"f"), true), -1004);
    EXPECT_EQ(BaseOf(*uri), dir);

    uri->Init(CoreString(u"/f"));
    uri->InitRelative(*uri, CoreString(u"f"));
    EXPECT_EQ(BaseOf(*uri), dir);
    EXPECT_EQ(script.dirsAlive, 1);
    EXPECT_EQ(References(*dir), 1);
    EXPECT_EQ(log.Take().size(), 4u);
}

TEST_F(RelativeURIReferencesTest, UncheckedWaysDropTheDirectoryWhereThereIsNone)
{
    auto const uri = Below(kDocuments, "f");
    uri->Init(*MakeURI("/Users/u/f"), 77);
    EXPECT_EQ(script.dirsAlive, 0);
    EXPECT_EQ(BaseOf(*uri), nullptr);

    auto const other = Below(kDocuments, "f");
    Read(*other, "00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00 66 00 4D 00 00 00");
    EXPECT_EQ(script.dirsAlive, 0);
    EXPECT_EQ(BaseOf(*other), nullptr);
    EXPECT_EQ(script.containersAlive, 0);
}

TEST_F(RelativeURIReferencesTest, NothingKeepsTheURI)
{
    auto const uri = Below(kDocuments, "f");
    EXPECT_EQ(References(*uri), 1);
    InitBeside(*uri, kDocuments, "/Users/u/g");
    uri->Init(*uri, 3);
    Read(*uri, kDocumentsBody);
    EXPECT_EQ(References(*uri), 1);
}
} // namespace
} // namespace KORVA
