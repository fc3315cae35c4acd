// Between file paths and URIs: what a URI made from a path names is that very file.
#include <tessio/TessIO/FilePaths.h>

#include "SDK/Tracked.h"
#include "Support/Library.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

struct Row
{
    char const* name;
    char const* path;
};

Row const kRows[] = {
    {"Plain", "/tmp/a.txt"},
    {"Blank", "/tmp/a b.txt"},
    {"QuestionMark", "/tmp/what?"},
    {"TwoQuestionMarks", "/tmp/a?b?c"},
    {"Semicolon", "/tmp/a;v=1"},
    {"Colon", "/tmp/a:b"},
    {"Percent", "/tmp/100%20"},
    {"Hash", "/tmp/a#b"},
    {"Composed", "/tmp/\xC3\xA4"},
    {"Decomposed", "/tmp/a\xCC\x88"},
    {"BeyondTheFirst65536", "/tmp/\xF0\x9F\x98\x80"},
    {"Backslash", "/tmp/a\\b"},
    {"ControlCharacter", "/tmp/a\nb"},
    {"Root", "/"},
};

class FilePathRow : public LibraryTestWith<Row>
{
};

TEST_P(FilePathRow, GoesToAURIAndBack)
{
    IO::IURIPtr uri;
    ASSERT_EQ(IO::CreateFileURI(Registry(), uri, GetParam().path), 0);
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "file");
    EXPECT_EQ(uri->GetPath().ToUTF8(), GetParam().path);
    EXPECT_EQ(CountOf(*uri), 1);
    fs::path path;
    EXPECT_EQ(IO::FilePathOf(*uri, path), 0);
    EXPECT_EQ(path.string(), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(Paths, FilePathRow, ::testing::ValuesIn(kRows), RowName());

class FilePathsTest : public LibraryTest
{
};

TEST_F(FilePathsTest, MakesRelativePathsAbsolute)
{
    IO::IURIPtr uri;
    ASSERT_EQ(IO::CreateFileURI(Registry(), uri, "name.txt"), 0);
    EXPECT_EQ(uri->GetPath().ToUTF8(), (fs::current_path() / "name.txt").string());
}

TEST_F(FilePathsTest, RefusesWhatIsNoPathAndKeepsTheURI)
{
    IO::IURIPtr uri = MakeURI("/before");
    EXPECT_EQ(IO::CreateFileURI(Registry(), uri, ""), 13);
    EXPECT_EQ(IO::CreateFileURI(Registry(), uri, "/tmp/\xFF"), 13);
    EXPECT_EQ(IO::CreateFileURI(nullptr, uri, "/tmp/a"), 12);
    TInterfacePtr<COREREGISTRY::ICoreRegistry> empty;
    empty.Adopt(COREREGISTRY::CreateCoreRegistry());
    EXPECT_EQ(IO::CreateFileURI(empty.Get(), uri, "/tmp/a"), 12);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/before");
}

TEST_F(FilePathsTest, AURIWithoutAUsablePathGivesNone)
{
    fs::path path = "/before";
    auto const none = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    EXPECT_EQ(IO::FilePathOf(*none, path), 13);
    EXPECT_EQ(path, "/before");
}
} // namespace
} // namespace KORVA::TESTS
