// Counts that lie, and data that ends early.
#include "Serialization.h"

#include <limits>

namespace KORVA
{
namespace
{
using namespace TESTS;

struct StringRow
{
    char const* name;
    /// Through a native provider.
    char const* bytes;
    std::u16string_view text;
    int64 positionAfter;
};

StringRow const kStrings[] = {
    {"CountOneLeavesTheByte", "01 00 00 00 41 42", u"", 4},
    {"CountThreeDropsTheLastByte", "03 00 00 00 41 00 42 43 44", u"A", 7},
    {"CountFiveDropsTheLastByte", "05 00 00 00 41 00 42 00 43 44", u"AB", 9},
    {"CountMinusOne", "FF FF FF FF 41 00", u"", 4},
    {"CountMinusTwo", "FE FF FF FF 41 00", u"", 4},
    {"CountLowest", "00 00 00 80 41 00", u"", 4},
    {"CountMissing", "", u"", 0},
    {"CountCutShort", "02 00 00", u"", 3},
    {"CountZero", "00 00 00 00 41 00", u"", 4},
    {"CountTwo", "02 00 00 00 41 00 42", u"A", 6},
};

using StringTest = SerializationTestWith<StringRow>;

TEST_P(StringTest, KeepsWholeUnitsAndConsumesTheCount)
{
    Bytes const content = Hex(GetParam().bytes);
    auto const memory = MakeMemory(content);
    CoreString text(u"old");
    *MakeStream(*memory) >> text;
    EXPECT_EQ(text, Text(GetParam().text));
    EXPECT_EQ(memory->GetPosition(), GetParam().positionAfter);
}

INSTANTIATE_TEST_SUITE_P(DataProviderStream, StringTest, ::testing::ValuesIn(kStrings), RowName());

class DataProviderStreamShortTest : public SerializationTest
{
protected:
    TInterfacePtr<RecordingProvider> const provider = Make<RecordingProvider>();
    TInterfacePtr<IDataProviderStream> const stream = MakeStream(*provider);
};

TEST_F(DataProviderStreamShortTest, UnitsThatAreThereAreKept)
{
    for (auto const endian : {kNative, kReversed})
    {
        auto const memory = MakeMemory(
            endian, Hex(endian == kNative ? "08 00 00 00 41 00 42 00" : "00 00 00 08 00 41 00 42"));
        CoreString text;
        *MakeStream(*memory) >> text;
        EXPECT_EQ(text.substr(0, 2), CoreString(u"AB"));
        EXPECT_TRUE(memory->AtEnd());
    }
}

TEST_F(DataProviderStreamShortTest, StringPastTheEndIsEmpty)
{
    auto const memory = MakeMemory(Hex("41 00"));
    ASSERT_EQ(memory->SetPosition(2, IDataProvider::kFromStart), 0);
    CoreString text(u"old");
    *MakeStream(*memory) >> text;
    EXPECT_TRUE(text.empty());
}

/// Reads every number type from `bytes` bytes of ones, each from the start again.
template <class Value>
void ExpectZero(IDataProvider& memory, IDataProviderStream& values)
{
    ASSERT_EQ(memory.SetPosition(0, IDataProvider::kFromStart), 0);
    Value value = 5;
    values >> value;
    EXPECT_EQ(value, Value{0});
}

TEST_F(DataProviderStreamShortTest, NumberThatIsCutShortBecomesZero)
{
    for (auto const endian : {kNative, kReversed})
    {
        auto const one = MakeMemory(endian, Hex("FF"));
        auto const values = MakeStream(*one);
        ExpectZero<short>(*one, *values);
        ExpectZero<unsigned short>(*one, *values);
        ExpectZero<int>(*one, *values);
        ExpectZero<unsigned int>(*one, *values);
        ExpectZero<long long>(*one, *values);
        ExpectZero<unsigned long long>(*one, *values);
        ExpectZero<float>(*one, *values);
        ExpectZero<double>(*one, *values);

        Bytes const content(7, 0xFF);
        auto const seven = MakeReadOnly(endian, content);
        auto const wide = MakeStream(*seven);
        ExpectZero<long long>(*seven, *wide);
        ExpectZero<unsigned long long>(*seven, *wide);
        ExpectZero<double>(*seven, *wide);
    }
}

TEST_F(DataProviderStreamShortTest, ByteThatIsMissingBecomesZero)
{
    signed char i8 = 5;
    unsigned char u8 = 5;
    bool flag = true;
    *stream >> i8 >> u8 >> flag;
    EXPECT_EQ(i8, 0);
    EXPECT_EQ(u8, 0);
    EXPECT_FALSE(flag);
}

TEST_F(DataProviderStreamShortTest, IdentifierThatIsCutShortKeepsItsWholeParts)
{
    provider->bytes = Hex("D5 0C E9 73 C6 BB 26");
    GUID id{1, 1, 1, {1, 1, 1, 1, 1, 1, 1, 1}};
    *stream >> id;
    EXPECT_EQ(id, (GUID{0x73E90CD5, 0xBBC6, 0, {}}));
}

constexpr int32 kMebibyte = 1024 * 1024;

// Memory is taken in proportion to the data that is there and not to what a damaged count says.
TEST_F(DataProviderStreamShortTest, HugeCountOverLittleDataAsksForNoMoreThanAMebibyte)
{
    provider->bytes = Hex("FE FF FF 7F");
    provider->bytes.resize(100, 0x41);
    CoreString text;
    *stream >> text;
    EXPECT_EQ(text.size(), 48u);
    EXPECT_EQ(text[47], 0x4141);
    EXPECT_EQ(provider->position, 100u);
    EXPECT_EQ(provider->greatestRead, kMebibyte);
}

TEST_F(DataProviderStreamShortTest, HugeOddCountOverLittleData)
{
    provider->bytes = Hex("FF FF FF 7F 41 00 42");
    CoreString text;
    *stream >> text;
    EXPECT_EQ(text, CoreString(u"A"));
    EXPECT_EQ(provider->position, 7u);
}

TEST_F(DataProviderStreamShortTest, HugeCountOverReadOnlyMemory)
{
    Bytes content = Hex("00 00 00 71");
    content.resize(100, 0x42);
    auto const memory = MakeReadOnly(kNative, content);
    CoreString text;
    *MakeStream(*memory) >> text;
    EXPECT_EQ(text.size(), 48u);
    EXPECT_TRUE(memory->AtEnd());
}

TEST_F(DataProviderStreamShortTest, AMebibyteIsReadAsItStands)
{
    provider->bytes = Hex("00 00 10 00 41 00");
    CoreString text;
    *stream >> text;
    EXPECT_EQ(text.substr(0, 1), CoreString(u"A"));
    EXPECT_EQ(provider->greatestRead, kMebibyte);
    auto const calls = provider->TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Size"), 0);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Read 1048576"), 1);
}

TEST_F(DataProviderStreamShortTest, LongStringThatIsThereComesInOneRead)
{
    CoreString const text(std::u16string(700'000, u'x') + u"y");
    *stream << text;
    EXPECT_EQ(provider->bytes.size(), 1'400'006u);
    provider->position = 0;
    provider->TakeCalls();
    CoreString found;
    *stream >> found;
    EXPECT_EQ(found, text);
    auto const calls = provider->TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Read 1400002"), 1);
}

TEST_F(DataProviderStreamShortTest, LongStringComesWholeFromAProviderThatDoesNotKnowItsSize)
{
    CoreString const text(std::u16string(700'000, u'x') + u"y");
    for (bool const native : {true, false})
    {
        provider->native = native;
        provider->position = 0;
        *stream << text;
        provider->position = 0;
        provider->claimedSize = 0;
        CoreString found;
        *stream >> found;
        EXPECT_EQ(found, text);
        EXPECT_EQ(provider->position, 1'400'006u);
    }
}

TEST_F(DataProviderStreamShortTest, LongStringThatIsCutKeepsWhatIsThere)
{
    // Five mebibytes announced, three and four bytes there.
    provider->bytes = Hex("00 00 50 00");
    provider->bytes.resize(4 + 3 * static_cast<std::size_t>(kMebibyte), 0x41);
    provider->bytes.insert(provider->bytes.end(), {0x42, 0x42, 0x43, 0x43});
    CoreString text;
    *stream >> text;
    ASSERT_EQ(text.size(), 3u * kMebibyte / 2 + 2);
    EXPECT_EQ(text[0], 0x4141);
    EXPECT_EQ(text[text.size() - 3], 0x4141);
    EXPECT_EQ(text[text.size() - 2], 0x4242);
    EXPECT_EQ(text[text.size() - 1], 0x4343);
    EXPECT_EQ(provider->greatestRead, kMebibyte);
}
} // namespace
} // namespace KORVA
