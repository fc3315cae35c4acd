// The growing text and its Mac Roman form.
#include "Platform/MutableString.h"

#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace KORVA::TESTS
{
namespace
{
using PLATFORM::MutableString;

/// Bytes 80 to FF.
constexpr std::u16string_view kUpperHalf =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9\u00E8"
    u"\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC"
    u"\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"
    u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA\u00BA\u03A9\u00E6\u00F8"
    u"\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153"
    u"\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"
    u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4"
    u"\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";

std::u16string UnitsOf(MutableString const& text)
{
    std::u16string units(text.Length() + 1, u'#');
    text.GetCharacters(units.data());
    EXPECT_EQ(units.back(), u'#') << "no terminator is written";
    units.pop_back();
    return units;
}

TEST(MutableStringText, IsEmptyAtFirst)
{
    MutableString const text;
    EXPECT_EQ(text.Length(), 0u);
    EXPECT_EQ(UnitsOf(text), u"");
    char buffer[2] = {'#', '#'};
    EXPECT_TRUE(text.GetMacRoman(buffer, 1));
    EXPECT_EQ(std::string(buffer, 2), std::string("\0#", 2));
}

TEST(MutableStringText, GrowsByBytesAndUnits)
{
    MutableString text;
    text.AppendMacRoman("a\x8E");
    text.AppendCharacters(u"\u4E00bc", 2);
    text.AppendMacRoman("");
    text.AppendCharacters(u"x", 0);
    text.AppendMacRoman("z");
    EXPECT_EQ(text.Length(), 5u);
    EXPECT_EQ(UnitsOf(text), u"a\u00E9\u4E00bz");
}

TEST(MutableStringText, IgnoresNull)
{
    MutableString text;
    text.AppendMacRoman("a");
    text.AppendMacRoman(nullptr);
    text.AppendCharacters(nullptr, 0);
    text.AppendCharacters(nullptr, 3);
    EXPECT_EQ(UnitsOf(text), u"a");
}

TEST(MutableStringText, TakesAnyUnits)
{
    MutableString text;
    text.AppendCharacters(u"a\0\xD800"
                          u"b",
                          4);
    EXPECT_EQ(UnitsOf(text), std::u16string(u"a\0\xD800"
                                            u"b",
                                            4));
}

TEST(MutableStringText, TakesTheUpperHalfOfMacRoman)
{
    ASSERT_EQ(kUpperHalf.size(), 128u);
    for (int byte = 0x80; byte < 0x100; ++byte)
    {
        char const bytes[] = {static_cast<char>(byte), '\0'};
        MutableString text;
        text.AppendMacRoman(bytes);
        EXPECT_EQ(UnitsOf(text), std::u16string(1, kUpperHalf[static_cast<std::size_t>(byte - 0x80)]))
            << byte;
    }
}

TEST(MutableStringText, GivesTheUpperHalfOfMacRoman)
{
    for (int byte = 0x80; byte < 0x100; ++byte)
    {
        MutableString text;
        text.AppendCharacters(&kUpperHalf[static_cast<std::size_t>(byte - 0x80)], 1);
        char buffer[2] = {};
        EXPECT_TRUE(text.GetMacRoman(buffer, sizeof buffer));
        EXPECT_EQ(buffer[0], static_cast<char>(byte)) << byte;
    }
}

TEST(MutableStringText, TheLowerHalfIsASCII)
{
    for (int byte = 1; byte < 0x80; ++byte)
    {
        char const bytes[] = {static_cast<char>(byte), '\0'};
        MutableString text;
        text.AppendMacRoman(bytes);
        EXPECT_EQ(UnitsOf(text), std::u16string(1, static_cast<char16_t>(byte))) << byte;
        char buffer[2] = {};
        EXPECT_TRUE(text.GetMacRoman(buffer, sizeof buffer));
        EXPECT_EQ(buffer[0], bytes[0]) << byte;
    }
}

struct Row
{
    char const* name;
    std::u16string text;
    /// All of the buffer; `#` where nothing is written.
    std::string buffer;
    bool whole;
};

class MacRomanBuffer : public ::testing::TestWithParam<Row>
{
};

TEST_P(MacRomanBuffer, TakesWhatFits)
{
    MutableString text;
    text.AppendCharacters(GetParam().text.data(), GetParam().text.size());
    std::string buffer(GetParam().buffer.size(), '#');
    EXPECT_EQ(text.GetMacRoman(buffer.data(), buffer.size()), GetParam().whole);
    EXPECT_EQ(buffer, GetParam().buffer);
}

using namespace std::string_literals;

Row const kRows[] = {
    {"RoomToSpare", u"ab", "ab\0##"s, true},
    {"JustEnough", u"ab", "ab\0"s, true},
    {"NoRoomForTheTerminator", u"ab", "a\0"s, false},
    {"RoomForTheTerminatorOnly", u"ab", "\0"s, false},
    {"NoRoom", u"ab", "", false},
    {"NoRoomForNothing", u"", "", false},
    {"Outside", u"a\u4E00b", "a?b\0"s, true},
    {"OutsideTheBasicPlaneIsOneCharacter", u"a\U0001F600b", "a?b\0#"s, true},
    {"CombiningMarkIsACharacter", u"e\u0301", "e?\0"s, true},
    {"LoneSurrogate", u"\xD800", "?\0"s, true},
};
INSTANTIATE_TEST_SUITE_P(Sizes, MacRomanBuffer, ::testing::ValuesIn(kRows), RowName());
} // namespace
} // namespace KORVA::TESTS
