#include "Platform/StringServices.h"

#include "Support/Library.h"

#include <gtest/gtest.h>

#include <string>

namespace KORVA
{
namespace
{
using TESTS::RowName;
using Wide = std::u16string;
using namespace std::string_literals;

struct NormalRow
{
    char const* name;
    Wide text;
    Wide composed;
    Wide decomposed;
};

class Normalization : public ::testing::TestWithParam<NormalRow>
{
};

TEST_P(Normalization, IsCanonical)
{
    EXPECT_EQ(PLATFORM::ComposeCanonical(GetParam().text), GetParam().composed);
    EXPECT_EQ(PLATFORM::DecomposeCanonical(GetParam().text), GetParam().decomposed);
}

NormalRow const kNormal[] = {
    {"Empty", u"", u"", u""},
    {"Plain", u"/a b%41", u"/a b%41", u"/a b%41"},
    {"NullCharacter", Wide{u'a', 0, u'b'}, Wide{u'a', 0, u'b'}, Wide{u'a', 0, u'b'}},
    {"Composed", u"\u00E9", u"\u00E9", u"e\u0301"},
    {"Decomposed", u"e\u0301", u"\u00E9", u"e\u0301"},
    {"MarksOutOfOrder", u"a\u0301\u0323", u"\u1EA1\u0301", u"a\u0323\u0301"},
    {"Singleton", u"\u212B", u"\u00C5", u"A\u030A"},
    {"ExcludedFromComposition", u"\u0958", u"\u0915\u093C", u"\u0915\u093C"},
    {"Hangul", u"\u1112\u1161\u11AB", u"\uD55C", u"\u1112\u1161\u11AB"},
    {"CompatibilityLigatureStays", u"\uFB01", u"\uFB01", u"\uFB01"},
    {"BeyondTheBasicPlane", u"\U0001F600", u"\U0001F600", u"\U0001F600"},
};
INSTANTIATE_TEST_SUITE_P(Texts, Normalization, ::testing::ValuesIn(kNormal), RowName());

struct UTF8Row
{
    char const* name;
    Wide units;
    std::string bytes;
};

class UTF8 : public ::testing::TestWithParam<UTF8Row>
{
};

TEST_P(UTF8, BothWays)
{
    EXPECT_EQ(PLATFORM::ToUTF8(GetParam().units), GetParam().bytes);
    EXPECT_EQ(PLATFORM::FromUTF8(GetParam().bytes), GetParam().units);
}

UTF8Row const kUTF8[] = {
    {"Empty", u"", ""},
    {"OneByte", u"Az", "Az"},
    {"NullCharacter", Wide{u'a', 0, u'b'}, "a\0b"s},
    {"LastOfOneByte", u"\u007F", "\x7F"},
    {"FirstOfTwoBytes", Wide{0x0080}, "\xC2\x80"},
    {"LastOfTwoBytes", u"\u07FF", "\xDF\xBF"},
    {"FirstOfThreeBytes", u"\u0800", "\xE0\xA0\x80"},
    {"LastOfThreeBytes", Wide{0xFFFF}, "\xEF\xBF\xBF"},
    {"FirstOfFourBytes", u"\U00010000", "\xF0\x90\x80\x80"},
    {"LastOfFourBytes", u"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
};
INSTANTIATE_TEST_SUITE_P(Texts, UTF8, ::testing::ValuesIn(kUTF8), RowName());

struct MalformedRow
{
    char const* name;
    std::string bytes;
};

class MalformedUTF8 : public ::testing::TestWithParam<MalformedRow>
{
};

TEST_P(MalformedUTF8, IsRefused)
{
    EXPECT_EQ(PLATFORM::FromUTF8(GetParam().bytes), std::nullopt);
    EXPECT_EQ(PLATFORM::FromUTF8("abc" + GetParam().bytes + "def"), std::nullopt);
}

MalformedRow const kMalformed[] = {
    {"ContinuationAlone", "\x80"},
    {"LastContinuationAlone", "\xBF"},
    {"TwoBytesCut", "\xC3"},
    {"ThreeBytesCut", "\xE2\x82"},
    {"FourBytesCut", "\xF0\x9F\x98"},
    {"NullInTwoBytes", "\xC0\x80"},
    {"OverlongTwoBytes", "\xC1\xBF"},
    {"OverlongThreeBytes", "\xE0\x9F\xBF"},
    {"OverlongFourBytes", "\xF0\x8F\xBF\xBF"},
    {"Surrogate", "\xED\xA0\x80"},
    {"BeyondTheLast", "\xF4\x90\x80\x80"},
    {"FiveBytes", "\xF8\x88\x80\x80\x80"},
    {"NeverALead", "\xFF"},
};
INSTANTIATE_TEST_SUITE_P(Bytes, MalformedUTF8, ::testing::ValuesIn(kMalformed), RowName());

struct LoneRow
{
    char const* name;
    Wide units;
};

class LoneSurrogate : public ::testing::TestWithParam<LoneRow>
{
};

TEST_P(LoneSurrogate, CanNotBeEncoded)
{
    EXPECT_EQ(PLATFORM::ToUTF8(GetParam().units), std::nullopt);
    EXPECT_EQ(PLATFORM::AddPercentEscapes(GetParam().units), std::nullopt);
    EXPECT_EQ(PLATFORM::EscapeFilePath(GetParam().units), std::nullopt);
}

LoneRow const kLone[] = {
    {"Lead", Wide{0xD800}},
    {"Trail", Wide{0xDFFF}},
    {"LeadAtTheEnd", Wide{u'a', 0xDBFF}},
    {"LeadInside", Wide{u'a', 0xD83D, u'b'}},
    {"TrailFirst", Wide{0xDE00, 0xD83D}},
    {"TwoLeads", Wide{0xD83D, 0xD83D, 0xDE00}},
};
INSTANTIATE_TEST_SUITE_P(Units, LoneSurrogate, ::testing::ValuesIn(kLone), RowName());

struct EscapeRow
{
    char const* name;
    Wide text;
    Wide inURL;
    std::string inFilePath;
};

class Escaping : public ::testing::TestWithParam<EscapeRow>
{
};

TEST_P(Escaping, TurnsBytesIntoHexadecimal)
{
    EXPECT_EQ(PLATFORM::AddPercentEscapes(GetParam().text), GetParam().inURL);
    EXPECT_EQ(PLATFORM::EscapeFilePath(GetParam().text), GetParam().inFilePath);
}

EscapeRow const kEscapes[] = {
    {"Empty", u"", u"", ""},
    {"LettersAndDigits", u"azAZ09", u"azAZ09", "azAZ09"},
    {"KeptEverywhere", u"!$&'()*+,-./:=@_~", u"!$&'()*+,-./:=@_~", "!$&'()*+,-./:=@_~"},
    {"KeptInAURL", u";?", u";?", "%3B%3F"},
    {"PercentAndHash", u"%41#", u"%2541%23", "%2541%23"},
    {"Blank", u"a b", u"a%20b", "a%20b"},
    {"Brackets", u"[]{}<>", u"%5B%5D%7B%7D%3C%3E", "%5B%5D%7B%7D%3C%3E"},
    {"OtherSigns", u"\"\\^`|", u"%22%5C%5E%60%7C", "%22%5C%5E%60%7C"},
    {"Controls", Wide{0, 0x1F, 0x7F}, u"%00%1F%7F", "%00%1F%7F"},
    {"TwoBytes", u"\u00E9", u"%C3%A9", "%C3%A9"},
    {"NotComposed", u"e\u0301", u"e%CC%81", "e%CC%81"},
    {"FourBytes", u"\U0001F600", u"%F0%9F%98%80", "%F0%9F%98%80"},
};
INSTANTIATE_TEST_SUITE_P(Texts, Escaping, ::testing::ValuesIn(kEscapes), RowName());

struct UnescapeRow
{
    char const* name;
    Wide text;
    std::optional<Wide> unescaped;
};

class Unescaping : public ::testing::TestWithParam<UnescapeRow>
{
};

TEST_P(Unescaping, IsAllOrNothing)
{
    EXPECT_EQ(PLATFORM::ReplacePercentEscapes(GetParam().text), GetParam().unescaped);
}

UnescapeRow const kUnescapes[] = {
    {"Empty", u"", u""},
    {"Plain", u"a+b#c", u"a+b#c"},
    {"UpperCase", u"%4A%4a", u"JJ"},
    {"Percent", u"%2541", u"%41"},
    {"NullCharacter", u"a%00b", Wide{u'a', 0, u'b'}},
    {"TwoBytes", u"%C3%a9", u"\u00E9"},
    {"FourBytes", u"%F0%9F%98%80", u"\U0001F600"},
    {"BesideUnescaped", u"\u00E9%20\U0001F600", u"\u00E9 \U0001F600"},
    {"PercentAlone", u"%", std::nullopt},
    {"PercentAtTheEnd", u"abc%", std::nullopt},
    {"OneDigit", u"abc%4", std::nullopt},
    {"FirstNoDigit", u"%G1", std::nullopt},
    {"SecondNoDigit", u"%4G", std::nullopt},
    {"OneBadAmongGood", u"%41%zz%42", std::nullopt},
    {"TwoBytesCut", u"%C3", std::nullopt},
    {"TwoBytesFollowedByALetter", u"%C3a", std::nullopt},
    {"NullInTwoBytes", u"%C0%80", std::nullopt},
    {"Surrogate", u"%ED%A0%80", std::nullopt},
    {"NeverALead", u"%FF", std::nullopt},
    {"FirstContinuationAlone", u"a%80", std::nullopt},
    {"SecondContinuationAlone", u"a%81b", std::nullopt},
    {"LastContinuationAlone", u"%BF", std::nullopt},
    {"TwoContinuationsAlone", u"%9F%A0", std::nullopt},
    {"TheOneThatIsReplaced", u"a%A9b", u"a\uFFFDb"},
    {"ItsNeighbourBefore", u"%A8", std::nullopt},
    {"ItsNeighbourBehind", u"%AA", std::nullopt},
    {"TheOneThatIsReplacedInACharacter", u"%C3%A9", u"\u00E9"},
    {"ByteOrderMarkFirst", u"%EF%BB%BFa", u"a"},
    {"ByteOrderMarkInside", u"a%EF%BB%BF", u"a\uFEFF"},
    {"LoneSurrogateInside", Wide{u'%', u'4', u'1', 0xD800, u'b'}, u"A"},
    {"LoneSurrogateFirst", Wide{0xDC00, u'a'}, std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(Texts, Unescaping, ::testing::ValuesIn(kUnescapes), RowName());

struct RomanRow
{
    char const* name;
    Wide text;
    std::string bytes;
    Wide back;
};

class MacRoman : public ::testing::TestWithParam<RomanRow>
{
};

TEST_P(MacRoman, ReplacesWhatItLacks)
{
    EXPECT_EQ(PLATFORM::ToMacRoman(GetParam().text), GetParam().bytes);
    EXPECT_EQ(PLATFORM::FromMacRoman(GetParam().bytes), GetParam().back);
}

RomanRow const kRoman[] = {
    {"Empty", u"", "", u""},
    {"Plain", u"Macintosh HD:a b", "Macintosh HD:a b", u"Macintosh HD:a b"},
    {"NullCharacter", Wide{u'a', 0, u'b'}, "a\0b"s, Wide{u'a', 0, u'b'}},
    {"FirstBeyondPlain", u"\u00C4", "\x80", u"\u00C4"},
    {"Euro", u"\u20AC", "\xDB", u"\u20AC"},
    {"Last", u"\u02C7", "\xFF", u"\u02C7"},
    {"Outside", u"a\u4E00b", "a?b", u"a?b"},
    {"OutsideTheBasicPlane", u"a\U0001F600b", "a?b", u"a?b"},
};
INSTANTIATE_TEST_SUITE_P(Texts, MacRoman, ::testing::ValuesIn(kRoman), RowName());
} // namespace
} // namespace KORVA
