// The last component of a path, and of a relative URI's.
#include "DirFakes.h"
#include "LastComponent.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

struct Row
{
    char const* name;
    char const* path;
    char const* last;
};

class LastComponentTest : public ::testing::TestWithParam<Row>
{
};

TEST_P(LastComponentTest, IsWhatFollowsTheLastSeparator)
{
    EXPECT_EQ(IO::LastComponent(CoreString(GetParam().path)).ToUTF8(), GetParam().last);
}

// A separator in the last position is passed over, and a backslash counts only where no slash does.
Row const kComponents[] = {
    {"Nothing", "", ""},
    {"OneUnit", "a", "a"},
    {"Name", "name", "name"},
    {"Path", "/a/b.txt", "b.txt"},
    {"OneComponent", "/a", "a"},
    {"TrailingSlash", "/a/b/", "b/"},
    {"TrailingSlashOfAName", "a/", "a/"},
    {"TwoTrailingSlashes", "/a//", "/"},
    {"Slash", "/", "/"},
    {"Slashes", "//", "/"},
    {"Backslashes", "\\a\\b", "b"},
    {"TrailingBackslash", "a\\b\\", "b\\"},
    {"TrailingBackslashOfAName", "a\\", "a\\"},
    {"Backslash", "\\", "\\"},
    {"TwoBackslashes", "\\\\", "\\"},
    {"BackslashBehindASlash", "/a\\b", "a\\b"},
    {"BackslashBeforeASlash", "a\\b/c", "c"},
    {"OnlyTheLastSlashIsPassedOver", "a\\b/", "b/"},
    {"Colon", "/a:b", "a:b"},
};
INSTANTIATE_TEST_SUITE_P(Rows, LastComponentTest, ::testing::ValuesIn(kComponents), RowName());

using RelativeURINameTest = RelativeURITestWith<Row>;

TEST_P(RelativeURINameTest, IsTheFullPathsLastComponent)
{
    Row const& row = GetParam();
    EXPECT_EQ(NameOf(*Below(kDocuments, row.path)), row.last);
}

Row const kRelative[] = {
    {"File", "sub/f.txt", "f.txt"},       {"TheDirectory", "", "Documents"},
    {"TrailingSeparator", "sub/", "sub"}, {"BehindABackslash", "sub\\f.txt", "f.txt"},
    {"ColonsStay", "a:b:c", "a:b:c"},     {"DotDotInTheMiddle", "a/../f", "f"},
    {"DotDotAtTheEnd", "a/..", ".."},     {"DotAndASeparatorAtTheEnd", "a/./", "./"},
};
INSTANTIATE_TEST_SUITE_P(Rows, RelativeURINameTest, ::testing::ValuesIn(kRelative), RowName());

class RelativeURINamesTest : public RelativeURITest
{
};

TEST_F(RelativeURINamesTest, OfTheRootIsASeparator)
{
    script.paths[kDocuments] = "/";
    auto const uri = Below(kDocuments, "");
    EXPECT_EQ(uri->GetPath().ToUTF8(), "//");
    EXPECT_EQ(NameOf(*uri), "/");
}

TEST_F(RelativeURINamesTest, OfWhatHasJustBeenRead)
{
    Bytes const body = Hex("00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00 66 00 03 00 00 00");
    auto const uri = NewRelative();
    PersistenceOf(*uri)->Read(*MakeStream(*MakeMemory(kNative, body)));
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/");
    EXPECT_EQ(NameOf(*uri), "/") << "the separator stands in the last position";
}

TEST_F(RelativeURINamesTest, ComesThroughTheBaseInterfaceUnchanged)
{
    auto const uri = Below(kDocuments, "a:b");
    IO::IURI const& base = *uri;
    EXPECT_EQ(NameOf(base), "a:b");
    // A URI of the other class makes a slash of the colon.
    EXPECT_EQ(NameOf(*MakeURI("file:///a:b")), "a/b");
}
} // namespace
} // namespace KORVA
