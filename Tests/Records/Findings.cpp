#include "Records/Samples.h"

namespace KORVA::TESTS
{
namespace
{
constexpr RECORDS::Severity kNote = RECORDS::Severity::kNote;
constexpr RECORDS::Severity kWarning = RECORDS::Severity::kWarning;
constexpr RECORDS::Severity kError = RECORDS::Severity::kError;

std::vector<FindingRow> LengthRows()
{
    return {
        {"LengthNegative",
         "Value -1:8 'UNNT 0:4",
         {{kError, "length-negative", 16, "/0", "its length is -1; the file leaves 8 bytes"}}},
        {"LengthTooLargeForTheFile",
         "Value 9:8 'UNNT 0:4",
         {{kError, "length-too-large", 16, "/0", "should be 9 bytes, the file leaves 8"}}},
        {"LengthTooLargeForItsHolder",
         "Dict 60:8 1:4 1:4 Value 29:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4",
         {{kError, "cut-short", 84, "/0", "the number of aggregates needs 4 bytes, 0 are left"},
          {kError, "length-too-large", 48, "/0/dict[1]", "should be 29 bytes, the parent leaves 28"},
          {kError, "bytes-left-over", 80, "/0/dict[1]", "4 bytes at its end belong to nothing"}}},
        {"LengthOfAnUnknownClassTooLarge",
         "{76543210-BA98-4EDC-9F01-23456789ABCD} 2144:8 =0102",
         {{kError, "length-too-large", 16, "/0", "should be 2144 bytes, the file leaves 2"},
          {kNote, "unknown-class", 0, "/0", "nobody here knows its class"}}},
        {"Empty", "Dict 0:8", {{kNote, "empty", 0, "/0", "nothing but its class is written of it"}}},
        {"UnknownClass",
         "{76543210-BA98-4EDC-9F01-23456789ABCD} 2:8 =0102",
         {{kNote, "unknown-class", 0, "/0", "nobody here knows its class"}}},
        {"ClassZero",
         "=000000000000000000000000000000000000000000000000",
         {{kWarning, "class-zero", 0, "/0",
           "the id of its class is all zeros, which is no class's: these bytes are hardly a record"},
          {kNote, "empty", 0, "/0", "nothing but its class is written of it"}}},
        {"BytesLeftOverInARecord",
         "Value 10:8 'UNNT 0:4 =AABB",
         {{kError, "bytes-left-over", 32, "/0", "2 bytes at its end belong to nothing"}}},
        {"BytesLeftOverInTheFile",
         "Value 8:8 'UNNT 0:4 =AABBCC",
         {{kError, "bytes-left-over", 32, "", "3 bytes at its end are too few for a record"}}},
    };
}

std::vector<FindingRow> CutRows()
{
    return {
        {"NoRoomForANumber",
         "Value 12:8 'S32V 7:8",
         {{kError, "cut-short", 28, "/0", "a number needs 16 bytes, 8 are left"}}},
        {"NoRoomForATag",
         "Value 3:8 =010203",
         {{kError, "cut-short", 24, "/0", "a type tag needs 4 bytes, 3 are left"}}},
        {"NoRoomForAnIdentifier",
         "Value 14:8 'GUID =00112233445566778899",
         {{kError, "cut-short", 28, "/0", "an identifier needs 16 bytes, 10 are left"}}},
        {"NoRoomForABuffersLength",
         "Value 4:8 'CHAR",
         {{kError, "cut-short", 28, "/0", "a buffer's length needs 4 bytes, 0 are left"}}},
        {"NoRoomForAStringsLength",
         "URI 2:8 =0000",
         {{kError, "cut-short", 24, "/0", "a string's length needs 4 bytes, 2 are left"}}},
        {"NoRoomForAPort",
         "Relative 8:8 0:4 0:4",
         {{kError, "cut-short", 32, "/0", "a port needs 4 bytes, 0 are left"}}},
        {"NoRoomForADirectory",
         "Relative 17:8 0:4 0:4 0:4 0:4 =03",
         {{kError, "cut-short", 40, "/0", "a directory's number needs 4 bytes, 1 is left"}}},
        {"NoRoomForTheNumberOfEntries",
         "Dict 3:8 =000000",
         {{kError, "cut-short", 24, "/0", "the number of entries needs 4 bytes, 3 are left"}}},
        {"NoRoomForTheNumberOfTexts",
         "Strings 1:8 =00",
         {{kError, "cut-short", 24, "/0", "the number of entries needs 4 bytes, 1 is left"}}},
        {"NoRoomForTheNumberOfAggregates",
         "URI 8:8 4:4 \"hi\"",
         {{kError, "cut-short", 32, "/0", "the number of aggregates needs 4 bytes, 0 are left"}}},
    };
}

std::vector<FindingRow> EntryRows()
{
    return {
        {"CountTooLarge",
         "Dict 8:8 1:4 0:4",
         {{kError, "count-too-large", 24, "/0", "should hold 1 entries, there is room for 0"}}},
        {"CountOfTextsTooLarge",
         "Strings 20:8 2:4 2:4 \"a\" 2:4 \"b\" 0:4",
         {{kError, "count-too-large", 24, "/0", "should hold 2 entries, there is room for 1"}}},
        {"LargestCount",
         "Dict 8:8 4294967295:4 0:4",
         {{kError, "count-too-large", 24, "/0", "should hold 4294967295 entries, there is room for 0"}}},
        {"KeyTwice",
         "Dict 80:8 2:4 1:4 Value 8:8 'UNNT 0:4 1:4 Value 8:8 'UNNT 0:4 0:4",
         {{kWarning, "key-twice", 64, "/0", "the key 1 is there twice; the last one counts"}}},
        {"KeyTwiceFarApart",
         "Dict 116:8 3:4 1:4 Value 8:8 'UNNT 0:4 2:4 Value 8:8 'UNNT 0:4 1:4 Value 8:8 'UNNT 0:4 0:4",
         {{kWarning, "keys-not-ascending", 100, "/0", "the key 1 stands behind 2"},
          {kWarning, "key-twice", 100, "/0", "the key 1 is there twice; the last one counts"}}},
        {"KeysNotAscending",
         "Dict 80:8 2:4 2:4 Value 8:8 'UNNT 0:4 1:4 Value 8:8 'UNNT 0:4 0:4",
         {{kWarning, "keys-not-ascending", 64, "/0", "the key 1 stands behind 2"}}},
        {"KeysBeyondTheSignAscend",
         "Dict 80:8 2:4 1:4 Value 8:8 'UNNT 0:4 4294967295:4 Value 8:8 'UNNT 0:4 0:4",
         {}},
        {"TextKeyTwice",
         "Strings 32:8 2:4 2:4 \"a\" 2:4 \"b\" 2:4 \"a\" 2:4 \"c\" 0:4",
         {{kWarning, "key-twice", 40, "/0", "the key \"a\" is there twice; the last one counts"}}},
        {"TextKeysNotAscending",
         "Strings 32:8 2:4 2:4 \"b\" 2:4 \"1\" 2:4 \"a\" 2:4 \"2\" 0:4",
         {{kWarning, "keys-not-ascending", 40, "/0", "the key \"a\" stands behind \"b\""}}},
        {"DirectoryUnknown",
         "Relative 34:8 8:4 \"file\" 0:4 0:4 2:4 \"a\" 17:4 0:4",
         {{kWarning, "directory-unknown", 50, "/0", "no directory has the number 17"}}},
        {"DirectoryZero",
         "Relative 24:8 0:4 0:4 0:4 0:4 0:4 0:4",
         {{kWarning, "directory-unknown", 40, "/0", "no directory has the number 0"}}},
        {"LastDirectory", "Relative 24:8 0:4 0:4 0:4 0:4 16:4 0:4", {}},
    };
}

std::vector<FindingRow> ValueRows()
{
    return {
        {"TypeUnknown",
         "Value 8:8 'ABCD 0:4",
         {{kWarning, "type-unknown", 24, "/0",
           "nobody knows the type tag 0x41424344; the value reads as empty"}}},
        {"NumberFieldsDiffer",
         "Value 24:8 'S32V 7:8 0x4020000000000000:8 0:4",
         {{kWarning, "number-fields-differ", 28, "/0",
           "as a whole number it is 7, as a floating-point number 8"}}},
        {"NumberFieldsDifferOfADouble",
         "Value 24:8 'FL64 2:8 0x3FF8000000000000:8 0:4",
         {{kWarning, "number-fields-differ", 28, "/0",
           "as a whole number it is 2, as a floating-point number 1.5"}}},
        {"StringLengthNegative",
         "URI 8:8 -2:4 0:4",
         {{kError, "string-length-negative", 24, "/0", "a string has the length -2"}}},
        {"StringLengthOdd",
         "URI 11:8 3:4 \"a\" =00 0:4",
         {{kWarning, "string-length-odd", 24, "/0", "a string of 3 bytes: units have two"}}},
        {"StringLengthOne",
         "URI 8:8 1:4 0:4",
         {{kWarning, "string-length-odd", 24, "/0", "a string of 1 byte: units have two"}}},
        {"StringTooLong",
         "URI 12:8 10:4 \"ab\" 0:4",
         {{kError, "string-too-long", 24, "/0", "a string should be 10 bytes, the record leaves 8"}}},
        {"LargestString",
         "Strings 12:8 1:4 2147483646:4 0:4",
         {{kError, "string-too-long", 28, "/0", "a string should be 2147483646 bytes, the record leaves 4"}}},
        {"BufferLengthNegative",
         "Value 12:8 'CHAR -1:4 0:4",
         {{kError, "buffer-length-negative", 28, "/0", "a buffer has the length -1"}}},
        {"BufferTooLong",
         "Value 14:8 'CHAR 7:4 =0A0B 0:4",
         {{kError, "buffer-too-long", 28, "/0", "a buffer should be 7 bytes, the record leaves 6"}}},
        {"TextLengthOdd",
         "Value 15:8 'UNIC 3:4 =680069 0:4",
         {{kWarning, "text-length-odd", 28, "/0", "a text of 3 bytes: units have two"}}},
    };
}

std::vector<FindingRow> AggregateRows()
{
    return {
        {"AggregatesNegative",
         "Value 8:8 'UNNT -1:4",
         {{kError, "aggregates-negative", 28, "/0", "it has -1 aggregates"}}},
        {"AggregatesTooMany",
         "Value 8:8 'UNNT 1:4",
         {{kError, "aggregates-too-many", 28, "/0", "should have 1 aggregates, there is room for 0"}}},
        {"AggregateDropped",
         "Value 56:8 'UNNT 1:4 {CC44E86D-A586-41B2-A228-5673C92EAB19} Value 8:8 'UNNT 0:4",
         {{kWarning, "aggregate-dropped", 32, "/0",
           "an aggregate under a persistence interface's id is dropped by the reader"}}},
        {"ExtendedAggregateDropped",
         "Value 56:8 'UNNT 1:4 {B2812BAA-E898-4548-9B88-9B0C6D97A966} Value 8:8 'UNNT 0:4",
         {{kWarning, "aggregate-dropped", 32, "/0",
           "an aggregate under a persistence interface's id is dropped by the reader"}}},
        {"AggregatesNotAscending",
         "Value 104:8 'UNNT 2:4 {00000002-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
         "{00000001-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4",
         {{kWarning, "aggregates-not-ascending", 80, "/0",
           "the aggregate {00000001-0000-0000-0000-000000000000} stands behind "
           "{00000002-0000-0000-0000-000000000000}"}}},
        {"AggregateTwice",
         "Value 104:8 'UNNT 2:4 {00000001-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4 "
         "{00000001-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4",
         {{kWarning, "aggregates-not-ascending", 80, "/0",
           "the aggregate {00000001-0000-0000-0000-000000000000} stands behind "
           "{00000001-0000-0000-0000-000000000000}"}}},
        // The last bytes count as numbers in memory, whose last byte is the most significant one.
        {"AggregatesAscendByWords",
         "Value 104:8 'UNNT 2:4 {00000001-0000-0000-0100-000000000000} Value 8:8 'UNNT 0:4 "
         "{00000001-0000-0000-0000-000100000000} Value 8:8 'UNNT 0:4",
         {}},
    };
}
} // namespace

std::vector<FindingRow> const& Findings()
{
    static std::vector<FindingRow> const sRows = [] {
        std::vector<FindingRow> rows;
        for (auto const& part : {LengthRows(), CutRows(), EntryRows(), ValueRows(), AggregateRows()})
            rows.insert(rows.end(), part.begin(), part.end());
        return rows;
    }();
    return sRows;
}
} // namespace KORVA::TESTS
