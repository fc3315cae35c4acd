// Binding, presence, the hidden flag, permissions, creation, deletion and size.
#include "Companions/FileIO/FileFixture.h"

#include <unistd.h>

namespace KORVA::TESTS
{
namespace
{
using FILE_SYS::IFilePtr;

TEST_F(FileTest, RefusesWhatIsNoPath)
{
    IFilePtr const file = Unbound();
    EXPECT_FALSE(file->BindPath(u""));
    EXPECT_FALSE(file->BindPath(STRING::CoreString(u"/tmp/a\0b", 8)));
    char16_t const lone[] = {u'/', 0xD83D};
    EXPECT_FALSE(file->BindPath(STRING::CoreString(lone, 2)));
    EXPECT_FALSE(file->Exists());
}

TEST_F(FileTest, AnswersNotFoundWhileUnbound)
{
    IFilePtr const file = Unbound();
    uchar flag = 7;
    uchar permissions[3] = {7, 7, 7};
    uint64 number = 7;
    EXPECT_FALSE(file->Exists());
    EXPECT_EQ(file->QueryFlag(flag), 15);
    EXPECT_EQ(file->ReadPermissions(permissions), 15);
    EXPECT_EQ(file->Create(), 15);
    EXPECT_EQ(file->Delete(), 15);
    EXPECT_EQ(file->GetSize(number), 15);
    EXPECT_EQ(file->GetModificationDate(number), 15);
    EXPECT_EQ(file->SetModificationDate(number), 15);
    EXPECT_EQ(file->GetCreationDate(number), 15);
    EXPECT_EQ(file->SetCreationDate(number), 15);
    EXPECT_EQ(file->CopyTo(Text(Path("copy"))), 15);
    EXPECT_EQ(file->MoveTo(Text(Path("moved"))), 15);
    EXPECT_EQ(file->Sync(), 15);
    EXPECT_EQ(file->Replace("x", 1), 15);
    EXPECT_EQ(flag, 7);
    EXPECT_EQ(permissions[0], 7);
    EXPECT_EQ(number, 7u);
    EXPECT_EQ(Names(), List());
}

TEST_F(FileTest, IsUnboundAgainAfterAPathThatIsNone)
{
    directory.File("a", "text");
    IFilePtr const file = Bound("a");
    EXPECT_TRUE(file->Exists());
    EXPECT_FALSE(file->BindPath(u""));
    EXPECT_FALSE(file->Exists());
}

TEST_F(FileTest, MayBeBoundAgain)
{
    directory.File("b", "text");
    IFilePtr const file = Bound("a");
    EXPECT_FALSE(file->Exists());
    EXPECT_TRUE(file->BindPath(Text(Path("b"))));
    EXPECT_TRUE(file->Exists());
}

TEST_F(FileTest, ExistsWhateverItIs)
{
    EXPECT_FALSE(Bound("a")->Exists());
    directory.File("a", "");
    fs::create_directory(Path("d"));
    fs::create_symlink("a", Path("link"));
    fs::create_symlink("nothing", Path("dangling"));
    EXPECT_TRUE(Bound("a")->Exists());
    EXPECT_TRUE(Bound("d")->Exists());
    EXPECT_TRUE(Bound("link")->Exists());
    EXPECT_FALSE(Bound("dangling")->Exists());
}

TEST_F(FileTest, TakesNamesBeyondAscii)
{
    IFilePtr const file = Bound("\xC3\xA4\xF0\x9F\x98\x80");
    EXPECT_EQ(file->Create(), 0);
    EXPECT_EQ(Names(), List{"\xC3\xA4\xF0\x9F\x98\x80"});
}

TEST_F(FileTest, TakesRelativePaths)
{
    fs::path const before = fs::current_path();
    directory.File("a", "text");
    fs::current_path(directory.Path());
    EXPECT_TRUE(At("a")->Exists());
    EXPECT_TRUE(At("./a")->Exists());
    EXPECT_EQ(At("b")->Replace("x", 1), 0);
    EXPECT_EQ(At("b")->Sync(), 0);
    EXPECT_EQ(At("b")->CopyTo(u"c"), 0);
    fs::current_path(before);
    EXPECT_EQ(Names(), (List{"a", "b", "c"}));
}

struct Hidden
{
    char const* file;
    uchar flag;
};

TEST_F(FileTest, IsHiddenWhenItsNameBeginsWithADot)
{
    fs::create_directories(Path(".hidden.d/visible"));
    directory.File(".hidden", "");
    directory.File("visible.txt", "");
    for (Hidden const& row :
         {Hidden{".hidden", 1}, {"visible.txt", 0}, {".hidden.d", 1}, {".hidden.d/visible", 0}})
    {
        uchar flag = 7;
        EXPECT_EQ(Bound(row.file)->QueryFlag(flag), 0) << row.file;
        EXPECT_EQ(flag, row.flag) << row.file;
    }
    uchar flag = 7;
    EXPECT_EQ(Bound(".missing")->QueryFlag(flag), 15);
    EXPECT_EQ(flag, 7);
}

TEST_F(FileTest, ReadsOwnersGroupsAndOthersPermissions)
{
    fs::path const path = directory.File("a", "");
    for (unsigned const mode : {0754u, 0000u, 0777u, 0421u, 04755u})
    {
        ASSERT_EQ(chmod(path.c_str(), static_cast<mode_t>(mode)), 0);
        uchar permissions[3] = {9, 9, 9};
        EXPECT_EQ(Bound("a")->ReadPermissions(permissions), 0);
        EXPECT_EQ(permissions[0], (mode >> 6) % 8);
        EXPECT_EQ(permissions[1], (mode >> 3) % 8);
        EXPECT_EQ(permissions[2], mode % 8);
    }
    uchar permissions[3] = {9, 9, 9};
    EXPECT_EQ(Bound("missing")->ReadPermissions(permissions), 15);
    EXPECT_EQ(permissions[0], 9);
    EXPECT_EQ(permissions[2], 9);
}

TEST_F(FileTest, IsMadeEmpty)
{
    EXPECT_EQ(Bound("a")->Create(), 0);
    EXPECT_EQ(Content(Path("a")), "");
    EXPECT_EQ(ModeOf(Path("a")), 0644u);
}

TEST_F(FileTest, IsNotMadeTwice)
{
    directory.File("a", "text");
    EXPECT_EQ(Bound("a")->Create(), 9);
    EXPECT_EQ(Content(Path("a")), "text");
    fs::create_directory(Path("d"));
    EXPECT_EQ(Bound("d")->Create(), 9);
}

TEST_F(FileTest, IsNotMadeWithoutItsDirectory)
{
    EXPECT_EQ(Bound("missing/a")->Create(), 15);
    directory.File("file", "");
    EXPECT_EQ(Bound("file/a")->Create(), 15);
    EXPECT_EQ(Names(), List{"file"});
}

TEST_F(FileTest, IsDeleted)
{
    directory.File("a", "text");
    EXPECT_EQ(Bound("a")->Delete(), 0);
    EXPECT_EQ(Names(), List());
    EXPECT_EQ(Bound("a")->Delete(), 15);
}

TEST_F(FileTest, DeletesTheLinkNotWhatItPointsTo)
{
    directory.File("a", "text");
    fs::create_symlink("a", Path("link"));
    EXPECT_EQ(Bound("link")->Delete(), 0);
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(FileTest, DoesNotDeleteADirectory)
{
    fs::create_directory(Path("d"));
    EXPECT_EQ(Bound("d")->Delete(), 21);
    EXPECT_EQ(Names(), List{"d"});
}

TEST_F(FileTest, GivesItsSize)
{
    directory.File("a", std::string(12345, 'x'));
    directory.File("empty", "");
    uint64 size = 7;
    EXPECT_EQ(Bound("a")->GetSize(size), 0);
    EXPECT_EQ(size, 12345u);
    EXPECT_EQ(Bound("empty")->GetSize(size), 0);
    EXPECT_EQ(size, 0u);
    size = 7;
    EXPECT_EQ(Bound("missing")->GetSize(size), 15);
    EXPECT_EQ(size, 7u);
}

TEST_F(FileTest, GivesSizesBeyondFourGigabytes)
{
    fs::path const path = directory.File("a", "");
    ASSERT_EQ(truncate(path.c_str(), 5'000'000'000), 0);
    uint64 size = 0;
    EXPECT_EQ(Bound("a")->GetSize(size), 0);
    EXPECT_EQ(size, 5'000'000'000u);
}
} // namespace
} // namespace KORVA::TESTS
