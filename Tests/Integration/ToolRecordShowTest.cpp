// Showing and checking record files with the tool.
#include "Integration/ToolRecord.h"
#include "Support/RowName.h"
#include "Support/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <regex>

namespace KORVA::TESTS
{
namespace
{
/// An entry, and another one that claims to be 2144 bytes of the 2048 that are left.
std::string Damaged(Order order)
{
    Bytes bytes = Laid(order, "Dict 2080:8 1:4 1:4 {00000009-0000-0000-0000-000000000000} 2144:8");
    bytes.resize(bytes.size() + 2048);
    return {bytes.begin(), bytes.end()};
}

struct ShowRow
{
    char const* name;
    std::vector<std::string> arguments;
    char const* out;
};

class ToolRecordShow : public ToolRecord, public ::testing::WithParamInterface<ShowRow>
{
};

/// With "-" where the file is named.
std::string Renamed(std::string out)
{
    if (out.starts_with("f\n"))
        out[0] = '-';
    if (std::size_t const at = out.find("\nf: "); at != std::string::npos)
        out[at + 1] = '-';
    return out;
}

TEST_P(ToolRecordShow, InEitherOrderFromAFileAndFromStandardInput)
{
    for (Order const order : kOrders)
    {
        std::string const name = order == kBig ? "big-endian" : "little-endian";
        SCOPED_TRACE(name);
        std::string const out = std::regex_replace(GetParam().out, std::regex("ORDER"), name);
        Put("f", order, kEvery);
        Succeeds(GetParam().arguments, out);
        std::vector<std::string> arguments = GetParam().arguments;
        for (std::string& argument : arguments)
            if (argument == "f")
                argument = "-";
        Outcome const outcome = Feed(arguments, Text(order, kEvery));
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.out, Renamed(out));
        EXPECT_EQ(outcome.err, "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordShow,
    ::testing::Values(
        ShowRow{"Info",
                {"info", "f"},
                "f\n"
                "  size       442 bytes\n"
                "  order      ORDER\n"
                "  records    4 at the top, 10 in all\n"
                "  depth      2\n"
                "  classes    4 DictValue\n"
                "             1 PersistentDictionary\n"
                "             1 RelativeURI\n"
                "             1 StringDictionary\n"
                "             1 URI\n"
                "             2 {76543210-BA98-4EDC-9F01-23456789ABCD}\n"
                "  findings   0 errors, 0 warnings, 2 notes; verify names them\n"},
        ShowRow{"Tree",
                {"tree", "f"},
                "  offset   length  ORDER\n"
                "       0      308  PersistentDictionary, 5 entries\n"
                "      32       48    1: DictValue int32 7\n"
                "      84       40    2: DictValue text \"hi\"\n"
                "     128       46    3: StringDictionary, 1 entry\n"
                "     156       14      a = \"xy\"\n"
                "     178       26    4: unknown class {76543210-BA98-4EDC-9F01-23456789ABCD}, skipped\n"
                "     208       48    5: DictValue guid {01234567-89AB-01EF-0123-456789ABCDEF}\n"
                "     276       32    aggregate {11111111-2222-3333-4444-555555555555}: DictValue none\n"
                "     308       50  URI \"file:///a\"\n"
                "     358       58  RelativeURI documents \"a\"\n"
                "     416       26  unknown class {76543210-BA98-4EDC-9F01-23456789ABCD}, skipped\n"},
        ShowRow{"TreeOfAPath",
                {"tree", "f", "/0/dict[3]"},
                "  offset   length  ORDER\n"
                "     128       46  3: StringDictionary, 1 entry\n"
                "     156       14    a = \"xy\"\n"},
        ShowRow{"Classes",
                {"classes", "f"},
                "{2517B49E-BCE5-404C-8524-3A6EC3C3B633}  library       1         50  URI\n"
                "{4E278406-081C-48E2-97C3-C6C6D87280ED}  library       1         58  RelativeURI\n"
                "{73E90C21-BBC6-4326-8241-9BB4250B1B05}  library       4        168  DictValue\n"
                "{73E90CD5-BBC6-4326-8241-9BB4250B1B05}  library       1        308  PersistentDictionary\n"
                "{76543210-BA98-4EDC-9F01-23456789ABCD}  unknown       2         52  \n"
                "{CD210A56-284C-4B7C-813F-42ADDF774853}  library       1         46  StringDictionary\n"},
        ShowRow{"Verify",
                {"verify", "f"},
                "note     /0/dict[4] at 178: unknown-class: nobody here knows its class\n"
                "note     /3 at 416: unknown-class: nobody here knows its class\n"
                "f: 10 records and 1 text entry; 0 errors, 0 warnings, 2 notes\n"},
        ShowRow{"GetNumber", {"get", "f", "/0/dict[1]"}, "7\n"},
        ShowRow{"GetText", {"get", "f", "/0/2"}, "\"hi\"\n"},
        ShowRow{"GetTextAsItIs", {"get", "f", "/0/2", "--raw"}, "hi"},
        ShowRow{"GetStringEntry", {"get", "f", "/0/3/strings[a]"}, "xy\n"},
        ShowRow{"GetAggregate", {"get", "f", "/0/{11111111-2222-3333-4444-555555555555}"}, "\n"},
        ShowRow{"GetURI", {"get", "f", "/1"}, "file:///a\n"},
        ShowRow{"GetRelativeURI", {"get", "f", "/2"}, "documents:a\n"},
        ShowRow{"GetHolder",
                {"get", "f", "/0"},
                "dict[1] DictValue int32 7\n"
                "dict[2] DictValue text \"hi\"\n"
                "dict[3] StringDictionary, 1 entry\n"
                "dict[4] unknown class {76543210-BA98-4EDC-9F01-23456789ABCD}, skipped\n"
                "dict[5] DictValue guid {01234567-89AB-01EF-0123-456789ABCDEF}\n"
                "{11111111-2222-3333-4444-555555555555} DictValue none\n"},
        ShowRow{"Dump",
                {"dump", "f"},
                "tessio-dump 1 ORDER\n"
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
                "record {76543210-BA98-4EDC-9F01-23456789ABCD} { 01 02 }\n"}),
    RowName());

using ToolRecordJson = ToolRecord;

TEST_F(ToolRecordJson, EachDocumentBeginsWithTheVersionOfItsSchema)
{
    Put("f", kBig, kEvery);
    directory.File("g", Damaged(kLittle));
    for (std::vector<std::string> const& arguments : {std::vector<std::string>{"info", "f"},
                                                      {"tree", "f"},
                                                      {"tree", "g"},
                                                      {"hex", "f"},
                                                      {"dump", "f"},
                                                      {"classes", "f"},
                                                      {"classes"},
                                                      {"get", "f", "/0/1"},
                                                      {"verify", "f"},
                                                      {"verify", "g"},
                                                      {"diff", "f", "f"},
                                                      {"diff", "f", "g"},
                                                      {"salvage", "g", "-o", "s"}})
    {
        std::vector<std::string> all = arguments;
        all.emplace_back("--json");
        std::string const out = Do(all).out;
        EXPECT_TRUE(out.starts_with("{\n  \"schema\": 1,\n")) << arguments[0] << "\n" << out;
        EXPECT_TRUE(out.ends_with("\n}\n")) << arguments[0];
    }
}

TEST_F(ToolRecordJson, VerifyGivesEachFinding)
{
    directory.File("g", Damaged(kBig));
    Outcome const outcome = Do({"verify", "--json", "g"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.err, "tessio: \"g\" is damaged\n");
    EXPECT_EQ(
        outcome.out,
        "{\n  \"schema\": 1,\n  \"file\": \"g\",\n  \"order\": \"big-endian\",\n  \"records\": 2,\n"
        "  \"errors\": 2,\n  \"warnings\": 0,\n  \"notes\": 1,\n  \"findings\": [\n"
        "    {\n      \"severity\": \"error\",\n      \"code\": \"cut-short\",\n      \"offset\": 2104,\n"
        "      \"path\": \"/0\",\n"
        "      \"words\": \"the number of aggregates needs 4 bytes, 0 are left\"\n    },\n"
        "    {\n      \"severity\": \"error\",\n      \"code\": \"length-too-large\",\n"
        "      \"offset\": 48,\n      \"path\": \"/0/dict[1]\",\n"
        "      \"words\": \"should be 2144 bytes, the parent leaves 2048\"\n    },\n"
        "    {\n      \"severity\": \"note\",\n      \"code\": \"unknown-class\",\n"
        "      \"offset\": 32,\n      \"path\": \"/0/dict[1]\",\n"
        "      \"words\": \"nobody here knows its class\"\n    }\n  ]\n}\n");
}

TEST_F(ToolRecordJson, HexGivesEachFieldWithItsBytes)
{
    Put("f", kBig, "URI 8:8 0:4 0:4 =AA");
    Outcome const outcome = Do({"hex", "--json", "f"});
    EXPECT_EQ(outcome.out,
              "{\n  \"schema\": 1,\n  \"order\": \"big-endian\",\n  \"fields\": [\n"
              "    {\n      \"offset\": 0,\n      \"length\": 16,\n      \"path\": \"/0\",\n"
              "      \"role\": \"class\",\n      \"name\": \"class\",\n"
              "      \"value\": \"{2517B49E-BCE5-404C-8524-3A6EC3C3B633} URI\",\n"
              "      \"bytes\": \"2517b49ebce5404c85243a6ec3c3b633\"\n    },\n"
              "    {\n      \"offset\": 16,\n      \"length\": 8,\n      \"path\": \"/0\",\n"
              "      \"role\": \"length\",\n      \"name\": \"length\",\n      \"value\": \"8\",\n"
              "      \"bytes\": \"0000000000000008\"\n    },\n"
              "    {\n      \"offset\": 24,\n      \"length\": 4,\n      \"path\": \"/0\",\n"
              "      \"role\": \"count\",\n      \"name\": \"bytes of text\",\n      \"value\": \"0\",\n"
              "      \"bytes\": \"00000000\"\n    },\n"
              "    {\n      \"offset\": 28,\n      \"length\": 4,\n      \"path\": \"/0\",\n"
              "      \"role\": \"count\",\n      \"name\": \"aggregates\",\n      \"value\": \"0\",\n"
              "      \"bytes\": \"00000000\"\n    },\n"
              "    {\n      \"offset\": 32,\n      \"length\": 1,\n      \"path\": \"\",\n"
              "      \"role\": \"unexplained\",\n      \"name\": \"unexplained\",\n      \"value\": \"\",\n"
              "      \"bytes\": \"aa\"\n    }\n  ]\n}\n");
}

using ToolRecordHex = ToolRecord;

TEST_F(ToolRecordHex, ShowsEachFieldAndWhatNobodyCanExplain)
{
    Put("f", kLittle, "Value 15:8 'CHAR 3:4 =411B42 0:4 =0A0B0C");
    Outcome const outcome = Do({"hex", "f"});
    EXPECT_EQ(
        outcome.out,
        "/0  DictValue bytes 41 1b 42\n"
        "00000000  21 0c e9 73 c6 bb 26 43  82 41 9b b4 25 0b 1b 05  !..s..&C.A..%...  class "
        "{73E90C21-BBC6-4326-8241-9BB4250B1B05} DictValue\n"
        "00000010  0f 00 00 00 00 00 00 00                           ........          length 15\n"
        "00000018  52 41 48 43                                       RAHC              type bytes\n"
        "0000001c  03 00 00 00                                       ....              bytes of value 3\n"
        "00000020  41 1b 42                                          A.B               value 3 bytes\n"
        "00000023  00 00 00 00                                       ....              aggregates 0\n"
        "00000027  0a 0b 0c                                          ...               ? unexplained\n");
}

struct WhereRow
{
    char const* name;
    char const* where;
    int exitCode;
    /// The beginning of what is printed, or the message.
    char const* words;
};

class ToolRecordHexWhere : public ToolRecord, public ::testing::WithParamInterface<WhereRow>
{
};

TEST_P(ToolRecordHexWhere, IsAPathOrAnOffset)
{
    Put("f", kBig, kEvery);
    Outcome const outcome = Do({"hex", "f", GetParam().where});
    EXPECT_EQ(outcome.exitCode, GetParam().exitCode);
    std::string const& words = outcome.exitCode == 0 ? outcome.out : outcome.err;
    EXPECT_TRUE(words.starts_with(GetParam().words)) << words;
    EXPECT_EQ(outcome.exitCode == 0 ? outcome.err : outcome.out, "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordHexWhere,
    ::testing::Values(
        WhereRow{"Path", "/0/dict[3]", 0, "/0/dict[3]  StringDictionary, 1 entry\n00000080  cd 21 0a 56"},
        WhereRow{"Offset", "@60", 0, "/0/dict[1]  DictValue int32 7\n00000020  73 e9 0c 21"},
        WhereRow{"OffsetInHexadecimal", "@0x3C", 0, "/0/dict[1]  DictValue int32 7\n00000020  73 e9 0c 21"},
        WhereRow{"LastByte", "@441", 0, "/3  unknown class"},
        WhereRow{"BehindTheLastByte", "@442", 1,
                 "tessio: \"f\" has 442 bytes, there is none at offset 442\n"},
        WhereRow{"NoOffset", "@x", 2, "tessio: \"@x\" is no offset: write @60 or @0x3C\n"},
        WhereRow{"NoPath", "60", 2,
                 "tessio: \"60\" is no path; paths look like /0, /0/dict[42]/dict[7], /0/{GUID}, "
                 "/0/strings[\"NAME\"]\n"},
        WhereRow{"Nowhere", "/9", 1, "tessio: \"f\" has no record 9; it has 4\n"}),
    RowName());

using ToolRecordVerify = ToolRecord;

TEST_F(ToolRecordVerify, NamesDamageWithPlaceCodeAndWords)
{
    for (Order const order : kOrders)
    {
        directory.File("g", Damaged(order));
        Outcome const outcome = Do({"verify", "g"});
        EXPECT_EQ(outcome.exitCode, 4);
        EXPECT_EQ(
            outcome.out,
            "error    /0 at 2104: cut-short: the number of aggregates needs 4 bytes, 0 are left\n"
            "error    /0/dict[1] at 48: length-too-large: should be 2144 bytes, the parent leaves 2048\n"
            "note     /0/dict[1] at 32: unknown-class: nobody here knows its class\n"
            "g: 2 records and 0 text entries; 2 errors, 0 warnings, 1 note\n");
        EXPECT_EQ(outcome.err, "tessio: \"g\" is damaged\n");
    }
}

TEST_F(ToolRecordVerify, TakesWarningsForDamageOnlyWhenAsked)
{
    Put("w", kBig, "Value 24:8 'S32V 7:8 0x4020000000000000:8 0:4");
    std::string const out = "warning  /0 at 28: number-fields-differ: as a whole number it is 7, as a "
                            "floating-point number 8\n"
                            "w: 1 record and 0 text entries; 0 errors, 1 warning, 0 notes\n";
    Succeeds({"verify", "w"}, out);
    Outcome const outcome = Do({"verify", "--strict", "w"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.out, out);
    EXPECT_EQ(outcome.err, "tessio: \"w\" is not what the library writes\n");
    Put("f", kBig, kEvery);
    EXPECT_EQ(Do({"verify", "--strict", "f"}).exitCode, 0);
}

TEST_F(ToolRecordVerify, SaysOfZerosThatTheyAreNoRecords)
{
    directory.File("z", std::string(48, '\0'));
    Outcome const outcome = Do({"verify", "--strict", "z"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(
        outcome.out,
        "warning  /0 at 0: class-zero: the id of its class is all zeros, which is no class's: these bytes "
        "are hardly a record\n"
        "note     /0 at 0: empty: nothing but its class is written of it\n"
        "warning  /1 at 24: class-zero: the id of its class is all zeros, which is no class's: these bytes "
        "are hardly a record\n"
        "note     /1 at 24: empty: nothing but its class is written of it\n"
        "z: 2 records and 0 text entries; 0 errors, 2 warnings, 2 notes\n");
    EXPECT_EQ(outcome.err, "tessio: \"z\" is not what the library writes\n");
    EXPECT_EQ(Do({"verify", "z"}).exitCode, 0);
}

struct DiffRow
{
    char const* name;
    std::vector<std::string> arguments;
    int exitCode;
    char const* out;
    char const* err;
};

class ToolRecordDiff : public ToolRecord, public ::testing::WithParamInterface<DiffRow>
{
};

TEST_P(ToolRecordDiff, NamesTheDifferences)
{
    Put("a", kLittle, "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4");
    Put("same", kBig, "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4");
    Put("more", kBig,
        "Dict 96:8 2:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 2:4 Value 8:8 'UNNT 0:4 0:4");
    Put("other", kLittle, "Dict 60:8 1:4 1:4 Value 24:8 'S32V 8:8 0x4020000000000000:8 0:4 0:4");
    Put("cut", kLittle, "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4");
    Outcome const outcome = Do(GetParam().arguments);
    EXPECT_EQ(outcome.exitCode, GetParam().exitCode);
    EXPECT_EQ(outcome.out, GetParam().out);
    EXPECT_EQ(outcome.err, GetParam().err);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordDiff,
    ::testing::Values(
        DiffRow{"Same", {"diff", "a", "same"}, 0, "", ""},
        DiffRow{"Added",
                {"diff", "a", "more"},
                1,
                "+ /0/dict[2]  DictValue none\n",
                "tessio: \"a\" differs from \"more\"\n"},
        DiffRow{"Removed",
                {"diff", "more", "a"},
                1,
                "- /0/dict[2]  DictValue none\n",
                "tessio: \"more\" differs from \"a\"\n"},
        DiffRow{"Changed",
                {"diff", "a", "other"},
                1,
                "~ /0/dict[1]  DictValue int32 7 -> DictValue int32 8\n",
                "tessio: \"a\" differs from \"other\"\n"},
        DiffRow{"Contained", {"diff", "--subset", "a", "more"}, 0, "", ""},
        DiffRow{"NotContained",
                {"diff", "--subset", "more", "a"},
                1,
                "- /0/dict[2]  DictValue none\n",
                "tessio: \"more\" is not contained in \"a\"\n"},
        DiffRow{"Json",
                {"diff", "--json", "a", "other"},
                1,
                "{\n  \"schema\": 1,\n  \"subset\": false,\n  \"differences\": [\n    {\n"
                "      \"what\": \"changed\",\n      \"path\": \"/0/dict[1]\",\n"
                "      \"a\": \"DictValue int32 7\",\n      \"b\": \"DictValue int32 8\"\n    }\n  ]\n}\n",
                "tessio: \"a\" differs from \"other\"\n"},
        DiffRow{"Damaged",
                {"diff", "a", "cut"},
                4,
                "~ /0  PersistentDictionary, 1 entry -> PersistentDictionary, 1 entry\n",
                "tessio: \"cut\": /0 at offset 0 is damaged: should be 60 bytes, the file leaves 56\n"},
        DiffRow{"BothFromStandardInput",
                {"diff", "-", "-"},
                2,
                "",
                "tessio: only one of the files can be standard input\n"}),
    RowName());

TEST_F(ToolRecordDiff, OneFileMayComeFromStandardInput)
{
    Put("f", kBig, kEvery);
    for (std::vector<std::string> const& diff :
         {std::vector<std::string>{"diff", "-", "f"}, {"diff", "f", "-"}})
    {
        Outcome const outcome = Feed(diff, Text(kBig, kEvery));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
}

struct LimitRow
{
    char const* name;
    std::vector<std::string> arguments;
    char const* err;
};

class ToolRecordLimit : public ToolRecord, public ::testing::WithParamInterface<LimitRow>
{
};

TEST_P(ToolRecordLimit, HasAnExitCodeOfItsOwn)
{
    Put("f", kBig, kEvery);
    Fails(GetParam().arguments, 5, std::string("tessio: ") + GetParam().err + "\n");
    EXPECT_EQ(Names(), "f");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordLimit,
    ::testing::Values(
        LimitRow{"Depth",
                 {"--limit", "depth=1", "tree", "f"},
                 "\"f\": the record at offset 32 is nested more than 1 deep"},
        LimitRow{"Count",
                 {"--limit", "count=9", "verify", "f"},
                 "\"f\": more than 9 records: the record at offset 358 is one too many"},
        LimitRow{"Bytes", {"--limit", "bytes=441", "hex", "f"}, "\"f\" is 442 bytes, more than 441"},
        LimitRow{"BehindTheCommand", {"dump", "f", "--limit", "bytes=0"}, "\"f\" is 442 bytes, more than 0"},
        LimitRow{"Several",
                 {"--limit", "depth=9,count=2", "info", "f"},
                 "\"f\": more than 2 records: the record at offset 84 is one too many"},
        LimitRow{"SeveralTimes",
                 {"--limit", "depth=1", "--limit", "count=99", "get", "f", "/1"},
                 "\"f\": the record at offset 32 is nested more than 1 deep"},
        LimitRow{"OfAnEdit",
                 {"--limit", "count=3", "set", "f", "/0/1", "int8", "1", "-o", "o"},
                 "\"f\": more than 3 records: the record at offset 128 is one too many"},
        LimitRow{"OfASalvage",
                 {"--limit", "bytes=9", "salvage", "f", "-o", "o"},
                 "\"f\" is 442 bytes, more than 9"},
        LimitRow{"OfTheRecordsASalvageLooksAt",
                 {"--limit", "count=9", "salvage", "f", "-o", "o"},
                 "\"f\": more than 9 records: the record at offset 32 is one too many"},
        LimitRow{
            "OfBuild", {"--limit", "bytes=9", "build", "f", "-o", "o"}, "\"f\" is 442 bytes, more than 9"}),
    RowName());

TEST_F(ToolRecordLimit, WhatIsWithinIsDone)
{
    Put("f", kBig, kEvery);
    EXPECT_EQ(Do({"--limit", "depth=2,count=12,bytes=442", "tree", "f"}).exitCode, 0);
    Outcome const outcome = Feed({"--limit", "bytes=441", "tree", "-"}, Text(kBig, kEvery));
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.err, "tessio: standard input is larger than 441 bytes\n");
    for (char const* const none : {"deep=1", "depth=", "depth=x", "depth=-1", "depth=1x", "depth"})
        Fails({"--limit", none, "tree", "f"}, 2,
              "tessio: \"" + std::string(none) + "\" is no bound: write depth=N, count=N or bytes=N\n");
}

using ToolRecordColour = ToolRecord;

std::string WithoutColours(std::string const& text)
{
    return std::regex_replace(text, std::regex("\x1B\\[[0-9;]*m"), "");
}

TEST_F(ToolRecordColour, SaysNothingThatTheTextDoesNot)
{
    Put("f", kBig, kEvery);
    Put("g", kBig, "Dict 60:8 1:4 1:4 Value 24:8 'S32V 8:8 0x4020000000000000:8 0:4 1:4");
    for (std::vector<std::string> const& arguments : {std::vector<std::string>{"tree", "f"},
                                                      {"tree", "g"},
                                                      {"hex", "f"},
                                                      {"hex", "g"},
                                                      {"verify", "g"},
                                                      {"get", "f", "/0"},
                                                      {"diff", "f", "g"},
                                                      {"diff", "g", "f"}})
    {
        SCOPED_TRACE(arguments[0] + " " + arguments[1]);
        auto const with = [&](char const* when) {
            std::vector<std::string> all = arguments;
            all.insert(all.end(), {"--color", when});
            return Do(all).out;
        };
        std::string const plain = with("never");
        EXPECT_EQ(plain.find('\x1B'), std::string::npos);
        EXPECT_EQ(with("auto"), plain);
        EXPECT_NE(with("always"), plain);
        EXPECT_EQ(WithoutColours(with("always")), plain);
    }
    // What is to be read by programs has none.
    for (std::vector<std::string> const& arguments :
         {std::vector<std::string>{"--color", "always", "dump", "f"},
          {"--color", "always", "--json", "tree", "f"},
          {"--color", "always", "get", "f", "/0/2", "--raw"}})
        EXPECT_EQ(Do(arguments).out.find('\x1B'), std::string::npos) << arguments[2];
    EXPECT_EQ(Do({"--color", "sometimes", "tree", "f"}).exitCode, 2);
}

/// What the tool prints on a terminal.
class ToolRecordTerminal : public ToolRecord
{
protected:
    void SetUp() override
    {
        if (!terminal.IsOpen())
            GTEST_SKIP() << terminal.Why();
    }

    std::string Printed(std::vector<std::string> const& arguments) const
    {
        Outcome const outcome = Do(
            arguments, [this] { dup2(open(terminal.Name().c_str(), O_WRONLY | O_NOCTTY), STDOUT_FILENO); });
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return terminal.Shown();
    }

    Terminal const terminal;
};

TEST_F(ToolRecordTerminal, HasColoursUnlessItCanNotOrTheUserWantsNone)
{
    Put("f", kBig, "URI 10:8 2:4 \"a\" 0:4");
    auto const isColoured = [&](std::vector<std::string> const& more,
                                std::vector<std::string> const& arguments = {"tree", "f"}) {
        environment = {"HOME=/home/ada", "NO_COLOR=", "TERM=xterm"};
        environment.insert(environment.end(), more.begin(), more.end());
        std::string const printed = Printed(arguments);
        EXPECT_NE(printed.find("URI"), std::string::npos) << printed;
        return printed.find('\x1B') != std::string::npos;
    };
    EXPECT_TRUE(isColoured({}));
    EXPECT_FALSE(isColoured({"NO_COLOR=1"}));
    EXPECT_FALSE(isColoured({"TERM=dumb"}));
    EXPECT_FALSE(isColoured({}, {"--color", "never", "tree", "f"}));
    EXPECT_TRUE(isColoured({"NO_COLOR=1"}, {"--color", "always", "tree", "f"}));
}

using ToolRecordEscape = ToolRecord;

TEST_F(ToolRecordEscape, ControlsFromAFileNeverReachTheTerminal)
{
    // ESC [ 3 1 m, BEL, and what turns the direction of text.
    Put("f", kBig, "Strings 30:8 1:4 10:4 ^001B^005B^0033^0031^006D 4:4 ^0007^202E 0:4");
    Put("u", kBig, "URI 12:8 4:4 ^001B^009B 0:4");
    for (std::vector<std::string> const& arguments : {std::vector<std::string>{"tree", "f"},
                                                      {"hex", "f"},
                                                      {"verify", "f"},
                                                      {"dump", "f"},
                                                      {"get", "f", "/0"},
                                                      {"tree", "u"},
                                                      {"get", "u", "/0"},
                                                      {"hex", "u"},
                                                      {"dump", "u"},
                                                      {"diff", "f", "u"},
                                                      {"tree", "--json", "u"},
                                                      {"dump", "--format", "jsonl", "u"}})
    {
        Outcome const outcome = Do(arguments);
        for (std::string const& text : {outcome.out, outcome.err})
            for (char const* const control : {"\x1B", "\x07", "\xE2\x80\xAE"})
                EXPECT_EQ(text.find(control), std::string::npos) << arguments[0] << " " << arguments[1];
    }
    Succeeds({"get", "u", "/0"}, "\\u{1B}\\u{9B}\n");
    Fails({"get", "u", "/0/strings[\x1B]"}, 1,
          "tessio: \"u\" has nothing at /0/strings[\"\\u{1B}\"]: /0 holds no strings[\"\\u{1B}\"]\n");
    Fails({"tree", "\x1B[31m"}, 1, "tessio: cannot open \"\\u{1B}[31m\": no such file\n");
}

TEST_F(ToolRecordEscape, WhatIsNoRecordFileIsSaidSo)
{
    directory.File("text", "just some text, long enough for a header");
    for (char const* const command : {"info", "hex", "dump", "verify", "classes", "tree"})
        Fails({command, "text"}, 4, "tessio: \"text\" is not a record file\n");
    Fails({"get", "text", "/0"}, 4, "tessio: \"text\" is not a record file\n");
    Outcome const outcome = Feed({"dump", "-"}, "");
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.err, "tessio: \"-\" is not a record file: it is empty\n");
}
} // namespace
} // namespace KORVA::TESTS
