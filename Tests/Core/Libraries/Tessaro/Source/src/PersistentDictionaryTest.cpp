// The map from numbers to values and objects: what is put, shared, replaced and released.
#include "ForeignDictionary.h"
#include "Serialization.h"

#include <utility>

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/PersistentDictionary";
constexpr char kPutBytes[] =
    "virtual void KORVA::IO::PersistentDictionary::Put(uint32, const uchar *, int32)";
constexpr char kPutUnits[] =
    "virtual void KORVA::IO::PersistentDictionary::Put(uint32, const UniChar *, int32)";

constexpr unsigned char kBytes[] = {1, 2, 3};
constexpr UniChar kUnits[] = {0x1234, 0x5678};

/// Writes down the walk and stops it after `stopAfter` entries.
class Collector final : public IDictionary::IDictionaryFunctor
{
public:
    bool OnEntry(unsigned int key, IObject* value) override
    {
        entries.emplace_back(key, value);
        return entries.size() == stopAfter;
    }

    std::size_t stopAfter = 0;
    std::vector<std::pair<unsigned int, IObject*>> entries;
};

class PersistentDictionaryTest : public SerializationTest
{
protected:
    TInterfacePtr<IDictionary> dictionary = MakeDictionary();
};

TEST_F(PersistentDictionaryTest, IsEmptyWhenNew)
{
    EXPECT_EQ(References(*dictionary), 1);
    EXPECT_EQ(dictionary->Size(), 0u);
    EXPECT_EQ(dictionary->Get(0), nullptr);
}

TEST_F(PersistentDictionaryTest, IsMadeUnderTwoIds)
{
    for (uint32 const data1 : {0x73E90C1Fu, 0x73E90CD5u})
    {
        auto const made = CreateObject<IDictionary>(
            GUID{data1, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}});
        ASSERT_TRUE(made);
        EXPECT_TRUE(dynamic_cast<IDictionary*>(made.Get()));
        // Whichever it was made under, it is written under one.
        EXPECT_EQ(PersistenceOf(*made)->GetUID(), IO::IID_DICTIONARY);
    }
}

TEST_F(PersistentDictionaryTest, AnswersItsOwnIdWithItself)
{
    IObject* found = nullptr;
    EXPECT_EQ(dictionary->QueryInterface(IO::IID_DICTIONARY, &found), 0);
    EXPECT_EQ(found, dictionary.Get());
    EXPECT_EQ(dictionary->QueryInterface(IO::IID_DICTIONARY, nullptr), 0);
    EXPECT_EQ(References(*dictionary), 1);
    found = nullptr;
    EXPECT_EQ(dictionary->QueryInterface(IO::IID_PERSISTENT_DICTIONARY, &found), -1004);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(dictionary->QueryInterface(IO::IPERSISTENT_DATA, nullptr), 0);
}

TEST_F(PersistentDictionaryTest, PutSharesTheObject)
{
    auto const object = Make<Plain>();
    dictionary->Put(5, object.Get());
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(dictionary->Get(5), object.Get());
    EXPECT_EQ(References(*object), 2) << "the getter borrows";
    dictionary.Reset();
    EXPECT_EQ(References(*object), 1);
}

TEST_F(PersistentDictionaryTest, PutNullUnderAnAbsentKeyChangesNothing)
{
    dictionary->Put(5, static_cast<IObject*>(nullptr));
    EXPECT_EQ(dictionary->Size(), 0u);
}

TEST_F(PersistentDictionaryTest, PutNullRemoves)
{
    auto const object = Make<Plain>();
    dictionary->Put(5, object.Get());
    dictionary->Put(5, static_cast<IObject*>(nullptr));
    EXPECT_EQ(dictionary->Size(), 0u);
    EXPECT_EQ(dictionary->Get(5), nullptr);
    EXPECT_EQ(References(*object), 1);
}

TEST_F(PersistentDictionaryTest, PutTheSameObjectIsLoggedAndKeepsOneReference)
{
    auto const object = Make<Plain>();
    dictionary->Put(5, object.Get());
    dictionary->Put(5, object.Get());
    EXPECT_EQ(log.Take(),
              (std::vector<Logged>{
                  {kSource, "virtual void KORVA::IO::PersistentDictionary::Put(uint32, KORVA::IObject *)",
                   354, "Putting the same value in the dictionary."}}));
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(References(*object), 2);
    // Under another key it is another entry.
    dictionary->Put(6, object.Get());
    EXPECT_EQ(References(*object), 3);
}

TEST_F(PersistentDictionaryTest, PutAnotherObjectReplaces)
{
    dictionary->Put(5, Make<Plain>().Get());
    EXPECT_EQ(Plain::sAlive, 1);
    auto const object = Make<Plain>();
    dictionary->Put(5, object.Get());
    EXPECT_EQ(Plain::sAlive, 1);
    EXPECT_EQ(dictionary->Get(5), object.Get());
    EXPECT_EQ(dictionary->Size(), 1u);
    dictionary->Put(5, 7);
    EXPECT_EQ(References(*object), 1);
}

TEST_F(PersistentDictionaryTest, ValuesOfItsOwnHaveOneReference)
{
    dictionary->Put(1, 7);
    dictionary->Put(2, GUID{});
    dictionary->Put(3, kBytes, 3);
    dictionary->Put(4, kUnits, 2);
    for (unsigned int key = 1; key <= 4; ++key)
    {
        EXPECT_EQ(References(*dictionary->Get(key)), 1) << key;
        EXPECT_EQ(dictionary->Get(key)->QueryInterface(IO::IID_IDICTIONARY_VALUE, nullptr), 0) << key;
    }
}

struct BufferRow
{
    char const* name;
    bool isNull;
    int length;
    char const* message;
    int bytesLine;
    int unitsLine;
};

BufferRow const kBuffers[] = {
    {"Null", true, 5, "You cannot Put a NULL buffer into a dictionary", 376, 388},
    {"NullAndEmpty", true, 0, "You cannot Put a NULL buffer into a dictionary", 376, 388},
    {"Empty", false, 0, "You cannot put a buffer of size 0 into a dictionary.", 380, 392},
    {"MinusFive", false, -5, "You cannot put a buffer of size -5 into a dictionary.", 380, 392},
    {"Lowest", false, -2147483647 - 1, "You cannot put a buffer of size -2147483648 into a dictionary.", 380,
     392},
};

class RefusedBufferTest : public PersistentDictionaryTest, public ::testing::WithParamInterface<BufferRow>
{
};

TEST_P(RefusedBufferTest, IsLoggedAndChangesNothing)
{
    BufferRow const& row = GetParam();
    dictionary->Put(1, 7);
    for (unsigned int const key : {1u, 2u})
    {
        dictionary->Put(key, row.isNull ? nullptr : kBytes, row.length);
        EXPECT_EQ(log.Take(), (std::vector<Logged>{{kSource, kPutBytes, row.bytesLine, row.message}}));
        dictionary->Put(key, row.isNull ? nullptr : kUnits, row.length);
        EXPECT_EQ(log.Take(), (std::vector<Logged>{{kSource, kPutUnits, row.unitsLine, row.message}}));
    }
    EXPECT_EQ(dictionary->Size(), 1u);
    int found = 0;
    EXPECT_EQ(dictionary->Get(1, found), 0);
    EXPECT_EQ(found, 7);
}

INSTANTIATE_TEST_SUITE_P(PersistentDictionary, RefusedBufferTest, ::testing::ValuesIn(kBuffers), RowName());

TEST_F(PersistentDictionaryTest, RemoveReleases)
{
    dictionary->Put(1, Make<Plain>().Get());
    dictionary->Put(2, Make<Plain>().Get());
    dictionary->Remove(3);
    EXPECT_EQ(dictionary->Size(), 2u);
    dictionary->Remove(1);
    EXPECT_EQ(dictionary->Size(), 1u);
    EXPECT_EQ(dictionary->Get(1), nullptr);
    EXPECT_EQ(Plain::sAlive, 1);
    dictionary->Remove(1);
    EXPECT_EQ(dictionary->Size(), 1u);
}

/// Writes its number down when it dies.
class Mortal final : public TObject<IObject>
{
public:
    Mortal(int number, std::vector<int>& deaths) : mNumber(number), mDeaths(deaths) {}
    ~Mortal() override { mDeaths.push_back(mNumber); }

private:
    int mNumber;
    std::vector<int>& mDeaths;
};

TEST_F(PersistentDictionaryTest, ClearReleasesInKeyOrder)
{
    std::vector<int> deaths;
    for (int const key : {3, -1, 1, 2})
    {
        TInterfacePtr<IObject> object;
        object.Adopt(new Mortal(key, deaths));
        dictionary->Put(static_cast<unsigned int>(key), object.Get());
    }
    dictionary->Clear();
    EXPECT_EQ(deaths, (std::vector<int>{1, 2, 3, -1}));
    EXPECT_EQ(dictionary->Size(), 0u);
    dictionary->Clear();
    EXPECT_EQ(dictionary->Size(), 0u);
}

TEST_F(PersistentDictionaryTest, DeathReleasesEveryEntry)
{
    dictionary->Put(1, Make<Plain>().Get());
    dictionary->Put(2, Make<Plain>().Get());
    dictionary.Reset();
    EXPECT_EQ(Plain::sAlive, 0);
}

TEST_F(PersistentDictionaryTest, ForEachWalksInKeyOrder)
{
    dictionary->Put(0xFFFFFFFF, 1);
    dictionary->Put(7, 2);
    dictionary->Put(0, 3);
    Collector all;
    dictionary->ForEach(all);
    ASSERT_EQ(all.entries.size(), 3u);
    EXPECT_EQ(all.entries[0], std::pair(0u, dictionary->Get(0)));
    EXPECT_EQ(all.entries[1], std::pair(7u, dictionary->Get(7)));
    EXPECT_EQ(all.entries[2], std::pair(0xFFFFFFFFu, dictionary->Get(0xFFFFFFFF)));
}

TEST_F(PersistentDictionaryTest, ForEachStopsWhereTheFunctorSays)
{
    for (unsigned int key = 1; key <= 5; ++key)
        dictionary->Put(key, 0);
    Collector some;
    some.stopAfter = 2;
    dictionary->ForEach(some);
    ASSERT_EQ(some.entries.size(), 2u);
    EXPECT_EQ(some.entries[1].first, 2u);
}

TEST_F(PersistentDictionaryTest, ForEachOfAnEmptyOneCallsNobody)
{
    Collector none;
    dictionary->ForEach(none);
    EXPECT_TRUE(none.entries.empty());
}

class CloneTest : public PersistentDictionaryTest
{
protected:
    CloneTest()
    {
        dictionary->Put(1, object.Get());
        dictionary->Put(2, 7);
    }

    TInterfacePtr<Plain> const object = Make<Plain>();
    TInterfacePtr<IDictionary> target;
};

TEST_F(CloneTest, MakesANewDictionary)
{
    EXPECT_EQ(dictionary->Clone(target), 0);
    ASSERT_TRUE(target);
    EXPECT_NE(target.Get(), dictionary.Get());
    EXPECT_EQ(References(*target), 1);
    EXPECT_EQ(target->Size(), 2u);
    EXPECT_EQ(target->QueryInterface(IO::IID_DICTIONARY, nullptr), 0);
    // Shallow: the values are shared.
    EXPECT_EQ(target->Get(1), object.Get());
    EXPECT_EQ(References(*object), 3);
    EXPECT_EQ(target->Get(2), dictionary->Get(2));
    EXPECT_EQ(References(*target->Get(2)), 2);
    dictionary->Put(2, 8);
    int found = 0;
    EXPECT_EQ(target->Get(2, found), 0);
    EXPECT_EQ(found, 7);
}

TEST_F(CloneTest, ReplacesTheContentOfItsOwnClass)
{
    target = MakeDictionary();
    IDictionary* const before = target.Get();
    target->Put(1, Make<Plain>().Get());
    target->Put(9, Make<Plain>().Get());
    EXPECT_EQ(dictionary->Clone(target), 0);
    EXPECT_EQ(target.Get(), before);
    EXPECT_EQ(References(*target), 1);
    EXPECT_EQ(Plain::sAlive, 1);
    EXPECT_EQ(target->Size(), 2u);
    EXPECT_EQ(target->Get(1), object.Get());
    EXPECT_EQ(target->Get(9), nullptr);
    EXPECT_EQ(References(*object), 3);
}

TEST_F(CloneTest, ClearsAnotherClassAndLeavesItEmpty)
{
    auto const foreign = Make<ForeignDictionary>();
    target.Share(foreign.Get());
    EXPECT_EQ(dictionary->Clone(target), 0);
    EXPECT_EQ(target.Get(), foreign.Get());
    EXPECT_EQ(foreign->cleared, 1);
    EXPECT_EQ(foreign->puts, 0);
    EXPECT_EQ(References(*object), 2);
}

TEST_F(CloneTest, OfAnEmptyDictionary)
{
    dictionary->Clear();
    target = MakeDictionary();
    target->Put(1, 5);
    EXPECT_EQ(dictionary->Clone(target), 0);
    EXPECT_EQ(target->Size(), 0u);
    target.Reset();
    EXPECT_EQ(dictionary->Clone(target), 0);
    ASSERT_TRUE(target);
    EXPECT_EQ(target->Size(), 0u);
}
} // namespace
} // namespace KORVA
