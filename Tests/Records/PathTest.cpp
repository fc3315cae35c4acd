// Paths to what is in a record file.
#include <tessio/Records/Tree/Path.h>

#include "Records/Samples.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
struct PathRow
{
    char const* name;
    char const* text;
    /// In full; null when the text is no path.
    char const* path;
};

class PathOfText : public ::testing::TestWithParam<PathRow>
{
};

TEST_P(PathOfText, IsUnderstoodOrRefused)
{
    auto const path = RECORDS::ParsePath(GetParam().text);
    ASSERT_EQ(static_cast<bool>(path), GetParam().path != nullptr);
    if (!path)
    {
        EXPECT_EQ(KindOf(path.error()), "impossible");
        return;
    }
    EXPECT_EQ(RECORDS::PathText(*path), GetParam().path);
    // In full it means the same again.
    EXPECT_EQ(*RECORDS::ParsePath(GetParam().path), *path);
}

INSTANTIATE_TEST_SUITE_P(
    Understood, PathOfText,
    ::testing::Values(PathRow{"Top", "/0", "/0"}, PathRow{"LastTop", "/4294967295", "/4294967295"},
                      PathRow{"TopInHexadecimal", "/0x10", "/16"},
                      PathRow{"Key", "/0/dict[42]/dict[7]", "/0/dict[42]/dict[7]"},
                      PathRow{"BareKey", "/0/42/7", "/0/dict[42]/dict[7]"},
                      PathRow{"KeyInHexadecimal", "/0/dict[0xFF]/0x10", "/0/dict[255]/dict[16]"},
                      PathRow{"LastKey", "/0/dict[4294967295]", "/0/dict[4294967295]"},
                      PathRow{"Aggregate", "/0/{11111111-2222-3333-4444-555555555555}",
                              "/0/{11111111-2222-3333-4444-555555555555}"},
                      PathRow{"AggregateInSmallLetters", "/0/{abcdefab-cdef-abcd-efab-cdefabcdefab}",
                              "/0/{ABCDEFAB-CDEF-ABCD-EFAB-CDEFABCDEFAB}"},
                      PathRow{"Text", "/1/strings[\"NAME\"]", "/1/strings[\"NAME\"]"},
                      PathRow{"TextWithoutQuotes", "/1/strings[NAME]", "/1/strings[\"NAME\"]"},
                      PathRow{"EmptyText", "/1/strings[\"\"]", "/1/strings[\"\"]"},
                      PathRow{"TextWithBracket", "/1/strings[\"a]b\"]", "/1/strings[\"a]b\"]"},
                      PathRow{"TextWithSlash", "/1/strings[\"a/b\"]", "/1/strings[\"a/b\"]"},
                      PathRow{"TextWithEscapes", R"(/1/strings["\"\\\n\t\u{7}\u{D800}"])",
                              R"(/1/strings["\"\\\n\t\u{7}\u{D800}"])"},
                      PathRow{"TextBeyondASCII", "/1/strings[\"Gr\xC3\xBC\xC3\x9F\xF0\x9F\x98\x80\"]",
                              "/1/strings[\"Gr\xC3\xBC\xC3\x9F\xF0\x9F\x98\x80\"]"},
                      PathRow{"Part", "/0/record[1]/dict[2]", "/0/record[1]/dict[2]"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Refused, PathOfText,
    ::testing::Values(
        PathRow{"Nothing", "", nullptr}, PathRow{"OnlyASlash", "/", nullptr},
        PathRow{"NoSlash", "0", nullptr}, PathRow{"SlashAtTheEnd", "/0/", nullptr},
        PathRow{"TwoSlashes", "/0//1", nullptr}, PathRow{"NoNumberAtTheTop", "/a", nullptr},
        PathRow{"KeyAtTheTop", "/dict[1]", nullptr}, PathRow{"NumberTooLarge", "/4294967296", nullptr},
        PathRow{"KeyTooLarge", "/0/dict[4294967296]", nullptr},
        PathRow{"KeyBelowZero", "/0/dict[-1]", nullptr}, PathRow{"NoKey", "/0/dict[]", nullptr},
        PathRow{"OpenBracket", "/0/dict[1", nullptr}, PathRow{"MoreBehindABracket", "/0/dict[1]2", nullptr},
        PathRow{"OpenQuote", "/0/strings[\"a]", nullptr},
        PathRow{"OpenTextBracket", "/0/strings[\"a\"", nullptr},
        PathRow{"UnknownEscape", R"(/0/strings["\x"])", nullptr},
        PathRow{"EmptyEscape", R"(/0/strings["\u{}"])", nullptr},
        PathRow{"OpenEscape", R"(/0/strings["\u{12"])", nullptr},
        PathRow{"NotUTF8", "/0/strings[\"\xFF\"]", nullptr},
        PathRow{"HalfAnIdentifier", "/0/{11111111-2222}", nullptr}, PathRow{"BlankInFront", " /0", nullptr},
        PathRow{"BlankBehind", "/0 ", nullptr}, PathRow{"UnknownWord", "/0/entry[1]", nullptr}),
    RowName());

TEST(Path, WhatIsNoneIsToldWithExamples)
{
    EXPECT_EQ(FailureOf(RECORDS::ParsePath("/0/\x1B")),
              "impossible \"/0/\\u{1B}\" is no path; paths look like /0, /0/dict[42]/dict[7], /0/{GUID}, "
              "/0/strings[\"NAME\"]");
}

struct PlaceRow
{
    char const* name;
    char const* path;
    /// Of the node; -1 when there is none.
    int64 offset;
    char const* failure;
};

class PathToNode : public ::testing::TestWithParam<PlaceRow>
{
};

TEST_P(PathToNode, LeadsThereOrSaysHowFarItLeads)
{
    for (Order const order : kOrders)
    {
        RECORDS::RecordTree const tree = Read(order, Laid(order, kEvery));
        auto const node = RECORDS::NodeAt(tree, *RECORDS::ParsePath(GetParam().path));
        EXPECT_EQ(FailureOf(node), GetParam().failure);
        EXPECT_EQ(node ? (*node)->offset : -1, GetParam().offset);
        // Without a tree it is the same.
        Bytes const content = Laid(order, kEvery);
        RECORDS::MemorySource const source(content);
        RECORDS::Reader reader(source, OptionsOf(order));
        auto const found = reader.Find(*RECORDS::ParsePath(GetParam().path));
        EXPECT_EQ(FailureOf(found), GetParam().failure);
        EXPECT_EQ(found ? found->offset : -1, GetParam().offset);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PathToNode,
    ::testing::Values(
        PlaceRow{"Top", "/1", 308, ""}, PlaceRow{"Key", "/0/dict[4]", 178, ""},
        PlaceRow{"Text", "/0/3/strings[\"a\"]", 156, ""},
        PlaceRow{"Aggregate", "/0/{11111111-2222-3333-4444-555555555555}", 276, ""},
        PlaceRow{"NoTop", "/4", -1, "not-found has no record 4; it has 4"},
        PlaceRow{"NoKey", "/0/6", -1, "not-found has nothing at /0/dict[6]: /0 holds no dict[6]"},
        PlaceRow{"NoText", "/0/3/strings[b]", -1,
                 "not-found has nothing at /0/dict[3]/strings[\"b\"]: /0/dict[3] holds no strings[\"b\"]"},
        PlaceRow{"NoAggregate", "/1/{11111111-2222-3333-4444-555555555555}", -1,
                 "not-found has nothing at /1/{11111111-2222-3333-4444-555555555555}: /1 holds no "
                 "{11111111-2222-3333-4444-555555555555}"},
        PlaceRow{"BelowWhatIsNotThere", "/0/9/1/2", -1,
                 "not-found has nothing at /0/dict[9]/dict[1]/dict[2]: /0 holds no dict[9]"},
        PlaceRow{"InAText", "/0/3/strings[a]/1", -1,
                 "not-found has nothing at /0/dict[3]/strings[\"a\"]/dict[1]: /0/dict[3]/strings[\"a\"] "
                 "holds no dict[1]"}),
    RowName());

TEST(Path, OfAKeyThatIsThereTwiceLeadsToTheLast)
{
    RECORDS::RecordTree const twice =
        Read(kBig, Laid(kBig, "Dict 80:8 2:4 1:4 Value 8:8 'UNNT 0:4 1:4 Value 8:8 'UNNT 0:4 0:4"));
    EXPECT_EQ((*RECORDS::NodeAt(twice, *RECORDS::ParsePath("/0/1")))->offset, 68);
    RECORDS::RecordTree const texts =
        Read(kBig, Laid(kBig, "Strings 32:8 2:4 2:4 \"a\" 2:4 \"b\" 2:4 \"a\" 2:4 \"c\" 0:4"));
    EXPECT_EQ((*RECORDS::NodeAt(texts, *RECORDS::ParsePath("/0/strings[a]")))->text, u"c");
}

TEST(Path, FindNodeTellsHowManyComponentsLeadSomewhere)
{
    RECORDS::RecordTree const tree = Read(kLittle, Laid(kLittle, kEvery));
    std::size_t found = 99;
    EXPECT_EQ(RECORDS::FindNode(tree, *RECORDS::ParsePath("/7/1"), found), nullptr);
    EXPECT_EQ(found, 0u);
    EXPECT_EQ(RECORDS::FindNode(tree, *RECORDS::ParsePath("/0/3/1/2"), found), nullptr);
    EXPECT_EQ(found, 2u);
    ASSERT_NE(RECORDS::FindNode(tree, *RECORDS::ParsePath("/0/3"), found), nullptr);
    EXPECT_EQ(found, 2u);
}

TEST(Path, OfEveryNodeLeadsBackToIt)
{
    for (Order const order : kOrders)
        for (Sample const& sample : Samples())
        {
            RECORDS::RecordTree const tree = Read(order, Laid(order, sample.words));
            RECORDS::Walk(tree, [&](RECORDS::Node const& node, std::string const& text, int) {
                auto const path = RECORDS::ParsePath(text);
                ASSERT_TRUE(path) << sample.name << " " << text;
                EXPECT_EQ(RECORDS::PathText(*path), text) << sample.name;
                // Of keys that are there twice the last one is meant.
                EXPECT_GE((*RECORDS::NodeAt(tree, *path))->offset, node.offset) << sample.name << " " << text;
            });
        }
}
} // namespace
} // namespace KORVA::TESTS
