// A growing text and the two copies that it hands out.
#include "UniCharUtils.h"

#include "Support/LogCapture.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace KORVA
{
/// In this program: what the wrapper holds, without making it anew.
struct LayoutProbe
{
    static bool Dirty(CFMutableStringWrapper const& wrapper) { return wrapper.mDirty; }
    static UniChar* UniCopy(CFMutableStringWrapper& wrapper) { return wrapper.mUniCopy.get(); }
    static char* CCopy(CFMutableStringWrapper& wrapper) { return wrapper.mCCopy.get(); }
};

namespace TESTS
{
namespace
{
using Probe = LayoutProbe;

class CFMutableStringWrapperTest : public ::testing::Test
{
protected:
    /// The unit copy has no terminator.
    static std::u16string Units(CFMutableStringWrapper& wrapper, std::size_t length)
    {
        return {wrapper.uni_str(), length};
    }

    LogCapture log;
};

TEST_F(CFMutableStringWrapperTest, IsEmptyAndDirtyAtFirst)
{
    CFMutableStringWrapper wrapper;
    EXPECT_TRUE(Probe::Dirty(wrapper));
    EXPECT_EQ(Probe::UniCopy(wrapper), nullptr);
    EXPECT_EQ(Probe::CCopy(wrapper), nullptr);
    EXPECT_EQ(wrapper.length(), 0);
    EXPECT_STREQ(wrapper.c_str(), "");
    EXPECT_NE(wrapper.uni_str(), nullptr);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(CFMutableStringWrapperTest, BeginsWithBytes)
{
    CFMutableStringWrapper wrapper("caf\x8E");
    EXPECT_TRUE(Probe::Dirty(wrapper));
    EXPECT_EQ(wrapper.length(), 4);
    EXPECT_STREQ(wrapper.c_str(), "caf\x8E");
    EXPECT_EQ(Units(wrapper, 4), u"caf\u00E9");
}

TEST_F(CFMutableStringWrapperTest, BeginsWithUnits)
{
    CFMutableStringWrapper wrapper(u"caf\u00E9\0x");
    EXPECT_TRUE(Probe::Dirty(wrapper));
    EXPECT_EQ(wrapper.length(), 4);
    EXPECT_EQ(Units(wrapper, 4), u"caf\u00E9");
    EXPECT_STREQ(wrapper.c_str(), "caf\x8E");
}

TEST_F(CFMutableStringWrapperTest, AppendsBytesAndUnitsInTheirOrder)
{
    CFMutableStringWrapper wrapper("1\xDB ");
    wrapper.Append(u"two \u2022 ");
    wrapper.Append("\xA5 three");
    EXPECT_EQ(wrapper.length(), 16);
    EXPECT_EQ(Units(wrapper, 16), u"1\u20AC two \u2022 \u2022 three");
    EXPECT_STREQ(wrapper.c_str(), "1\xDB two \xA5 \xA5 three");
}

TEST_F(CFMutableStringWrapperTest, EitherCopyMakesBoth)
{
    CFMutableStringWrapper bytesFirst("ab");
    EXPECT_STREQ(bytesFirst.c_str(), "ab");
    EXPECT_FALSE(Probe::Dirty(bytesFirst));
    ASSERT_NE(Probe::UniCopy(bytesFirst), nullptr);
    EXPECT_EQ(std::u16string(Probe::UniCopy(bytesFirst), 2), u"ab");

    CFMutableStringWrapper unitsFirst("ab");
    EXPECT_EQ(Units(unitsFirst, 2), u"ab");
    EXPECT_FALSE(Probe::Dirty(unitsFirst));
    EXPECT_STREQ(Probe::CCopy(unitsFirst), "ab");
}

TEST_F(CFMutableStringWrapperTest, MakesNothingAnewWithoutAChange)
{
    CFMutableStringWrapper wrapper("ab");
    char const* const bytes = wrapper.c_str();
    UniChar const* const units = wrapper.uni_str();
    // An allocator may give the same place again; what is written there tells.
    Probe::CCopy(wrapper)[0] = 'X';
    Probe::UniCopy(wrapper)[0] = u'Y';
    EXPECT_EQ(wrapper.c_str(), bytes);
    EXPECT_EQ(wrapper.uni_str(), units);
    EXPECT_STREQ(wrapper.c_str(), "Xb");
    EXPECT_EQ(Units(wrapper, 2), u"Yb");
}

TEST_F(CFMutableStringWrapperTest, MakesBothAnewAfterAnAppend)
{
    CFMutableStringWrapper wrapper("ab");
    EXPECT_STREQ(wrapper.c_str(), "ab");
    Probe::CCopy(wrapper)[0] = 'X';
    Probe::UniCopy(wrapper)[0] = u'Y';
    wrapper.Append("c");
    EXPECT_TRUE(Probe::Dirty(wrapper));
    EXPECT_EQ(Units(wrapper, 3), u"abc");
    EXPECT_FALSE(Probe::Dirty(wrapper));
    EXPECT_STREQ(wrapper.c_str(), "abc");
    wrapper.Append(u"d");
    EXPECT_TRUE(Probe::Dirty(wrapper));
    EXPECT_STREQ(wrapper.c_str(), "abcd");
    EXPECT_EQ(Units(wrapper, 4), u"abcd");
}

TEST_F(CFMutableStringWrapperTest, AppendingNothingIsAChangeToo)
{
    CFMutableStringWrapper wrapper("ab");
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_STREQ(wrapper.c_str(), "ab");
        Probe::CCopy(wrapper)[0] = 'X';
        if (round == 0)
            wrapper.Append("");
        else
            wrapper.Append(u"");
        EXPECT_TRUE(Probe::Dirty(wrapper)) << round;
        EXPECT_STREQ(wrapper.c_str(), "ab") << round;
    }
}

TEST_F(CFMutableStringWrapperTest, KeepsWhatItIsGivenNoLonger)
{
    std::string bytes = "ab";
    std::u16string units = u"cd";
    CFMutableStringWrapper wrapper(bytes.c_str());
    wrapper.Append(units.c_str());
    bytes = "XX";
    units = u"XX";
    EXPECT_STREQ(wrapper.c_str(), "abcd");
}

TEST_F(CFMutableStringWrapperTest, TakesItsOwnCopies)
{
    CFMutableStringWrapper wrapper("ab");
    wrapper.Append(wrapper.c_str());
    EXPECT_STREQ(wrapper.c_str(), "abab");
}

TEST_F(CFMutableStringWrapperTest, GrowsWithoutALimitOfItsOwn)
{
    CFMutableStringWrapper wrapper;
    for (int i = 0; i < 10'000; ++i)
        wrapper.Append(i % 2 == 0 ? "even " : "odd! ");
    EXPECT_EQ(wrapper.length(), 50'000);
    std::string const bytes = wrapper.c_str();
    EXPECT_EQ(bytes.size(), 50'000u);
    EXPECT_EQ(bytes.substr(49'990), "even odd! ");
    EXPECT_EQ(Units(wrapper, 50'000).substr(49'990), u"even odd! ");
}

TEST_F(CFMutableStringWrapperTest, NullUnitsAreLoggedByTheirLengthAndAppendNothing)
{
    Logged const lengthOfNull{"Core/Common/Constructs/UniCharUtils/UniCharUtils",
                              "int32 KORVA::UniStrLen(const UniChar *)", 0, "Passed in a NULL pointer"};
    CFMutableStringWrapper wrapper(static_cast<UniChar const*>(nullptr));
    EXPECT_EQ(log.Take(), std::vector<Logged>{lengthOfNull});
    wrapper.Append("a");
    wrapper.Append(static_cast<UniChar const*>(nullptr));
    EXPECT_EQ(log.Take(), std::vector<Logged>{lengthOfNull});
    EXPECT_STREQ(wrapper.c_str(), "a");
}

TEST_F(CFMutableStringWrapperTest, NullBytesAppendNothing)
{
    CFMutableStringWrapper wrapper(static_cast<char const*>(nullptr));
    wrapper.Append("a");
    wrapper.Append(static_cast<char const*>(nullptr));
    EXPECT_STREQ(wrapper.c_str(), "a");
    EXPECT_EQ(log.Take(), kNothing);
}

struct RomanRow
{
    char const* name;
    std::u16string text;
    char const* bytes;
    /// The text that these bytes begin anew.
    std::u16string back;
};

class WrapperRomanTest : public ::testing::TestWithParam<RomanRow>
{
};

TEST_P(WrapperRomanTest, GivesMacRoman)
{
    CFMutableStringWrapper wrapper(GetParam().text.c_str());
    EXPECT_STREQ(wrapper.c_str(), GetParam().bytes);
    EXPECT_EQ(std::u16string(wrapper.uni_str(), GetParam().text.size()), GetParam().text)
        << "the units stay as they are";
}

TEST_P(WrapperRomanTest, TakesMacRoman)
{
    CFMutableStringWrapper wrapper(GetParam().bytes);
    auto const length = static_cast<std::size_t>(wrapper.length());
    EXPECT_EQ(length, GetParam().back.size());
    EXPECT_EQ(std::u16string(wrapper.uni_str(), length), GetParam().back);
}

RomanRow const kRomanRows[] = {
    {"Plain", u"a ~\u007F", "a ~\x7F", u"a ~\u007F"},
    {"FirstBeyondPlain", u"\u00C4", "\x80", u"\u00C4"},
    {"Last", u"\u02C7", "\xFF", u"\u02C7"},
    {"NotLatin1", u"\u2022\u03A9\uFB01", "\xA5\xBD\xDE", u"\u2022\u03A9\uFB01"},
    {"PrivateUse", u"\uF8FF", "\xF0", u"\uF8FF"},
    {"Latin1WithoutAPlace", u"a\u00BDb", "a?b", u"a?b"},
    {"OtherScript", u"\u4E00\u0416", "??", u"??"},
    {"OutsideTheBasicPlane", u"a\U0001F600b", "a?b", u"a?b"},
    {"LoneSurrogate", u"a\xD800z", "a?z", u"a?z"},
};
INSTANTIATE_TEST_SUITE_P(Texts, WrapperRomanTest, ::testing::ValuesIn(kRomanRows), RowName());
} // namespace
} // namespace TESTS
} // namespace KORVA
