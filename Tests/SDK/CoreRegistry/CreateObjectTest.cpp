// Creating through the process's registry.
#include <tessio/CoreRegistry/CoreRegistry.h>

#include "SDK/Tracked.h"
#include "Support/LogCapture.h"
#include <tessio/ObjectModel/ClassFactory.h>

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;
using COREREGISTRY::ICoreRegistry;

constexpr GUID kApple{0x10, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID kUnknown{0x10, 1, 2, {1, 2, 3, 4, 5, 6, 7, 9}};

class Apple final : public TObject<IObject>
{
};

using AppleFactory = TClassFactory<Makes<&New<Apple>, kApple>>;

/// A registry whose answer to a registration is `result`. It keeps nothing.
class Refusing final : public TObject<ICoreRegistry>
{
public:
    explicit Refusing(int result) : mResult(result) {}
    ErrCode CreateInstance(GUID const&, IObject** out) override
    {
        *out = nullptr;
        return -1004;
    }
    int RegisterFactory(IClassFactory*) override { return mResult; }
    int UnregisterFactory(IClassFactory*) override { return -1004; }

private:
    int mResult;
};

class CreateObjectTest : public ::testing::Test
{
protected:
    CreateObjectTest()
    {
        mRegistry.Adopt(COREREGISTRY::CreateCoreRegistry());
        COREREGISTRY::InstallCoreRegistry(mRegistry.Get());
    }
    ~CreateObjectTest() override { COREREGISTRY::InstallCoreRegistry(nullptr); }

    LogCapture mLog;
    TInterfacePtr<ICoreRegistry> mRegistry;
};

TEST_F(CreateObjectTest, AdoptsWhatTheRegistryMakes)
{
    EXPECT_EQ(COREREGISTRY::RegisterNewFactory<AppleFactory>(mRegistry.Get()), 0);
    TInterfacePtr<IObject> const object = CreateObject<IObject>(kApple);
    ASSERT_TRUE(object);
    EXPECT_TRUE(dynamic_cast<Apple*>(object.Get()));
    EXPECT_EQ(CountOf(*object), 1);
}

TEST_F(CreateObjectTest, IsEmptyForAnIdThatNobodyServes)
{
    EXPECT_EQ(COREREGISTRY::RegisterNewFactory<AppleFactory>(mRegistry.Get()), 0);
    EXPECT_FALSE(CreateObject<IObject>(kUnknown));
}

TEST_F(CreateObjectTest, IsEmptyWithoutARegistry)
{
    COREREGISTRY::InstallCoreRegistry(nullptr);
    EXPECT_FALSE(CreateObject<IObject>(kApple));
}

TEST_F(CreateObjectTest, RegisterNewFactoryGivesTheRegistrysResult)
{
    TInterfacePtr<ICoreRegistry> refusing;
    refusing.Adopt(new Refusing(77));
    EXPECT_EQ(COREREGISTRY::RegisterNewFactory<AppleFactory>(refusing.Get()), 77);
}
} // namespace
} // namespace KORVA::TESTS
