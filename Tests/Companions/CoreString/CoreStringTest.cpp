// The string as a sequence of code units.
#include <tessio/CoreString/CoreString.h>

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using STRING::CoreString;
constexpr std::size_t npos = CoreString::npos;

constexpr UniChar kLead = 0xD83D;
constexpr UniChar kTrail = 0xDE00;

TEST(CoreString, IsEmptyAtFirst)
{
    CoreString const text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.size(), 0u);
    EXPECT_EQ(text.view(), u"");
    EXPECT_TRUE(text == CoreString(u""));
}

TEST(CoreString, IsMadeFromUnits)
{
    EXPECT_EQ(CoreString(u"ab").view(), u"ab");
    EXPECT_EQ(CoreString(u"abc", 2).view(), u"ab");
    EXPECT_EQ(CoreString(u"abc", 0).view(), u"");
    EXPECT_EQ(CoreString(std::u16string(u"ab")).view(), u"ab");
}

TEST(CoreString, KeepsNullCharacters)
{
    CoreString const text(u"a\0b", 3);
    EXPECT_EQ(text.size(), 3u);
    EXPECT_EQ(text.view(), std::u16string_view(u"a\0b", 3));
    EXPECT_EQ(CoreString(std::u16string(u"a\0b", 3)).size(), 3u);
    EXPECT_FALSE(text == CoreString(u"a"));
}

TEST(CoreString, KeepsLoneSurrogates)
{
    UniChar const units[] = {kTrail, u'a', kLead};
    CoreString const text(units, 3);
    ASSERT_EQ(text.size(), 3u);
    EXPECT_EQ(text[0], kTrail);
    EXPECT_EQ(text[2], kLead);
    EXPECT_EQ(text.substr(2)[0], kLead);
    EXPECT_EQ(text.find(kLead), 2u);
}

TEST(CoreString, GivesItsUnits)
{
    CoreString text(u"abc");
    EXPECT_EQ(text[1], u'b');
    EXPECT_EQ(text.data()[2], u'c');
    EXPECT_EQ(text.data()[3], u'\0');
    text[1] = u'x';
    EXPECT_EQ(text.view(), u"axc");
}

TEST(CoreString, Grows)
{
    CoreString text(u"ab");
    text.reserve(100);
    EXPECT_EQ(text.view(), u"ab");
    text.push_back(u'c');
    EXPECT_EQ(&text.append(CoreString(u"de")), &text);
    EXPECT_EQ(&text.append(u"fgh", 2), &text);
    EXPECT_EQ(text.view(), u"abcdefg");
    text.append(text);
    EXPECT_EQ(text.view(), u"abcdefgabcdefg");
    text.clear();
    EXPECT_TRUE(text.empty());
}

TEST(CoreString, IsJoined)
{
    CoreString const a(u"ab");
    EXPECT_EQ((a + CoreString(u"cd")).view(), u"abcd");
    EXPECT_EQ((a + u"").view(), u"ab");
    EXPECT_EQ(a.view(), u"ab");
}

TEST(CoreString, FindsForwards)
{
    CoreString const text(u"abcabc");
    EXPECT_EQ(text.find(u'b'), 1u);
    EXPECT_EQ(text.find(u'b', 1), 1u);
    EXPECT_EQ(text.find(u'b', 2), 4u);
    EXPECT_EQ(text.find(u'b', 5), npos);
    EXPECT_EQ(text.find(u'x'), npos);
    EXPECT_EQ(text.find(CoreString(u"ca")), 2u);
    EXPECT_EQ(text.find(CoreString(u"bc"), 2), 4u);
    EXPECT_EQ(text.find(CoreString(u"bc"), 5), npos);
    EXPECT_EQ(text.find(CoreString(u"abcabcd")), npos);
    EXPECT_EQ(text.find(CoreString(), 3), 3u);
    EXPECT_EQ(text.find(u'a', 100), npos);
}

TEST(CoreString, FindsBackwards)
{
    CoreString const text(u"abcabc");
    EXPECT_EQ(text.rfind(u'b'), 4u);
    EXPECT_EQ(text.rfind(u'b', 4), 4u);
    EXPECT_EQ(text.rfind(u'b', 3), 1u);
    EXPECT_EQ(text.rfind(u'b', 0), npos);
    EXPECT_EQ(text.rfind(u'b', 100), 4u);
    EXPECT_EQ(text.rfind(CoreString(u"bc")), 4u);
    EXPECT_EQ(text.rfind(CoreString(u"bc"), 3), 1u);
    EXPECT_EQ(text.rfind(CoreString(u"x")), npos);
    EXPECT_EQ(CoreString().rfind(u'a'), npos);
}

TEST(CoreString, GivesParts)
{
    CoreString const text(u"abcdef");
    EXPECT_EQ(text.substr(2).view(), u"cdef");
    EXPECT_EQ(text.substr(2, 2).view(), u"cd");
    EXPECT_EQ(text.substr(2, 0).view(), u"");
    EXPECT_EQ(text.substr(4, 100).view(), u"ef");
    EXPECT_EQ(text.substr(0).view(), u"abcdef");
    EXPECT_EQ(text.substr(6).view(), u"");
    EXPECT_EQ(text.substr(100, 2).view(), u"") << "beyond the end there is nothing, and no exception";
}

TEST(CoreString, ComparesByCodeUnit)
{
    EXPECT_EQ(CoreString(u"ab").compare(CoreString(u"ab")), 0);
    EXPECT_LT(CoreString(u"ab").compare(CoreString(u"abc")), 0);
    EXPECT_GT(CoreString(u"b").compare(CoreString(u"abc")), 0);
    EXPECT_LT(CoreString(u"B").compare(CoreString(u"a")), 0);
    EXPECT_GT(CoreString(u"\x8000").compare(CoreString(u"\x7FFF")), 0) << "units are unsigned";
    // U+1F600 begins with 0xD83D, less than 0xFF5E, though as a code point it is larger.
    EXPECT_LT(CoreString(u"\U0001F600").compare(CoreString(u"\xFF5E")), 0);
    EXPECT_TRUE(CoreString(u"\U0001F600") < CoreString(u"\xFF5E"));
    EXPECT_FALSE(CoreString(u"\xFF5E") < CoreString(u"\U0001F600"));
    EXPECT_FALSE(CoreString(u"a") < CoreString(u"a"));
}

TEST(CoreString, ComparesWithNarrowText)
{
    EXPECT_EQ(CoreString(u"ab").compare("ab"), 0);
    EXPECT_EQ(CoreString(u"ä").compare("\xC3\xA4"), 0);
    EXPECT_LT(CoreString(u"aa").compare("ab"), 0);
    EXPECT_GT(CoreString(u"ac").compare("ab"), 0);
}

TEST(CoreString, EqualityIsByCodeUnit)
{
    EXPECT_TRUE(CoreString(u"ab") == CoreString(u"ab"));
    EXPECT_FALSE(CoreString(u"ab") == CoreString(u"AB"));
    EXPECT_FALSE(CoreString(u"ab") == CoreString(u"abc"));
    EXPECT_FALSE(CoreString(u"\x00E4") == CoreString(u"a\x0308")) << "composed and decomposed differ";
}

TEST(CoreString, ComparesWithoutRegardToCase)
{
    EXPECT_EQ(CoreString(u"File").comparei(CoreString(u"fILE")), 0);
    EXPECT_EQ(CoreString(u"ÄÖ").comparei(CoreString(u"äö")), 0);
    EXPECT_EQ(CoreString(u"Straße").comparei(CoreString(u"STRASSE")), 0);
    EXPECT_EQ(CoreString(u"\x03C3").comparei(CoreString(u"\x03C2")), 0) << "both small sigmas";
    EXPECT_EQ(CoreString(u"\U00010400").comparei(CoreString(u"\U00010428")), 0);
    EXPECT_EQ(CoreString().comparei(CoreString()), 0);
    EXPECT_NE(CoreString(u"a").comparei(CoreString(u"ä")), 0);
    EXPECT_NE(CoreString(u"I").comparei(CoreString(u"\x0131")), 0) << "no language's own rules";
    EXPECT_LT(CoreString(u"A").comparei(CoreString(u"b")), 0);
    EXPECT_GT(CoreString(u"B").comparei(CoreString(u"a")), 0);
    EXPECT_LT(CoreString(u"A").comparei(CoreString(u"ab")), 0);
}
} // namespace
} // namespace KORVA::TESTS
