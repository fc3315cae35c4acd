// A user name and a password.
#include <tessio/TessIO/IURICredential.h>

#include "FreedMemory.h"
#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/TessIO/ClassIds.h>

#include <gtest/gtest.h>

#include <string>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;
using IO::IURICredential;
using IO::IURICredentialPtr;
using STRING::CoreString;

IURICredentialPtr MakeCredential() { return CreateObject<IURICredential>(IO::IID_URI_CREDENTIAL); }

class URICredentialTest : public LibraryTest
{
};

TEST_F(URICredentialTest, IsEmptyAtFirst)
{
    auto const credential = MakeCredential();
    ASSERT_TRUE(credential);
    EXPECT_EQ(credential->GetUsername(), CoreString());
    EXPECT_EQ(credential->GetPassword(), CoreString());
    EXPECT_EQ(CountOf(*credential), 1);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(URICredentialTest, AnswersNoInterface)
{
    auto const credential = MakeCredential();
    IObject* out = nullptr;
    for (GUID const& id : {IO::IID_URI_CREDENTIAL, IO::IPERSISTENT_DATA, IO::IPERSISTENT_DATA_EX})
        EXPECT_EQ(credential->QueryInterface(id, &out), -1004);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(credential->GetAggregates().empty());
}

TEST_F(URICredentialTest, CopiesBoth)
{
    auto const credential = MakeCredential();
    CoreString username = u"ada";
    CoreString password = u"a password longer than what fits into a string object";
    credential->Init(username, password);
    username[0] = u'X';
    password[0] = u'X';
    EXPECT_EQ(credential->GetUsername(), u"ada");
    EXPECT_EQ(credential->GetPassword(), u"a password longer than what fits into a string object");
}

TEST_F(URICredentialTest, GivesReferencesToWhatItStores)
{
    auto const credential = MakeCredential();
    CoreString const* const username = &credential->GetUsername();
    CoreString const* const password = &credential->GetPassword();
    credential->Init(u"ada", u"secret");
    EXPECT_EQ(&credential->GetUsername(), username);
    EXPECT_EQ(&credential->GetPassword(), password);
    EXPECT_EQ(*username, u"ada");
    EXPECT_EQ(*password, u"secret");
}

struct Row
{
    char const* name;
    std::u16string username;
    std::u16string password;
};

Row const kRows[] = {
    {"Short", u"ada", u"secret"},
    {"Long", u"ada.lovelace@engines.example.org", u"correct horse battery staple, and more"},
    {"ShortThenLong", u"ada", u"correct horse battery staple, and more"},
    {"LongThenShort", u"ada.lovelace@engines.example.org", u"secret"},
    {"NoUsername", u"", u"secret"},
    {"NoPassword", u"ada", u""},
    {"NoLatin", u"\u0436\u4E00", u"\u2022\U0001F600"},
    {"AnyUnits", std::u16string{u'a', 0, 0xD800}, std::u16string{0xDC00, 0, u'b'}},
};

class URICredentialRow : public LibraryTestWith<Row>
{
protected:
    URICredentialRow() : credential(MakeCredential())
    {
        credential->Init(CoreString(username), CoreString(password));
    }

    void Expect(std::u16string const& newUsername, std::u16string const& newPassword) const
    {
        EXPECT_EQ(credential->GetUsername(), CoreString(newUsername));
        EXPECT_EQ(credential->GetPassword(), CoreString(newPassword));
    }

    std::u16string const username = GetParam().username;
    std::u16string const password = GetParam().password;
    IURICredentialPtr const credential;
};

TEST_P(URICredentialRow, KeepsWhatItIsGiven) { Expect(username, password); }

TEST_P(URICredentialRow, ReplacesBoth)
{
    credential->Init(u"grace", u"another");
    Expect(u"grace", u"another");
    credential->Init(u"", u"");
    Expect(u"", u"");
    credential->Init(CoreString(username), CoreString(password));
    Expect(username, password);
}

TEST_P(URICredentialRow, TakesItsOwnStrings)
{
    credential->Init(credential->GetUsername(), credential->GetPassword());
    Expect(username, password);
}

TEST_P(URICredentialRow, TakesItsOwnStringsTheOtherWayRound)
{
    credential->Init(credential->GetPassword(), credential->GetUsername());
    Expect(password, username);
}

TEST_P(URICredentialRow, TakesItsUsernameForBoth)
{
    credential->Init(credential->GetUsername(), credential->GetUsername());
    Expect(username, username);
}

TEST_P(URICredentialRow, TakesItsPasswordForBoth)
{
    credential->Init(credential->GetPassword(), credential->GetPassword());
    Expect(password, password);
}

TEST_P(URICredentialRow, TakesItsPasswordWithAnotherUsername)
{
    credential->Init(u"grace", credential->GetPassword());
    Expect(u"grace", password);
}

INSTANTIATE_TEST_SUITE_P(Texts, URICredentialRow, ::testing::ValuesIn(kRows), RowName());

/// What the memory of a credential's password holds when it is given back. Passwords end in `kMark`.
class PasswordMemoryTest : public LibraryTest
{
protected:
    static constexpr std::u16string_view kMark = u"#key";

    // Longer than any string object holds inside itself, and shorter.
    CoreString const longPassword = u"a long password, far too long for the object itself #key";
    CoreString const shortPassword = u"pw#key";
    CoreString const longOther =
        u"another text of more units than the first, so that the old block is too small";
    CoreString const shortOther = u"other";
    CoreString const username = u"ada";
};

TEST_F(PasswordMemoryTest, IsWatched)
{
    // The test's own check: strings that nobody wipes are found, inside an object and outside of it.
    FreedMemoryWatch const watch(kMark);
    CoreString* volatile text = new CoreString(longPassword);
    delete text;
    EXPECT_EQ(watch.Found(), 1);
    text = new CoreString(shortPassword);
    delete text;
    EXPECT_EQ(watch.Found(), 2);
    text = new CoreString(longOther);
    delete text;
    EXPECT_EQ(watch.Found(), 2);
}

TEST_F(PasswordMemoryTest, IsWipedOnDestruction)
{
    for (CoreString const* const password : {&longPassword, &shortPassword})
    {
        auto credential = MakeCredential();
        credential->Init(username, *password);
        FreedMemoryWatch const watch(kMark);
        credential.Reset();
        EXPECT_EQ(watch.Found(), 0) << password->ToUTF8();
    }
}

TEST_F(PasswordMemoryTest, IsWipedWhenReplaced)
{
    for (CoreString const* const password : {&longPassword, &shortPassword})
        for (CoreString const* const other : {&longOther, &shortOther})
        {
            auto credential = MakeCredential();
            credential->Init(username, *password);
            FreedMemoryWatch const watch(kMark);
            credential->Init(username, *other);
            EXPECT_EQ(credential->GetPassword(), *other);
            credential.Reset();
            EXPECT_EQ(watch.Found(), 0) << password->ToUTF8() << ", then " << other->ToUTF8();
        }
}

TEST_F(PasswordMemoryTest, IsWipedAtOnceWhereAShorterOneTakesItsPlace)
{
    for (CoreString const* const password : {&longPassword, &shortPassword})
    {
        auto const credential = MakeCredential();
        credential->Init(username, *password);
        UniChar const* const place = credential->GetPassword().data();
        ASSERT_TRUE(Holds(place, password->size(), kMark));
        credential->Init(username, u"x");
        ASSERT_EQ(credential->GetPassword().data(), place) << "a string keeps its room";
        EXPECT_FALSE(Holds(place, password->size(), kMark));
        credential->Init(username, *password);
        credential->Init(username, u"");
        ASSERT_EQ(credential->GetPassword().data(), place);
        EXPECT_FALSE(Holds(place, password->size(), kMark));
    }
}

TEST_F(PasswordMemoryTest, IsWipedWhenTheUsernameTakesItsPlace)
{
    for (CoreString const* const password : {&longPassword, &shortPassword})
    {
        auto credential = MakeCredential();
        credential->Init(username, *password);
        FreedMemoryWatch const watch(kMark);
        credential->Init(credential->GetUsername(), credential->GetUsername());
        credential.Reset();
        EXPECT_EQ(watch.Found(), 0) << password->ToUTF8();
    }
}

TEST_F(PasswordMemoryTest, IsCopiedNowhereElse)
{
    for (CoreString const* const password : {&longPassword, &shortPassword})
    {
        auto credential = MakeCredential();
        FreedMemoryWatch const watch(kMark);
        credential->Init(username, *password);
        credential->Init(longOther, *password);
        credential->Init(credential->GetUsername(), credential->GetPassword());
        EXPECT_EQ(credential->GetPassword(), *password);
        credential.Reset();
        EXPECT_EQ(watch.Found(), 0) << password->ToUTF8();
    }
}
} // namespace
} // namespace KORVA::TESTS
