// What the system does not permit.
#include "Companions/Child.h"
#include "Companions/FileIO/FileFixture.h"

#include <sys/stat.h>
#include <unistd.h>

namespace KORVA::TESTS
{
namespace
{
/// A directory that others may look into but not change, with a file that they may not read.
class RefusedTest : public FileTest
{
protected:
    RefusedTest()
    {
        fs::create_directory(Path("closed"));
        directory.File("closed/a", "text");
        directory.File("closed/secret", "text");
        chmod(Path("closed/secret").c_str(), 0600);
        chmod(Path("closed").c_str(), 0755);
        // An unprivileged test runs as the owner itself.
        if (geteuid() != 0)
        {
            chmod(Path("closed/secret").c_str(), 0);
            chmod(Path("closed").c_str(), 0555);
        }
    }

    ~RefusedTest() override { chmod(Path("closed").c_str(), 0755); }

    template <class Operation>
    int AsStranger(Operation operation)
    {
        return InUnprivilegedChild([&] { return static_cast<int>(operation()); });
    }
};

TEST_F(RefusedTest, Create)
{
    EXPECT_EQ(AsStranger([&] { return Bound("closed/new")->Create(); }), 21);
}

TEST_F(RefusedTest, Delete)
{
    EXPECT_EQ(AsStranger([&] { return Bound("closed/a")->Delete(); }), 21);
    EXPECT_EQ(Content(Path("closed/a")), "text");
}

TEST_F(RefusedTest, Replace)
{
    EXPECT_EQ(AsStranger([&] { return Bound("closed/a")->Replace("new", 3); }), 21);
    EXPECT_EQ(AsStranger([&] { return Bound("closed/new")->Replace("new", 3); }), 21);
    EXPECT_EQ(Content(Path("closed/a")), "text");
}

TEST_F(RefusedTest, CopyFromAFileThatMayNotBeRead)
{
    EXPECT_EQ(AsStranger([&] { return Bound("closed/secret")->CopyTo(Text(Path("copy"))); }), 21);
    EXPECT_EQ(Names(), List{"closed"});
}

TEST_F(RefusedTest, CopyToADirectoryThatMayNotBeChanged)
{
    directory.File("mine", "new");
    EXPECT_EQ(AsStranger([&] { return Bound("mine")->CopyTo(Text(Path("closed/a"))); }), 21);
    EXPECT_EQ(Content(Path("closed/a")), "text");
}

TEST_F(RefusedTest, Move)
{
    EXPECT_EQ(AsStranger([&] { return Bound("closed/a")->MoveTo(Text(Path("b"))); }), 21);
    EXPECT_EQ(Names(), List{"closed"});
}

TEST_F(RefusedTest, Sync)
{
    EXPECT_EQ(AsStranger([&] { return Bound("closed/secret")->Sync(); }), 21);
}

TEST_F(RefusedTest, AnyoneMayCopyWhatHeMayRead)
{
    ASSERT_EQ(AsStranger([&] { return Bound("closed/a")->CopyTo(Text(Path("copy"))); }), 0);
    EXPECT_EQ(Content(Path("copy")), "text");
    EXPECT_EQ(ModeOf(Path("copy")), 0644u);
}

TEST_F(RefusedTest, DatesOfAnotherUsersFile)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs a file of another user";
    uint64 date = 1'000'000'000'000'000'000u;
    EXPECT_EQ(AsStranger([&] { return Bound("closed/a")->SetModificationDate(date); }), 21);
}

TEST_F(RefusedTest, WhatLiesInADirectoryThatMayNotBeEntered)
{
    chmod(Path("closed").c_str(), geteuid() == 0 ? 0700 : 0);
    uint64 number = 0;
    uchar permissions[3] = {};
    EXPECT_EQ(AsStranger([&] { return Bound("closed/a")->GetSize(number); }), 21);
    EXPECT_EQ(AsStranger([&] { return Bound("closed/a")->GetModificationDate(number); }), 21);
    EXPECT_EQ(AsStranger([&] { return Bound("closed/a")->ReadPermissions(permissions); }), 21);
}
} // namespace
} // namespace KORVA::TESTS
