// Equality and order of identifiers: four host-order words.
#include <tessio/ObjectModel/GUID.h>

#include "Support/Library.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <type_traits>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
static_assert(sizeof(GUID) == 16);
static_assert(alignof(GUID) == 4);
static_assert(std::is_trivially_copyable_v<GUID> && std::is_standard_layout_v<GUID>);
static_assert(offsetof(GUID, Data1) == 0);
static_assert(offsetof(GUID, Data2) == 4);
static_assert(offsetof(GUID, Data3) == 6);
static_assert(offsetof(GUID, Data4) == 8);

TEST(GUID, LiesInMemoryInHostByteOrder)
{
    GUID const id{0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};
    Bytes bytes(16);
    std::memcpy(bytes.data(), &id, 16);
    EXPECT_EQ(ToHex(bytes), "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05");
}

TEST(GUID, IsReadAsFourLittleEndianWords)
{
    GUID const id{0x01020304, 0x0506, 0x0708, {0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10}};
    auto const words = GUIDWords(id);
    EXPECT_EQ(words[0], 0x01020304u);
    EXPECT_EQ(words[1], 0x07080506u);
    EXPECT_EQ(words[2], 0x0C0B0A09u);
    EXPECT_EQ(words[3], 0x100F0E0Du);
}

struct Row
{
    char const* name;
    GUID smaller;
    GUID larger;
};

Row const kRows[] = {
    {"Word0IsData1", {1, 9, 9, {9, 9, 9, 9, 9, 9, 9, 9}}, {2, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}}},
    {"Data1IsUnsigned", {0x7FFFFFFF, 0, 0, {}}, {0x80000000, 0, 0, {}}},
    // The word 1 is 0x00010002 against 0x00020001.
    {"Data3WeighsMoreThanData2", {1, 2, 1, {}}, {1, 1, 2, {}}},
    {"Data2DecidesBehindData3", {1, 1, 5, {}}, {1, 2, 5, {}}},
    {"Data3IsUnsigned", {1, 0, 0x7FFF, {}}, {1, 0, 0x8000, {}}},
    {"Word1BeforeWord2", {1, 1, 1, {0, 0, 0, 0xFF, 0, 0, 0, 0}}, {1, 2, 1, {}}},
    {"Data4At3WeighsMoreThanAt0",
     {1, 1, 1, {0xFF, 0, 0, 1, 0, 0, 0, 0}},
     {1, 1, 1, {0, 0, 0, 2, 0, 0, 0, 0}}},
    {"Data4At2WeighsMoreThanAt1",
     {1, 1, 1, {0, 0xFF, 1, 0, 0, 0, 0, 0}},
     {1, 1, 1, {0, 0, 2, 0, 0, 0, 0, 0}}},
    {"Data4At1WeighsMoreThanAt0",
     {1, 1, 1, {0xFF, 1, 0, 0, 0, 0, 0, 0}},
     {1, 1, 1, {0, 2, 0, 0, 0, 0, 0, 0}}},
    {"Data4At0Counts", {1, 1, 1, {1, 0, 0, 0, 0, 0, 0, 0}}, {1, 1, 1, {2, 0, 0, 0, 0, 0, 0, 0}}},
    {"Word2IsUnsigned", {1, 1, 1, {0, 0, 0, 0x7F, 0, 0, 0, 0}}, {1, 1, 1, {0, 0, 0, 0x80, 0, 0, 0, 0}}},
    {"Word2BeforeWord3", {1, 1, 1, {1, 0, 0, 0, 0, 0, 0, 0xFF}}, {1, 1, 1, {2, 0, 0, 0, 0, 0, 0, 0}}},
    {"Data4At7WeighsMoreThanAt4",
     {1, 1, 1, {0, 0, 0, 0, 0xFF, 0, 0, 1}},
     {1, 1, 1, {0, 0, 0, 0, 0, 0, 0, 2}}},
    {"Data4At4Counts", {1, 1, 1, {0, 0, 0, 0, 1, 0, 0, 0}}, {1, 1, 1, {0, 0, 0, 0, 2, 0, 0, 0}}},
    {"Word3IsUnsigned", {1, 1, 1, {0, 0, 0, 0, 0, 0, 0, 0x7F}}, {1, 1, 1, {0, 0, 0, 0, 0, 0, 0, 0x80}}},
};

class GUIDOrder : public ::testing::TestWithParam<Row>
{
};

TEST_P(GUIDOrder, IsThatOfTheWords)
{
    Row const& row = GetParam();
    std::less<GUID> const less;
    EXPECT_TRUE(less(row.smaller, row.larger));
    EXPECT_FALSE(less(row.larger, row.smaller));
    EXPECT_FALSE(row.smaller == row.larger);
}

TEST_P(GUIDOrder, IsIrreflexiveAndAgreesWithEquality)
{
    Row const& row = GetParam();
    std::less<GUID> const less;
    GUID const copy = row.smaller;
    EXPECT_FALSE(less(copy, row.smaller));
    EXPECT_TRUE(copy == row.smaller);
}

INSTANTIATE_TEST_SUITE_P(Words, GUIDOrder, ::testing::ValuesIn(kRows), RowName());

TEST(GUID, IsUnequalWhereverOneByteDiffers)
{
    GUID const id{0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};
    for (std::size_t i = 0; i < 16; ++i)
    {
        unsigned char bytes[16];
        std::memcpy(bytes, &id, 16);
        bytes[i] = static_cast<unsigned char>(bytes[i] ^ 1);
        GUID other;
        std::memcpy(&other, bytes, 16);
        EXPECT_FALSE(id == other) << "byte " << i;
    }
}

TEST(GUID, KeysAMapInWordOrder)
{
    std::map<GUID, int> const map{{{1, 1, 2, {}}, 3},
                                  {{1, 2, 1, {}}, 2},
                                  {{0, 0xFFFF, 0xFFFF, {}}, 1},
                                  {{1, 1, 2, {0, 0, 0, 0, 0, 0, 0, 1}}, 5},
                                  {{1, 1, 2, {0, 0, 0, 0, 0xFF, 0, 0, 0}}, 4}};
    std::vector<int> values;
    for (auto const& [id, value] : map)
        values.push_back(value);
    EXPECT_EQ(values, (std::vector<int>{1, 2, 3, 4, 5}));
}
} // namespace
} // namespace KORVA::TESTS
