// A small file of records of every kind, and how to tell that each of them is what it was.
#pragma once

#include "Serialization.h"
#include <tessio/TessIO/IURI.h>

#include <utility>

namespace KORVA::TESTS
{
inline constexpr unsigned char kBytes[] = {1, 2, 3};
inline constexpr UniChar kUnits[] = {0x1234, 0x5678};
inline constexpr GUID kIdentifier{0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
inline constexpr GUID kAggregateId{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

/// Where the records of the file stand, and its size.
inline constexpr int64 kStarts[] = {0, 779, 825, 887, 916, 1062, 1106};
inline constexpr int kRecords = 6;
inline constexpr int64 kSize = 1106;
inline constexpr int64 kClassId = 16;
inline constexpr int64 kHeader = 24;

template <class Number>
bool Holds(IDictionary const& dictionary, unsigned int key, Number expected)
{
    Number value = 0;
    return dictionary.Get(key, value) == 0 && value == expected;
}

inline bool HoldsString(IObject* object, char const* key, char const* expected)
{
    auto* const strings = dynamic_cast<IStringDictionary*>(object);
    CoreString value;
    return strings && strings->Size() == 1 && strings->Get(CoreString(key), value) &&
           value == CoreString(expected);
}

inline bool IsEveryValue(IObject* object)
{
    auto* const dictionary = dynamic_cast<IDictionary*>(object);
    if (!dictionary || dictionary->Size() != 14)
        return false;
    IDictionary const& d = *dictionary;
    GUID id{};
    unsigned char const* bytes = nullptr;
    UniChar const* units = nullptr;
    int length = 0;
    int count = 0;
    auto* const inner = dynamic_cast<IDictionary*>(d.Get(14));
    return Holds<signed char>(d, 1, -1) && Holds<unsigned char>(d, 2, 255) && Holds<short>(d, 3, -2) &&
           Holds<unsigned short>(d, 4, 65534) && Holds(d, 5, -3) && Holds(d, 6, 4294967293u) &&
           Holds(d, 7, -4LL) && Holds(d, 8, 18446744073709551612ULL) && Holds(d, 9, 0.5f) &&
           Holds(d, 10, -0.25) && d.Get(11, id) == 0 && id == kIdentifier && d.Get(12, &bytes, length) == 0 &&
           Bytes(bytes, bytes + length) == Hex("01 02 03") && d.Get(13, &units, count) == 0 &&
           std::u16string(units, static_cast<std::size_t>(count)) == u"\x1234\x5678" && inner &&
           inner->Size() == 1 && Holds(*inner, 1, 7);
}

inline bool IsLocation(IObject* object)
{
    auto* const uri = dynamic_cast<IO::IURI*>(object);
    return uri && uri->GetAbsoluteString() == CoreString("file:///a/b.txt");
}

inline bool HasAggregate(IObject* object)
{
    auto* const dictionary = dynamic_cast<IDictionary*>(object);
    IObject* aggregate = nullptr;
    return dictionary && dictionary->Size() == 1 && Holds(*dictionary, 1, 9) &&
           dictionary->QueryInterface(kAggregateId, &aggregate) == 0 && HoldsString(aggregate, "a", "xy");
}

/// Whether the object is what the record of that number held.
inline bool IsIntact(int record, IObject* object)
{
    switch (record)
    {
    case 0:
        return IsEveryValue(object);
    case 1:
        return HoldsString(object, "a", "xy");
    case 2:
        return IsLocation(object);
    case 3:
        return object == nullptr;
    case 4:
        return HasAggregate(object);
    default:
        return HoldsString(object, "k", "v");
    }
}

/// Uses whatever came out of a damaged record in every way that a client could.
class Curious final : public IDictionary::IDictionaryFunctor, public IStringDictionary::IForEachFunctor
{
public:
    bool OnEntry(unsigned int key, IObject* value) override
    {
        Look(value);
        signed char s8 = 0;
        double f64 = 0;
        GUID id{};
        unsigned char const* bytes = nullptr;
        UniChar const* units = nullptr;
        int length = 0;
        static_cast<void>(mDictionary->Get(key, s8));
        static_cast<void>(mDictionary->Get(key, f64));
        static_cast<void>(mDictionary->Get(key, id));
        if (mDictionary->Get(key, &bytes, length) == 0)
            seen += Bytes(bytes, bytes + length).size();
        if (mDictionary->Get(key, &units, length) == 0)
            seen += std::u16string(units, static_cast<std::size_t>(length)).size();
        return false;
    }

    void OnEntry(CoreString const& key, CoreString const& value) override
    {
        seen += key.size() + value.size();
    }

    void Look(IObject* object)
    {
        if (auto* const dictionary = dynamic_cast<IDictionary*>(object))
        {
            IDictionary* const outer = std::exchange(mDictionary, dictionary);
            dictionary->ForEach(*this);
            TInterfacePtr<IDictionary> copy;
            EXPECT_EQ(dictionary->Clone(copy), 0);
            EXPECT_EQ(copy->Size(), dictionary->Size());
            static_cast<void>(dictionary->Equals(*copy));
            mDictionary = outer;
        }
        else if (auto* const strings = dynamic_cast<IStringDictionary*>(object))
            strings->ForEach(*this);
        else if (auto* const uri = dynamic_cast<IO::IURI*>(object))
            seen += uri->GetPath().size() + uri->GetQuery().size() + uri->GetAbsoluteString().size();
    }

    std::size_t seen = 0;

private:
    IDictionary* mDictionary = nullptr;
};

/// Makes the file.
class DamagedFileTest : public SerializationTest
{
protected:
    static Bytes MakeFile(IDataProvider::Endian endian)
    {
        auto const values = MakeDictionary();
        values->Put(1, static_cast<signed char>(-1));
        values->Put(2, static_cast<unsigned char>(255));
        values->Put(3, static_cast<short>(-2));
        values->Put(4, static_cast<unsigned short>(65534));
        values->Put(5, -3);
        values->Put(6, 4294967293u);
        values->Put(7, -4LL);
        values->Put(8, 18446744073709551612ULL);
        values->Put(9, 0.5f);
        values->Put(10, -0.25);
        values->Put(11, kIdentifier);
        values->Put(12, kBytes, 3);
        values->Put(13, kUnits, 2);
        auto const inner = MakeDictionary();
        inner->Put(1, 7);
        values->Put(14, inner.Get());
        auto const strings = MakeStrings();
        strings->Put(CoreString("a"), CoreString("xy"));
        auto const withAggregate = MakeDictionary();
        withAggregate->Put(1, 9);
        withAggregate->Aggregate(strings.Get(), kAggregateId);
        auto const last = MakeStrings();
        last->Put(CoreString("k"), CoreString("v"));
        auto const uri = MakeURI("file:///a/b.txt");

        auto const memory = SerializationTest::MakeMemory(endian);
        auto const stream = MakeStream(*memory);
        *stream << *values << *strings << *uri;
        *stream << GUID{0xDEADBEEF, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}} << 5LL;
        EXPECT_EQ(stream->Write("other", 5), 0);
        *stream << *withAggregate << *last;
        return BytesOf(*memory);
    }
};
} // namespace KORVA::TESTS
