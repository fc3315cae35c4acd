// Changing, building, converting and salvaging record files with the tool.
#include "Integration/ToolRecord.h"
#include "Support/RowName.h"

#include <sys/stat.h>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

constexpr char kSevenAtOne[] = "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4";
constexpr char kEightAtOne[] = "Dict 60:8 1:4 1:4 Value 24:8 'S32V 8:8 0x4020000000000000:8 0:4 0:4";

struct EditRow
{
    char const* name;
    /// Behind the command's name and the file, before -o.
    char const* command;
    std::vector<std::string> arguments;
    char const* before;
    char const* after;
};

class ToolRecordEdit : public ToolRecord, public ::testing::WithParamInterface<EditRow>
{
};

TEST_P(ToolRecordEdit, GoesToAnotherFileToStandardOutputOrInPlace)
{
    for (Order const order : kOrders)
    {
        std::string const before = Text(order, GetParam().before);
        std::string const after = Text(order, GetParam().after);
        directory.File("f", before);
        Put("record", order, "URI 10:8 2:4 \"a\" 0:4");
        auto const command = [&](char const* file, std::vector<std::string> const& target) {
            std::vector<std::string> all{GetParam().command, file};
            all.insert(all.end(), GetParam().arguments.begin(), GetParam().arguments.end());
            all.insert(all.end(), target.begin(), target.end());
            return all;
        };
        Succeeds(command("f", {"-o", "o"}));
        EXPECT_TRUE(Content(Path("o")) == after);
        EXPECT_TRUE(Content(Path("f")) == before);
        Succeeds(command("f", {"-o", "-"}), after);
        Outcome const outcome = Feed(command("-", {"-o", "-"}), before);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_TRUE(outcome.out == after);
        EXPECT_EQ(Names(), "f o record");
        Succeeds(command("f", {"--in-place"}));
        EXPECT_TRUE(Content(Path("f")) == after);
        EXPECT_TRUE(Content(Path("f~")) == before);
        EXPECT_EQ(Names(), "f f~ o record");
        Fails(command("f", {}), 2,
              "tessio: say where the result goes: -o OUT, or --in-place, which keeps \"f~\"\n");
        fs::create_symlink("f", Path("link"));
        for (char const* const same : {"f", "./f", "link"})
            Fails(command("f", {"-o", same}), 2,
                  "tessio: \"" + std::string(same) +
                      "\" is the file itself: use --in-place, which keeps \"f~\"\n");
        EXPECT_EQ(Feed(command("-", {"--in-place"}), before).err,
                  "tessio: standard input can't be changed in place\n");
        EXPECT_EQ(Do(command("f", {"--in-place", "-o", "x"})).exitCode, 2);
        EXPECT_TRUE(Content(Path("f")) == after);
        for (char const* const name : {"f", "f~", "o", "link"})
            fs::remove(Path(name));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordEdit,
    ::testing::Values(
        EditRow{"SetKey", "set", {"/0/dict[1]", "int32", "8"}, kSevenAtOne, kEightAtOne},
        EditRow{"SetNewKey",
                "set",
                {"/0/2", "text", "hi"},
                kSevenAtOne,
                "Dict 104:8 2:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 "
                "2:4 Value 16:8 'UNIC 4:4 =68006900 0:4 0:4"},
        EditRow{"SetText",
                "set",
                {"/0/strings[\"a\"]", "text", "z"},
                "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4",
                "Strings 20:8 1:4 2:4 \"a\" 2:4 \"z\" 0:4"},
        EditRow{"SetAggregate",
                "set",
                {"/0/{11111111-2222-3333-4444-555555555555}", "bytes", "0a0b"},
                "URI 8:8 0:4 0:4 =AA",
                "URI 62:8 0:4 1:4 {11111111-2222-3333-4444-555555555555} Value 14:8 'CHAR 2:4 =0A0B 0:4 "
                "=AA"},
        EditRow{"SetRecord",
                "set",
                {"/0/1", "record", "record"},
                kSevenAtOne,
                "Dict 46:8 1:4 1:4 URI 10:8 2:4 \"a\" 0:4 0:4"},
        EditRow{"RemoveKey", "rm", {"/0/1"}, kSevenAtOne, "Dict 8:8 0:4 0:4"},
        EditRow{"RemoveText",
                "rm",
                {"/0/strings[a]"},
                "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4",
                "Strings 8:8 0:4 0:4"},
        EditRow{"RemoveRecord", "rm", {"/0"}, "URI 8:8 0:4 0:4 Dict 8:8 0:4 0:4", "Dict 8:8 0:4 0:4"}),
    RowName());

using ToolRecordSet = ToolRecord;

TEST_F(ToolRecordSet, ARecordOfTheOtherOrderIsTurnedRound)
{
    Put("f", kBig, "Dict 8:8 0:4 0:4");
    Put("record", kLittle, "URI 10:8 2:4 \"a\" 0:4");
    Put("two", kLittle, "URI 8:8 0:4 0:4 URI 8:8 0:4 0:4");
    Succeeds({"set", "f", "/0/1", "record", "record", "-o", "o"});
    EXPECT_TRUE(Is("o", kBig, "Dict 46:8 1:4 1:4 URI 10:8 2:4 \"a\" 0:4 0:4"));
    Fails({"set", "f", "/0/1", "record", "two", "-o", "x"}, 2,
          "tessio: \"two\" should hold one record, it has 2\n");
}

TEST_F(ToolRecordSet, WhatDoesNotFitIsSaidAndNothingIsWritten)
{
    Put("f", kBig, kSevenAtOne);
    Fails({"set", "f", "/0/1", "int8", "128", "-o", "o"}, 2,
          "tessio: \"128\" is no int8: the range is -128 to 127\n");
    Fails({"set", "f", "/0/1", "int7", "1", "-o", "o"}, 2,
          "tessio: \"int7\" is no type; the types are int8 uint8 int16 uint16 int32 uint32 int64 uint64 "
          "float double guid bytes file text uri relative dict\n");
    Fails({"set", "f", "/0/9/1", "int8", "1", "-o", "o"}, 1,
          "tessio: \"f\" has nothing at /0/dict[9]: /0 holds no dict[9]\n");
    Fails({"set", "f", "0/1", "int8", "1", "-o", "o"}, 2,
          "tessio: \"0/1\" is no path; paths look like /0, /0/dict[42]/dict[7], /0/{GUID}, "
          "/0/strings[\"NAME\"]\n");
    Put("g", kBig, "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4");
    Fails({"set", "g", "/0/1", "int8", "1", "--in-place"}, 4,
          "tessio: \"g\": /0 is damaged (should be 60 bytes, the file leaves 56): salvage the file first; "
          "nothing is changed\n");
    EXPECT_EQ(Names(), "f g");
}

using ToolRecordRemove = ToolRecord;

TEST_F(ToolRecordRemove, FilesOrAPlaceInOne)
{
    Put("f", kBig, kSevenAtOne);
    Put("g", kBig, kSevenAtOne);
    Fails({"rm", "f", "/0/1"}, 2,
          "tessio: say where the result goes: -o OUT, or --in-place, which keeps \"f~\"\n");
    EXPECT_TRUE(Is("f", kBig, kSevenAtOne));
    Succeeds({"rm", "f", "/0/1", "-i"});
    EXPECT_TRUE(Is("f", kBig, "Dict 8:8 0:4 0:4"));
    Succeeds({"rm", "f", "g"});
    EXPECT_EQ(Names(), "f~");
}

using ToolRecordConvert = ToolRecord;

TEST_F(ToolRecordConvert, TurnsEveryKnownRecordRound)
{
    char const* const known = R"(
        Dict 152:8 2:4
            1:4 Value 24:8 'GUID =67452301AB89EF010123456789ABCDEF 0:4
            2:4 Value 16:8 'UNIC 4:4 =68006900 0:4
            1:4 {11111111-2222-3333-4444-555555555555} Value 8:8 'UNNT 0:4
        Strings 22:8 1:4 2:4 "a" 4:4 "xy" 0:4
        Relative 34:8 8:4 "file" 0:4 80:4 2:4 "a" 3:4 0:4)";
    for (Order const order : kOrders)
    {
        Order const other = order == kBig ? kLittle : kBig;
        Put("f", order, known);
        std::string const name = other == kBig ? "big" : "little";
        Succeeds({"convert", "f", "--endian", name, "-o", "o"});
        EXPECT_TRUE(Is("o", other, known));
        Succeeds({"convert", "o", "--endian", name, "-o", "same"});
        EXPECT_TRUE(Is("same", other, known));
        Succeeds({"convert", "f", "--endian", name, "--in-place"});
        EXPECT_TRUE(Is("f", other, known));
        EXPECT_TRUE(Is("f~", order, known));
        Outcome const outcome = Feed({"convert", "-", "--endian", name, "-o", "-"}, Text(order, known));
        EXPECT_TRUE(outcome.out == Text(other, known));
    }
    EXPECT_EQ(Do({"convert", "f", "--endian", "big", "-o", "f"}).exitCode, 2);
    EXPECT_EQ(Do({"convert", "f", "--endian", "middle", "-o", "o"}).exitCode, 2);
}

using ToolRecordBuild = ToolRecord;

TEST_F(ToolRecordBuild, DumpAndBuildAreTheIdentity)
{
    for (Order const order : kOrders)
        for (char const* const format : {"text", "json", "jsonl"})
        {
            Put("f", order, kEvery);
            Outcome const dump = Do({"dump", "--format", format, "f"});
            EXPECT_EQ(dump.exitCode, 0);
            Outcome const build = Feed({"build", "-", "-o", "-"}, dump.out);
            EXPECT_TRUE(build.out == Text(order, kEvery)) << format;
            EXPECT_EQ(build.err, "");
            Succeeds({"dump", "--format", format, "f", "-o", "t"});
            EXPECT_EQ(Content(Path("t")), dump.out);
            Succeeds({"build", "t", "-o", "g"});
            EXPECT_TRUE(Is("g", order, kEvery)) << format;
        }
}

TEST_F(ToolRecordBuild, SaysWhereATextIsWrong)
{
    directory.File("t", "tessio-dump 1 big-endian\nPersistentDictionary {\n  1: int8 128\n}\n");
    Fails({"build", "t", "-o", "o"}, 3, "tessio: t:3: 128 is out of range for int8\n");
    Outcome const outcome = Feed({"build", "-", "-o", "o"}, "tessio-dump 1 big-endian\nnonsense");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.err, "tessio: standard input:2: a record is expected, not nonsense\n");
    EXPECT_EQ(Names(), "t");
}

using ToolRecordExtract = ToolRecord;

TEST_F(ToolRecordExtract, GivesOneRecordOrWhatItHolds)
{
    for (Order const order : kOrders)
    {
        Put("f", order, kEvery);
        Succeeds({"extract", "f", "/0/3", "-o", "o"});
        EXPECT_TRUE(Is("o", order, "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4"));
        Succeeds({"extract", "f", "/0/4", "-o", "-"},
                 Text(order, "{76543210-BA98-4EDC-9F01-23456789ABCD} 2:8 =0102"));
        Succeeds({"extract", "f", "/0/2", "--raw", "-o", "-"}, "hi");
        Succeeds({"extract", "f", "/0/3/strings[a]", "--raw", "-o", "-"}, "xy");
        Fails({"extract", "f", "/0/3/strings[a]", "-o", "x"}, 2,
              "tessio: /0/3/strings[a] is a text and no record: use --raw\n");
        Fails({"extract", "f", "/0/1", "--raw", "-o", "x"}, 2,
              "tessio: /0/1 is neither bytes nor text: --raw takes only these\n");
        Fails({"extract", "f", "/9", "-o", "x"}, 1, "tessio: \"f\" has no record 9; it has 4\n");
    }
    EXPECT_EQ(Names(), "f o");
}

using ToolRecordSalvage = ToolRecord;

// A whole record, a number whose last bytes are gone, and everything behind the end.
constexpr char kCut[] = "URI 8:8 0:4 0:4 Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8";

TEST_F(ToolRecordSalvage, KeepsWhatIsWholeAndTellsTheFateOfEveryByte)
{
    for (Order const order : kOrders)
    {
        Put("f", order, std::string("URI 8:8 0:4 0:4 ") + kSevenAtOne + " =AABBCC");
        Succeeds({"salvage", "f", "-o", "o", "--report", "r"});
        EXPECT_TRUE(Is("o", order, std::string("URI 8:8 0:4 0:4 ") + kSevenAtOne));
        std::string const report = Content(Path("r"));
        EXPECT_TRUE(report.starts_with("f -> o\n"
                                       "    offset     length  fate      where in the result\n"
                                       "         0         32  kept      /0\n"
                                       "        32         84  kept      /1\n"
                                       "       116          3  lost"))
            << report;
        EXPECT_TRUE(report.ends_with("119 bytes: 116 kept, 0 repaired, 0 partial, 0 opaque, 3 lost\n"))
            << report;
        Succeeds({"salvage", "f", "-o", "p"}, std::string(report).replace(5, 1, "p"));
        Outcome const outcome = Feed({"salvage", "-", "-o", "-", "--report", "r"}, Content(Path("f")));
        EXPECT_TRUE(outcome.out == Content(Path("o")));
        EXPECT_EQ(Do({"verify", "o"}).exitCode, 0);
        Succeeds({"--json", "salvage", "f", "-o", "o", "--report", "r"});
        EXPECT_TRUE(Content(Path("r")).starts_with("{\n  \"schema\": 1,\n  \"file\": \"f\",\n"))
            << Content(Path("r"));
        Succeeds({"--json", "salvage", "f", "-o", "o"}, Content(Path("r")));
    }
    Fails({"salvage", "f", "-o", "q", "--report", "none/r"}, 3,
          "tessio: cannot write \"none/r\": no such directory; the result is in \"q\"\n");
    EXPECT_TRUE(Content(Path("q")) == Content(Path("o")));
    Fails({"salvage", "f", "-o", "-"}, 2,
          "tessio: only one of result and report can go to standard output: name a file with --report\n");
}

struct SalvageRow
{
    char const* name;
    std::string before;
    std::string after;
    char const* totals;
};

class ToolRecordSalvaged : public ToolRecord, public ::testing::WithParamInterface<SalvageRow>
{
};

TEST_P(ToolRecordSalvaged, IsSoundAndEveryByteIsAccountedFor)
{
    for (Order const order : kOrders)
    {
        Put("f", order, GetParam().before);
        Outcome const outcome = Do({"salvage", "f", "-o", "o"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_TRUE(outcome.out.ends_with(GetParam().totals)) << outcome.out;
        EXPECT_TRUE(Is("o", order, GetParam().after)) << outcome.out << Do({"dump", "o"}).out;
        EXPECT_EQ(Do({"verify", "o"}).exitCode, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordSalvaged,
    ::testing::Values(
        SalvageRow{"Whole",
                   std::string(kSevenAtOne) + " {76543210-BA98-4EDC-9F01-23456789ABCD} 4:8 =01020304 URI 8:8 "
                                              "0:4 0:4",
                   std::string(kSevenAtOne) + " {76543210-BA98-4EDC-9F01-23456789ABCD} 4:8 =01020304 URI 8:8 "
                                              "0:4 0:4",
                   "144 bytes: 116 kept, 0 repaired, 0 partial, 28 opaque, 0 lost\n"},
        SalvageRow{"WrongLength",
                   "Dict 999:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4 URI 8:8 0:4 0:4",
                   std::string(kSevenAtOne) + " URI 8:8 0:4 0:4",
                   "116 bytes: 32 kept, 84 repaired, 0 partial, 0 opaque, 0 lost\n"},
        SalvageRow{"CutInANumber", kCut, "URI 8:8 0:4 0:4 Dict 8:8 0:4 0:4",
                   "100 bytes: 32 kept, 0 repaired, 28 partial, 0 opaque, 40 lost\n"}),
    RowName());

TEST_F(ToolRecordSalvage, WritesNothingWhereNothingCouldBeSaved)
{
    Put("f", kLittle, "URI 8:8 99:4 0:4");
    directory.File("o", "kept");
    std::string const report = "f -> o\n"
                               "    offset     length  fate      where in the result\n"
                               "         0         32  lost    \n"
                               "32 bytes: 0 kept, 0 repaired, 0 partial, 0 opaque, 32 lost\n";
    Outcome const outcome = Do({"salvage", "f", "-o", "o"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.out, report);
    EXPECT_EQ(outcome.err, "tessio: nothing in \"f\" could be saved; nothing is written to \"o\"\n");
    EXPECT_EQ(Content(Path("o")), "kept");
    Fails({"salvage", "f", "-o", "p", "--report", "r"}, 4,
          "tessio: nothing in \"f\" could be saved; nothing is written to \"p\"\n");
    EXPECT_EQ(Content(Path("r")), std::string(report).replace(5, 1, "p"));
    EXPECT_EQ(Names(), "f o r");
}

TEST_F(ToolRecordSalvage, NeverTouchesItsSource)
{
    Put("f", kBig, kCut);
    fs::permissions(Path("f"), fs::perms(0640));
    fs::create_symlink("f", Path("link"));
    fs::create_hard_link(Path("f"), Path("second"));
    struct stat before
    {
    };
    ASSERT_EQ(stat(Path("f").c_str(), &before), 0);
    EXPECT_EQ(Do({"salvage", "f", "-o", "o"}).exitCode, 0);
    for (char const* const itself : {"f", "./f", "link", "second"})
    {
        Fails({"salvage", "f", "-o", itself}, 2,
              "tessio: \"" + std::string(itself) + "\" is the file itself, which is only read\n");
        Fails({"salvage", "f", "-o", "x", "--report", itself}, 2,
              "tessio: \"" + std::string(itself) + "\" is the file itself, which is only read\n");
    }
    struct stat after
    {
    };
    ASSERT_EQ(stat(Path("f").c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
    EXPECT_TRUE(Is("f", kBig, kCut));
    EXPECT_EQ(Names(), "f link o second");
}
} // namespace
} // namespace KORVA::TESTS
