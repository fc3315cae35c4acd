#include "Records/Samples.h"

namespace KORVA::TESTS
{
std::vector<Sample> const& Samples()
{
    static std::vector<Sample> const sSamples = [] {
        std::vector<Sample> samples{
            {"Nothing", ""},
            {"Every", kEvery},
            // What the page on the format shows.
            {"DocsValue", "Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4"},
            {"DocsBytes", "Value 14:8 'CHAR 2:4 =0A0B 0:4"},
            {"DocsDictionary", "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4"},
            {"DocsStrings", "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4"},
            {"DocsURI", "URI 26:8 18:4 \"file:///a\" 0:4"},
            {"DocsRelative", "Relative 34:8 8:4 \"file\" 0:4 0:4 2:4 \"a\" 3:4 0:4"},
            {"Numbers", R"(
                Value 24:8 'S8VL -128:8 0xC060000000000000:8 0:4
                Value 24:8 'U8VL 255:8 0x406FE00000000000:8 0:4
                Value 24:8 'S16V -1:8 0xBFF0000000000000:8 0:4
                Value 24:8 'U16V 65535:8 0x40EFFFE000000000:8 0:4
                Value 24:8 'S32V -2147483648:8 0xC1E0000000000000:8 0:4
                Value 24:8 'U32V 4294967295:8 0x41EFFFFFFFE00000:8 0:4
                Value 24:8 'S64V -9223372036854775808:8 0xC3E0000000000000:8 0:4
                Value 24:8 'U64V 18446744073709551615:8 0x43F0000000000000:8 0:4
                Value 24:8 'FL32 0:8 0x3FE0000000000000:8 0:4
                Value 24:8 'FL64 1:8 0x3FF8000000000000:8 0:4)"},
            // Zero below zero, not-a-numbers (one signalling), infinities, the least number, 2 to the 63rd,
            // doubles that are no floats.
            {"OddFloats", R"(
                Value 24:8 'FL64 0:8 0x8000000000000000:8 0:4
                Value 24:8 'FL64 0x8000000000000000:8 0x7FF8000000001234:8 0:4
                Value 24:8 'FL32 0x8000000000000000:8 0x7FF0000000000001:8 0:4
                Value 24:8 'FL64 0x8000000000000000:8 0x7FF0000000000000:8 0:4
                Value 24:8 'FL32 0x8000000000000000:8 0xFFF0000000000000:8 0:4
                Value 24:8 'FL64 0:8 0x0000000000000001:8 0:4
                Value 24:8 'FL64 0x8000000000000000:8 0x43E0000000000000:8 0:4
                Value 24:8 'FL32 0:8 0x3FB999999999999A:8 0:4
                Value 24:8 'FL32 0x8000000000000000:8 0x7E37E43C8800759C:8 0:4)"},
            {"OddNumbers", R"(
                Value 24:8 'S32V 7:8 0x4020000000000000:8 0:4
                Value 24:8 'U8VL 256:8 0x4070000000000000:8 0:4
                Value 24:8 'U64V -1:8 0:8 0:4
                Value 24:8 'S8VL 0:8 0x8000000000000000:8 0:4)"},
            {"OddTexts", R"(
                Value 12:8 'UNIC 0:4 0:4
                Value 12:8 'CHAR 0:4 0:4
                Value 18:8 'UNIC 6:4 =00D8410000DC 0:4
                Value 16:8 'UNIC 4:4 =3DD800DE 0:4
                Value 28:8 'UNIC 16:4 =00000A0009001B0022005C002E20FFFF 0:4
                Strings 22:8 1:4 2:4 ^D800 4:4 ^DC00^0041 0:4
                Strings 16:8 1:4 0:4 0:4 0:4
                URI 10:8 2:4 ^DFFF 0:4
                URI 8:8 0:4 0:4
                Relative 32:8 2:4 ^D800 2:4 ^0022 4294967295:4 4:4 ^000A^FFFE -1:4 0:4)"},
            {"OddStringInside", "Strings 21:8 1:4 3:4 \"a\" =00 2:4 \"b\" 0:4"},
            {"LongBytes", "Value 45:8 'CHAR 33:4 "
                          "=000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F20 0:4"},
            // Files carry the first id; the second one is read as well.
            {"TwoDictionaryIds", "{73E90C1F-BBC6-4326-8241-9BB4250B1B05} 44:8 1:4 1:4 "
                                 "Dict 8:8 0:4 0:4 0:4"},
            {"Aggregates", R"(
                Value 158:8 'UNNT 2:4
                    {00000001-0000-0000-0000-000000000000} URI 64:8 0:4 1:4
                        {00000002-0000-0000-0000-000000000000} Dict 16:8 1:4 9:4 =0000000000000000
                    {00000003-0000-0000-0000-000000000000} {00000009-0000-0000-0000-000000000000} 6:8
                        =0A0B0C0D0E0F)"},
            {"AggregatesOfEach", R"(
                Strings 56:8 0:4 1:4 {00000001-0000-0000-0000-000000000000} Value 8:8 'UNNT 0:4
                Value 64:8 'UNNT 1:4 {00000001-0000-0000-0000-000000000000}
                    {00000009-0000-0000-0000-000000000000} 16:8 =000102030405060708090A0B0C0D0E0F)"},
            {"EmptyRecords", R"(
                Dict 0:8
                {00000009-0000-0000-0000-000000000000} 0:8
                Dict 36:8 1:4 4294967295:4 URI 0:8 0:4)"},
            {"OnlyTooFewBytes", "=AABB"},
            {"BytesBehindALength", "{00000009-0000-0000-0000-000000000000} 1:8 =01 =0203"},
            {"LengthFarBeyond", "Dict 9223372036854775807:8 0:4 0:4"},
            {"LengthFarBelow", "Dict -9223372036854775808:8 0:4 0:4"},
            {"DamageInside", R"(
                Dict 128:8 2:4
                    1:4 Dict 56:8 1:4 7:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 =
                    2:4 Value 8:8 'UNNT 0:4
                    0:4
                Value 8:8 'UNNT 0:4)"},
        };
        for (FindingRow const& row : Findings())
            samples.push_back({row.name, row.words});
        return samples;
    }();
    return sSamples;
}

std::string KindOf(RECORDS::Error const& error)
{
    switch (error.code)
    {
    case RECORDS::ErrorCode::kReadFailed:
        return "read-failed";
    case RECORDS::ErrorCode::kNoRecords:
        return "no-records";
    case RECORDS::ErrorCode::kDamaged:
        return "damaged";
    case RECORDS::ErrorCode::kNotFound:
        return "not-found";
    case RECORDS::ErrorCode::kImpossible:
        return "impossible";
    case RECORDS::ErrorCode::kTooLarge:
        return "too-large";
    case RECORDS::ErrorCode::kBadDump:
        return "bad-dump";
    case RECORDS::ErrorCode::kBeyondLimit:
        return "beyond-limit";
    case RECORDS::ErrorCode::kCancelled:
        break;
    }
    return "cancelled";
}

RECORDS::ReadOptions OptionsOf(Order order)
{
    RECORDS::ReadOptions options;
    options.order = order;
    return options;
}

RECORDS::RecordTree Read(Order order, Bytes const& content)
{
    return *RECORDS::ReadTree(RECORDS::MemorySource(content), OptionsOf(order));
}
} // namespace KORVA::TESTS
