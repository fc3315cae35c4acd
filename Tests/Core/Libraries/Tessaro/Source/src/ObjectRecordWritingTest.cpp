// Object records as they are written.
#include "Serialization.h"

#include <set>
#include <stdexcept>

namespace KORVA
{
namespace
{
using namespace TESTS;

// The class ids as a native and as a reversed provider hold them.
constexpr char kScripted[] = "0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08";
constexpr char kScriptedReversed[] = "0A 0B 0C 0D 0E 0F 10 11 01 02 03 04 05 06 07 08";
constexpr char kValue[] = "21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05";
constexpr char kValueReversed[] = "73 E9 0C 21 BB C6 43 26 82 41 9B B4 25 0B 1B 05";
constexpr char kStrings[] = "56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53";

std::string Join(std::initializer_list<char const*> parts)
{
    std::string joined;
    for (char const* const part : parts)
        joined += std::string(joined.empty() ? "" : " ") + part;
    return joined;
}

class ObjectRecordWritingTest : public SerializationTest
{
protected:
    static TInterfacePtr<IObject> MakeSeven()
    {
        auto const dictionary = MakeDictionary();
        dictionary->Put(1, 7);
        TInterfacePtr<IObject> value;
        value.Share(dictionary->Get(1));
        return value;
    }
};

TEST_F(ObjectRecordWritingTest, ValueSeven)
{
    auto const value = MakeSeven();
    EXPECT_EQ(ToHex(RecordOf(kNative, *value)),
              Join({kValue, "18 00 00 00 00 00 00 00",
                    "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40", "00 00 00 00"}));
    EXPECT_EQ(ToHex(RecordOf(kReversed, *value)),
              Join({kValueReversed, "00 00 00 00 00 00 00 18",
                    "53 33 32 56 00 00 00 00 00 00 00 07 40 1C 00 00 00 00 00 00", "00 00 00 00"}));
}

TEST_F(ObjectRecordWritingTest, AnswersTheStreamAndTakesNoReference)
{
    auto const value = MakeSeven();
    auto const memory = MakeMemory();
    auto const stream = MakeStream(*memory);
    EXPECT_EQ(&(*stream << *value), stream.Get());
    EXPECT_EQ(References(*value), 1);
    EXPECT_EQ(References(*PersistenceOf(*value)), 2) << "the table's and the test's own";
}

TEST_F(ObjectRecordWritingTest, EmptyBodyIsFollowedByTheAggregateCount)
{
    auto const object = Make<Scripted>();
    EXPECT_EQ(ToHex(RecordOf(kNative, *object)), Join({kScripted, "04 00 00 00 00 00 00 00", "00 00 00 00"}));
}

// Not at the start of the data, and over bytes that are there already.
TEST_F(ObjectRecordWritingTest, LengthIsPatchedWhereTheRecordStands)
{
    Scripted::sOnWrite = [](IDataProviderStream& stream) { stream << 0x11223344; };
    auto const object = Make<Scripted>();
    auto const memory = MakeMemory(kReversed, Bytes(40, 0xEE));
    ASSERT_EQ(memory->SetPosition(3, IDataProvider::kFromStart), 0);
    auto const stream = MakeStream(*memory);
    *stream << *object << static_cast<unsigned char>(0x5A);
    EXPECT_EQ(ToHex(BytesOf(*memory)), Join({"EE EE EE", kScriptedReversed, "00 00 00 00 00 00 00 08",
                                             "11 22 33 44", "00 00 00 00", "5A EE EE EE EE"}));
    EXPECT_EQ(memory->GetPosition(), 36);
}

TEST_F(ObjectRecordWritingTest, ObjectWithoutPersistenceWritesNothing)
{
    auto const object = Make<Plain>();
    auto const memory = MakeMemory();
    *MakeStream(*memory) << *object;
    EXPECT_EQ(log.Take(), (std::vector<Logged>{
                              {kStreamSource, kWriting, 452,
                               "Trying to save an IObject that doesn't have the persistent interface."}}));
    EXPECT_EQ(memory->Size(), 0);
}

TEST_F(ObjectRecordWritingTest, BodyThatThrowsAtOnceLeavesLengthZero)
{
    Scripted::sOnWrite = [](IDataProviderStream&) { throw std::runtime_error("body"); };
    auto const object = Make<Scripted>();
    auto const memory = MakeMemory();
    *MakeStream(*memory) << *object << static_cast<unsigned char>(0x5A);
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    EXPECT_EQ(ToHex(BytesOf(*memory)), Join({kScripted, "00 00 00 00 00 00 00 00", "5A"}));
}

TEST_F(ObjectRecordWritingTest, BodyThatThrowsLaterIsKeptUpToThere)
{
    // Not an exception of the standard library: any will do.
    Scripted::sOnWrite = [](IDataProviderStream& stream) {
        stream << static_cast<short>(9);
        throw 5;
    };
    auto const object = Make<Scripted>();
    auto const memory = MakeMemory();
    *MakeStream(*memory) << *object << static_cast<unsigned char>(0x5A);
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    EXPECT_EQ(ToHex(BytesOf(*memory)), Join({kScripted, "02 00 00 00 00 00 00 00", "09 00", "5A"}));
}

TEST_F(ObjectRecordWritingTest, InnerBodyThatThrowsCostsTheInnerRecordOnly)
{
    Scripted::sOnWrite = [](IDataProviderStream&) { throw std::runtime_error("body"); };
    auto const dictionary = MakeDictionary();
    dictionary->Put(1, Make<Scripted>().Get());
    dictionary->Put(2, 7);
    Bytes const bytes = RecordOf(kNative, *dictionary);
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    EXPECT_EQ(ToHex(bytes),
              Join({"D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05", "58 00 00 00 00 00 00 00",
                    "02 00 00 00", "01 00 00 00", kScripted, "00 00 00 00 00 00 00 00", "02 00 00 00", kValue,
                    "18 00 00 00 00 00 00 00", "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40",
                    "00 00 00 00", "00 00 00 00"}));
}

// Word 1 of the first id is 0x00010002, of the second 0x00020001: the text order is the other way round.
constexpr GUID kFirstId{1, 2, 1, {}};
constexpr GUID kSecondId{1, 1, 2, {}};
// After the object's own adapter in the table.
constexpr GUID kLastId{0xFFFFFFFF, 0, 0, {9, 0, 0, 0, 0, 0, 0, 0}};

TEST_F(ObjectRecordWritingTest, PersistentAggregatesFollowInTheOrderOfTheTable)
{
    auto const object = Make<Scripted>();
    object->Aggregate(Make<Scripted>().Get(), kLastId);
    object->Aggregate(MakeStrings().Get(), kSecondId);
    object->Aggregate(MakeSeven().Get(), kFirstId);
    object->Aggregate(Make<Plain>().Get(), GUID{2, 0, 0, {}});
    EXPECT_EQ(ToHex(RecordOf(kNative, *object)),
              Join({kScripted, "A0 00 00 00 00 00 00 00", "03 00 00 00",
                    "01 00 00 00 02 00 01 00 00 00 00 00 00 00 00 00", kValue, "18 00 00 00 00 00 00 00",
                    "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40", "00 00 00 00",
                    "01 00 00 00 01 00 02 00 00 00 00 00 00 00 00 00", kStrings, "08 00 00 00 00 00 00 00",
                    "00 00 00 00", "00 00 00 00", "FF FF FF FF 00 00 00 00 09 00 00 00 00 00 00 00",
                    kScripted, "04 00 00 00 00 00 00 00", "00 00 00 00"}));
}

TEST_F(ObjectRecordWritingTest, AggregatesThroughAReversedProvider)
{
    auto const object = Make<Scripted>();
    object->Aggregate(Make<Scripted>().Get(), GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}});
    EXPECT_EQ(ToHex(RecordOf(kReversed, *object)),
              Join({kScriptedReversed, "00 00 00 00 00 00 00 30", "00 00 00 01",
                    "00 00 00 01 00 02 00 03 04 05 06 07 08 09 0A 0B", kScriptedReversed,
                    "00 00 00 00 00 00 00 04", "00 00 00 00"}));
}

TEST_F(ObjectRecordWritingTest, AggregatesWithoutPersistenceAreNotCounted)
{
    auto const object = Make<Scripted>();
    object->Aggregate(Make<Plain>().Get(), kFirstId);
    object->Aggregate(Make<Plain>().Get(), kSecondId);
    EXPECT_EQ(ToHex(RecordOf(kNative, *object)), Join({kScripted, "04 00 00 00 00 00 00 00", "00 00 00 00"}));
}

TEST_F(ObjectRecordWritingTest, AggregatesOfAggregatesAreWritten)
{
    auto const inner = Make<Scripted>();
    inner->Aggregate(Make<Scripted>().Get(), kSecondId);
    auto const outer = Make<Scripted>();
    outer->Aggregate(inner.Get(), kFirstId);
    EXPECT_EQ(ToHex(RecordOf(kNative, *outer)),
              Join({kScripted, "5C 00 00 00 00 00 00 00", "01 00 00 00",
                    "01 00 00 00 02 00 01 00 00 00 00 00 00 00 00 00", kScripted, "30 00 00 00 00 00 00 00",
                    "01 00 00 00", "01 00 00 00 01 00 02 00 00 00 00 00 00 00 00 00", kScripted,
                    "04 00 00 00 00 00 00 00", "00 00 00 00"}));
}

/// Can't even be asked.
class Silent final : public TObject<IObject>
{
public:
    ErrCode QueryInterface(GUID const&, IObject**) const override { throw std::runtime_error("question"); }
};

TEST_F(ObjectRecordWritingTest, ExceptionAmongTheAggregatesKeepsWhatWasWrittenUncounted)
{
    auto const object = Make<Scripted>();
    object->Aggregate(Make<Scripted>().Get(), kFirstId);
    object->Aggregate(Make<Silent>().Get(), kSecondId);
    auto const memory = MakeMemory();
    *MakeStream(*memory) << *object << static_cast<unsigned char>(0x5A);
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    EXPECT_EQ(ToHex(BytesOf(*memory)), Join({kScripted, "30 00 00 00 00 00 00 00", "00 00 00 00",
                                             "01 00 00 00 02 00 01 00 00 00 00 00 00 00 00 00", kScripted,
                                             "04 00 00 00 00 00 00 00", "00 00 00 00", "5A"}));
}

TEST_F(ObjectRecordWritingTest, ExceptionBeforeTheClassIdPassesThrough)
{
    auto const object = Make<Silent>();
    auto const memory = MakeMemory();
    auto const stream = MakeStream(*memory);
    EXPECT_THROW(*stream << *object, std::runtime_error);
    EXPECT_EQ(memory->Size(), 0);
}

// The adapter stands for an outside class that picks its class id by the stream.
class ChoosingAdapter final : public TObject<IO::IPersistentDataEx>
{
public:
    explicit ChoosingAdapter(IObject& object) : mObject(&object) {}

    IObject* GetObj() const override { return mObject; }
    IDataProviderStream& Read(IDataProviderStream& stream) override { return stream; }
    IDataProviderStream& Write(IDataProviderStream& stream) const override
    {
        return stream << static_cast<unsigned short>(0xEEEE);
    }
    GUID const& GetUID() const override { return IO::IID_STRING_DICTIONARY; }
    GUID GetUIDFor(IDataProviderStream& stream) override
    {
        asked = &stream;
        return kScriptedId;
    }

    IDataProviderStream* asked = nullptr;

private:
    IObject* mObject;
};

TEST_F(ObjectRecordWritingTest, ExtendedInterfaceIsPreferred)
{
    Scripted::sOnWrite = [](IDataProviderStream& stream) { stream << static_cast<unsigned short>(0x1111); };
    auto const object = Make<Scripted>();
    TInterfacePtr<ChoosingAdapter> adapter;
    adapter.Adopt(new ChoosingAdapter(*object));
    object->Aggregate(adapter.Get(), IO::IPERSISTENT_DATA_EX);
    auto const memory = MakeMemory();
    auto const stream = MakeStream(*memory);
    *stream << *object;
    EXPECT_EQ(ToHex(BytesOf(*memory)), Join({kScripted, "06 00 00 00 00 00 00 00", "EE EE", "00 00 00 00"}));
    EXPECT_EQ(adapter->asked, stream.Get());
    EXPECT_EQ(References(*adapter), 2);

    // Reading knows nothing of the extended interface.
    ASSERT_EQ(memory->SetPosition(0, IDataProvider::kFromStart), 0);
    unsigned short found = 0;
    Scripted::sOnRead = [&found](IDataProviderStream& body) { body >> found; };
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(found, 0xEEEE);
}

TEST_F(ObjectRecordWritingTest, ExtendedInterfaceAloneSuffices)
{
    auto const object = Make<Plain>();
    TInterfacePtr<ChoosingAdapter> adapter;
    adapter.Adopt(new ChoosingAdapter(*object));
    object->Aggregate(adapter.Get(), IO::IPERSISTENT_DATA_EX);
    EXPECT_EQ(ToHex(RecordOf(kNative, *object)),
              Join({kScripted, "06 00 00 00 00 00 00 00", "EE EE", "00 00 00 00"}));

    // As an aggregate such an object is not asked for the extended interface.
    auto const owner = Make<Scripted>();
    owner->Aggregate(object.Get(), kFirstId);
    EXPECT_EQ(ToHex(RecordOf(kNative, *owner)), Join({kScripted, "04 00 00 00 00 00 00 00", "00 00 00 00"}));
}

TEST_F(ObjectRecordWritingTest, UsesNoOtherOperationOfTheProvider)
{
    auto const provider = Make<RecordingProvider>();
    auto const object = Make<Scripted>();
    object->Aggregate(MakeSeven().Get(), kFirstId);
    *MakeStream(*provider) << *object;
    std::set<std::string> const expected = {"GetPosition",
                                            "IsNative",
                                            "Write 1",
                                            "Write 2",
                                            "Write 4",
                                            "Write 8",
                                            "SetPosition 16 from 0",
                                            "SetPosition 24 from 0",
                                            "SetPosition 60 from 0",
                                            "SetPosition 92 from 0"};
    EXPECT_EQ(std::set<std::string>(provider->calls.begin(), provider->calls.end()), expected);
}

TEST_F(ObjectRecordWritingTest, OfOneObjectCallByCall)
{
    auto const provider = Make<RecordingProvider>();
    *MakeStream(*provider) << *Make<Scripted>();
    EXPECT_EQ(provider->calls, (std::vector<std::string>{"IsNative",
                                                         "Write 4",
                                                         "IsNative",
                                                         "Write 2",
                                                         "IsNative",
                                                         "Write 2",
                                                         "Write 1",
                                                         "Write 1",
                                                         "Write 1",
                                                         "Write 1",
                                                         "Write 1",
                                                         "Write 1",
                                                         "Write 1",
                                                         "Write 1", // class id
                                                         "GetPosition",
                                                         "IsNative",
                                                         "Write 8", // placeholder of the length
                                                         "GetPosition",
                                                         "IsNative",
                                                         "Write 4",     // placeholder of the count
                                                         "GetPosition", // how long it became
                                                         "GetPosition",
                                                         "SetPosition 16 from 0",
                                                         "IsNative",
                                                         "Write 8",
                                                         "SetPosition 28 from 0"}));
}

struct AdapterRow
{
    char const* name;
    GUID id;
};

AdapterRow const kAdapters[] = {
    {"Value", {0x73E90C21, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}}},
    {"Dictionary", {0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}}},
    {"Strings", {0xCD210A56, 0x284C, 0x4B7C, {0x81, 0x3F, 0x42, 0xAD, 0xDF, 0x77, 0x48, 0x53}}},
    {"URI", {0x2517B49E, 0xBCE5, 0x404C, {0x85, 0x24, 0x3A, 0x6E, 0xC3, 0xC3, 0xB6, 0x33}}},
};

using AdapterTest = SerializationTestWith<AdapterRow>;

TEST_P(AdapterTest, BelongsToTheTableAndBorrowsItsObject)
{
    auto const object = CreateObject<IObject>(GetParam().id);
    ASSERT_TRUE(object);
    EXPECT_EQ(References(*object), 1);
    ASSERT_EQ(object->GetAggregates().size(), 1u);
    GUID const persistence{0xCC44E86D, 0xA586, 0x41B2, {0xA2, 0x28, 0x56, 0x73, 0xC9, 0x2E, 0xAB, 0x19}};
    EXPECT_EQ(object->GetAggregates().begin()->first, persistence);

    auto adapter = PersistenceOf(*object);
    EXPECT_EQ(References(*adapter), 2);
    EXPECT_EQ(adapter->GetObj(), object.Get());
    EXPECT_EQ(References(*object), 1);
    EXPECT_EQ(adapter->GetUID(), GetParam().id);
    EXPECT_TRUE(adapter->GetAggregates().empty());

    object->ClearAggregates();
    EXPECT_EQ(References(*adapter), 1);
    EXPECT_EQ(object->QueryInterface(persistence, nullptr), -1004);
}

TEST_P(AdapterTest, AnswersTheStreamThatItWasGiven)
{
    auto const object = CreateObject<IObject>(GetParam().id);
    auto const memory = MakeMemory();
    auto const stream = MakeStream(*memory);
    EXPECT_EQ(&PersistenceOf(*object)->Write(*stream), stream.Get());
    ASSERT_EQ(memory->SetPosition(0, IDataProvider::kFromStart), 0);
    EXPECT_EQ(&PersistenceOf(*object)->Read(*stream), stream.Get());
    EXPECT_TRUE(memory->AtEnd());
}

INSTANTIATE_TEST_SUITE_P(PersistentData, AdapterTest, ::testing::ValuesIn(kAdapters), RowName());
} // namespace
} // namespace KORVA
