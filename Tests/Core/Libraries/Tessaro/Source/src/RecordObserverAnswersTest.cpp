// What an observer makes of unknown classes, how long it lives, and what becomes of what it throws.
#include "RecordTeller.h"
#include <tessio/TessIO/IDataProviderStreamStatus.h>

#include <map>
#include <new>
#include <stdexcept>

namespace KORVA
{
namespace
{
using namespace TESTS;
using IO::RecordChoice;
using IO::RecordDirection;
using IO::RecordEvent;
using IO::UnknownClass;
using Lines = std::vector<std::string>;

constexpr char kUnknown[] = "66 66 66 66 66 66 66 66 66 66 66 66 66 66 66 66 ";
constexpr char kDictionary[] = "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 ";
constexpr char kScripted[] = "0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08 ";
constexpr char kEight[] = "08 00 00 00 00 00 00 00 ";
constexpr GUID kOtherId{9, 0, 0, {}};

std::string const kUnknownRecord = std::string(kUnknown) + kEight + "07 00 00 00 00 00 00 00 ";

using RecordObserverAnswersTest = RecordObserverTest;

TEST_F(RecordObserverAnswersTest, ObjectReadsTheRecordInPlaceOfAnUnknownOne)
{
    provider->bytes = Hex(kUnknownRecord);
    int found = 0;
    Scripted::sOnRead = [&found](IDataProviderStream& body) { body >> found; };
    teller->onUnknown = [](RecordEvent const&, IDataProviderStream& body, IObject** object) {
        // Looks into the body first; the stream goes back.
        int number = 0;
        body >> number;
        *object = new Scripted;
        return UnknownClass::kRead;
    };
    Observe();
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(found, 7);
    EXPECT_EQ(teller->told.back(),
              "end read {66666666-6666-6666-6666-666666666666} depth 0 place 0 length 8 at "
              "32 move 0 done object");
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(RecordObserverAnswersTest, ObjectStandsForTheRecordAsItIs)
{
    provider->bytes = Hex(kUnknownRecord + kUnknownRecord);
    IObject* given = nullptr;
    teller->onUnknown = [&given](RecordEvent const&, IDataProviderStream&, IObject** object) {
        *object = given = new Plain;
        return UnknownClass::kKeep;
    };
    Observe();
    auto const object = ReadObject(*stream);
    ASSERT_TRUE(object);
    EXPECT_EQ(object.Get(), given);
    EXPECT_EQ(References(*object), 1);
    EXPECT_EQ(provider->position, 32u);
    EXPECT_EQ(teller->told.back(),
              "end read {66666666-6666-6666-6666-666666666666} depth 0 place 0 length 8 at "
              "24 move 0 kept object");
    EXPECT_EQ(log.Take(), kNothing);
}

struct SkipRow
{
    char const* name;
    UnknownClass (*answer)(IObject** object);
    bool hasRunOutOfMemory;
};

SkipRow const kSkips[] = {
    {"Skip", [](IObject**) { return UnknownClass::kSkip; }, false},
    {"SkipWithAnObject",
     [](IObject** object) {
         *object = new Plain;
         return UnknownClass::kSkip;
     },
     false},
    {"ReadWithoutAnObject", [](IObject**) { return UnknownClass::kRead; }, false},
    {"KeepWithoutAnObject", [](IObject**) { return UnknownClass::kKeep; }, false},
    {"NumberThatNobodyKnows",
     [](IObject** object) {
         *object = new Plain;
         return UnknownClass{77};
     },
     false},
    {"Throws",
     [](IObject** object) -> UnknownClass {
         *object = new Plain;
         throw std::runtime_error("observer");
     },
     false},
    {"FindsNoMemory", [](IObject**) -> UnknownClass { throw std::bad_alloc(); }, true},
};

class RecordSkipTest : public RecordObserverTest, public ::testing::WithParamInterface<SkipRow>
{
};

TEST_P(RecordSkipTest, GivesNoObjectAndCostsTheRecordAlone)
{
    provider->bytes = Hex(kUnknownRecord + kScripted + "00 00 00 00 00 00 00 00");
    teller->onUnknown = [](RecordEvent const&, IDataProviderStream&, IObject** object) {
        return GetParam().answer(object);
    };
    Observe();
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(Plain::sAlive, 0);
    EXPECT_EQ(teller->told.back(),
              "end read {66666666-6666-6666-6666-666666666666} depth 0 place 0 length 8 at "
              "24 move 0 unknown class");
    EXPECT_EQ(dynamic_cast<IO::IDataProviderStreamStatus&>(*stream).HasRunOutOfMemory(),
              GetParam().hasRunOutOfMemory);
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), kNothing);
}

INSTANTIATE_TEST_SUITE_P(RecordObserver, RecordSkipTest, ::testing::ValuesIn(kSkips), RowName());

TEST_F(RecordObserverAnswersTest, ObjectWithoutPersistenceCanNotReadTheRecord)
{
    provider->bytes = Hex(kUnknownRecord);
    teller->onUnknown = [](RecordEvent const&, IDataProviderStream&, IObject** object) {
        *object = new Plain;
        return UnknownClass::kRead;
    };
    Observe();
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(Plain::sAlive, 0);
    EXPECT_TRUE(teller->told.back().ends_with("not persistent"));
}

TEST_F(RecordObserverAnswersTest, WhatItThrowsChangesNothing)
{
    provider->bytes = Hex(std::string(kScripted) + kEight + "00 00 00 00 00 00 00 00");
    Scripted::sOnRead = [](IDataProviderStream& body) {
        int number = 0;
        body >> number;
    };
    teller->onBegin = teller->onEnd = [](RecordEvent const&) { throw std::runtime_error("observer"); };
    Observe();
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(teller->Take().size(), 2u);
    provider->position = 0;
    provider->bytes.clear();
    *stream << *Make<Scripted>();
    EXPECT_EQ(ToHex(provider->bytes), std::string(kScripted) + "04 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(teller->Take().size(), 2u);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(RecordObserverAnswersTest, IsSharedUntilItsRecordHasEnded)
{
    provider->bytes = Hex(std::string(kScripted) + kEight + "07 00 00 00 00 00 00 00");
    Observe();
    RecordTeller* const observer = teller.Get();
    teller.Reset();
    bool hasEnded = false;
    observer->onEnd = [&hasEnded](RecordEvent const&) {
        EXPECT_EQ(RecordTeller::sAlive, 1);
        hasEnded = true;
    };
    Scripted::sOnRead = [](IDataProviderStream& body) {
        int number = 0;
        body.UnAggregate(IO::IID_RECORD_OBSERVER);
        body >> number;
    };
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(RecordTeller::sAlive, 0);
}

TEST_F(RecordObserverAnswersTest, EachRecordStaysWithTheOneWithWhichItBegan)
{
    auto const inner = Make<RecordTeller>();
    auto const object = Make<Scripted>();
    Scripted::sOnWrite = [this, &inner](IDataProviderStream& body) {
        Scripted::sOnWrite = nullptr;
        body.Aggregate(inner.Get(), IO::IID_RECORD_OBSERVER);
        body << *Make<Scripted>();
        body.Aggregate(teller.Get(), IO::IID_RECORD_OBSERVER);
    };
    Observe();
    *stream << *object;
    EXPECT_EQ(teller->Take(),
              (Lines{"begin write Scripted depth 0 place 0 length 0 at 0 move 0 open object",
                     "end write Scripted depth 0 place 0 length 32 at 56 move 0 done object"}));
    EXPECT_EQ(inner->Take(),
              (Lines{"begin write Scripted depth 1 place 24 length 0 at 24 move 0 open object",
                     "end write Scripted depth 1 place 24 length 4 at 52 move 0 done object"}));
}

struct RemovalRow
{
    char const* name;
    void (*remove)(IDataProviderStream& stream);
    bool isStillTold;
};

RemovalRow const kRemovals[] = {
    {"Nothing", [](IDataProviderStream&) {}, true},
    {"UnAggregate", [](IDataProviderStream& stream) { stream.UnAggregate(IO::IID_RECORD_OBSERVER); }, false},
    {"UnAggregateAnother", [](IDataProviderStream& stream) { stream.UnAggregate(kOtherId); }, true},
    {"ClearAggregates", [](IDataProviderStream& stream) { stream.ClearAggregates(); }, false},
    {"AggregateAnother",
     [](IDataProviderStream& stream) {
         TInterfacePtr<IObject> another;
         another.Adopt(new Plain);
         stream.Aggregate(another.Get(), kOtherId);
     },
     true},
    {"AggregateNull", [](IDataProviderStream& stream) { stream.Aggregate(nullptr, IO::IID_RECORD_OBSERVER); },
     true},
};

class RecordRemovalTest : public RecordObserverTest, public ::testing::WithParamInterface<RemovalRow>
{
};

TEST_P(RecordRemovalTest, EndsIfItIsTheObservers)
{
    Observe();
    GetParam().remove(*stream);
    *stream << *Make<Scripted>();
    EXPECT_EQ(!teller->told.empty(), GetParam().isStillTold);
    EXPECT_EQ(References(*teller), GetParam().isStillTold ? 2 : 1);
}

INSTANTIATE_TEST_SUITE_P(RecordObserver, RecordRemovalTest, ::testing::ValuesIn(kRemovals), RowName());

/// The bytes of a record whose class nobody makes, to be written again as they are.
class KeptRecord final : public TObject<IO::IPersistentData>
{
public:
    KeptRecord(GUID const& classId, Bytes bytes) : mClassId(classId), mBytes(std::move(bytes)) {}

    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        if (!(iid == IO::IPERSISTENT_DATA))
            return TObject::QueryInterface(iid, out);
        if (out)
            *out = const_cast<KeptRecord*>(this);
        return kNoError;
    }
    IObject* GetObj() const override { return const_cast<KeptRecord*>(this); }
    IDataProviderStream& Read(IDataProviderStream& stream) override { return stream; }
    IDataProviderStream& Write(IDataProviderStream& stream) const override
    {
        static_cast<void>(stream.Write(mBytes.data(), static_cast<int>(mBytes.size())));
        return stream;
    }
    GUID const& GetUID() const override { return mClassId; }

private:
    GUID mClassId;
    Bytes mBytes;
};

// A layer that keeps the records of missing plug-ins: whatever they hold comes out as it went in, also where
// the record has aggregates, known ones and unknown ones.
TEST_F(RecordObserverAnswersTest, KeptRecordsAreWrittenAgainByteForByte)
{
    std::string const withAggregate =
        std::string(kUnknown) + "3D 00 00 00 00 00 00 00 EE 01 00 00 00 " + kDictionary + kUnknown +
        "10 00 00 00 00 00 00 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 ";
    std::string const empty = std::string(kUnknown) + "00 00 00 00 00 00 00 00 ";
    Bytes const file =
        Hex(std::string(kDictionary) + "A1 00 00 00 00 00 00 00 03 00 00 00 01 00 00 00 " + withAggregate +
            "02 00 00 00 " + kUnknownRecord + "03 00 00 00 " + empty + "00 00 00 00");
    ASSERT_EQ(file.size(), 24u + 0xA1) << "the test's own bytes";
    provider->bytes = file;
    teller->onUnknown = [](RecordEvent const& event, IDataProviderStream& body, IObject** object) {
        Bytes bytes(static_cast<std::size_t>(event.length));
        int count = static_cast<int>(bytes.size());
        static_cast<void>(body.Read(bytes.data(), count));
        *object = new KeptRecord(event.classId, bytes);
        return UnknownClass::kKeep;
    };
    Observe();
    auto const loaded = ReadObject(*stream);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(dynamic_cast<IDictionary&>(*loaded).Size(), 3u);

    provider->bytes.clear();
    provider->position = 0;
    // The dictionary, then what is kept in it.
    teller->choices = {RecordChoice::kGoOn, RecordChoice::kBodyAlone, RecordChoice::kBodyAlone,
                       RecordChoice::kBodyAlone};
    *stream << *loaded;
    EXPECT_EQ(ToHex(provider->bytes), ToHex(file));
    EXPECT_EQ(log.Take(), kNothing);
}
} // namespace
} // namespace KORVA
