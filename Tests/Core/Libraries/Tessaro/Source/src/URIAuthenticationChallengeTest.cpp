// What is known when a resource asks who is there.
#include <tessio/TessIO/IURIAuthenticationChallenge.h>

#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;
using IO::IURIAuthenticationChallenge;
using IO::IURICredential;
using STRING::CoreString;

class FakeCredential final : public TTracked<IURICredential>
{
public:
    using TTracked::TTracked;

    void Init(CoreString const&, CoreString const&) override {}
    CoreString const& GetUsername() const override { return mText; }
    CoreString const& GetPassword() const override { return mText; }

private:
    CoreString mText;
};

class URIAuthenticationChallengeTest : public LibraryTest
{
protected:
    URIAuthenticationChallengeTest()
        : challenge(CreateObject<IURIAuthenticationChallenge>(IO::IID_URI_AUTHENTICATION_CHALLENGE))
    {}

    void Expect(uint32 count, int error, IURICredential* credential) const
    {
        EXPECT_EQ(challenge->GetPreviousFailureCount(), count);
        EXPECT_EQ(challenge->GetPreviousFailureError(), error);
        EXPECT_EQ(challenge->GetProposedCredential(), credential);
    }

    Events TakeEvents() { return std::exchange(events, {}); }

    Events events;
    TInterfacePtr<IURIAuthenticationChallenge> challenge;
};

TEST_F(URIAuthenticationChallengeTest, KnowsNothingAtFirst)
{
    ASSERT_TRUE(challenge);
    Expect(0, 0, nullptr);
    EXPECT_EQ(CountOf(*challenge), 1);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(URIAuthenticationChallengeTest, AnswersNoInterface)
{
    IObject* out = nullptr;
    for (GUID const& id :
         {IO::IID_URI_AUTHENTICATION_CHALLENGE, IO::IPERSISTENT_DATA, IO::IPERSISTENT_DATA_EX})
        EXPECT_EQ(challenge->QueryInterface(id, &out), -1004);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(challenge->GetAggregates().empty());
}

TEST_F(URIAuthenticationChallengeTest, ReplacesEverything)
{
    auto const credential = CreateObject<IURICredential>(IO::IID_URI_CREDENTIAL);
    challenge->Init(3, -1004, credential.Get());
    Expect(3, -1004, credential.Get());
    challenge->Init(4, 401, nullptr);
    Expect(4, 401, nullptr);
    challenge->Init(0, 0, credential.Get());
    Expect(0, 0, credential.Get());
}

TEST_F(URIAuthenticationChallengeTest, KeepsTheExtremes)
{
    challenge->Init(0xFFFFFFFFu, std::numeric_limits<int>::min(), nullptr);
    Expect(4294967295u, -2147483647 - 1, nullptr);
    challenge->Init(0x80000000u, std::numeric_limits<int>::max(), nullptr);
    Expect(2147483648u, 2147483647, nullptr);
}

TEST_F(URIAuthenticationChallengeTest, SharesTheCredential)
{
    TInterfacePtr<FakeCredential> credential;
    credential.Adopt(new FakeCredential("a", events));
    challenge->Init(1, 2, credential.Get());
    EXPECT_EQ(TakeEvents(), Events{"+a"});
    challenge.Reset();
    EXPECT_EQ(TakeEvents(), Events{"-a"});
    EXPECT_EQ(CountOf(*credential), 1);
}

TEST_F(URIAuthenticationChallengeTest, GettingTheCredentialTakesNoReference)
{
    TInterfacePtr<FakeCredential> credential;
    credential.Adopt(new FakeCredential("a", events));
    challenge->Init(1, 2, credential.Get());
    TakeEvents();
    EXPECT_EQ(challenge->GetProposedCredential(), credential.Get());
    EXPECT_EQ(TakeEvents(), Events{});
    EXPECT_EQ(CountOf(*credential), 2);
}

TEST_F(URIAuthenticationChallengeTest, TakesTheNewCredentialBeforeItDropsTheOld)
{
    auto* const first = new FakeCredential("a", events);
    TInterfacePtr<FakeCredential> second;
    second.Adopt(new FakeCredential("b", events));
    challenge->Init(1, 2, first);
    first->Release();
    TakeEvents();
    challenge->Init(1, 2, second.Get());
    EXPECT_EQ(TakeEvents(), (Events{"+b", "-a", "~a"}));
    Expect(1, 2, second.Get());
}

TEST_F(URIAuthenticationChallengeTest, KeepsACredentialThatItHoldsAlone)
{
    auto* const credential = new FakeCredential("a", events);
    challenge->Init(1, 2, credential);
    credential->Release();
    TakeEvents();
    challenge->Init(5, 6, challenge->GetProposedCredential());
    EXPECT_EQ(TakeEvents(), (Events{"+a", "-a"}));
    Expect(5, 6, credential);
    EXPECT_EQ(CountOf(*credential), 1);
}

TEST_F(URIAuthenticationChallengeTest, NullDropsTheCredential)
{
    auto* const credential = new FakeCredential("a", events);
    challenge->Init(1, 2, credential);
    credential->Release();
    TakeEvents();
    challenge->Init(3, 4, nullptr);
    EXPECT_EQ(TakeEvents(), (Events{"-a", "~a"}));
    Expect(3, 4, nullptr);
    challenge->Init(5, 6, nullptr);
    Expect(5, 6, nullptr);
    EXPECT_EQ(TakeEvents(), Events{});
}

TEST_F(URIAuthenticationChallengeTest, DropsTheCredentialWhenItDies)
{
    auto* const credential = new FakeCredential("a", events);
    challenge->Init(1, 2, credential);
    credential->Release();
    TakeEvents();
    challenge.Reset();
    EXPECT_EQ(TakeEvents(), (Events{"-a", "~a"}));
}

TEST_F(URIAuthenticationChallengeTest, HasTheNewNumbersWhenTheOldCredentialDies)
{
    uint32 count = 0;
    int error = 0;
    auto* const credential = new FakeCredential("a", events, [&] {
        count = challenge->GetPreviousFailureCount();
        error = challenge->GetPreviousFailureError();
    });
    challenge->Init(1, 2, credential);
    credential->Release();
    challenge->Init(7, -8, nullptr);
    EXPECT_EQ(count, 7u);
    EXPECT_EQ(error, -8);
}

TEST_F(URIAuthenticationChallengeTest, LeavesTheCredentialAsItIs)
{
    auto const credential = CreateObject<IURICredential>(IO::IID_URI_CREDENTIAL);
    credential->Init(u"ada", u"secret");
    challenge->Init(1, 2, credential.Get());
    EXPECT_EQ(challenge->GetProposedCredential()->GetUsername(), u"ada");
    EXPECT_EQ(challenge->GetProposedCredential()->GetPassword(), u"secret");
    EXPECT_EQ(log.Take(), kNothing);
}
} // namespace
} // namespace KORVA::TESTS
