// The encoding of every type, byte by byte, and the stream's life around its provider.
#include "DataProviderStream.h"

#include "Serialization.h"

#include <bit>
#include <limits>

namespace KORVA
{
namespace
{
using namespace TESTS;
using IO::DataProviderStream;

constexpr GUID kDictionaryId{0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};

template <class Value>
void Expect(IDataProviderStream& stream, Value const& expected, Value found)
{
    EXPECT_EQ(&(stream >> found), &stream);
    EXPECT_EQ(found, expected);
}

template <class Bits, class Value>
void ExpectBits(IDataProviderStream& stream, Bits expected)
{
    Value found = 0;
    EXPECT_EQ(&(stream >> found), &stream);
    EXPECT_EQ(std::bit_cast<Bits>(found), expected);
}

struct EncodingRow
{
    char const* name;
    char const* native;
    char const* reversed;
    IDataProviderStream& (*write)(IDataProviderStream& stream);
    void (*check)(IDataProviderStream& stream);
};

using S = IDataProviderStream;

EncodingRow const kEncodings[] = {
    {"SignedCharLowest", "80", "80", [](S& s) -> S& { return s << static_cast<signed char>(-128); },
     [](S& s) { Expect<signed char>(s, -128, 1); }},
    {"UnsignedChar", "FE", "FE", [](S& s) -> S& { return s << static_cast<unsigned char>(0xFE); },
     [](S& s) { Expect<unsigned char>(s, 0xFE, 1); }},
    {"BoolTrue", "01", "01", [](S& s) -> S& { return s << true; }, [](S& s) { Expect(s, true, false); }},
    {"BoolFalse", "00", "00", [](S& s) -> S& { return s << false; }, [](S& s) { Expect(s, false, true); }},
    {"ShortMinusTwo", "FE FF", "FF FE", [](S& s) -> S& { return s << static_cast<short>(-2); },
     [](S& s) { Expect<short>(s, -2, 1); }},
    {"UnsignedShort", "CD AB", "AB CD", [](S& s) -> S& { return s << static_cast<unsigned short>(0xABCD); },
     [](S& s) { Expect<unsigned short>(s, 0xABCD, 1); }},
    {"Int", "04 03 02 01", "01 02 03 04", [](S& s) -> S& { return s << 0x01020304; },
     [](S& s) { Expect(s, 0x01020304, 1); }},
    {"IntMinusTwo", "FE FF FF FF", "FF FF FF FE", [](S& s) -> S& { return s << -2; },
     [](S& s) { Expect(s, -2, 1); }},
    {"UnsignedInt", "98 BA DC FE", "FE DC BA 98", [](S& s) -> S& { return s << 0xFEDCBA98u; },
     [](S& s) { Expect(s, 0xFEDCBA98u, 1u); }},
    {"LongLong", "08 07 06 05 04 03 02 01", "01 02 03 04 05 06 07 08",
     [](S& s) -> S& { return s << 0x0102030405060708LL; },
     [](S& s) { Expect(s, 0x0102030405060708LL, 1LL); }},
    {"LongLongMinusTwo", "FE FF FF FF FF FF FF FF", "FF FF FF FF FF FF FF FE",
     [](S& s) -> S& { return s << -2LL; }, [](S& s) { Expect(s, -2LL, 1LL); }},
    {"UnsignedLongLong", "10 32 54 76 98 BA DC FE", "FE DC BA 98 76 54 32 10",
     [](S& s) -> S& { return s << 0xFEDCBA9876543210ULL; },
     [](S& s) { Expect(s, 0xFEDCBA9876543210ULL, 1ULL); }},
    {"FloatOne", "00 00 80 3F", "3F 80 00 00", [](S& s) -> S& { return s << 1.0f; },
     [](S& s) { Expect(s, 1.0f, 0.0f); }},
    {"FloatMinusTwoAndAHalf", "00 00 20 C0", "C0 20 00 00", [](S& s) -> S& { return s << -2.5f; },
     [](S& s) { Expect(s, -2.5f, 0.0f); }},
    {"FloatNaNKeepsItsBits", "23 01 C0 7F", "7F C0 01 23",
     [](S& s) -> S& { return s << std::bit_cast<float>(0x7FC00123u); },
     [](S& s) { ExpectBits<uint32, float>(s, 0x7FC00123u); }},
    {"DoubleOne", "00 00 00 00 00 00 F0 3F", "3F F0 00 00 00 00 00 00", [](S& s) -> S& { return s << 1.0; },
     [](S& s) { Expect(s, 1.0, 0.0); }},
    {"DoubleMinusZero", "00 00 00 00 00 00 00 80", "80 00 00 00 00 00 00 00",
     [](S& s) -> S& { return s << -0.0; },
     [](S& s) { ExpectBits<uint64, double>(s, 0x8000000000000000ULL); }},
    {"DoubleNaNKeepsItsBits", "67 45 23 01 00 00 F8 7F", "7F F8 00 00 01 23 45 67",
     [](S& s) -> S& { return s << std::bit_cast<double>(0x7FF8000001234567ULL); },
     [](S& s) { ExpectBits<uint64, double>(s, 0x7FF8000001234567ULL); }},
    {"String", "04 00 00 00 41 00 62 00", "00 00 00 04 00 41 00 62",
     [](S& s) -> S& { return s << Text(u"Ab"); }, [](S& s) { Expect(s, Text(u"Ab"), Text(u"old")); }},
    {"StringEmpty", "00 00 00 00", "00 00 00 00", [](S& s) -> S& { return s << CoreString(); },
     [](S& s) { Expect(s, CoreString(), Text(u"old")); }},
    {"StringWithNullAndLoneSurrogates", "06 00 00 00 00 00 3D D8 00 DC", "00 00 00 06 00 00 D8 3D DC 00",
     [](S& s) -> S& {
         return s << Text({u"\0\xD83D\xDC00", 3});
     },
     [](S& s) {
         Expect(s, Text({u"\0\xD83D\xDC00", 3}), CoreString());
     }},
    {"Identifier", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05",
     "73 E9 0C D5 BB C6 43 26 82 41 9B B4 25 0B 1B 05", [](S& s) -> S& { return s << kDictionaryId; },
     [](S& s) { Expect(s, kDictionaryId, GUID{}); }},
};

using EncodingTest = SerializationTestWith<EncodingRow>;

TEST_P(EncodingTest, WritesItsBytes)
{
    EXPECT_EQ(ToHex(Written(kNative, GetParam().write)), GetParam().native);
    EXPECT_EQ(ToHex(Written(kReversed, GetParam().write)), GetParam().reversed);
}

TEST_P(EncodingTest, AnswersTheStreamItself)
{
    auto const provider = MakeMemory();
    auto const stream = MakeStream(*provider);
    EXPECT_EQ(&GetParam().write(*stream), stream.Get());
}

TEST_P(EncodingTest, ReadsItsBytes)
{
    for (auto const endian : {kNative, kReversed})
    {
        SCOPED_TRACE(endian);
        // What follows the value must stay unread.
        Bytes content = Hex(endian == kNative ? GetParam().native : GetParam().reversed);
        auto const size = static_cast<int64>(content.size());
        content.push_back(0x5A);
        auto const memory = MakeMemory(endian, content);
        GetParam().check(*MakeStream(*memory));
        EXPECT_EQ(memory->GetPosition(), size);
        auto const readOnly = MakeReadOnly(endian, content);
        GetParam().check(*MakeStream(*readOnly));
        EXPECT_EQ(readOnly->GetPosition(), size);
    }
}

TEST_P(EncodingTest, RoundTrips)
{
    for (auto const endian : {kNative, kReversed})
    {
        SCOPED_TRACE(endian);
        auto const memory = MakeMemory(endian);
        auto const stream = MakeStream(*memory);
        GetParam().write(*stream);
        ASSERT_EQ(memory->SetPosition(0, IDataProvider::kFromStart), 0);
        GetParam().check(*stream);
        EXPECT_TRUE(memory->AtEnd());
        Bytes const bytes = BytesOf(*memory);
        GetParam().check(*MakeStream(*MakeReadOnly(endian, bytes)));
    }
}

INSTANTIATE_TEST_SUITE_P(DataProviderStream, EncodingTest, ::testing::ValuesIn(kEncodings), RowName());

using DataProviderStreamTest = SerializationTest;

TEST_F(DataProviderStreamTest, AnyByteButZeroReadsAsTrue)
{
    auto const memory = MakeMemory(Hex("7F 00 80 FF"));
    auto const stream = MakeStream(*memory);
    bool values[4] = {false, true, false, false};
    for (bool& value : values)
        *stream >> value;
    EXPECT_TRUE(values[0]);
    EXPECT_FALSE(values[1]);
    EXPECT_TRUE(values[2]);
    EXPECT_TRUE(values[3]);
}

TEST_F(DataProviderStreamTest, ByteOrderIsAskedAnewForEachValue)
{
    auto const memory = MakeMemory();
    auto const stream = MakeStream(*memory);
    *stream << 0x01020304;
    memory->SetEndian(kReversed);
    *stream << 0x01020304;
    memory->SetEndian(kNative);
    *stream << static_cast<short>(1);
    EXPECT_EQ(ToHex(BytesOf(*memory)), "04 03 02 01 01 02 03 04 01 00");

    ASSERT_EQ(memory->SetPosition(0, IDataProvider::kFromStart), 0);
    int first = 0;
    int second = 0;
    *stream >> first;
    memory->SetEndian(kReversed);
    *stream >> second;
    EXPECT_EQ(first, 0x01020304);
    EXPECT_EQ(second, 0x01020304);
}

// Only the constructor of a provider turns the request for the native order into the native order.
TEST_F(DataProviderStreamTest, RequestForNativeOrderSetLaterIsNotNative)
{
    auto const write = [](IDataProviderStream& stream) { stream << 0x01020304; };
    EXPECT_EQ(ToHex(Written(IDataProvider::kNativeEndian, write)), "01 02 03 04");
}

TEST_F(DataProviderStreamTest, ValuesStandWithoutPadding)
{
    auto const write = [](IDataProviderStream& stream) {
        stream << static_cast<signed char>(1) << static_cast<short>(2) << true << 3
               << static_cast<unsigned char>(4) << 5LL << CoreString(u"x") << 1.0f;
    };
    EXPECT_EQ(ToHex(Written(kNative, write)),
              "01 02 00 01 03 00 00 00 04 05 00 00 00 00 00 00 00 02 00 00 00 78 00 00 00 80 3F");
}

TEST_F(DataProviderStreamTest, FactoryMakesAStreamWithoutProvider)
{
    auto const stream = CreateObject<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    ASSERT_TRUE(stream);
    EXPECT_EQ(References(*stream), 1);
    EXPECT_TRUE(stream->GetAggregates().empty());
    EXPECT_FALSE(stream->GetDataProvider());
}

TEST_F(DataProviderStreamTest, ConstructorSharesTheProvider)
{
    auto const provider = Make<RecordingProvider>();
    TInterfacePtr<IDataProviderStream> stream;
    stream.Adopt(new DataProviderStream(*provider));
    EXPECT_EQ(References(*stream), 1);
    EXPECT_EQ(References(*provider), 2);
    *stream << static_cast<unsigned char>(7);
    EXPECT_EQ(ToHex(provider->bytes), "07");
    stream.Reset();
    EXPECT_EQ(References(*provider), 1);
}

TEST_F(DataProviderStreamTest, GetDataProviderAddsAReference)
{
    auto const provider = Make<RecordingProvider>();
    auto const stream = MakeStream(*provider);
    EXPECT_EQ(References(*provider), 2);
    TInterfacePtr<IDataProvider> held = stream->GetDataProvider();
    EXPECT_EQ(held.Get(), provider.Get());
    EXPECT_EQ(References(*provider), 3);
    held.Reset();
    EXPECT_EQ(References(*provider), 2);
}

TEST_F(DataProviderStreamTest, InitSwapsTheProviderAtAnyTime)
{
    auto const first = Make<RecordingProvider>();
    auto const second = Make<RecordingProvider>();
    auto stream = MakeStream(*first);
    *stream << static_cast<unsigned char>(1);
    EXPECT_EQ(stream->Init(*second), 0);
    *stream << static_cast<unsigned char>(2);
    EXPECT_EQ(References(*first), 1);
    EXPECT_EQ(References(*second), 2);
    EXPECT_EQ(ToHex(first->bytes), "01");
    EXPECT_EQ(ToHex(second->bytes), "02");
    stream.Reset();
    EXPECT_EQ(References(*second), 1);
}

/// Counts references without ever dying.
class Immortal final : public TObject<IDataProvider>
{
public:
    int32 AddRef() override
    {
        events += '+';
        return 1;
    }
    int32 Release() override
    {
        events += '-';
        return 1;
    }

    void InitHandleBased(int) override {}
    ErrCode InitReadOnlyMem(void const*, int32) override { return 0; }
    ErrCode InitURIBased(IO::IURI&, int, IO::IReporter*) override { return 0; }
    OperationId Write(void const*, std::size_t) override { return 0; }
    OperationId Read(void*, int32&) override { return 0; }
    int64 Size() const override { return 0; }
    ErrCode SetSize(int64) override { return 0; }
    ErrCode SetPosition(int64, Offset) override { return 0; }
    int64 GetPosition() const override { return 0; }
    Endian GetEndian() const override { return kNative; }
    bool IsNative() const override { return true; }
    void SetEndian(Endian) override {}
    bool AtEnd() override { return true; }
    ErrCode Flush() override { return 0; }
    bool GetAutoFlush() override { return true; }
    void SetAutoFlush(bool) override {}

    std::string events;
};

TEST_F(DataProviderStreamTest, InitReleasesBeforeItTakes)
{
    Immortal provider;
    auto stream = MakeStream(provider);
    EXPECT_EQ(provider.events, "+");
    EXPECT_EQ(stream->Init(provider), 0);
    EXPECT_EQ(provider.events, "+-+");
    stream.Reset();
    EXPECT_EQ(provider.events, "+-+-");
}

TEST_F(DataProviderStreamTest, TwoStreamsShareTheProvidersPosition)
{
    auto const memory = MakeMemory();
    auto const a = MakeStream(*memory);
    auto const b = MakeStream(*memory);
    *a << static_cast<short>(1);
    *b << static_cast<short>(2);
    *a << static_cast<short>(3);
    EXPECT_EQ(ToHex(BytesOf(*memory)), "01 00 02 00 03 00");
}

TEST_F(DataProviderStreamTest, WithoutProviderEveryValueStaysAsItIs)
{
    auto const stream = CreateObject<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    signed char i8 = 1;
    unsigned char u8 = 2;
    short i16 = 3;
    unsigned short u16 = 4;
    int i32 = 5;
    unsigned int u32 = 6;
    long long i64 = 7;
    unsigned long long u64 = 8;
    bool flag = true;
    float f32 = 9;
    double f64 = 10;
    CoreString text(u"kept");
    GUID id = kDictionaryId;
    Plain object;
    IObject* pointer = &object;
    *stream >> i8 >> u8 >> i16 >> u16 >> i32 >> u32 >> i64 >> u64 >> flag >> f32 >> f64 >> text >> id >>
        &pointer;
    EXPECT_EQ(i8, 1);
    EXPECT_EQ(u8, 2);
    EXPECT_EQ(i16, 3);
    EXPECT_EQ(u16, 4);
    EXPECT_EQ(i32, 5);
    EXPECT_EQ(u32, 6u);
    EXPECT_EQ(i64, 7);
    EXPECT_EQ(u64, 8u);
    EXPECT_TRUE(flag);
    EXPECT_EQ(f32, 9.0f);
    EXPECT_EQ(f64, 10.0);
    EXPECT_EQ(text, CoreString(u"kept"));
    EXPECT_EQ(id, kDictionaryId);
    EXPECT_EQ(pointer, &object);
}

TEST_F(DataProviderStreamTest, WithoutProviderWritingDoesNothing)
{
    auto const stream = CreateObject<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    auto const dictionary = MakeDictionary();
    dictionary->Put(1, 7);
    *stream << static_cast<signed char>(1) << static_cast<unsigned char>(1) << CoreString(u"a")
            << static_cast<short>(1) << static_cast<unsigned short>(1) << 1 << 1u << 1LL << 1ULL << 1.0f
            << 1.0 << true << *dictionary << kDictionaryId;
    EXPECT_EQ(References(*dictionary), 1);
    EXPECT_FALSE(stream->GetDataProvider());
}

TEST_F(DataProviderStreamTest, WithoutProviderRawAccessAnswersNotInitialised)
{
    auto const stream = CreateObject<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    unsigned char byte = 0x5A;
    int count = 1;
    EXPECT_EQ(stream->Write(&byte, 1), 29);
    EXPECT_EQ(stream->Read(&byte, count), 29);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(byte, 0x5A);
}
} // namespace
} // namespace KORVA
