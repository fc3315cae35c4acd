// URIs taken against other URIs.
#include "Support/Library.h"

#include <tessio/ObjectModel/TObject.h>
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
    char const* base;
    char const* relative;
    char const* scheme;
    char const* host;
    uint32 port;
    char const* path;
    char const* query;
    char const* absolute;
    char const* lastComponent;
};

using URIRelativeTest = LibraryTestWith<Row>;

IO::IURIPtr New() { return COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI); }

TEST_P(URIRelativeTest, AnswersResolvedParts)
{
    Row const& row = GetParam();
    auto const base = MakeURI(row.base);
    auto const uri = New();
    uri->InitRelative(*base, CoreString(row.relative));
    EXPECT_EQ(uri->GetScheme().ToUTF8(), row.scheme);
    EXPECT_EQ(uri->GetHost().ToUTF8(), row.host);
    EXPECT_EQ(uri->GetPortNumber(), row.port);
    EXPECT_EQ(uri->GetPath().ToUTF8(), row.path);
    EXPECT_EQ(uri->GetQuery().ToUTF8(), row.query);
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), row.absolute);
    CoreString name;
    uri->GetName(name);
    EXPECT_EQ(name.ToUTF8(), row.lastComponent);
}

constexpr char kWeb[] = "http://u@h:81/b/c/d;p?q";

Row const kAgainstAWebURL[] = {
    {"Name", kWeb, "g", "http", "h", 81, "/b/c/g", "", "http://u@h:81/b/c/g", "g"},
    {"DotName", kWeb, "./g", "http", "h", 81, "/b/c/g", "", "http://u@h:81/b/c/g", "g"},
    {"Folder", kWeb, "g/", "http", "h", 81, "/b/c/g", "", "http://u@h:81/b/c/g/", "g"},
    {"AbsolutePath", kWeb, "/g", "http", "h", 81, "/g", "", "http://u@h:81/g", "g"},
    {"AbsolutePathKeepsDots", kWeb, "/x/../g", "http", "h", 81, "/x/../g", "", "http://u@h:81/x/../g", "g"},
    {"Authority", kWeb, "//g", "http", "g", 0, "", "", "http://g", ""},
    {"AuthorityWithPort", kWeb, "//g:5/x", "http", "g", 5, "/x", "", "http://g:5/x", "x"},
    {"Empty", kWeb, "", "http", "h", 81, "/b/c/d;p", "q", "http://u@h:81/b/c/d;p?q", "d;p"},
    {"TwoSlashesAreEmpty", kWeb, "//", "http", "h", 81, "/b/c/d;p", "q", "http://u@h:81/b/c/d;p?q", "d;p"},
    {"Query", kWeb, "?y", "http", "h", 81, "/b/c/d;p", "y", "http://u@h:81/b/c/d;p?y", "d;p"},
    {"NameAndQuery", kWeb, "g?y", "http", "h", 81, "/b/c/g", "y", "http://u@h:81/b/c/g?y", "g"},
    {"Fragment", kWeb, "#s", "http", "h", 81, "/b/c/d;p", "q", "http://u@h:81/b/c/d;p?q#s", "d;p"},
    {"NameAndFragment", kWeb, "g#s", "http", "h", 81, "/b/c/g", "", "http://u@h:81/b/c/g#s", "g"},
    {"Parameter", kWeb, ";x", "http", "h", 81, "/b/c/d;x", "", "http://u@h:81/b/c/d;x", "d;x"},
    {"NameAndParameter", kWeb, "g;x", "http", "h", 81, "/b/c/g;x", "", "http://u@h:81/b/c/g;x", "g;x"},
    {"DotsInAParameterStay", kWeb, "g;x=1/../y", "http", "h", 81, "/b/c/g;x=1/../y", "",
     "http://u@h:81/b/c/g;x=1/../y", "y"},
    {"Dot", kWeb, ".", "http", "h", 81, "/b/c", "", "http://u@h:81/b/c/", "c"},
    {"DotDot", kWeb, "..", "http", "h", 81, "/b", "", "http://u@h:81/b/", "b"},
    {"DotDotName", kWeb, "../g", "http", "h", 81, "/b/g", "", "http://u@h:81/b/g", "g"},
    {"UpToTheRoot", kWeb, "../..", "http", "h", 81, "/", "", "http://u@h:81/", "/"},
    {"SurplusDotDotStays", kWeb, "../../../g", "http", "h", 81, "/../g", "", "http://u@h:81/../g", "g"},
    {"TwoQuestions", kWeb, "g?a?b", "http", "h", 81, "/b/c/g?a", "?b", "http://u@h:81/b/c/g?a?b", "g?a"},
    {"LostSeparator", kWeb, "g/?a?b", "http", "h", 81, "/b/c/g/?a", "?b", "http://u@h:81/b/c/g/?a?b", "?a"},
    {"SchemeIgnoresTheBase", kWeb, "ftp://o:9/x?y", "ftp", "o", 9, "/x", "y", "ftp://o:9/x?y", "x"},
    {"SameSchemeIsOpaque", kWeb, "http:g", "http", "", 0, "", "", "http:g", ""},
};
INSTANTIATE_TEST_SUITE_P(AgainstAWebURL, URIRelativeTest, ::testing::ValuesIn(kAgainstAWebURL), RowName());

Row const kAgainstOtherBases[] = {
    {"PosixFile", "/dir/a b", "x.txt", "file", "", 0, "/dir/x.txt", "", "file:///dir/x.txt", "x.txt"},
    {"PosixFolder", "/dir/", "x.txt", "file", "", 0, "/dir/x.txt", "", "file:///dir/x.txt", "x.txt"},
    {"FolderWithBlank", "/a b/", "c", "file", "", 0, "/a b/c", "", "file:///a b/c", "c"},
    {"Drive", "C:\\dir\\f", "g", "file", "", 0, "/C:/dir/g", "", "file:///C:/dir/g", "g"},
    {"Network", "\\\\server\\share\\f", "g", "file", "server", 0, "/share/g", "", "file://server/share/g",
     "g"},
    {"HostWithoutPath", "http://h", "g", "http", "h", 0, "/g", "", "http://h/g", "g"},
    {"HostAndQuery", "http://h?q", "g", "http", "h", 0, "/g", "", "http://h/g", "g"},
    // What is resolved has an authority, even where nothing names one.
    {"BareName", "name", "g", "", "", 0, "", "", "//g", ""},
    {"NoURL", "", "g/h?q", "", "", 0, "g/h", "q", "g/h?q", "h"},
    {"NoURLAbsolute", "", "http://[::1]:8080/x", "http", "::1", 8080, "/x", "", "http://[::1]:8080/x", "x"},
    {"NoURLEmpty", "", "", "", "", 0, "", "", "", ""},
};
INSTANTIATE_TEST_SUITE_P(AgainstOtherBases, URIRelativeTest, ::testing::ValuesIn(kAgainstOtherBases),
                         RowName());

/// The text is taken as it is: escapes are decoded by the getters only.
Row const kEscaped[] = {
    {"Blank", "/dir/", "a%20b", "file", "", 0, "/dir/a b", "", "file:///dir/a b", "a b"},
    {"Percent", "/dir/", "100%25", "file", "", 0, "/dir/100%", "", "file:///dir/100%", "100%"},
    {"Slash", "/dir/", "a%2Fb", "file", "", 0, "/dir/a/b", "", "file:///dir/a/b", "b"},
    {"Question", "/dir/", "a%3Fb", "file", "", 0, "/dir/a?b", "", "file:///dir/a?b", "a?b"},
    {"QuestionInTheQuery", "/dir/", "p?a=%3Fz", "file", "", 0, "/dir/p?a=", "?z", "file:///dir/p?a=?z",
     "p?a="},
    {"Parameter", "/dir/", "p;a%20b", "file", "", 0, "/dir/p;a b", "", "file:///dir/p;a b", "p;a b"},
    {"Host", "/dir/", "//a%20b/c", "file", "a b", 0, "/c", "", "file://a b/c", "c"},
    {"DecomposedStays", "/dir/", "e%CC%81", "file", "", 0, "/dir/e\xCC\x81", "", "file:///dir/e\xCC\x81",
     "e\xCC\x81"},
    {"LowerCaseDigits", "/dir/", "%c3%a9", "file", "", 0, "/dir/\xC3\xA9", "", "file:///dir/\xC3\xA9",
     "\xC3\xA9"},
    {"NoNormalisation", "/dir/", "HD:f", "HD", "", 0, "", "", "HD:f", ""},
    {"AddressInBrackets", "/dir/", "http://[fe80::1]/", "http", "fe80::1", 0, "/", "", "http://[fe80::1]/",
     "/"},
    {"BracketsElsewhere", "/dir/", "a[1]", "file", "", 0, "/dir/a[1]", "", "file:///dir/a[1]", "a[1]"},
};
INSTANTIATE_TEST_SUITE_P(Escaped, URIRelativeTest, ::testing::ValuesIn(kEscaped), RowName());

/// An escape that stands for no UTF-8 empties the part that holds it, and the whole text.
Row const kMalformed[] = {
    {"InThePath", "http://h/b/", "a%FF", "http", "h", 0, "", "", "", ""},
    {"InTheQuery", "http://h/b/", "a?%FF", "http", "h", 0, "/b/a", "", "", "a"},
    {"InTheHost", "http://h/b/", "//%FF/a", "http", "", 0, "/a", "", "", "a"},
    {"CutCharacter", "http://h/b/", "a?%E2%82", "http", "h", 0, "/b/a", "", "", "a"},
};
INSTANTIATE_TEST_SUITE_P(Malformed, URIRelativeTest, ::testing::ValuesIn(kMalformed), RowName());

struct Rejected
{
    char const* name;
    char const* relative;
};

using URIRejectedTest = LibraryTestWith<Rejected>;

TEST_P(URIRejectedTest, LeavesNoURL)
{
    auto const base = MakeURI(kWeb);
    auto const uri = MakeURI("/before");
    uri->InitRelative(*base, CoreString(GetParam().relative));
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "");
    EXPECT_EQ(uri->GetHost().ToUTF8(), "");
    EXPECT_EQ(uri->GetPortNumber(), 0u);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "");
    EXPECT_EQ(uri->GetQuery().ToUTF8(), "");
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "");
    EXPECT_TRUE(*uri == *New());
}

Rejected const kRejected[] = {
    {"Blank", "a b"},
    {"BlankInTheQuery", "a?b c"},
    {"PercentAlone", "a%"},
    {"PercentWithOneDigit", "a%2"},
    {"PercentWithLetters", "a%zz"},
    {"TwoHashes", "a#b#c"},
    {"Braces", "{a}"},
    {"Backslash", "a\\b"},
    {"Quote", "a\"b"},
    {"Pipe", "a|b"},
    {"Control", "a\nb"},
    {"Delete", "a\x7F"},
    {"Accent", "\xC3\xA9"},
    {"Emoji", "\xF0\x9F\x98\x80"},
};
INSTANTIATE_TEST_SUITE_P(Rows, URIRejectedTest, ::testing::ValuesIn(kRejected), RowName());

/// A URI of somebody else's making.
class ForeignURI final : public TObject<IO::IURI>
{
public:
    void Init(CoreString const&) override {}
    void InitRelative(IURI const&, CoreString const&) override {}
    CoreString GetScheme() const override { return u"http"; }
    CoreString GetHost() const override { return u"h"; }
    uint32 GetPortNumber() const override { return 1; }
    CoreString GetPath() const override { return u"/a/b"; }
    CoreString GetQuery() const override { return u""; }
    CoreString GetAbsoluteString() const override { return u"http://h:1/a/b"; }
    void GetName(CoreString& name) const override { name = u"b"; }
    bool operator==(IURI const&) const override { return true; }
};

class URIBaseTest : public LibraryTest
{
};

TEST_F(URIBaseTest, ForeignBaseChangesNothing)
{
    IO::IURIPtr foreign;
    foreign.Adopt(new ForeignURI);
    auto const uri = MakeURI("/kept");
    uri->InitRelative(*foreign, CoreString(u"g"));
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "file:///kept");
    // Not even a text that needs no base.
    uri->InitRelative(*foreign, CoreString(u"http://o/x"));
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "file:///kept");
    auto const empty = New();
    empty->InitRelative(*foreign, CoreString(u"http://o/x"));
    EXPECT_EQ(empty->GetAbsoluteString().ToUTF8(), "");
}

TEST_F(URIBaseTest, BasesFormChains)
{
    auto const first = MakeURI("http://h:81/a/b");
    auto const second = New();
    second->InitRelative(*first, CoreString(u"c/d"));
    auto const third = New();
    third->InitRelative(*second, CoreString(u"../e/f"));
    auto const fourth = New();
    fourth->InitRelative(*third, CoreString(u"g?q"));
    EXPECT_EQ(second->GetAbsoluteString().ToUTF8(), "http://h:81/a/c/d");
    EXPECT_EQ(third->GetAbsoluteString().ToUTF8(), "http://h:81/a/e/f");
    EXPECT_EQ(fourth->GetAbsoluteString().ToUTF8(), "http://h:81/a/e/g?q");
    EXPECT_EQ(fourth->GetPath().ToUTF8(), "/a/e/g");
    EXPECT_EQ(fourth->GetScheme().ToUTF8(), "http");
    EXPECT_EQ(fourth->GetHost().ToUTF8(), "h");
    EXPECT_EQ(fourth->GetPortNumber(), 81u);
}

TEST_F(URIBaseTest, KeepsTheBaseThatWas)
{
    auto const uri = New();
    {
        auto const base = MakeURI("http://h/a/b");
        uri->InitRelative(*base, CoreString(u"c"));
        base->Init(CoreString(u"/elsewhere"));
        EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "http://h/a/c");
    }
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "http://h/a/c");
    EXPECT_EQ(uri->GetHost().ToUTF8(), "h");
}

TEST_F(URIBaseTest, MayBeItsOwnBase)
{
    auto const uri = MakeURI("http://h/a/b");
    uri->InitRelative(*uri, CoreString(u"c/d"));
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "http://h/a/c/d");
}

TEST_F(URIBaseTest, AbsoluteLocationForgetsTheBase)
{
    auto const base = MakeURI("http://h:81/a/b");
    auto const uri = New();
    uri->InitRelative(*base, CoreString(u"c"));
    uri->Init(CoreString(u"name"));
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "name");
    EXPECT_EQ(uri->GetHost().ToUTF8(), "");
    EXPECT_EQ(uri->GetPortNumber(), 0u);
}

TEST_F(URIBaseTest, LoneSurrogateLeavesNoURL)
{
    auto const base = MakeURI("/a/b");
    auto const uri = MakeURI("/before");
    uri->InitRelative(*base, CoreString(u"a\xD800", 2));
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "");
}
} // namespace
} // namespace KORVA
