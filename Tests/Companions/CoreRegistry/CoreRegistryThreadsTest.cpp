// The registry used from several threads at once.
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/ObjectModel/ClassFactory.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::ICoreRegistry;

constexpr GUID kSteady{1, 0, 0, {}};
constexpr GUID kPassing{2, 0, 0, {}};
constexpr int kRounds = 2000;

class Thing final : public TObject<IObject>
{
};

using SteadyFactory = TClassFactory<Makes<&New<Thing>, kSteady>>;
using PassingFactory = TClassFactory<Makes<&New<Thing>, kPassing>>;

TEST(CoreRegistryThreads, CreationGoesOnWhileFactoriesComeAndGo)
{
    TInterfacePtr<ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    ASSERT_EQ(COREREGISTRY::RegisterNewFactory<SteadyFactory>(registry.Get()), 0);
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
    {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round)
            {
                TInterfacePtr<IObject> object;
                ErrCode const steady = registry->CreateInstance(kSteady, object.Out());
                if (steady != 0 || !object)
                    ++failures;
                // There or not, but never half: the result and the object agree.
                ErrCode const passing = registry->CreateInstance(kPassing, object.Out());
                if (passing != (object ? 0 : -1004))
                    ++failures;
            }
        });
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round)
            {
                TInterfacePtr<IClassFactory> factory;
                factory.Adopt(new PassingFactory);
                if (registry->RegisterFactory(factory.Get()) != 0)
                    ++failures;
                if (registry->UnregisterFactory(factory.Get()) != 0)
                    ++failures;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    TInterfacePtr<IObject> object;
    EXPECT_EQ(registry->CreateInstance(kPassing, object.Out()), -1004);
}

TEST(CoreRegistryThreads, TheInstalledRegistryMayBeAskedForFromAnyThread)
{
    TInterfacePtr<ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    std::atomic<int> others = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round)
                if (COREREGISTRY::GetCoreRegistry() != registry.Get())
                    ++others;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(others, 0);
    COREREGISTRY::InstallCoreRegistry(nullptr);
}
} // namespace
} // namespace KORVA::TESTS
