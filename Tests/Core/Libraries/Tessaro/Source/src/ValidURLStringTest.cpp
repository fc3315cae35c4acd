// Which text becomes which URL text, rule by rule and where rules meet.
#include "ValidURLString.h"

#include "Support/Library.h"

#include <gtest/gtest.h>

namespace KORVA
{
namespace
{
using IO::UTILITIES::CreateValidURLString;
using IO::UTILITIES::FindAndReplaceUniChar;
using STRING::CoreString;

struct TextRow
{
    char const* name;
    char const* in;
    char const* out;
};

class ValidURLStringTest : public ::testing::TestWithParam<TextRow>
{
};

TEST_P(ValidURLStringTest, BecomesURLText)
{
    CoreString out(u"what stood here before");
    CreateValidURLString(CoreString(GetParam().in), out);
    EXPECT_EQ(out.ToUTF8(), GetParam().out);
}

/// "://" anywhere: nothing is done, whatever else the text looks like.
TextRow const kURLs[] = {
    {"WebURL", "http://host/a b?c#d%", "http://host/a b?c#d%"},
    {"UnknownScheme", "blobs://1", "blobs://1"},
    {"NothingButTheSeparator", "://", "://"},
    {"SeparatorAtTheEnd", "x://", "x://"},
    {"SeparatorInAPosixPath", "/dir/http://host", "/dir/http://host"},
    {"SeparatorInADrivePath", "C:\\dir\\x://y", "C:\\dir\\x://y"},
    {"SeparatorInANetworkPath", "\\\\server\\x://y", "\\\\server\\x://y"},
    {"SeparatorInAColonPath", "HD:dir:x://y", "HD:dir:x://y"},
    {"FourSlashes", "x:////y", "x:////y"},
};
INSTANTIATE_TEST_SUITE_P(URLs, ValidURLStringTest, ::testing::ValuesIn(kURLs), TESTS::RowName());

/// ":\" without any "/", or ":/": a drive path.
TextRow const kDrivePaths[] = {
    {"Backslashes", "C:\\dir\\f.txt", "file:///C:/dir/f.txt"},
    {"Slashes", "C:/dir/f.txt", "file:///C:/dir/f.txt"},
    {"SlashFirstThenBackslash", "C:/dir\\f.txt", "file:///C:/dir/f.txt"},
    {"DoubledBackslashes", "C:\\\\dir\\\\f", "file:///C://dir//f"},
    {"DriveRoot", "C:\\", "file:///C:/"},
    {"DriveRootWithSlash", "c:/", "file:///c:/"},
    {"NothingButColonBackslash", ":\\", "file:///:/"},
    {"NothingButColonSlash", ":/", "file:///:/"},
    {"BlanksAndEscapesStay", "C:\\a b\\100%#?;", "file:///C:/a b/100%#?;"},
    {"ColonBackslashInTheMiddle", "dir:\\f", "file:///dir:/f"},
    {"ColonSlashInAPosixPath", "/dir:/f", "file:////dir:/f"},
    {"ColonSlashInARelativePath", "a/b:/c", "file:///a/b:/c"},
    {"SchemeWithOneSlash", "file:/dir/f", "file:///file:/dir/f"},
    {"NetworkPathWithColonBackslash", "\\\\server:\\f", "file://///server:/f"},
    {"NetworkPathWithColonSlash", "\\\\server:/f", "file://///server:/f"},
    {"BothSeparatorsAfterColons", "C:\\a:/b", "file:///C:/a:/b"},
    {"LaterColonsStay", "C:\\a:b", "file:///C:/a:b"},
};
INSTANTIATE_TEST_SUITE_P(DrivePaths, ValidURLStringTest, ::testing::ValuesIn(kDrivePaths), TESTS::RowName());

TextRow const kNetworkPaths[] = {
    {"ServerShareFile", "\\\\server\\share\\f", "file://server/share/f"},
    {"OnlyTwoBackslashes", "\\\\", "file://"},
    {"ThreeBackslashes", "\\\\\\", "file:///"},
    {"SlashFurtherOn", "\\\\server/share\\f", "file://server/share/f"},
    {"ColonInAName", "\\\\server\\a:b", "file://server/a:b"},
    {"ColonBackslashTogetherWithSlash", "\\\\server:\\a/b", "file://server:/a/b"},
    {"BlanksStay", "\\\\server\\a b", "file://server/a b"},
};
INSTANTIATE_TEST_SUITE_P(NetworkPaths, ValidURLStringTest, ::testing::ValuesIn(kNetworkPaths),
                         TESTS::RowName());

TextRow const kPosixPaths[] = {
    {"Absolute", "/Users/a b/c.txt", "file:///Users/a b/c.txt"},
    {"Root", "/", "file:///"},
    {"TwoLeadingSlashes", "//x", "file:////x"},
    {"TrailingSlash", "/dir/", "file:///dir/"},
    {"ColonAfterTheSlash", "/dir/a:b", "file:///dir/a:b"},
    {"ColonRightAfterTheSlash", "/:", "file:///:"},
    {"InnerSlash", "dir/f", "file:///dir/f"},
    {"DotSlash", "./f", "file:///./f"},
    {"SlashAtTheEnd", "dir/", "file:///dir/"},
    {"InnerSlashThenColon", "dir/a:b", "file:///dir/a:b"},
    {"BackslashThenSlash", "dir\\a/b", "file:///dir\\a/b"},
    {"SlashThenColonBackslash", "a/b:\\c", "file:///a/b:\\c"},
    {"LeadingSlashThenColonBackslash", "/a:\\b", "file:///a:\\b"},
    {"OneBackslashThenSlash", "\\a/b", "file:///\\a/b"},
    {"SpecialCharactersStay", "/a%20#?;\xC3\xA9", "file:///a%20#?;\xC3\xA9"},
};
INSTANTIATE_TEST_SUITE_P(PosixPaths, ValidURLStringTest, ::testing::ValuesIn(kPosixPaths), TESTS::RowName());

TextRow const kBareNames[] = {
    {"Empty", "", ""},
    {"Name", "name.txt", "name.txt"},
    {"NameWithBlank", "my name", "my name"},
    {"Backslash", "dir\\f", "dir\\f"},
    {"OneLeadingBackslash", "\\one", "\\one"},
    {"TwoBackslashesNotAtTheStart", "a\\\\b", "a\\\\b"},
    {"Question", "?q", "?q"},
};
INSTANTIATE_TEST_SUITE_P(BareNames, ValidURLStringTest, ::testing::ValuesIn(kBareNames), TESTS::RowName());

/// Volumes have no names in paths here, so that each colon becomes a slash.
TextRow const kColonPaths[] = {
    {"VolumeAndFolders", "HD:Users:f.txt", "file:///HD/Users/f.txt"},
    {"VolumeWithBlank", "Macintosh HD:a b", "file:///Macintosh HD/a b"},
    {"VolumeAlone", "HD:", "file:///HD/"},
    {"LeadingColon", ":a:b", "file:////a/b"},
    {"NothingButAColon", ":", "file:////"},
    {"OpaqueScheme", "mailto:a@b", "file:///mailto/a@b"},
    {"SlashAfterTheColon", "HD:a/b:c", "file:///HD/a/b/c"},
    {"ColonBackslashTogetherWithSlash", "C:\\dir/f", "file:///C/\\dir/f"},
    {"BackslashNotAfterTheColon", "a:b\\c", "file:///a/b\\c"},
};
INSTANTIATE_TEST_SUITE_P(ColonPaths, ValidURLStringTest, ::testing::ValuesIn(kColonPaths), TESTS::RowName());

TEST(ValidURLStringUnits, AnySequenceOfUnitsIsKept)
{
    CoreString out;
    CreateValidURLString(CoreString(u"/a\xD800z", 4), out);
    EXPECT_TRUE(out == CoreString(u"file:///a\xD800z", 11));
    CreateValidURLString(CoreString(u"\xDC00:\0", 3), out);
    EXPECT_TRUE(out == CoreString(u"file:///\xDC00/\0", 11));
}

struct ReplaceRow
{
    char const* name;
    char const* text;
    int start;
    UniChar find;
    UniChar replace;
    char const* result;
};

class FindAndReplaceTest : public ::testing::TestWithParam<ReplaceRow>
{
};

TEST_P(FindAndReplaceTest, Replaces)
{
    CoreString text(GetParam().text);
    FindAndReplaceUniChar(text, GetParam().start, GetParam().find, GetParam().replace);
    EXPECT_EQ(text.ToUTF8(), GetParam().result);
}

ReplaceRow const kReplacements[] = {
    {"Each", "a:b:c", 0, u':', u'/', "a/b/c"},
    {"TheReplacementIsNotLookedAt", "a:b:c", 0, u':', u'x', "a/b/c"},
    {"NoneIsReplacedByItself", "a:b:c", 0, u':', u':', "a/b/c"},
    {"FromTheStartPosition", "a:b:c", 2, u':', u'/', "a:b/c"},
    {"MatchAtTheStartPosition", "a:b:c", 1, u':', u'/', "a/b/c"},
    {"LastUnit", "a:b:", 3, u':', u'/', "a:b/"},
    {"Neighbours", "::::", 2, u':', u'/', ":://"},
    {"StartAfterTheLastMatch", "a:b:c", 4, u':', u'x', "a:b:c"},
    {"StartAtTheEnd", "a:b:c", 5, u':', u'x', "a:b:c"},
    {"StartBeyondTheEnd", "a:b:c", 6, u':', u'x', "a:b:c"},
    {"StartFarBeyondTheEnd", "a:b:c", 2000000000, u':', u'x', "a:b:c"},
    {"NoMatch", "abc", 0, u':', u'x', "abc"},
    {"EmptyText", "", 0, u':', u'x', ""},
    {"Slashes", "a/b", 0, u'/', u'x', "a/b"},
    {"OtherUnits", "a\xC3\xA9z", 0, u'\u00E9', u'x', "a/z"},
};
INSTANTIATE_TEST_SUITE_P(Rows, FindAndReplaceTest, ::testing::ValuesIn(kReplacements), TESTS::RowName());
} // namespace
} // namespace KORVA
