// Files created by scheme, and the reporter that they share. The table of schemes is the process's and only
// grows, so that each test has schemes of its own.
#include "URIRegistryFakes.h"

#include <gtest/gtest.h>

namespace KORVA
{
namespace
{
using COREREGISTRY::CreateObject;
using TESTS::CountedReporter;
using TESTS::CountOf;
using TESTS::kOneClass;
using TESTS::kOtherClass;
using TESTS::kUnmadeClass;
using TESTS::Logged;
using TESTS::ServedFile;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/URIRegistry";

Logged InitFailure()
{
    return {kSource,
            "virtual HRESULT KORVA::IO::URIRegistry::Create(KORVA::IO::IURI &, IURIFilePtr &, "
            "KORVA::IO::IReporter *)",
            75,
            "Could not instantiate or initialize URI data provider",
            2,
            1};
}

/// A component registry with one answer.
class FixedRegistry final : public TObject<COREREGISTRY::ICoreRegistry>
{
public:
    FixedRegistry(ErrCode result, IObject* object) : mResult(result), mObject(object) {}

    ErrCode CreateInstance(GUID const&, IObject** out) override
    {
        *out = mObject;
        return mResult;
    }
    int RegisterFactory(IClassFactory*) override { return 0; }
    int UnregisterFactory(IClassFactory*) override { return 0; }

private:
    ErrCode mResult;
    IObject* mObject;
};

void Install(ErrCode result, IObject* object)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
    registry.Adopt(new FixedRegistry(result, object));
    COREREGISTRY::InstallCoreRegistry(registry.Get());
}

class URIRegistryCreateTest : public TESTS::ServedFilesTest
{
};

TEST_F(URIRegistryCreateTest, SuccessHandsOverTheNewFileAndReleasesTheOld)
{
    Map("handsover", kOneClass);
    auto const uri = MakeURI("handsover://x");
    IO::IURIFilePtr file;
    file.Adopt(new ServedFile(served, kOtherClass));
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), 0);
    EXPECT_EQ(served.alive, 1);
    EXPECT_EQ(ClassOf(file), kOneClass);
    EXPECT_EQ(CountOf(*file), 1);
    EXPECT_EQ(served.inits, 1);
    EXPECT_EQ(served.uri, uri.Get());
    EXPECT_EQ(CountOf(*uri), 1);
}

TEST_F(URIRegistryCreateTest, UnmadeClassGivesTheRegistrysCode)
{
    Map("unmade", kUnmadeClass);
    IO::IURIFilePtr file;
    file.Adopt(new ServedFile(served, kOneClass));
    IO::IURIFile const* const before = file.Get();
    auto const uri = MakeURI("unmade://x");
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), -1004);
    EXPECT_EQ(file.Get(), before);
    Install(-77, nullptr);
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), -77);
    EXPECT_EQ(file.Get(), before);
    // Even where that code is 0.
    Install(0, nullptr);
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), 0);
    EXPECT_EQ(file.Get(), before);
    EXPECT_EQ(CountOf(*file), 1);
    EXPECT_EQ(served.inits, 0);
}

TEST_F(URIRegistryCreateTest, ObjectCountsWhateverCodeCameWithIt)
{
    Map("oddcode", kOneClass);
    auto const uri = MakeURI("oddcode://x");
    Install(-77, new ServedFile(served, kOtherClass));
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), 0);
    EXPECT_EQ(ClassOf(file), kOtherClass);
}

TEST_F(URIRegistryCreateTest, WithoutComponentRegistryNothingIsCreated)
{
    Map("noregistry", kOneClass);
    auto const uri = MakeURI("noregistry://x");
    COREREGISTRY::InstallCoreRegistry(nullptr);
    IO::IURIFilePtr file;
    EXPECT_NE(uriRegistry->Create(*uri, file, nullptr), 0);
    EXPECT_FALSE(file);
}

TEST_F(URIRegistryCreateTest, FailingInitIsLoggedAndLeavesTheFile)
{
    Map("failing", kOneClass);
    auto const uri = MakeURI("failing://x");
    IO::IURIFilePtr file;
    served.initResult = -9;
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), -9);
    EXPECT_FALSE(file);
    EXPECT_EQ(served.alive, 0);
    EXPECT_EQ(log.Take(), std::vector{InitFailure()});

    file.Adopt(new ServedFile(served, kOtherClass));
    IO::IURIFile const* const before = file.Get();
    served.initResult = 36;
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), 36);
    EXPECT_EQ(file.Get(), before);
    EXPECT_EQ(CountOf(*file), 1);
    EXPECT_EQ(served.alive, 1);
    EXPECT_EQ(log.Take(), std::vector{InitFailure()});
    EXPECT_EQ(CountOf(*uri), 1);
}

class DefaultReporterTest : public TESTS::ServedFilesTest
{
protected:
    DefaultReporterTest()
    {
        one.Adopt(new CountedReporter);
        other.Adopt(new CountedReporter);
        Map("reporting", kOneClass);
    }

    /// The reporter that a file gets when it is created with `reporter`.
    IO::IReporter* GotWith(IO::IReporter* reporter)
    {
        IO::IURIFilePtr file;
        served.reporter = nullptr;
        EXPECT_EQ(uriRegistry->Create(*MakeURI("reporting://x"), file, reporter), 0);
        return served.reporter;
    }

    TInterfacePtr<CountedReporter> one;
    TInterfacePtr<CountedReporter> other;
};

TEST_F(DefaultReporterTest, IsUsedWhereNoneIsGiven)
{
    EXPECT_EQ(GotWith(nullptr), nullptr);
    EXPECT_EQ(GotWith(one.Get()), one.Get());
    EXPECT_EQ(uriRegistry->SetDefaultReporter(one.Get()), 0);
    EXPECT_EQ(GotWith(nullptr), one.Get());
    EXPECT_EQ(GotWith(other.Get()), other.Get());
    EXPECT_EQ(uriRegistry->SetDefaultReporter(other.Get()), 0);
    EXPECT_EQ(GotWith(nullptr), other.Get());
    EXPECT_EQ(uriRegistry->SetDefaultReporter(nullptr), 0);
    EXPECT_EQ(GotWith(nullptr), nullptr);
    EXPECT_EQ(one->reports + other->reports, 0);
}

TEST_F(DefaultReporterTest, IsHeldByOneReference)
{
    uriRegistry->SetDefaultReporter(one.Get());
    EXPECT_EQ(CountOf(*one), 2);
    uriRegistry->SetDefaultReporter(one.Get());
    EXPECT_EQ(CountOf(*one), 2);
    EXPECT_EQ(GotWith(nullptr), one.Get());
    EXPECT_EQ(CountOf(*one), 2);
    uriRegistry->SetDefaultReporter(other.Get());
    EXPECT_EQ(CountOf(*one), 1);
    EXPECT_EQ(CountOf(*other), 2);
    uriRegistry->SetDefaultReporter(nullptr);
    EXPECT_EQ(CountOf(*other), 1);
    uriRegistry->SetDefaultReporter(nullptr);
    EXPECT_EQ(CountOf(*other), 1);
}

TEST_F(DefaultReporterTest, IsSharedByAllObjects)
{
    auto second = CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
    EXPECT_EQ(second->SetDefaultReporter(one.Get()), 0);
    second.Reset();
    EXPECT_EQ(CountOf(*one), 2);
    EXPECT_EQ(GotWith(nullptr), one.Get());
}

TEST_F(DefaultReporterTest, StaysAfterAFailingInit)
{
    uriRegistry->SetDefaultReporter(one.Get());
    served.initResult = 1;
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*MakeURI("reporting://x"), file, nullptr), 1);
    EXPECT_EQ(log.Take(), std::vector{InitFailure()});
    EXPECT_EQ(served.reporter, one.Get());
    EXPECT_EQ(CountOf(*one), 2);
}
} // namespace
} // namespace KORVA
