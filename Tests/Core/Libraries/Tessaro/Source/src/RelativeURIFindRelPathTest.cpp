// The way from a directory to a file, worked out from their absolute paths.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

struct Row
{
    char const* name;
    char const* target;
    char const* relPath;
    /// Of the full path.
    char const* full;
    char const* base = "/Users/u/Documents";
};

/// A URI of which only the path matters.
class PathURI final : public TObject<IO::IURI>
{
public:
    static IO::IURIPtr At(char const* path)
    {
        IO::IURIPtr uri;
        uri.Adopt(new PathURI(path));
        return uri;
    }

    void Init(CoreString const&) override {}
    void InitRelative(IURI const&, CoreString const&) override {}
    CoreString GetScheme() const override { return u"s"; }
    CoreString GetHost() const override { return u"h"; }
    uint32 GetPortNumber() const override { return 7; }
    CoreString GetPath() const override { return mPath; }
    CoreString GetQuery() const override { return u"query"; }
    CoreString GetAbsoluteString() const override { return u"s://h/absolute"; }
    void GetName(CoreString& name) const override { name = u"name"; }
    bool operator==(IURI const&) const override { return false; }

private:
    explicit PathURI(char const* path) : mPath(path) {}

    CoreString mPath;
};

using FindRelPathTest = RelativeURITestWith<Row>;

TEST_P(FindRelPathTest, FromAPath)
{
    Row const& row = GetParam();
    script.paths[kDocuments] = row.base;
    auto const uri = NewRelative();
    EXPECT_EQ(uri->Init(kDocuments, CoreString(u"s"), CoreString(u"h"), 7, CoreString(row.target), false), 0);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"s", "h", 7, row.full, row.relPath, row.base, 3}));
}

TEST_P(FindRelPathTest, FromAURI)
{
    Row const& row = GetParam();
    script.paths[kDocuments] = row.base;
    auto const target = PathURI::At(row.target);
    auto const uri = NewRelative();
    uri->Init(*target, 3);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"s", "h", 7, row.full, row.relPath, row.base, 3}));
}

Row const kBeside[] = {
    {"SiblingDirectory", "/Users/u/Desktop/f.txt", "../Desktop/f.txt", "/Users/u/Desktop/f.txt"},
    {"Sibling", "/Users/u/f.txt", "../f.txt", "/Users/u/f.txt"},
    {"OtherUser", "/Users/v/Documents/f", "../../v/Documents/f", "/Users/v/Documents/f"},
    {"DeepTarget", "/a/x/y/z", "../x/y/z", "/a/x/y/z", "/a/b"},
    {"DeepBase", "/a/x", "../../../x", "/a/x", "/a/b/c/d"},
    {"BeginningOfTheComponent", "/a/b", "../b", "/a/b", "/a/bc"},
    {"LongerThanTheComponent", "/a/bc", "../bc", "/a/bc", "/a/b"},
    {"NothingIsUnescaped", "/Users/u/a b/100%20?a#b:c;d", "../a b/100%20?a#b:c;d",
     "/Users/u/a b/100%20?a#b:c;d"},
    {"BeyondAscii", "/Users/u/\xC3\xA9/\xF0\x9F\x98\x80", "../\xC3\xA9/\xF0\x9F\x98\x80",
     "/Users/u/\xC3\xA9/\xF0\x9F\x98\x80"},
    {"TargetNamesComponentsOfTheBaseAgain", "/a/c/b", "../c/b", "/a/c/b", "/a/b"},
};
INSTANTIATE_TEST_SUITE_P(Beside, FindRelPathTest, ::testing::ValuesIn(kBeside), RowName());

// The whole base directory is the target's beginning, or the other way round: no way is written down.
Row const kNoWay[] = {
    {"Inside", "/Users/u/Documents/f.txt", "", "/Users/u/Documents"},
    {"DeepInside", "/Users/u/Documents/a/b/f.txt", "", "/Users/u/Documents"},
    {"InsideInOtherCase", "/USERS/U/documents/f.txt", "", "/Users/u/Documents"},
    {"TheDirectoryItself", "/Users/u/Documents", "", "/Users/u/Documents"},
    {"TheDirectoryWithASeparator", "/Users/u/Documents/", "", "/Users/u/Documents"},
    {"InsideAndOutAgain", "/Users/u/Documents/../Desktop/f.txt", "", "/Users/u/Documents"},
    {"Parent", "/Users/u", "", "/Users/u/Documents"},
    {"FirstAncestor", "/Users", "", "/Users/u/Documents"},
    {"AncestorInOtherCase", "/users", "", "/Users/u/Documents"},
    {"Root", "/", "", "/Users/u/Documents"},
    {"SeparatorsOnly", "//\\/", "", "/Users/u/Documents"},
    {"NoTarget", "", "", "/Users/u/Documents"},
    {"BaseIsTheRoot", "/a/f", "", "///", "/"},
    {"BaseHasNoPath", "/a/f", "", "//", ""},
};
INSTANTIATE_TEST_SUITE_P(NoWay, FindRelPathTest, ::testing::ValuesIn(kNoWay), RowName());

// Only the steps up. They end in a dot segment, so the full path is not begun anew.
Row const kNothingShared[] = {
    {"OtherVolume", "/Volumes/x/f.txt", "../../../", "//Users/u/Documents/../../../"},
    {"LongerFirstComponent", "/Users2/u/Documents", "../../../", "//Users/u/Documents/../../../"},
    {"Drive", "C:\\Users\\u", "../../../", "//Users/u/Documents/../../../"},
    {"FirstComponentIsADot", "/./Users/u/Desktop/f", "../../../", "//Users/u/Documents/../../../"},
    {"BareName", "f.txt", "../", "//a/../", "/a"},
    {"SecondComponentIsTheSame", "/x/b/c", "../../", "//a/b/../../", "/a/b"},
};
INSTANTIATE_TEST_SUITE_P(NothingShared, FindRelPathTest, ::testing::ValuesIn(kNothingShared), RowName());

// Compared regardless of case, copied as written.
Row const kCase[] = {
    {"TargetLower", "/users/U/desktop/f.txt", "../desktop/f.txt", "/Users/u/desktop/f.txt"},
    {"AgainFurtherOn", "/a/x/c", "../../x/c", "/a/x/c", "/a/b/C"},
    {"TargetUpper", "/USERS/U/DESKTOP/F.TXT", "../DESKTOP/F.TXT", "/Users/u/DESKTOP/F.TXT"},
    {"Umlaut", "/\xC3\xA4rger/y", "../y", "/\xC3\x84rger/y", "/\xC3\x84rger/x"},
    {"Greek", "/\xCE\xA9/y", "../y", "/\xCF\x89/y", "/\xCF\x89/x"},
};
INSTANTIATE_TEST_SUITE_P(Case, FindRelPathTest, ::testing::ValuesIn(kCase), RowName());

Row const kSeparators[] = {
    {"Backslashes", "\\Users\\u\\Desktop\\f.txt", "../Desktop/f.txt", "/Users/u/Desktop/f.txt"},
    {"Mixed", "/Users\\u/Desktop\\f.txt", "../Desktop/f.txt", "/Users/u/Desktop/f.txt"},
    {"EmptyComponents", "//Users///u//Desktop//f.txt", "../Desktop/f.txt", "/Users/u/Desktop/f.txt"},
    {"Trailing", "/Users/u/Desktop/sub/", "../Desktop/sub", "/Users/u/Desktop/sub"},
    {"NoneInFront", "Users/u/Desktop/f.txt", "../Desktop/f.txt", "/Users/u/Desktop/f.txt"},
    {"BackslashesInTheBase", "/a/c", "../c", "/a/c", "\\a\\b"},
    {"TrailingInTheBase", "/a/c", "../c", "/a/c", "/a/b/"},
    {"EmptyComponentsInTheBase", "/a/c", "../c", "/a/c", "//a//b"},
    {"NoneInFrontOfTheBase", "/a/c", "../c", "/a/c", "a/b"},
};
INSTANTIATE_TEST_SUITE_P(Separators, FindRelPathTest, ::testing::ValuesIn(kSeparators), RowName());

// Components like any other to the search; the full path is cleaned of them afterwards.
Row const kDots[] = {
    {"Dot", "/Users/u/./Desktop/f.txt", ".././Desktop/f.txt", "/Users/u/Desktop/f.txt"},
    {"DotDot", "/Users/u/../v/f.txt", "../../v/f.txt", "/Users/v/f.txt"},
    {"DotDotInTheBase", "/a/c", "../../../c", "/c", "/a/b/../d"},
    {"LastIsDot", "/Users/u/Desktop/.", "../Desktop/.", "/Users/u/Desktop//Users/u/Documents/../Desktop/."},
    {"LastIsDotDot", "/Users/u/Desktop/..", "../Desktop/..", "/Users/u//Users/u/Documents/../Desktop/.."},
};
INSTANTIATE_TEST_SUITE_P(Dots, FindRelPathTest, ::testing::ValuesIn(kDots), RowName());

struct AgainRow
{
    char const* name;
    char const* first;
    bool firstIsRelative;
    char const* second;
    char const* relPath;
    char const* full;
};

using FindRelPathAgainTest = RelativeURITestWith<AgainRow>;

TEST_P(FindRelPathAgainTest, AppendsToTheRelativePathThatWas)
{
    AgainRow const& row = GetParam();
    auto const uri = row.firstIsRelative ? Below(kDocuments, row.first) : Beside(kDocuments, row.first);
    auto const other = row.firstIsRelative ? Below(kDocuments, row.first) : Beside(kDocuments, row.first);
    RelativeState const expected{"file", "h", 80, row.full, row.relPath, "/Users/u/Documents", 3};
    InitBeside(*uri, kDocuments, row.second);
    EXPECT_EQ(StateOf(*uri), expected);

    other->Init(*PathURI::At(row.second), 3);
    EXPECT_EQ(other->GetRelPath().ToUTF8(), row.relPath);
    EXPECT_EQ(other->GetPath().ToUTF8(), row.full);
}

AgainRow const kAgain[] = {
    {"BesideTwice", "/Users/u/Desktop/f.txt", false, "/Users/u/Music/g", "../Desktop/f.txt../Music/g",
     "/Users/u/Desktop/f.txt../Music/g"},
    {"BesideThenInside", "/Users/u/Desktop/f.txt", false, "/Users/u/Documents/g", "../Desktop/f.txt",
     "/Users/u/Desktop/f.txt"},
    {"BesideThenNothingShared", "/Users/u/Desktop/f", false, "/Volumes/x", "../Desktop/f../../../",
     "/Users/u//Users/u/Documents/../Desktop/f../../../"},
    {"NothingSharedThenBeside", "/Volumes/x", false, "/Users/u/Desktop/f", "../../../../Desktop/f",
     "/Desktop/f"},
    {"NothingSharedTwice", "/Volumes/x", false, "/Volumes/x", "../../../../../../",
     "//Users/u/Documents/../../../../../../"},
    {"InsideThenBeside", "/Users/u/Documents/g", false, "/Users/u/Desktop/f", "../Desktop/f",
     "/Users/u/Desktop/f"},
    {"RelativeThenBeside", "sub", true, "/Users/u/Desktop/f", "sub../Desktop/f",
     "/Users/u/Documents/sub../Desktop/f"},
    {"RelativeThenInside", "sub/f", true, "/Users/u/Documents/g", "sub/f", "/Users/u/Documents/sub/f"},
};
INSTANTIATE_TEST_SUITE_P(Again, FindRelPathAgainTest, ::testing::ValuesIn(kAgain), RowName());

class FindRelPathObjectTest : public RelativeURITest
{
};

TEST_F(FindRelPathObjectTest, AppendsForAnotherDirectory)
{
    auto const uri = Beside(kDocuments, "/Users/u/Music/f");
    InitBeside(*uri, kDesktop, "/Users/u/Music/g");
    EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "h", 80, "/Users/u/Music/f../Music/g",
                                            "../Music/f../Music/g", "/Users/u/Desktop", 2}));
}

TEST_F(FindRelPathObjectTest, TakesItsOwnRelativePathAsTheTarget)
{
    auto const uri = Below(kDocuments, "Users/u/Music/f");
    EXPECT_EQ(uri->Init(kDocuments, CoreString(u"file"), CoreString(u"h"), 80, uri->GetRelPath(), false), 0);
    EXPECT_EQ(uri->GetRelPath().ToUTF8(), "Users/u/Music/f../Music/f");
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/Users/u/Documents/Users/u/Music/f../Music/f");
}
} // namespace
} // namespace KORVA
