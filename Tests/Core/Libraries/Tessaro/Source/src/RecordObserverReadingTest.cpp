// What an observer is told of records that are read.
#include "RecordTeller.h"

#include <new>
#include <stdexcept>

namespace KORVA
{
namespace
{
using namespace TESTS;
using IO::RecordChoice;
using IO::RecordEvent;
using IO::UnknownClass;
using Lines = std::vector<std::string>;

constexpr char kScripted[] = "0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08 ";
constexpr char kStream[] = "8D B7 75 B7 C0 0A E6 4C 8A 59 36 34 C5 A5 42 59 ";
constexpr char kUnknown[] = "66 66 66 66 66 66 66 66 66 66 66 66 66 66 66 66 ";
constexpr char kDictionary[] = "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 ";
constexpr char kValue[] = "21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 ";
constexpr char kFour[] = "04 00 00 00 00 00 00 00 ";
constexpr char kEight[] = "08 00 00 00 00 00 00 00 ";
constexpr char kUnknownName[] = "{66666666-6666-6666-6666-666666666666}";

std::string const kUnknownRecord = std::string(kUnknown) + kFour + "01 02 03 04 ";

/// For bodies that have to reach their provider.
RecordingProvider* sProvider = nullptr;

void ReadInt(IDataProviderStream& stream)
{
    int number = 0;
    stream >> number;
}

struct ReadingRow
{
    char const* name;
    std::string bytes;
    int start;
    Scripted::Body onRead;
    Lines told;
    bool hasObject;
};

ReadingRow const kReadings[] = {
    {"Done",
     std::string(kScripted) + kEight + "07 00 00 00 00 00 00 00",
     0,
     &ReadInt,
     {"begin read Scripted depth 0 place 0 length 8 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 8 at 32 move 0 done object"},
     true},
    {"Anywhere",
     std::string("AA BB CC ") + kScripted + kEight + "07 00 00 00 00 00 00 00",
     3,
     &ReadInt,
     {"begin read Scripted depth 0 place 3 length 8 at 27 move 0 open",
      "end read Scripted depth 0 place 3 length 8 at 35 move 0 done object"},
     true},
    {"LengthZero",
     std::string(kScripted) + "00 00 00 00 00 00 00 00",
     0,
     &ReadInt,
     {"begin read Scripted depth 0 place 0 length 0 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 0 at 24 move 0 done object"},
     true},
    {"UnknownClass",
     kUnknownRecord,
     0,
     nullptr,
     {std::string("begin read ") + kUnknownName + " depth 0 place 0 length 4 at 24 move 0 open",
      std::string("ask read ") + kUnknownName + " depth 0 place 0 length 4 at 24 move 0 open",
      std::string("end read ") + kUnknownName + " depth 0 place 0 length 4 at 24 move 0 unknown class"},
     false},
    {"NotPersistent",
     std::string(kStream) + kFour + "01 02 03 04",
     0,
     nullptr,
     {"begin read Stream depth 0 place 0 length 4 at 24 move 0 open",
      "end read Stream depth 0 place 0 length 4 at 24 move 0 not persistent"},
     false},
    {"BodyThrew",
     std::string(kScripted) + kEight + "07 00 00 00 00 00 00 00",
     0,
     [](IDataProviderStream& stream) {
         ReadInt(stream);
         throw std::runtime_error("body");
     },
     {"begin read Scripted depth 0 place 0 length 8 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 8 at 28 move 0 body threw"},
     false},
    {"AggregatesThrew",
     std::string(kScripted) + kEight + "07 00 00 00 00 00 00 00",
     0,
     [](IDataProviderStream& stream) {
         ReadInt(stream);
         sProvider->failsRead = []() -> bool { throw std::runtime_error("count"); };
     },
     {"begin read Scripted depth 0 place 0 length 8 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 8 at 28 move 0 aggregates threw"},
     false},
    {"TooLittle",
     std::string(kScripted) + kEight + "00 00 00 00 00 00 00 00",
     0,
     [](IDataProviderStream&) {},
     {"begin read Scripted depth 0 place 0 length 8 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 8 at 28 move 0 too little object"},
     true},
    {"TooMuch",
     std::string(kScripted) + kFour + "07 00 00 00 00 00 00 00",
     0,
     &ReadInt,
     {"begin read Scripted depth 0 place 0 length 4 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 4 at 32 move 0 too much object"},
     true},
    {"LengthBelowZero",
     std::string(kScripted) + "FF FF FF FF FF FF FF FF ",
     0,
     &ReadInt,
     {"begin read Scripted depth 0 place 0 length -1 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length -1 at 24 move 0 bad length"},
     false},
    {"LengthTooGreat",
     std::string(kScripted) + "00 00 00 80 00 00 00 00 ",
     0,
     &ReadInt,
     {"begin read Scripted depth 0 place 0 length 2147483648 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 2147483648 at 24 move 0 bad length"},
     false},
    {"Nothing",
     "",
     0,
     nullptr,
     {"begin read None depth 0 place 0 length 0 at 0 move 0 open",
      "end read None depth 0 place 0 length 0 at 0 move 0 cut head"},
     false},
    {"HeadCutInTheLength",
     std::string(kScripted) + "08 00 00",
     0,
     &ReadInt,
     {"begin read Scripted depth 0 place 0 length 0 at 19 move 0 open",
      "end read Scripted depth 0 place 0 length 0 at 19 move 0 cut head object"},
     true},
    {"EndOutOfRange",
     std::string(kUnknown) + "64 00 00 00 00 00 00 00 01 02",
     0,
     nullptr,
     {std::string("begin read ") + kUnknownName + " depth 0 place 0 length 100 at 24 move 0 open",
      std::string("ask read ") + kUnknownName + " depth 0 place 0 length 100 at 24 move 0 open",
      std::string("end read ") + kUnknownName + " depth 0 place 0 length 100 at 24 move 13 unknown class"},
     false},
    {"EndOutOfRangeOfAnObject",
     std::string(kScripted) + "64 00 00 00 00 00 00 00 07 00 00 00 00 00 00 00",
     0,
     &ReadInt,
     {"begin read Scripted depth 0 place 0 length 100 at 24 move 0 open",
      "end read Scripted depth 0 place 0 length 100 at 32 move 13 too little object"},
     true},
    {"Inside",
     std::string(kDictionary) + "4C 00 00 00 00 00 00 00 02 00 00 00 " + "01 00 00 00 " + kUnknownRecord +
         "02 00 00 00 " + kValue + kEight + "54 4E 4E 55 00 00 00 00 " + "00 00 00 00",
     0,
     nullptr,
     {"begin read Dictionary depth 0 place 0 length 76 at 24 move 0 open",
      std::string("begin read ") + kUnknownName + " depth 1 place 32 length 4 at 56 move 0 open",
      std::string("ask read ") + kUnknownName + " depth 1 place 32 length 4 at 56 move 0 open",
      std::string("end read ") + kUnknownName + " depth 1 place 32 length 4 at 56 move 0 unknown class",
      "begin read Value depth 1 place 64 length 8 at 88 move 0 open",
      "end read Value depth 1 place 64 length 8 at 96 move 0 done object",
      "end read Dictionary depth 0 place 0 length 76 at 100 move 0 done object"},
     true},
    {"Aggregate",
     std::string(kScripted) + "30 00 00 00 00 00 00 00 01 00 00 00 " + kUnknown + kScripted + kFour +
         "00 00 00 00",
     0,
     nullptr,
     {"begin read Scripted depth 0 place 0 length 48 at 24 move 0 open",
      "begin read Scripted depth 1 place 44 length 4 at 68 move 0 open",
      "end read Scripted depth 1 place 44 length 4 at 72 move 0 done object",
      "end read Scripted depth 0 place 0 length 48 at 72 move 0 done object"},
     true},
};

class RecordReadingTest : public RecordObserverTest, public ::testing::WithParamInterface<ReadingRow>
{
protected:
    RecordReadingTest() { sProvider = provider.Get(); }

    void Use()
    {
        provider->bytes = Hex(GetParam().bytes);
        provider->position = static_cast<std::size_t>(GetParam().start);
        provider->failsRead = nullptr;
        Scripted::sOnRead = GetParam().onRead;
    }
};

TEST_P(RecordReadingTest, IsToldWhole)
{
    Use();
    Observe();
    EXPECT_EQ(static_cast<bool>(ReadObject(*stream)), GetParam().hasObject);
    EXPECT_EQ(teller->Take(), GetParam().told);
    log.Take();
}

// The same object or none, the same place, the same messages, and no call but the question for the position.
TEST_P(RecordReadingTest, ChangesNothing)
{
    Use();
    bool const alone = static_cast<bool>(ReadObject(*stream));
    std::size_t const position = provider->position;
    std::vector<std::string> calls = provider->TakeCalls();
    std::vector<Logged> const messages = log.Take();

    Use();
    Observe();
    EXPECT_EQ(static_cast<bool>(ReadObject(*stream)), alone);
    EXPECT_EQ(provider->position, position);
    EXPECT_EQ(log.Take(), messages);
    std::vector<std::string> observed = provider->TakeCalls();
    EXPECT_GT(observed.size(), calls.size());
    std::erase(calls, "GetPosition");
    std::erase(observed, "GetPosition");
    EXPECT_EQ(observed, calls);
}

INSTANTIATE_TEST_SUITE_P(RecordObserver, RecordReadingTest, ::testing::ValuesIn(kReadings), RowName());

using RecordObserverReadingTest = RecordObserverTest;

TEST_F(RecordObserverReadingTest, WithoutOneTheCallsAreThese)
{
    provider->bytes = Hex(std::string(kScripted) + kEight + "07 00 00 00 00 00 00 00" + kUnknownRecord);
    Scripted::sOnRead = &ReadInt;
    Observe();
    stream->UnAggregate(IO::IID_RECORD_OBSERVER);
    EXPECT_TRUE(ReadObject(*stream));
    Lines const head = {"Read 4", "IsNative", "Read 2", "IsNative", "Read 2",     "IsNative",
                        "Read 1", "Read 1",   "Read 1", "Read 1",   "Read 1",     "Read 1",
                        "Read 1", "Read 1",   "Read 8", "IsNative", "GetPosition"};
    Lines object = head;
    for (char const* const call :
         {"GetPosition", "GetPosition", "Read 4", "IsNative", "Read 4", "IsNative", "GetPosition"})
        object.emplace_back(call);
    EXPECT_EQ(provider->TakeCalls(), object);
    EXPECT_FALSE(ReadObject(*stream));
    Lines unknown = head;
    unknown.emplace_back("SetPosition 60 from 0");
    EXPECT_EQ(provider->TakeCalls(), unknown);
    EXPECT_EQ(teller->told, Lines());
}

TEST_F(RecordObserverReadingTest, WhatItDoesNotWantIsSkipped)
{
    provider->bytes = Hex(std::string(kScripted) + kEight + "07 00 00 00 00 00 00 00" + kUnknownRecord);
    teller->choices = {RecordChoice::kLeaveOut, RecordChoice::kLeaveOut};
    Observe();
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(Scripted::sReads, 0);
    EXPECT_EQ(provider->position, 60u);
    std::string const unknown = kUnknownName;
    EXPECT_EQ(teller->Take(),
              (Lines{"begin read Scripted depth 0 place 0 length 8 at 24 move 0 open",
                     "end read Scripted depth 0 place 0 length 8 at 24 move 0 left out",
                     "begin read " + unknown + " depth 0 place 32 length 4 at 56 move 0 open",
                     "end read " + unknown + " depth 0 place 32 length 4 at 56 move 0 left out"}));
    EXPECT_EQ(log.Take(), kNothing);
}

// The thousand-and-first and what is in it.
TEST_F(RecordObserverReadingTest, TooDeepIsTold)
{
    constexpr int kLevels = 1002;
    Bytes bytes;
    for (int level = 0; level < kLevels; ++level)
    {
        auto const left = static_cast<std::size_t>(kLevels - 1 - level);
        Bytes const head = Hex(std::string(kDictionary) + "00 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00");
        bytes.insert(bytes.end(), head.begin(), head.end());
        // Count, key and the record inside; the counts of aggregates stand at the end.
        std::size_t const length = 8 + left * 36 + 4;
        for (std::size_t i = 0; i < 4; ++i)
            bytes[bytes.size() - 16 + i] = static_cast<unsigned char>(length >> (8 * i));
    }
    bytes.resize(bytes.size() + kLevels * std::size_t{4});
    provider->bytes = bytes;
    Observe();
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
    ASSERT_EQ(teller->told.size(), 2u * 1001);
    EXPECT_EQ(teller->told[1000],
              "begin read Dictionary depth 1000 place 32000 length 48 at 32024 move 0 open");
    EXPECT_EQ(teller->told[1001],
              "end read Dictionary depth 1000 place 32000 length 48 at 32024 move 0 too deep");
    EXPECT_EQ(teller->told[1002],
              "end read Dictionary depth 999 place 31968 length 84 at 32076 move 0 done object");
}

// The body reads a text behind its record's end again and again, and then a record that stands there.
TEST_F(RecordObserverReadingTest, ReadInVainIsTold)
{
    constexpr std::size_t kText = 1 << 20;
    provider->bytes = Hex(std::string(kScripted) + kFour + "00 00 10 00");
    provider->bytes.resize(28 + kText);
    Bytes const inner = Hex(std::string(kScripted) + kFour + "00 00 00 00");
    provider->bytes.insert(provider->bytes.end(), inner.begin(), inner.end());
    Scripted::sOnRead = [this](IDataProviderStream& body) {
        for (int i = 0; i < 3; ++i)
        {
            provider->position = 24;
            CoreString text;
            body >> text;
        }
        EXPECT_FALSE(ReadObject(body));
    };
    Observe();
    static_cast<void>(ReadObject(*stream));
    EXPECT_EQ(Scripted::sReads, 1);
    ASSERT_EQ(teller->told.size(), 4u);
    EXPECT_EQ(teller->told[1], "begin read Scripted depth 1 place 1048604 length 4 at 1048628 move 0 open");
    EXPECT_EQ(teller->told[2], "end read Scripted depth 1 place 1048604 length 4 at 1048628 move 0 in vain");
    log.Take();
}

TEST_F(RecordObserverReadingTest, WhatIsAbandonedIsToldEvenIfTheProviderTellsNoPosition)
{
    provider->bytes = Hex(kUnknownRecord);
    teller->onUnknown = [this](RecordEvent const&, IDataProviderStream&, IObject**) {
        provider->failure = RecordingProvider::Failure::kThrow;
        provider->failForEver = true;
        // Two positions are asked for before it is set.
        provider->failAt = provider->Counted() + 2;
        return UnknownClass::kSkip;
    };
    Observe();
    IObject* object = nullptr;
    EXPECT_THROW(*stream >> &object, std::runtime_error);
    std::string const unknown = kUnknownName;
    EXPECT_EQ(teller->Take(),
              (Lines{"begin read " + unknown + " depth 0 place 0 length 4 at 24 move 0 open",
                     "ask read " + unknown + " depth 0 place 0 length 4 at 24 move 0 open",
                     "end read " + unknown + " depth 0 place 0 length 4 at -1 move 0 abandoned"}));
}

TEST_F(RecordObserverReadingTest, WhereTheHeadThrowsNothingIsTold)
{
    provider->bytes = Hex(kUnknownRecord);
    provider->failsRead = []() -> bool { throw std::runtime_error("head"); };
    Observe();
    IObject* object = nullptr;
    EXPECT_THROW(*stream >> &object, std::runtime_error);
    EXPECT_EQ(teller->told, Lines());
}
} // namespace
} // namespace KORVA
