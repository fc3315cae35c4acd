// Creating and initialising a URI through a factory.
#include <tessio/TessIO/LibUtils.h>

#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/ObjectModel/TObject.h>

#include <gtest/gtest.h>

#include <vector>

namespace KORVA::TESTS
{
namespace
{
using IO::CreateURI;
using IO::IURI;
using IO::IURIPtr;
using STRING::CoreString;

constexpr char kSource[] = "../../../../SDK/Headers/Core/LibSupport/TessIO/LibUtils";
constexpr char kSignature[] =
    "ErrCode KORVA::IO::CreateURI(KORVA::IClassFactory *, IURIPtr &, const STRING::CoreString &)";
Logged const kNoObject{kSource, kSignature, 470, "Factory could not create an IURI object."};
Logged const kNoFactory{kSource, kSignature, 476,
                        "Attempted to use a library util without a factory pointer"};

/// Records the locations it is initialised with.
class FakeURI final : public TObject<IURI>
{
public:
    explicit FakeURI(std::vector<std::string>& locations) : mLocations(locations) {}

    void Init(CoreString const& location) override { mLocations.push_back(location.ToUTF8()); }
    void InitRelative(IURI const&, CoreString const&) override {}
    CoreString GetScheme() const override { return {}; }
    CoreString GetHost() const override { return {}; }
    uint32 GetPortNumber() const override { return 0; }
    CoreString GetPath() const override { return {}; }
    CoreString GetQuery() const override { return {}; }
    CoreString GetAbsoluteString() const override { return {}; }
    void GetName(CoreString&) const override {}
    bool operator==(IURI const&) const override { return false; }

private:
    std::vector<std::string>& mLocations;
};

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

class CreateURITest : public LibraryTest
{
protected:
    CreateURITest() { held.Adopt(new FakeURI(locationsOfHeld)); }

    std::vector<std::string> locationsOfHeld;
    IURIPtr held;
};

TEST_F(CreateURITest, WithoutAFactoryLogsAndAnswers12)
{
    IURI* const before = held.Get();
    EXPECT_EQ(CreateURI(nullptr, held, u"/a"), 12);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoFactory});
    EXPECT_EQ(held.Get(), before);
    EXPECT_TRUE(locationsOfHeld.empty());
}

TEST_F(CreateURITest, AFactoryThatMakesNothingIsLoggedAndAnsweredWith12)
{
    IURI* const before = held.Get();
    for (ErrCode const result : {-1004, 0})
    {
        TInterfacePtr<FakeFactory> factory;
        factory.Adopt(new FakeFactory(result, nullptr));
        EXPECT_EQ(CreateURI(factory.Get(), held, u"/a"), 12);
        EXPECT_EQ(log.Take(), std::vector<Logged>{kNoObject});
        EXPECT_EQ(held.Get(), before);
    }
    EXPECT_TRUE(locationsOfHeld.empty());
}

TEST_F(CreateURITest, StoresAndInitialisesTheObject)
{
    std::vector<std::string> locations;
    auto* const uri = new FakeURI(locations);
    TInterfacePtr<FakeFactory> factory;
    factory.Adopt(new FakeFactory(0, uri));
    IURIPtr before = held;
    EXPECT_EQ(CreateURI(factory.Get(), held, u"C:\\dir\\f.txt"), 0);
    EXPECT_EQ(held.Get(), uri);
    EXPECT_EQ(CountOf(*uri), 1) << "the creating reference is handed over";
    EXPECT_EQ(CountOf(*before), 1) << "what was held is released";
    EXPECT_EQ(locations, std::vector<std::string>{"C:\\dir\\f.txt"});
    EXPECT_TRUE(locationsOfHeld.empty());
    ASSERT_EQ(factory->asked.size(), 1u);
    EXPECT_TRUE(factory->asked[0] ==
                (GUID{0x2517B49E, 0xBCE5, 0x404C, {0x85, 0x24, 0x3A, 0x6E, 0xC3, 0xC3, 0xB6, 0x33}}));
}

TEST_F(CreateURITest, LooksAtTheObjectNotAtTheFactorysResult)
{
    std::vector<std::string> locations;
    TInterfacePtr<FakeFactory> factory;
    factory.Adopt(new FakeFactory(55, new FakeURI(locations)));
    IURIPtr uri;
    EXPECT_EQ(CreateURI(factory.Get(), uri, u""), 0);
    EXPECT_TRUE(uri);
    EXPECT_EQ(locations, std::vector<std::string>{""});
}

TEST_F(CreateURITest, TheRegistryServesAsFactory)
{
    IURIPtr uri;
    EXPECT_EQ(CreateURI(Registry(), uri, u"/Users/a b/c.txt"), 0);
    ASSERT_TRUE(uri);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/Users/a b/c.txt");
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "file");
}
} // namespace
} // namespace KORVA::TESTS
