// The dictionary behind the friendly layer: values in, values out.
#include <tessio/Cxx/Dictionary.h>

#include "SDK/Cxx/Note.h"
#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/Cxx/StringDictionary.h>

#include <cmath>
#include <limits>

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;
using CXX::ValueKind;

class CxxDictionary : public LibraryTest
{
protected:
    Dictionary dictionary = Dictionary::Create().value();
};

constexpr GUID kId{0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};

TEST_F(CxxDictionary, KeepsEveryNumber)
{
    dictionary.Set(1, static_cast<signed char>(-8));
    dictionary.Set(2, static_cast<unsigned char>(200));
    dictionary.Set(3, static_cast<short>(-300));
    dictionary.Set(4, static_cast<unsigned short>(60000));
    dictionary.Set(5, -70000);
    dictionary.Set(6, 4000000000u);
    dictionary.Set(7, -5000000000L);
    dictionary.Set(8, 18446744073709551615UL);
    dictionary.Set(9, -9223372036854775807LL - 1);
    dictionary.Set(10, 9223372036854775808ULL);
    dictionary.Set(11, 1.5f);
    dictionary.Set(12, 0.1);
    EXPECT_EQ(dictionary.Get<signed char>(1).value(), -8);
    EXPECT_EQ(dictionary.Get<unsigned char>(2).value(), 200);
    EXPECT_EQ(dictionary.Get<short>(3).value(), -300);
    EXPECT_EQ(dictionary.Get<unsigned short>(4).value(), 60000);
    EXPECT_EQ(dictionary.Get<int>(5).value(), -70000);
    EXPECT_EQ(dictionary.Get<unsigned int>(6).value(), 4000000000u);
    EXPECT_EQ(dictionary.Get<long>(7).value(), -5000000000L);
    EXPECT_EQ(dictionary.Get<unsigned long>(8).value(), 18446744073709551615UL);
    EXPECT_EQ(dictionary.Get<long long>(9).value(), -9223372036854775807LL - 1);
    EXPECT_EQ(dictionary.Get<unsigned long long>(10).value(), 9223372036854775808ULL);
    EXPECT_EQ(dictionary.Get<float>(11).value(), 1.5f);
    EXPECT_EQ(dictionary.Get<double>(12).value(), 0.1);
    EXPECT_EQ(dictionary.Size(), 12u);
}

/// A number put as a double or as a 64-bit integer, and what each type makes of it (2004: does not fit).
struct NumberRow
{
    char const* name;
    void (*put)(Dictionary&);
    int asUnsignedChar;
    int asInt;
    int asLongLong;
    int asUnsignedLongLong;
    int asFloat;
};

constexpr int kFits = 0;
constexpr int kNot = 2004;

NumberRow const kNumbers[] = {
    {"Zero", [](Dictionary& d) { d.Set(1, 0); }, kFits, kFits, kFits, kFits, kFits},
    {"MinusZero", [](Dictionary& d) { d.Set(1, -0.0); }, kFits, kFits, kFits, kFits, kFits},
    {"MinusOne", [](Dictionary& d) { d.Set(1, -1); }, kNot, kFits, kFits, kNot, kFits},
    {"Byte", [](Dictionary& d) { d.Set(1, 255); }, kFits, kFits, kFits, kFits, kFits},
    {"BeyondByte", [](Dictionary& d) { d.Set(1, 256); }, kNot, kFits, kFits, kFits, kFits},
    {"WholeDouble", [](Dictionary& d) { d.Set(1, 7.0); }, kFits, kFits, kFits, kFits, kFits},
    {"Fraction", [](Dictionary& d) { d.Set(1, 2.75); }, kNot, kNot, kNot, kNot, kFits},
    {"BeyondInt", [](Dictionary& d) { d.Set(1, 2147483648LL); }, kNot, kNot, kFits, kFits, kFits},
    {"LeastInt", [](Dictionary& d) { d.Set(1, -2147483647 - 1); }, kNot, kFits, kFits, kNot, kFits},
    {"OddBeyondDouble", [](Dictionary& d) { d.Set(1, 9007199254740993LL); }, kNot, kNot, kFits, kFits, kFits},
    {"MostSigned", [](Dictionary& d) { d.Set(1, 9223372036854775807LL); }, kNot, kNot, kFits, kFits, kFits},
    {"LeastSigned", [](Dictionary& d) { d.Set(1, -9223372036854775807LL - 1); }, kNot, kNot, kFits, kNot,
     kFits},
    {"AboveSigned", [](Dictionary& d) { d.Set(1, 9223372036854775808ULL); }, kNot, kNot, kNot, kFits, kFits},
    {"MostUnsigned", [](Dictionary& d) { d.Set(1, 18446744073709551615ULL); }, kNot, kNot, kNot, kFits,
     kFits},
    {"LargeDouble", [](Dictionary& d) { d.Set(1, 1.0e18); }, kNot, kNot, kFits, kFits, kFits},
    {"LargeNegativeDouble", [](Dictionary& d) { d.Set(1, -1.0e18); }, kNot, kNot, kFits, kNot, kFits},
    {"TwoToThe63", [](Dictionary& d) { d.Set(1, 9223372036854775808.0); }, kNot, kNot, kNot, kFits, kFits},
    {"TwoToThe64", [](Dictionary& d) { d.Set(1, 18446744073709551616.0); }, kNot, kNot, kNot, kNot, kFits},
    {"BelowSigned", [](Dictionary& d) { d.Set(1, -1.0e19); }, kNot, kNot, kNot, kNot, kFits},
    {"BeyondFloat", [](Dictionary& d) { d.Set(1, 1.0e300); }, kNot, kNot, kNot, kNot, kNot},
    {"Infinite", [](Dictionary& d) { d.Set(1, HUGE_VAL); }, kNot, kNot, kNot, kNot, kFits},
    {"NotANumber", [](Dictionary& d) { d.Set(1, std::nan("")); }, kNot, kNot, kNot, kNot, kFits},
};

class CxxNumber : public LibraryTestWith<NumberRow>
{
};

TEST_P(CxxNumber, IsGivenWhereTheTypeHoldsIt)
{
    Dictionary dictionary = Dictionary::Create().value();
    GetParam().put(dictionary);
    EXPECT_EQ(dictionary.Get<unsigned char>(1).error().Code(), GetParam().asUnsignedChar);
    EXPECT_EQ(dictionary.Get<int>(1).error().Code(), GetParam().asInt);
    EXPECT_EQ(dictionary.Get<long long>(1).error().Code(), GetParam().asLongLong);
    EXPECT_EQ(dictionary.Get<unsigned long long>(1).error().Code(), GetParam().asUnsignedLongLong);
    EXPECT_EQ(dictionary.Get<float>(1).error().Code(), GetParam().asFloat);
    EXPECT_TRUE(dictionary.Get<double>(1));
    EXPECT_EQ(dictionary.Kind(1).value(), ValueKind::kNumber);
}

INSTANTIATE_TEST_SUITE_P(Numbers, CxxNumber, ::testing::ValuesIn(kNumbers), RowName());

TEST_F(CxxDictionary, GivesLargeIntegersToTheLastBit)
{
    dictionary.Set(1, 9007199254740993LL);
    EXPECT_EQ(dictionary.Get<long long>(1).value(), 9007199254740993LL);
    dictionary.Set(1, -9007199254740993LL);
    EXPECT_EQ(dictionary.Get<long long>(1).value(), -9007199254740993LL);
    dictionary.Set(1, -1.0e18);
    EXPECT_EQ(dictionary.Get<long long>(1).value(), -1000000000000000000LL);
    dictionary.Set(1, -5);
    EXPECT_EQ(dictionary.Get<signed char>(1).value(), -5);
    EXPECT_EQ(dictionary.Get<double>(1).value(), -5.0);
}

TEST_F(CxxDictionary, KeepsTexts)
{
    ASSERT_TRUE(dictionary.Set(1, u"Tuesday"));
    ASSERT_TRUE(dictionary.Set(2, "Gr\xC3\xBC\xC3\x9F"
                                  "e"));
    ASSERT_TRUE(dictionary.Set(3, u8"\u00E4"));
    ASSERT_TRUE(dictionary.Set(4, std::u16string(u"a\0b", 3)));
    ASSERT_TRUE(dictionary.Set(5, std::string_view("view")));
    ASSERT_TRUE(dictionary.Set(6, STRING::CoreString(u"core")));
    EXPECT_EQ(dictionary.Get<std::u16string_view>(1).value(), u"Tuesday");
    EXPECT_EQ(dictionary.Get<std::u16string>(2).value(), u"Gr\u00FC\u00DFe");
    EXPECT_EQ(dictionary.Get<std::string>(3).value(), "\xC3\xA4");
    EXPECT_EQ(dictionary.Get<std::u16string>(4).value().size(), 3u);
    EXPECT_EQ(dictionary.Get<std::string>(5).value(), "view");
    EXPECT_EQ(dictionary.Get<std::string>(6).value(), "core");
    EXPECT_EQ(dictionary.Kind(1).value(), ValueKind::kText);
}

TEST_F(CxxDictionary, KeepsBytesAndIdentifiers)
{
    unsigned char const array[] = {1, 2};
    ASSERT_TRUE(dictionary.Set(1, array));
    ASSERT_TRUE(dictionary.Set(2, std::vector<unsigned char>{3, 4, 5}));
    ASSERT_TRUE(dictionary.Set(3, std::vector<std::byte>{std::byte{6}}));
    dictionary.Set(4, kId);
    EXPECT_EQ(dictionary.Get<std::vector<unsigned char>>(1).value(), (std::vector<unsigned char>{1, 2}));
    EXPECT_EQ(dictionary.Get<std::span<unsigned char const>>(2)->size(), 3u);
    EXPECT_EQ(dictionary.Get<std::span<std::byte const>>(3).value()[0], std::byte{6});
    EXPECT_EQ(dictionary.Get<GUID>(4).value(), kId);
    EXPECT_EQ(dictionary.Kind(1).value(), ValueKind::kBytes);
    EXPECT_EQ(dictionary.Kind(4).value(), ValueKind::kGUID);
}

TEST_F(CxxDictionary, SharesObjects)
{
    Dictionary inner = Dictionary::Create().value();
    inner.Set(9, 2.5);
    ASSERT_TRUE(dictionary.Set(1, inner));
    ASSERT_TRUE(dictionary.Set(1, inner)) << "the object that is there already";
    ASSERT_TRUE(dictionary.Set(2, CXX::StringDictionary::Create().value()));
    ASSERT_TRUE(dictionary.Set(3, MakeNote(7)));
    ASSERT_TRUE(dictionary.Set(4, MakeNote(8).Pointer()));
    EXPECT_EQ(CountOf(*inner), 2);
    EXPECT_TRUE(dictionary.Get<Dictionary>(1)->IsSame(inner));
    EXPECT_TRUE(dictionary.Get<CXX::StringDictionary>(2));
    EXPECT_EQ((*dictionary.Get<CXX::Handle<INote>>(3))->Number(), 7);
    EXPECT_EQ((*dictionary.Get<CXX::Handle<INote>>(4))->Number(), 8);
    EXPECT_TRUE(dictionary.Get<CXX::Object>(1));
    EXPECT_EQ(dictionary.Get<Dictionary>(2).error().Code(), 10);
    EXPECT_EQ(dictionary.Get<Dictionary>(3).error().Code(), 10);
    EXPECT_EQ(dictionary.Kind(2).value(), ValueKind::kObject);
    EXPECT_EQ(CountOf(*inner), 2) << "what was fetched is let go";
}

TEST_F(CxxDictionary, RefusesWhatItCannotKeepAndLeavesWhatIsThere)
{
    dictionary.Set(1, 7);
    EXPECT_EQ(dictionary.Set(1, u"").error().Code(), 2002);
    EXPECT_EQ(dictionary.Set(1, "").error().Code(), 2002);
    EXPECT_EQ(dictionary.Set(1, std::span<unsigned char const>()).error().Code(), 2002);
    EXPECT_EQ(dictionary.Set(1, std::vector<std::byte>()).error().Code(), 2002);
    EXPECT_EQ(dictionary.Set(1, "\xFF").error().Code(), 2005);
    EXPECT_EQ(dictionary.Set(1, TInterfacePtr<IObject>()).error().Code(), 12);
    EXPECT_EQ(dictionary.Set(1, dictionary).error().Code(), 2006);
    EXPECT_EQ(dictionary.Set(1, u"").error().Message(),
              "cannot set key 1: a dictionary keeps no empty buffers and texts (kEmptyValue)");
    EXPECT_EQ(dictionary.Get<int>(1).value(), 7);
    EXPECT_EQ(dictionary.Size(), 1u);
}

TEST_F(CxxDictionary, RefusesMoreThanTheInterfaceCanCount)
{
    // Only the length is looked at.
    unsigned char const one = 1;
    std::span<unsigned char const> const bytes(&one, std::size_t{2147483648});
    EXPECT_EQ(dictionary.Set(1, bytes).error().Code(), 2003);
    UniChar const unit = u'x';
    EXPECT_EQ(dictionary.Set(1, std::u16string_view(&unit, std::size_t{1073741824})).error().Code(), 2003);
    EXPECT_TRUE(dictionary.IsEmpty());
}

TEST_F(CxxDictionary, SaysWhatIsNotThere)
{
    dictionary.Set(1, 7);
    dictionary.Set(2, kId);
    ASSERT_TRUE(dictionary.Set(3, u"\xD800"));
    ASSERT_TRUE(dictionary.Set(4, MakeNote(1)));
    EXPECT_EQ(dictionary.Get<int>(9).error().Message(), "cannot get key 9: no such entry (kNoEntry)");
    EXPECT_EQ(dictionary.Get<CXX::Object>(9).error().Code(), 2001);
    EXPECT_EQ(dictionary.Kind(9).error().Code(), 2001);
    EXPECT_EQ(dictionary.Get<int>(2).error().Message(),
              "cannot get key 2: a value of another type (kWrongType)");
    EXPECT_EQ(dictionary.Get<double>(3).error().Code(), 10);
    EXPECT_EQ(dictionary.Get<int>(4).error().Code(), 10);
    EXPECT_EQ(dictionary.Get<GUID>(1).error().Code(), 10);
    EXPECT_EQ(dictionary.Get<std::u16string_view>(1).error().Code(), 10);
    EXPECT_EQ(dictionary.Get<std::span<unsigned char const>>(3).error().Code(), 10);
    EXPECT_EQ(dictionary.Get<std::u16string>(3).value().size(), 1u);
    EXPECT_EQ(dictionary.Get<std::string>(3).error().Code(), 2005) << "UTF-8 can't say a lone surrogate";
}

TEST_F(CxxDictionary, RemovesAndClears)
{
    dictionary.Set(1, 7);
    dictionary.Set(2, 8);
    EXPECT_TRUE(dictionary.Contains(1));
    EXPECT_TRUE(dictionary.Remove(1));
    EXPECT_FALSE(dictionary.Remove(1));
    EXPECT_FALSE(dictionary.Contains(1));
    EXPECT_EQ(dictionary.Size(), 1u);
    EXPECT_FALSE(dictionary.IsEmpty());
    dictionary.Clear();
    EXPECT_TRUE(dictionary.IsEmpty());
}

TEST_F(CxxDictionary, IsComparedByWhatIsInIt)
{
    Dictionary other = Dictionary::Create().value();
    EXPECT_TRUE(dictionary == other);
    dictionary.Set(1, 5);
    EXPECT_FALSE(dictionary == other);
    other.Set(1, static_cast<unsigned char>(5));
    EXPECT_TRUE(dictionary == other) << "whatever the type of a number";
    EXPECT_FALSE(dictionary.IsSame(other));
    other.Set(1, 6);
    EXPECT_TRUE(dictionary != other);
}

TEST_F(CxxDictionary, CopiesShareAndClonesDoNot)
{
    dictionary.Set(1, 5);
    Dictionary const copy = dictionary;
    Dictionary clone = dictionary.Clone();
    dictionary.Set(1, 6);
    EXPECT_TRUE(copy.IsSame(dictionary));
    EXPECT_EQ(copy.Get<int>(1).value(), 6);
    EXPECT_FALSE(clone.IsSame(dictionary));
    EXPECT_EQ(clone.Get<int>(1).value(), 5);
}

TEST(CxxWithoutALibrary, NothingIsCreated)
{
    auto const created = Dictionary::Create();
    ASSERT_FALSE(created);
    EXPECT_EQ(
        created.error().Message(),
        "cannot create an object of class {73E90CD5-BBC6-4326-8241-9BB4250B1B05}: no registry, or nothing "
        "makes such an object (kNoObject)");
}

template <class D, class T>
concept CanSet = requires(D dictionary, T value)
{
    dictionary.Set(1, value);
};
template <class T>
concept Settable = CanSet<Dictionary&, T>;

static_assert(Settable<int> && Settable<long> && Settable<std::size_t> && Settable<GUID>);
static_assert(Settable<char const*> && Settable<char16_t const*> && Settable<std::string>);
static_assert(Settable<std::span<std::byte>> && Settable<Dictionary> && Settable<CXX::Object>);
static_assert(Settable<TInterfacePtr<INote>>);
// Would come back as numbers.
static_assert(!Settable<bool> && !Settable<char> && !Settable<char16_t> && !Settable<wchar_t>);
static_assert(!Settable<ValueKind> && !Settable<long double>);
// Without a length, or without an owner.
static_assert(!Settable<unsigned char*> && !Settable<unsigned char const*> && !Settable<void*>);
static_assert(!Settable<std::nullptr_t> && !Settable<IObject*> && !Settable<int*>);
// Neither UTF-8 nor UTF-16.
static_assert(!Settable<wchar_t const*> && !Settable<char32_t const*>);
static_assert(!Settable<std::vector<bool>> && !Settable<std::vector<int>> && !Settable<std::span<char>>);
static_assert(!CanSet<Dictionary const&, int>);

template <class D, class T>
concept CanGet = requires(D&& dictionary)
{
    std::forward<D>(dictionary).template Get<T>(1);
};

static_assert(CanGet<Dictionary const&, int> && CanGet<Dictionary, int> && CanGet<Dictionary, std::string>);
static_assert(CanGet<Dictionary const&, std::u16string_view>);
// A temporary lends nothing.
static_assert(!CanGet<Dictionary, std::u16string_view>);
static_assert(!CanGet<Dictionary, std::span<unsigned char const>>);
static_assert(!CanGet<Dictionary::Value, std::u16string_view>);
static_assert(!CanGet<Dictionary&, bool> && !CanGet<Dictionary&, char> && !CanGet<Dictionary&, IObject*>);
static_assert(!CanGet<Dictionary&, std::string_view>);
} // namespace
} // namespace KORVA::TESTS
