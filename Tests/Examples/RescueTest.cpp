// The program that rescues what a damaged file holds.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

namespace KORVA::TESTS
{
namespace
{
struct Row
{
    char const* name;
    /// Which byte of the file is changed, and by what; -1 for none.
    int at;
    unsigned char change;
    int exitCode;
    char const* out;
    char const* err;
    /// What the tool shows of the result; null when there is none.
    char const* kept;
};

class Rescue : public ToolRun, public ::testing::WithParamInterface<Row>
{
};

TEST_P(Rescue, SaysWhatIsWrongAndKeepsTheRest)
{
    ASSERT_EQ(Do({"dict", "set", "a.tess", "1", "int32", "7"}).exitCode, 0);
    ASSERT_EQ(Do({"dict", "set", "a.tess", "2", "text", "hello"}).exitCode, 0);
    std::string content = Content(Path("a.tess"));
    if (Row const& row = GetParam(); row.at >= 0)
        content[static_cast<std::size_t>(row.at)] = static_cast<char>(
            static_cast<unsigned char>(content[static_cast<std::size_t>(row.at)]) ^ row.change);
    directory.File("damaged", content);
    Outcome const outcome = RunProgram({TESSIO_RESCUE, "damaged", "result"}, directory.Path(), "");
    EXPECT_EQ(outcome.exitCode, GetParam().exitCode);
    EXPECT_EQ(outcome.out, GetParam().out);
    EXPECT_EQ(outcome.err, GetParam().err);
    EXPECT_EQ(std::filesystem::exists(Path("result")), GetParam().kept != nullptr);
    if (GetParam().kept)
    {
        EXPECT_EQ(Do({"dict", "list", "result"}).out, GetParam().kept);
        EXPECT_EQ(Do({"verify", "result"}).exitCode, 0);
    }
}

constexpr char kBoth[] = "1 int32 7\n2 text \"hello\"\n";

INSTANTIATE_TEST_SUITE_P(
    Rows, Rescue,
    ::testing::Values(
        Row{"Whole", -1, 0, 0, "nothing is damaged\n", "", nullptr},
        Row{"CountOfEntries", 24, 1, 0, "/0 at 0: should hold 3 entries, there is room for 2\n", "", kBoth},
        Row{"Length", 16, 0x10, 0, "/0 at 0: should be 126 bytes, the file leaves 110\n", "", kBoth},
        Row{"LengthOfAnEntry", 48, 0x40, 0,
            "/0 at 0: should hold 2 entries, there is room for 1\n"
            "/0/dict[1] at 32: should be 88 bytes, the parent leaves 78\n",
            "", kBoth}),
    RowName());
} // namespace
} // namespace KORVA::TESTS
