// Names that the tool keeps in dictionaries.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

#include <unistd.h>

namespace KORVA::TESTS
{
namespace
{
class ToolNamesKept : public ToolRun
{
protected:
    void Set(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"dict", "set", "d"});
        Succeeds(arguments);
    }
};

struct ValueRow
{
    char const* name;
    char const* type;
    char const* value;
    char const* listed;
    char const* got;
};

class ToolNameValue : public ToolNamesKept, public ::testing::WithParamInterface<ValueRow>
{
};

TEST_P(ToolNameValue, IsPutListedAndFetched)
{
    ValueRow const& row = GetParam();
    Set({"7", row.type, row.value});
    Succeeds({"dict", "list", "d"}, std::string("7 ") + row.listed + "\n");
    Succeeds({"dict", "get", "d", "7"}, std::string(row.got) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolNameValue,
    ::testing::Values(
        ValueRow{"File", "relative", "documents:n/a.txt", "relative documents:n/a.txt",
                 "/home/ada/Documents/n/a.txt"},
        ValueRow{"DirectoryItself", "relative", "music:", "relative music:", "/home/ada/Music"},
        ValueRow{"Upwards", "relative", "documents:../b", "relative documents:../b", "/home/ada/b"},
        ValueRow{"HigherThanTheRoot", "relative", "home:../../../../x", "relative home:../../../../x", "/x"},
        ValueRow{"SecondColon", "relative", "documents:a:b", "relative documents:a:b",
                 "/home/ada/Documents/a:b"},
        ValueRow{"EveryCharacter", "relative", "documents:a b%20?#e\u0301",
                 "relative documents:a b%20?#e\u0301", "/home/ada/Documents/a b%20?#e\u0301"},
        ValueRow{"URL", "uri", "http://u@h.example:8080/a b?c#d", "uri \"http://u@h.example:8080/a b?c#d\"",
                 "http://u@h.example:8080/a b?c#d"},
        ValueRow{"Path", "uri", "/a/b", "uri \"file:///a/b\"", "file:///a/b"},
        ValueRow{"Drive", "uri", "C:\\a\\b", "uri \"file:///C:/a/b\"", "file:///C:/a/b"},
        ValueRow{"ColonPath", "uri", "Disk:a:b", "uri \"file:///Disk/a/b\"", "file:///Disk/a/b"}),
    RowName());

TEST_F(ToolNamesKept, ARelativeNameIsFoundWhereTheUserIs)
{
    Set({"1", "relative", "documents:n/a.txt"});
    environment = {"HOME=/home/bob", "XDG_CONFIG_HOME=/none"};
    Succeeds({"dict", "get", "d", "1"}, "/home/bob/Documents/n/a.txt\n");
    Succeeds({"dict", "get", "--json", "d", "1"},
             "{\n"
             "  \"schema\": 1,\n"
             "  \"entry\": {\n"
             "    \"offset\": 0,\n"
             "    \"length\": 70,\n"
             "    \"label\": \"1\",\n"
             "    \"classId\": \"{4E278406-081C-48E2-97C3-C6C6D87280ED}\",\n"
             "    \"class\": \"RelativeURI\",\n"
             "    \"directory\": \"documents\",\n"
             "    \"value\": \"n/a.txt\",\n"
             "    \"path\": \"/home/bob/Documents/n/a.txt\"\n"
             "  }\n"
             "}\n");
    environment = {"HOME=/\xFF", "XDG_CONFIG_HOME=/none"};
    Succeeds({"dict", "list", "d"}, "1 relative documents:n/a.txt\n");
    Fails({"dict", "get", "d", "1"}, 1, "tessio: the directory documents is unknown here\n");
    Fails({"dict", "get", "--json", "d", "1"}, 1, "tessio: the directory documents is unknown here\n");
}

TEST_F(ToolNamesKept, TreeShowsNamesWithOffsetAndLength)
{
    Set({"1", "relative", "documents:notes/a.txt"});
    Set({"2", "uri", "http://h.example/a?b"});
    Succeeds({"tree", "d"}, "  offset   length  little-endian\n"
                            "       0      190  PersistentDictionary, 2 entries\n"
                            "      32       78    1: RelativeURI documents \"notes/a.txt\"\n"
                            "     114       72    2: URI \"http://h.example/a?b\"\n");
    Succeeds({"tree", "--json", "d"}, "{\n"
                                      "  \"schema\": 1,\n"
                                      "  \"order\": \"little-endian\",\n"
                                      "  \"records\": [\n"
                                      "    {\n"
                                      "      \"offset\": 0,\n"
                                      "      \"length\": 190,\n"
                                      "      \"path\": \"/0\",\n"
                                      "      \"classId\": \"{73E90CD5-BBC6-4326-8241-9BB4250B1B05}\",\n"
                                      "      \"class\": \"PersistentDictionary\",\n"
                                      "      \"children\": [\n"
                                      "        {\n"
                                      "          \"offset\": 32,\n"
                                      "          \"length\": 78,\n"
                                      "          \"label\": \"1\",\n"
                                      "          \"path\": \"/0/dict[1]\",\n"
                                      "          \"classId\": \"{4E278406-081C-48E2-97C3-C6C6D87280ED}\",\n"
                                      "          \"class\": \"RelativeURI\",\n"
                                      "          \"directory\": \"documents\",\n"
                                      "          \"value\": \"notes/a.txt\"\n"
                                      "        },\n"
                                      "        {\n"
                                      "          \"offset\": 114,\n"
                                      "          \"length\": 72,\n"
                                      "          \"label\": \"2\",\n"
                                      "          \"path\": \"/0/dict[2]\",\n"
                                      "          \"classId\": \"{2517B49E-BCE5-404C-8524-3A6EC3C3B633}\",\n"
                                      "          \"class\": \"URI\",\n"
                                      "          \"value\": \"http://h.example/a?b\"\n"
                                      "        }\n"
                                      "      ]\n"
                                      "    }\n"
                                      "  ]\n"
                                      "}\n");
}

TEST_F(ToolNamesKept, EditsBesideThemKeepTheirBytes)
{
    Succeeds({"dict", "set", "--big-endian", "d", "1/2", "relative", "documents:a"});
    Set({"3", "uri", "http://h/x"});
    std::string const before = Content(Path("d"));
    // Also for a user whose directories nobody knows.
    environment = {"HOME=/\xFF", "XDG_CONFIG_HOME=/none"};
    Set({"4", "int8", "1"});
    EXPECT_NE(Content(Path("d")), before);
    Succeeds({"dict", "rm", "d", "4"});
    EXPECT_EQ(Content(Path("d")), before);
    Succeeds({"dict", "list", "d"}, "1 PersistentDictionary, 1 entry\n3 uri \"http://h/x\"\n");
    Succeeds({"dict", "list", "d", "1"}, "2 relative documents:a\n");
    EXPECT_EQ(Names(), "d");
}

TEST_F(ToolNamesKept, TheyAreNeitherTextNorDictionaries)
{
    Set({"1", "uri", "/a"});
    Set({"2", "relative", "home:a"});
    for (char const* const key : {"1", "2"})
    {
        Fails({"dict", "get", "--raw", "d", key}, 2,
              std::string("tessio: ") + key + " is neither bytes nor text: --raw prints only these\n");
        Fails({"dict", "list", "d", key}, 1, std::string("tessio: ") + key + " is no dictionary\n");
        Fails({"dict", "set", "d", std::string(key) + "/1", "int8", "1"}, 1,
              std::string("tessio: ") + key + " is no dictionary\n");
    }
    Succeeds({"dict", "list", "d"}, "1 uri \"file:///a\"\n2 relative home:a\n");
}

TEST_F(ToolNamesKept, ARelativeNameIsKeptOrRefusedWhereItsDirectoryIsUnknown)
{
    Set({"1", "int8", "1"});
    std::string const before = Content(Path("d"));
    environment = {"HOME=/\xFF", "XDG_CONFIG_HOME=/none"};
    if (Do({"dict", "set", "d", "2", "relative", "documents:n/a.txt"}).exitCode == 0)
        Succeeds({"dict", "list", "d"}, "1 int8 1\n2 relative documents:n/a.txt\n");
    else
        EXPECT_EQ(Content(Path("d")), before);
}

TEST_F(ToolNamesKept, ADirectoryOfAnotherVersionIsNoFaultOfTheUser)
{
    Set({"1", "relative", "documents:a"});
    std::string content = Content(Path("d"));
    ASSERT_EQ(content.size(), 94u);
    // The type of directory, in front of two counts of aggregates.
    content[82] = '\x77';
    directory.File("d", content);
    Succeeds({"dict", "list", "d"}, "1 relative 119:a\n");
    Outcome const outcome = Do({"dict", "get", "d", "1"});
    EXPECT_TRUE(outcome.exitCode == 1 || outcome.exitCode == 4) << outcome.exitCode << ": " << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(Content(Path("d")), content);
}

struct DotsRow
{
    char const* name;
    char const* value;
    /// Where it really is.
    char const* path;
};

class ToolNameDots : public ToolNamesKept, public ::testing::WithParamInterface<DotsRow>
{
};

TEST_P(ToolNameDots, LeadToTheRightPathOrNowhere)
{
    Outcome const outcome = Do({"dict", "set", "d", "1", "relative", GetParam().value});
    if (outcome.exitCode == 0)
        Succeeds({"dict", "get", "d", "1"}, std::string(GetParam().path) + "\n");
    else
        EXPECT_EQ(Names(), "");
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolNameDots,
                         ::testing::Values(DotsRow{"Here", "documents:.", "/home/ada/Documents"},
                                           DotsRow{"HereWithASlash", "documents:./", "/home/ada/Documents"},
                                           DotsRow{"Up", "documents:..", "/home/ada"},
                                           DotsRow{"UpWithASlash", "documents:../", "/home/ada"},
                                           DotsRow{"Within", "documents:a/./b", "/home/ada/Documents/a/b"},
                                           DotsRow{"Backslash", "documents:a\\b",
                                                   "/home/ada/Documents/a\\b"}),
                         RowName());

TEST_F(ToolNamesKept, DotsInAFileAreNoFaultOfTheUser)
{
    Set({"1", "relative", "documents:xx"});
    std::string content = Content(Path("d"));
    content.replace(content.find(std::string("x\0x\0", 4)), 4, std::string(".\0.\0", 4));
    directory.File("d", content);
    Succeeds({"dict", "list", "d"}, "1 relative documents:..\n");
    EXPECT_NE(Do({"dict", "get", "d", "1"}).exitCode, 2);
}

TEST_F(ToolNamesKept, MessagesNeverGoIntoTheFileThatIsEdited)
{
    Set({"1", "text", "kept"});
    std::string const before = Content(Path("d"));
    // What is opened takes the numbers of the streams that are closed.
    environment = {"HOME=/\xFF", "XDG_CONFIG_HOME=/none"};
    for (int closed = 1; closed < 8; ++closed)
    {
        directory.File("d", before);
        Outcome const outcome =
            Do({"--verbose", "dict", "set", "d", "2", "relative", "documents:a"}, [closed] {
                for (int i = 0; i < 3; ++i)
                    if ((closed >> i) % 2 == 1)
                        close(i);
            });
        if (outcome.exitCode != 0)
        {
            EXPECT_EQ(Content(Path("d")), before) << closed;
        }
        Succeeds({"dict", "get", "d", "1"}, "\"kept\"\n");
        EXPECT_EQ(Names(), "d");
    }
}
} // namespace
} // namespace KORVA::TESTS
