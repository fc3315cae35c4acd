// Renaming and flushing.
#include "Companions/FileIO/FileFixture.h"

namespace KORVA::TESTS
{
namespace
{
using FILE_SYS::IFilePtr;

TEST_F(FileTest, MovesToAnotherName)
{
    fs::path const path = directory.File("a", "text");
    ino_t const before = InodeOf(path);
    IFilePtr const file = Bound("a");
    EXPECT_EQ(file->MoveTo(Text(Path("b"))), 0);
    EXPECT_EQ(Names(), List{"b"});
    EXPECT_EQ(Content(Path("b")), "text");
    EXPECT_EQ(InodeOf(Path("b")), before);
    EXPECT_FALSE(file->Exists()) << "it stays bound to the old name";
    EXPECT_EQ(file->Create(), 0);
    EXPECT_EQ(Names(), (List{"a", "b"}));
}

TEST_F(FileTest, MoveReplaces)
{
    directory.File("a", "new");
    directory.File("b", "old");
    EXPECT_EQ(Bound("a")->MoveTo(Text(Path("b"))), 0);
    EXPECT_EQ(Names(), List{"b"});
    EXPECT_EQ(Content(Path("b")), "new");
}

TEST_F(FileTest, MoveToAnotherDirectory)
{
    directory.File("a", "text");
    fs::create_directory(Path("d"));
    EXPECT_EQ(Bound("a")->MoveTo(Text(Path("d/b"))), 0);
    EXPECT_EQ(Content(Path("d/b")), "text");
    EXPECT_EQ(Names(), List{"d"});
}

TEST_F(FileTest, MoveThatFailsChangesNothing)
{
    directory.File("a", "text");
    fs::create_directory(Path("d"));
    EXPECT_EQ(Bound("missing")->MoveTo(Text(Path("b"))), 15);
    EXPECT_EQ(Bound("a")->MoveTo(Text(Path("missing/b"))), 15);
    EXPECT_NE(Bound("a")->MoveTo(Text(Path("d"))), 0);
    EXPECT_NE(Bound("a")->MoveTo(u""), 0);
    EXPECT_EQ(Names(), (List{"a", "d"}));
    EXPECT_EQ(Content(Path("a")), "text");
}

TEST_F(FileTest, SyncsAFile)
{
    directory.File("a", "text");
    EXPECT_EQ(Bound("a")->Sync(), 0);
    EXPECT_EQ(Content(Path("a")), "text");
}

TEST_F(FileTest, SyncNeedsAFile)
{
    EXPECT_EQ(Bound("missing")->Sync(), 15);
    EXPECT_EQ(Names(), List());
}
} // namespace
} // namespace KORVA::TESTS
