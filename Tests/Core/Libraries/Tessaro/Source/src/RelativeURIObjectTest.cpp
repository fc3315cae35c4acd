// The class as a component: how it is made and reached.
#include "DirFakes.h"
#include "Registration.h"
#include "RelativeURI.h"

#include <cstring>

namespace KORVA
{
namespace
{
using namespace TESTS;

class RelativeURIObjectTest : public RelativeURITest
{
};

TEST_F(RelativeURIObjectTest, BaseInterfaceReachesEveryOperation)
{
    auto const uri = Below(kDocuments, "a:b");
    auto const same = Below(kDocuments, "a:b");
    IO::IURI const& base = *uri;
    EXPECT_EQ(base.GetScheme().ToUTF8(), "file");
    EXPECT_EQ(base.GetHost().ToUTF8(), "h");
    EXPECT_EQ(base.GetPortNumber(), 80u);
    EXPECT_EQ(base.GetPath().ToUTF8(), "/Users/u/Documents/a:b");
    EXPECT_EQ(base.GetQuery().ToUTF8(), "");
    EXPECT_EQ(base.GetAbsoluteString().ToUTF8(), "");
    EXPECT_EQ(NameOf(base), "a:b");
    EXPECT_TRUE(base == *same);
    EXPECT_FALSE(base == *NewRelative());
}

/// The operation at that place in the object's table of virtual functions, as other compilations reach it.
template <class Function>
Function* At(IO::IURI const& uri, std::size_t slot)
{
    void* const* table = nullptr;
    std::memcpy(&table, static_cast<void const*>(&uri), sizeof table);
    return reinterpret_cast<Function*>(table[slot]);
}

using GetText = CoreString(IO::IURI const*);

TEST_F(RelativeURIObjectTest, SlotsOfTheBaseInterfaceReachEveryOperation)
{
    auto const made = Below(kDocuments, "a:b");
    auto const same = Below(kDocuments, "a:b");
    IO::IURI* const uri = made.Get();
    CoreString const text(u"/Users/u/f");
    At<void(IO::IURI*, CoreString const&)>(*uri, 9)(uri, text);
    At<void(IO::IURI*, IO::IURI const&, CoreString const&)>(*uri, 10)(uri, *same, text);
    auto const messages = log.Take();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].line, 47);
    EXPECT_EQ(messages[1].line, 52);
    EXPECT_EQ(At<GetText>(*uri, 11)(uri).ToUTF8(), "file");
    EXPECT_EQ(At<GetText>(*uri, 12)(uri).ToUTF8(), "h");
    EXPECT_EQ(At<uint32(IO::IURI const*)>(*uri, 13)(uri), 80u);
    EXPECT_EQ(At<GetText>(*uri, 14)(uri).ToUTF8(), "/Users/u/Documents/a:b");
    EXPECT_EQ(At<GetText>(*uri, 15)(uri).ToUTF8(), "");
    EXPECT_EQ(At<GetText>(*uri, 16)(uri).ToUTF8(), "");
    CoreString name;
    At<void(IO::IURI const*, CoreString&)>(*uri, 17)(uri, name);
    EXPECT_EQ(name.ToUTF8(), "a:b");
    auto* const equals = At<bool(IO::IURI const*, IO::IURI const&)>(*uri, 18);
    EXPECT_TRUE(equals(uri, *same));
    EXPECT_FALSE(equals(uri, *MakeURI("/Users/u/Documents/a:b")));
}

TEST_F(RelativeURIObjectTest, SlotsBehindTheBaseInterface)
{
    auto const made = NewRelative();
    IO::IRelativeURI* const uri = made.Get();
    using InitByPath = FILE_SYS::ErrCode(IO::IURI*, FILE_SYS::DirType, CoreString const&, CoreString const&,
                                         uint32, CoreString const&, bool8);
    CoreString const scheme(u"file");
    CoreString const host(u"h");
    CoreString const path(u"a/f");
    EXPECT_EQ(At<InitByPath>(*uri, 19)(uri, kDesktop, scheme, host, 80, path, true), 0);
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"file", "h", 80, "/Users/u/Desktop/a/f", "a/f", "/Users/u/Desktop", 2}));
    EXPECT_EQ(At<CoreString const&(IO::IURI const*)>(*uri, 21)(uri).ToUTF8(), "a/f");
    FILE_SYS::IDir* dir = nullptr;
    At<void(IO::IURI const*, FILE_SYS::IDir**)>(*uri, 22)(uri, &dir);
    EXPECT_EQ(dir, BaseOf(*uri));

    auto const other = NewRelative();
    At<void(IO::IURI*, IO::IURI const&, int)>(*other, 20)(other.Get(), *MakeURI("/Users/u/g"), 3);
    EXPECT_EQ(StateOf(*other), (RelativeState{"file", "", 0, "/Users/u/g", "../g", "/Users/u/Documents", 3}));
}

TEST_F(RelativeURIObjectTest, RelativePathIsTheFieldItself)
{
    auto const uri = Below(kDocuments, "a");
    CoreString const& path = uri->GetRelPath();
    EXPECT_EQ(&path, &uri->GetRelPath());
    InitBelow(*uri, kDocuments, "b");
    EXPECT_EQ(path.ToUTF8(), "b");
}

TEST_F(RelativeURIObjectTest, IsMadeByItsClassIdOnly)
{
    TInterfacePtr<IObject> object;
    EXPECT_EQ(Registry()->CreateInstance(IO::IID_IRELATIVE_URI, object.Out()), 0);
    ASSERT_TRUE(object);
    EXPECT_EQ(References(*object), 1);
    EXPECT_NE(dynamic_cast<IO::RelativeURI*>(object.Get()), nullptr);
    EXPECT_EQ(IO::IID_IRELATIVE_URI,
              (GUID{0x4E278406, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}}));

    for (GUID const& other :
         {GUID{0x4E278407, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}},
          GUID{0x4E278406, 0x081D, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}},
          GUID{0x4E278406, 0x081C, 0x48E2, {0x98, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}},
          GUID{0x4E278406, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xEE}}})
    {
        EXPECT_EQ(Registry()->CreateInstance(other, object.Out()), -1004);
        EXPECT_FALSE(object);
    }
}

/// Keeps the one factory registered and answers what the test wants.
class CountingRegistry final : public TObject<COREREGISTRY::ICoreRegistry>
{
public:
    ErrCode CreateInstance(GUID const&, IObject** out) override
    {
        *out = nullptr;
        return -1004;
    }
    int RegisterFactory(IClassFactory* registered) override
    {
        ++calls;
        factory.Share(registered);
        return 4711;
    }
    int UnregisterFactory(IClassFactory*) override { return 0; }

    int calls = 0;
    TInterfacePtr<IClassFactory> factory;
};

TEST_F(RelativeURIObjectTest, RegistrationHandsOverOneFactory)
{
    auto const registry = Make<CountingRegistry>();
    EXPECT_EQ(IO::RegisterRelativeURIFactory(registry.Get()), 4711) << "the registry's answer";
    EXPECT_EQ(registry->calls, 1);
    ASSERT_TRUE(registry->factory);
    EXPECT_EQ(References(*registry->factory), 1);

    auto const before = Make<Plain>();
    IObject* out = before.Get();
    EXPECT_EQ(registry->factory->CreateInstance(IO::IID_IURI, &out), -1004);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(registry->factory->CreateInstance(IO::IID_IRELATIVE_URI, &out), 0);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->Release(), 0);
}

TEST_F(RelativeURIObjectTest, AnswersForPersistenceOnly)
{
    auto const uri = NewRelative();
    IObject* found = nullptr;
    EXPECT_EQ(uri->QueryInterface(IO::IID_IRELATIVE_URI, &found), -1004);
    EXPECT_EQ(uri->QueryInterface(IO::IID_IURI, &found), -1004);
    EXPECT_EQ(uri->QueryInterface(IO::IPERSISTENT_DATA_EX, &found), -1004);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(uri->QueryInterface(IO::IPERSISTENT_DATA, nullptr), 0);
    EXPECT_EQ(uri->QueryInterface(IO::IPERSISTENT_DATA, &found), 0);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(References(*found), 1) << "the table's alone";
    EXPECT_EQ(uri->GetAggregates().size(), 1u);
}

TEST_F(RelativeURIObjectTest, IsNoBaseForURIs)
{
    auto const uri = MakeURI("/before");
    uri->InitRelative(*Below(kDocuments, ""), CoreString(u"f"));
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/before");
}
} // namespace
} // namespace KORVA
