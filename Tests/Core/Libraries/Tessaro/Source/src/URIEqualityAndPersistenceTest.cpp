// When URIs are equal, and what of them survives in a record.
#include "Support/Library.h"

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IPersistentData.h>

#include <gtest/gtest.h>

namespace KORVA
{
namespace
{
using STRING::CoreString;
using TESTS::Bytes;
using TESTS::Hex;
using TESTS::LibraryTest;
using TESTS::LibraryTestWith;
using TESTS::RowName;
using TESTS::ToHex;

/// A URI from the text as it is, against a base where there is one.
IO::IURIPtr Raw(char const* text, char const* base = "")
{
    auto const baseURI = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    baseURI->Init(CoreString(base));
    auto uri = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    uri->InitRelative(*baseURI, CoreString(text));
    return uri;
}

struct EqualityRow
{
    char const* name;
    char const* text;
    char const* base;
    char const* otherText;
    char const* otherBase;
    bool equal;
};

using URIEqualityTest = LibraryTestWith<EqualityRow>;

TEST_P(URIEqualityTest, ComparesTextAndBase)
{
    EqualityRow const& row = GetParam();
    auto const a = Raw(row.text, row.base);
    auto const b = Raw(row.otherText, row.otherBase);
    EXPECT_EQ(*a == *b, row.equal);
    EXPECT_EQ(*b == *a, row.equal);
    EXPECT_TRUE(*a == *a);
    EXPECT_TRUE(*b == *b);
}

EqualityRow const kEqualities[] = {
    {"SameText", "http://h/p;a?b", "", "http://h/p;a?b", "", true},
    {"OtherPath", "http://h/p", "", "http://h/q", "", false},
    {"SchemeCase", "http://h/p", "", "HTTP://h/p", "", false},
    {"HostCase", "http://h/p", "", "http://H/p", "", false},
    {"PathCase", "http://h/p", "", "http://h/P", "", false},
    {"EscapeOfAPlainCharacter", "http://h/A", "", "http://h/%41", "", false},
    {"CaseOfEscapeDigits", "http://h/%c3%a9", "", "http://h/%C3%A9", "", false},
    {"DefaultPort", "http://h/p", "", "http://h:80/p", "", false},
    {"TrailingSlash", "http://h/p", "", "http://h/p/", "", false},
    {"Dots", "http://h/p", "", "http://h/./p", "", false},
    {"EmptyQuery", "http://h/p", "", "http://h/p?", "", false},
    {"EmptyParameter", "http://h/p", "", "http://h/p;", "", false},
    {"EmptyFragment", "http://h/p", "", "http://h/p#", "", false},
    {"SameTextAndBase", "g", "http://h/p/", "g", "http://h/p/", true},
    {"SameTextOtherBase", "g", "http://h/p/", "g", "http://h/q/", false},
    {"OtherTextSameBase", "g", "http://h/p/", "./g", "http://h/p/", false},
    {"RelativeAndAbsoluteForm", "g", "http://h/p/", "http://h/p/g", "", false},
    {"WithAndWithoutBase", "g", "http://h/p/", "g", "", false},
    {"EmptyTextIsAURL", "", "", "", "", true},
};
INSTANTIATE_TEST_SUITE_P(Rows, URIEqualityTest, ::testing::ValuesIn(kEqualities), RowName());

/// Claims to be equal to anything.
class ForeignURI final : public TObject<IO::IURI>
{
public:
    void Init(CoreString const&) override {}
    void InitRelative(IURI const&, CoreString const&) override {}
    CoreString GetScheme() const override { return u"file"; }
    CoreString GetHost() const override { return u""; }
    uint32 GetPortNumber() const override { return 0; }
    CoreString GetPath() const override { return u"/a"; }
    CoreString GetQuery() const override { return u""; }
    CoreString GetAbsoluteString() const override { return u"file:///a"; }
    void GetName(CoreString& name) const override { name = u"a"; }
    bool operator==(IURI const&) const override { return true; }
};

class URIIdentityTest : public LibraryTest
{
};

TEST_F(URIIdentityTest, NoURLEqualsOnlyNoURL)
{
    auto const none = MakeURI("");
    EXPECT_TRUE(*none == *none);
    EXPECT_TRUE(*none == *MakeURI(""));
    EXPECT_FALSE(*none == *MakeURI("/a"));
    EXPECT_FALSE(*MakeURI("/a") == *none);
    // A URL of no text is a URL.
    EXPECT_FALSE(*none == *Raw(""));
    EXPECT_FALSE(*Raw("") == *none);
    // A rejected text leaves none.
    EXPECT_TRUE(*none == *Raw("a b"));
}

TEST_F(URIIdentityTest, LocationsAreComparedAsURLs)
{
    EXPECT_TRUE(*MakeURI("/a b") == *MakeURI("file:///a b"));
    EXPECT_TRUE(*MakeURI("/a b") == *Raw("file:///a%20b"));
    EXPECT_TRUE(*MakeURI("C:\\dir") == *MakeURI("C:/dir"));
    EXPECT_TRUE(*MakeURI("/e\xCC\x81") == *MakeURI("/\xC3\xA9"));
    EXPECT_FALSE(*MakeURI("/a") == *MakeURI("/a/"));
}

TEST_F(URIIdentityTest, ChainsOfBasesAreComparedWhole)
{
    auto const first = Raw("b/", "http://h/a/");
    auto const same = Raw("b/", "http://h/a/");
    auto const other = Raw("./b/", "http://h/a/");
    auto const make = [](IO::IURI const& base) {
        auto uri = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
        uri->InitRelative(base, CoreString(u"c"));
        return uri;
    };
    EXPECT_TRUE(*make(*first) == *make(*same));
    EXPECT_FALSE(*make(*first) == *make(*other));
    EXPECT_EQ(make(*other)->GetAbsoluteString().ToUTF8(), "http://h/a/b/c");
}

TEST_F(URIIdentityTest, ForeignClassIsNeverEqual)
{
    IO::IURIPtr foreign;
    foreign.Adopt(new ForeignURI);
    EXPECT_FALSE(*MakeURI("/a") == *foreign);
    EXPECT_FALSE(*MakeURI("") == *foreign);
}

class URIPersistenceTest : public LibraryTest
{
protected:
    static IO::IPersistentData& AdapterOf(IO::IURI const& uri)
    {
        IObject* adapter = nullptr;
        EXPECT_EQ(uri.QueryInterface(IO::IPERSISTENT_DATA, &adapter), 0);
        return *static_cast<IO::IPersistentData*>(adapter);
    }

    static Bytes BodyOf(IO::IURI const& uri)
    {
        auto const memory = MakeMemory();
        auto const stream = MakeStream(*memory);
        EXPECT_EQ(&AdapterOf(uri).Write(*stream), stream.Get());
        return BytesOf(*memory);
    }

    static Bytes RecordOf(IO::IURI const& uri)
    {
        auto const memory = MakeMemory();
        *MakeStream(*memory) << uri;
        return BytesOf(*memory);
    }

    static IO::IURIPtr ReadRecord(Bytes const& record)
    {
        auto const memory = MakeMemory(record);
        IO::IURIPtr uri;
        *MakeStream(*memory) >> uri.Out();
        EXPECT_EQ(memory->GetPosition(), static_cast<int64>(record.size()));
        return uri;
    }

    static IO::IURIPtr RoundTrip(IO::IURI const& uri) { return ReadRecord(RecordOf(uri)); }
};

TEST_F(URIPersistenceTest, AdapterServesTheURI)
{
    auto const uri = MakeURI("/a");
    IO::IPersistentData& adapter = AdapterOf(*uri);
    EXPECT_EQ(adapter.GetObj(), uri.Get());
    EXPECT_EQ(adapter.GetUID(),
              (GUID{0x2517B49E, 0xBCE5, 0x404C, {0x85, 0x24, 0x3A, 0x6E, 0xC3, 0xC3, 0xB6, 0x33}}));
    // The table holds the only reference to it, and it holds none to the URI.
    EXPECT_EQ(adapter.AddRef(), 2);
    EXPECT_EQ(adapter.Release(), 1);
    EXPECT_EQ(uri->AddRef(), 2);
    EXPECT_EQ(uri->Release(), 1);
}

TEST_F(URIPersistenceTest, BodyIsTheUnescapedText)
{
    // "file:///a b": 11 units.
    EXPECT_EQ(ToHex(BodyOf(*MakeURI("/a b"))), "16 00 00 00 66 00 69 00 6C 00 65 00 3A 00 2F 00 2F 00 2F 00 "
                                               "61 00 20 00 62 00");
}

TEST_F(URIPersistenceTest, BodyOfNoURLIsTheEmptyText)
{
    EXPECT_EQ(ToHex(BodyOf(*MakeURI(""))), "00 00 00 00");
}

TEST_F(URIPersistenceTest, BodyOfARelativeOneIsResolved)
{
    // "http://h/c": 10 units.
    EXPECT_EQ(ToHex(BodyOf(*Raw("c", "http://h/b"))),
              "14 00 00 00 68 00 74 00 74 00 70 00 3A 00 2F 00 2F 00 68 00 "
              "2F 00 63 00");
}

TEST_F(URIPersistenceTest, Record)
{
    Bytes const record = RecordOf(*MakeURI("name"));
    EXPECT_EQ(ToHex(record), "9E B4 17 25 E5 BC 4C 40 85 24 3A 6E C3 C3 B6 33 "
                             "10 00 00 00 00 00 00 00 "
                             "08 00 00 00 6E 00 61 00 6D 00 65 00 "
                             "00 00 00 00");
    auto const uri = ReadRecord(record);
    ASSERT_TRUE(uri);
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "name");
    EXPECT_EQ(uri->AddRef(), 2);
    EXPECT_EQ(uri->Release(), 1);
}

TEST_F(URIPersistenceTest, RecordOfABigEndianProvider)
{
    auto const memory = MakeMemory();
    memory->SetEndian(IO::IDataProvider::kBigEndian);
    *MakeStream(*memory) << *MakeURI("a");
    EXPECT_EQ(ToHex(BytesOf(*memory)), "25 17 B4 9E BC E5 40 4C 85 24 3A 6E C3 C3 B6 33 "
                                       "00 00 00 00 00 00 00 0A "
                                       "00 00 00 02 00 61 "
                                       "00 00 00 00");
}

TEST_F(URIPersistenceTest, RecordWithoutURL)
{
    Bytes const record = RecordOf(*MakeURI(""));
    EXPECT_EQ(ToHex(record), "9E B4 17 25 E5 BC 4C 40 85 24 3A 6E C3 C3 B6 33 "
                             "08 00 00 00 00 00 00 00 "
                             "00 00 00 00 "
                             "00 00 00 00");
    auto const uri = ReadRecord(record);
    ASSERT_TRUE(uri);
    EXPECT_TRUE(*uri == *MakeURI(""));
}

TEST_F(URIPersistenceTest, WhatIsReadIsNormalisedLikeAnyLocation)
{
    // The text "/a": a path, as no writer of ours would leave it.
    auto const uri = ReadRecord(Hex("9E B4 17 25 E5 BC 4C 40 85 24 3A 6E C3 C3 B6 33 0C 00 00 00 00 00 00 00 "
                                    "04 00 00 00 2F 00 61 00 00 00 00 00"));
    ASSERT_TRUE(uri);
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "file:///a");
}

struct RoundTripRow
{
    char const* name;
    char const* location;
};

class URIRoundTripTest : public URIPersistenceTest, public ::testing::WithParamInterface<RoundTripRow>
{
};

TEST_P(URIRoundTripTest, GivesAnEqualURI)
{
    auto const uri = MakeURI(GetParam().location);
    auto const read = RoundTrip(*uri);
    ASSERT_TRUE(read);
    EXPECT_TRUE(*read == *uri);
    EXPECT_TRUE(*uri == *read);
}

RoundTripRow const kRoundTrips[] = {
    {"PosixPath", "/Users/a b/c.txt"},
    {"Percent", "/100%41"},
    {"Hash", "/a#b"},
    {"QuestionsAndParameters", "/a;b?c?d"},
    {"Drive", "C:\\dir\\f.txt"},
    {"Network", "\\\\server\\a b\\f"},
    {"ColonPath", "HD:Users:f"},
    {"BareName", "my name"},
    {"URL", "http://u:p@h:81/a b?c d"},
    {"Accents", "/e\xCC\x81"},
    {"Emoji", "/\xF0\x9F\x98\x80"},
    {"Opaque", "mailto:a?x=://"},
    {"NoURL", ""},
};
INSTANTIATE_TEST_SUITE_P(Rows, URIRoundTripTest, ::testing::ValuesIn(kRoundTrips), RowName());

TEST_F(URIPersistenceTest, EscapedReservedCharacterIsNotReproduced)
{
    auto const uri = Raw("file:///a%2Fb");
    auto const read = RoundTrip(*uri);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->GetPath().ToUTF8(), "/a/b");
    EXPECT_FALSE(*read == *uri);
    EXPECT_TRUE(*read == *Raw("file:///a/b"));

    // An escaped question becomes a real one.
    auto const question = RoundTrip(*Raw("file:///a%3Fb"));
    ASSERT_TRUE(question);
    EXPECT_EQ(question->GetPath().ToUTF8(), "/a");
    EXPECT_EQ(question->GetQuery().ToUTF8(), "b");
}

TEST_F(URIPersistenceTest, TheBaseIsNotReproduced)
{
    auto const uri = Raw("c", "http://h/b");
    auto const read = RoundTrip(*uri);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->GetAbsoluteString().ToUTF8(), "http://h/c");
    EXPECT_FALSE(*read == *uri);
}

TEST_F(URIPersistenceTest, TextThatIsNoUTF8IsWrittenEmpty)
{
    auto const uri = Raw("http://h/a%FF");
    EXPECT_EQ(ToHex(BodyOf(*uri)), "00 00 00 00");
    EXPECT_EQ(uri->GetHost().ToUTF8(), "h");
}

TEST_F(URIPersistenceTest, ReadingDropsTheURLThatWas)
{
    auto const uri = MakeURI("http://h:1/before");
    auto const empty = MakeMemory(Hex("00 00 00 00"));
    auto const stream = MakeStream(*empty);
    EXPECT_EQ(&AdapterOf(*uri).Read(*stream), stream.Get());
    EXPECT_TRUE(*uri == *MakeURI(""));

    uri->Init(CoreString(u"http://h:1/before"));
    auto const name = MakeMemory(Hex("04 00 00 00 61 00 62 00"));
    AdapterOf(*uri).Read(*MakeStream(*name));
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "ab");
    EXPECT_EQ(uri->GetPortNumber(), 0u);

    // Nothing to read at all.
    uri->Init(CoreString(u"http://h:1/before"));
    AdapterOf(*uri).Read(*MakeStream(*MakeMemory()));
    EXPECT_TRUE(*uri == *MakeURI(""));
}

TEST_F(URIPersistenceTest, ReadingALoneSurrogateLeavesNoURL)
{
    auto const uri = MakeURI("/before");
    auto const text = MakeMemory(Hex("04 00 00 00 2F 00 00 D8"));
    AdapterOf(*uri).Read(*MakeStream(*text));
    EXPECT_TRUE(*uri == *MakeURI(""));
}
} // namespace
} // namespace KORVA
