// Registration of factories and creation by class id.
#include <tessio/CoreRegistry/CoreRegistry.h>

#include "Companions/CoreRegistry/FakeFactory.h"
#include "SDK/Tracked.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::ICoreRegistry;

constexpr GUID kX{1, 0, 0, {}};
constexpr GUID kY{2, 0, 0, {}};
constexpr GUID kUnknown{3, 0, 0, {}};

using Names = std::vector<std::string>;

class CoreRegistryTest : public ::testing::Test
{
protected:
    CoreRegistryTest() { registry.Adopt(COREREGISTRY::CreateCoreRegistry()); }

    TInterfacePtr<FakeFactory> Make(char const* name, std::vector<GUID> ids)
    {
        TInterfacePtr<FakeFactory> factory;
        factory.Adopt(new FakeFactory(name, asked, std::move(ids)));
        return factory;
    }

    TInterfacePtr<FakeFactory> Register(char const* name, std::vector<GUID> ids)
    {
        auto factory = Make(name, std::move(ids));
        EXPECT_EQ(registry->RegisterFactory(factory.Get()), 0);
        return factory;
    }

    /// The maker of a new object of that class; "" for -1004 and null.
    std::string MakerOf(GUID const& id)
    {
        IObject* object = registry.Get();
        ErrCode const result = registry->CreateInstance(id, &object);
        EXPECT_EQ(result, object ? 0 : -1004);
        if (!object)
            return "";
        TInterfacePtr<IObject> made;
        made.Adopt(object);
        EXPECT_EQ(CountOf(*object), 1);
        return dynamic_cast<Product&>(*object).Maker();
    }

    Names Asked() { return std::exchange(asked, {}); }

    Names asked;
    TInterfacePtr<ICoreRegistry> registry;
};

TEST_F(CoreRegistryTest, AnswersMinus1004AndNullWhenEmpty) { EXPECT_EQ(MakerOf(kX), ""); }

TEST_F(CoreRegistryTest, CreatesThroughTheFactoryThatServesTheId)
{
    auto const a = Register("a", {kX});
    auto const b = Register("b", {kY});
    EXPECT_EQ(MakerOf(kX), "a");
    EXPECT_EQ(MakerOf(kY), "b");
    EXPECT_EQ(MakerOf(kUnknown), "");
}

TEST_F(CoreRegistryTest, AsksInTheOrderOfRegistration)
{
    auto const a = Register("a", {});
    auto const b = Register("b", {kX});
    auto const c = Register("c", {kX});
    EXPECT_EQ(MakerOf(kX), "b");
    EXPECT_EQ(Asked(), (Names{"a", "b"}));
    EXPECT_EQ(MakerOf(kUnknown), "");
    EXPECT_EQ(Asked(), (Names{"a", "b", "c"}));
}

TEST_F(CoreRegistryTest, RemembersWhichFactoryServedAnId)
{
    auto const a = Register("a", {});
    auto const b = Register("b", {kX});
    EXPECT_EQ(MakerOf(kX), "b");
    a->serves = {kX};
    Asked();
    EXPECT_EQ(MakerOf(kX), "b");
    EXPECT_EQ(Asked(), Names{"b"});
}

TEST_F(CoreRegistryTest, DoesNotRememberThatNobodyServedAnId)
{
    auto const a = Register("a", {});
    EXPECT_EQ(MakerOf(kX), "");
    a->serves = {kX};
    EXPECT_EQ(MakerOf(kX), "a");
}

TEST_F(CoreRegistryTest, AsksTheOthersWhenTheOneThatServedNoLongerDoes)
{
    auto const a = Register("a", {kX});
    auto const b = Register("b", {kX});
    EXPECT_EQ(MakerOf(kX), "a");
    a->serves = {};
    EXPECT_EQ(MakerOf(kX), "b") << "only an id that none serves is unknown";
}

TEST_F(CoreRegistryTest, AFactoryThatClaimsSuccessWithoutAnObjectServesNothing)
{
    class Liar final : public TObject<IClassFactory>
    {
    public:
        ErrCode CreateInstance(GUID const&, IObject** out) override
        {
            *out = nullptr;
            return 0;
        }
    };
    TInterfacePtr<IClassFactory> liar;
    liar.Adopt(new Liar);
    EXPECT_EQ(registry->RegisterFactory(liar.Get()), 0);
    EXPECT_EQ(MakerOf(kX), "");
    auto const b = Register("b", {kX});
    EXPECT_EQ(MakerOf(kX), "b");
}

TEST_F(CoreRegistryTest, TakesItsOwnReference)
{
    auto const a = Register("a", {kX});
    EXPECT_EQ(CountOf(*a), 2);
    registry.Reset();
    EXPECT_EQ(CountOf(*a), 1);
}

TEST_F(CoreRegistryTest, KeepsAFactoryRegisteredTwiceOnce)
{
    auto const a = Register("a", {});
    EXPECT_EQ(registry->RegisterFactory(a.Get()), 0);
    EXPECT_EQ(CountOf(*a), 2);
    EXPECT_EQ(MakerOf(kX), "");
    EXPECT_EQ(Asked(), Names{"a"});
    EXPECT_EQ(registry->UnregisterFactory(a.Get()), 0);
    EXPECT_EQ(CountOf(*a), 1);
    EXPECT_EQ(registry->UnregisterFactory(a.Get()), -1004);
}

TEST_F(CoreRegistryTest, RefusesNull)
{
    EXPECT_EQ(registry->RegisterFactory(nullptr), -50);
    EXPECT_EQ(registry->UnregisterFactory(nullptr), -50);
}

TEST_F(CoreRegistryTest, UnregistersOneFactoryAndNoOther)
{
    auto const a = Register("a", {kX});
    auto const b = Register("b", {kX, kY});
    EXPECT_EQ(MakerOf(kX), "a");
    EXPECT_EQ(MakerOf(kY), "b");
    EXPECT_EQ(registry->UnregisterFactory(a.Get()), 0);
    EXPECT_EQ(CountOf(*a), 1);
    EXPECT_EQ(MakerOf(kX), "b");
    EXPECT_EQ(MakerOf(kY), "b");
    EXPECT_EQ(registry->UnregisterFactory(b.Get()), 0);
    EXPECT_EQ(MakerOf(kX), "");
    EXPECT_EQ(MakerOf(kY), "");
}

TEST_F(CoreRegistryTest, RefusesToUnregisterAStranger)
{
    auto const a = Register("a", {kX});
    auto const stranger = Make("stranger", {kX});
    EXPECT_EQ(registry->UnregisterFactory(stranger.Get()), -1004);
    EXPECT_EQ(MakerOf(kX), "a");
}

TEST_F(CoreRegistryTest, AFactoryRegisteredAgainComesLast)
{
    auto const a = Register("a", {kX});
    auto const b = Register("b", {kX});
    EXPECT_EQ(registry->UnregisterFactory(a.Get()), 0);
    EXPECT_EQ(registry->RegisterFactory(a.Get()), 0);
    EXPECT_EQ(MakerOf(kX), "b");
}

TEST_F(CoreRegistryTest, AFactoryMayCreateAndRegisterWhileItRuns)
{
    auto const inner = Register("inner", {kY});
    auto const late = Make("late", {kX});
    auto const outer = Register("outer", {kX});
    std::string makerOfInner;
    outer->onQuestion = [&] {
        EXPECT_EQ(registry->RegisterFactory(late.Get()), 0);
        makerOfInner = MakerOf(kY);
    };
    EXPECT_EQ(MakerOf(kX), "outer");
    EXPECT_EQ(makerOfInner, "inner");
    EXPECT_EQ(CountOf(*late), 2);
}

TEST_F(CoreRegistryTest, AFactoryMayUnregisterItselfWhileItRuns)
{
    auto const a = Register("a", {kX});
    a->onQuestion = [&] { EXPECT_EQ(registry->UnregisterFactory(a.Get()), 0); };
    EXPECT_EQ(MakerOf(kX), "a");
    EXPECT_EQ(CountOf(*a), 1);
    EXPECT_EQ(MakerOf(kX), "");
}

TEST_F(CoreRegistryTest, AFactoryMayUseTheRegistryWhenItDies)
{
    auto const other = Register("other", {kX});
    std::string maker;
    FakeFactory* dying = nullptr;
    {
        auto factory = Make("dying", {});
        dying = factory.Get();
        dying->onDeath = [&] { maker = MakerOf(kX); };
        EXPECT_EQ(registry->RegisterFactory(dying), 0);
    }
    EXPECT_EQ(registry->UnregisterFactory(dying), 0);
    EXPECT_EQ(maker, "other");
}

TEST(InstalledRegistry, IsNoneUntilOneIsInstalled)
{
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), nullptr);
    TInterfacePtr<ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), registry.Get());
    EXPECT_EQ(CountOf(*registry), 2) << "installed is shared, asked for is borrowed";
    TInterfacePtr<ICoreRegistry> next;
    next.Adopt(COREREGISTRY::CreateCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(next.Get());
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), next.Get());
    EXPECT_EQ(CountOf(*registry), 1);
    COREREGISTRY::InstallCoreRegistry(nullptr);
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), nullptr);
    EXPECT_EQ(CountOf(*next), 1);
}
} // namespace
} // namespace KORVA::TESTS
