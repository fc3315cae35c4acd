// What each kind of location answers through the getters.
#include "Support/Library.h"

#include <tessio/TessIO/ClassIds.h>

#include <gtest/gtest.h>

namespace KORVA
{
namespace
{
using STRING::CoreString;
using TESTS::LibraryTest;
using TESTS::LibraryTestWith;
using TESTS::RowName;

struct Row
{
    char const* name;
    char const* location;
    char const* scheme;
    char const* host;
    uint32 port;
    char const* path;
    char const* query;
    char const* absolute;
    char const* lastComponent;
};

using URITest = LibraryTestWith<Row>;

TEST_P(URITest, AnswersItsParts)
{
    Row const& row = GetParam();
    auto const uri = MakeURI(row.location);
    EXPECT_EQ(uri->GetScheme().ToUTF8(), row.scheme);
    EXPECT_EQ(uri->GetHost().ToUTF8(), row.host);
    EXPECT_EQ(uri->GetPortNumber(), row.port);
    EXPECT_EQ(uri->GetPath().ToUTF8(), row.path);
    EXPECT_EQ(uri->GetQuery().ToUTF8(), row.query);
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), row.absolute);
    CoreString name(u"what stood here before");
    uri->GetName(name);
    EXPECT_EQ(name.ToUTF8(), row.lastComponent);
}

Row const kPosixPaths[] = {
    {"Blank", "/Users/a b/c.txt", "file", "", 0, "/Users/a b/c.txt", "", "file:///Users/a b/c.txt", "c.txt"},
    {"Root", "/", "file", "", 0, "/", "", "file:///", "/"},
    {"TwoSlashes", "//", "file", "", 0, "/", "", "file:////", "/"},
    {"OneLetter", "/a", "file", "", 0, "/a", "", "file:///a", "a"},
    {"TwoLeadingSlashes", "//x", "file", "", 0, "//x", "", "file:////x", "x"},
    {"TrailingSlash", "/a/b/", "file", "", 0, "/a/b", "", "file:///a/b/", "b"},
    {"TwoTrailingSlashes", "/a/b//", "file", "", 0, "/a/b/", "", "file:///a/b//", "b/"},
    // An escape in the path costs the second separator, too.
    {"TwoTrailingSlashesAfterABlank", "/a b//", "file", "", 0, "/a b", "", "file:///a b//", "a b"},
    {"Percent", "/dir/100%.txt", "file", "", 0, "/dir/100%.txt", "", "file:///dir/100%.txt", "100%.txt"},
    {"EscapeInAName", "/a%20b", "file", "", 0, "/a%20b", "", "file:///a%20b", "a%20b"},
    {"Hash", "/dir/a#b", "file", "", 0, "/dir/a#b", "", "file:///dir/a#b", "a#b"},
    {"TwoHashes", "/a#b#c", "file", "", 0, "/a#b#c", "", "file:///a#b#c", "a#b#c"},
    {"Brackets", "/a[1]", "file", "", 0, "/a[1]", "", "file:///a[1]", "a[1]"},
    {"EscapedCharacters", "/\"<>\\^`{|}", "file", "", 0, "/\"<>\\^`{|}", "", "file:///\"<>\\^`{|}",
     "\"<>\\^`{|}"},
    {"KeptCharacters", "/!$&'()*+,-.=@_~", "file", "", 0, "/!$&'()*+,-.=@_~", "", "file:///!$&'()*+,-.=@_~",
     "!$&'()*+,-.=@_~"},
    {"DotsStay", "/a/../b/./c", "file", "", 0, "/a/../b/./c", "", "file:///a/../b/./c", "c"},
    {"RelativeBecomesAbsolute", "dir/f", "file", "", 0, "/dir/f", "", "file:///dir/f", "f"},
    {"ColonInTheName", "/dir/a:b:c", "file", "", 0, "/dir/a:b:c", "", "file:///dir/a:b:c", "a/b/c"},
    {"ColonSlash", "/dir:/f", "file", "", 0, "//dir:/f", "", "file:////dir:/f", "f"},
};
INSTANTIATE_TEST_SUITE_P(PosixPaths, URITest, ::testing::ValuesIn(kPosixPaths), RowName());

Row const kQueries[] = {
    {"OneQuestion", "/dir/p?b=1", "file", "", 0, "/dir/p", "b=1", "file:///dir/p?b=1", "p"},
    {"EmptyQuery", "/dir/p?", "file", "", 0, "/dir/p", "", "file:///dir/p?", "p"},
    {"TwoQuestions", "/dir/name?x?y=1", "file", "", 0, "/dir/name?x", "?y=1", "file:///dir/name?x?y=1",
     "name?x"},
    {"URLText", "file:///dir/name?a?b=1", "file", "", 0, "/dir/name?a", "?b=1", "file:///dir/name?a?b=1",
     "name?a"},
    {"URLTextWithOneQuestion", "file:///dir/p?b=1", "file", "", 0, "/dir/p", "b=1", "file:///dir/p?b=1", "p"},
    {"ThreeQuestions", "/p?a?b?c", "file", "", 0, "/p?a?b", "?c", "file:///p?a?b?c", "p?a?b"},
    {"NeighbouringQuestions", "/p??b", "file", "", 0, "/p?", "?b", "file:///p??b", "p?"},
    {"QuestionsAtTheEnd", "/p??", "file", "", 0, "/p?", "?", "file:///p??", "p?"},
    {"LostSeparator", "/dir/?x?y", "file", "", 0, "/dir/?x", "?y", "file:///dir/?x?y", "?x"},
    {"LostSeparatorNothingBetween", "/dir/??y", "file", "", 0, "/dir/?", "?y", "file:///dir/??y", "?"},
    {"SeparatorBeforeTheOnlyQuestion", "/dir/?y", "file", "", 0, "/dir", "y", "file:///dir/?y", "dir"},
    // The root has not lost its separator, and gets one all the same.
    {"SeparatorOfTheRoot", "/?x?y", "file", "", 0, "//?x", "?y", "file:///?x?y", "?x"},
    {"SlashInTheQuery", "/dir/?x/y?z", "file", "", 0, "/dir?x/y", "?z", "file:///dir/?x/y?z", "y"},
    {"SlashBeforeTheLastQuestion", "/dir/p?x/?y", "file", "", 0, "/dir/p/?x/", "?y", "file:///dir/p?x/?y",
     "?x/"},
    {"BlankInTheQuery", "/p?a b", "file", "", 0, "/p", "a b", "file:///p?a b", "p"},
    {"BlankBeforeTheLastQuestion", "/p?a b?c d", "file", "", 0, "/p?a b", "?c d", "file:///p?a b?c d",
     "p?a b"},
    {"EscapedQuery", "http://h/p?a=%20b", "http", "h", 0, "/p", "a=%20b", "http://h/p?a=%20b", "p"},
    {"PlusStays", "http://h/p?a=b+c", "http", "h", 0, "/p", "a=b+c", "http://h/p?a=b+c", "p"},
    {"HashInTheQuery", "http://h/p?a#b", "http", "h", 0, "/p", "a#b", "http://h/p?a#b", "p"},
};
INSTANTIATE_TEST_SUITE_P(Queries, URITest, ::testing::ValuesIn(kQueries), RowName());

Row const kParameters[] = {
    {"Parameter", "file:///a/b;v=1", "file", "", 0, "/a/b;v=1", "", "file:///a/b;v=1", "b;v=1"},
    {"EmptyParameter", "/a/b;", "file", "", 0, "/a/b;", "", "file:///a/b;", "b;"},
    {"TwoParameters", "/a/b;c;d", "file", "", 0, "/a/b;c;d", "", "file:///a/b;c;d", "b;c;d"},
    {"ParameterInAFolder", "/a;x/b", "file", "", 0, "/a;x/b", "", "file:///a;x/b", "b"},
    {"BlankInTheParameter", "/a/b;v w", "file", "", 0, "/a/b;v w", "", "file:///a/b;v w", "b;v w"},
    {"ParameterAfterASeparator", "/a/b/;v", "file", "", 0, "/a/b;v", "", "file:///a/b/;v", "b;v"},
    {"ParameterAndQuery", "/b;v?q", "file", "", 0, "/b;v", "q", "file:///b;v?q", "b;v"},
    {"ParameterAndTwoQuestions", "/b;v?q?r", "file", "", 0, "/b;v?q", "?r", "file:///b;v?q?r", "b;v?q"},
    {"SemicolonInTheQuery", "/b?q;v", "file", "", 0, "/b", "q;v", "file:///b?q;v", "b"},
};
INSTANTIATE_TEST_SUITE_P(Parameters, URITest, ::testing::ValuesIn(kParameters), RowName());

Row const kOtherPaths[] = {
    {"Drive", "C:\\dir\\f.txt", "file", "", 0, "/C:/dir/f.txt", "", "file:///C:/dir/f.txt", "f.txt"},
    {"DriveRoot", "C:\\", "file", "", 0, "/C:", "", "file:///C:/", "C/"},
    {"DriveWithBlank", "c:/a b/c d", "file", "", 0, "/c:/a b/c d", "", "file:///c:/a b/c d", "c d"},
    {"DriveBackslashTogetherWithSlash", "C:\\dir/f", "file", "", 0, "/C/\\dir/f", "", "file:///C/\\dir/f",
     "f"},
    {"Network", "\\\\server\\share\\f", "file", "server", 0, "/share/f", "", "file://server/share/f", "f"},
    {"NetworkServerAlone", "\\\\server", "file", "server", 0, "", "", "file://server", ""},
    {"NetworkWithBlanks", "\\\\a b\\c d", "file", "a b", 0, "/c d", "", "file://a b/c d", "c d"},
    {"NetworkBackslashesOnly", "\\\\", "file", "", 0, "", "", "file://", ""},
    {"ColonPath", "HD:Users:f.txt", "file", "", 0, "/HD/Users/f.txt", "", "file:///HD/Users/f.txt", "f.txt"},
    {"ColonPathWithBlank", "Macintosh HD:f", "file", "", 0, "/Macintosh HD/f", "", "file:///Macintosh HD/f",
     "f"},
    {"BareName", "name.txt", "", "", 0, "name.txt", "", "name.txt", "name.txt"},
    {"BareNameWithBlank", "a b", "", "", 0, "a b", "", "a b", "a b"},
    {"BareOneLetter", "a", "", "", 0, "a", "", "a", "a"},
    {"BareTwoLetters", "ab", "", "", 0, "ab", "", "ab", "ab"},
    {"BareBackslashPath", "dir\\f", "", "", 0, "dir\\f", "", "dir\\f", "f"},
    {"BareTrailingBackslash", "dir\\", "", "", 0, "dir\\", "", "dir\\", "dir\\"},
    {"BareTrailingBackslashOfAPath", "a\\dir\\", "", "", 0, "a\\dir\\", "", "a\\dir\\", "dir\\"},
    {"BareOneBackslash", "\\", "", "", 0, "\\", "", "\\", "\\"},
    {"BareBackslashThenLetter", "\\x", "", "", 0, "\\x", "", "\\x", "x"},
    {"BareLetterThenBackslash", "x\\", "", "", 0, "x\\", "", "x\\", "x\\"},
    {"BareWithQuery", "name?b", "", "", 0, "name", "b", "name?b", "name"},
    {"BareWithTwoQuestions", "name?b?c", "", "", 0, "name?b", "?c", "name?b?c", "name?b"},
    // Without a path there is nothing to append to.
    {"BareQuery", "?a?b", "", "", 0, "", "?b", "?a?b", ""},
    {"BareParameter", ";x", "", "", 0, "", "", ";x", ""},
};
INSTANTIATE_TEST_SUITE_P(OtherPaths, URITest, ::testing::ValuesIn(kOtherPaths), RowName());

Row const kURLs[] = {
    {"Whole", "http://user:pw@host:8080/p/q?x=1", "http", "host", 8080, "/p/q", "x=1",
     "http://user:pw@host:8080/p/q?x=1", "q"},
    {"HostAlone", "http://host", "http", "host", 0, "", "", "http://host", ""},
    {"HostAndRoot", "http://host/", "http", "host", 0, "/", "", "http://host/", "/"},
    {"CaseStays", "HTTP://Host/Path", "HTTP", "Host", 0, "/Path", "", "HTTP://Host/Path", "Path"},
    {"UserAlone", "ftp://me@h/f", "ftp", "h", 0, "/f", "", "ftp://me@h/f", "f"},
    {"TwoAts", "http://a@b@c/", "http", "b@c", 0, "/", "", "http://a@b@c/", "/"},
    {"ColonInThePassword", "http://u:p:w@h:1/", "http", "h", 1, "/", "", "http://u:p:w@h:1/", "/"},
    {"PortZero", "http://h:0/", "http", "h", 0, "/", "", "http://h:0/", "/"},
    {"LargestPort", "http://h:65535/", "http", "h", 65535, "/", "", "http://h:65535/", "/"},
    {"PortBeyondSixteenBits", "http://h:99999/", "http", "h", 99999, "/", "", "http://h:99999/", "/"},
    {"PortBeyondThirtyTwoBits", "http://h:99999999999999999999/", "http", "h", 2147483647, "/", "",
     "http://h:99999999999999999999/", "/"},
    {"PortWithSign", "http://h:+80/", "http", "h", 80, "/", "", "http://h:+80/", "/"},
    {"NegativePort", "http://h:-5/", "http", "h", 4294967291u, "/", "", "http://h:-5/", "/"},
    {"PortMinusOne", "http://h:-1/", "http", "h", 0, "/", "", "http://h:-1/", "/"},
    {"EmptyPort", "http://h:/", "http", "h", 0, "/", "", "http://h:/", "/"},
    {"PortOfLetters", "http://h:port/", "http", "h", 0, "/", "", "http://h:port/", "/"},
    {"PortWithLettersAfter", "http://h:80x/", "http", "h", 0, "/", "", "http://h:80x/", "/"},
    {"PortWithBlank", "http://h: 80/", "http", "h", 0, "/", "", "http://h: 80/", "/"},
    {"BlankInTheHost", "http://a b/c", "http", "a b", 0, "/c", "", "http://a b/c", "c"},
    {"FileWithHost", "file://localhost/f", "file", "localhost", 0, "/f", "", "file://localhost/f", "f"},
    {"QueryStraightAfterTheHost", "http://h?q", "http", "h", 0, "", "q", "http://h?q", ""},
    {"TwoQuestionsAfterTheHost", "http://h?q?r", "http", "h", 0, "?q", "?r", "http://h?q?r", "?q"},
    // Brackets are escaped, so that an address is a host that ends at its first colon.
    {"AddressWithPort", "http://[::1]:8080/x", "http", "[", 0, "/x", "", "http://[::1]:8080/x", "x"},
    {"Fragment", "http://h/p#f", "http", "h", 0, "/p#f", "", "http://h/p#f", "p#f"},
    {"SchemeOfOddCharacters", "1+.-://h/p", "1+.-", "h", 0, "/p", "", "1+.-://h/p", "p"},
    {"SchemeWithBlankIsNone", "a b://h/p", "", "", 0, "a b://h/p", "", "a b://h/p", "p"},
    {"SeparatorInAPosixPath", "/dir/http://host", "", "", 0, "/dir/http://host", "", "/dir/http://host",
     "host"},
    {"Opaque", "mailto:a?x=://", "mailto", "", 0, "", "", "mailto:a?x=://", ""},
};
INSTANTIATE_TEST_SUITE_P(URLs, URITest, ::testing::ValuesIn(kURLs), RowName());

Row const kUnicode[] = {
    {"Composed", "/\xC3\xA9", "file", "", 0, "/\xC3\xA9", "", "file:///\xC3\xA9", "\xC3\xA9"},
    {"DecomposedIsComposed", "/e\xCC\x81", "file", "", 0, "/\xC3\xA9", "", "file:///\xC3\xA9", "\xC3\xA9"},
    {"HangulIsComposed", "/\xE1\x84\x80\xE1\x85\xA1", "file", "", 0, "/\xEA\xB0\x80", "",
     "file:///\xEA\xB0\x80", "\xEA\xB0\x80"},
    {"AngstromIsComposed", "/\xE2\x84\xAB", "file", "", 0, "/\xC3\x85", "", "file:///\xC3\x85", "\xC3\x85"},
    {"CompatibilityStays", "/\xEF\xAC\x81", "file", "", 0, "/\xEF\xAC\x81", "", "file:///\xEF\xAC\x81",
     "\xEF\xAC\x81"},
    {"Emoji", "/\xF0\x9F\x98\x80.txt", "file", "", 0, "/\xF0\x9F\x98\x80.txt", "",
     "file:///\xF0\x9F\x98\x80.txt", "\xF0\x9F\x98\x80.txt"},
    {"EmojiInTheQuery", "/p?\xF0\x9F\x98\x80", "file", "", 0, "/p", "\xF0\x9F\x98\x80",
     "file:///p?\xF0\x9F\x98\x80", "p"},
    {"HostIsComposed", "http://e\xCC\x81/", "http", "\xC3\xA9", 0, "/", "", "http://\xC3\xA9/", "/"},
};
INSTANTIATE_TEST_SUITE_P(Unicode, URITest, ::testing::ValuesIn(kUnicode), RowName());

Row const kNothing[] = {
    {"Empty", "", "", "", 0, "", "", "", ""},
};
INSTANTIATE_TEST_SUITE_P(Nothing, URITest, ::testing::ValuesIn(kNothing), RowName());

class URIObjectTest : public LibraryTest
{
protected:
    static void ExpectNoURL(IO::IURI const& uri)
    {
        EXPECT_EQ(uri.GetScheme().ToUTF8(), "");
        EXPECT_EQ(uri.GetHost().ToUTF8(), "");
        EXPECT_EQ(uri.GetPortNumber(), 0u);
        EXPECT_EQ(uri.GetPath().ToUTF8(), "");
        EXPECT_EQ(uri.GetQuery().ToUTF8(), "");
        EXPECT_EQ(uri.GetAbsoluteString().ToUTF8(), "");
        CoreString name(u"what stood here before");
        uri.GetName(name);
        EXPECT_EQ(name.ToUTF8(), "");
    }
};

TEST_F(URIObjectTest, NewOneHasNoURL) { ExpectNoURL(*COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI)); }

TEST_F(URIObjectTest, EmptyLocationChangesNothing)
{
    auto const uri = MakeURI("/kept");
    uri->Init(CoreString());
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/kept");
}

TEST_F(URIObjectTest, LaterLocationReplaces)
{
    auto const uri = MakeURI("http://user@host:1/a;b?c");
    uri->Init(CoreString(u"name"));
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "");
    EXPECT_EQ(uri->GetHost().ToUTF8(), "");
    EXPECT_EQ(uri->GetPortNumber(), 0u);
    EXPECT_EQ(uri->GetQuery().ToUTF8(), "");
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "name");
}

TEST_F(URIObjectTest, LoneSurrogateMakesNoURL)
{
    auto const uri = MakeURI("/before");
    uri->Init(CoreString(u"/a\xD800z", 4));
    ExpectNoURL(*uri);
    uri->Init(CoreString(u"/after"));
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/after");
    uri->Init(CoreString(u"/\xDC00", 2));
    ExpectNoURL(*uri);
}

TEST_F(URIObjectTest, NullCharacterIsEscaped)
{
    auto const uri = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    uri->Init(CoreString(u"/a\0b", 4));
    EXPECT_TRUE(uri->GetPath() == CoreString(u"/a\0b", 4));
    EXPECT_TRUE(uri->GetAbsoluteString() == CoreString(u"file:///a\0b", 11));
}

TEST_F(URIObjectTest, AnswersForPersistenceOnly)
{
    auto const uri = MakeURI("/a");
    IObject* answer = uri.Get();
    EXPECT_EQ(uri->QueryInterface(IO::IID_IURI, &answer), -1004);
    EXPECT_EQ(answer, uri.Get());
    EXPECT_EQ(uri->QueryInterface(IO::IPERSISTENT_DATA_EX, nullptr), -1004);
    EXPECT_EQ(uri->QueryInterface(IO::IPERSISTENT_DATA, nullptr), 0);
    EXPECT_EQ(uri->GetAggregates().size(), 1u);
}

TEST_F(URIObjectTest, EachCreationMakesANewOneWithOneReference)
{
    IObject* first = nullptr;
    IObject* second = nullptr;
    ASSERT_EQ(Registry()->CreateInstance(IO::IID_IURI, &first), 0);
    ASSERT_EQ(Registry()->CreateInstance(IO::IID_IURI, &second), 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->AddRef(), 2);
    EXPECT_EQ(first->Release(), 1);
    EXPECT_EQ(first->Release(), 0);
    EXPECT_EQ(second->Release(), 0);
}
} // namespace
} // namespace KORVA
