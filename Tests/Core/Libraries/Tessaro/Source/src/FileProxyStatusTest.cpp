// What the file proxy makes of each answer of the file-system library, and how it asks.
#include "FileFakes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace KORVA
{
namespace
{
using TESTS::CountOf;
using TESTS::Logged;
using TESTS::NewProxy;
using TESTS::ProxyFor;
using Calls = std::vector<std::string>;

/// The variable that dates and sizes are asked into.
uint64 variable = 0;

ErrCode Create(IO::IURIFile& file) { return file.Create(); }

ErrCode Delete(IO::IURIFile& file) { return file.Delete(); }

ErrCode Copy(IO::IURIFile& file)
{
    auto const uri = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    uri->Init(STRING::CoreString(u"/from"));
    auto const source = ProxyFor(*uri);
    ErrCode const result = file.Copy(*source);
    EXPECT_EQ(CountOf(*uri), 2);
    return result;
}

ErrCode GetModification(IO::IURIFile& file) { return file.GetModificationDate(variable); }

ErrCode SetModification(IO::IURIFile& file) { return file.SetModificationDate(variable); }

ErrCode GetCreation(IO::IURIFile& file) { return file.GetCreationDate(variable); }

ErrCode SetCreation(IO::IURIFile& file) { return file.SetCreationDate(variable); }

ErrCode GetSize(IO::IURIFile& file) { return file.GetSize(variable); }

struct Row
{
    char const* name;
    ErrCode (*run)(IO::IURIFile&);
    FILE_SYS::ErrCode status;
    ErrCode code;
};

class FileProxyStatusTest : public TESTS::FakeFileTest, public ::testing::WithParamInterface<Row>
{
};

TEST_P(FileProxyStatusTest, GivesTheCode)
{
    script.status = GetParam().status;
    EXPECT_EQ(GetParam().run(*Proxy()), GetParam().code);
    EXPECT_EQ(script.made, 1);
    EXPECT_EQ(script.alive, 0);
}

Row const kRows[] = {
    {"CreateDone", Create, 0, 0},
    {"CreateAlreadyThere", Create, 9, 0},
    {"CreateNotFound", Create, 15, 25},
    {"CreateNotPermitted", Create, 21, 25},
    {"CreateFailed", Create, 1, 25},
    {"CreateNegative", Create, -1, 25},
    {"DeleteDone", Delete, 0, 0},
    {"DeleteAlreadyThere", Delete, 9, 24},
    {"DeleteNotFound", Delete, 15, 24},
    {"DeleteNotPermitted", Delete, 21, 24},
    {"DeleteNegative", Delete, -1, 24},
    {"CopyDone", Copy, 0, 0},
    {"CopyAlreadyThere", Copy, 9, 31},
    {"CopyNotFound", Copy, 15, 31},
    {"CopyNotPermitted", Copy, 21, 31},
    {"CopyNegative", Copy, -1, 31},
    {"GetModificationDone", GetModification, 0, 0},
    {"GetModificationAlreadyThere", GetModification, 9, 26},
    {"GetModificationNotPermitted", GetModification, 21, 26},
    {"GetModificationNegative", GetModification, -1, 26},
    {"SetModificationDone", SetModification, 0, 0},
    {"SetModificationNotFound", SetModification, 15, 26},
    {"SetModificationNotPermitted", SetModification, 21, 26},
    {"GetCreationDone", GetCreation, 0, 0},
    {"GetCreationNotFound", GetCreation, 15, 26},
    {"GetCreationFailed", GetCreation, 1, 26},
    {"SetCreationDone", SetCreation, 0, 0},
    {"SetCreationNotPermitted", SetCreation, 21, 26},
    {"SetCreationFailed", SetCreation, 1, 26},
    {"GetSizeDone", GetSize, 0, 0},
    {"GetSizeNotFound", GetSize, 15, 26},
    {"GetSizeNotPermitted", GetSize, 21, 26},
    {"GetSizeFailed", GetSize, 1, 26},
};
INSTANTIATE_TEST_SUITE_P(Rows, FileProxyStatusTest, ::testing::ValuesIn(kRows), TESTS::RowName());

struct CallRow
{
    char const* name;
    ErrCode (*run)(IO::IURIFile&);
    Calls calls;
    ErrCode unboundCode;
    Calls unboundCalls;
};

class FileProxyCallsTest : public TESTS::FakeFileTest, public ::testing::WithParamInterface<CallRow>
{
};

TEST_P(FileProxyCallsTest, BindsANewObjectFirst)
{
    auto const proxy = Proxy();
    EXPECT_EQ(GetParam().run(*proxy), 0);
    EXPECT_EQ(script.calls, GetParam().calls);
}

TEST_P(FileProxyCallsTest, PathThatCannotBeBound)
{
    script.unboundFrom = 1;
    EXPECT_EQ(GetParam().run(*Proxy()), GetParam().unboundCode);
    EXPECT_EQ(script.calls, GetParam().unboundCalls);
}

CallRow const kCalls[] = {
    {"Create", Create, {"1 bind /a", "1 create"}, 13, {"1 bind /a"}},
    {"Delete", Delete, {"1 bind /a", "1 delete"}, 0, {"1 bind /a", "1 delete"}},
    {"Copy", Copy, {"1 bind /from", "1 copy /a"}, 0, {"1 bind /from", "1 copy /a"}},
    {"GetModification",
     GetModification,
     {"1 bind /a", "1 get modification"},
     0,
     {"1 bind /a", "1 get modification"}},
    {"SetModification",
     SetModification,
     {"1 bind /a", "1 set modification"},
     0,
     {"1 bind /a", "1 set modification"}},
    {"GetCreation", GetCreation, {"1 bind /a", "1 get creation"}, 0, {"1 bind /a", "1 get creation"}},
    {"SetCreation", SetCreation, {"1 bind /a", "1 set creation"}, 0, {"1 bind /a", "1 set creation"}},
    {"GetSize", GetSize, {"1 bind /a", "1 size"}, 0, {"1 bind /a", "1 size"}},
};
INSTANTIATE_TEST_SUITE_P(Rows, FileProxyCallsTest, ::testing::ValuesIn(kCalls), TESTS::RowName());

class FileProxyVariableTest : public TESTS::FakeFileTest, public ::testing::WithParamInterface<Row>
{
};

TEST_P(FileProxyVariableTest, IsTheCallersOwn)
{
    variable = 7;
    script.value = 18446744073709551615u;
    script.status = GetParam().status;
    EXPECT_EQ(GetParam().run(*Proxy()), GetParam().code);
    EXPECT_EQ(script.variable, &variable);
    EXPECT_EQ(script.before, 7u);
    EXPECT_EQ(variable, 18446744073709551615u);
}

Row const kVariables[] = {
    {"GetModification", GetModification, 0, 0},
    {"SetModification", SetModification, 0, 0},
    {"GetCreation", GetCreation, 0, 0},
    {"SetCreation", SetCreation, 0, 0},
    {"GetSize", GetSize, 0, 0},
    {"GetSizeFailing", GetSize, 15, 26},
};
INSTANTIATE_TEST_SUITE_P(Rows, FileProxyVariableTest, ::testing::ValuesIn(kVariables), TESTS::RowName());

/// Nothing to create file objects with: no factory for them, or no registry.
class FileProxyNoObjectTest : public TESTS::FakeFileTest, public ::testing::WithParamInterface<bool>
{
protected:
    FileProxyNoObjectTest()
    {
        script.supply = 0;
        proxy = Proxy();
        source = ProxyFor(*MakeURI("/from"));
        if (!GetParam())
            COREREGISTRY::InstallCoreRegistry(nullptr);
    }

    TInterfacePtr<IO::IURIFile> proxy;
    TInterfacePtr<IO::IURIFile> source;
};

TEST_P(FileProxyNoObjectTest, EachOperationFails)
{
    bool flag = true;
    variable = 5;
    EXPECT_FALSE(proxy->Exists());
    EXPECT_EQ(proxy->Create(), 12);
    EXPECT_EQ(proxy->Copy(*source), 31);
    EXPECT_EQ(GetModification(*proxy), 26);
    EXPECT_EQ(SetModification(*proxy), 26);
    EXPECT_EQ(GetCreation(*proxy), 26);
    EXPECT_EQ(SetCreation(*proxy), 26);
    EXPECT_EQ(GetSize(*proxy), 26);
    EXPECT_EQ(proxy->GetAttribute(0, flag), 26);
    EXPECT_EQ(proxy->SetAttribute(0, flag), 35);
    EXPECT_EQ(variable, 5u);
    EXPECT_TRUE(flag);
}

TEST_P(FileProxyNoObjectTest, DeleteIsLogged)
{
    EXPECT_EQ(proxy->Delete(), 12);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{{"Core/Libraries/Tessaro/Source/src/FileProxy",
                                                "virtual ErrCode KORVA::IO::FileProxy::Delete()", 324,
                                                "Could not create IFile"}}));
}

TEST_P(FileProxyNoObjectTest, FilePointerIsEmptied)
{
    FILE_SYS::IFilePtr file;
    file.Adopt(new TESTS::FakeFile(script));
    EXPECT_FALSE(static_cast<IO::FileProxy&>(*proxy).GetIFilePtr(file));
    EXPECT_FALSE(file);
    EXPECT_EQ(script.alive, 0);
}

INSTANTIATE_TEST_SUITE_P(Registry, FileProxyNoObjectTest, ::testing::Bool(),
                         [](auto const& row) { return row.param ? "WithoutFactory" : "Missing"; });

class FileProxyFakeTest : public TESTS::FakeFileTest
{
};

TEST_F(FileProxyFakeTest, ExistsAsksTheFileObject)
{
    auto const proxy = Proxy();
    EXPECT_TRUE(proxy->Exists());
    script.exists = false;
    EXPECT_FALSE(proxy->Exists());
    EXPECT_EQ(script.calls, (Calls{"1 bind /a", "1 exists", "2 bind /a", "2 exists"}));
    EXPECT_EQ(script.alive, 0);
}

TEST_F(FileProxyFakeTest, ExistsNeedsABoundPath)
{
    script.unboundFrom = 1;
    EXPECT_FALSE(Proxy()->Exists());
    EXPECT_EQ(script.calls, Calls{"1 bind /a"});
}

TEST_F(FileProxyFakeTest, CopyAcrossSchemesAsksNobody)
{
    auto const file = Proxy();
    auto const other = ProxyFor(*MakeURI("other:///from"));
    auto const none = ProxyFor(*MakeURI("from"));
    EXPECT_EQ(file->Copy(*other), 31);
    EXPECT_EQ(other->Copy(*file), 31);
    EXPECT_EQ(file->Copy(*none), 31);
    EXPECT_EQ(none->Copy(*file), 31);
    EXPECT_EQ(script.made, 0);
    // Two without a scheme have the same.
    EXPECT_EQ(ProxyFor(*MakeURI("to"))->Copy(*none), 0);
    EXPECT_EQ(script.calls, (Calls{"1 bind from", "1 copy to"}));
}

TEST_F(FileProxyFakeTest, PathIsTheURIs)
{
    EXPECT_EQ(ProxyFor(*MakeURI("/a b/c;d?e?f"))->Create(), 0);
    EXPECT_EQ(ProxyFor(*MakeURI("C:\\dir\\f"))->Create(), 0);
    EXPECT_EQ(ProxyFor(*MakeURI("http://host/p/q?r"))->Create(), 0);
    EXPECT_EQ(ProxyFor(*MakeURI(""))->Create(), 0);
    EXPECT_EQ(script.calls, (Calls{"1 bind /a b/c;d?e", "1 create", "2 bind /C:/dir/f", "2 create",
                                   "3 bind /p/q", "3 create", "4 bind ", "4 create"}));
}

TEST_F(FileProxyFakeTest, DeleteWithoutURIAsksNobody)
{
    EXPECT_EQ(NewProxy()->Delete(), 13);
    EXPECT_EQ(log.Take(),
              (std::vector<Logged>{{"Core/Libraries/Tessaro/Source/src/FileProxy",
                                    "virtual ErrCode KORVA::IO::FileProxy::Delete()", 307, "No URI."}}));
    EXPECT_EQ(script.made, 0);
}

TEST_F(FileProxyFakeTest, FilePointerIsBoundAndHandedOver)
{
    auto const proxy = Proxy();
    FILE_SYS::IFilePtr file;
    EXPECT_TRUE(static_cast<IO::FileProxy&>(*proxy).GetIFilePtr(file));
    ASSERT_TRUE(file);
    EXPECT_EQ(CountOf(*file), 1);
    // What it held is released, and a path that can't be bound is no failure.
    script.unboundFrom = 2;
    EXPECT_TRUE(static_cast<IO::FileProxy&>(*proxy).GetIFilePtr(file));
    ASSERT_TRUE(file);
    EXPECT_EQ(CountOf(*file), 1);
    EXPECT_EQ(script.calls, (Calls{"1 bind /a", "2 bind /a"}));
    EXPECT_EQ(script.alive, 1);
}
/// A host's own registry, which hands file objects out with a code that is not 0.
class OddRegistry final : public TObject<COREREGISTRY::ICoreRegistry>
{
public:
    explicit OddRegistry(TESTS::FileScript& script) : mScript(script) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        bool const makes = classId == FILE_SYS::IID_IFILE;
        *out = makes ? new TESTS::FakeFile(mScript) : nullptr;
        return makes ? 7 : -1004;
    }
    int RegisterFactory(IClassFactory*) override { return 0; }
    int UnregisterFactory(IClassFactory*) override { return 0; }

private:
    TESTS::FileScript& mScript;
};

TEST_F(FileProxyFakeTest, ObjectThatComesCountsWhateverCodeComesWithIt)
{
    auto const proxy = Proxy();
    TInterfacePtr<COREREGISTRY::ICoreRegistry> odd;
    odd.Adopt(new OddRegistry(script));
    COREREGISTRY::InstallCoreRegistry(odd.Get());
    EXPECT_TRUE(proxy->Exists());
    EXPECT_EQ(proxy->Create(), 0);
    EXPECT_EQ(proxy->Delete(), 0);
    uint64 size = 0;
    script.value = 5;
    EXPECT_EQ(proxy->GetSize(size), 0);
    EXPECT_EQ(size, 5u);
    COREREGISTRY::InstallCoreRegistry(nullptr);
}
} // namespace
} // namespace KORVA
