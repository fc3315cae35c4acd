// Relative URIs from a directory's type and a path from there, and what a second Init leaves of the first.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

class RelativeURIInitTest : public RelativeURITest
{
};

TEST_F(RelativeURIInitTest, NewOneIsEmpty)
{
    auto const uri = NewRelative();
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "");
    EXPECT_EQ(uri->GetHost().ToUTF8(), "");
    EXPECT_EQ(uri->GetPortNumber(), 0u);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "");
    EXPECT_EQ(uri->GetQuery().ToUTF8(), "");
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "");
    EXPECT_EQ(uri->GetRelPath().ToUTF8(), "");
    EXPECT_EQ(NameOf(*uri), "");
    EXPECT_EQ(BaseOf(*uri), nullptr);
    EXPECT_EQ(script.containersMade, 0) << "nobody has asked for a directory yet";
}

TEST_F(RelativeURIInitTest, KeepsSchemeHostAndPort)
{
    auto const uri = NewRelative();
    EXPECT_EQ(
        uri->Init(kDocuments, CoreString(u"FTP"), CoreString(u"Höst"), 0xFFFFFFFF, CoreString(u"f"), true),
        0);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"FTP", "Höst", 0xFFFFFFFF, "/Users/u/Documents/f", "f",
                                            "/Users/u/Documents", 3}));
}

TEST_F(RelativeURIInitTest, AsksOneContainerForTheType)
{
    for (int32 const type : {2, 3, 0, -1, 2147483647})
    {
        script = {};
        script.paths[type] = "/base";
        auto const uri = NewRelative();
        EXPECT_EQ(uri->Init(static_cast<FILE_SYS::DirType>(type), CoreString(), CoreString(), 0,
                            CoreString(u"f"), true),
                  0);
        EXPECT_EQ(script.containersMade, 1);
        EXPECT_EQ(script.asked, std::vector<int32>{type});
        EXPECT_EQ(StateOf(*uri), (RelativeState{"", "", 0, "/base/f", "f", "/base", type}));
    }
}

struct Row
{
    char const* name;
    char const* path;
    /// Of the full path.
    char const* full;
    char const* base = "/Users/u/Documents";
};

using RelativePathTest = RelativeURITestWith<Row>;

TEST_P(RelativePathTest, IsKeptAsItIsAndJoined)
{
    Row const& row = GetParam();
    script.paths[kDocuments] = row.base;
    auto const uri = Below(kDocuments, row.path);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "h", 80, row.full, row.path, row.base, 3}));
}

Row const kInside[] = {
    {"File", "f.txt", "/Users/u/Documents/f.txt"},
    {"FileBelow", "sub/f.txt", "/Users/u/Documents/sub/f.txt"},
    {"Nothing", "", "/Users/u/Documents"},
    {"LeadingSeparator", "/sub/f.txt", "/Users/u/Documents/sub/f.txt"},
    {"TrailingSeparator", "sub/", "/Users/u/Documents/sub"},
    {"SeparatorOnly", "/", "/Users/u/Documents"},
    {"EmptyComponents", "a//b///c", "/Users/u/Documents/a/b/c"},
    {"Backslashes", "a\\b\\c", "/Users/u/Documents/a/b/c"},
    {"Dots", "./a/./b", "/Users/u/Documents/a/b"},
    {"DownAndUp", "sub/../f", "/Users/u/Documents/f"},
    {"NeitherUnescapedNorSplit", "a%20b?c#d:e;f", "/Users/u/Documents/a%20b?c#d:e;f"},
    {"NotComposed", "e\xCC\x81", "/Users/u/Documents/e\xCC\x81"},
    {"BeyondTheBasicPlane", "\xF0\x9F\x98\x80", "/Users/u/Documents/\xF0\x9F\x98\x80"},
};
INSTANTIATE_TEST_SUITE_P(Inside, RelativePathTest, ::testing::ValuesIn(kInside), RowName());

Row const kOutside[] = {
    {"Beside", "../Desktop/f", "/Users/u/Desktop/f"},
    {"Above", "../../f", "/Users/f"},
    {"AboveEverything", "../../../../../f", "/f"},
    {"LooksAbsolute", "/Users/u/Desktop/f", "/Users/u/Documents/Users/u/Desktop/f"},
    // Where the last component is a dot segment the path is not begun anew.
    {"TheParent", "..", "/Users/u//Users/u/Documents/.."},
    {"TheDirectoryItself", ".", "/Users/u/Documents//Users/u/Documents/."},
    {"BackToTheDirectory", "sub/..", "/Users/u/Documents//Users/u/Documents/sub/.."},
};
INSTANTIATE_TEST_SUITE_P(Outside, RelativePathTest, ::testing::ValuesIn(kOutside), RowName());

Row const kBases[] = {
    {"Root", "f", "/f", "/"},
    {"RootItself", "", "//", "/"},
    {"TrailingSeparator", "f", "/a/b/f", "/a/b/"},
    {"TrailingSeparatorItself", "", "/a/b", "/a/b/"},
    {"NoLeadingSeparator", "f", "/a/b/f", "a/b"},
    {"Backslashes", "f", "/C:/a/f", "C:\\a"},
    {"NoPath", "f", "/f", ""},
    {"NoPathItself", "", "/", ""},
};
INSTANTIATE_TEST_SUITE_P(Bases, RelativePathTest, ::testing::ValuesIn(kBases), RowName());

TEST_F(RelativeURIInitTest, LoneSurrogatesAndNullCharactersPass)
{
    auto const uri = NewRelative();
    CoreString const path = Text(std::u16string_view(u"a\xD800/b\0c", 6));
    EXPECT_EQ(uri->Init(kDocuments, CoreString(), CoreString(), 0, path, true), 0);
    EXPECT_TRUE(uri->GetRelPath() == path);
    EXPECT_TRUE(uri->GetPath() == Text(std::u16string_view(u"/Users/u/Documents/a\xD800/b\0c", 25)));
}

TEST_F(RelativeURIInitTest, SecondReplacesAll)
{
    auto const uri = Below(kDocuments, "a/f");
    EXPECT_EQ(uri->Init(kDesktop, CoreString(u"ftp"), CoreString(u"other"), 21, CoreString(u"g"), true), 0);
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"ftp", "other", 21, "/Users/u/Desktop/g", "g", "/Users/u/Desktop", 2}));
}

TEST_F(RelativeURIInitTest, RelativePathReplacesTheOneThatWasWorkedOut)
{
    auto const uri = Beside(kDocuments, "/Users/u/Music/f");
    EXPECT_EQ(uri->GetRelPath().ToUTF8(), "../Music/f");
    InitBelow(*uri, kDocuments, "g");
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"file", "h", 80, "/Users/u/Documents/g", "g", "/Users/u/Documents", 3}));
}

TEST_F(RelativeURIInitTest, EmptyPathLeavesTheRelativePathThatWas)
{
    auto const uri = Below(kDocuments, "a/f");
    InitBelow(*uri, kDesktop, "");
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"file", "h", 80, "/Users/u/Desktop", "a/f", "/Users/u/Desktop", 2}));
}

TEST_F(RelativeURIInitTest, TakesItsOwnRelativePath)
{
    auto const uri = Below(kDocuments, "../Music/f");
    EXPECT_EQ(uri->Init(kDesktop, CoreString(u"file"), CoreString(u"h"), 80, uri->GetRelPath(), true), 0);
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"file", "h", 80, "/Users/u/Music/f", "../Music/f", "/Users/u/Desktop", 2}));
}
} // namespace
} // namespace KORVA
