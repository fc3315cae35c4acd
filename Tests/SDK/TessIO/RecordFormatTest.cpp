// The numbers of the byte format. They are in files for good.
#include <tessio/TessIO/RecordFormat.h>

#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <string>

namespace KORVA::TESTS
{
namespace
{
using IO::ValueTag;

struct NumberRow
{
    char const* name;
    long long number;
    long long value;
};

NumberRow const kNumbers[] = {
    {"ClassIdSize", IO::kClassIdSize, 16},
    {"LengthSize", IO::kLengthSize, 8},
    {"RecordHeadSize", IO::kRecordHeadSize, 24},
    {"AggregateCountSize", IO::kAggregateCountSize, 4},
    {"InterfaceIdSize", IO::kInterfaceIdSize, 16},
    {"EntryCountSize", IO::kEntryCountSize, 4},
    {"EntryKeySize", IO::kEntryKeySize, 4},
    {"StringCountSize", IO::kStringCountSize, 4},
    {"GreatestLength", IO::kGreatestLength, 0x7FFFFFFF},
    {"MostStringUnits", IO::kMostStringUnits, 0x3FFFFFFF},
    {"MostNestedRecords", IO::kMostNestedRecords, 1000},
};

class RecordFormatNumber : public ::testing::TestWithParam<NumberRow>
{
};

TEST_P(RecordFormatNumber, HasItsValue) { EXPECT_EQ(GetParam().number, GetParam().value); }

INSTANTIATE_TEST_SUITE_P(Of, RecordFormatNumber, ::testing::ValuesIn(kNumbers), RowName());

struct LengthRow
{
    char const* name;
    int64 length;
    bool isBelieved;
};

LengthRow const kLengths[] = {
    {"Zero", 0, true},
    {"One", 1, true},
    {"Greatest", 2147483647, true},
    {"OneTooMany", 2147483648, false},
    {"MinusOne", -1, false},
    {"Least", -9223372036854775807 - 1, false},
    {"Most", 9223372036854775807, false},
};

class RecordFormatLength : public ::testing::TestWithParam<LengthRow>
{
};

TEST_P(RecordFormatLength, IsBelievedOrNot)
{
    EXPECT_EQ(IO::IsBelievedLength(GetParam().length), GetParam().isBelieved);
}

INSTANTIATE_TEST_SUITE_P(Of, RecordFormatLength, ::testing::ValuesIn(kLengths), RowName());

struct TagRow
{
    char const* name;
    ValueTag tag;
    char const* characters;
    bool isNumber;
    bool hasLength;
};

TagRow const kTags[] = {
    {"None", ValueTag::kNone, "UNNT", false, false},         {"Int8", ValueTag::kInt8, "S8VL", true, false},
    {"UInt8", ValueTag::kUInt8, "U8VL", true, false},        {"Int16", ValueTag::kInt16, "S16V", true, false},
    {"UInt16", ValueTag::kUInt16, "U16V", true, false},      {"Int32", ValueTag::kInt32, "S32V", true, false},
    {"UInt32", ValueTag::kUInt32, "U32V", true, false},      {"Int64", ValueTag::kInt64, "S64V", true, false},
    {"UInt64", ValueTag::kUInt64, "U64V", true, false},      {"Float", ValueTag::kFloat, "FL32", true, false},
    {"Double", ValueTag::kDouble, "FL64", true, false},      {"GUID", ValueTag::kGUID, "GUID", false, false},
    {"Bytes", ValueTag::kBytes, "CHAR", false, true},        {"Units", ValueTag::kUnits, "UNIC", false, true},
    {"Unknown", ValueTag{0x3F3F3F3F}, "????", false, false},
};

class RecordFormatTag : public ::testing::TestWithParam<TagRow>
{
};

TEST_P(RecordFormatTag, IsItsFourCharacters)
{
    auto const tag = static_cast<uint32>(GetParam().tag);
    std::string characters;
    for (int const shift : {24, 16, 8, 0})
        characters.push_back(static_cast<char>(tag >> shift));
    EXPECT_EQ(characters, GetParam().characters);
    EXPECT_EQ(IO::IsNumber(GetParam().tag), GetParam().isNumber);
    EXPECT_EQ(IO::HasLength(GetParam().tag), GetParam().hasLength);
}

INSTANTIATE_TEST_SUITE_P(Of, RecordFormatTag, ::testing::ValuesIn(kTags), RowName());
} // namespace
} // namespace KORVA::TESTS
