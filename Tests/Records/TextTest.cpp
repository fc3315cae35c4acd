// Record files as text, and back to the same bytes.
#include <tessio/Records/Dump/Text.h>

#include "Records/Samples.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
std::string Head(Order order)
{
    return order == kBig ? "tessio-dump 1 big-endian\n" : "tessio-dump 1 little-endian\n";
}

/// The dump of a file.
std::string TextOf(Order order, Bytes const& content)
{
    RECORDS::MemorySource const source(content);
    RECORDS::Reader reader(source, OptionsOf(order));
    std::string text;
    EXPECT_TRUE(RECORDS::WriteText(reader, [&](std::string_view piece) { text += piece; }));
    return text;
}

struct TextRow
{
    char const* name;
    char const* words;
    /// Behind the head, which tells the order.
    char const* text;
};

class TextOfFile : public ::testing::TestWithParam<TextRow>
{
};

TEST_P(TextOfFile, SaysEveryByteAndGivesItBack)
{
    for (Order const order : kOrders)
    {
        SCOPED_TRACE(RECORDS::OrderName(order));
        Bytes const content = Laid(order, GetParam().words);
        EXPECT_EQ(TextOf(order, content), Head(order) + GetParam().text);
        EXPECT_EQ(ToHex(*RECORDS::ReadText(Head(order) + GetParam().text)), ToHex(content));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Classes, TextOfFile,
    ::testing::Values(TextRow{"Nothing", "", ""},
                      TextRow{"Every", kEvery,
                              "PersistentDictionary {\n"
                              "  1: int32 7\n"
                              "  2: text \"hi\"\n"
                              "  3: StringDictionary {\n"
                              "    \"a\" = \"xy\"\n"
                              "  }\n"
                              "  4: record {76543210-BA98-4EDC-9F01-23456789ABCD} { 01 02 }\n"
                              "  5: guid {01234567-89AB-01EF-0123-456789ABCDEF}\n"
                              "} with {\n"
                              "  {11111111-2222-3333-4444-555555555555}: none\n"
                              "}\n"
                              "URI \"file:///a\"\n"
                              "RelativeURI \"file\" \"\" 0 \"a\" documents\n"
                              "record {76543210-BA98-4EDC-9F01-23456789ABCD} { 01 02 }\n"},
                      TextRow{"EmptyHolders", "Dict 8:8 0:4 0:4 Strings 8:8 0:4 0:4",
                              "PersistentDictionary {}\n"
                              "StringDictionary {}\n"},
                      TextRow{"SecondDictionaryId", "{73E90C1F-BBC6-4326-8241-9BB4250B1B05} 8:8 0:4 0:4",
                              "PersistentDictionary {73E90C1F-BBC6-4326-8241-9BB4250B1B05} {}\n"},
                      TextRow{"UnknownDirectory", "Relative 24:8 0:4 0:4 65535:4 0:4 -1:4 0:4",
                              "RelativeURI \"\" \"\" 65535 \"\" -1\n"},
                      TextRow{"AggregateOfAnAggregate",
                              "URI 104:8 0:4 1:4 {00000001-0000-0000-0000-000000000000} "
                              "Value 56:8 'UNNT 1:4 {00000002-0000-0000-0000-000000000000} URI 8:8 0:4 0:4",
                              "URI \"\" with {\n"
                              "  {00000001-0000-0000-0000-000000000000}: none with {\n"
                              "    {00000002-0000-0000-0000-000000000000}: URI \"\"\n"
                              "  }\n"
                              "}\n"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Values, TextOfFile,
    ::testing::Values(
        TextRow{"Int8", "Value 24:8 'S8VL -128:8 0xC060000000000000:8 0:4", "int8 -128\n"},
        TextRow{"UInt8", "Value 24:8 'U8VL 255:8 0x406FE00000000000:8 0:4", "uint8 255\n"},
        TextRow{"Int16", "Value 24:8 'S16V -1:8 0xBFF0000000000000:8 0:4", "int16 -1\n"},
        TextRow{"UInt16", "Value 24:8 'U16V 65535:8 0x40EFFFE000000000:8 0:4", "uint16 65535\n"},
        TextRow{"UInt32", "Value 24:8 'U32V 4294967295:8 0x41EFFFFFFFE00000:8 0:4", "uint32 4294967295\n"},
        TextRow{"Int64", "Value 24:8 'S64V -9223372036854775808:8 0xC3E0000000000000:8 0:4",
                "int64 -9223372036854775808\n"},
        TextRow{"UInt64", "Value 24:8 'U64V 18446744073709551615:8 0x43F0000000000000:8 0:4",
                "uint64 18446744073709551615\n"},
        TextRow{"Float", "Value 24:8 'FL32 0:8 0x3FE0000000000000:8 0:4", "float 0.5\n"},
        TextRow{"Double", "Value 24:8 'FL64 1:8 0x3FF8000000000000:8 0:4", "double 1.5\n"},
        TextRow{"DoubleBelowZero", "Value 24:8 'FL64 -2:8 0xC004000000000000:8 0:4", "double -2.5\n"},
        TextRow{"ZeroBelowZero", "Value 24:8 'FL64 0:8 0x8000000000000000:8 0:4", "double -0\n"},
        TextRow{"Infinity", "Value 24:8 'FL64 0x8000000000000000:8 0x7FF0000000000000:8 0:4",
                "double fields 0x8000000000000000 0x7FF0000000000000\n"},
        TextRow{"NotANumber", "Value 24:8 'FL32 0x8000000000000000:8 0x7FF0000000000001:8 0:4",
                "float fields 0x8000000000000000 0x7FF0000000000001\n"},
        TextRow{"FloatThatIsNone", "Value 24:8 'FL32 0:8 0x3FB999999999999A:8 0:4",
                "float fields 0x0 0x3FB999999999999A\n"},
        TextRow{"FieldsThatDiffer", "Value 24:8 'S32V 7:8 0x4020000000000000:8 0:4",
                "int32 fields 0x7 0x4020000000000000\n"},
        TextRow{"NumberBeyondItsType", "Value 24:8 'U8VL 256:8 0x4070000000000000:8 0:4",
                "uint8 fields 0x100 0x4070000000000000\n"},
        TextRow{"None", "Value 8:8 'UNNT 0:4", "none\n"},
        TextRow{"UnknownTag", "Value 8:8 'ABCD 0:4", "value 0x41424344\n"},
        TextRow{"Bytes", "Value 14:8 'CHAR 2:4 =0A0B 0:4", "bytes { 0a 0b }\n"},
        TextRow{"NoBytes", "Value 12:8 'CHAR 0:4 0:4", "bytes {}\n"},
        TextRow{"BytesOfOneLine",
                "Value 44:8 'CHAR 32:4 =000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F 0:4",
                "bytes { 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f "
                "10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f }\n"},
        TextRow{"BytesOfTwoLines",
                "Value 45:8 'CHAR 33:4 =000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F20 "
                "0:4",
                "bytes {\n"
                "  00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f "
                "10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f\n"
                "  20\n"
                "}\n"},
        TextRow{"Text", "Value 16:8 'UNIC 4:4 =FC00DF00 0:4", "text \"\xC3\xBC\xC3\x9F\"\n"},
        TextRow{"PairOfSurrogates", "Value 16:8 'UNIC 4:4 =3DD800DE 0:4", "text \"\xF0\x9F\x98\x80\"\n"},
        TextRow{"HalvesOfSurrogates", "Value 18:8 'UNIC 6:4 =00D8410000DC 0:4",
                "text \"\\u{D800}A\\u{DC00}\"\n"},
        TextRow{"ControlsAndQuotes", "Value 26:8 'UNIC 14:4 =00000A0009001B0022005C002E20 0:4",
                "text \"\\u{0}\\n\\t\\u{1B}\\\"\\\\\\u{202E}\"\n"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Oddities, TextOfFile,
    ::testing::Values(
        TextRow{"EmptyRecord", "Dict 0:8",
                "# PersistentDictionary\n"
                "record {73E90CD5-BBC6-4326-8241-9BB4250B1B05} {}\n"},
        TextRow{"EmptyRecordOfAnUnknownClass", "{00000009-0000-0000-0000-000000000000} 0:8",
                "record {00000009-0000-0000-0000-000000000000} {}\n"},
        TextRow{"WrongLength", "URI 9:8 0:4 0:4",
                "# URI, damaged: should be 9 bytes, the file leaves 8\n"
                "record {2517B49E-BCE5-404C-8524-3A6EC3C3B633} length 9 { 00 00 00 00 00 00 00 00 }\n"},
        TextRow{"WrongLengthOfAnUnknownClass", "{00000009-0000-0000-0000-000000000000} -1:8 =0A",
                "# damaged: its length is -1; the file leaves 1 byte\n"
                "record {00000009-0000-0000-0000-000000000000} length -1 { 0a }\n"},
        TextRow{"Rest", "Value 8:8 'UNNT 0:4 =AABBCC", "none\nrest { aa bb cc }\n"},
        TextRow{"OnlyRest", "=AABB", "rest { aa bb }\n"}),
    RowName());

TEST(Text, AndBackIsTheIdentityOnEveryFile)
{
    ForEachFile({0x01, 0x80, 0xFF}, [](Bytes const& content, Order order, std::string const& name) {
        std::string const text = TextOf(order, content);
        ASSERT_TRUE(*RECORDS::ReadText(text) == content) << name << "\n" << text;
    });
}

struct ReadRow
{
    char const* name;
    char const* text;
    char const* words;
};

class TextToFile : public ::testing::TestWithParam<ReadRow>
{
};

TEST_P(TextToFile, ComputesLengthsAndCounts)
{
    for (Order const order : kOrders)
        EXPECT_EQ(ToHex(*RECORDS::ReadText(Head(order) + GetParam().text)),
                  ToHex(Laid(order, GetParam().words)))
            << RECORDS::OrderName(order);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TextToFile,
    ::testing::Values(
        ReadRow{"OneLine", "PersistentDictionary{1:none 2:URI\"a\"}",
                "Dict 82:8 2:4 1:4 Value 8:8 'UNNT 0:4 2:4 URI 10:8 2:4 \"a\" 0:4 0:4"},
        ReadRow{"ManyLinesAndComments",
                "# about\n\n\r\nPersistentDictionary # a } that is none\n{\n1\n:\n\tnone#\n}\n#",
                "Dict 44:8 1:4 1:4 Value 8:8 'UNNT 0:4 0:4"},
        ReadRow{"BytesInAnyGroups", "bytes { 0A0b\n0c 0D }", "Value 16:8 'CHAR 4:4 =0A0B0C0D 0:4"},
        ReadRow{"HexadecimalNumbers", "PersistentDictionary { 0xff: uint16 0x1F }",
                "Dict 60:8 1:4 255:4 Value 24:8 'U16V 31:8 0x403F000000000000:8 0:4 0:4"},
        ReadRow{"NumberOfADirectory", "RelativeURI \"\" \"\" 0x50 \"\" 3",
                "Relative 24:8 0:4 0:4 80:4 0:4 3:4 0:4"},
        ReadRow{"IdInSmallLetters", "guid {abcdefab-cdef-abcd-efab-cdefabcdefab}",
                "Value 24:8 'GUID =ABEFCDABEFCDCDABEFABCDEFABCDEFAB 0:4"},
        ReadRow{"EscapeBeyondSixteenBits", R"(URI "\u{1F600}\u{41}")", "URI 14:8 6:4 ^D83D^DE00^0041 0:4"},
        ReadRow{"KeysStayInTheirOrder", "PersistentDictionary { 2: none 1: none }",
                "Dict 80:8 2:4 2:4 Value 8:8 'UNNT 0:4 1:4 Value 8:8 'UNNT 0:4 0:4"},
        ReadRow{"FloatsAreRounded", "float 0.1", "Value 24:8 'FL32 0:8 0x3FB99999A0000000:8 0:4"},
        ReadRow{
            "PartsOfAnObject",
            "object {00000009-0000-0000-0000-000000000000} { int8 -1 uint8 255 int16 -2 uint16 3 int32 -4 "
            "uint32 5 int64 -6 uint64 7 bool true bool false float 0.5 double 1.5 float bits 0x7FC00001 "
            "double bits 0x7FF8000000000001 string \"hi\" guid {00000001-0002-0003-0405-060708090A0B} "
            "bytes { 0a } holds none }",
            "{00000009-0000-0000-0000-000000000000} 117:8 =FF =FF -2:2 3:2 -4:4 5:4 -6:8 7:8 =01 =00 "
            "0x3F000000:4 0x3FF8000000000000:8 0x7FC00001:4 0x7FF8000000000001:8 4:4 \"hi\" "
            "{00000001-0002-0003-0405-060708090A0B} =0A Value 8:8 'UNNT 0:4 0:4"},
        ReadRow{"AggregatesOfAnObject",
                "object {00000009-0000-0000-0000-000000000000} {} with "
                "{ {00000001-0000-0000-0000-000000000000}: none }",
                "{00000009-0000-0000-0000-000000000000} 52:8 1:4 {00000001-0000-0000-0000-000000000000} "
                "Value 8:8 'UNNT 0:4"}),
    RowName());

/// "3: why"; empty where nothing is wrong.
std::string LineAndReason(std::string const& text)
{
    auto const bytes = RECORDS::ReadText(text);
    if (bytes)
        return "";
    EXPECT_EQ(KindOf(bytes.error()), "bad-dump");
    return std::to_string(RECORDS::LineAt(text, bytes.error().offset)) + ": " + bytes.error().words;
}

struct ErrorRow
{
    char const* name;
    char const* text;
    /// Line and reason.
    char const* error;
};

class TextError : public ::testing::TestWithParam<ErrorRow>
{
};

TEST_P(TextError, NamesLineAndReason) { EXPECT_EQ(LineAndReason(GetParam().text), GetParam().error); }

INSTANTIATE_TEST_SUITE_P(
    Heads, TextError,
    ::testing::Values(ErrorRow{"Nothing", "", "1: \"tessio-dump\" is expected, not the end"},
                      ErrorRow{"OtherText", "\n\nhello", "3: \"tessio-dump\" is expected, not hello"},
                      ErrorRow{"NoVersion", "tessio-dump",
                               "1: the version of the format is expected, not the end"},
                      ErrorRow{"LaterVersion", "tessio-dump 2 big-endian",
                               "1: only version 1 of the format is known, not 2"},
                      ErrorRow{"NoOrder", "tessio-dump 1\nnone",
                               "2: \"little-endian\" or \"big-endian\" is expected, not none"}),
    RowName());

// Each stands behind the head, on line 2 or later.
class TextBodyError : public ::testing::TestWithParam<ErrorRow>
{
};

TEST_P(TextBodyError, NamesLineAndReason)
{
    EXPECT_EQ(LineAndReason(Head(kBig) + GetParam().text), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TextBodyError,
    ::testing::Values(
        ErrorRow{"UnknownWord", "none\nnonsense", "3: a record is expected, not nonsense"},
        ErrorRow{"UnknownSign", "none\n;", "3: nothing begins with \";\""},
        ErrorRow{"Mark", "}", "2: a record is expected, not }"},
        ErrorRow{"OpenHolder", "PersistentDictionary {\n1: none\n", "4: a key is expected, not the end"},
        ErrorRow{"NoHolder", "PersistentDictionary 1", "2: \"{\" is expected, not 1"},
        ErrorRow{"NoColon", "PersistentDictionary { 1 none }", "2: \":\" is expected, not none"},
        ErrorRow{"NoKey", "PersistentDictionary {\n\n\"a\": none }", "4: a key is expected, not \"a\""},
        ErrorRow{"KeyBelowZero", "PersistentDictionary { -1: none }", "2: a key is expected, not -1"},
        ErrorRow{"KeyTooLarge", "PersistentDictionary { 4294967296: none }",
                 "2: 4294967296 is out of range for a key"},
        ErrorRow{"NoEquals", "StringDictionary { \"a\" \"b\" }", "2: \"=\" is expected, not \"b\""},
        ErrorRow{"TextKeyWithoutQuotes", "StringDictionary { a = \"b\" }",
                 "2: a key between quotes is expected, not a"},
        ErrorRow{"NoText", "URI none", "2: a text is expected, not none"},
        ErrorRow{"OpenTextAtTheEnd", "URI \"a", "2: a text is not closed"},
        ErrorRow{"OpenTextOnItsLine", "URI \"a\nb\"", "2: a text is not closed on its line"},
        ErrorRow{"NotUTF8", "URI \"\xFF\"", "2: a text is not valid UTF-8"},
        ErrorRow{"UnknownEscape", "URI \"\\x\"",
                 "2: after a backslash in a text stand n, t, \", \\ or u{...}"},
        ErrorRow{"EscapeTooLarge", "URI \"\\u{110000}\"",
                 "2: \\u stands before a hexadecimal number up to 10FFFF in braces"},
        ErrorRow{"EscapeFarTooLarge", "URI \"\\u{100000041}\"",
                 "2: \\u stands before a hexadecimal number up to 10FFFF in braces"},
        ErrorRow{"EmptyEscape", "URI \"\\u{}\"",
                 "2: \\u stands before a hexadecimal number up to 10FFFF in braces"},
        ErrorRow{"NumberOutOfItsType", "int8 128", "2: 128 is out of range for int8"},
        ErrorRow{"NumberBelowItsType", "int16 -32769", "2: -32769 is out of range for int16"},
        ErrorRow{"UnsignedBelowZero", "uint8 -1", "2: a whole number of the type is expected, not -1"},
        ErrorRow{"NumberBeyondAll", "uint64 18446744073709551616",
                 "2: 18446744073709551616 is out of range for a whole number of the type"},
        ErrorRow{"NoNumber", "int32\n", "3: a whole number of the type is expected, not the end"},
        ErrorRow{"FractionOfAWholeNumber", "int32 1.5", "2: a whole number of the type is expected, not 1.5"},
        ErrorRow{"NoFloatingNumber", "double x", "2: a number is expected, not x"},
        ErrorRow{"FloatOutOfRange", "float 1e39", "2: 1e39 is out of range"},
        ErrorRow{"HalfAByte", "bytes { 0a 0 }", "2: half a byte is left over in 0"},
        ErrorRow{"NoBytes", "bytes { 0g }", "2: pairs of hexadecimal digits is expected, not 0g"},
        ErrorRow{"OpenBytes", "bytes { 0a\n", "3: pairs of hexadecimal digits is expected, not the end"},
        ErrorRow{"NoIdentifier", "guid 1", "2: an identifier is expected, not 1"},
        ErrorRow{"BrokenIdentifier", "guid {11111111-2222}", "2: an identifier is expected, not {"},
        ErrorRow{"NoClass", "record { 00 }", "2: a class id is expected, not {"},
        ErrorRow{"NoDirectory", "RelativeURI \"\" \"\" 0 \"\" nowhere",
                 "2: a directory's name or number is expected, not nowhere"},
        ErrorRow{"UnknownPart", "object {00000009-0000-0000-0000-000000000000} { int7 1 }",
                 "2: the type of a part is expected, not int7"},
        ErrorRow{"NoTruth", "object {00000009-0000-0000-0000-000000000000} { bool 1 }",
                 "2: \"true\" or \"false\" is expected, not 1"},
        ErrorRow{"NoInterface", "none with { 1: none }", "2: an interface id is expected, not 1"},
        ErrorRow{"MoreBehindTheRest", "rest { 00 }\nnone",
                 "3: the end behind the rest is expected, not none"},
        ErrorRow{"ControlsInAWord", "none \x1B[31m", "2: nothing begins with \"\\u{1B}\""}),
    RowName());

TEST(Text, RecordsNestAsDeepAsTheyAreWritten)
{
    std::string open;
    std::string close;
    for (int i = 0; i < 1000; ++i)
    {
        open += "PersistentDictionary { 1: ";
        close += " }";
    }
    EXPECT_EQ(RECORDS::ReadText(Head(kBig) + open + "none" + close)->size(), 1000u * 36 + 32);
    EXPECT_EQ(LineAndReason(Head(kBig) + "PersistentDictionary { 1: " + open + "none" + close + " }"),
              "2: nested more than 1000 deep");
}
} // namespace
} // namespace KORVA::TESTS
