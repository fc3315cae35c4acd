// How dot segments leave the full path, and when they don't.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

struct Row
{
    char const* name;
    /// The directory's path, which is the whole full path where no path is given from there.
    char const* before;
    char const* after;
};

using ResolvePathTest = RelativeURITestWith<Row>;

TEST_P(ResolvePathTest, GivesTheFullPath)
{
    Row const& row = GetParam();
    script.paths[kDocuments] = row.before;
    auto const uri = Below(kDocuments, "");
    EXPECT_EQ(uri->GetPath().ToUTF8(), row.after);
}

Row const kSeparators[] = {
    {"Plain", "/a/b", "/a/b"},
    {"NoneInFront", "a/b", "/a/b"},
    {"Trailing", "/a/b/", "/a/b"},
    {"Several", "//a///b//", "/a/b"},
    {"Backslashes", "\\a\\b", "/a/b"},
    {"Mixed", "/a\\b/c", "/a/b/c"},
    {"Drive", "C:\\dir\\f", "/C:/dir/f"},
    {"One", "a", "/a"},
    {"SameNames", "/a/a/a", "/a/a/a"},
    {"LastNameAgain", "/f/b/f", "/f/b/f"},
};
INSTANTIATE_TEST_SUITE_P(Separators, ResolvePathTest, ::testing::ValuesIn(kSeparators), RowName());

Row const kDots[] = {
    {"DotAndDotDot", "a/./b/../c", "/a/c"},
    {"Dot", "/a/./b", "/a/b"},
    {"Dots", "/a/././b", "/a/b"},
    {"DotInFront", "./a", "/a"},
    {"DotDot", "/a/b/../c", "/a/c"},
    {"DotDots", "/a/b/c/../../d", "/a/d"},
    {"DotDotsApart", "/a/../b/../c", "/c"},
    {"DotDotAfterDot", "/a/b/./../c", "/a/c"},
    {"DotAfterDotDot", "/a/b/.././c", "/a/c"},
    {"DotDotBehindABackslash", "/a/b\\..\\c", "/a/c"},
    {"AllTheWayUp", "/a/b/../../c", "/c"},
    {"Surplus", "/a/../../b", "/b"},
    {"SurplusInFront", "/../a", "/a"},
    {"MuchSurplus", "/../../../a/b", "/a/b"},
    {"SurplusEatsNothingBehindIt", "/../a/b/../c", "/a/c"},
    {"ThreeDots", "/a/.../b", "/a/.../b"},
    {"DotsInNames", "/.a/..b/c./d..", "/.a/..b/c./d.."},
    {"DotAndBlank", "/a/. /.. /b", "/a/. /.. /b"},
    {"FullwidthDots", "/a/\xEF\xBC\x8E\xEF\xBC\x8E/b", "/a/\xEF\xBC\x8E\xEF\xBC\x8E/b"},
};
INSTANTIATE_TEST_SUITE_P(Dots, ResolvePathTest, ::testing::ValuesIn(kDots), RowName());

// The path is begun anew with its last component alone. Where that is a dot segment, what is kept stands in
// front of the whole earlier text.
Row const kDotsAtTheEnd[] = {
    {"DotDot", "/a/b/..", "/a//a/b/.."},
    {"DotDotAndASeparator", "/a/b/../", "/a//a/b/../"},
    {"DotDotBehindABackslash", "\\a\\b\\..", "/a/\\a\\b\\.."},
    {"DotDotWithoutASeparatorInFront", "a/b/..", "/a/a/b/.."},
    {"DotDots", "/a/b/c/../..", "/a//a/b/c/../.."},
    {"DotDotThatLeavesNothing", "/a/..", "//a/.."},
    {"SurplusDotDot", "/a/../..", "//a/../.."},
    {"Dot", "/a/b/.", "/a/b//a/b/."},
    {"DotAndASeparator", "/a/b/./", "/a/b//a/b/./"},
    {"DotAndDotDot", "/a/b/./..", "/a//a/b/./.."},
    {"DotDotAndDot", "/a/b/../.", "/a//a/b/../."},
    {"DotDotInTheMiddleToo", "/a/b/../c/..", "/a//a/b/../c/.."},
    {"OnlyDot", ".", "/."},
    {"OnlyDotDot", "..", "/.."},
    {"OnlySlashAndDotDot", "/..", "//.."},
};
INSTANTIATE_TEST_SUITE_P(DotsAtTheEnd, ResolvePathTest, ::testing::ValuesIn(kDotsAtTheEnd), RowName());

Row const kNoComponents[] = {
    {"Nothing", "", "/"},
    {"Slash", "/", "//"},
    {"Slashes", "///", "////"},
    {"Backslash", "\\", "/\\"},
};
INSTANTIATE_TEST_SUITE_P(NoComponents, ResolvePathTest, ::testing::ValuesIn(kNoComponents), RowName());

class ResolvePathObjectTest : public RelativeURITest
{
};

TEST_F(ResolvePathObjectTest, LongPath)
{
    std::string down = "/Users/u/Documents";
    std::string up;
    std::string path;
    for (int i = 0; i < 2000; ++i)
    {
        down += "/d";
        path += "d/";
        up += "../";
    }
    EXPECT_EQ(Below(kDocuments, path + "f")->GetPath().ToUTF8(), down + "/f");
    EXPECT_EQ(Below(kDocuments, path + up + "f")->GetPath().ToUTF8(), "/Users/u/Documents/f");
    EXPECT_EQ(Below(kDocuments, up + "f")->GetPath().ToUTF8(), "/f");
}

// Each component is moved once. With a copy of the whole path for each this would not end in time.
TEST_F(ResolvePathObjectTest, PathOfVeryManyComponents)
{
    constexpr int kComponents = 500'000;
    std::string path;
    for (int i = 0; i < kComponents; ++i)
        path += "a/";
    EXPECT_TRUE(Below(kDocuments, path + "b")->GetPath().ToUTF8() == "/Users/u/Documents/" + path + "b");
}
} // namespace
} // namespace KORVA
