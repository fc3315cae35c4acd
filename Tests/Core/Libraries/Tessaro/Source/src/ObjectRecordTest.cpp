// Object records as they are read.
#include "Serialization.h"

#include <set>
#include <stdexcept>

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kScripted[] = " 0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08 ";
constexpr char kUnknown[] = " 0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 09 ";
constexpr char kProvider[] = " BD BF 32 29 A3 9A 4F 45 BE FF EB C9 BE EF 0F 0F ";
/// A dictionary value, the `int` 7.
constexpr char kSeven[] = "21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  18 00 00 00 00 00 00 00"
                          "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40  00 00 00 00";

Logged Suspect(char const* length)
{
    return {kStreamSource, kReading, 300,
            std::string("serializedLength of this object (") + length + " bytes) looks suspect. Bailing."};
}

Logged Preposterous(char const* end)
{
    return {kStreamSource, kReading, 354,
            std::string("Trying to set the dp position to something probably preposterous (") + end +
                ") bytes from start."};
}

Logged Incorrect(char const* position, char const* end)
{
    return {kStreamSource, kReading, 361,
            std::string("Incorrect dp position after read an IObject, currently at ") + position +
                " should be " + end};
}

Logged HandleRefused(char const* position)
{
    return {"Core/Libraries/Tessaro/Source/src/Mac/HandleDataProvider",
            "virtual ErrCode KORVA::IO::HandleDataProvider::SetPosition(int64, IDataProvider::Offset)", 205,
            std::string("Attempted to move buffer position to ") + position + "  when buffer size is 524288"};
}

class ObjectRecordTest : public SerializationTest
{
protected:
    void Use(std::string const& bytes, IDataProvider::Endian endian = kNative)
    {
        memory = MakeMemory(endian, Hex(bytes));
        stream = MakeStream(*memory);
    }

    /// Whether the value 7 is what comes next.
    void ExpectSevenNext()
    {
        auto const value = ReadObject(*stream);
        ASSERT_TRUE(value);
        auto const dictionary = MakeDictionary();
        dictionary->Put(1, value.Get());
        int found = 0;
        EXPECT_EQ(dictionary->Get(1, found), 0);
        EXPECT_EQ(found, 7);
    }

    TInterfacePtr<IDataProvider> memory;
    TInterfacePtr<IDataProviderStream> stream;
};

TEST_F(ObjectRecordTest, ValueSeven)
{
    Use(kSeven);
    ExpectSevenNext();
    EXPECT_TRUE(memory->AtEnd());
    Use("73 E9 0C 21 BB C6 43 26 82 41 9B B4 25 0B 1B 05  00 00 00 00 00 00 00 18"
        "53 33 32 56 00 00 00 00 00 00 00 07 40 1C 00 00 00 00 00 00  00 00 00 00",
        kReversed);
    ExpectSevenNext();
    EXPECT_TRUE(memory->AtEnd());
}

TEST_F(ObjectRecordTest, CallerOwnsTheOnlyReference)
{
    Use(kSeven);
    IObject* object = nullptr;
    EXPECT_EQ(&(*stream >> &object), stream.Get());
    ASSERT_TRUE(object);
    EXPECT_EQ(object->Release(), 0);
}

TEST_F(ObjectRecordTest, UnknownClassIsSkippedExactly)
{
    Use(std::string(kUnknown) + "05 00 00 00 00 00 00 00 01 02 03 04 05" + kSeven);
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(memory->GetPosition(), 29);
    ExpectSevenNext();
}

TEST_F(ObjectRecordTest, ResultBecomesNullWhateverItWas)
{
    Use(std::string(kUnknown) + "00 00 00 00 00 00 00 00");
    Plain stale;
    IObject* object = &stale;
    *stream >> &object;
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(memory->GetPosition(), 24);
}

// A data provider can be created but has no persistence; the creation must not leave it behind.
TEST_F(ObjectRecordTest, ClassWithoutPersistenceIsSkippedExactly)
{
    Use(std::string(kProvider) + "03 00 00 00 00 00 00 00 01 02 03" + kProvider + "00 00 00 00 00 00 00 00" +
        kSeven);
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_FALSE(ReadObject(*stream));
    ExpectSevenNext();
}

TEST_F(ObjectRecordTest, LengthZeroGivesAFreshObjectWithoutReadingABody)
{
    Use(std::string(kScripted) + "00 00 00 00 00 00 00 00" + kSeven);
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(Scripted::sReads, 0);
    ExpectSevenNext();
}

struct LengthRow
{
    char const* name;
    char const* bytes;
    char const* text;
};

LengthRow const kSuspectLengths[] = {
    {"MinusOne", "FF FF FF FF FF FF FF FF", "-1"},
    {"TwoToThe31", "00 00 00 80 00 00 00 00", "2147483648"},
    {"TwoToThe32", "00 00 00 00 01 00 00 00", "4294967296"},
    {"Lowest", "00 00 00 00 00 00 00 80", "-9223372036854775808"},
    {"Highest", "FF FF FF FF FF FF FF 7F", "9223372036854775807"},
};

class SuspectLengthTest : public ObjectRecordTest, public ::testing::WithParamInterface<LengthRow>
{
};

TEST_P(SuspectLengthTest, StopsBehindTheLength)
{
    Use(std::string(kScripted) + GetParam().bytes + kSeven);
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), std::vector<Logged>{Suspect(GetParam().text)});
    EXPECT_EQ(memory->GetPosition(), 24);
    EXPECT_EQ(Scripted::sReads, 0);
    ExpectSevenNext();
}

INSTANTIATE_TEST_SUITE_P(ObjectRecord, SuspectLengthTest, ::testing::ValuesIn(kSuspectLengths), RowName());

TEST_F(ObjectRecordTest, GreatestLengthOfAnUnknownClassMeetsTheEndOfTheProvider)
{
    Use(std::string(kUnknown) + "FF FF FF 7F 00 00 00 00 01 02");
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), (std::vector<Logged>{HandleRefused("2147483671"), Preposterous("2147483671")}));
    EXPECT_EQ(memory->GetPosition(), 24);
}

TEST_F(ObjectRecordTest, GreatestLengthOfAKnownClassKeepsTheObject)
{
    Use(std::string(kScripted) + "FF FF FF 7F 00 00 00 00 00 00 00 00");
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), (std::vector<Logged>{Incorrect("28", "2147483671"), HandleRefused("2147483671")}));
    EXPECT_EQ(memory->GetPosition(), 28);
}

TEST_F(ObjectRecordTest, ReadOnlyProviderRefusesPositionsBeyondItsEnd)
{
    Bytes const bytes = Hex(std::string(kUnknown) + "03 00 00 00 00 00 00 00 01 02");
    auto const readOnly = MakeReadOnly(kNative, bytes);
    EXPECT_FALSE(ReadObject(*MakeStream(*readOnly)));
    EXPECT_EQ(
        log.Take(),
        (std::vector<Logged>{
            {"Core/Libraries/Tessaro/Source/src/DataProvider",
             "virtual ErrCode KORVA::IO::ReadOnlyDataProvider::SetPosition(int64, IDataProvider::Offset)", 97,
             "The offset supplied is 27 from the start of file but this would set the offset beyond the size "
             "of "
             "the data provider (26)."},
            Preposterous("27")}));
    EXPECT_EQ(readOnly->GetPosition(), 24);
}

TEST_F(ObjectRecordTest, ProviderThatRefusesThePositionForAnotherReasonIsNotReported)
{
    auto const provider = Make<RecordingProvider>();
    provider->bytes = Hex(std::string(kUnknown) + "03 00 00 00 00 00 00 00 01 02");
    provider->refusal = 29;
    EXPECT_FALSE(ReadObject(*MakeStream(*provider)));
    EXPECT_EQ(log.Take(), kNothing);
    provider->position = 0;
    provider->refusal = 13;
    EXPECT_FALSE(ReadObject(*MakeStream(*provider)));
    EXPECT_EQ(log.Take(), std::vector<Logged>{Preposterous("27")});
}

TEST_F(ObjectRecordTest, BodyThatReadsTooLittleIsCorrected)
{
    Use(std::string(kScripted) + "0C 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00" + kSeven);
    int found = 0;
    Scripted::sOnRead = [&found](IDataProviderStream& body) { body >> found; };
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), std::vector<Logged>{Incorrect("32", "36")});
    EXPECT_EQ(found, 1);
    ExpectSevenNext();
}

TEST_F(ObjectRecordTest, BodyThatReadsTooMuchIsCorrected)
{
    Use(std::string(kScripted) + "04 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00" + kSeven);
    Scripted::sOnRead = [](IDataProviderStream& body) {
        long long ignored = 0;
        body >> ignored;
    };
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), std::vector<Logged>{Incorrect("36", "28")});
    EXPECT_EQ(memory->GetPosition(), 28);
}

TEST_F(ObjectRecordTest, BodyThatThrowsCostsItsRecordOnly)
{
    Use(std::string(kScripted) + "06 00 00 00 00 00 00 00 01 02 03 04 05 06" + kSeven);
    Scripted::sOnRead = [](IDataProviderStream& body) {
        short ignored = 0;
        body >> ignored;
        throw std::runtime_error("body");
    };
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
    EXPECT_EQ(Scripted::sAlive, 0);
    EXPECT_EQ(memory->GetPosition(), 30);
    ExpectSevenNext();
}

TEST_F(ObjectRecordTest, AnyExceptionOfABodyIsCaught)
{
    Use(std::string(kScripted) + "04 00 00 00 00 00 00 00 00 00 00 00" + kSeven);
    Scripted::sOnRead = [](IDataProviderStream&) { throw "a text"; };
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
    ExpectSevenNext();
}

TEST_F(ObjectRecordTest, InnerRecordsThatFailLeaveTheirNeighbours)
{
    // A dictionary of an unknown class, a body that throws, and the value 7.
    Use(std::string("D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05  7A 00 00 00 00 00 00 00  03 00 00 00") +
        "01 00 00 00" + kUnknown + "02 00 00 00 00 00 00 00 AA BB" + "02 00 00 00" + kScripted +
        "04 00 00 00 00 00 00 00 00 00 00 00" + "03 00 00 00" + kSeven + "00 00 00 00");
    Scripted::sOnRead = [](IDataProviderStream&) { throw std::runtime_error("body"); };
    auto const dictionary = ReadObject<IDictionary>(*stream);
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
    EXPECT_TRUE(memory->AtEnd());
    EXPECT_EQ(dictionary->Size(), 1u);
    int found = 0;
    EXPECT_EQ(dictionary->Get(3, found), 0);
    EXPECT_EQ(found, 7);
}

TEST_F(ObjectRecordTest, RecordMayStandAnywhere)
{
    Use(std::string("EE EE EE") + kScripted + "08 00 00 00 00 00 00 00 2A 00 00 00 00 00 00 00" + kSeven);
    ASSERT_EQ(memory->SetPosition(3, IDataProvider::kFromStart), 0);
    int found = 0;
    Scripted::sOnRead = [&found](IDataProviderStream& body) { body >> found; };
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(found, 42);
    EXPECT_EQ(memory->GetPosition(), 35);
    ExpectSevenNext();
}

TEST_F(ObjectRecordTest, NothingToReadGivesNull)
{
    Use("");
    EXPECT_FALSE(ReadObject(*stream));
    EXPECT_EQ(memory->GetPosition(), 0);
}

TEST_F(ObjectRecordTest, LengthThatIsCutShortCountsAsZero)
{
    Use(std::string(kScripted) + "FF FF FF FF FF FF FF");
    EXPECT_TRUE(ReadObject(*stream));
    EXPECT_EQ(Scripted::sReads, 0);
    EXPECT_TRUE(memory->AtEnd());
}

TEST_F(ObjectRecordTest, UsesNoOtherOperationOfTheProvider)
{
    auto const provider = Make<RecordingProvider>();
    provider->bytes = Hex(std::string(kUnknown) + "02 00 00 00 00 00 00 00 AA BB" + kScripted +
                          "08 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" + kSeven);
    auto const records = MakeStream(*provider);
    EXPECT_FALSE(ReadObject(*records));
    EXPECT_TRUE(ReadObject(*records));
    EXPECT_TRUE(ReadObject(*records));
    EXPECT_EQ(log.Take(), std::vector<Logged>{Incorrect("54", "58")});
    std::set<std::string> const expected = {
        "GetPosition",          "IsNative", "Read 1", "Read 2", "Read 4", "Read 8", "SetPosition 26 from 0",
        "SetPosition 58 from 0"};
    EXPECT_EQ(std::set<std::string>(provider->calls.begin(), provider->calls.end()), expected);
}
} // namespace
} // namespace KORVA
