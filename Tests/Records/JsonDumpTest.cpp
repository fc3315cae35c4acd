// Record files as JSON that holds every byte, and back.
#include <tessio/Records/Dump/JsonDump.h>

#include "Records/Samples.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace KORVA::TESTS
{
namespace
{
/// The document, without the end of its last line.
std::string Written(Order order, Bytes const& content, RECORDS::JsonPrinter::Layout layout)
{
    RECORDS::MemorySource const source(content);
    RECORDS::Reader reader(source, OptionsOf(order));
    std::string text;
    RECORDS::JsonPrinter json([&](std::string_view piece) { text += piece; }, layout);
    EXPECT_TRUE(RECORDS::WriteJson(json, reader));
    EXPECT_TRUE(text.ends_with("\n"));
    return text.substr(0, text.size() - 1);
}

std::string LinesOf(Order order, Bytes const& content)
{
    RECORDS::MemorySource const source(content);
    RECORDS::Reader reader(source, OptionsOf(order));
    std::string text;
    EXPECT_TRUE(RECORDS::WriteJsonLines(reader, [&](std::string_view piece) { text += piece; }));
    return text;
}

std::string Head(Order order)
{
    return std::string(R"({"schema":1,"format":"tessio-dump","order":")") +
           (order == kBig ? "big-endian" : "little-endian") + "\"";
}

/// How the record of a value begins.
std::string const kValue = R"({"class":"DictValue","classId":"{73E90C21-BBC6-4326-8241-9BB4250B1B05}",)";

struct JsonRow
{
    char const* name;
    char const* words;
    /// Of the one record.
    std::string json;
};

class JsonOfRecord : public ::testing::TestWithParam<JsonRow>
{
};

TEST_P(JsonOfRecord, SaysEveryByteAndGivesItBack)
{
    for (Order const order : kOrders)
    {
        SCOPED_TRACE(RECORDS::OrderName(order));
        Bytes const content = Laid(order, GetParam().words);
        std::string const document = Head(order) + ",\"records\":[" + GetParam().json + "]}";
        std::string const lines = Head(order) + "}\n" + GetParam().json + "\n";
        EXPECT_EQ(Written(order, content, RECORDS::JsonPrinter::Layout::kOneLine), document);
        EXPECT_EQ(LinesOf(order, content), lines);
        EXPECT_EQ(ToHex(*RECORDS::ReadJson(document)), ToHex(content));
        EXPECT_EQ(ToHex(*RECORDS::ReadJson(lines)), ToHex(content));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Values, JsonOfRecord,
    ::testing::Values(
        JsonRow{"Int8", "Value 24:8 'S8VL -128:8 0xC060000000000000:8 0:4",
                kValue + R"("type":"int8","value":-128})"},
        JsonRow{"UInt32", "Value 24:8 'U32V 4294967295:8 0x41EFFFFFFFE00000:8 0:4",
                kValue + R"("type":"uint32","value":4294967295})"},
        JsonRow{"Int64", "Value 24:8 'S64V -9223372036854775808:8 0xC3E0000000000000:8 0:4",
                kValue + R"("type":"int64","value":"-9223372036854775808"})"},
        JsonRow{"UInt64", "Value 24:8 'U64V 18446744073709551615:8 0x43F0000000000000:8 0:4",
                kValue + R"("type":"uint64","value":"18446744073709551615"})"},
        JsonRow{"Double", "Value 24:8 'FL64 1:8 0x3FF8000000000000:8 0:4",
                kValue + R"("type":"double","value":1.5})"},
        JsonRow{"ZeroBelowZero", "Value 24:8 'FL64 0:8 0x8000000000000000:8 0:4",
                kValue + R"("type":"double","value":-0.0})"},
        JsonRow{"Infinity", "Value 24:8 'FL32 0x8000000000000000:8 0xFFF0000000000000:8 0:4",
                kValue + R"("type":"float","fields":["0x8000000000000000","0xFFF0000000000000"]})"},
        JsonRow{"NotANumber", "Value 24:8 'FL64 0x8000000000000000:8 0x7FF8000000001234:8 0:4",
                kValue + R"("type":"double","fields":["0x8000000000000000","0x7FF8000000001234"]})"},
        JsonRow{"FieldsThatDiffer", "Value 24:8 'S32V 7:8 0x4020000000000000:8 0:4",
                kValue + R"("type":"int32","fields":["0x7","0x4020000000000000"]})"},
        JsonRow{"None", "Value 8:8 'UNNT 0:4", kValue + R"("type":"none"})"},
        JsonRow{"UnknownTag", "Value 8:8 'ABCD 0:4", kValue + R"("type":"unknown","tag":"0x41424344"})"},
        JsonRow{"Guid", "Value 24:8 'GUID =67452301AB89EF010123456789ABCDEF 0:4",
                kValue + R"("type":"guid","value":"{01234567-89AB-01EF-0123-456789ABCDEF}"})"},
        JsonRow{"Bytes", "Value 14:8 'CHAR 2:4 =0A0B 0:4", kValue + R"("type":"bytes","value":"0a0b"})"},
        JsonRow{"Text", "Value 16:8 'UNIC 4:4 =FC00DF00 0:4",
                kValue + "\"type\":\"text\",\"value\":\"\xC3\xBC\xC3\x9F\"}"},
        JsonRow{"HalvesOfSurrogates", "Value 18:8 'UNIC 6:4 =00D8410000DC 0:4",
                kValue + R"("type":"text","value":{"units":"D800 0041 DC00"}})"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Classes, JsonOfRecord,
    ::testing::Values(
        JsonRow{"Dictionary", "Dict 44:8 1:4 4294967295:4 Value 8:8 'UNNT 0:4 0:4",
                R"({"class":"PersistentDictionary","classId":"{73E90CD5-BBC6-4326-8241-9BB4250B1B05}",)"
                R"("entries":[{"key":4294967295,"record":)" +
                    kValue + R"("type":"none"}}]})"},
        JsonRow{"SecondDictionaryId", "{73E90C1F-BBC6-4326-8241-9BB4250B1B05} 8:8 0:4 0:4",
                R"({"class":"PersistentDictionary","classId":"{73E90C1F-BBC6-4326-8241-9BB4250B1B05}",)"
                R"("entries":[]})"},
        JsonRow{"Strings", "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4",
                R"({"class":"StringDictionary","classId":"{CD210A56-284C-4B7C-813F-42ADDF774853}",)"
                R"("strings":[{"key":"a","value":"xy"}]})"},
        JsonRow{"URI", "URI 26:8 18:4 \"file:///a\" 0:4",
                R"({"class":"URI","classId":"{2517B49E-BCE5-404C-8524-3A6EC3C3B633}","text":"file:///a"})"},
        JsonRow{"RelativeURI", "Relative 34:8 8:4 \"file\" 0:4 80:4 2:4 \"a\" 3:4 0:4",
                R"({"class":"RelativeURI","classId":"{4E278406-081C-48E2-97C3-C6C6D87280ED}",)"
                R"("scheme":"file","host":"","port":80,"path":"a","directory":3})"},
        JsonRow{"UnknownClass", "{00000009-0000-0000-0000-000000000000} 2:8 =0A0B",
                R"({"class":null,"classId":"{00000009-0000-0000-0000-000000000000}","body":"0a0b"})"},
        JsonRow{"EmptyRecord", "URI 0:8",
                R"({"class":"URI","classId":"{2517B49E-BCE5-404C-8524-3A6EC3C3B633}","body":""})"},
        JsonRow{"WrongLength", "{00000009-0000-0000-0000-000000000000} -1:8 =0A",
                R"({"class":null,"classId":"{00000009-0000-0000-0000-000000000000}","damage":)"
                R"("its length is -1; the file leaves 1 byte","length":"-1","body":"0a"})"},
        JsonRow{
            "Aggregate", "Value 56:8 'UNNT 1:4 {11111111-2222-3333-4444-555555555555} Value 8:8 'UNNT 0:4",
            kValue + R"("type":"none","aggregates":[{"interface":)" +
                R"("{11111111-2222-3333-4444-555555555555}","record":)" + kValue + R"("type":"none"}}]})"}),
    RowName());

TEST(JsonDump, WhatIsLeftOverStandsBehindTheRecords)
{
    Bytes const content = Laid(kBig, "Dict 8:8 0:4 0:4 =AABB");
    std::string const record =
        R"({"class":"PersistentDictionary","classId":"{73E90CD5-BBC6-4326-8241-9BB4250B1B05}","entries":[]})";
    EXPECT_EQ(Written(kBig, content, RECORDS::JsonPrinter::Layout::kOneLine),
              Head(kBig) + ",\"records\":[" + record + "],\"rest\":\"aabb\"}");
    EXPECT_EQ(LinesOf(kBig, content), Head(kBig) + "}\n" + record + "\n{\"rest\":\"aabb\"}\n");
}

TEST(JsonDump, AndBackIsTheIdentityOnEveryFile)
{
    ForEachFile({0x01}, [](Bytes const& content, Order order, std::string const& name) {
        std::string const document = Written(order, content, RECORDS::JsonPrinter::Layout::kLines);
        ASSERT_TRUE(*RECORDS::ReadJson(document) == content) << name << "\n" << document;
    });
}

TEST(JsonDump, LinesAndBackAreTheIdentityOnEveryFile)
{
    ForEachFile({0x80}, [](Bytes const& content, Order order, std::string const& name) {
        std::string const lines = LinesOf(order, content);
        ASSERT_TRUE(*RECORDS::ReadJson(lines) == content) << name << "\n" << lines;
    });
}

struct ReadRow
{
    char const* name;
    /// Of the one record.
    std::string json;
    char const* words;
};

class JsonToRecord : public ::testing::TestWithParam<ReadRow>
{
};

TEST_P(JsonToRecord, ComputesLengthsAndCounts)
{
    for (Order const order : kOrders)
        EXPECT_EQ(ToHex(*RECORDS::ReadJson(Head(order) + ",\n\"records\": [" + GetParam().json + "]}")),
                  ToHex(Laid(order, GetParam().words)))
            << RECORDS::OrderName(order);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, JsonToRecord,
    ::testing::Values(
        ReadRow{"NumberAsAString", kValue + R"("type":"int32","value":"7"})",
                "Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4"},
        ReadRow{"LargeNumberAsANumber", kValue + R"("type":"uint64","value":18446744073709551615})",
                "Value 24:8 'U64V -1:8 0x43F0000000000000:8 0:4"},
        ReadRow{"HexadecimalNumber", kValue + R"("type":"uint16","value":"0x1F"})",
                "Value 24:8 'U16V 31:8 0x403F000000000000:8 0:4"},
        ReadRow{"WholeNumberAsADouble", kValue + R"("type":"double","value":3})",
                "Value 24:8 'FL64 3:8 0x4008000000000000:8 0:4"},
        ReadRow{"UnitsOfAText", kValue + R"("type":"text","value":{"units":"0068 0069"}})",
                "Value 16:8 'UNIC 4:4 =68006900 0:4"},
        ReadRow{"NoUnits", kValue + R"("type":"text","value":{"units":""}})", "Value 12:8 'UNIC 0:4 0:4"},
        ReadRow{"EscapesOfJSON", kValue + R"("type":"text","value":"\u0068\ud83d\ude00"})",
                "Value 18:8 'UNIC 6:4 =68003DD800DE 0:4"},
        ReadRow{"OtherOrderOfMembers", R"({"text":"a","classId":"{2517b49e-bce5-404c-8524-3a6ec3c3b633}"})",
                "URI 10:8 2:4 \"a\" 0:4"},
        ReadRow{"PartsOfAnObject",
                R"({"classId":"{00000009-0000-0000-0000-000000000000}","parts":[{"type":"int8","value":-1},)"
                R"({"type":"uint8","value":255},{"type":"int16","value":-2},{"type":"uint16","value":3},)"
                R"({"type":"int32","value":-4},{"type":"uint32","value":5},{"type":"int64","value":"-6"},)"
                R"({"type":"uint64","value":"7"},{"type":"bool","value":true},{"type":"bool","value":false},)"
                R"({"type":"float","value":0.5},{"type":"double","value":1.5},)"
                R"({"type":"float","value":"0x7FC00001"},{"type":"double","value":"0x7FF8000000000001"},)"
                R"({"type":"string","value":"hi"},)"
                R"({"type":"guid","value":"{00000001-0002-0003-0405-060708090A0B}"},)"
                R"({"type":"bytes","value":"0a"},{"type":"record","record":)" +
                    kValue + R"("type":"none"}}]})",
                "{00000009-0000-0000-0000-000000000000} 117:8 =FF =FF -2:2 3:2 -4:4 5:4 -6:8 7:8 =01 =00 "
                "0x3F000000:4 0x3FF8000000000000:8 0x7FC00001:4 0x7FF8000000000001:8 4:4 \"hi\" "
                "{00000001-0002-0003-0405-060708090A0B} =0A Value 8:8 'UNNT 0:4 0:4"}),
    RowName());

struct ErrorRow
{
    char const* name;
    /// All of the document, or one record.
    std::string json;
    char const* error;
};

class JsonError : public ::testing::TestWithParam<ErrorRow>
{
};

TEST_P(JsonError, NamesTheReason)
{
    EXPECT_EQ(FailureOf(RECORDS::ReadJson(GetParam().json)), std::string("bad-dump ") + GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Heads, JsonError,
    ::testing::Values(
        ErrorRow{"NoFormat", R"({"schema":1,"records":[]})",
                 R"(there is no "format" in {"schema":1,"records":[]})"},
        ErrorRow{"OtherFormat", R"({"schema":1,"format":"x","records":[]})",
                 R"("format" should be "tessio-dump")"},
        ErrorRow{"LaterSchema", R"({"schema":2,"format":"tessio-dump","order":"big-endian","records":[]})",
                 "only schema 1 is known, not 2"},
        ErrorRow{"OtherOrder", R"({"schema":1,"format":"tessio-dump","order":"middle","records":[]})",
                 R"("middle" is no byte order)"},
        ErrorRow{"RecordsThatAreNoList", Head(kBig) + R"(,"records":7})", R"("records" should be a list)"}),
    RowName());

/// A document with one record.
ErrorRow One(char const* name, std::string const& record, char const* error)
{
    return {name, Head(kBig) + ",\"records\":[" + record + "]}", error};
}

INSTANTIATE_TEST_SUITE_P(
    Records, JsonError,
    ::testing::Values(
        One("NoObject", "7", R"(there is no "classId" in 7)"),
        One("NoClass", "{}", R"(there is no "classId" in {})"),
        One("ClassThatIsNoIdentifier", R"({"classId":"x"})", R"("x" is no identifier)"),
        One("ClassThatIsANumber", R"({"classId":7})", "an identifier should be a string, not 7"),
        One("NoParts", R"({"classId":"{00000009-0000-0000-0000-000000000000}"})",
            R"(there is no "parts" in {"classId":"{00000009-0000-0000-0000-000000000000}"})"),
        One("HalfAByte", R"({"classId":"{00000009-0000-0000-0000-000000000000}","body":"0a0"})",
            "half a byte is left over"),
        One("NoBytes", R"({"classId":"{00000009-0000-0000-0000-000000000000}","body":"0g"})",
            "bytes are pairs of hexadecimal digits"),
        One("UnknownType", kValue + R"("type":"int7","value":1})", R"("int7" is no type of value)"),
        One("OutOfItsType", kValue + R"("type":"int8","value":128})", "128 is out of range for int8"),
        One("UnsignedBelowZero", kValue + R"("type":"uint8","value":-1})", "-1 is no uint8"),
        One("Fraction", kValue + R"("type":"int32","value":1.5})", "1.5 is no int32"),
        One("DoubleThatIsAString", kValue + R"("type":"double","value":"1.5"})", R"("1.5" is no number)"),
        One("ThreeFields", kValue + R"("type":"int32","fields":[1,2,3]})", R"("fields" are two numbers)"),
        One("UnitOfFiveDigits", kValue + R"("type":"text","value":{"units":"10000"}})",
            "units are hexadecimal numbers of four digits"),
        One("TextThatIsANumber", kValue + R"("type":"text","value":7})", R"(there is no "units" in 7)"),
        One("UnknownPart",
            R"({"classId":"{00000009-0000-0000-0000-000000000000}",)"
            R"("parts":[{"type":"int7","value":1}]})",
            R"("int7" is no type of part)")),
    RowName());

TEST(JsonDump, WhatIsNoJsonNamesThePlace)
{
    auto const bytes = RECORDS::ReadJson("{\"schema\":1,\n\"records\":[}");
    ASSERT_FALSE(bytes);
    EXPECT_EQ(KindOf(bytes.error()), "bad-dump");
    EXPECT_NE(bytes.error().words.find("line 2"), std::string::npos) << bytes.error().words;
}
} // namespace
} // namespace KORVA::TESTS
