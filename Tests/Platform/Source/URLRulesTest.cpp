// The rules of the URL object, one by one.
#include "Platform/StringServices.h"
#include "Platform/URL.h"
#include "Support/Library.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace KORVA
{
namespace
{
using PLATFORM::URL;
using PLATFORM::URLRef;
using TESTS::RowName;

/// The text of a part; "(nil)" for a part that is absent.
std::string Shown(std::optional<std::u16string> const& part)
{
    return part ? PLATFORM::ToUTF8(*part).value_or("(lone surrogate)") : "(nil)";
}

std::u16string Wide(char const* text) { return PLATFORM::FromUTF8(text).value(); }

constexpr char kNil[] = "(nil)";
constexpr int kNoPort = -1;

struct SplitRow
{
    char const* name;
    char const* text;
    char const* scheme;
    char const* host;
    int port;
    char const* path;
    char const* parameters;
    char const* query;
};

class URLSplitTest : public ::testing::TestWithParam<SplitRow>
{
};

TEST_P(URLSplitTest, GivesTheParts)
{
    SplitRow const& row = GetParam();
    URLRef const url = URL::FromString(Wide(row.text));
    ASSERT_TRUE(url);
    EXPECT_EQ(Shown(url->Scheme()), row.scheme);
    EXPECT_EQ(Shown(url->Host()), row.host);
    EXPECT_EQ(url->Port().value_or(kNoPort), row.port);
    EXPECT_EQ(Shown(url->Path()), row.path);
    EXPECT_EQ(Shown(url->ParameterString()), row.parameters);
    EXPECT_EQ(Shown(url->Query()), row.query);
    EXPECT_EQ(Shown(url->AbsoluteString()), row.text);
}

SplitRow const kSplits[] = {
    {"Empty", "", kNil, kNil, kNoPort, kNil, kNil, kNil},
    {"EveryPart", "s://u:p@h:1/a;b?c#d", "s", "h", 1, "/a", "b", "c"},
    {"SchemeStartsWithADigit", "9x://h", "9x", "h", kNoPort, "", kNil, kNil},
    {"SchemeStartsWithAPlus", "+x://h", "+x", "h", kNoPort, "", kNil, kNil},
    {"SchemeStartsWithADot", ".x://h", ".x", "h", kNoPort, "", kNil, kNil},
    {"SchemeCaseStays", "HtTp://h", "HtTp", "h", kNoPort, "", kNil, kNil},
    {"UnderscoreIsNoSchemeCharacter", "a_b://h", kNil, kNil, kNoPort, "a_b://h", kNil, kNil},
    {"Opaque", "mailto:a@b;c?d", "mailto", kNil, kNoPort, kNil, kNil, kNil},
    {"OpaqueOfNothing", "x:", "x", kNil, kNoPort, kNil, kNil, kNil},
    {"SchemeAndOneSlash", "x:/a/b", "x", kNil, kNoPort, "/a/b", kNil, kNil},
    {"EmptyAuthority", "x:///a", "x", kNil, kNoPort, "/a", kNil, kNil},
    {"EmptyAuthorityAndNothing", "x://", "x", kNil, kNoPort, kNil, kNil, kNil},
    {"AuthorityWithoutScheme", "//h/a", kNil, "h", kNoPort, "/a", kNil, kNil},
    {"AuthorityEndsAtAQuestion", "x://h?q", "x", "h", kNoPort, "", kNil, "q"},
    {"AuthorityEndsAtAHash", "x://h#f", "x", "h", kNoPort, "", kNil, kNil},
    {"AuthorityHoldsASemicolon", "x://h;p/a", "x", "h;p", kNoPort, "/a", kNil, kNil},
    {"UserBeforeTheFirstAt", "x://u@v@h/", "x", "v@h", kNoPort, "/", kNil, kNil},
    {"PasswordAfterTheFirstColon", "x://u:p:q@h:2/", "x", "h", 2, "/", kNil, kNil},
    {"AddressHasNoBrackets", "x://[::1]:80/", "x", "::1", 80, "/", kNil, kNil},
    {"AddressWithoutPort", "x://[fe80::2]/", "x", "fe80::2", kNoPort, "/", kNil, kNil},
    {"UserAndAddress", "x://u:p@[::1]:7/", "x", "::1", 7, "/", kNil, kNil},
    {"HostIsDecoded", "x://a%20b/", "x", "a b", kNoPort, "/", kNil, kNil},
    {"HostOfNoUTF8", "x://%FF/", "x", kNil, kNoPort, "/", kNil, kNil},
    {"HostCaseStays", "x://HoSt/", "x", "HoSt", kNoPort, "/", kNil, kNil},
    {"QueryAfterTheFirstQuestion", "a?b?c", kNil, kNil, kNoPort, "a", kNil, "b?c"},
    {"EmptyQuery", "a?", kNil, kNil, kNoPort, "a", kNil, ""},
    {"QueryIsNotDecoded", "a?%20", kNil, kNil, kNoPort, "a", kNil, "%20"},
    {"ParametersAfterTheFirstSemicolon", "a;b;c/d", kNil, kNil, kNoPort, "a", "b;c/d", kNil},
    {"EmptyParameters", "a;", kNil, kNil, kNoPort, "a", "", kNil},
    {"ParametersAreNotDecoded", "a;%20", kNil, kNil, kNoPort, "a", "%20", kNil},
    {"SemicolonOfTheQuery", "a?b;c", kNil, kNil, kNoPort, "a", kNil, "b;c"},
    {"QuestionOfTheFragment", "a#b?c;d", kNil, kNil, kNoPort, "a", kNil, kNil},
    {"ParametersWithoutPath", ";p", kNil, kNil, kNoPort, kNil, "p", kNil},
    {"QueryWithoutPath", "?q", kNil, kNil, kNoPort, kNil, kNil, "q"},
    {"FragmentAlone", "#f", kNil, kNil, kNoPort, kNil, kNil, kNil},
};
INSTANTIATE_TEST_SUITE_P(Rows, URLSplitTest, ::testing::ValuesIn(kSplits), RowName());

TEST(URLHost, IsCutAtBothEndsWhereABracketEndsIt)
{
    URLRef const alone = URL::FromString(u"http://x[::1]/p");
    ASSERT_TRUE(alone);
    EXPECT_EQ(alone->Host(), u"[::1");
    EXPECT_EQ(alone->Port(), std::nullopt);
    EXPECT_EQ(alone->Path(), u"/p");
    URLRef const withPort = URL::FromString(u"http://x[::1]:80/p");
    ASSERT_TRUE(withPort);
    EXPECT_EQ(withPort->Host(), u"[::1");
    EXPECT_EQ(withPort->Port(), 80);
}

struct PortRow
{
    char const* name;
    char const* text;
    std::optional<std::int32_t> port;
};

class URLPortTest : public ::testing::TestWithParam<PortRow>
{
};

TEST_P(URLPortTest, IsASignedNumber)
{
    URLRef const url = URL::FromString(Wide(GetParam().text));
    ASSERT_TRUE(url);
    EXPECT_EQ(url->Port(), GetParam().port);
}

PortRow const kPorts[] = {
    {"Zero", "x://h:0", 0},
    {"LeadingZeros", "x://h:0080", 80},
    {"Plus", "x://h:+80", 80},
    {"Minus", "x://h:-80", -80},
    {"MinusZero", "x://h:-0", 0},
    {"MinusOneIsNone", "x://h:-1", std::nullopt},
    {"Largest", "x://h:2147483647", 2147483647},
    {"ClampedAbove", "x://h:2147483648", 2147483647},
    {"ClampedFarAbove", "x://h:99999999999999999999999", 2147483647},
    {"ClampedBelow", "x://h:-2147483649", -2147483647 - 1},
    {"Empty", "x://h:", std::nullopt},
    {"SignAlone", "x://h:+", std::nullopt},
    {"TwoSigns", "x://h:+-1", std::nullopt},
    {"Letters", "x://h:http", std::nullopt},
    {"LettersAfterDigits", "x://h:80a", std::nullopt},
    {"SecondColon", "x://h:80:81", std::nullopt},
    {"EscapedDigits", "x://h:%38%30", std::nullopt},
    {"OfTheUserOnly", "x://u:80@h", std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(Rows, URLPortTest, ::testing::ValuesIn(kPorts), RowName());

struct PathRow
{
    char const* name;
    char const* text;
    char const* path;
};

class URLPathTest : public ::testing::TestWithParam<PathRow>
{
};

TEST_P(URLPathTest, IsDecodedWithoutATrailingSeparator)
{
    URLRef const url = URL::FromString(Wide(GetParam().text));
    ASSERT_TRUE(url);
    EXPECT_EQ(Shown(url->Path()), GetParam().path);
}

PathRow const kPaths[] = {
    {"Root", "x:///", "/"},
    {"TrailingSlash", "x:///a/", "/a"},
    {"OneOfTwoTrailingSlashes", "x:///a//", "/a/"},
    {"TwoSlashesAlone", "x:////", "/"},
    {"Dots", "x:///a/./../b", "/a/./../b"},
    {"EscapeAndOneTrailingSlash", "x:///%20/", "/ "},
    {"EscapeAndTwoTrailingSlashes", "x:///%20//", "/ "},
    {"EscapeAndThreeTrailingSlashes", "x:///%20///", "/ /"},
    {"EscapedSlashAtTheEnd", "x:///a%2F", "/a"},
    {"EscapedSlashBeforeTheLast", "x:///a%2F/", "/a"},
    {"TwoEscapedSlashesAtTheEnd", "x:///a%2F%2F", "/a/"},
    {"EscapeAndDotAtTheEnd", "x:///%20/.", "/ /."},
    {"NoUTF8", "x:///%FF", "(nil)"},
    {"CutUTF8", "x:///%E2%82", "(nil)"},
    {"Emoji", "x:///%F0%9F%98%80", "/\xF0\x9F\x98\x80"},
};
INSTANTIATE_TEST_SUITE_P(Rows, URLPathTest, ::testing::ValuesIn(kPaths), RowName());

struct CreationRow
{
    char const* name;
    char const* text;
    bool accepted;
};

class URLCreationTest : public ::testing::TestWithParam<CreationRow>
{
};

TEST_P(URLCreationTest, LooksAtCharactersOnly)
{
    EXPECT_EQ(static_cast<bool>(URL::FromString(Wide(GetParam().text))), GetParam().accepted);
}

CreationRow const kCreations[] = {
    {"Kept", "AZaz09!$&'()*+,-./:;=?@_~", true},
    {"Brackets", "]a[b]][", true},
    {"OddPort", "x://h:port:", true},
    {"OneHash", "a#b", true},
    {"TwoHashes", "a#b#", false},
    {"Escape", "%aF", true},
    {"PercentAtTheEnd", "a%", false},
    {"PercentWithOneDigit", "a%4", false},
    {"PercentWithoutDigits", "%g0", false},
    {"PercentPercent", "%%41", false},
    {"Blank", " ", false},
    {"Quote", "\"", false},
    {"Less", "<", false},
    {"Greater", ">", false},
    {"Backslash", "\\", false},
    {"Caret", "^", false},
    {"Backquote", "`", false},
    {"Brace", "{", false},
    {"Bar", "|", false},
    {"Delete", "\x7F", false},
    {"Newline", "a\n", false},
    {"Accent", "\xC3\xA9", false},
};
INSTANTIATE_TEST_SUITE_P(Rows, URLCreationTest, ::testing::ValuesIn(kCreations), RowName());

struct TextRow
{
    char const* name;
    char const* in;
    char const* out;
};

class EscapeTest : public ::testing::TestWithParam<TextRow>
{
};

TEST_P(EscapeTest, EscapesUTF8Bytes)
{
    EXPECT_EQ(Shown(PLATFORM::AddPercentEscapes(Wide(GetParam().in))), GetParam().out);
}

TextRow const kEscapes[] = {
    {"Kept", "AZaz09!$&'()*+,-./:;=?@_~", "AZaz09!$&'()*+,-./:;=?@_~"},
    {"PercentAndHash", "%41#", "%2541%23"},
    {"Brackets", "[]", "%5B%5D"},
    {"Others", " \"<>\\^`{|}", "%20%22%3C%3E%5C%5E%60%7B%7C%7D"},
    {"Controls", "\x01\x1F\x7F", "%01%1F%7F"},
    {"Accent", "\xC3\xA9", "%C3%A9"},
    {"Emoji", "\xF0\x9F\x98\x80", "%F0%9F%98%80"},
};
INSTANTIATE_TEST_SUITE_P(Rows, EscapeTest, ::testing::ValuesIn(kEscapes), RowName());

class UnescapeTest : public ::testing::TestWithParam<TextRow>
{
};

TEST_P(UnescapeTest, IsAllOrNothing)
{
    EXPECT_EQ(Shown(PLATFORM::ReplacePercentEscapes(Wide(GetParam().in))), GetParam().out);
}

TextRow const kUnescapes[] = {
    {"Plain", "a b#\xC3\xA9", "a b#\xC3\xA9"},
    {"Digits", "%41%6a%6A", "Ajj"},
    {"Plus", "a+b", "a+b"},
    {"Accent", "%C3%A9", "\xC3\xA9"},
    {"Once", "%2541", "%41"},
    {"PercentAtTheEnd", "%41%", "(nil)"},
    {"OneDigit", "%41%4", "(nil)"},
    {"NoDigits", "%41%zz", "(nil)"},
    {"NoUTF8", "%41%FF", "(nil)"},
    {"CutUTF8", "%E2%82", "(nil)"},
    {"Overlong", "%C0%AF", "(nil)"},
    {"EscapedSurrogate", "%ED%A0%80", "(nil)"},
};
INSTANTIATE_TEST_SUITE_P(Rows, UnescapeTest, ::testing::ValuesIn(kUnescapes), RowName());

TEST(EscapeUnits, LoneSurrogateCannotBeEscaped)
{
    EXPECT_EQ(PLATFORM::AddPercentEscapes(std::u16string(u"a\xD800")), std::nullopt);
    EXPECT_EQ(PLATFORM::AddPercentEscapes(std::u16string(u"\xDC00z")), std::nullopt);
    EXPECT_EQ(PLATFORM::AddPercentEscapes(std::u16string(u"a\0b", 3)), u"a%00b");
    EXPECT_EQ(PLATFORM::ReplacePercentEscapes(u"a%00b"), std::u16string(u"a\0b", 3));
}

struct ResolveRow
{
    char const* name;
    char const* base;
    char const* relative;
    char const* absolute;
};

class URLResolveTest : public ::testing::TestWithParam<ResolveRow>
{
};

TEST_P(URLResolveTest, GivesTheAbsoluteText)
{
    URLRef const url = URL::FromString(Wide(GetParam().relative), URL::FromString(Wide(GetParam().base)));
    ASSERT_TRUE(url);
    EXPECT_EQ(Shown(url->AbsoluteString()), GetParam().absolute);
}

ResolveRow const kResolutions[] = {
    {"Name", "s://h/a/b", "c", "s://h/a/c"},
    {"Empty", "s://h/a;b?c#d", "", "s://h/a;b?c#d"},
    {"EmptyAuthority", "s://h/a;b?c#d", "//", "s://h/a;b?c#d"},
    {"Fragment", "s://h/a;b?c#d", "#e", "s://h/a;b?c#e"},
    {"Query", "s://h/a;b?c#d", "?e", "s://h/a;b?e"},
    {"EmptyQuery", "s://h/a;b?c#d", "?", "s://h/a;b?"},
    {"Path", "s://h/a;b?c#d", "/e", "s://h/e"},
    {"Authority", "s://u@h:1/a", "//g/e", "s://g/e"},
    {"OtherScheme", "s://h/a", "t:/e", "t:/e"},
    {"OwnSchemeIsOpaque", "s://h/a", "s:g", "s:g"},
    {"BaseWithoutAuthority", "s:/a/b", "c", "s:///a/c"},
    {"BaseWithAuthorityWithoutPath", "s://h", "c", "s://h/c"},
    {"Dots", "s://h/a/b/c", "./../d", "s://h/a/d"},
    {"DotsInTheBase", "s://h/a/../b/c", "d", "s://h/b/d"},
    {"DotsOfAnAbsolutePathStay", "s://h/a", "/b/../c", "s://h/b/../c"},
    {"DotsWithoutBasePathStay", "s://h", "../c", "s://h/../c"},
    {"DotWithoutBasePathStays", "s://h", "./c", "s://h/./c"},
    {"UpAndDownWithoutBasePathStay", "s://h", "a/../c", "s://h/a/../c"},
    {"SurplusDotsStay", "s://h/a", "../../c", "s://h/../../c"},
    {"DotsOfParametersStay", "s://h/a/b", "c;d/../e", "s://h/a/c;d/../e"},
    {"DotsOfQueriesStay", "s://h/a/b", "c?d/../e", "s://h/a/c?d/../e"},
    {"DotAtTheEnd", "s://h/a/b", ".", "s://h/a/"},
    {"DotDotAtTheEnd", "s://h/a/b/c", "..", "s://h/a/"},
    {"BracketsElsewhere", "s://h/a/", "b[c]", "s://h/a/b%5Bc%5D"},
};
INSTANTIATE_TEST_SUITE_P(Rows, URLResolveTest, ::testing::ValuesIn(kResolutions), RowName());

TEST(URLBrackets, ShowEscapedExceptAroundTheHost)
{
    auto const shown = [](char16_t const* text) {
        URLRef const url = URL::FromString(text);
        return url ? Shown(url->AbsoluteString()) : std::string("(none)");
    };
    EXPECT_EQ(shown(u"s://[::1]:1/a"), "s://[::1]:1/a");
    EXPECT_EQ(shown(u"http://x[::1]/p"), "http://x%5B::1]/p");
    EXPECT_EQ(shown(u"http://x[::1]:80/p"), "http://x%5B::1]:80/p");
    EXPECT_EQ(shown(u"s://[::1]/[a]?[b]#[c]"), "s://[::1]/%5Ba%5D?%5Bb%5D#%5Bc%5D");
    EXPECT_EQ(shown(u"[a]"), "%5Ba%5D");
}

struct FilePathRow
{
    char const* name;
    char const* path;
    char const* file;
    char const* directory;
};

class URLFilePathTest : public ::testing::TestWithParam<FilePathRow>
{
};

TEST_P(URLFilePathTest, BecomesAFileURL)
{
    FilePathRow const& row = GetParam();
    auto const text = [&row](bool isDirectory) {
        URLRef const url = URL::FromFilePath(Wide(row.path), isDirectory);
        return url ? Shown(url->AbsoluteString()) : std::string("(none)");
    };
    EXPECT_EQ(text(false), row.file);
    EXPECT_EQ(text(true), row.directory);
}

FilePathRow const kFilePaths[] = {
    {"Plain", "/a/b", "file:///a/b", "file:///a/b/"},
    {"Root", "/", "file:///", "file:///"},
    {"TrailingSlash", "/a/", "file:///a", "file:///a/"},
    {"TrailingSlashes", "/a///", "file:///a", "file:///a///"},
    {"SlashesAlone", "///", "file:///", "file://///"},
    {"SemicolonAndQuestion", "/a;b?c", "file:///a%3Bb%3Fc", "file:///a%3Bb%3Fc/"},
    {"PercentAndHash", "/%41#", "file:///%2541%23", "file:///%2541%23/"},
    {"Accent", "/\xC3\xA9", "file:///%C3%A9", "file:///%C3%A9/"},
    {"Empty", "", "(none)", "(none)"},
};
INSTANTIATE_TEST_SUITE_P(Rows, URLFilePathTest, ::testing::ValuesIn(kFilePaths), RowName());

TEST(URLFilePaths, LoneSurrogateMakesNoURL)
{
    EXPECT_FALSE(URL::FromFilePath(u"/a\xD800", false));
    EXPECT_FALSE(URL::FromFilePath(u"/a\xD800", true));
}

TEST(URLFilePaths, ColonPathMakesNoURL)
{
    EXPECT_FALSE(URL::FromColonPath(u"HD:Users:f"));
    EXPECT_FALSE(URL::FromColonPath(u""));
}

TEST(URLEquality, TextPartsAndBase)
{
    auto const make = [](char16_t const* text, char16_t const* base = nullptr) {
        return URL::FromString(text, base ? URL::FromString(base) : URLRef());
    };
    auto const equal = [](URLRef const& a, URLRef const& b) {
        EXPECT_EQ(a && b && a->IsEqual(*b), a && b && b->IsEqual(*a));
        return a && b && a->IsEqual(*b);
    };
    EXPECT_TRUE(equal(make(u"s://h/a"), make(u"s://h/a")));
    EXPECT_FALSE(equal(make(u"s://h/a"), make(u"S://h/a")));
    EXPECT_FALSE(equal(make(u"s://h/a"), make(u"s://H/a")));
    EXPECT_FALSE(equal(make(u"s://h/a"), make(u"s://h/%61")));
    EXPECT_FALSE(equal(make(u"s://h/a"), make(u"s://h/a/")));
    EXPECT_FALSE(equal(make(u"s://h/a"), make(u"s://h/a?")));
    EXPECT_FALSE(equal(make(u"http://h/"), make(u"http://h:80/")));
    EXPECT_TRUE(equal(make(u"a", u"s://h/"), make(u"a", u"s://h/")));
    EXPECT_FALSE(equal(make(u"a", u"s://h/"), make(u"a", u"s://g/")));
    EXPECT_FALSE(equal(make(u"a", u"s://h/"), make(u"a")));
    EXPECT_FALSE(equal(make(u"a", u"s://h/"), make(u"s://h/a")));
}
} // namespace
} // namespace KORVA
