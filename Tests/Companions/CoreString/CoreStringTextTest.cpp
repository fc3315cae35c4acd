// Between UTF-16, UTF-8 and wide text.
#include <tessio/CoreString/CoreString.h>

#include "Support/Library.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using STRING::CoreString;

struct Row
{
    char const* name;
    std::string utf8;
    std::u16string units;
    std::wstring wide;
};

Row const kWellFormed[] = {
    {"Empty", "", u"", L""},
    {"Ascii", "abc", u"abc", L"abc"},
    {"TwoBytes", "\xC3\xA4", u"\x00E4", L"\x00E4"},
    {"ThreeBytes", "\xE2\x82\xAC", u"\x20AC", L"\x20AC"},
    {"FourBytes", "\xF0\x9F\x98\x80", u"\U0001F600", L"\U0001F600"},
    {"LastOfTwoBytes", "\xDF\xBF", u"\x07FF", L"\x07FF"},
    {"LastBeforeSurrogates", "\xED\x9F\xBF", u"\xD7FF", L"\xD7FF"},
    {"FirstAfterSurrogates", "\xEE\x80\x80", u"\xE000", L"\xE000"},
    {"LastCodePoint", "\xF4\x8F\xBF\xBF", u"\U0010FFFF", L"\U0010FFFF"},
    {"NullCharacter", std::string("a\0b", 3), std::u16string(u"a\0b", 3), std::wstring(L"a\0b", 3)},
    {"Decomposed", "a\xCC\x88", u"a\x0308", L"a\x0308"},
};

class WellFormed : public ::testing::TestWithParam<Row>
{
};

TEST_P(WellFormed, GoesBothWays)
{
    Row const& row = GetParam();
    CoreString const text{std::string_view(row.utf8)};
    EXPECT_EQ(text.view(), row.units);
    EXPECT_EQ(text.ToUTF8(), row.utf8);
    EXPECT_EQ(text.ToWide(), row.wide);
    EXPECT_TRUE(text.IsWellFormed());
    std::optional<CoreString> const checked = CoreString::FromUTF8(row.utf8);
    ASSERT_TRUE(checked);
    EXPECT_EQ(checked->view(), row.units);
}

INSTANTIATE_TEST_SUITE_P(Texts, WellFormed, ::testing::ValuesIn(kWellFormed), RowName());

TEST(CoreStringText, NarrowTextEndsAtItsNullCharacter)
{
    EXPECT_EQ(CoreString("a\0b").view(), u"a");
    EXPECT_EQ(CoreString("\xC3\xA4").view(), u"\x00E4");
}

struct Malformed
{
    char const* name;
    std::string utf8;
    std::u16string units;
};

// Each longest piece that could have begun a character becomes one replacement character.
Malformed const kMalformed[] = {
    {"LoneContinuation", "a\x80z", u"a\xFFFDz"},
    {"ByteThatNeverOccurs", "a\xFFz", u"a\xFFFDz"},
    {"CutAtTheEnd", "a\xE2\x82", u"a\xFFFD"},
    {"CutInTheMiddle", "\xE2\x82z", u"\xFFFDz"},
    {"CutFourBytes", "\xF0\x9F\x98z", u"\xFFFDz"},
    {"LeadOnly", "\xC3", u"\xFFFD"},
    {"Overlong", "a\xC0\x80z", u"a\xFFFD\xFFFDz"},
    {"EncodedSurrogate", "a\xED\xA0\x80z", u"a\xFFFD\xFFFD\xFFFDz"},
    {"BeyondUnicode", "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
};

class MalformedUTF8 : public ::testing::TestWithParam<Malformed>
{
};

TEST_P(MalformedUTF8, IsReplacedOrRefused)
{
    Malformed const& row = GetParam();
    EXPECT_EQ(CoreString(std::string_view(row.utf8)).view(), row.units);
    EXPECT_FALSE(CoreString::FromUTF8(row.utf8));
}

INSTANTIATE_TEST_SUITE_P(Texts, MalformedUTF8, ::testing::ValuesIn(kMalformed), RowName());

struct Surrogates
{
    char const* name;
    std::u16string units;
    std::string utf8;
    std::wstring wide;
    bool wellFormed;
};

std::u16string Units(std::initializer_list<int> units)
{
    std::u16string text;
    for (int const unit : units)
        text += static_cast<char16_t>(unit);
    return text;
}

std::wstring Wide(std::initializer_list<int> units)
{
    std::wstring text;
    for (int const unit : units)
        text += static_cast<wchar_t>(unit);
    return text;
}

Surrogates const kSurrogates[] = {
    {"Pair", Units({0xD83D, 0xDE00}), "\xF0\x9F\x98\x80", Wide({0x1F600}), true},
    {"LeadAlone", Units({0xD83D}), "\xEF\xBF\xBD", Wide({0xD83D}), false},
    {"TrailAlone", Units({0xDE00}), "\xEF\xBF\xBD", Wide({0xDE00}), false},
    {"LeadBeforeLetter", Units({0xD83D, 'a'}),
     "\xEF\xBF\xBD"
     "a",
     Wide({0xD83D, 'a'}), false},
    {"TrailAfterLetter", Units({'a', 0xDE00}), "a\xEF\xBF\xBD", Wide({'a', 0xDE00}), false},
    {"Reversed", Units({0xDE00, 0xD83D}), "\xEF\xBF\xBD\xEF\xBF\xBD", Wide({0xDE00, 0xD83D}), false},
    {"LeadBeforePair", Units({0xD83D, 0xD83D, 0xDE00}), "\xEF\xBF\xBD\xF0\x9F\x98\x80",
     Wide({0xD83D, 0x1F600}), false},
    {"TrailAfterPair", Units({0xD83D, 0xDE00, 0xDE00}), "\xF0\x9F\x98\x80\xEF\xBF\xBD",
     Wide({0x1F600, 0xDE00}), false},
};

class SurrogateText : public ::testing::TestWithParam<Surrogates>
{
};

TEST_P(SurrogateText, IsConvertedPieceByPiece)
{
    Surrogates const& row = GetParam();
    CoreString const text(row.units);
    EXPECT_EQ(text.view(), row.units);
    EXPECT_EQ(text.ToUTF8(), row.utf8);
    EXPECT_EQ(text.ToWide(), row.wide);
    EXPECT_EQ(text.IsWellFormed(), row.wellFormed);
}

INSTANTIATE_TEST_SUITE_P(Texts, SurrogateText, ::testing::ValuesIn(kSurrogates), RowName());
} // namespace
} // namespace KORVA::TESTS
