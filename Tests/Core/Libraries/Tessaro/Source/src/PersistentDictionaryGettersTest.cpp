// What is fetched, as which type, from what was put.
#include "Serialization.h"

#include <optional>

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr unsigned char kBytes[] = {1, 2, 3};
constexpr UniChar kUnits[] = {0x1234, 0x5678};

/// The value fetched as every number type.
struct Numbers
{
    int s8;
    int u8;
    int s16;
    int u16;
    int s32;
    unsigned int u32;
    long long s64;
    unsigned long long u64;
    float f32;
    double f64;
};

struct NumberRow
{
    char const* name;
    void (*put)(IDictionary& dictionary);
    Numbers expected;
};

constexpr int kLowest = -2147483647 - 1;

NumberRow const kNumbers[] = {
    {"SignedChar",
     [](IDictionary& d) { d.Put(1, static_cast<signed char>(-2)); },
     {-2, 254, -2, 65534, -2, 4294967294u, -2, 18446744073709551614ULL, -2.0f, -2.0}},
    {"UnsignedChar",
     [](IDictionary& d) { d.Put(1, static_cast<unsigned char>(200)); },
     {-56, 200, 200, 200, 200, 200, 200, 200, 200.0f, 200.0}},
    {"Short",
     [](IDictionary& d) { d.Put(1, static_cast<short>(-300)); },
     {-44, 212, -300, 65236, -300, 4294966996u, -300, 18446744073709551316ULL, -300.0f, -300.0}},
    {"UnsignedShort",
     [](IDictionary& d) { d.Put(1, static_cast<unsigned short>(40000)); },
     {64, 64, -25536, 40000, 40000, 40000, 40000, 40000, 40000.0f, 40000.0}},
    {"IntThree", [](IDictionary& d) { d.Put(1, 3); }, {3, 3, 3, 3, 3, 3, 3, 3, 3.0f, 3.0}},
    {"IntLowest",
     [](IDictionary& d) { d.Put(1, kLowest); },
     {0, 0, 0, 0, kLowest, 2147483648u, kLowest, 18446744071562067968ULL, -2147483648.0f, -2147483648.0}},
    {"UnsignedInt",
     [](IDictionary& d) { d.Put(1, 3000000000u); },
     {0, 0, 24064, 24064, -1294967296, 3000000000u, 3000000000LL, 3000000000ULL, 3000000000.0f,
      3000000000.0}},
    {"LongLong",
     [](IDictionary& d) { d.Put(1, 0x123456789ALL); },
     {-102, 154, 30874, 30874, 878082202, 878082202u, 78187493530LL, 78187493530ULL, 78187493530.0f,
      78187493530.0}},
    {"UnsignedLongLong",
     [](IDictionary& d) { d.Put(1, 0x8000000000000001ULL); },
     {1, 1, 1, 1, 1, 1, -9223372036854775807LL, 9223372036854775809ULL, 9223372036854775808.0f,
      9223372036854775808.0}},
    {"Float", [](IDictionary& d) { d.Put(1, 2.75f); }, {2, 2, 2, 2, 2, 2, 2, 2, 2.75f, 2.75}},
    {"Double", [](IDictionary& d) { d.Put(1, 2.75); }, {2, 2, 2, 2, 2, 2, 2, 2, 2.75f, 2.75}},
    {"DoubleThatNoFloatIs", [](IDictionary& d) { d.Put(1, 0.1); }, {0, 0, 0, 0, 0, 0, 0, 0, 0.1f, 0.1}},
    {"DoubleNegative",
     [](IDictionary& d) { d.Put(1, -2.75); },
     {-2, 254, -2, 65534, -2, 4294967294u, -2, 18446744073709551614ULL, -2.75f, -2.75}},
    {"DoubleTwoToThe63",
     [](IDictionary& d) { d.Put(1, 9223372036854775808.0); },
     {0, 0, 0, 0, 0, 0, -9223372036854775807LL - 1, 9223372036854775808ULL, 9223372036854775808.0f,
      9223372036854775808.0}},
    {"Identifier",
     [](IDictionary& d) {
         d.Put(1, GUID{1, 2, 3, {4}});
     },
     {}},
    {"Bytes", [](IDictionary& d) { d.Put(1, kBytes, 3); }, {}},
    {"Units", [](IDictionary& d) { d.Put(1, kUnits, 2); }, {}},
};

class NumberTest : public SerializationTestWith<NumberRow>
{
protected:
    template <class Fetched, class Expected>
    static void Expect(IDictionary const& dictionary, Expected expected)
    {
        // Neither 0 nor what any row expects.
        Fetched found = 77;
        EXPECT_EQ(dictionary.Get(1, found), 0);
        EXPECT_EQ(found, expected);
    }
};

TEST_P(NumberTest, IsFetchedAsEveryType)
{
    auto const dictionary = MakeDictionary();
    GetParam().put(*dictionary);
    Numbers const& expected = GetParam().expected;
    Expect<signed char>(*dictionary, expected.s8);
    Expect<unsigned char>(*dictionary, expected.u8);
    Expect<short>(*dictionary, expected.s16);
    Expect<unsigned short>(*dictionary, expected.u16);
    Expect<int>(*dictionary, expected.s32);
    Expect<unsigned int>(*dictionary, expected.u32);
    Expect<long long>(*dictionary, expected.s64);
    Expect<unsigned long long>(*dictionary, expected.u64);
    Expect<float>(*dictionary, expected.f32);
    Expect<double>(*dictionary, expected.f64);
}

INSTANTIATE_TEST_SUITE_P(PersistentDictionary, NumberTest, ::testing::ValuesIn(kNumbers), RowName());

class PersistentDictionaryGettersTest : public SerializationTest
{
protected:
    template <class Number>
    void ExpectNone(unsigned int key)
    {
        Number value = 77;
        EXPECT_EQ(dictionary->Get(key, value), -1);
        EXPECT_EQ(value, Number{77});
    }

    void ExpectNothingPlain(unsigned int key)
    {
        SCOPED_TRACE(key);
        ExpectNone<signed char>(key);
        ExpectNone<unsigned char>(key);
        ExpectNone<short>(key);
        ExpectNone<unsigned short>(key);
        ExpectNone<int>(key);
        ExpectNone<unsigned int>(key);
        ExpectNone<long long>(key);
        ExpectNone<unsigned long long>(key);
        ExpectNone<float>(key);
        ExpectNone<double>(key);
        GUID id{1, 2, 3, {}};
        EXPECT_EQ(dictionary->Get(key, id), -1);
        EXPECT_EQ(id, (GUID{1, 2, 3, {}}));
        unsigned char const* data = kBytes;
        int length = 77;
        EXPECT_EQ(dictionary->Get(key, &data, length), -1);
        EXPECT_EQ(data, kBytes);
        EXPECT_EQ(length, 77);
        UniChar const* units = kUnits;
        EXPECT_EQ(dictionary->Get(key, &units, length), -1);
        EXPECT_EQ(units, kUnits);
        EXPECT_EQ(length, 77);
    }

    TInterfacePtr<IDictionary> const dictionary = MakeDictionary();
};

TEST_F(PersistentDictionaryGettersTest, AbsentKeysAndOtherObjectsAreNoValues)
{
    dictionary->Put(2, Make<Plain>().Get());
    dictionary->Put(3, MakeDictionary().Get());
    dictionary->Put(4, MakeStrings().Get());
    for (unsigned int key = 1; key <= 4; ++key)
        ExpectNothingPlain(key);
}

// An object of any class may stand under that id, in a file at least; its bytes must not be taken for a
// value's.
TEST_F(PersistentDictionaryGettersTest, ObjectThatAnswersForAValueWithoutBeingOneIsNone)
{
    auto const object = MakeStrings();
    object->Aggregate(MakeDictionary().Get(), IO::IID_IDICTIONARY_VALUE);
    dictionary->Put(1, object.Get());
    ExpectNothingPlain(1);
}

TEST_F(PersistentDictionaryGettersTest, Identifier)
{
    GUID const id{0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
    dictionary->Put(1, id);
    GUID found{};
    EXPECT_EQ(dictionary->Get(1, found), 0);
    EXPECT_EQ(found, id);
}

TEST_F(PersistentDictionaryGettersTest, IdentifierOfAnotherValueIsOfTheWrongType)
{
    dictionary->Put(1, 5);
    dictionary->Put(2, kBytes, 3);
    dictionary->Put(3, kUnits, 2);
    for (unsigned int key = 1; key <= 3; ++key)
    {
        GUID found{1, 2, 3, {}};
        EXPECT_EQ(dictionary->Get(key, found), 10);
        EXPECT_EQ(found, (GUID{1, 2, 3, {}}));
    }
}

TEST_F(PersistentDictionaryGettersTest, BytesAreTheValuesOwn)
{
    dictionary->Put(1, kBytes, 3);
    unsigned char const* data = nullptr;
    int length = 0;
    ASSERT_EQ(dictionary->Get(1, &data, length), 0);
    EXPECT_EQ(length, 3);
    EXPECT_NE(data, kBytes);
    EXPECT_EQ(ToHex(Bytes(data, data + length)), "01 02 03");
    unsigned char const* again = nullptr;
    EXPECT_EQ(dictionary->Get(1, &again, length), 0);
    EXPECT_EQ(again, data);
}

TEST_F(PersistentDictionaryGettersTest, UnitsAreTheValuesOwn)
{
    dictionary->Put(1, kUnits, 2);
    UniChar const* units = nullptr;
    int count = 0;
    ASSERT_EQ(dictionary->Get(1, &units, count), 0);
    EXPECT_EQ(std::u16string(units, static_cast<std::size_t>(count)), u"\x1234\x5678");
    UniChar const* again = nullptr;
    EXPECT_EQ(dictionary->Get(1, &again, count), 0);
    EXPECT_EQ(again, units);
}

TEST_F(PersistentDictionaryGettersTest, BufferOfAnotherTypeReportsItsLengthAllTheSame)
{
    dictionary->Put(1, kUnits, 2);
    dictionary->Put(2, kBytes, 3);
    dictionary->Put(3, GUID{});
    dictionary->Put(4, 5);
    struct
    {
        unsigned int key;
        ErrCode bytesResult;
        int length;
        ErrCode unitsResult;
        int count;
    } const rows[] = {{1, 10, 4, 0, 2}, {2, 0, 3, 10, 1}, {3, 10, 16, 10, 8}, {4, 10, 0, 10, 0}};
    for (auto const& row : rows)
    {
        SCOPED_TRACE(row.key);
        unsigned char const* data = nullptr;
        int length = 77;
        EXPECT_EQ(dictionary->Get(row.key, &data, length), row.bytesResult);
        EXPECT_EQ(length, row.length);
        EXPECT_EQ(data != nullptr, row.bytesResult == 0);
        UniChar const* units = nullptr;
        int count = 77;
        EXPECT_EQ(dictionary->Get(row.key, &units, count), row.unitsResult);
        EXPECT_EQ(count, row.count);
        EXPECT_EQ(units != nullptr, row.unitsResult == 0);
    }
}
} // namespace
} // namespace KORVA
