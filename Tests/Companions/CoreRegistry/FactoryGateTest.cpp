// Keeping threads out of factories whose code is to go.
#include <tessio/CoreRegistry/IFactoryGate.h>

#include "Companions/CoreRegistry/FakeFactory.h"
#include <tessio/CoreRegistry/CoreRegistry.h>

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace KORVA::TESTS
{
namespace
{
constexpr GUID kX{1, 0, 0, {}};
constexpr GUID kY{2, 0, 0, {}};

/// Two factories of types that can be told apart.
template <int kType>
class TypedFactory final : public TObject<IClassFactory>
{
public:
    explicit TypedFactory(GUID const& id) : mId(id) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        *out = nullptr;
        if (classId != mId)
            return kIdNotFound;
        if (onQuestion)
            onQuestion();
        *out = new Product("typed");
        return kNoError;
    }

    std::function<void()> onQuestion;

private:
    GUID const mId;
};

/// Those of one type.
template <int kType>
class Typed final : public COREREGISTRY::IFactorySet
{
    bool Has(std::type_info const& type) const override { return type == typeid(TypedFactory<kType>); }
};

class FactoryGateTest : public ::testing::Test
{
protected:
    FactoryGateTest()
    {
        registry.Adopt(COREREGISTRY::CreateCoreRegistry());
        gate = dynamic_cast<COREREGISTRY::IFactoryGate*>(registry.Get());
        x.Adopt(new TypedFactory<1>(kX));
        y.Adopt(new TypedFactory<2>(kY));
        registry->RegisterFactory(x.Get());
        registry->RegisterFactory(y.Get());
    }

    void SetUp() override { ASSERT_TRUE(gate); }

    bool Makes(GUID const& id) const
    {
        TInterfacePtr<IObject> object;
        return registry->CreateInstance(id, object.Out()) == kNoError;
    }

    bool MakesElsewhere(GUID const& id) const
    {
        bool makes = false;
        std::thread([&] { makes = Makes(id); }).join();
        return makes;
    }

    Typed<1> const ones;
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
    COREREGISTRY::IFactoryGate* gate = nullptr;
    TInterfacePtr<TypedFactory<1>> x;
    TInterfacePtr<TypedFactory<2>> y;
};

TEST_F(FactoryGateTest, KeepsOtherThreadsOutOfTheseFactoriesOnly)
{
    EXPECT_TRUE(MakesElsewhere(kX));
    gate->Close(ones);
    EXPECT_FALSE(MakesElsewhere(kX));
    EXPECT_TRUE(MakesElsewhere(kY));
    EXPECT_TRUE(Makes(kX)) << "whoever closed them may still use them";
    gate->Open(ones);
    EXPECT_TRUE(MakesElsewhere(kX));
}

TEST_F(FactoryGateTest, KeepsThemOutOfFactoriesThatComeLater)
{
    EXPECT_EQ(registry->UnregisterFactory(x.Get()), 0);
    gate->Close(ones);
    EXPECT_EQ(registry->RegisterFactory(x.Get()), 0);
    EXPECT_FALSE(MakesElsewhere(kX));
    gate->Open(ones);
    EXPECT_TRUE(MakesElsewhere(kX));
}

TEST_F(FactoryGateTest, KnowsWhoIsInside)
{
    bool isInside = false;
    bool isInsideElsewhere = true;
    x->onQuestion = [&] {
        isInside = gate->IsInside(ones);
        std::thread([&] { isInsideElsewhere = gate->IsInside(ones); }).join();
    };
    EXPECT_FALSE(gate->IsInside(ones));
    EXPECT_TRUE(Makes(kX));
    EXPECT_TRUE(isInside);
    EXPECT_FALSE(isInsideElsewhere);
    EXPECT_FALSE(gate->IsInside(ones));
    // By way of another.
    isInside = false;
    y->onQuestion = [&] { Makes(kX); };
    EXPECT_TRUE(Makes(kY));
    EXPECT_TRUE(isInside);
}

TEST_F(FactoryGateTest, ACallThatThrowsIsOver)
{
    x->onQuestion = [] { throw std::bad_alloc(); };
    EXPECT_THROW(Makes(kX), std::bad_alloc);
    EXPECT_FALSE(gate->IsInside(ones));
    gate->Close(ones);
    gate->Open(ones);
}

/// A factory's last reference may be the one that the registry holds while it asks.
TEST_F(FactoryGateTest, WaitsUntilTheFactoryIsReleased)
{
    std::promise<void> isInside;
    std::promise<void> mayGoOn;
    std::atomic<bool> isDead = false;
    std::vector<std::string> asked;
    TInterfacePtr<FakeFactory> dying;
    dying.Adopt(new FakeFactory("dying", asked, {{3, 0, 0, {}}}));
    dying->onQuestion = [&] {
        isInside.set_value();
        mayGoOn.get_future().wait();
    };
    dying->onDeath = [&] { isDead = true; };
    registry->RegisterFactory(dying.Get());
    std::thread inside([&] { Makes({3, 0, 0, {}}); });
    isInside.get_future().wait();
    registry->UnregisterFactory(dying.Get());
    dying.Reset();
    struct Fakes final : COREREGISTRY::IFactorySet
    {
        bool Has(std::type_info const& type) const override { return type == typeid(FakeFactory); }
    } const fakes;
    EXPECT_FALSE(isDead);
    mayGoOn.set_value();
    gate->Close(fakes);
    EXPECT_TRUE(isDead);
    gate->Open(fakes);
    inside.join();
}

TEST_F(FactoryGateTest, RemovesTheseFactoriesOnly)
{
    EXPECT_TRUE(Makes(kX));
    gate->Remove(ones);
    EXPECT_FALSE(Makes(kX));
    EXPECT_TRUE(Makes(kY));
    EXPECT_EQ(registry->UnregisterFactory(x.Get()), kIdNotFound);
    EXPECT_EQ(registry->RegisterFactory(x.Get()), 0);
    EXPECT_TRUE(Makes(kX));
}
} // namespace
} // namespace KORVA::TESTS
