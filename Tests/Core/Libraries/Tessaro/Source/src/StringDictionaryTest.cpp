// The map from strings to strings.
#include "Serialization.h"

#include <utility>

namespace KORVA
{
namespace
{
using namespace TESTS;
using Entries = std::vector<std::pair<std::u16string, std::u16string>>;

class Collector final : public IStringDictionary::IForEachFunctor
{
public:
    void OnEntry(CoreString const& key, CoreString const& value) override
    {
        entries.emplace_back(key.view(), value.view());
    }

    Entries entries;
};

Entries EntriesOf(IStringDictionary const& strings)
{
    Collector collector;
    strings.ForEach(collector);
    return collector.entries;
}

class StringDictionaryTest : public SerializationTest
{
protected:
    TInterfacePtr<IStringDictionary> const strings = MakeStrings();
};

TEST_F(StringDictionaryTest, IsEmptyWhenNew)
{
    EXPECT_EQ(References(*strings), 1);
    EXPECT_EQ(strings->Size(), 0u);
    EXPECT_FALSE(strings->Has(CoreString()));
    EXPECT_EQ(EntriesOf(*strings), Entries());
}

TEST_F(StringDictionaryTest, PutReplacesAndKeepsTheCount)
{
    strings->Put(CoreString(u"a"), CoreString(u"1"));
    strings->Put(CoreString(u"b"), CoreString(u"2"));
    strings->Put(CoreString(u"a"), CoreString(u"3"));
    EXPECT_EQ(strings->Size(), 2u);
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"a", u"3"}, {u"b", u"2"}}));
}

TEST_F(StringDictionaryTest, GetAndHas)
{
    strings->Put(CoreString(u"a"), CoreString(u"1"));
    CoreString value(u"untouched");
    EXPECT_FALSE(strings->Get(CoreString(u"A"), value));
    EXPECT_EQ(value, CoreString(u"untouched"));
    EXPECT_FALSE(strings->Has(CoreString(u"A")));
    EXPECT_TRUE(strings->Get(CoreString(u"a"), value));
    EXPECT_EQ(value, CoreString(u"1"));
    EXPECT_TRUE(strings->Has(CoreString(u"a")));
}

TEST_F(StringDictionaryTest, EntriesAreCopies)
{
    CoreString key(u"a");
    CoreString value(u"1");
    strings->Put(key, value);
    key[0] = u'b';
    value[0] = u'2';
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"a", u"1"}}));
    ASSERT_TRUE(strings->Get(CoreString(u"a"), value));
    value[0] = u'3';
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"a", u"1"}}));
}

TEST_F(StringDictionaryTest, RemoveAndClear)
{
    strings->Put(CoreString(u"a"), CoreString(u"1"));
    strings->Put(CoreString(u"b"), CoreString(u"2"));
    strings->Put(CoreString(u"c"), CoreString(u"3"));
    strings->Remove(CoreString(u"absent"));
    EXPECT_EQ(strings->Size(), 3u);
    strings->Remove(CoreString(u"b"));
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"a", u"1"}, {u"c", u"3"}}));
    strings->Clear();
    EXPECT_EQ(strings->Size(), 0u);
    EXPECT_FALSE(strings->Has(CoreString(u"a")));
    strings->Clear();
    EXPECT_EQ(strings->Size(), 0u);
}

// U+1D11E is the units D834 DD1E and comes before U+FF21, which is the unit FF21: not the order of code
// points.
TEST_F(StringDictionaryTest, WalksByCodeUnit)
{
    strings->Put(CoreString(u"\uFF21"), CoreString(u"4"));
    strings->Put(CoreString(u"\U0001D11E"), CoreString(u"3"));
    strings->Put(CoreString(u"b"), CoreString(u"2"));
    strings->Put(CoreString(u"B"), CoreString(u"1"));
    strings->Put(CoreString(), CoreString(u"0"));
    strings->Put(CoreString(u"ba"), CoreString(u"2a"));
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"", u"0"},
                                            {u"B", u"1"},
                                            {u"b", u"2"},
                                            {u"ba", u"2a"},
                                            {u"\U0001D11E", u"3"},
                                            {u"\uFF21", u"4"}}));
}

TEST_F(StringDictionaryTest, DoesNotAnswerItsOwnId)
{
    IObject* found = nullptr;
    GUID const id{0xCD210A56, 0x284C, 0x4B7C, {0x81, 0x3F, 0x42, 0xAD, 0xDF, 0x77, 0x48, 0x53}};
    EXPECT_EQ(strings->QueryInterface(id, &found), -1004);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(strings->QueryInterface(IO::IPERSISTENT_DATA, &found), 0);
    EXPECT_EQ(PersistenceOf(*strings)->GetUID(), id);
}

TEST_F(StringDictionaryTest, WritesItsBytes)
{
    strings->Put(CoreString(u"a"), CoreString(u"xy"));
    EXPECT_EQ(ToHex(BodyOf(kNative, *strings)), "01 00 00 00 02 00 00 00 61 00 04 00 00 00 78 00 79 00");
    EXPECT_EQ(ToHex(RecordOf(kNative, *strings)),
              "56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53 16 00 00 00 00 00 00 00 "
              "01 00 00 00 02 00 00 00 61 00 04 00 00 00 78 00 79 00 00 00 00 00");
    EXPECT_EQ(ToHex(RecordOf(kReversed, *strings)),
              "CD 21 0A 56 28 4C 4B 7C 81 3F 42 AD DF 77 48 53 00 00 00 00 00 00 00 16 "
              "00 00 00 01 00 00 00 02 00 61 00 00 00 04 00 78 00 79 00 00 00 00");
}

TEST_F(StringDictionaryTest, WritesItsEntriesInOrder)
{
    strings->Put(CoreString(u"\uFF21"), CoreString());
    strings->Put(CoreString(u"\U0001D11E"), CoreString());
    strings->Put(CoreString(), CoreString());
    EXPECT_EQ(ToHex(BodyOf(kNative, *strings)), "03 00 00 00 00 00 00 00 00 00 00 00 04 00 00 00 34 D8 1E DD "
                                                "00 00 00 00 02 00 00 00 21 FF 00 00 00 00");
}

TEST_F(StringDictionaryTest, EmptyOneIsACount) { EXPECT_EQ(ToHex(BodyOf(kNative, *strings)), "00 00 00 00"); }

TEST_F(StringDictionaryTest, RoundTrips)
{
    strings->Put(CoreString(), CoreString());
    strings->Put(CoreString(u"key"), CoreString(u"value"));
    strings->Put(Text({u"\0\xD800", 2}), Text({u"\xDC00\0", 2}));
    for (auto const endian : {kNative, kReversed})
    {
        auto const loaded = Load<IStringDictionary>(endian, RecordOf(endian, *strings));
        ASSERT_TRUE(loaded);
        EXPECT_EQ(EntriesOf(*loaded),
                  (Entries{{u"", u""},
                           {std::u16string(u"\0\xD800", 2), std::u16string(u"\xDC00\0", 2)},
                           {u"key", u"value"}}));
    }
}

TEST_F(StringDictionaryTest, ReadingMerges)
{
    strings->Put(CoreString(u"a"), CoreString(u"old"));
    strings->Put(CoreString(u"b"), CoreString(u"kept"));
    // c, a, and c again: the later value stays.
    auto const memory =
        MakeMemory(Hex("03 00 00 00 02 00 00 00 63 00 02 00 00 00 31 00 "
                       "02 00 00 00 61 00 02 00 00 00 32 00 02 00 00 00 63 00 02 00 00 00 33 00"));
    PersistenceOf(*strings)->Read(*MakeStream(*memory));
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"a", u"2"}, {u"b", u"kept"}, {u"c", u"3"}}));
}

TEST_F(StringDictionaryTest, ReadingNoEntriesChangesNothing)
{
    strings->Put(CoreString(u"a"), CoreString(u"1"));
    for (char const* const body : {"00 00 00 00", ""})
    {
        auto const memory = MakeMemory(Hex(body));
        PersistenceOf(*strings)->Read(*MakeStream(*memory));
        EXPECT_EQ(EntriesOf(*strings), (Entries{{u"a", u"1"}}));
    }
}

// Strings that are not there are empty ones.
TEST_F(StringDictionaryTest, TruncatedBodyGivesWhatIsThere)
{
    auto const memory = MakeMemory(Hex("03 00 00 00 02 00 00 00 61 00 02 00 00 00 31 00 02 00 00 00 62 00"));
    PersistenceOf(*strings)->Read(*MakeStream(*memory));
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"", u""}, {u"a", u"1"}, {u"b", u""}}));
}

TEST_F(StringDictionaryTest, CountBeyondTheDataEndsWithTheData)
{
    auto const memory = MakeMemory(Hex("FF FF FF FF 02 00 00 00 61 00 02 00 00 00 31 00"));
    PersistenceOf(*strings)->Read(*MakeStream(*memory));
    EXPECT_EQ(EntriesOf(*strings), (Entries{{u"", u""}, {u"a", u"1"}}));
    EXPECT_TRUE(memory->AtEnd());
}
} // namespace
} // namespace KORVA
