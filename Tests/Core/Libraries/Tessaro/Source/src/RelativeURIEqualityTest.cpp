// Which relative URIs are equal.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

struct One
{
    int32 type;
    char const* scheme;
    char const* host;
    uint32 port;
    char const* path;
};

struct Row
{
    char const* name;
    One one;
    One other;
    bool equal;
};

using RelativeURIEqualityTest = RelativeURITestWith<Row>;

/// Through the slot of the left one: the language may turn `==` between two classes round.
bool Equal(IO::IURI const& one, IO::IURI const& other) { return one == other; }

IO::IRelativeURIPtr MakeOne(One const& one)
{
    auto uri = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(uri->Init(static_cast<FILE_SYS::DirType>(one.type), CoreString(one.scheme),
                        CoreString(one.host), one.port, CoreString(one.path), true),
              0);
    return uri;
}

TEST_P(RelativeURIEqualityTest, IsOfPortSchemeHostAndFullPath)
{
    Row const& row = GetParam();
    auto const one = MakeOne(row.one);
    auto const other = MakeOne(row.other);
    EXPECT_EQ(Equal(*one, *other), row.equal);
    EXPECT_EQ(Equal(*other, *one), row.equal);
    EXPECT_TRUE(Equal(*one, *one));
    EXPECT_TRUE(Equal(*other, *other));
}

Row const kRows[] = {
    {"Same", {3, "file", "h", 1, "a/f"}, {3, "file", "h", 1, "a/f"}, true},
    {"OtherDirectory", {3, "file", "h", 1, "../f"}, {2, "file", "h", 1, "../f"}, true},
    {"OtherDirectoryAndWay", {3, "file", "h", 1, "../Desktop/f"}, {2, "file", "h", 1, "f"}, true},
    {"OtherWay", {3, "file", "h", 1, "a/../f"}, {3, "file", "h", 1, "f"}, true},
    {"OtherSeparators", {3, "file", "h", 1, "a\\f"}, {3, "file", "h", 1, "/a//f/"}, true},
    {"Empty", {3, "", "", 0, ""}, {3, "", "", 0, ""}, true},
    {"OtherPath", {3, "file", "h", 1, "f"}, {3, "file", "h", 1, "g"}, false},
    {"SameWayFromOtherDirectory", {3, "file", "h", 1, "f"}, {2, "file", "h", 1, "f"}, false},
    {"CaseOfThePath", {3, "file", "h", 1, "f"}, {3, "file", "h", 1, "F"}, false},
    {"CompositionOfThePath", {3, "file", "h", 1, "\xC3\xA9"}, {3, "file", "h", 1, "e\xCC\x81"}, false},
    {"OtherPort", {3, "file", "h", 1, "f"}, {3, "file", "h", 2, "f"}, false},
    {"OtherScheme", {3, "file", "h", 1, "f"}, {3, "ftp", "h", 1, "f"}, false},
    {"CaseOfTheScheme", {3, "file", "h", 1, "f"}, {3, "File", "h", 1, "f"}, false},
    {"OtherHost", {3, "file", "h", 1, "f"}, {3, "file", "i", 1, "f"}, false},
    {"CaseOfTheHost", {3, "file", "h", 1, "f"}, {3, "file", "H", 1, "f"}, false},
};
INSTANTIATE_TEST_SUITE_P(Rows, RelativeURIEqualityTest, ::testing::ValuesIn(kRows), RowName());

/// Claims to be equal to anything and remembers what it was asked.
class ForeignURI final : public TObject<IO::IURI>
{
public:
    void Init(CoreString const&) override {}
    void InitRelative(IURI const&, CoreString const&) override {}
    CoreString GetScheme() const override { return Asked("scheme", scheme); }
    CoreString GetHost() const override { return Asked("host", u"h"); }
    uint32 GetPortNumber() const override
    {
        asked.push_back("port");
        return port;
    }
    CoreString GetPath() const override { return Asked("path", u"/Users/u/Documents/f"); }
    CoreString GetQuery() const override { return Asked("query", u""); }
    CoreString GetAbsoluteString() const override { return Asked("absolute", u""); }
    void GetName(CoreString& name) const override { name = Asked("name", u"f"); }
    bool operator==(IURI const&) const override
    {
        asked.push_back("equality");
        return true;
    }

    uint32 port = 80;
    char16_t const* scheme = u"file";
    mutable std::vector<std::string> asked;

private:
    CoreString Asked(char const* what, char16_t const* answer) const
    {
        asked.push_back(what);
        return CoreString(answer);
    }
};

using Asked = std::vector<std::string>;

class RelativeURIIdentityTest : public RelativeURITest
{
};

TEST_F(RelativeURIIdentityTest, NewOnesAreEqual)
{
    auto const uri = NewRelative();
    EXPECT_TRUE(Equal(*uri, *uri));
    EXPECT_TRUE(Equal(*uri, *NewRelative()));
    EXPECT_FALSE(Equal(*uri, *Below(kDocuments, "f")));
}

TEST_F(RelativeURIIdentityTest, NeverEqualsAURI)
{
    auto const uri = NewRelative();
    EXPECT_EQ(uri->Init(kDocuments, CoreString(u"file"), CoreString(), 0, CoreString(u"f"), true), 0);
    auto const absolute = MakeURI("/Users/u/Documents/f");
    EXPECT_EQ(absolute->GetPath().ToUTF8(), uri->GetPath().ToUTF8());
    EXPECT_EQ(absolute->GetScheme().ToUTF8(), uri->GetScheme().ToUTF8());
    EXPECT_FALSE(Equal(*uri, *absolute));
    EXPECT_FALSE(Equal(*absolute, *uri));

    // Not even where both are empty.
    EXPECT_FALSE(Equal(*NewRelative(), *MakeURI("")));
    EXPECT_FALSE(Equal(*MakeURI(""), *NewRelative()));
}

TEST_F(RelativeURIIdentityTest, ForeignClassIsNeverEqual)
{
    auto const uri = Below(kDocuments, "f");
    auto const foreign = Make<ForeignURI>();
    EXPECT_FALSE(Equal(*uri, *foreign));
    EXPECT_EQ(foreign->asked, (Asked{"port", "scheme"})) << "its class is asked for before its host";
}

TEST_F(RelativeURIIdentityTest, PortIsAskedFirst)
{
    auto const uri = Below(kDocuments, "f");
    auto const foreign = Make<ForeignURI>();
    foreign->port = 81;
    EXPECT_FALSE(Equal(*uri, *foreign));
    EXPECT_EQ(foreign->asked, Asked{"port"});
}

TEST_F(RelativeURIIdentityTest, SchemeIsAskedSecond)
{
    auto const uri = Below(kDocuments, "f");
    auto const foreign = Make<ForeignURI>();
    foreign->scheme = u"FILE";
    EXPECT_FALSE(Equal(*uri, *foreign));
    EXPECT_EQ(foreign->asked, (Asked{"port", "scheme"}));
}

TEST_F(RelativeURIIdentityTest, WhatHasJustBeenReadIsEqualWhateverItNames)
{
    auto const read = [](std::string_view body) {
        auto uri = NewRelative();
        PersistenceOf(*uri)->Read(*MakeStream(*MakeMemory(kNative, Hex(body))));
        return uri;
    };
    auto const one = read("00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00 66 00 03 00 00 00");
    auto const other = read("00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00 67 00 02 00 00 00");
    EXPECT_EQ(one->GetRelPath().ToUTF8(), "f");
    EXPECT_EQ(other->GetRelPath().ToUTF8(), "g");
    EXPECT_TRUE(Equal(*one, *other)) << "the full path of either is the root";
    // A new one has no path at all.
    EXPECT_FALSE(Equal(*one, *NewRelative()));
}
} // namespace
} // namespace KORVA
