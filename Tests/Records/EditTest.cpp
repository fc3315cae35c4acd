// Changes to one place of a record file that leave every other byte as it is.
#include <tessio/Records/Edit/Edit.h>

#include "Records/Samples.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
/// A file that is edited.
struct File
{
    File(Order order, std::string const& words) : content(Laid(order, words)), tree(Read(order, content)) {}

    RECORDS::Original Original() const { return {content, tree, name}; }

    std::string name = "FILE";
    Bytes content;
    RECORDS::RecordTree tree;
};

RECORDS::Result<Bytes> Placed(File const& file, std::string const& path, Bytes const& content)
{
    return RECORDS::WithPlaced(file.Original(), *RECORDS::ParsePath(path), content);
}

RECORDS::Result<Bytes> Removed(File const& file, std::string const& path)
{
    return RECORDS::WithoutPlace(file.Original(), *RECORDS::ParsePath(path));
}

RECORDS::Result<Bytes> Turned(File const& file, Order from, Order to)
{
    RECORDS::MemorySource const source(file.content);
    RECORDS::Reader reader(source, OptionsOf(from));
    return RECORDS::WithOrder(reader, file.name, to);
}

struct EditRow
{
    char const* name;
    char const* before;
    char const* path;
    /// What is put there; null to take away what is there.
    char const* content;
    char const* after;
};

class EditOfFile : public ::testing::TestWithParam<EditRow>
{
};

TEST_P(EditOfFile, ChangesTheBytesOfThePlaceLengthsAndCounts)
{
    for (Order const order : kOrders)
    {
        SCOPED_TRACE(RECORDS::OrderName(order));
        File const before(order, GetParam().before);
        Bytes const after = GetParam().content
                                ? *Placed(before, GetParam().path, Laid(order, GetParam().content))
                                : *Removed(before, GetParam().path);
        EXPECT_EQ(ToHex(after), ToHex(Laid(order, GetParam().after)));
    }
}

constexpr char kSeven[] = "Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4";
constexpr char kNone[] = "Value 8:8 'UNNT 0:4";
constexpr char kTwoKeys[] = "Dict 80:8 2:4 2:4 Value 8:8 'UNNT 0:4 4:4 Value 8:8 'UNNT 0:4 0:4";
constexpr char kTwoTexts[] = "Strings 32:8 2:4 2:4 \"b\" 2:4 \"1\" 2:4 \"d\" 2:4 \"2\" 0:4";
constexpr char kTwoAggregates[] =
    "URI 104:8 0:4 2:4 {00000002-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
    "{00000004-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4";

INSTANTIATE_TEST_SUITE_P(
    Top, EditOfFile,
    ::testing::Values(
        EditRow{"Replaced", "URI 8:8 0:4 0:4 Dict 8:8 0:4 0:4", "/0", kNone,
                "Value 8:8 'UNNT 0:4 Dict 8:8 0:4 0:4"},
        EditRow{"Added", kNone, "/1", "URI 8:8 0:4 0:4", "Value 8:8 'UNNT 0:4 URI 8:8 0:4 0:4"},
        EditRow{"TakenAway", "URI 8:8 0:4 0:4 Dict 8:8 0:4 0:4 Value 8:8 'UNNT 0:4", "/1", nullptr,
                "URI 8:8 0:4 0:4 Value 8:8 'UNNT 0:4"},
        EditRow{"LastTakenAway", kNone, "/0", nullptr, ""},
        // Damage is replaced where nothing around it depends on it, and what is left over stays.
        EditRow{"DamagedReplaced", "Value 9:8 'UNNT 0:4 =AA Dict 8:8 1:4 0:4 =BB", "/1", "Dict 8:8 0:4 0:4",
                "Value 9:8 'UNNT 0:4 =AA Dict 8:8 0:4 0:4 =BB"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Keys, EditOfFile,
    ::testing::Values(
        EditRow{"Replaced", kTwoKeys, "/0/2", kSeven,
                "Dict 96:8 2:4 2:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 4:4 Value 8:8 'UNNT 0:4 "
                "0:4"},
        EditRow{"AddedInFront", kTwoKeys, "/0/1", kNone,
                "Dict 116:8 3:4 1:4 Value 8:8 'UNNT 0:4 2:4 Value 8:8 'UNNT 0:4 4:4 Value 8:8 'UNNT 0:4 0:4"},
        EditRow{"AddedBetween", kTwoKeys, "/0/3", kNone,
                "Dict 116:8 3:4 2:4 Value 8:8 'UNNT 0:4 3:4 Value 8:8 'UNNT 0:4 4:4 Value 8:8 'UNNT 0:4 0:4"},
        EditRow{"AddedBehind", kTwoKeys, "/0/4294967295", kNone,
                "Dict 116:8 3:4 2:4 Value 8:8 'UNNT 0:4 4:4 Value 8:8 'UNNT 0:4 4294967295:4 Value 8:8 'UNNT "
                "0:4 0:4"},
        EditRow{"TakenAway", kTwoKeys, "/0/2", nullptr, "Dict 44:8 1:4 4:4 Value 8:8 'UNNT 0:4 0:4"},
        EditRow{"LastOfTwoSameTakenAway", "Dict 80:8 2:4 1:4 Value 8:8 'UNNT 0:4 1:4 URI 8:8 0:4 0:4 0:4",
                "/0/1", nullptr, "Dict 44:8 1:4 1:4 Value 8:8 'UNNT 0:4 0:4"},
        EditRow{"AddedInFrontOfAggregates",
                "Dict 56:8 0:4 1:4 {00000001-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4", "/0/1", kNone,
                "Dict 92:8 1:4 1:4 Value 8:8 'UNNT 0:4 1:4 {00000001-0000-0000-0000-000000000000} Value 8:8 "
                "'UNNT 0:4"},
        EditRow{"Deep",
                "Dict 108:8 2:4 1:4 Dict 44:8 1:4 2:4 Value 8:8 'UNNT 0:4 0:4 "
                "2:4 {00000009-0000-0000-0000-000000000000} 0:8 0:4 Value 8:8 'UNNT 0:4",
                "/0/1/3", kNone,
                "Dict 144:8 2:4 1:4 Dict 80:8 2:4 2:4 Value 8:8 'UNNT 0:4 3:4 Value 8:8 'UNNT 0:4 0:4 "
                "2:4 {00000009-0000-0000-0000-000000000000} 0:8 0:4 Value 8:8 'UNNT 0:4"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Texts, EditOfFile,
    ::testing::Values(EditRow{"Replaced", kTwoTexts, "/0/strings[b]", "2:4 \"b\" 6:4 \"xyz\"",
                              "Strings 36:8 2:4 2:4 \"b\" 6:4 \"xyz\" 2:4 \"d\" 2:4 \"2\" 0:4"},
                      EditRow{"AddedInFront", kTwoTexts, "/0/strings[a]", "2:4 \"a\" 0:4",
                              "Strings 42:8 3:4 2:4 \"a\" 0:4 2:4 \"b\" 2:4 \"1\" 2:4 \"d\" 2:4 \"2\" 0:4"},
                      EditRow{"AddedBetween", kTwoTexts, "/0/strings[c]", "2:4 \"c\" 0:4",
                              "Strings 42:8 3:4 2:4 \"b\" 2:4 \"1\" 2:4 \"c\" 0:4 2:4 \"d\" 2:4 \"2\" 0:4"},
                      EditRow{"AddedBehind", kTwoTexts, "/0/strings[e]", "2:4 \"e\" 0:4",
                              "Strings 42:8 3:4 2:4 \"b\" 2:4 \"1\" 2:4 \"d\" 2:4 \"2\" 2:4 \"e\" 0:4 0:4"},
                      EditRow{"TakenAway", kTwoTexts, "/0/strings[d]", nullptr,
                              "Strings 20:8 1:4 2:4 \"b\" 2:4 \"1\" 0:4"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Aggregates, EditOfFile,
    ::testing::Values(
        EditRow{"Replaced", kTwoAggregates, "/0/{00000002-0000-0000-0000-000000000000}", kSeven,
                "URI 120:8 0:4 2:4 {00000002-0000-0000-0000-000000000000} Value 24:8 'S32V 7:8 "
                "0x401C000000000000:8 0:4 {00000004-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4"},
        EditRow{"AddedToNone", "URI 8:8 0:4 0:4", "/0/{00000001-0000-0000-0000-000000000000}", kNone,
                "URI 56:8 0:4 1:4 {00000001-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4"},
        EditRow{"AddedInFront", kTwoAggregates, "/0/{00000001-0000-0000-0000-000000000000}", kNone,
                "URI 152:8 0:4 3:4 {00000001-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
                "{00000002-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
                "{00000004-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4"},
        // By its last bytes as a number in memory it comes behind the first one.
        EditRow{"AddedBetween", kTwoAggregates, "/0/{00000002-0000-0000-0000-000100000000}", kNone,
                "URI 152:8 0:4 3:4 {00000002-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
                "{00000002-0000-0000-0000-000100000000} Value 8:8 'UNNT 0:4 "
                "{00000004-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4"},
        EditRow{"AddedBehind", kTwoAggregates, "/0/{00000005-0000-0000-0000-000000000000}", kNone,
                "URI 152:8 0:4 3:4 {00000002-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
                "{00000004-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
                "{00000005-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4"},
        EditRow{"TakenAway", kTwoAggregates, "/0/{00000004-0000-0000-0000-000000000000}", nullptr,
                "URI 56:8 0:4 1:4 {00000002-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4"}),
    RowName());

struct RefusalRow
{
    char const* name;
    char const* words;
    char const* path;
    /// Null to take away what is there.
    char const* content;
    char const* failure;
};

class EditRefusal : public ::testing::TestWithParam<RefusalRow>
{
};

TEST_P(EditRefusal, SaysWhy)
{
    for (Order const order : kOrders)
    {
        File const document(order, GetParam().words);
        EXPECT_EQ(FailureOf(GetParam().content
                                ? Placed(document, GetParam().path, Laid(order, GetParam().content))
                                : Removed(document, GetParam().path)),
                  GetParam().failure);
    }
}

constexpr char kDamagedHolder[] = "Dict 44:8 2:4 1:4 Value 8:8 'UNNT 0:4 0:4";

INSTANTIATE_TEST_SUITE_P(
    Rows, EditRefusal,
    ::testing::Values(
        RefusalRow{"NotTheNextRecord", kNone, "/2", kNone,
                   "not-found \"FILE\" has 1 records; the next one can only be /1"},
        RefusalRow{"BehindWhatIsLeftOver", "Value 8:8 'UNNT 0:4 =AA", "/1", kNone,
                   "not-found \"FILE\" has 1 records; the next one can only be /1"},
        RefusalRow{"NoHolder", kTwoKeys, "/0/1/2", kNone,
                   "not-found \"FILE\" has nothing at /0/dict[1]: /0 holds no dict[1]"},
        RefusalRow{"KeyOfAURI", "URI 8:8 0:4 0:4", "/0/1", kNone,
                   "impossible dict[1] can't be put into a URI"},
        RefusalRow{"TextOfADictionary", kTwoKeys, "/0/strings[a]", "2:4 \"a\" 0:4",
                   "impossible strings[\"a\"] can't be put into a PersistentDictionary"},
        RefusalRow{
            "DamagedHolder", kDamagedHolder, "/0/3", kNone,
            "damaged \"FILE\": /0 is damaged (should hold 2 entries, there is room for 1): salvage the file "
            "first; nothing is changed"},
        RefusalRow{
            "FromADamagedHolder", kDamagedHolder, "/0/1", nullptr,
            "damaged \"FILE\": /0 is damaged (should hold 2 entries, there is room for 1): salvage the file "
            "first; nothing is changed"},
        RefusalRow{"UnknownHolder", "{00000009-0000-0000-0000-000000000000} 2:8 =0102",
                   "/0/{00000001-0000-0000-0000-000000000000}", kNone,
                   "damaged \"FILE\": /0 holds nothing that can be named; nothing is changed"},
        RefusalRow{"EmptyHolder", "Dict 0:8", "/0/1", kNone,
                   "damaged \"FILE\": /0 holds nothing that can be named; nothing is changed"},
        RefusalRow{"NothingToTakeAway", kTwoKeys, "/0/3", nullptr,
                   "not-found \"FILE\" has nothing at /0/dict[3]: /0 holds no dict[3]"}),
    RowName());

TEST(Edit, EveryPlaceCanBeReplacedByItselfAndTakenAway)
{
    for (Order const order : kOrders)
    {
        File const document(order, kEvery);
        RECORDS::Walk(document.tree, [&](RECORDS::Node const& node, std::string const& path, int) {
            RECORDS::ByteView const same =
                RECORDS::ByteView(document.content)
                    .subspan(static_cast<std::size_t>(node.offset), static_cast<std::size_t>(node.length));
            EXPECT_EQ(ToHex(*RECORDS::WithPlaced(document.Original(), *RECORDS::ParsePath(path), same)),
                      ToHex(document.content))
                << path;
            Bytes const without = *Removed(document, path);
            RECORDS::RecordTree const tree = Read(order, without);
            RECORDS::Walk(tree, [&](RECORDS::Node const& left, std::string const& place, int) {
                EXPECT_EQ(RECORDS::Problem(left), "") << path << " taken away: " << place;
            });
            EXPECT_TRUE(tree.findings.empty()) << path;
            // Key, interface id or nothing go along.
            int64 const label = node.label.type == RECORDS::Label::Type::kKey         ? 4
                                : node.label.type == RECORDS::Label::Type::kInterface ? 16
                                                                                      : 0;
            EXPECT_EQ(static_cast<int64>(without.size()), 442 - node.length - label) << path;
        });
    }
}

TEST(Edit, AStringEntryIsKeyAndText)
{
    for (Order const order : kOrders)
    {
        EXPECT_EQ(ToHex(RECORDS::StringEntry(u"a", u"xy", order)),
                  ToHex(Laid(order, "2:4 \"a\" 4:4 \"xy\"")));
        EXPECT_EQ(ToHex(RECORDS::StringEntry(u"", u"", order)), ToHex(Laid(order, "0:4 0:4")));
    }
}

TEST(Edit, TurnedRoundEveryWholeFileSaysTheSame)
{
    int turned = 0;
    for (Order const order : kOrders)
        for (Sample const& sample : Samples())
        {
            File const document(order, sample.words);
            Order const other = order == kBig ? kLittle : kBig;
            Bytes const expected = Laid(other, sample.words);
            bool isWhole = document.tree.findings.empty();
            RECORDS::Walk(document.tree, [&](RECORDS::Node const& node, std::string const&, int) {
                // Nothing but its class is written of an empty record, so it can be turned.
                isWhole = isWhole &&
                          (node.length == 24 || (node.regular && node.kind != RECORDS::Kind::kUnknownClass));
            });
            if (!isWhole)
            {
                EXPECT_NE(FailureOf(Turned(document, order, other)), "") << sample.name;
                continue;
            }
            EXPECT_EQ(ToHex(*Turned(document, order, other)), ToHex(expected)) << sample.name;
            ++turned;
        }
    EXPECT_GT(turned, 2 * 25);
}

INSTANTIATE_TEST_SUITE_P(Empty, EditRefusal,
                         ::testing::Values(RefusalRow{"EmptyFile", "", "/0", nullptr,
                                                      "not-found \"FILE\" has no record 0; it has 0"}),
                         RowName());

TEST(Edit, WhatNobodyCanTurnRoundIsNotTurned)
{
    EXPECT_EQ(
        FailureOf(Turned(File(kLittle, kEvery), kLittle, kBig)),
        "damaged \"FILE\": /0/dict[4] is of the class {76543210-BA98-4EDC-9F01-23456789ABCD}, which nobody "
        "here knows: its bytes can't be turned round; nothing is written");
    EXPECT_EQ(FailureOf(Turned(File(kBig, "Value 8:8 'UNNT 0:4 =AA"), kBig, kLittle)),
              "damaged \"FILE\": 1 byte at its end is too few for a record; nothing is written");
}
} // namespace
} // namespace KORVA::TESTS
