// The program that walks a record file.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

namespace KORVA::TESTS
{
namespace
{
struct Row
{
    char const* name;
    /// What makes "a.tess".
    std::vector<std::vector<std::string>> commands;
    std::vector<std::string> plugIns;
    int exitCode;
    char const* out;
    char const* err;
};

class Walk : public ToolRun, public ::testing::WithParamInterface<Row>
{
};

TEST_P(Walk, Prints)
{
    Row const& row = GetParam();
    directory.File("a.txt", "NAME=\"Example\"\nID=e\n");
    directory.File("junk", std::string(30, '\xFF'));
    // A record of a class that nobody makes: id, a length of 3, three bytes.
    directory.File("foreign", std::string("0123456789abcdef\3\0\0\0\0\0\0\0xyz", 27));
    directory.File("empty", "");
    for (auto const& command : row.commands)
    {
        if (command[0] == "cat")
        {
            std::string all;
            for (std::size_t i = 1; i < command.size(); ++i)
                all += Content(Path(command[i]));
            directory.File("a.tess", all);
        }
        else
            Succeeds(command);
    }
    std::vector<std::string> command{TESSIO_WALK};
    command.insert(command.end(), row.plugIns.begin(), row.plugIns.end());
    command.emplace_back("a.tess");
    setenv("KORVA_LOG_DIR", directory.Path().c_str(), 1);
    Outcome const outcome = RunProgram(command, directory.Path().string());
    EXPECT_EQ(outcome.exitCode, row.exitCode);
    EXPECT_EQ(outcome.out, row.out);
    EXPECT_EQ(outcome.err, row.err);
}

Row const kRows[] = {
    {"Values",
     {{"dict", "set", "a.tess", "1", "int32", "-7"},
      {"dict", "set", "a.tess", "2", "double", "0.5"},
      {"dict", "set", "a.tess", "3", "text",
       "Gr\xC3\xBC\xC3\x9F"
       "e"},
      {"dict", "set", "a.tess", "4", "bytes", "0a 0b"},
      {"dict", "set", "a.tess", "5", "guid", "{00112233-4455-6677-8899-AABBCCDDEEFF}"},
      {"dict", "set", "a.tess", "6/1", "uint8", "9"}},
     {},
     0,
     "0: dictionary, 6 entries\n"
     "  1: -7\n"
     "  2: 0.5\n"
     "  3: \"Gr\xC3\xBC\xC3\x9F"
     "e\"\n"
     "  4: 2 bytes\n"
     "  5: {00112233-4455-6677-8899-AABBCCDDEEFF}\n"
     "  6: dictionary, 1 entries\n"
     "    1: 9\n",
     ""},
    {"Strings",
     {{"strings", "import", "a.tess", "a.txt"}},
     {},
     0,
     "0: string dictionary, 2 entries\n"
     "  ID = \"e\"\n"
     "  NAME = \"Example\"\n",
     ""},
    {"SeveralAndAnUnknownOne",
     {{"strings", "set", "b.tess", "a", "b"},
      {"dict", "set", "c.tess", "1", "int32", "1"},
      {"cat", "b.tess", "foreign", "c.tess"}},
     {},
     0,
     "0: string dictionary, 1 entries\n"
     "  a = \"b\"\n"
     "44: skipped 3 bytes of the class {33323130-3534-3736-3839-616263646566}\n"
     "71: dictionary, 1 entries\n"
     "  1: 1\n",
     ""},
    {"Nothing", {{"cat", "empty"}}, {}, 0, "", ""},
    {"NoRecords", {{"cat", "junk"}}, {}, 1, "", "a.tess: no record at 0\n"},
    {"Cut",
     {{"strings", "set", "b.tess", "a", "b"}, {"cat", "b.tess", "a.txt"}},
     {},
     1,
     "0: string dictionary, 1 entries\n"
     "  a = \"b\"\n",
     "a.tess: no record at 44\n"},
    {"NoFile", {}, {}, 1, "", "cannot read a.tess\n"},
};

INSTANTIATE_TEST_SUITE_P(Files, Walk, ::testing::ValuesIn(kRows), RowName());
} // namespace
} // namespace KORVA::TESTS
