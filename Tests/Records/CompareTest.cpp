// What two record files say differently.
#include <tessio/Records/Tree/Compare.h>

#include "Records/Samples.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using RECORDS::Difference;

/// A line for each difference: - removed, + added, ~ changed.
std::string Lines(std::vector<Difference> const& differences)
{
    std::string text;
    for (Difference const& difference : differences)
        text += difference.type == Difference::Type::kRemoved ? "- " + difference.path + "  " + difference.a
                : difference.type == Difference::Type::kAdded
                    ? "+ " + difference.path + "  " + difference.b
                    : "~ " + difference.path + "  " + difference.a + " -> " + difference.b;
    return text;
}

std::string Compared(Bytes const& a, Order orderOfA, Bytes const& b, Order orderOfB, bool subset)
{
    RECORDS::RecordTree const treeOfA = Read(orderOfA, a);
    RECORDS::RecordTree const treeOfB = Read(orderOfB, b);
    std::string text;
    for (Difference const& difference : RECORDS::Compare({treeOfA, a}, {treeOfB, b}, subset))
        text += Lines({difference}) + "\n";
    return text;
}

struct CompareRow
{
    char const* name;
    char const* a;
    char const* b;
    char const* lines;
    /// When only what A holds counts.
    char const* subset;
};

class CompareOfFiles : public ::testing::TestWithParam<CompareRow>
{
};

TEST_P(CompareOfFiles, NamesEachDifferenceInAnyOrders)
{
    for (Order const a : kOrders)
        for (Order const b : kOrders)
        {
            SCOPED_TRACE(std::string(RECORDS::OrderName(a)) + ", " + RECORDS::OrderName(b));
            Bytes const first = Laid(a, GetParam().a);
            Bytes const second = Laid(b, GetParam().b);
            EXPECT_EQ(Compared(first, a, second, b, false), GetParam().lines);
            EXPECT_EQ(Compared(first, a, second, b, true), GetParam().subset);
        }
}

constexpr char kSeven[] = "Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4";
constexpr char kEight[] = "Value 24:8 'S32V 8:8 0x4020000000000000:8 0:4";
constexpr char kUnsignedSeven[] = "Value 24:8 'U32V 7:8 0x401C000000000000:8 0:4";
constexpr char kNone[] = "Value 8:8 'UNNT 0:4";

INSTANTIATE_TEST_SUITE_P(
    Values, CompareOfFiles,
    ::testing::Values(
        CompareRow{"Same", kEvery, kEvery, "", ""}, CompareRow{"Nothing", "", "", "", ""},
        CompareRow{"Value", kSeven, kEight, "~ /0  DictValue int32 7 -> DictValue int32 8\n",
                   "~ /0  DictValue int32 7 -> DictValue int32 8\n"},
        CompareRow{"Type", kSeven, kUnsignedSeven, "~ /0  DictValue int32 7 -> DictValue uint32 7\n",
                   "~ /0  DictValue int32 7 -> DictValue uint32 7\n"},
        CompareRow{"Class", kNone, "URI 8:8 0:4 0:4", "~ /0  DictValue none -> URI \"\"\n",
                   "~ /0  DictValue none -> URI \"\"\n"},
        CompareRow{"SameNotANumber", "Value 24:8 'FL64 0x8000000000000000:8 0x7FF8000000001234:8 0:4",
                   "Value 24:8 'FL64 0x8000000000000000:8 0x7FF8000000001234:8 0:4", "", ""},
        CompareRow{"OtherNotANumber", "Value 24:8 'FL64 0x8000000000000000:8 0x7FF8000000001234:8 0:4",
                   "Value 24:8 'FL64 0x8000000000000000:8 0x7FF8000000001235:8 0:4",
                   "~ /0  DictValue double nan -> DictValue double nan\n",
                   "~ /0  DictValue double nan -> DictValue double nan\n"},
        CompareRow{"ZeroBelowZero", "Value 24:8 'FL64 0:8 0:8 0:4",
                   "Value 24:8 'FL64 0:8 0x8000000000000000:8 0:4",
                   "~ /0  DictValue double 0 -> DictValue double -0\n",
                   "~ /0  DictValue double 0 -> DictValue double -0\n"},
        CompareRow{"NumberFields", kSeven, "Value 24:8 'S32V 7:8 0x4020000000000000:8 0:4",
                   "~ /0  DictValue int32 7 -> DictValue int32 7\n",
                   "~ /0  DictValue int32 7 -> DictValue int32 7\n"},
        CompareRow{"Tag", "Value 8:8 'ABCD 0:4", "Value 8:8 'ABCE 0:4",
                   "~ /0  DictValue unknown -> DictValue unknown\n",
                   "~ /0  DictValue unknown -> DictValue unknown\n"},
        CompareRow{"Bytes", "Value 14:8 'CHAR 2:4 =0A0B 0:4", "Value 13:8 'CHAR 1:4 =0A 0:4",
                   "~ /0  DictValue bytes 0a 0b -> DictValue bytes 0a\n",
                   "~ /0  DictValue bytes 0a 0b -> DictValue bytes 0a\n"},
        CompareRow{"HalfAPair", "URI 10:8 2:4 ^D800 0:4", "URI 10:8 2:4 ^D801 0:4",
                   "~ /0  URI \"\\u{D800}\" -> URI \"\\u{D801}\"\n",
                   "~ /0  URI \"\\u{D800}\" -> URI \"\\u{D801}\"\n"},
        CompareRow{"Port", "Relative 24:8 0:4 0:4 80:4 0:4 3:4 0:4", "Relative 24:8 0:4 0:4 81:4 0:4 3:4 0:4",
                   "~ /0  RelativeURI documents \"\" -> RelativeURI documents \"\"\n",
                   "~ /0  RelativeURI documents \"\" -> RelativeURI documents \"\"\n"},
        CompareRow{"Directory", "Relative 24:8 0:4 0:4 0:4 0:4 1:4 0:4",
                   "Relative 24:8 0:4 0:4 0:4 0:4 3:4 0:4",
                   "~ /0  RelativeURI home \"\" -> RelativeURI documents \"\"\n",
                   "~ /0  RelativeURI home \"\" -> RelativeURI documents \"\"\n"},
        CompareRow{"SameUnknown", "{00000009-0000-0000-0000-000000000000} 2:8 =0102",
                   "{00000009-0000-0000-0000-000000000000} 2:8 =0102", "", ""},
        CompareRow{"UnknownBytes", "{00000009-0000-0000-0000-000000000000} 2:8 =0102",
                   "{00000009-0000-0000-0000-000000000000} 3:8 =010203",
                   "~ /0  unknown class {00000009-0000-0000-0000-000000000000}, 2 bytes -> unknown class "
                   "{00000009-0000-0000-0000-000000000000}, 3 bytes\n",
                   "~ /0  unknown class {00000009-0000-0000-0000-000000000000}, 2 bytes -> unknown class "
                   "{00000009-0000-0000-0000-000000000000}, 3 bytes\n"},
        CompareRow{"OtherUnknown", "{00000009-0000-0000-0000-000000000000} 2:8 =0102",
                   "{00000008-0000-0000-0000-000000000000} 2:8 =0102",
                   "~ /0  unknown class {00000009-0000-0000-0000-000000000000}, 2 bytes -> unknown class "
                   "{00000008-0000-0000-0000-000000000000}, 2 bytes\n",
                   "~ /0  unknown class {00000009-0000-0000-0000-000000000000}, 2 bytes -> unknown class "
                   "{00000008-0000-0000-0000-000000000000}, 2 bytes\n"},
        CompareRow{"WholeAndLeftOver", kNone, "Value 9:8 'UNNT 0:4 =AA",
                   "~ /0  DictValue none -> DictValue none\n", "~ /0  DictValue none -> DictValue none\n"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Holders, CompareOfFiles,
    ::testing::Values(
        CompareRow{"RecordOnlyInA", "Value 8:8 'UNNT 0:4 URI 8:8 0:4 0:4", kNone, "- /1  URI \"\"\n",
                   "- /1  URI \"\"\n"},
        CompareRow{"RecordOnlyInB", kNone, "Value 8:8 'UNNT 0:4 URI 8:8 0:4 0:4", "+ /1  URI \"\"\n", ""},
        CompareRow{"EntryOnlyInA", "Dict 44:8 1:4 5:4 Value 8:8 'UNNT 0:4 0:4", "Dict 8:8 0:4 0:4",
                   "- /0/dict[5]  DictValue none\n", "- /0/dict[5]  DictValue none\n"},
        CompareRow{"EntryOnlyInB", "Dict 8:8 0:4 0:4", "Dict 44:8 1:4 5:4 Value 8:8 'UNNT 0:4 0:4",
                   "+ /0/dict[5]  DictValue none\n", ""},
        CompareRow{"OtherKey", "Dict 44:8 1:4 5:4 Value 8:8 'UNNT 0:4 0:4",
                   "Dict 44:8 1:4 6:4 Value 8:8 'UNNT 0:4 0:4",
                   "- /0/dict[5]  DictValue none\n+ /0/dict[6]  DictValue none\n",
                   "- /0/dict[5]  DictValue none\n"},
        CompareRow{"OrderOfKeysIsNoDifference",
                   "Dict 80:8 2:4 1:4 Value 8:8 'UNNT 0:4 2:4 Value 8:8 'UNNT 0:4 0:4",
                   "Dict 80:8 2:4 2:4 Value 8:8 'UNNT 0:4 1:4 Value 8:8 'UNNT 0:4 0:4", "", ""},
        CompareRow{"KeyTwiceAgainstOnce", "Dict 80:8 2:4 1:4 Value 8:8 'UNNT 0:4 1:4 Value 8:8 'UNNT 0:4 0:4",
                   "Dict 44:8 1:4 1:4 Value 8:8 'UNNT 0:4 0:4", "- /0/dict[1]  DictValue none\n",
                   "- /0/dict[1]  DictValue none\n"},
        CompareRow{"Deeper", "Dict 84:8 1:4 1:4 Dict 48:8 1:4 2:4 Value 12:8 'UNIC 0:4 0:4 0:4 0:4",
                   "Dict 84:8 1:4 1:4 Dict 48:8 1:4 2:4 Value 12:8 'CHAR 0:4 0:4 0:4 0:4",
                   "~ /0/dict[1]/dict[2]  DictValue text \"\" -> DictValue bytes \n",
                   "~ /0/dict[1]/dict[2]  DictValue text \"\" -> DictValue bytes \n"},
        CompareRow{"Text", "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4",
                   "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xz\" 0:4", "~ /0/strings[\"a\"]  \"xy\" -> \"xz\"\n",
                   "~ /0/strings[\"a\"]  \"xy\" -> \"xz\"\n"},
        CompareRow{"TextKey", "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4",
                   "Strings 22:8 1:4 2:4 \"b\" 4:4 \"xy\" 0:4",
                   "- /0/strings[\"a\"]  \"xy\"\n+ /0/strings[\"b\"]  \"xy\"\n",
                   "- /0/strings[\"a\"]  \"xy\"\n"},
        CompareRow{"AggregateOnlyInB", kNone,
                   "Value 56:8 'UNNT 1:4 {11111111-2222-3333-4444-555555555555} Value 8:8 'UNNT 0:4",
                   "+ /0/{11111111-2222-3333-4444-555555555555}  DictValue none\n", ""},
        CompareRow{"Aggregate",
                   "Value 56:8 'UNNT 1:4 {11111111-2222-3333-4444-555555555555} Value 8:8 'UNNT 0:4",
                   "Value 56:8 'UNNT 1:4 {11111111-2222-3333-4444-555555555555} URI 8:8 0:4 0:4",
                   "~ /0/{11111111-2222-3333-4444-555555555555}  DictValue none -> URI \"\"\n",
                   "~ /0/{11111111-2222-3333-4444-555555555555}  DictValue none -> URI \"\"\n"},
        CompareRow{"ClassOfAHolder", "Dict 44:8 1:4 5:4 Value 8:8 'UNNT 0:4 0:4", "Strings 8:8 0:4 0:4",
                   "~ /0  PersistentDictionary, 1 entry -> StringDictionary, 0 entries\n"
                   "- /0/dict[5]  DictValue none\n",
                   "~ /0  PersistentDictionary, 1 entry -> StringDictionary, 0 entries\n"
                   "- /0/dict[5]  DictValue none\n"}),
    RowName());

TEST(Compare, EveryFileIsTheSameAsItselfAndContainedInItself)
{
    ForEachFile({0x01, 0xFF}, [](Bytes const& content, Order order, std::string const& name) {
        ASSERT_EQ(Compared(content, order, content, order, false), "") << name;
        ASSERT_EQ(Compared(content, order, content, order, true), "") << name;
    });
}

TEST(Compare, AChangeOfAnyByteOfAValueIsADifference)
{
    for (Order const order : kOrders)
    {
        Bytes const seven = Laid(order, kSeven);
        for (std::size_t at = 0; at < seven.size(); ++at)
        {
            // A wrong length is damage and no other value.
            if (at >= 16 && at < 24)
                continue;
            Bytes changed = seven;
            changed[at] ^= 0x01;
            EXPECT_NE(Compared(seven, order, changed, order, false), "") << at;
            EXPECT_NE(Compared(seven, order, changed, order, true), "") << at;
        }
    }
}
} // namespace
} // namespace KORVA::TESTS
