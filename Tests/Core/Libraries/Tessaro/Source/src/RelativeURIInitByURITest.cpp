// Relative URIs from another URI.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

struct Row
{
    char const* name;
    char const* location;
    RelativeState state;
};

using RelativeURIInitByURITest = RelativeURITestWith<Row>;

TEST_P(RelativeURIInitByURITest, TakesSchemeHostPortAndPath)
{
    Row const& row = GetParam();
    auto const source = MakeURI(row.location);
    auto const uri = NewRelative();
    uri->Init(*source, 3);
    EXPECT_EQ(StateOf(*uri), row.state);
    EXPECT_EQ(References(*source), 1) << "the other URI is not kept";
}

constexpr char kBase[] = "/Users/u/Documents";

Row const kRows[] = {
    {"Path",
     "/Users/u/Desktop/f.txt",
     {"file", "", 0, "/Users/u/Desktop/f.txt", "../Desktop/f.txt", kBase, 3}},
    {"HostAndPort", "http://Host:81/Users/u/f", {"http", "Host", 81, "/Users/u/f", "../f", kBase, 3}},
    {"BlanksAreUnescaped", "file:///Users/u/a b", {"file", "", 0, "/Users/u/a b", "../a b", kBase, 3}},
    {"ParametersBelongToThePath",
     "http://h/Users/u/f;v=1",
     {"http", "h", 0, "/Users/u/f;v=1", "../f;v=1", kBase, 3}},
    {"QueryIsLeftBehind", "http://h/Users/u/f?q=1", {"http", "h", 0, "/Users/u/f", "../f", kBase, 3}},
    {"FirstOfTwoQuestionsBelongsToThePath",
     "http://h/Users/u/f?a?q=1",
     {"http", "h", 0, "/Users/u/f?a", "../f?a", kBase, 3}},
    {"Inside", "/Users/u/Documents/f", {"file", "", 0, "/Users/u/Documents", "", kBase, 3}},
    {"NothingShared", "/etc/f", {"file", "", 0, "//Users/u/Documents/../../../", "../../../", kBase, 3}},
    {"NoURL", "", {"", "", 0, "/Users/u/Documents", "", kBase, 3}},
};
INSTANTIATE_TEST_SUITE_P(Rows, RelativeURIInitByURITest, ::testing::ValuesIn(kRows), RowName());

class RelativeURIByURITest : public RelativeURITest
{
};

TEST_F(RelativeURIByURITest, AsksOneContainerForTheType)
{
    for (int const type : {2, -1, 2147483647})
    {
        script = {};
        script.paths[type] = "/a/b";
        auto const uri = NewRelative();
        uri->Init(*MakeURI("/a/f"), type);
        EXPECT_EQ(script.containersMade, 1);
        EXPECT_EQ(script.asked, std::vector<int32>{type});
        EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "", 0, "/a/f", "../f", "/a/b", type}));
    }
}

TEST_F(RelativeURIByURITest, SecondReplacesAllButTheRelativePath)
{
    auto const uri = Below(kDocuments, "sub/f");
    uri->Init(*MakeURI("http://o:5/Users/u/g"), 2);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"http", "o", 5, "/Users/u/Desktop/sub/f../g", "sub/f../g",
                                            "/Users/u/Desktop", 2}));
}

TEST_F(RelativeURIByURITest, TakesARelativeURI)
{
    auto const source = Below(kDesktop, "a/f");
    auto const uri = NewRelative();
    uri->Init(*source, 3);
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"file", "h", 80, "/Users/u/Desktop/a/f", "../Desktop/a/f", kBase, 3}));
    EXPECT_EQ(StateOf(*source),
              (RelativeState{"file", "h", 80, "/Users/u/Desktop/a/f", "a/f", "/Users/u/Desktop", 2}));
}

TEST_F(RelativeURIByURITest, TakesItself)
{
    auto const uri = Below(kDesktop, "f");
    uri->Init(*uri, 3);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "h", 80, "/Users/u/Documents/f../Desktop/f",
                                            "f../Desktop/f", kBase, 3}));
}
} // namespace
} // namespace KORVA
