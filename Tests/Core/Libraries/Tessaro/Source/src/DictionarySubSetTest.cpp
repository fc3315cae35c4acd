// Which dictionaries are subsets of, or equal to, which.
#include "ForeignDictionary.h"
#include "Serialization.h"

#include <limits>

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kSubSet[] =
    "virtual bool8 KORVA::IO::PersistentDictionary::SubSet(const KORVA::IDictionary &) const";

Logged PersistentObject()
{
    return {"Core/Libraries/Tessaro/Source/src/PersistentDictionary", kSubSet, 623,
            "We don't support subsetting of persistent objects yet"};
}

Logged ArbitraryObject()
{
    return {"Core/Libraries/Tessaro/Source/src/PersistentDictionary", kSubSet, 626,
            "We don't support subsetting of arbitrary objects yet"};
}

constexpr unsigned char kBytes[] = {1, 2, 3};
constexpr unsigned char kOtherBytes[] = {1, 2, 4};
constexpr UniChar kUnits[] = {0x1234, 0x5678};
constexpr UniChar kOtherUnits[] = {0x1234, 0x5679};

using Fill = void (*)(IDictionary& dictionary);

struct PairRow
{
    char const* name;
    Fill own;
    Fill other;
    bool isSubSet;
};

template <class Value, int kValue>
void PutNumber(IDictionary& dictionary)
{
    dictionary.Put(1, static_cast<Value>(kValue));
}

void PutNothing(IDictionary&) {}

PairRow const kPairs[] = {
    {"S8Equal", &PutNumber<signed char, -5>, &PutNumber<signed char, -5>, true},
    {"S8Different", &PutNumber<signed char, -5>, &PutNumber<signed char, -6>, false},
    {"S8Absent", &PutNumber<signed char, 0>, &PutNothing, false},
    {"U8Equal", &PutNumber<unsigned char, 200>, &PutNumber<unsigned char, 200>, true},
    {"U8Different", &PutNumber<unsigned char, 200>, &PutNumber<unsigned char, 201>, false},
    {"U8Absent", &PutNumber<unsigned char, 0>, &PutNothing, false},
    {"S16Equal", &PutNumber<short, -500>, &PutNumber<short, -500>, true},
    {"S16Different", &PutNumber<short, -500>, &PutNumber<short, -501>, false},
    {"S16Absent", &PutNumber<short, 0>, &PutNothing, false},
    {"U16Equal", &PutNumber<unsigned short, 50000>, &PutNumber<unsigned short, 50000>, true},
    {"U16Different", &PutNumber<unsigned short, 50000>, &PutNumber<unsigned short, 50001>, false},
    {"U16Absent", &PutNumber<unsigned short, 0>, &PutNothing, false},
    {"S32Equal", &PutNumber<int, -70000>, &PutNumber<int, -70000>, true},
    {"S32Different", &PutNumber<int, -70000>, &PutNumber<int, -70001>, false},
    {"S32Absent", &PutNumber<int, 0>, &PutNothing, false},
    {"U32Equal", &PutNumber<unsigned int, 70000>, &PutNumber<unsigned int, 70000>, true},
    {"U32Different", &PutNumber<unsigned int, 70000>, &PutNumber<unsigned int, 70001>, false},
    {"U32Absent", &PutNumber<unsigned int, 0>, &PutNothing, false},
    {"S64Equal", &PutNumber<long long, -7>, &PutNumber<long long, -7>, true},
    {"S64Different", &PutNumber<long long, -7>, &PutNumber<long long, -8>, false},
    {"S64Absent", &PutNumber<long long, 0>, &PutNothing, false},
    {"U64Equal", &PutNumber<unsigned long long, 7>, &PutNumber<unsigned long long, 7>, true},
    {"U64Different", &PutNumber<unsigned long long, 7>, &PutNumber<unsigned long long, 8>, false},
    {"U64Absent", &PutNumber<unsigned long long, 0>, &PutNothing, false},
    {"FloatEqual", &PutNumber<float, 3>, &PutNumber<float, 3>, true},
    {"FloatDifferent", &PutNumber<float, 3>, &PutNumber<float, 4>, false},
    {"FloatAbsent", &PutNumber<float, 0>, &PutNothing, false},
    {"DoubleEqual", &PutNumber<double, 3>, &PutNumber<double, 3>, true},
    {"DoubleDifferent", &PutNumber<double, 3>, &PutNumber<double, 4>, false},
    {"DoubleAbsent", &PutNumber<double, 0>, &PutNothing, false},
    {"FloatNaN", [](IDictionary& d) { d.Put(1, std::numeric_limits<float>::quiet_NaN()); },
     [](IDictionary& d) { d.Put(1, std::numeric_limits<float>::quiet_NaN()); }, false},
    {"DoubleNaN", [](IDictionary& d) { d.Put(1, std::numeric_limits<double>::quiet_NaN()); },
     [](IDictionary& d) { d.Put(1, std::numeric_limits<double>::quiet_NaN()); }, false},
    {"DoubleNaNThereOnly", &PutNumber<double, 3>,
     [](IDictionary& d) { d.Put(1, std::numeric_limits<double>::quiet_NaN()); }, false},
    {"DoubleInfinity", [](IDictionary& d) { d.Put(1, std::numeric_limits<double>::infinity()); },
     [](IDictionary& d) { d.Put(1, std::numeric_limits<double>::infinity()); }, true},
    {"DoubleZeroes", [](IDictionary& d) { d.Put(1, 0.0); }, [](IDictionary& d) { d.Put(1, -0.0); }, true},
    {"IdentifierEqual", [](IDictionary& d) { d.Put(1, IO::IID_DICTIONARY); },
     [](IDictionary& d) { d.Put(1, IO::IID_DICTIONARY); }, true},
    {"IdentifierDifferentInItsLastByte",
     [](IDictionary& d) {
         d.Put(1, GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}});
     },
     [](IDictionary& d) {
         d.Put(1, GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 12}});
     },
     false},
    {"IdentifierAbsent", [](IDictionary& d) { d.Put(1, GUID{}); }, &PutNothing, false},
    {"IdentifierOverANumber", [](IDictionary& d) { d.Put(1, GUID{}); }, &PutNumber<int, 0>, false},
    {"NumberOverAnIdentifier", &PutNumber<int, 0>,
     [](IDictionary& d) {
         d.Put(1, GUID{1, 2, 3, {}});
     },
     true},
    {"BytesEqual", [](IDictionary& d) { d.Put(1, kBytes, 3); }, [](IDictionary& d) { d.Put(1, kBytes, 3); },
     true},
    {"BytesDifferent", [](IDictionary& d) { d.Put(1, kBytes, 3); },
     [](IDictionary& d) { d.Put(1, kOtherBytes, 3); }, false},
    {"BytesLonger", [](IDictionary& d) { d.Put(1, kBytes, 2); }, [](IDictionary& d) { d.Put(1, kBytes, 3); },
     false},
    {"BytesShorter", [](IDictionary& d) { d.Put(1, kBytes, 3); }, [](IDictionary& d) { d.Put(1, kBytes, 2); },
     false},
    {"BytesAbsent", [](IDictionary& d) { d.Put(1, kBytes, 3); }, &PutNothing, false},
    {"BytesOverUnits", [](IDictionary& d) { d.Put(1, reinterpret_cast<unsigned char const*>(kUnits), 4); },
     [](IDictionary& d) { d.Put(1, kUnits, 2); }, false},
    {"UnitsEqual", [](IDictionary& d) { d.Put(1, kUnits, 2); }, [](IDictionary& d) { d.Put(1, kUnits, 2); },
     true},
    {"UnitsDifferent", [](IDictionary& d) { d.Put(1, kUnits, 2); },
     [](IDictionary& d) { d.Put(1, kOtherUnits, 2); }, false},
    {"UnitsShorter", [](IDictionary& d) { d.Put(1, kUnits, 2); }, [](IDictionary& d) { d.Put(1, kUnits, 1); },
     false},
    {"UnitsAbsent", [](IDictionary& d) { d.Put(1, kUnits, 2); }, &PutNothing, false},
    {"UnitsOverBytes", [](IDictionary& d) { d.Put(1, kUnits, 2); },
     [](IDictionary& d) { d.Put(1, reinterpret_cast<unsigned char const*>(kUnits), 4); }, false},

    // Numbers are fetched as the own type, whatever the other dictionary has.
    {"IntOverShort", &PutNumber<int, 5>, &PutNumber<short, 5>, true},
    {"IntOverUnsignedChar", &PutNumber<int, 5>, &PutNumber<unsigned char, 5>, true},
    {"UnsignedCharOverIntCutToIts8Bits", &PutNumber<unsigned char, 5>, &PutNumber<int, 0x105>, true},
    {"IntOverUnsignedCharIsNotCut", &PutNumber<int, 0x105>, &PutNumber<unsigned char, 5>, false},
    {"SignedCharOverUnsignedChar", &PutNumber<signed char, -1>, &PutNumber<unsigned char, 255>, true},
    {"IntMinusOneOverUnsignedChar", &PutNumber<int, -1>, &PutNumber<unsigned char, 255>, false},
    {"IntOverDouble", &PutNumber<int, 2>, [](IDictionary& d) { d.Put(1, 2.75); }, true},
    {"DoubleOverInt", [](IDictionary& d) { d.Put(1, 2.75); }, &PutNumber<int, 2>, false},
    {"FloatOverDoubleRounded", [](IDictionary& d) { d.Put(1, 0.1f); }, [](IDictionary& d) { d.Put(1, 0.1); },
     true},
    {"DoubleOverFloatNotRounded", [](IDictionary& d) { d.Put(1, 0.1); },
     [](IDictionary& d) { d.Put(1, 0.1f); }, false},
    {"AbsentUnderThatKey", &PutNumber<int, 5>, [](IDictionary& d) { d.Put(2, 5); }, false},
    {"OverAnObject", &PutNumber<int, 5>,
     [](IDictionary& d) { d.Put(1, CreateObject<IStringDictionary>(IO::IID_STRING_DICTIONARY).Get()); },
     false},
};

using SubSetTest = SerializationTestWith<PairRow>;

TEST_P(SubSetTest, OfPlainValues)
{
    auto const own = MakeDictionary();
    auto const other = MakeDictionary();
    GetParam().own(*own);
    GetParam().other(*other);
    EXPECT_EQ(own->SubSet(*other), GetParam().isSubSet);
    EXPECT_EQ(own->Equals(*other), GetParam().isSubSet);
    // More entries there do no harm to the subset, but the sizes differ.
    other->Put(9, 9);
    other->Put(8, 8);
    EXPECT_EQ(own->SubSet(*other), GetParam().isSubSet);
    EXPECT_FALSE(own->Equals(*other));
}

INSTANTIATE_TEST_SUITE_P(PersistentDictionary, SubSetTest, ::testing::ValuesIn(kPairs), RowName());

class DictionarySubSetTest : public SerializationTest
{
protected:
    /// The value that a body makes, under key 1.
    static TInterfacePtr<IDictionary> WithValue(char const* body)
    {
        auto const value = CreateObject<IObject>(IO::IID_IDICTIONARY_VALUE);
        auto const memory = LibraryTest::MakeMemory(Hex(body));
        PersistenceOf(*value)->Read(*MakeStream(*memory));
        auto dictionary = MakeDictionary();
        dictionary->Put(1, value.Get());
        return dictionary;
    }

    TInterfacePtr<IDictionary> const own = MakeDictionary();
    TInterfacePtr<IDictionary> const other = MakeDictionary();
    TInterfacePtr<ForeignDictionary> const foreign = Make<ForeignDictionary>();
};

TEST_F(DictionarySubSetTest, EmptyOneIsInEveryOther)
{
    other->Put(1, 5);
    EXPECT_TRUE(own->SubSet(*other));
    EXPECT_FALSE(own->Equals(*other));
    other->Clear();
    EXPECT_TRUE(own->SubSet(*other));
    EXPECT_TRUE(own->Equals(*other));
}

// Even where its own values equal nothing, not even themselves.
TEST_F(DictionarySubSetTest, EveryOneIsInItself)
{
    own->Put(1, std::numeric_limits<double>::quiet_NaN());
    own->Put(2, Make<Plain>().Get());
    EXPECT_TRUE(own->SubSet(*own));
    EXPECT_TRUE(own->Equals(*own));
}

TEST_F(DictionarySubSetTest, OneUnequalEntryDecides)
{
    for (unsigned int key = 1; key <= 5; ++key)
    {
        own->Put(key, static_cast<int>(key));
        other->Put(key, static_cast<int>(key));
    }
    EXPECT_TRUE(own->Equals(*other));
    other->Put(5, 6);
    EXPECT_FALSE(own->SubSet(*other));
    EXPECT_FALSE(own->Equals(*other));
}

TEST_F(DictionarySubSetTest, UntypedValueIsInNoOther)
{
    auto const untyped = WithValue("54 4E 4E 55");
    auto const same = WithValue("54 4E 4E 55");
    EXPECT_FALSE(untyped->SubSet(*same));
}

TEST_F(DictionarySubSetTest, ValueOfAnUnknownTagPasses)
{
    auto const unknown = WithValue("78 56 34 12");
    EXPECT_TRUE(unknown->SubSet(*other));
    EXPECT_FALSE(unknown->Equals(*other));
}

// The 300 in the field of an 8-bit value can only come from a file.
TEST_F(DictionarySubSetTest, OwnIntegerIsCutToItsWidth)
{
    auto const wide = WithValue("4C 56 38 55 2C 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    other->Put(1, static_cast<unsigned char>(44));
    EXPECT_TRUE(wide->SubSet(*other));
}

TEST_F(DictionarySubSetTest, OwnFloatIsRoundedToItsWidth)
{
    // The double 0.1 under the tag of a float.
    auto const wide = WithValue("32 33 4C 46 00 00 00 00 00 00 00 00 9A 99 99 99 99 99 B9 3F");
    other->Put(1, 0.1f);
    EXPECT_TRUE(wide->SubSet(*other));
}

TEST_F(DictionarySubSetTest, PersistentObjectsAreLoggedAndPass)
{
    own->Put(1, MakeDictionary().Get());
    own->Put(2, MakeStrings().Get());
    own->Put(3, Make<Scripted>().Get());
    EXPECT_TRUE(own->SubSet(*other));
    EXPECT_EQ(log.Take(), std::vector<Logged>(3, PersistentObject()));
    other->Put(7, 7);
    other->Put(8, 8);
    other->Put(9, 9);
    EXPECT_TRUE(own->Equals(*other));
    EXPECT_EQ(log.Take(), std::vector<Logged>(3, PersistentObject()));
}

TEST_F(DictionarySubSetTest, ArbitraryObjectsAreLoggedAndPass)
{
    own->Put(1, Make<Plain>().Get());
    own->Put(2, MakeDictionary().Get());
    EXPECT_TRUE(own->SubSet(*other));
    EXPECT_EQ(log.Take(), (std::vector<Logged>{ArbitraryObject(), PersistentObject()}));
}

// In key order, so an unequal value in front of an object keeps the object from being looked at.
TEST_F(DictionarySubSetTest, EntriesAreComparedInKeyOrder)
{
    own->Put(2, Make<Plain>().Get());
    own->Put(1, 5);
    EXPECT_FALSE(own->SubSet(*other));
    EXPECT_EQ(log.Take(), kNothing);
    own->Put(3, 5);
    other->Put(1, 5);
    EXPECT_FALSE(own->SubSet(*other));
    EXPECT_EQ(log.Take(), std::vector<Logged>{ArbitraryObject()});
}

TEST_F(DictionarySubSetTest, AsksTheGetterOfTheOwnType)
{
    own->Put(1, static_cast<signed char>(0));
    own->Put(2, static_cast<unsigned char>(0));
    own->Put(3, static_cast<short>(0));
    own->Put(4, static_cast<unsigned short>(0));
    own->Put(5, 0);
    own->Put(6, 0u);
    own->Put(7, 0LL);
    own->Put(8, 0ULL);
    own->Put(9, 0.0f);
    own->Put(10, 0.0);
    own->Put(11, GUID{});
    own->Put(12, kBytes, 1);
    foreign->bytes = kBytes;
    foreign->length = 1;
    EXPECT_TRUE(own->SubSet(*foreign));
    EXPECT_EQ(foreign->asked,
              (std::vector<std::string>{"S8 1", "U8 2", "S16 3", "U16 4", "S32 5", "U32 6", "S64 7", "U64 8",
                                        "FL32 9", "FL64 10", "GUID 11", "CHAR 12"}));
    foreign->asked.clear();
    own->Clear();
    own->Put(13, kUnits, 1);
    foreign->units = kUnits;
    EXPECT_TRUE(own->SubSet(*foreign));
    EXPECT_EQ(foreign->asked, std::vector<std::string>{"UNIC 13"});
}

struct AnswerRow
{
    char const* name;
    Fill own;
};

AnswerRow const kAnswers[] = {
    {"Int", [](IDictionary& d) { d.Put(1, 5); }},
    {"UnsignedChar", [](IDictionary& d) { d.Put(1, static_cast<unsigned char>(5)); }},
    {"Float", [](IDictionary& d) { d.Put(1, 5.0f); }},
    {"Double", [](IDictionary& d) { d.Put(1, 5.0); }},
    {"Identifier",
     [](IDictionary& d) {
         d.Put(1, GUID{1, 2, 3, {4}});
     }},
    {"Bytes", [](IDictionary& d) { d.Put(1, kBytes, 2); }},
    {"Units", [](IDictionary& d) { d.Put(1, kUnits, 2); }},
};

class ForeignAnswerTest : public DictionarySubSetTest, public ::testing::WithParamInterface<AnswerRow>
{
protected:
    void SetUp() override
    {
        GetParam().own(*own);
        foreign->number = 5;
        foreign->identifier = GUID{1, 2, 3, {4}};
        foreign->bytes = kBytes;
        foreign->units = kUnits;
        foreign->length = 2;
    }
};

TEST_P(ForeignAnswerTest, ZeroIsCompared)
{
    EXPECT_TRUE(own->SubSet(*foreign));
    EXPECT_TRUE(own->Equals(*foreign));
    foreign->number = 6;
    foreign->identifier.Data4[7] = 1;
    foreign->bytes = kOtherBytes + 1;
    foreign->units = kOtherUnits;
    EXPECT_FALSE(own->SubSet(*foreign));
}

TEST_P(ForeignAnswerTest, MinusOneIsAbsentWhateverWasDelivered)
{
    foreign->answer = -1;
    EXPECT_FALSE(own->SubSet(*foreign));
}

// A code that says neither absent nor of another type is no reason to disbelieve what was delivered.
TEST_P(ForeignAnswerTest, AnotherCodeIsCompared)
{
    foreign->answer = 5;
    EXPECT_TRUE(own->SubSet(*foreign));
    foreign->delivers = false;
    EXPECT_FALSE(own->SubSet(*foreign));
}

TEST_P(ForeignAnswerTest, WrongTypeWithoutAValueIsUnequal)
{
    foreign->answer = 10;
    foreign->delivers = false;
    EXPECT_FALSE(own->SubSet(*foreign));
}

INSTANTIATE_TEST_SUITE_P(PersistentDictionary, ForeignAnswerTest, ::testing::ValuesIn(kAnswers), RowName());

TEST_F(DictionarySubSetTest, NumberThatTheForeignGetterCallsOfAnotherTypeIsCompared)
{
    own->Put(1, 5);
    foreign->answer = 10;
    foreign->number = 5;
    EXPECT_TRUE(own->SubSet(*foreign));
}

TEST_F(DictionarySubSetTest, BufferThatTheForeignGetterCallsOfAnotherTypeIsUnequal)
{
    own->Put(1, kBytes, 2);
    foreign->answer = 10;
    foreign->bytes = kBytes;
    foreign->length = 2;
    EXPECT_FALSE(own->SubSet(*foreign));
    own->Clear();
    own->Put(1, kUnits, 2);
    foreign->units = kUnits;
    EXPECT_FALSE(own->SubSet(*foreign));
    own->Clear();
    own->Put(1, GUID{});
    EXPECT_FALSE(own->SubSet(*foreign));
}

TEST_F(DictionarySubSetTest, EmptyBuffersAreEqualEvenWithoutAnAddress)
{
    auto const bytes = WithValue("52 41 48 43 00 00 00 00");
    auto const units = WithValue("43 49 4E 55 00 00 00 00");
    EXPECT_TRUE(bytes->SubSet(*foreign));
    EXPECT_TRUE(units->SubSet(*foreign));
    EXPECT_TRUE(bytes->SubSet(*WithValue("52 41 48 43 00 00 00 00")));
}

TEST_F(DictionarySubSetTest, EqualsComparesTheForeignSizeFirst)
{
    own->Put(1, 5);
    foreign->number = 5;
    foreign->size = 2;
    EXPECT_FALSE(own->Equals(*foreign));
    EXPECT_TRUE(foreign->asked.empty());
    foreign->size = 1;
    EXPECT_TRUE(own->Equals(*foreign));
}
} // namespace
} // namespace KORVA
