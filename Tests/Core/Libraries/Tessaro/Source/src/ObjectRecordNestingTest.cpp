// Records in records in records.
#include "Serialization.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

class ObjectRecordNestingTest : public SerializationTest
{
protected:
    /// `levels` dictionaries, each under key 1 of the one around it.
    static TInterfacePtr<IDictionary> Chain(int levels)
    {
        TInterfacePtr<IDictionary> chain = MakeDictionary();
        for (int i = 1; i < levels; ++i)
        {
            auto const outer = MakeDictionary();
            outer->Put(1, chain.Get());
            chain = outer;
        }
        return chain;
    }

    /// The record of such a chain. Written here, because the library writes none that is too deep.
    static Bytes ChainBytes(int levels)
    {
        // An empty dictionary: class id, length 8, count 0, no aggregates.
        Bytes bytes = Hex("D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 08 00 00 00 00 00 00 00 "
                          "00 00 00 00 00 00 00 00");
        for (int i = 1; i < levels; ++i)
        {
            auto const length = static_cast<uint32>(bytes.size() + 12);
            Bytes outer = Hex("D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 00 00 00 00 00 00 00 00 "
                              "01 00 00 00 01 00 00 00");
            for (std::size_t at = 0; at < 4; ++at)
                outer[16 + at] = static_cast<unsigned char>(length >> (8 * at));
            outer.insert(outer.end(), bytes.begin(), bytes.end());
            outer.insert(outer.end(), 4, 0);
            bytes = std::move(outer);
        }
        return bytes;
    }

    /// How many dictionaries stand in each other from `outermost` on.
    static int Levels(IObject* outermost)
    {
        int levels = 0;
        for (auto* at = dynamic_cast<IDictionary*>(outermost); at;
             at = dynamic_cast<IDictionary*>(at->Get(1)))
            ++levels;
        return levels;
    }
};

TEST_F(ObjectRecordNestingTest, InnerLengthsCountTheirOwnRecordOnly)
{
    EXPECT_EQ(
        ToHex(RecordOf(kNative, *Chain(3))),
        "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 50 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 "
        "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 2C 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 "
        "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 08 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
        "00 00 00 00 00 00 00 00");
    EXPECT_EQ(ChainBytes(3), RecordOf(kNative, *Chain(3)));
}

TEST_F(ObjectRecordNestingTest, AThousandLevelsRoundTrip)
{
    for (auto const endian : {kNative, kReversed})
    {
        auto const chain = Chain(1000);
        Bytes const bytes = RecordOf(endian, *chain);
        EXPECT_EQ(bytes.size(), 35'996u);
        auto const loaded = Load(endian, bytes);
        EXPECT_EQ(Levels(loaded.Get()), 1000);
    }
}

TEST_F(ObjectRecordNestingTest, WritingDeeperLosesOnlyWhatIsDeeper)
{
    auto const chain = Chain(1005);
    auto const memory = MakeMemory();
    auto const stream = MakeStream(*memory);
    *stream << *chain;
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    // The 1,001st record is a class id and the length 0.
    EXPECT_EQ(memory->Size(), 36'024);
    *stream << 42;

    ASSERT_EQ(memory->SetPosition(0, IDataProvider::kFromStart), 0);
    auto const loaded = ReadObject(*stream);
    int next = 0;
    *stream >> next;
    EXPECT_EQ(next, 42);
    EXPECT_EQ(Levels(loaded.Get()), 1001);
}

TEST_F(ObjectRecordNestingTest, ReadingDeeperLosesOnlyWhatIsDeeper)
{
    for (int const levels : {1001, 1002, 5000})
    {
        SCOPED_TRACE(levels);
        Bytes bytes = ChainBytes(levels);
        Bytes const seven = Hex("21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 18 00 00 00 00 00 00 00 "
                                "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40 00 00 00 00");
        bytes.insert(bytes.end(), seven.begin(), seven.end());
        auto const memory = MakeMemory(bytes);
        auto const stream = MakeStream(*memory);
        auto const loaded = ReadObject(*stream);
        EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
        EXPECT_EQ(Levels(loaded.Get()), 1000);

        auto const dictionary = MakeDictionary();
        dictionary->Put(1, ReadObject(*stream).Get());
        int found = 0;
        EXPECT_EQ(dictionary->Get(1, found), 0);
        EXPECT_EQ(found, 7);
    }
}

TEST_F(ObjectRecordNestingTest, NeighboursOfWhatIsTooDeepAreKept)
{
    auto const outermost = MakeDictionary();
    outermost->Put(1, Chain(1003).Get());
    outermost->Put(2, 7);
    Bytes const bytes = RecordOf(kNative, *outermost);
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    auto const loaded = Load<IDictionary>(kNative, bytes);
    ASSERT_TRUE(loaded);
    int found = 0;
    EXPECT_EQ(loaded->Get(2, found), 0);
    EXPECT_EQ(found, 7);
}

TEST_F(ObjectRecordNestingTest, DepthIsThatOfOpenRecordsAndNotOfAllThatWereEver)
{
    auto const wide = MakeDictionary();
    for (unsigned int key = 0; key < 3000; ++key)
        wide->Put(key, MakeDictionary().Get());
    auto const loaded = Load<IDictionary>(kNative, RecordOf(kNative, *wide));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->Size(), 3000u);
}

TEST_F(ObjectRecordNestingTest, DictionaryThatContainsItselfCanBeWritten)
{
    auto const dictionary = MakeDictionary();
    dictionary->Put(1, dictionary.Get());
    Bytes const bytes = RecordOf(kNative, *dictionary);
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    EXPECT_EQ(bytes.size(), 36'024u);
    dictionary->Remove(1);
    EXPECT_EQ(References(*dictionary), 1);
    EXPECT_EQ(Levels(Load(kNative, bytes).Get()), 1001);
}

TEST_F(ObjectRecordNestingTest, AggregatesCountAsLevels)
{
    constexpr GUID kId{1, 0, 0, {}};
    TInterfacePtr<Scripted> chain = Make<Scripted>();
    for (int i = 1; i < 1002; ++i)
    {
        auto const outer = Make<Scripted>();
        outer->Aggregate(chain.Get(), kId);
        chain = outer;
    }
    Bytes const bytes = RecordOf(kNative, *chain);
    EXPECT_EQ(log.Take(), std::vector<Logged>{WriteThrew()});
    // A thousand levels of class id, length and count, 1,000 keys between them, and a last class id and
    // length.
    EXPECT_EQ(bytes.size(), 1000u * 28 + 1000u * 16 + 24);
    auto const loaded = Load(kNative, bytes);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(Scripted::sAlive, 1002 + 1001);
}
// Each dictionary says that it is 4 bytes long and has two entries, so each is read twice by the one before
// it.
TEST_F(ObjectRecordNestingTest, FalseCountsInEachOtherDoNotMultiply)
{
    Bytes bytes;
    for (int i = 0; i < 200; ++i)
    {
        Bytes const level = Hex("D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 04 00 00 00 00 00 00 00 "
                                "02 00 00 00 01 00 00 00");
        bytes.insert(bytes.end(), level.begin(), level.end());
    }
    auto const provider = MakeMemory(bytes);
    auto const stream = MakeStream(*provider);
    TInterfacePtr<IObject> object;
    *stream >> object.Out();
    EXPECT_TRUE(object);
    EXPECT_EQ(provider->GetPosition(), 28);
    std::vector<Logged> const messages = log.Take();
    // Without a bound there would be no end of them, nor of the reading.
    EXPECT_NE(std::find(messages.begin(), messages.end(), NoMoreMessages()), messages.end());
    EXPECT_LE(messages.size(), 1'000u);
}

// A great many records that stand beside each other are none too many.
TEST_F(ObjectRecordNestingTest, ManyEntriesAreNoEffort)
{
    auto const dictionary = MakeDictionary();
    for (unsigned int key = 0; key < 20'000; ++key)
        dictionary->Put(key, static_cast<int>(key));
    auto const loaded = Load(kNative, RecordOf(kNative, *dictionary));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(dynamic_cast<IDictionary&>(*loaded).Size(), 20'000u);
    EXPECT_EQ(log.Take(), kNothing);
}
} // namespace
} // namespace KORVA
