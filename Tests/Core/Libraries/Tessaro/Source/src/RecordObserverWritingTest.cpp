// What an observer is told of records that are written.
#include "RecordTeller.h"

#include <stdexcept>

namespace KORVA
{
namespace
{
using namespace TESTS;
using IO::RecordChoice;
using Lines = std::vector<std::string>;

constexpr char kScripted[] = "0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08 ";
constexpr GUID kFirstId{1, 0, 0, {}};

RecordingProvider* sProvider = nullptr;

void WriteInt(IDataProviderStream& stream) { stream << 0x11223344; }

template <class T>
TInterfacePtr<IObject> MakeObject()
{
    TInterfacePtr<IObject> object;
    object.Adopt(new T);
    return object;
}

TInterfacePtr<IObject> MakeDictionaryOf(IObject* value)
{
    auto const dictionary = CreateObject<IDictionary>(IO::IID_DICTIONARY);
    dictionary->Put(1, value);
    TInterfacePtr<IObject> object;
    object.Share(dictionary.Get());
    return object;
}

struct WritingRow
{
    char const* name;
    TInterfacePtr<IObject> (*make)();
    Scripted::Body onWrite;
    Lines told;
};

WritingRow const kWritings[] = {
    {"Done",
     &MakeObject<Scripted>,
     &WriteInt,
     {"begin write Scripted depth 0 place 3 length 0 at 3 move 0 open object",
      "end write Scripted depth 0 place 3 length 8 at 35 move 0 done object"}},
    {"NotPersistent",
     &MakeObject<Plain>,
     nullptr,
     {"begin write None depth 0 place 3 length 0 at 3 move 0 open object",
      "end write None depth 0 place 3 length 0 at 3 move 0 not persistent object"}},
    {"BodyThrewAtOnce",
     &MakeObject<Scripted>,
     [](IDataProviderStream&) { throw std::runtime_error("body"); },
     {"begin write Scripted depth 0 place 3 length 0 at 3 move 0 open object",
      "end write Scripted depth 0 place 3 length 0 at 27 move 0 body threw object"}},
    {"BodyThrewLater",
     &MakeObject<Scripted>,
     [](IDataProviderStream& stream) {
         WriteInt(stream);
         throw std::runtime_error("body");
     },
     {"begin write Scripted depth 0 place 3 length 0 at 3 move 0 open object",
      "end write Scripted depth 0 place 3 length 4 at 31 move 0 body threw object"}},
    {"AggregatesThrew",
     &MakeObject<Scripted>,
     [](IDataProviderStream& stream) {
         WriteInt(stream);
         // The position is asked for, then the byte order, and the count can't be written.
         sProvider->failure = RecordingProvider::Failure::kThrow;
         sProvider->failAt = sProvider->Counted() + 2;
     },
     {"begin write Scripted depth 0 place 3 length 0 at 3 move 0 open object",
      "end write Scripted depth 0 place 3 length 4 at 31 move 0 aggregates threw object"}},
    {"PositionRefused",
     &MakeObject<Scripted>,
     [](IDataProviderStream& stream) {
         WriteInt(stream);
         // The count of aggregates is written; the length is to be put in its place next.
         sProvider->refusesPositions = true;
     },
     {"begin write Scripted depth 0 place 3 length 0 at 3 move 0 open object",
      "end write Scripted depth 0 place 3 length 8 at 35 move 13 done object"}},
    {"PositionSetBack",
     &MakeObject<Scripted>,
     [](IDataProviderStream&) { sProvider->position = 3; },
     {"begin write Scripted depth 0 place 3 length 0 at 3 move 0 open object",
      "end write Scripted depth 0 place 3 length -20 at 7 move 0 bad length object"}},
    {"Inside",
     [] { return MakeDictionaryOf(MakeObject<Scripted>().Get()); },
     &WriteInt,
     {"begin write Dictionary depth 0 place 3 length 0 at 3 move 0 open object",
      "begin write Scripted depth 1 place 35 length 0 at 35 move 0 open object",
      "end write Scripted depth 1 place 35 length 8 at 67 move 0 done object",
      "end write Dictionary depth 0 place 3 length 44 at 71 move 0 done object"}},
    {"Aggregate",
     [] {
         TInterfacePtr<IObject> object = MakeObject<Scripted>();
         object->Aggregate(MakeObject<Scripted>().Get(), kFirstId);
         return object;
     },
     nullptr,
     {"begin write Scripted depth 0 place 3 length 0 at 3 move 0 open object",
      "begin write Scripted depth 1 place 47 length 0 at 47 move 0 open object",
      "end write Scripted depth 1 place 47 length 4 at 75 move 0 done object",
      "end write Scripted depth 0 place 3 length 48 at 75 move 0 done object"}},
};

class RecordWritingTest : public RecordObserverTest, public ::testing::WithParamInterface<WritingRow>
{
protected:
    RecordWritingTest() { sProvider = provider.Get(); }

    void Use()
    {
        provider->bytes = Hex("AA BB CC");
        provider->position = 3;
        provider->failure = RecordingProvider::Failure::kNone;
        provider->refusesPositions = false;
        Scripted::sOnWrite = GetParam().onWrite;
    }
};

TEST_P(RecordWritingTest, IsToldWhole)
{
    Use();
    Observe();
    auto const object = GetParam().make();
    *stream << *object;
    EXPECT_EQ(teller->Take(), GetParam().told);
    EXPECT_EQ(References(*object), 1);
    log.Take();
}

// The same bytes, the same messages, and no call but the question for the position.
TEST_P(RecordWritingTest, ChangesNothing)
{
    auto const object = GetParam().make();
    Use();
    *stream << *object;
    Bytes const bytes = provider->bytes;
    std::vector<std::string> calls = provider->TakeCalls();
    std::vector<Logged> const messages = log.Take();

    Use();
    Observe();
    *stream << *object;
    EXPECT_EQ(provider->bytes, bytes);
    EXPECT_EQ(log.Take(), messages);
    std::vector<std::string> observed = provider->TakeCalls();
    EXPECT_GT(observed.size(), calls.size());
    std::erase(calls, "GetPosition");
    std::erase(observed, "GetPosition");
    EXPECT_EQ(observed, calls);
}

INSTANTIATE_TEST_SUITE_P(RecordObserver, RecordWritingTest, ::testing::ValuesIn(kWritings), RowName());

using RecordObserverWritingTest = RecordObserverTest;

TEST_F(RecordObserverWritingTest, WithoutOneTheCallsAreThese)
{
    Observe();
    stream->UnAggregate(IO::IID_RECORD_OBSERVER);
    *stream << *MakeObject<Scripted>();
    EXPECT_EQ(provider->TakeCalls(), (Lines{"IsNative",
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
                                            "Write 1",
                                            "GetPosition",
                                            "IsNative",
                                            "Write 8",
                                            "GetPosition",
                                            "IsNative",
                                            "Write 4",
                                            "GetPosition",
                                            "GetPosition",
                                            "SetPosition 16 from 0",
                                            "IsNative",
                                            "Write 8",
                                            "SetPosition 28 from 0"}));
    EXPECT_EQ(teller->told, Lines());
}

TEST_F(RecordObserverWritingTest, WhatItDoesNotWantLeavesNothingBehind)
{
    teller->choices = {RecordChoice::kGoOn, RecordChoice::kLeaveOut};
    Observe();
    *stream << *MakeDictionaryOf(MakeObject<Scripted>().Get());
    EXPECT_EQ(teller->Take(),
              (Lines{"begin write Dictionary depth 0 place 0 length 0 at 0 move 0 open object",
                     "begin write Scripted depth 1 place 32 length 0 at 32 move 0 open object",
                     "end write Scripted depth 1 place 32 length 0 at 32 move 0 left out object",
                     "end write Dictionary depth 0 place 0 length 12 at 36 move 0 done object"}));
    EXPECT_EQ(provider->bytes.size(), 36u);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(RecordObserverWritingTest, ObjectCanWriteTheAggregatesItself)
{
    Scripted::sOnWrite = [](IDataProviderStream& body) { body << static_cast<unsigned char>(0xEE); };
    teller->choices = {RecordChoice::kBodyAlone};
    Observe();
    TInterfacePtr<IObject> const object = MakeObject<Scripted>();
    object->Aggregate(MakeObject<Scripted>().Get(), kFirstId);
    *stream << *object;
    EXPECT_EQ(ToHex(provider->bytes), std::string(kScripted) + "01 00 00 00 00 00 00 00 EE");
    EXPECT_EQ(teller->Take(),
              (Lines{"begin write Scripted depth 0 place 0 length 0 at 0 move 0 open object",
                     "end write Scripted depth 0 place 0 length 1 at 25 move 0 done object"}));
}

TEST_F(RecordObserverWritingTest, TooDeepIsTold)
{
    TInterfacePtr<IObject> chain = MakeDictionaryOf(nullptr);
    for (int i = 1; i < 1001; ++i)
        chain = MakeDictionaryOf(chain.Get());
    Observe();
    *stream << *chain;
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    ASSERT_EQ(teller->told.size(), 2u * 1001);
    EXPECT_EQ(teller->told[1000],
              "begin write Dictionary depth 1000 place 32000 length 0 at 32000 move 0 open object");
    EXPECT_EQ(teller->told[1001],
              "end write Dictionary depth 1000 place 32000 length 0 at 32024 move 0 too deep object");
    EXPECT_EQ(teller->told[1002],
              "end write Dictionary depth 999 place 31968 length 36 at 32028 move 0 done object");
}

TEST_F(RecordObserverWritingTest, WhatIsAbandonedIsTold)
{
    // The first write of the class id, behind two positions and the byte order.
    provider->failure = RecordingProvider::Failure::kThrow;
    provider->failAt = 3;
    Observe();
    EXPECT_THROW(*stream << *MakeObject<Scripted>(), std::runtime_error);
    EXPECT_EQ(teller->Take(),
              (Lines{"begin write Scripted depth 0 place 0 length 0 at 0 move 0 open object",
                     "end write Scripted depth 0 place 0 length 0 at 0 move 0 abandoned object"}));
}

/// Chooses its class id by the stream, and can't.
class Undecided final : public TObject<IO::IPersistentDataEx>
{
public:
    IObject* GetObj() const override { return nullptr; }
    IDataProviderStream& Read(IDataProviderStream& stream) override { return stream; }
    IDataProviderStream& Write(IDataProviderStream& stream) const override { return stream; }
    GUID const& GetUID() const override { return kScriptedId; }
    GUID GetUIDFor(IDataProviderStream&) override { throw std::runtime_error("class id"); }
};

TEST_F(RecordObserverWritingTest, WhereTheClassIdThrowsNothingIsTold)
{
    TInterfacePtr<IObject> const object = MakeObject<Plain>();
    object->Aggregate(MakeObject<Undecided>().Get(), IO::IPERSISTENT_DATA_EX);
    Observe();
    EXPECT_THROW(*stream << *object, std::runtime_error);
    EXPECT_EQ(teller->told, Lines());
}
} // namespace
} // namespace KORVA
