// Persistent dictionaries as they are written and read.
#include "Serialization.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kSevenNative[] =
    "01 00 00 00 01 00 00 00 21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 "
    "18 00 00 00 00 00 00 00 56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40 "
    "00 00 00 00";
constexpr char kSevenReversed[] =
    "00 00 00 01 00 00 00 01 73 E9 0C 21 BB C6 43 26 82 41 9B B4 25 0B 1B 05 "
    "00 00 00 00 00 00 00 18 53 33 32 56 00 00 00 00 00 00 00 07 40 1C 00 00 00 00 00 00 "
    "00 00 00 00";

class PersistentDictionaryRecordTest : public SerializationTest
{
protected:
    void Read(std::string const& body, IDataProvider::Endian endian = kNative)
    {
        memory = MakeMemory(endian, Hex(body));
        PersistenceOf(*dictionary)->Read(*MakeStream(*memory));
    }

    int IntUnder(unsigned int key) const
    {
        int value = -77;
        EXPECT_EQ(dictionary->Get(key, value), 0);
        return value;
    }

    TInterfacePtr<IDictionary> const dictionary = MakeDictionary();
    TInterfacePtr<IDataProvider> memory;
};

TEST_F(PersistentDictionaryRecordTest, Seven)
{
    dictionary->Put(1, 7);
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary)), kSevenNative);
    EXPECT_EQ(ToHex(BodyOf(kReversed, *dictionary)), kSevenReversed);
    Bytes const record = RecordOf(kNative, *dictionary);
    EXPECT_EQ(record.size(), 84u);
    EXPECT_EQ(ToHex(record),
              std::string("D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 3C 00 00 00 00 00 00 00 ") +
                  kSevenNative + " 00 00 00 00");
    EXPECT_EQ(ToHex(RecordOf(kReversed, *dictionary)),
              std::string("73 E9 0C D5 BB C6 43 26 82 41 9B B4 25 0B 1B 05 00 00 00 00 00 00 00 3C ") +
                  kSevenReversed + " 00 00 00 00");
}

TEST_F(PersistentDictionaryRecordTest, ReadsSeven)
{
    Read(kSevenNative);
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(IntUnder(1), 7);
    EXPECT_EQ(References(*dictionary->Get(1)), 1);
    EXPECT_TRUE(memory->AtEnd());
    dictionary->Clear();
    Read(kSevenReversed, kReversed);
    EXPECT_EQ(IntUnder(1), 7);
    EXPECT_TRUE(memory->AtEnd());
}

TEST_F(PersistentDictionaryRecordTest, EmptyOneIsACount)
{
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary)), "00 00 00 00");
}

// The count is patched even where it stays 0, and the position ends behind the entries.
TEST_F(PersistentDictionaryRecordTest, CountIsPatched)
{
    auto const provider = Make<RecordingProvider>();
    provider->bytes = Bytes(6, 0xEE);
    provider->position = 2;
    PersistenceOf(*dictionary)->Write(*MakeStream(*provider));
    EXPECT_EQ(ToHex(provider->bytes), "EE EE 00 00 00 00");
    EXPECT_EQ(provider->calls, (std::vector<std::string>{"GetPosition", "IsNative", "Write 4", "GetPosition",
                                                         "SetPosition 2 from 0", "IsNative", "Write 4",
                                                         "SetPosition 6 from 0"}));
}

TEST_F(PersistentDictionaryRecordTest, EntriesAreWrittenInKeyOrder)
{
    // Objects without a body of their own make short records.
    dictionary->Put(0xFFFFFFFF, MakeDictionary().Get());
    dictionary->Put(2, MakeStrings().Get());
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary)),
              "02 00 00 00 "
              "02 00 00 00 56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53 08 00 00 00 00 00 00 00 "
              "00 00 00 00 00 00 00 00 "
              "FF FF FF FF D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 08 00 00 00 00 00 00 00 "
              "00 00 00 00 00 00 00 00");
}

TEST_F(PersistentDictionaryRecordTest, ObjectsWithoutPersistenceAreLeftOut)
{
    dictionary->Put(0, Make<Plain>().Get());
    dictionary->Put(1, 7);
    dictionary->Put(2, Make<Plain>().Get());
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary)), kSevenNative);
    dictionary->Remove(1);
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary)), "00 00 00 00");
    EXPECT_EQ(dictionary->Size(), 2u);
}

/// Serves another object than the one that it is found through.
class Proxy final : public TObject<IO::IPersistentData>
{
public:
    explicit Proxy(IObject& object) : mObject(&object) {}

    IObject* GetObj() const override { return mObject; }
    IDataProviderStream& Read(IDataProviderStream& stream) override { return stream; }
    IDataProviderStream& Write(IDataProviderStream& stream) const override { return stream; }
    GUID const& GetUID() const override { return kScriptedId; }

private:
    IObject* mObject;
};

TEST_F(PersistentDictionaryRecordTest, TheObjectThatThePersistenceServesIsWritten)
{
    auto const source = MakeDictionary();
    source->Put(1, 7);
    auto const object = Make<Plain>();
    TInterfacePtr<IObject> proxy;
    proxy.Adopt(new Proxy(*source->Get(1)));
    object->Aggregate(proxy.Get(), IO::IPERSISTENT_DATA);
    dictionary->Put(1, object.Get());
    EXPECT_EQ(ToHex(BodyOf(kNative, *dictionary)), kSevenNative);
}

TEST_F(PersistentDictionaryRecordTest, ReadingReplacesTheContent)
{
    dictionary->Put(1, Make<Plain>().Get());
    dictionary->Put(9, Make<Plain>().Get());
    Read(kSevenNative);
    EXPECT_EQ(Plain::sAlive, 0);
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(IntUnder(1), 7);
}

TEST_F(PersistentDictionaryRecordTest, ReadingNoEntriesClears)
{
    for (char const* const body : {"00 00 00 00", "", "01 00"})
    {
        dictionary->Put(1, Make<Plain>().Get());
        Read(body);
        EXPECT_EQ(dictionary->Size(), 0u);
        EXPECT_EQ(Plain::sAlive, 0);
    }
}

TEST_F(PersistentDictionaryRecordTest, LaterEntryUnderOneKeyReplacesTheEarlier)
{
    std::string const entry = std::string(kSevenNative).substr(12);
    std::string nine = entry;
    nine.replace(nine.find("07 00"), 2, "09");
    Read("02 00 00 00 " + entry + nine);
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(IntUnder(1), 9);
    EXPECT_EQ(References(*dictionary->Get(1)), 1);
}

TEST_F(PersistentDictionaryRecordTest, RecordsThatYieldNoObjectLeaveNoEntry)
{
    std::string const entry = std::string(kSevenNative).substr(12);
    Read("03 00 00 00 "
         "05 00 00 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 02 00 00 00 00 00 00 00 AA BB " +
         entry +
         // A class that is known but has no persistence.
         "06 00 00 00 BD BF 32 29 A3 9A 4F 45 BE FF EB C9 BE EF 0F 0F 01 00 00 00 00 00 00 00 CC");
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(IntUnder(1), 7);
    EXPECT_TRUE(memory->AtEnd());
}

TEST_F(PersistentDictionaryRecordTest, RecordThatYieldsNoObjectLeavesAnEarlierEntry)
{
    std::string const entry = std::string(kSevenNative).substr(12);
    Read("02 00 00 00 " + entry +
         "01 00 00 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 00 00 00 00 00 00 00 00");
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(IntUnder(1), 7);
}

TEST_F(PersistentDictionaryRecordTest, CountBeyondTheDataEndsWithTheData)
{
    std::string const entry = std::string(kSevenNative).substr(12);
    Read("FF FF FF FF " + entry);
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(IntUnder(1), 7);
    EXPECT_TRUE(memory->AtEnd());
}

TEST_F(PersistentDictionaryRecordTest, EveryTypeRoundTrips)
{
    unsigned char const bytes[] = {0, 1, 255};
    UniChar const units[] = {0x1234, 0xD800};
    GUID const id{0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
    dictionary->Put(1, static_cast<signed char>(-1));
    dictionary->Put(2, static_cast<unsigned char>(255));
    dictionary->Put(3, static_cast<short>(-2));
    dictionary->Put(4, static_cast<unsigned short>(65534));
    dictionary->Put(5, -3);
    dictionary->Put(6, 4294967293u);
    dictionary->Put(7, -4LL);
    dictionary->Put(8, 18446744073709551612ULL);
    dictionary->Put(9, 0.5f);
    dictionary->Put(10, -0.25);
    dictionary->Put(11, id);
    dictionary->Put(12, bytes, 3);
    dictionary->Put(13, units, 2);
    auto const strings = MakeStrings();
    strings->Put(CoreString(u"a"), CoreString(u"xy"));
    dictionary->Put(14, strings.Get());
    for (auto const endian : {kNative, kReversed})
    {
        SCOPED_TRACE(endian);
        auto const loaded = Load<IDictionary>(endian, RecordOf(endian, *dictionary));
        ASSERT_TRUE(loaded);
        EXPECT_EQ(loaded->Size(), 14u);
        signed char s8 = 0;
        unsigned char u8 = 0;
        short s16 = 0;
        unsigned short u16 = 0;
        int s32 = 0;
        unsigned int u32 = 0;
        long long s64 = 0;
        unsigned long long u64 = 0;
        float f32 = 0;
        double f64 = 0;
        EXPECT_EQ(loaded->Get(1, s8) | loaded->Get(2, u8) | loaded->Get(3, s16) | loaded->Get(4, u16) |
                      loaded->Get(5, s32) | loaded->Get(6, u32) | loaded->Get(7, s64) | loaded->Get(8, u64) |
                      loaded->Get(9, f32) | loaded->Get(10, f64),
                  0);
        EXPECT_EQ(s8, -1);
        EXPECT_EQ(u8, 255);
        EXPECT_EQ(s16, -2);
        EXPECT_EQ(u16, 65534);
        EXPECT_EQ(s32, -3);
        EXPECT_EQ(u32, 4294967293u);
        EXPECT_EQ(s64, -4);
        EXPECT_EQ(u64, 18446744073709551612ULL);
        EXPECT_EQ(f32, 0.5f);
        EXPECT_EQ(f64, -0.25);
        GUID foundId{};
        EXPECT_EQ(loaded->Get(11, foundId), 0);
        EXPECT_EQ(foundId, id);
        unsigned char const* data = nullptr;
        int length = 0;
        ASSERT_EQ(loaded->Get(12, &data, length), 0);
        EXPECT_EQ(ToHex(Bytes(data, data + length)), "00 01 FF");
        UniChar const* foundUnits = nullptr;
        ASSERT_EQ(loaded->Get(13, &foundUnits, length), 0);
        EXPECT_EQ(std::u16string(foundUnits, static_cast<std::size_t>(length)), u"\x1234\xD800");
        auto* const foundStrings = dynamic_cast<IStringDictionary*>(loaded->Get(14));
        ASSERT_TRUE(foundStrings);
        CoreString text;
        EXPECT_TRUE(foundStrings->Get(CoreString(u"a"), text));
        EXPECT_EQ(text, CoreString(u"xy"));
    }
}
} // namespace
} // namespace KORVA
