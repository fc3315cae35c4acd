// The wrapper of plain values: tags, the two fields, the buffer, and the bodies of all types.
#include "DictValue.h"

#include "Serialization.h"

#include <bit>
#include <cmath>
#include <limits>

namespace KORVA
{
namespace
{
using namespace TESTS;
using IO::DictValue;

/// A body with tag, integer and floating field for numbers, or tag, length and bytes for the others.
struct BodyRow
{
    char const* name;
    IObject* (*make)();
    char const* native;
    char const* reversed;
};

constexpr unsigned char kBytes[] = {0x0A, 0x0B};
constexpr UniChar kUnits[] = {0x0041, 0x1234};

BodyRow const kBodies[] = {
    {"Untyped", [] { return static_cast<IObject*>(new DictValue); }, "54 4E 4E 55", "55 4E 4E 54"},
    {"SignedCharLowest", [] { return static_cast<IObject*>(new DictValue(static_cast<signed char>(-128))); },
     "4C 56 38 53 80 FF FF FF FF FF FF FF 00 00 00 00 00 00 60 C0",
     "53 38 56 4C FF FF FF FF FF FF FF 80 C0 60 00 00 00 00 00 00"},
    {"UnsignedCharHighest",
     [] { return static_cast<IObject*>(new DictValue(static_cast<unsigned char>(255))); },
     "4C 56 38 55 FF 00 00 00 00 00 00 00 00 00 00 00 00 E0 6F 40",
     "55 38 56 4C 00 00 00 00 00 00 00 FF 40 6F E0 00 00 00 00 00"},
    {"ShortMinusOne", [] { return static_cast<IObject*>(new DictValue(static_cast<short>(-1))); },
     "56 36 31 53 FF FF FF FF FF FF FF FF 00 00 00 00 00 00 F0 BF",
     "53 31 36 56 FF FF FF FF FF FF FF FF BF F0 00 00 00 00 00 00"},
    {"UnsignedShortHighest",
     [] { return static_cast<IObject*>(new DictValue(static_cast<unsigned short>(65535))); },
     "56 36 31 55 FF FF 00 00 00 00 00 00 00 00 00 00 E0 FF EF 40",
     "55 31 36 56 00 00 00 00 00 00 FF FF 40 EF FF E0 00 00 00 00"},
    {"IntSeven", [] { return static_cast<IObject*>(new DictValue(7)); },
     "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40",
     "53 33 32 56 00 00 00 00 00 00 00 07 40 1C 00 00 00 00 00 00"},
    {"IntLowest", [] { return static_cast<IObject*>(new DictValue(std::numeric_limits<int>::lowest())); },
     "56 32 33 53 00 00 00 80 FF FF FF FF 00 00 00 00 00 00 E0 C1",
     "53 33 32 56 FF FF FF FF 80 00 00 00 C1 E0 00 00 00 00 00 00"},
    {"UnsignedIntHighest", [] { return static_cast<IObject*>(new DictValue(0xFFFFFFFFu)); },
     "56 32 33 55 FF FF FF FF 00 00 00 00 00 00 E0 FF FF FF EF 41",
     "55 33 32 56 00 00 00 00 FF FF FF FF 41 EF FF FF FF E0 00 00"},
    {"LongLongMinusTwo", [] { return static_cast<IObject*>(new DictValue(-2LL)); },
     "56 34 36 53 FE FF FF FF FF FF FF FF 00 00 00 00 00 00 00 C0",
     "53 36 34 56 FF FF FF FF FF FF FF FE C0 00 00 00 00 00 00 00"},
    // 2^63: as a signed number its double would be negative.
    {"UnsignedLongLongTopBit", [] { return static_cast<IObject*>(new DictValue(0x8000000000000000ULL)); },
     "56 34 36 55 00 00 00 00 00 00 00 80 00 00 00 00 00 00 E0 43",
     "55 36 34 56 80 00 00 00 00 00 00 00 43 E0 00 00 00 00 00 00"},
    {"FloatTwoAndAHalf", [] { return static_cast<IObject*>(new DictValue(2.5f)); },
     "32 33 4C 46 02 00 00 00 00 00 00 00 00 00 00 00 00 00 04 40",
     "46 4C 33 32 00 00 00 00 00 00 00 02 40 04 00 00 00 00 00 00"},
    {"FloatTwoToThe63", [] { return static_cast<IObject*>(new DictValue(9223372036854775808.0f)); },
     "32 33 4C 46 00 00 00 00 00 00 00 80 00 00 00 00 00 00 E0 43",
     "46 4C 33 32 80 00 00 00 00 00 00 00 43 E0 00 00 00 00 00 00"},
    {"DoubleOneAndAHalf", [] { return static_cast<IObject*>(new DictValue(1.5)); },
     "34 36 4C 46 01 00 00 00 00 00 00 00 00 00 00 00 00 00 F8 3F",
     "46 4C 36 34 00 00 00 00 00 00 00 01 3F F8 00 00 00 00 00 00"},
    // The greatest double below 2^63 takes the plain way.
    {"DoubleBelowTwoToThe63", [] { return static_cast<IObject*>(new DictValue(9223372036854774784.0)); },
     "34 36 4C 46 00 FC FF FF FF FF FF 7F FF FF FF FF FF FF DF 43",
     "46 4C 36 34 7F FF FF FF FF FF FC 00 43 DF FF FF FF FF FF FF"},
    // 2^63 + 2^62, and the greatest double below 2^64.
    {"DoubleAboveTwoToThe63", [] { return static_cast<IObject*>(new DictValue(13835058055282163712.0)); },
     "34 36 4C 46 00 00 00 00 00 00 00 C0 00 00 00 00 00 00 E8 43",
     "46 4C 36 34 C0 00 00 00 00 00 00 00 43 E8 00 00 00 00 00 00"},
    {"DoubleBelowTwoToThe64", [] { return static_cast<IObject*>(new DictValue(18446744073709549568.0)); },
     "34 36 4C 46 00 F8 FF FF FF FF FF FF FF FF FF FF FF FF EF 43",
     "46 4C 36 34 FF FF FF FF FF FF F8 00 43 EF FF FF FF FF FF FF"},
    {"DoubleMinusTwoAndThreeQuarters", [] { return static_cast<IObject*>(new DictValue(-2.75)); },
     "34 36 4C 46 FE FF FF FF FF FF FF FF 00 00 00 00 00 00 06 C0",
     "46 4C 36 34 FF FF FF FF FF FF FF FE C0 06 00 00 00 00 00 00"},
    // In host order whatever the provider's.
    {"Identifier", [] { return static_cast<IObject*>(new DictValue(IO::IID_DICTIONARY)); },
     "44 49 55 47 D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05",
     "47 55 49 44 D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05"},
    {"Bytes", [] { return static_cast<IObject*>(new DictValue(kBytes, 2)); }, "52 41 48 43 02 00 00 00 0A 0B",
     "43 48 41 52 00 00 00 02 0A 0B"},
    {"BytesNone", [] { return static_cast<IObject*>(new DictValue(kBytes, 0)); }, "52 41 48 43 00 00 00 00",
     "43 48 41 52 00 00 00 00"},
    {"Units", [] { return static_cast<IObject*>(new DictValue(kUnits, 2)); },
     "43 49 4E 55 04 00 00 00 41 00 34 12", "55 4E 49 43 00 00 00 04 41 00 34 12"},
};

using DictValueBodyTest = SerializationTestWith<BodyRow>;

TEST_P(DictValueBodyTest, IsWritten)
{
    TInterfacePtr<IObject> value;
    value.Adopt(GetParam().make());
    EXPECT_EQ(ToHex(BodyOf(kNative, *value)), GetParam().native);
    EXPECT_EQ(ToHex(BodyOf(kReversed, *value)), GetParam().reversed);
}

// Into a value that held something else, so that nothing of it may shine through.
TEST_P(DictValueBodyTest, ReplacesWhatWasThere)
{
    for (auto const endian : {kNative, kReversed})
        for (bool const overNumber : {true, false})
        {
            SCOPED_TRACE(endian);
            TInterfacePtr<IObject> value;
            value.Adopt(overNumber ? new DictValue(-1LL) : new DictValue(kUnits, 2));
            auto const memory =
                MakeMemory(endian, Hex(endian == kNative ? GetParam().native : GetParam().reversed));
            PersistenceOf(*value)->Read(*MakeStream(*memory));
            EXPECT_TRUE(memory->AtEnd());
            EXPECT_EQ(ToHex(BodyOf(kNative, *value)), GetParam().native);
        }
}

TEST_P(DictValueBodyTest, StartsWithOneReferenceAndItsAdapter)
{
    TInterfacePtr<IObject> value;
    value.Adopt(GetParam().make());
    EXPECT_EQ(References(*value), 1);
    EXPECT_EQ(value->GetAggregates().size(), 1u);
    EXPECT_EQ(PersistenceOf(*value)->GetUID(), IO::IID_IDICTIONARY_VALUE);
}

INSTANTIATE_TEST_SUITE_P(DictValue, DictValueBodyTest, ::testing::ValuesIn(kBodies), RowName());

class DictValueTest : public SerializationTest
{
protected:
    /// A value read from the body, in a dictionary under key 1, through whose getters it can be looked at.
    TInterfacePtr<IDictionary> ReadValue(IDataProvider::Endian endian, std::string const& body)
    {
        memory = MakeMemory(endian, Hex(body));
        TInterfacePtr<IObject> value;
        value.Adopt(new DictValue(7));
        PersistenceOf(*value)->Read(*MakeStream(*memory));
        auto dictionary = MakeDictionary();
        dictionary->Put(1, value.Get());
        return dictionary;
    }

    TInterfacePtr<IDataProvider> memory;
};

TEST_F(DictValueTest, AnswersItsOwnIdWithItself)
{
    TInterfacePtr<IObject> value;
    value.Adopt(new DictValue(7));
    IObject* found = nullptr;
    EXPECT_EQ(value->QueryInterface(IO::IID_IDICTIONARY_VALUE, &found), 0);
    EXPECT_EQ(found, value.Get());
    EXPECT_EQ(value->QueryInterface(IO::IID_IDICTIONARY_VALUE, nullptr), 0);
    EXPECT_EQ(References(*value), 1);
    EXPECT_EQ(value->QueryInterface(IO::IID_DICTIONARY, &found), -1004);
    EXPECT_EQ(found, value.Get());
    EXPECT_EQ(value->QueryInterface(IO::IPERSISTENT_DATA, nullptr), 0);
}

TEST_F(DictValueTest, RegistryMakesAnUntypedValue)
{
    auto const value = CreateObject<IObject>(
        GUID{0x73E90C21, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}});
    ASSERT_TRUE(value);
    EXPECT_EQ(ToHex(BodyOf(kNative, *value)), "54 4E 4E 55");
}

TEST_F(DictValueTest, BuffersAreCopies)
{
    unsigned char bytes[] = {1, 2};
    UniChar units[] = {3};
    TInterfacePtr<IObject> value;
    TInterfacePtr<IObject> text;
    value.Adopt(new DictValue(bytes, 2));
    text.Adopt(new DictValue(units, 1));
    bytes[0] = 9;
    units[0] = 9;
    EXPECT_EQ(ToHex(BodyOf(kNative, *value)), "52 41 48 43 02 00 00 00 01 02");
    EXPECT_EQ(ToHex(BodyOf(kNative, *text)), "43 49 4E 55 02 00 00 00 03 00");
}

// The integer that such a number is fetched as is nobody's business, but that it has one is, and the number
// itself stays.
TEST_F(DictValueTest, NumbersBeyondEveryIntegerKeepTheirFloatingField)
{
    double const numbers[] = {18446744073709551616.0,
                              1e300,
                              -9223372036854777856.0,
                              -1e300,
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity()};
    for (double const number : numbers)
    {
        auto const dictionary = MakeDictionary();
        dictionary->Put(1, number);
        dictionary->Put(2, static_cast<float>(number));
        double found = 0;
        float narrow = 0;
        uint64 integer = 0;
        EXPECT_EQ(dictionary->Get(1, found), 0);
        EXPECT_EQ(found, number);
        EXPECT_EQ(dictionary->Get(1, integer), 0);
        EXPECT_EQ(dictionary->Get(2, narrow), 0);
        EXPECT_EQ(narrow, static_cast<float>(number));
        EXPECT_EQ(dictionary->Get(2, integer), 0);
    }
}

TEST_F(DictValueTest, NaNKeepsItsBits)
{
    TInterfacePtr<IObject> value;
    value.Adopt(new DictValue(std::bit_cast<double>(0x7FF8000001234567ULL)));
    Bytes const body = BodyOf(kNative, *value);
    ASSERT_EQ(body.size(), 20u);
    EXPECT_EQ(ToHex(Bytes(body.begin() + 12, body.end())), "67 45 23 01 00 00 F8 7F");
    TInterfacePtr<IObject> narrow;
    narrow.Adopt(new DictValue(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ(BodyOf(kNative, *narrow).size(), 20u);
}

// A file may hold fields that no constructor makes.
TEST_F(DictValueTest, FieldsAreReadAsTheyStand)
{
    auto const dictionary =
        ReadValue(kReversed, "53 38 56 4C 11 22 33 44 55 66 77 88 3F F0 00 00 00 00 00 00");
    uint64 integer = 0;
    double floating = 0;
    EXPECT_EQ(dictionary->Get(1, integer), 0);
    EXPECT_EQ(integer, 0x1122334455667788ULL);
    EXPECT_EQ(dictionary->Get(1, floating), 0);
    EXPECT_EQ(floating, 1.0);
}

TEST_F(DictValueTest, UnknownTagIsKeptAndTheValueEmpty)
{
    auto const dictionary = ReadValue(kNative, "78 56 34 12 AA BB CC DD");
    EXPECT_EQ(memory->GetPosition(), 4);
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary->Get(1))), "78 56 34 12");
    int integer = 5;
    double floating = 5;
    EXPECT_EQ(dictionary->Get(1, integer), 0);
    EXPECT_EQ(integer, 0);
    EXPECT_EQ(dictionary->Get(1, floating), 0);
    EXPECT_EQ(floating, 0.0);
    unsigned char const* data = nullptr;
    int length = 5;
    EXPECT_EQ(dictionary->Get(1, &data, length), 10);
    EXPECT_EQ(length, 0);
}

TEST_F(DictValueTest, UntypedBodyHasNothingMore)
{
    auto const dictionary = ReadValue(kReversed, "55 4E 4E 54 AA BB");
    EXPECT_EQ(memory->GetPosition(), 4);
    EXPECT_EQ(ToHex(BodyOf(kReversed, *dictionary->Get(1))), "55 4E 4E 54");
}

TEST_F(DictValueTest, BytesThatAreCutKeepTheLengthThatWasRead)
{
    auto const dictionary = ReadValue(kNative, "52 41 48 43 04 00 00 00 0A 0B 0C");
    unsigned char const* data = nullptr;
    int length = 0;
    ASSERT_EQ(dictionary->Get(1, &data, length), 0);
    EXPECT_EQ(ToHex(Bytes(data, data + length)), "0A 0B 0C");
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary->Get(1))), "52 41 48 43 03 00 00 00 0A 0B 0C");
}

TEST_F(DictValueTest, UnitsThatAreCutKeepTheLengthThatWasRead)
{
    auto const dictionary = ReadValue(kNative, "43 49 4E 55 06 00 00 00 41 00 42");
    UniChar const* units = nullptr;
    int count = 0;
    ASSERT_EQ(dictionary->Get(1, &units, count), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(units[0], u'A');
    unsigned char const* data = nullptr;
    int length = 0;
    EXPECT_EQ(dictionary->Get(1, &data, length), 10);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary->Get(1))), "43 49 4E 55 03 00 00 00 41 00 42");
}

// What was missing is zero, also when it is written again. The length that came is still told.
TEST_F(DictValueTest, IdentifierThatIsCutKeepsItsFirstBytes)
{
    auto const dictionary = ReadValue(kNative, "44 49 55 47 D5 0C E9 73 C6 BB");
    GUID found{1, 1, 1, {1}};
    EXPECT_EQ(dictionary->Get(1, found), 0);
    EXPECT_EQ(found, (GUID{0x73E90CD5, 0xBBC6, 0, {}}));
    unsigned char const* data = nullptr;
    int length = 0;
    EXPECT_EQ(dictionary->Get(1, &data, length), 10);
    EXPECT_EQ(length, 6);
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary->Get(1))),
              "44 49 55 47 D5 0C E9 73 C6 BB 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(DictValueTest, IdentifierOfWhichNothingCameIsZero)
{
    auto const dictionary = ReadValue(kNative, "44 49 55 47");
    GUID found{1, 1, 1, {1}};
    EXPECT_EQ(dictionary->Get(1, found), 0);
    EXPECT_EQ(found, GUID{});
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary->Get(1))),
              "44 49 55 47 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(DictValueTest, NumberThatIsCutIsZero)
{
    auto const dictionary = ReadValue(kNative, "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C");
    int integer = 0;
    double floating = 5;
    EXPECT_EQ(dictionary->Get(1, integer), 0);
    EXPECT_EQ(integer, 7);
    EXPECT_EQ(dictionary->Get(1, floating), 0);
    EXPECT_EQ(floating, 0.0);
}

struct LengthRow
{
    char const* name;
    char const* body;
    int length;
};

LengthRow const kLengths[] = {
    {"MinusOne", "52 41 48 43 FF FF FF FF 0A 0B", 0},
    {"Lowest", "52 41 48 43 00 00 00 80 0A 0B", 0},
    {"Zero", "52 41 48 43 00 00 00 00 0A 0B", 0},
    {"Highest", "52 41 48 43 FF FF FF 7F 0A 0B", 2},
    {"Missing", "52 41 48 43", 0},
    {"CutShort", "52 41 48 43 02 00", 0},
};

class DictValueLengthTest : public DictValueTest, public ::testing::WithParamInterface<LengthRow>
{
};

TEST_P(DictValueLengthTest, OfBytes)
{
    auto const dictionary = ReadValue(kNative, GetParam().body);
    unsigned char const* data = nullptr;
    int length = 5;
    EXPECT_EQ(dictionary->Get(1, &data, length), 0);
    EXPECT_EQ(length, GetParam().length);
    EXPECT_NE(data, nullptr);
}

INSTANTIATE_TEST_SUITE_P(DictValue, DictValueLengthTest, ::testing::ValuesIn(kLengths), RowName());

TEST_F(DictValueTest, NegativeLengthOfUnitsIsNone)
{
    auto const dictionary = ReadValue(kNative, "43 49 4E 55 FE FF FF FF 41 00");
    EXPECT_EQ(memory->GetPosition(), 8);
    UniChar const* units = nullptr;
    int count = 5;
    EXPECT_EQ(dictionary->Get(1, &units, count), 0);
    EXPECT_EQ(count, 0);
}

constexpr std::size_t kMebibyte = 1024 * 1024;

// Memory is taken in proportion to the data that is there and not to what a damaged length says.
TEST_F(DictValueTest, HugeLengthOverLittleDataAsksForNoMoreThanAMebibyte)
{
    auto const provider = Make<RecordingProvider>();
    provider->bytes = Hex("52 41 48 43 00 00 00 71 0A 0B");
    TInterfacePtr<IObject> value;
    value.Adopt(new DictValue);
    PersistenceOf(*value)->Read(*MakeStream(*provider));
    EXPECT_EQ(ToHex(BodyOf(kNative, *value)), "52 41 48 43 02 00 00 00 0A 0B");
    EXPECT_EQ(provider->greatestRead, static_cast<int32>(kMebibyte));
}

TEST_F(DictValueTest, LongBufferComesWholeWhateverTheProviderSaysOfItsSize)
{
    for (bool const knowsItsSize : {true, false})
    {
        auto const provider = Make<RecordingProvider>();
        provider->bytes = Hex("52 41 48 43 05 00 20 00");
        provider->bytes.resize(8 + 2 * kMebibyte + 5, 0x33);
        provider->bytes.back() = 0x44;
        if (!knowsItsSize)
            provider->claimedSize = 0;
        TInterfacePtr<IObject> value;
        value.Adopt(new DictValue);
        PersistenceOf(*value)->Read(*MakeStream(*provider));
        auto const dictionary = MakeDictionary();
        dictionary->Put(1, value.Get());
        unsigned char const* data = nullptr;
        int length = 0;
        ASSERT_EQ(dictionary->Get(1, &data, length), 0);
        ASSERT_EQ(length, 2'097'157);
        EXPECT_EQ(data[0], 0x33);
        EXPECT_EQ(data[length - 2], 0x33);
        EXPECT_EQ(data[length - 1], 0x44);
        EXPECT_EQ(provider->greatestRead, knowsItsSize ? 2'097'157 : static_cast<int32>(kMebibyte));
    }
}

TEST_F(DictValueTest, BufferBytesGoStraightToTheProvider)
{
    auto const provider = Make<RecordingProvider>();
    provider->native = false;
    TInterfacePtr<IObject> value;
    value.Adopt(new DictValue(IO::IID_DICTIONARY));
    auto const stream = MakeStream(*provider);
    PersistenceOf(*value)->Write(*stream);
    EXPECT_EQ(provider->TakeCalls(), (std::vector<std::string>{"IsNative", "Write 4", "Write 16"}));
    provider->position = 0;
    PersistenceOf(*value)->Read(*stream);
    auto const calls = provider->TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Read 16"), 1);
    EXPECT_EQ(References(*provider), 2);
}
} // namespace
} // namespace KORVA
