// From UTF-16 units to bytes: the low byte of each.
#include "UniCharUtils.h"

#include "Support/LogCapture.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <string>

namespace KORVA::TESTS
{
namespace
{
using namespace std::string_literals;

struct Row
{
    char const* name;
    std::u16string text;
    std::string narrowed;
    std::string extension;
    std::string fileName;
};

class NarrowUniStrTest : public ::testing::TestWithParam<Row>
{
protected:
    LogCapture log;
};

TEST_P(NarrowUniStrTest, KeepsTheLowByteOfEachUnit)
{
    EXPECT_EQ(GetStringFromUniStr(GetParam().text.c_str()), GetParam().narrowed);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_P(NarrowUniStrTest, GivesWhatFollowsTheLastDotInCapitals)
{
    EXPECT_EQ(GetExtFromUniStr(GetParam().text.c_str()), GetParam().extension);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_P(NarrowUniStrTest, DropsTheCharacterBehindTheLastDot)
{
    EXPECT_EQ(GetFileNameFromUniStr(GetParam().text.c_str()), GetParam().fileName);
    EXPECT_EQ(log.Take(), kNothing);
}

// Extension and file name of a text without a dot are that text, in its own case.
Row const kRows[] = {
    {"Empty", u"", "", "", ""},
    {"NoDot", u"readme", "readme", "readme", "readme"},
    {"MixedCaseWithoutADot", u"ReadMe", "ReadMe", "ReadMe", "ReadMe"},
    {"OneDot", u"photo.jpeg", "photo.jpeg", "JPEG", "PHOTO.PEG"},
    {"Capitals", u"PHOTO.JPEG", "PHOTO.JPEG", "JPEG", "PHOTO.PEG"},
    {"MixedCase", u"My Photo.Jpeg", "My Photo.Jpeg", "JPEG", "MY PHOTO.PEG"},
    {"OneCharacterExtension", u"main.c", "main.c", "C", "MAIN."},
    {"SeveralDots", u"a.tar.gz", "a.tar.gz", "GZ", "A.TAR.Z"},
    {"DotFirst", u".profile", ".profile", "PROFILE", ".ROFILE"},
    {"DotLast", u"name.", "name.", "", "NAME."},
    {"DotsLast", u"name..", "name..", "", "NAME.."},
    {"OnlyADot", u".", ".", "", "."},
    {"DotInADirectory", u"a.b/c", "a.b/c", "B/C", "A./C"},
    {"OnlyLettersHaveCapitals", u"x.z{`@[1~", "x.z{`@[1~", "Z{`@[1~", "X.{`@[1~"},
    {"EndsOfTheAlphabet", u"m.azAZ", "m.azAZ", "AZAZ", "M.ZAZ"},
    {"HighBytesStay", u"\u00E9t\u00E9.\u00E9x", "\xE9t\xE9.\xE9x", "\xE9X", "\xE9T\xE9.X"},
    {"HighByteIsDropped", u"\u4E61\u0162.\u0370\u0171", "ab.pq", "PQ", "AB.Q"},
    {"DotInTheLowByte", u"a\u012Eb", "a.b", "B", "A."},
    {"ZeroInTheLowByte", u"a\u0100.b", "a\0.b"s, "B", "A\0."s},
    {"SurrogatesAreUnits", u"\U0001F600.x", "\x3D\x00.x"s, "X", "\x3D\x00."s},
};
INSTANTIATE_TEST_SUITE_P(Texts, NarrowUniStrTest, ::testing::ValuesIn(kRows), RowName());
} // namespace
} // namespace KORVA::TESTS
