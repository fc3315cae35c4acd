// The tool's dictionaries and trees.
#include "Support/Process.h"
#include "Support/RowName.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
class ToolDict : public ::testing::Test
{
protected:
    Outcome Do(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), TESSIO_BINARY_DIR "/bin/tessio");
        return RunProgram(arguments, directory.Path().string());
    }

    void Set(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"dict", "set", "d"});
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    }

    void Succeeds(std::vector<std::string> const& arguments, std::string const& out) const
    {
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.out, out);
        EXPECT_EQ(outcome.err, "");
    }

    void Fails(std::vector<std::string> const& arguments, int exitCode, std::string const& out,
               std::string const& err) const
    {
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.out, out);
        EXPECT_EQ(outcome.err, err);
    }

    TemporaryDirectory directory;
};

struct ValueRow
{
    char const* name;
    std::vector<std::string> typeAndValue;
    char const* listed;
};

class ToolValue : public ToolDict, public ::testing::WithParamInterface<ValueRow>
{
};

TEST_P(ToolValue, IsPutAndListed)
{
    directory.File("blob", std::string("\0\xFF", 2));
    std::vector<std::string> arguments = GetParam().typeAndValue;
    arguments.insert(arguments.begin(), "0x10");
    Set(arguments);
    Succeeds({"dict", "list", "d"}, std::string("16 ") + GetParam().listed + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolValue,
    ::testing::Values(ValueRow{"Int8", {"int8", "-128"}, "int8 -128"},
                      ValueRow{"UInt8", {"uint8", "0b11111111"}, "uint8 255"},
                      ValueRow{"Int16", {"int16", "-0x8000"}, "int16 -32768"},
                      ValueRow{"UInt16", {"uint16", "0o17"}, "uint16 15"},
                      ValueRow{"Int32", {"int32", "+7"}, "int32 7"},
                      ValueRow{"UInt32", {"uint32", "4294967295"}, "uint32 4294967295"},
                      ValueRow{"Int64", {"int64", "-9223372036854775808"}, "int64 -9223372036854775808"},
                      ValueRow{"UInt64", {"uint64", "0xFFFFFFFFFFFFFFFF"}, "uint64 18446744073709551615"},
                      ValueRow{"Float", {"float", "0.1"}, "float 0.1"},
                      ValueRow{"HexDouble", {"double", "0x1.8p1"}, "double 3"},
                      ValueRow{"NegativeInfinity", {"double", "--", "-inf"}, "double -inf"},
                      ValueRow{"Guid",
                               {"guid", "73e90cd5-bbc6-4326-8241-9bb4250b1b05"},
                               "guid {73E90CD5-BBC6-4326-8241-9BB4250B1B05}"},
                      ValueRow{"Bytes", {"bytes", "0A:0b 0c"}, "bytes 0a 0b 0c"},
                      ValueRow{"File", {"file", "blob"}, "bytes 00 ff"},
                      ValueRow{"Text", {"text", "a\tb"}, "text \"a\\tb\""},
                      ValueRow{"Dictionary", {"dict"}, "PersistentDictionary, 0 entries"}),
    RowName());

TEST_F(ToolDict, NestedDictionariesAreReachedByKeyPath)
{
    Set({"1/7/3", "int32", "42"});
    Set({"1/8", "text", "beside"});
    Succeeds({"dict", "get", "d", "1/7/3"}, "42\n");
    Succeeds({"dict", "get", "d", "1/8", "--raw"}, "beside");
    Succeeds({"dict", "get", "d", "1/7"}, "PersistentDictionary, 1 entry\n");
    Succeeds({"dict", "list", "d", "1"}, "7 PersistentDictionary, 1 entry\n8 text \"beside\"\n");
    Succeeds({"dict", "rm", "d", "1/7/3"}, "");
    Succeeds({"dict", "list", "d", "1/7"}, "");
    Fails({"dict", "get", "d", "1/7/3"}, 1, "", "tessio: \"d\" has no key 1/7/3\n");
    Fails({"dict", "get", "d", "2/1"}, 1, "", "tessio: \"d\" has no key 2/1\n");
    Fails({"dict", "set", "d", "1/8/1", "int8", "1"}, 1, "", "tessio: 1/8 is no dictionary\n");
    Fails({"dict", "list", "d", "1/8"}, 1, "", "tessio: 1/8 is no dictionary\n");
    Fails({"dict", "get", "d", "1//3"}, 2, "",
          "tessio: \"\" is no key: not a whole number of at most 64 bits\n");
}

TEST_F(ToolDict, TreeShowsEveryRecordWithOffsetAndLength)
{
    Set({"1", "int32", "7"});
    Set({"2/5", "text", "hi"});
    Succeeds({"tree", "d"}, "  offset   length  little-endian\n"
                            "       0      164  PersistentDictionary, 2 entries\n"
                            "      32       48    1: DictValue int32 7\n"
                            "      84       76    2: PersistentDictionary, 1 entry\n"
                            "     116       40      5: DictValue text \"hi\"\n");
}

/// Two entries of one dictionary: 1 is the int32 7; 2 a record of a class that nobody knows, with two bytes.
std::string const
    kUnknownInside("\xD5\x0C\xE9\x73\xC6\xBB\x26\x43\x82\x41\x9B\xB4\x25\x0B\x1B\x05"
                   "\x5A\0\0\0\0\0\0\0"
                   "\2\0\0\0"
                   "\1\0\0\0"
                   "\x21\x0C\xE9\x73\xC6\xBB\x26\x43\x82\x41\x9B\xB4\x25\x0B\x1B\x05"
                   "\x18\0\0\0\0\0\0\0\x56\x32\x33\x53\7\0\0\0\0\0\0\0\0\0\0\0\0\0\x1C\x40\0\0\0\0"
                   "\2\0\0\0"
                   "\1\1\1\1\1\1\1\1\1\1\1\1\1\1\1\1\2\0\0\0\0\0\0\0zz"
                   "\0\0\0\0",
                   114);

TEST_F(ToolDict, UnknownClassesAreShownAndNeverLost)
{
    directory.File("d", kUnknownInside);
    Succeeds({"tree", "d"},
             "  offset   length  little-endian\n"
             "       0      114  PersistentDictionary, 2 entries\n"
             "      32       48    1: DictValue int32 7\n"
             "      84       26    2: unknown class {01010101-0101-0101-0101-010101010101}, skipped\n");
    Succeeds({"dict", "get", "d", "1"}, "7\n");
    Fails({"dict", "set", "d", "3", "int32", "1"}, 4, "",
          "tessio: \"d\": the record at offset 84 would be lost (unknown class "
          "{01010101-0101-0101-0101-010101010101}); nothing is changed\n");
    EXPECT_EQ(Content(directory.Path() / "d"), kUnknownInside);
}

TEST_F(ToolDict, RecordsBehindTheFirstKeepTheirBytes)
{
    Set({"1", "int8", "1"});
    std::string const first = Content(directory.Path() / "d");
    std::string const behind("\1\1\1\1\1\1\1\1\1\1\1\1\1\1\1\1\2\0\0\0\0\0\0\0zz", 26);
    directory.File("d", first + behind);
    Set({"1", "int8", "2"});
    std::string const after = Content(directory.Path() / "d");
    EXPECT_EQ(after.size(), first.size() + behind.size());
    EXPECT_EQ(after.substr(first.size()), behind);
    Succeeds({"dict", "get", "d", "1"}, "2\n");
}

TEST_F(ToolDict, ADamagedFileIsShownAsFarAsItGoesAndNotEdited)
{
    Set({"1", "int32", "7"});
    std::string content = Content(directory.Path() / "d");
    content.resize(70);
    directory.File("d", content);
    Fails({"tree", "d"}, 4,
          "  offset   length  little-endian\n"
          "       0       70  PersistentDictionary, 1 entry\n"
          "                   ! should be 60 bytes, the file leaves 46\n"
          "      32       38    1: DictValue int32\n"
          "                     ! should be 24 bytes, the parent leaves 14\n",
          "tessio: \"d\": /0 at offset 0 is damaged: should be 60 bytes, the file leaves 46\n");
    Fails({"dict", "set", "d", "1", "int32", "8"}, 4, "",
          "tessio: \"d\": the record at offset 0 would be lost (should be 60 bytes, the file leaves 46); "
          "nothing is "
          "changed\n");
    EXPECT_EQ(Content(directory.Path() / "d"), content);
}

TEST_F(ToolDict, WhatIsNoRecordFileIsSaidSo)
{
    directory.File("text", "just some text, long enough for a header");
    directory.File("empty", "");
    Fails({"tree", "text"}, 4, "", "tessio: \"text\" is not a record file\n");
    Fails({"tree", "empty"}, 4, "", "tessio: \"empty\" is not a record file: it is empty\n");
    Fails({"dict", "get", "text", "1"}, 4, "", "tessio: \"text\" is not a record file\n");
    Set({"1", "int8", "1"});
    Fails({"strings", "get", "d", "x"}, 4, "",
          "tessio: \"d\": the first record is of class PersistentDictionary, not StringDictionary\n");
}

TEST_F(ToolDict, BothByteOrdersAreFoundOut)
{
    EXPECT_EQ(Do({"dict", "set", "--big-endian", "d", "1", "int32", "7"}).exitCode, 0);
    Set({"2", "uint8", "1"});
    Succeeds({"tree", "d"}, "  offset   length  big-endian\n"
                            "       0      136  PersistentDictionary, 2 entries\n"
                            "      32       48    1: DictValue int32 7\n"
                            "      84       48    2: DictValue uint8 1\n");
    Succeeds({"tree", "--big-endian", "--json", "d"},
             "{\n"
             "  \"schema\": 1,\n"
             "  \"order\": \"big-endian\",\n"
             "  \"records\": [\n"
             "    {\n"
             "      \"offset\": 0,\n"
             "      \"length\": 136,\n"
             "      \"path\": \"/0\",\n"
             "      \"classId\": \"{73E90CD5-BBC6-4326-8241-9BB4250B1B05}\",\n"
             "      \"class\": \"PersistentDictionary\",\n"
             "      \"children\": [\n"
             "        {\n"
             "          \"offset\": 32,\n"
             "          \"length\": 48,\n"
             "          \"label\": \"1\",\n"
             "          \"path\": \"/0/dict[1]\",\n"
             "          \"classId\": \"{73E90C21-BBC6-4326-8241-9BB4250B1B05}\",\n"
             "          \"class\": \"DictValue\",\n"
             "          \"type\": \"int32\",\n"
             "          \"value\": 7\n"
             "        },\n"
             "        {\n"
             "          \"offset\": 84,\n"
             "          \"length\": 48,\n"
             "          \"label\": \"2\",\n"
             "          \"path\": \"/0/dict[2]\",\n"
             "          \"classId\": \"{73E90C21-BBC6-4326-8241-9BB4250B1B05}\",\n"
             "          \"class\": \"DictValue\",\n"
             "          \"type\": \"uint8\",\n"
             "          \"value\": 1\n"
             "        }\n"
             "      ]\n"
             "    }\n"
             "  ]\n"
             "}\n");
}

/// Key 1 is a number that claims to be a dictionary too: it aggregates a string dictionary under that id.
std::string const kFalseDictionary("\xD5\x0C\xE9\x73\xC6\xBB\x26\x43\x82\x41\x9B\xB4\x25\x0B\x1B\x05"
                                   "\x6C\0\0\0\0\0\0\0\1\0\0\0\1\0\0\0"
                                   "\x21\x0C\xE9\x73\xC6\xBB\x26\x43\x82\x41\x9B\xB4\x25\x0B\x1B\x05"
                                   "\x48\0\0\0\0\0\0\0"
                                   "\x56\x32\x33\x53\7\0\0\0\0\0\0\0\0\0\0\0\0\0\x1C\x40\1\0\0\0"
                                   "\xD5\x0C\xE9\x73\xC6\xBB\x26\x43\x82\x41\x9B\xB4\x25\x0B\x1B\x05"
                                   "\x56\x0A\x21\xCD\x4C\x28\x7C\x4B\x81\x3F\x42\xAD\xDF\x77\x48\x53"
                                   "\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                                   "\0\0\0\0",
                                   132);

TEST_F(ToolDict, WhatOnlyClaimsToBeADictionaryIsNone)
{
    directory.File("d", kFalseDictionary);
    Succeeds({"dict", "get", "d", "1"}, "7\n");
    Fails({"dict", "get", "d", "1/2"}, 1, "", "tessio: 1 is no dictionary\n");
    Fails({"dict", "set", "d", "1/2", "int8", "1"}, 1, "", "tessio: 1 is no dictionary\n");
    Fails({"dict", "list", "d", "1"}, 1, "", "tessio: 1 is no dictionary\n");
}

TEST_F(ToolDict, AKeyThatIsThereTwiceIsNotEditedAway)
{
    Set({"1", "uint8", "1"});
    std::string content = Content(directory.Path() / "d");
    std::string const entry = content.substr(28, 52);
    content[16] = static_cast<char>(content[16] + 52);
    content[24] = 2;
    content.insert(28, entry);
    directory.File("d", content);
    Fails({"dict", "set", "d", "2", "uint8", "1"}, 4, "",
          "tessio: \"d\": the first record would not survive editing; nothing is changed\n");
    EXPECT_EQ(Content(directory.Path() / "d"), content);
}

TEST_F(ToolDict, AKeyPathIsNoDeeperThanRecordsMayBe)
{
    std::string path = "1";
    for (int i = 1; i < 999; ++i)
        path += "/1";
    Set({path, "int8", "5"});
    Succeeds({"dict", "get", "d", path}, "5\n");
    Fails({"dict", "set", "d", path + "/1", "int8", "5"}, 2, "", "tessio: a key path has 999 keys at most\n");
}
} // namespace
} // namespace KORVA::TESTS
