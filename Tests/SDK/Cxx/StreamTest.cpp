// The typed stream behind the friendly layer: nothing is lost without a word.
#include <tessio/Cxx/Stream.h>

#include "SDK/Cxx/Note.h"
#include "Support/Library.h"
#include <tessio/Cxx/Dictionary.h>

namespace KORVA::TESTS
{
namespace
{
using CXX::ByteOrder;
using CXX::DataProvider;
using CXX::Dictionary;
using CXX::Stream;

class CxxStream : public LibraryTest
{
protected:
    CxxStream() { COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry()); }

    std::string Hexadecimal()
    {
        Bytes bytes;
        for (std::byte const byte : memory.Bytes().value())
            bytes.push_back(static_cast<unsigned char>(byte));
        return ToHex(bytes);
    }

    DataProvider memory = DataProvider::Memory(ByteOrder::kLittle).value();
    Stream stream = Stream::Over(memory).value();
};

TEST_F(CxxStream, WritesValues)
{
    stream << 7 << static_cast<unsigned char>(1) << true << u"ab" << "c" << -1L;
    EXPECT_TRUE(stream.Status());
    EXPECT_EQ(Hexadecimal(),
              "07 00 00 00 01 01 04 00 00 00 61 00 62 00 02 00 00 00 63 00 FF FF FF FF FF FF FF FF");
    memory.SetOrder(ByteOrder::kBig);
    stream << static_cast<short>(0x0102);
    EXPECT_EQ(Hexadecimal().substr(28 * 3), "01 02");
}

TEST_F(CxxStream, ReadsBackWhatItWrote)
{
    GUID const id{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    stream << static_cast<signed char>(-1) << 60000u << 1.5f << 0.1 << true << id << u"\u00E4" << "" << -5L
           << 6UL;
    ASSERT_TRUE(memory.Seek(0));
    signed char byte = 0;
    unsigned number = 0;
    float single = 0;
    double both = 0;
    bool truth = false;
    GUID read{};
    std::string text;
    std::u16string empty = u"x";
    long negative = 0;
    unsigned long six = 0;
    stream >> byte >> number >> single >> both >> truth >> read >> text >> empty >> negative >> six;
    EXPECT_TRUE(stream.Status());
    EXPECT_EQ(byte, -1);
    EXPECT_EQ(number, 60000u);
    EXPECT_EQ(single, 1.5f);
    EXPECT_EQ(both, 0.1);
    EXPECT_TRUE(truth);
    EXPECT_EQ(read, id);
    EXPECT_EQ(text, "\xC3\xA4");
    EXPECT_EQ(empty, u"");
    EXPECT_EQ(negative, -5);
    EXPECT_EQ(six, 6u);
    EXPECT_TRUE(memory.AtEnd());
}

/// Bytes that end inside of a value.
struct CutRow
{
    char const* name;
    char const* bytes;
    int (*read)(Stream&);
};

template <class T>
int CodeOfReading(Stream& stream)
{
    return stream.Read<T>().error().Code();
}

CutRow const kCuts[] = {
    {"Byte", "", CodeOfReading<unsigned char>},
    {"Truth", "", CodeOfReading<bool>},
    {"Short", "01", CodeOfReading<short>},
    {"Int", "01 02 03", CodeOfReading<int>},
    {"Long", "01 02 03 04 05 06 07", CodeOfReading<long>},
    {"Double", "01 02 03 04 05 06 07", CodeOfReading<double>},
    {"Identifier", "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", CodeOfReading<GUID>},
    {"CountOfAText", "01 02 03", CodeOfReading<std::string>},
    {"UnitsOfAText", "04 00 00 00 61 00 62", CodeOfReading<std::u16string>},
};

class CxxCut : public LibraryTestWith<CutRow>
{
};

TEST_P(CxxCut, IsSeenAndThePositionStays)
{
    DataProvider memory(MakeMemory(Hex("AA " + std::string(GetParam().bytes))));
    ASSERT_TRUE(memory.Seek(1));
    Stream stream = Stream::Over(memory).value();
    EXPECT_EQ(GetParam().read(stream), 28);
    EXPECT_EQ(memory.Position(), 1);
    log.Take();
}

INSTANTIATE_TEST_SUITE_P(Values, CxxCut, ::testing::ValuesIn(kCuts), RowName());

TEST_F(CxxStream, StopsAtTheFirstFailure)
{
    stream << 1;
    ASSERT_TRUE(memory.Seek(0));
    int first = 0;
    int second = 77;
    unsigned char third = 77;
    stream >> first >> second;
    EXPECT_EQ(stream.Status().error().Code(), 28);
    ASSERT_TRUE(memory.Seek(0));
    stream >> third;
    stream << 5;
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 77);
    EXPECT_EQ(third, 77);
    EXPECT_EQ(memory.Position(), 0) << "nothing is done after a failure";
    stream.ClearStatus();
    stream >> third;
    EXPECT_TRUE(stream.Status());
    EXPECT_EQ(third, 1);
    log.Take();
}

TEST_F(CxxStream, RefusesTextThatIsNone)
{
    stream << "\xFF";
    EXPECT_EQ(stream.Status().error().Code(), 2005);
    EXPECT_EQ(memory.Size(), 0);
    stream.ClearStatus();
    stream << u"\xD800" << 7;
    ASSERT_TRUE(memory.Seek(0));
    EXPECT_EQ(stream.Read<std::string>().error().Code(), 2005);
    EXPECT_EQ(stream.Read<int>().value(), 7) << "behind the text";
    ASSERT_TRUE(memory.Seek(0));
    EXPECT_EQ(stream.Read<std::u16string>()->size(), 1u);
}

TEST_F(CxxStream, CountsOfAByteHaveNoUnits)
{
    stream << 1 << 5;
    ASSERT_TRUE(memory.Seek(0));
    EXPECT_EQ(stream.Read<std::u16string>().value(), u"");
    EXPECT_EQ(stream.Read<int>().value(), 5);
    ASSERT_TRUE(memory.Seek(0));
    stream << -9 << 6;
    ASSERT_TRUE(memory.Seek(0));
    EXPECT_EQ(stream.Read<std::u16string>().value(), u"");
    EXPECT_EQ(stream.Read<int>().value(), 6);
}

TEST_F(CxxStream, SeesThatNothingWasWritten)
{
    unsigned char const bytes[] = {1, 2, 3, 4};
    Stream reader = Stream::Over(DataProvider::Over(bytes).value()).value();
    reader << 7;
    EXPECT_EQ(reader.Status().error().Code(), 2);
    log.Take();
}

TEST_F(CxxStream, PassesNothingOnThatWouldWriteWhereOnlyReadingIsAllowed)
{
    Stream reader = Stream::Over(memory, Stream::Access::kReadOnly).value();
    std::byte const one{1};
    EXPECT_EQ(reader.Write(std::span(&one, 1)).error().Code(), 30);
    reader << 7;
    EXPECT_EQ(reader.Status().error().Code(), 30);
    reader.ClearStatus();
    reader << MakeNote(1);
    EXPECT_EQ(reader.Status().error().Code(), 30);
    EXPECT_EQ(memory.Size(), 0);
}

TEST_F(CxxStream, MovesBytes)
{
    std::vector<std::byte> const two{std::byte{1}, std::byte{2}};
    ASSERT_TRUE(stream.Write(two));
    ASSERT_TRUE(memory.Seek(0));
    std::vector<std::byte> back(3);
    EXPECT_EQ(stream.Read(back).value(), 2u);
    EXPECT_EQ(back[1], std::byte{2});
    log.Take();
}

TEST_F(CxxStream, CarriesObjects)
{
    Dictionary dictionary = Dictionary::Create().value();
    dictionary.Set(1, 7);
    stream << dictionary << MakeNote(5);
    ASSERT_TRUE(stream.Status());
    ASSERT_TRUE(memory.Seek(0));
    EXPECT_EQ(stream.Read<Dictionary>()->Get<int>(1).value(), 7);
    EXPECT_EQ((*stream.Read<CXX::Handle<INote>>())->Number(), 5);
    EXPECT_EQ(stream.Read<Dictionary>().error().Code(), 28);
}

TEST_F(CxxStream, GoesBehindAnObjectOfAnotherClass)
{
    stream << MakeNote(5) << MakeNote(6, Fault::kThrowsInRead) << 9;
    ASSERT_TRUE(memory.Seek(0));
    EXPECT_EQ(stream.Read<Dictionary>().error().Code(), 2024);
    EXPECT_EQ(stream.Read<CXX::Object>().error().Code(), 2025);
    EXPECT_EQ(stream.Read<int>().value(), 9);
    log.Take();
}

TEST_F(CxxStream, TellsOfObjectsThatDoNotWriteThemselves)
{
    stream << CXX::Create<CXX::Object>(IID_MUTE).value();
    EXPECT_EQ(stream.Status().error().Code(), 2011);
    EXPECT_EQ(memory.Size(), 0);
    stream.ClearStatus();
    stream << MakeNote(1, Fault::kThrowsInWrite);
    EXPECT_EQ(stream.Status().error().Code(), 2012);
    log.Take();
}

TEST_F(CxxStream, WithoutAProviderSaysSo)
{
    auto bare = CXX::Create<Stream>(IO::IID_DATAPROVIDERSTREAM).value();
    EXPECT_EQ(bare.Read<int>().error().Code(), 29);
    bare << 7;
    EXPECT_EQ(bare.Status().error().Code(), 29);
}

template <class T>
concept Writable = requires(Stream stream, T value)
{
    stream << value;
};

static_assert(Writable<int> && Writable<bool> && Writable<std::string> && Writable<Dictionary>);
static_assert(!Writable<char> && !Writable<char16_t> && !Writable<wchar_t const*> && !Writable<void*>);
static_assert(!Writable<std::nullptr_t> && !Writable<IObject*> && !Writable<TInterfacePtr<IObject>>);
static_assert(!Writable<CXX::Result<int>>);
} // namespace
} // namespace KORVA::TESTS
