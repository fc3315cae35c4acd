// Record files with objects of a plug-in's class, with the plug-in and without it.
#include "Integration/ToolRecord.h"

namespace KORVA::TESTS
{
namespace
{
// The title "Hi" and page 7, inside a dictionary and beside it.
constexpr char kBookmarks[] = R"(
    Dict 52:8 1:4
        1:4 {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 "Hi" 7:4 0:4
        0:4
    {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 "Hi" 7:4 0:4)";

class ToolRecordPlugIn : public ToolRecord
{
protected:
    static std::vector<std::string> With(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"--plugin", TESSIO_TEST_PLUGIN});
        return arguments;
    }
};

TEST_F(ToolRecordPlugIn, ShowsThePartsOnlyWhenItIsNamed)
{
    for (Order const order : kOrders)
    {
        Put("f", order, kBookmarks);
        std::string const name = order == kBig ? "big-endian" : "little-endian";
        Succeeds(With({"tree", "f"}), "  offset   length  " + name +
                                          "\n"
                                          "       0       76  PersistentDictionary, 1 entry\n"
                                          "      32       40    1: object "
                                          "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}, 2 parts\n"
                                          "      76       40  object "
                                          "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}, 2 parts\n");
        Succeeds({"tree", "f"}, "  offset   length  " + name +
                                    "\n"
                                    "       0       76  PersistentDictionary, 1 entry\n"
                                    "      32       40    1: unknown class "
                                    "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}, skipped\n"
                                    "      76       40  unknown class "
                                    "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}, skipped\n");
        Succeeds(With({"dump", "f"}), "tessio-dump 1 " + name +
                                          "\n"
                                          "PersistentDictionary {\n"
                                          "  1: object {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} {\n"
                                          "    string \"Hi\"\n"
                                          "    int32 7\n"
                                          "  }\n"
                                          "}\n"
                                          "object {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} {\n"
                                          "  string \"Hi\"\n"
                                          "  int32 7\n"
                                          "}\n");
        Succeeds(With({"verify", "f"}), "f: 3 records and 0 text entries; 0 errors, 0 warnings, 0 notes\n");
        EXPECT_EQ(Do({"verify", "f"}).out,
                  "note     /0/dict[1] at 32: unknown-class: nobody here knows its class\n"
                  "note     /1 at 76: unknown-class: nobody here knows its class\n"
                  "f: 3 records and 0 text entries; 0 errors, 0 warnings, 2 notes\n");
    }
    Succeeds(With({"classes", "f"}),
             "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}  plug-in       2         80  \n"
             "{73E90CD5-BBC6-4326-8241-9BB4250B1B05}  library       1         76  PersistentDictionary\n");
}

TEST_F(ToolRecordPlugIn, ListsThePartsInJson)
{
    Put("f", kLittle, kBookmarks);
    Succeeds(With({"--json", "get", "f", "/1"}), R"({
  "schema": 1,
  "entry": {
    "offset": 76,
    "length": 40,
    "path": "/1",
    "classId": "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}",
    "class": null,
    "parts": [
      {
        "offset": 100,
        "length": 8,
        "type": "string",
        "value": "Hi"
      },
      {
        "offset": 108,
        "length": 4,
        "type": "int32",
        "value": "7"
      }
    ]
  }
}
)");
}

TEST_F(ToolRecordPlugIn, AnnotatesTheBytesOfTheParts)
{
    Put("f", kLittle, kBookmarks);
    Succeeds(With({"hex", "f", "/1"}),
             "/1  object {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}, 2 parts\n"
             "0000004c  11 5c 7e 0b 0e 5d 63 4a  b4 1c 2f 9d 08 e6 73 a5  .\\~..]cJ../...s.  class "
             "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}\n"
             "0000005c  10 00 00 00 00 00 00 00                           ........          length 16\n"
             "00000064  04 00 00 00 48 00 69 00                           ....H.i.          string \"Hi\"\n"
             "0000006c  07 00 00 00                                       ....              int32 7\n"
             "00000070  00 00 00 00                                       ....              aggregates 0\n");
}

TEST_F(ToolRecordPlugIn, DumpAndBuildAreTheIdentityWithItAndWithoutIt)
{
    for (Order const order : kOrders)
        for (char const* const format : {"text", "json", "jsonl"})
            for (bool const isNamed : {true, false})
            {
                Put("f", order, kBookmarks);
                std::vector<std::string> const dump{"dump", "--format", format, "f", "-o", "t"};
                Succeeds(isNamed ? With(dump) : dump);
                Succeeds({"build", "t", "-o", "g"});
                EXPECT_TRUE(Is("g", order, kBookmarks)) << format;
            }
}

TEST_F(ToolRecordPlugIn, ComparesAndTurnsRoundOnlyWhatItCanRead)
{
    Put("little", kLittle, kBookmarks);
    Put("big", kBig, kBookmarks);
    Put("other", kBig, R"(
        Dict 52:8 1:4 1:4 {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 "Hi" 8:4 0:4 0:4
        {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 "Hi" 7:4 0:4)");
    Succeeds(With({"diff", "little", "big"}));
    EXPECT_EQ(Do({"diff", "little", "big"}).exitCode, 1);
    EXPECT_EQ(Do(With({"diff", "little", "other"})).out,
              "~ /0/dict[1]  object {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} { string \"Hi\" int32 7 } -> "
              "object {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} { string \"Hi\" int32 8 }\n");
    Succeeds(With({"convert", "little", "--endian", "big", "-o", "turned"}));
    EXPECT_TRUE(Is("turned", kBig, kBookmarks));
    Fails({"convert", "little", "--endian", "big", "-o", "not"}, 4,
          "tessio: \"little\": /0/dict[1] is of the class {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5}, which "
          "nobody here knows: its bytes can't be turned round; nothing is written\n");
    EXPECT_EQ(Names(), "big little other turned");
}

TEST_F(ToolRecordPlugIn, WithoutItEditsElsewhereKeepEveryByte)
{
    for (Order const order : kOrders)
    {
        Put("f", order, kBookmarks);
        Succeeds({"set", "f", "/0/2", "int32", "7", "-o", "g"});
        EXPECT_TRUE(Is("g", order, R"(
            Dict 104:8 2:4
                1:4 {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 "Hi" 7:4 0:4
                2:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4
                0:4
            {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 "Hi" 7:4 0:4)"));
        Succeeds({"rm", "g", "/0/2", "-o", "h"});
        EXPECT_TRUE(Is("h", order, kBookmarks));
        Succeeds({"extract", "f", "/0/1", "-o", "one"});
        EXPECT_TRUE(Is("one", order, "{0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 \"Hi\" 7:4 0:4"));
    }
}

TEST_F(ToolRecordPlugIn, AnAggregateGoesToItsObjectOnlyWithIt)
{
    Put("f", kBig, kBookmarks);
    std::vector<std::string> const set{"set", "f", "/1/{11111111-2222-3333-4444-555555555555}", "int32", "7",
                                       "-o",  "g"};
    Fails(set, 4, "tessio: \"f\": /1 holds nothing that can be named; nothing is changed\n");
    Succeeds(With(set));
    EXPECT_TRUE(Is("g", kBig, R"(
        Dict 52:8 1:4 1:4 {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 16:8 4:4 "Hi" 7:4 0:4 0:4
        {0B7E5C11-5D0E-4A63-B41C-2F9D08E673A5} 80:8 4:4 "Hi" 7:4 1:4
            {11111111-2222-3333-4444-555555555555} Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4)"));
}

// The bytes 0A 0B in a shelf, which keeps that their record is 38 bytes.
constexpr char kShelf[] =
    "{5E1F0001-5D0E-4A63-B41C-2F9D08E673A5} 46:8 38:4 Value 14:8 'CHAR 2:4 =0A0B 0:4 0:4";
constexpr char kBox[] = "{B0C50002-5D0E-4A63-B41C-2F9D08E673A5} 42:8 Value 14:8 'CHAR 2:4 =0A0B 0:4 0:4";

TEST_F(ToolRecordPlugIn, AnEditThatItsClassWouldNotReadIsRefused)
{
    for (Order const order : kOrders)
    {
        Put("f", order, std::string("URI 8:8 0:4 0:4 ") + kShelf);
        Fails(
            With({"set", "f", "/1/record[0]", "bytes", "0a0b0c", "-o", "g"}), 2,
            "tessio: \"f\": /1/record[0] is in the object /1 of the class "
            "{5E1F0001-5D0E-4A63-B41C-2F9D08E673A5}, which may keep the length of what it holds: with 1 byte "
            "more its class does not read it and write it back the same; put in something of the same "
            "length, "
            "or set /1 as a whole; nothing is changed\n");
        Fails(
            With({"set", "f", "/1/record[0]", "bytes", "0a", "--in-place"}), 2,
            "tessio: \"f\": /1/record[0] is in the object /1 of the class "
            "{5E1F0001-5D0E-4A63-B41C-2F9D08E673A5}, which may keep the length of what it holds: with 1 byte "
            "less its class does not read it and write it back the same; put in something of the same "
            "length, "
            "or set /1 as a whole; nothing is changed\n");
        EXPECT_TRUE(Is("f", order, std::string("URI 8:8 0:4 0:4 ") + kShelf));
        EXPECT_EQ(Names(), "f");
    }
}

TEST_F(ToolRecordPlugIn, WhatIsRemovedInItsObjectsIsRefusedToo)
{
    Put("f", kLittle, R"({5E1F0001-5D0E-4A63-B41C-2F9D08E673A5} 92:8 84:4 Dict 60:8 1:4 1:4
        Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4 0:4)");
    Outcome const outcome = Do(With({"rm", "f", "/0/record[0]/dict[1]", "-o", "g"}));
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_TRUE(
        outcome.err.starts_with("tessio: \"f\": /0/record[0]/dict[1] is in the object /0 of the class "
                                "{5E1F0001-5D0E-4A63-B41C-2F9D08E673A5}, "))
        << outcome.err;
    EXPECT_EQ(Names(), "f");
}

TEST_F(ToolRecordPlugIn, AnEditThatItsClassReadsIsMade)
{
    for (Order const order : kOrders)
    {
        // Of the same length; in an object that keeps none; behind the body.
        Put("f", order, kShelf);
        Succeeds(With({"set", "f", "/0/record[0]", "bytes", "0c0d", "-o", "g"}));
        EXPECT_TRUE(
            Is("g", order,
               "{5E1F0001-5D0E-4A63-B41C-2F9D08E673A5} 46:8 38:4 Value 14:8 'CHAR 2:4 =0C0D 0:4 0:4"));
        Put("f", order, kBox);
        Succeeds(With({"set", "f", "/0/record[0]", "bytes", "0a0b0c", "-o", "g"}));
        EXPECT_TRUE(Is("g", order,
                       "{B0C50002-5D0E-4A63-B41C-2F9D08E673A5} 43:8 Value 15:8 'CHAR 3:4 =0A0B0C 0:4 0:4"));
        Put("f", order, kShelf);
        Succeeds(With({"set", "f", "/0/{11111111-2222-3333-4444-555555555555}", "bytes", "0a", "-o", "g"}));
        EXPECT_TRUE(Is("g", order, R"({5E1F0001-5D0E-4A63-B41C-2F9D08E673A5} 99:8 38:4
            Value 14:8 'CHAR 2:4 =0A0B 0:4 1:4
            {11111111-2222-3333-4444-555555555555} Value 13:8 'CHAR 1:4 =0A 0:4)"));
    }
}

TEST_F(ToolRecordPlugIn, OneThatCanNotBeLoadedEndsTheCommand)
{
    Put("f", kBig, kBookmarks);
    directory.File("no.so", "no library");
    for (char const* const plugIn : {"none.so", "no.so"})
    {
        Outcome const outcome = Do({"--plugin", plugIn, "tree", "f"});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(
            outcome.err.starts_with("tessio: cannot load the plug-in \"" + std::string(plugIn) + "\": "))
            << outcome.err;
    }
}
} // namespace
} // namespace KORVA::TESTS
