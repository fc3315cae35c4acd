// Aggregates that come back with their object, and registries that fail.
#include "Serialization.h"

#include <stdexcept>

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kScripted[] = " 0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08 ";
constexpr char kUnknown[] = " 0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 09 ";
constexpr char kStringsRecord[] =
    " 56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53 "
    "16 00 00 00 00 00 00 00  01 00 00 00 02 00 00 00 61 00 04 00 00 00 78 00 79 00 "
    "00 00 00 00";
constexpr char kScriptedRecord[] =
    " 0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08  04 00 00 00 00 00 00 00 "
    "00 00 00 00";

constexpr GUID kFirstId{1, 2, 1, {}};
constexpr char kFirst[] = " 01 00 00 00 02 00 01 00 00 00 00 00 00 00 00 00 ";
constexpr GUID kSecondId{1, 1, 2, {}};
constexpr char kSecond[] = " 01 00 00 00 01 00 02 00 00 00 00 00 00 00 00 00 ";

class ObjectRecordAggregatesTest : public SerializationTest
{
protected:
    static IObject* Aggregated(IObject& object, GUID const& id)
    {
        IObject* found = nullptr;
        static_cast<void>(object.QueryInterface(id, &found));
        return found;
    }

    static std::string ValueUnderA(IObject* object)
    {
        auto* const strings = dynamic_cast<IStringDictionary*>(object);
        CoreString value;
        return strings && strings->Get(CoreString(u"a"), value) ? value.ToUTF8() : "nothing";
    }
};

TEST_F(ObjectRecordAggregatesTest, ComeBackUnderTheirKeys)
{
    auto object = Load(kNative, Hex(std::string(kScripted) + "6E 00 00 00 00 00 00 00  02 00 00 00" + kFirst +
                                    kStringsRecord + kSecond + kScriptedRecord));
    ASSERT_TRUE(object);
    // Its own adapter is the third.
    EXPECT_EQ(object->GetAggregates().size(), 3u);
    IObject* const strings = Aggregated(*object, kFirstId);
    ASSERT_TRUE(strings);
    EXPECT_EQ(References(*strings), 1);
    EXPECT_EQ(ValueUnderA(strings), "xy");
    IObject* const scripted = Aggregated(*object, kSecondId);
    ASSERT_TRUE(scripted);
    EXPECT_EQ(References(*scripted), 1);
    EXPECT_EQ(Scripted::sAlive, 2);
    object.Reset();
    EXPECT_EQ(Scripted::sAlive, 0);
}

TEST_F(ObjectRecordAggregatesTest, AreReadFromTheProviderThatTheBodyLeavesToTheStream)
{
    Bytes content = Hex(std::string(kScripted) + "44 00 00 00 00 00 00 00");
    content.resize(content.size() + 0x44);
    auto const other = MakeMemory(
        kNative, Hex("02 00 00 00" + std::string(kFirst) + kScriptedRecord + kSecond + kScriptedRecord));
    // The stream alone holds the first provider, which dies with the exchange.
    auto const stream = MakeStream(*MakeMemory(kNative, content));
    Scripted::sOnRead = [&](IDataProviderStream& reading) {
        EXPECT_EQ(Scripted::sReads == 1 ? reading.Init(*other) : 0, 0);
    };
    auto const object = ReadObject(*stream);
    ASSERT_TRUE(object);
    // Its own adapter is the third.
    EXPECT_EQ(object->GetAggregates().size(), 3u);
    // Where the record would end, on the one that the stream has now.
    EXPECT_EQ(other->GetPosition(), 24 + 0x44);
}

TEST_F(ObjectRecordAggregatesTest, RoundTrip)
{
    for (auto const endian : {kNative, kReversed})
    {
        auto const object = Make<Scripted>();
        auto const strings = MakeStrings();
        strings->Put(CoreString(u"a"), CoreString(u"xy"));
        object->Aggregate(strings.Get(), kSecondId);
        auto const loaded = Load(endian, RecordOf(endian, *object));
        ASSERT_TRUE(loaded);
        EXPECT_EQ(ValueUnderA(Aggregated(*loaded, kSecondId)), "xy");
    }
}

TEST_F(ObjectRecordAggregatesTest, ReplaceThoseOfTheConstructorKeyByKey)
{
    Scripted::sOnCreate = [](Scripted& object) {
        object.Aggregate(Make<Plain>().Get(), kFirstId);
        object.Aggregate(Make<Plain>().Get(), kSecondId);
    };
    auto const object = Load(kNative, Hex(std::string(kScripted) + "42 00 00 00 00 00 00 00  01 00 00 00" +
                                          kFirst + kStringsRecord));
    ASSERT_TRUE(object);
    EXPECT_EQ(Plain::sAlive, 1);
    EXPECT_EQ(ValueUnderA(Aggregated(*object, kFirstId)), "xy");
    EXPECT_EQ(References(*Aggregated(*object, kFirstId)), 1);
    EXPECT_TRUE(dynamic_cast<Plain*>(Aggregated(*object, kSecondId)));
    EXPECT_EQ(object->GetAggregates().size(), 3u);
}

TEST_F(ObjectRecordAggregatesTest, LaterEntryUnderOneKeyReplacesTheEarlier)
{
    auto const object = Load(kNative, Hex(std::string(kScripted) + "6E 00 00 00 00 00 00 00  02 00 00 00" +
                                          kFirst + kScriptedRecord + kFirst + kStringsRecord));
    ASSERT_TRUE(object);
    EXPECT_EQ(Scripted::sAlive, 1);
    EXPECT_EQ(ValueUnderA(Aggregated(*object, kFirstId)), "xy");
}

TEST_F(ObjectRecordAggregatesTest, EntriesThatYieldNoObjectAreSkipped)
{
    Scripted::sOnCreate = [](Scripted& object) { object.Aggregate(Make<Plain>().Get(), kFirstId); };
    auto const object =
        Load(kNative, Hex(std::string(kScripted) + "6E 00 00 00 00 00 00 00  02 00 00 00" + kFirst +
                          kUnknown + "04 00 00 00 00 00 00 00 01 02 03 04" + kSecond + kStringsRecord));
    ASSERT_TRUE(object);
    EXPECT_TRUE(dynamic_cast<Plain*>(Aggregated(*object, kFirstId)));
    EXPECT_EQ(ValueUnderA(Aggregated(*object, kSecondId)), "xy");
}

TEST_F(ObjectRecordAggregatesTest, NegativeCountHasNoEntries)
{
    auto const memory =
        MakeMemory(Hex(std::string(kScripted) + "04 00 00 00 00 00 00 00  FF FF FF FF" + kFirst));
    auto const object = ReadObject(*MakeStream(*memory));
    ASSERT_TRUE(object);
    EXPECT_EQ(memory->GetPosition(), 28);
    EXPECT_EQ(object->GetAggregates().size(), 1u);
}

TEST_F(ObjectRecordAggregatesTest, CountBeyondTheDataEndsWithTheData)
{
    auto const memory = MakeMemory(
        Hex(std::string(kScripted) + "42 00 00 00 00 00 00 00  FF FF FF 7F" + kFirst + kStringsRecord));
    auto const object = ReadObject(*MakeStream(*memory));
    ASSERT_TRUE(object);
    EXPECT_EQ(ValueUnderA(Aggregated(*object, kFirstId)), "xy");
    EXPECT_EQ(memory->GetPosition(), 90);
}

// A file may say so, but then the object could not be written any more, or would be written as another.
TEST_F(ObjectRecordAggregatesTest, NeverReplaceThePersistenceOfTheObject)
{
    for (char const* const id : {" 6D E8 44 CC 86 A5 B2 41 A2 28 56 73 C9 2E AB 19 ",
                                 " AA 2B 81 B2 98 E8 48 45 9B 88 9B 0C 6D 97 A9 66 "})
    {
        SCOPED_TRACE(id);
        Scripted::sOnWrite = nullptr;
        auto const memory = MakeMemory(
            Hex(std::string(kScripted) + "42 00 00 00 00 00 00 00  01 00 00 00" + id + kStringsRecord));
        auto const object = ReadObject(*MakeStream(*memory));
        ASSERT_TRUE(object);
        EXPECT_TRUE(memory->AtEnd());
        EXPECT_EQ(PersistenceOf(*object)->GetObj(), object.Get());
        EXPECT_EQ(object->QueryInterface(IO::IPERSISTENT_DATA_EX, nullptr), -1004);
        Scripted::sOnWrite = [](IDataProviderStream& stream) { stream << static_cast<short>(5); };
        EXPECT_EQ(RecordOf(kNative, *object),
                  Hex(std::string(kScripted) + "06 00 00 00 00 00 00 00 05 00 00 00 00 00"));
    }
}

TEST_F(ObjectRecordAggregatesTest, EntryWhoseBodyThrowsIsSkipped)
{
    // The first body read is the outer one.
    int bodies = 0;
    Scripted::sOnRead = [&bodies](IDataProviderStream&) {
        if (++bodies == 2)
            throw std::runtime_error("second");
    };
    auto const object =
        Load(kNative, Hex(std::string(kScripted) + "34 00 00 00 00 00 00 00  01 00 00 00" + kFirst +
                          kScripted + "08 00 00 00 00 00 00 00 01 02 03 04 05 06 07 08"));
    EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
    ASSERT_TRUE(object);
    EXPECT_EQ(Scripted::sAlive, 1);
    EXPECT_EQ(Aggregated(*object, kFirstId), nullptr);
}

/// Answers what the test says.
class FakeRegistry final : public TObject<COREREGISTRY::ICoreRegistry>
{
public:
    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        if (throws)
            throw std::runtime_error("registry");
        asked.push_back(classId);
        *out = makes ? new Scripted : nullptr;
        return result;
    }
    int RegisterFactory(IClassFactory*) override { return 0; }
    int UnregisterFactory(IClassFactory*) override { return 0; }

    bool throws = false;
    bool makes = false;
    ErrCode result = 0;
    std::vector<GUID> asked;
};

class ObjectRecordRegistryTest : public ObjectRecordAggregatesTest
{
protected:
    ~ObjectRecordRegistryTest() override { COREREGISTRY::InstallCoreRegistry(Registry()); }

    TInterfacePtr<IDataProvider> const memory =
        MakeMemory(Hex(std::string(kScripted) + "06 00 00 00 00 00 00 00 00 00 00 00 00 00"));
    TInterfacePtr<IDataProviderStream> const stream = MakeStream(*memory);
    TInterfacePtr<FakeRegistry> const registry = Make<FakeRegistry>();
};

TEST_F(ObjectRecordRegistryTest, MissingCostsTheRecord)
{
    COREREGISTRY::InstallCoreRegistry(nullptr);
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(memory->GetPosition(), 30);
}

TEST_F(ObjectRecordRegistryTest, IsAskedForTheClassOfTheRecord)
{
    registry->makes = true;
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(log.Take(),
              (std::vector<Logged>{{kStreamSource, kReading, 361,
                                    "Incorrect dp position after read an IObject, currently at 28 "
                                    "should be 30"}}));
    EXPECT_EQ(registry->asked, std::vector<GUID>{kScriptedId});
}

TEST_F(ObjectRecordRegistryTest, SuccessWithoutAnObjectCostsTheRecord)
{
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(memory->GetPosition(), 30);
}

TEST_F(ObjectRecordRegistryTest, FailureWithAnObjectReleasesIt)
{
    registry->makes = true;
    registry->result = -1004;
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(Scripted::sAlive, 0);
    EXPECT_EQ(Scripted::sReads, 0);
    EXPECT_EQ(memory->GetPosition(), 30);
}

TEST_F(ObjectRecordRegistryTest, ExceptionPassesThrough)
{
    registry->throws = true;
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    IObject* object = nullptr;
    EXPECT_THROW(*stream >> &object, std::runtime_error);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(memory->GetPosition(), 24);
}
} // namespace
} // namespace KORVA
