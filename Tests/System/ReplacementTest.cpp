// The steps of replacing a file, one by one.
#include "System/Replacement.h"

#include "Support/SystemCalls.h"
#include "Support/TemporaryDirectory.h"
#include "System/Transfer.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;
using SYSTEM::Replacement;

class ReplacementSteps : public ::testing::Test
{
protected:
    std::string Path(char const* name) const { return (directory.Path() / name).string(); }

    std::unique_ptr<Replacement> Flushed(char const* name) const
    {
        auto file = std::make_unique<Replacement>(Path(name));
        EXPECT_EQ(file->Error(), 0);
        EXPECT_EQ(SYSTEM::WriteAll(file->Get(), "new", 3), 0);
        EXPECT_EQ(file->Flush(), 0);
        return file;
    }

    std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (auto const& entry : fs::directory_iterator(directory.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }

    TemporaryDirectory directory;
    using Set = std::set<std::string>;
};

TEST_F(ReplacementSteps, NothingIsThereBeforeTheRename)
{
    {
        auto const file = Flushed("a");
        EXPECT_FALSE(fs::exists(Path("a")));
    }
    EXPECT_EQ(Names(), Set());
}

TEST_F(ReplacementSteps, ARenameIsUndone)
{
    directory.File("a", "old");
    {
        auto const file = Flushed("a");
        EXPECT_EQ(file->Rename(Replacement::Undoable::kYes), 0);
        EXPECT_EQ(Content(Path("a")), "new");
        EXPECT_EQ(file->Undo(), 0);
        EXPECT_EQ(Content(Path("a")), "old");
    }
    EXPECT_EQ(Names(), Set{"a"});
}

TEST_F(ReplacementSteps, UndoneWhereNothingWasLeavesNothing)
{
    {
        auto const file = Flushed("a");
        EXPECT_EQ(file->Rename(Replacement::Undoable::kYes), 0);
        EXPECT_EQ(file->Undo(), 0);
    }
    EXPECT_EQ(Names(), Set());
}

TEST_F(ReplacementSteps, OfTheOldFileNothingStaysBesideTheNewOne)
{
    directory.File("a", "old");
    {
        auto const file = Flushed("a");
        EXPECT_EQ(file->Rename(Replacement::Undoable::kYes), 0);
    }
    EXPECT_EQ(Names(), Set{"a"});
    EXPECT_EQ(Content(Path("a")), "new");
}

TEST_F(ReplacementSteps, ARenameThatFailsLeavesTheOldFileAlone)
{
    directory.File("a", "old");
    {
        auto const file = Flushed("a");
        Faults const faults({{Call::kRename, EIO}});
        EXPECT_EQ(file->Rename(Replacement::Undoable::kYes), EIO);
    }
    EXPECT_EQ(Names(), Set{"a"});
    EXPECT_EQ(Content(Path("a")), "old");
}

TEST_F(ReplacementSteps, AnUndoThatFailsLeavesTheNewFile)
{
    directory.File("a", "old");
    auto const file = Flushed("a");
    Faults const faults({{Call::kRename, EIO, 2}});
    EXPECT_EQ(file->Rename(Replacement::Undoable::kYes), 0);
    EXPECT_EQ(file->Undo(), EIO);
    EXPECT_EQ(Content(Path("a")), "new");
}

TEST_F(ReplacementSteps, ATemporaryIsReachedByAPathOfItsOwn)
{
    Replacement file(Path("a"));
    ASSERT_EQ(SYSTEM::WriteAll(file.Get(), "text", 4), 0);
    EXPECT_EQ(Content(file.Path()), "text");
}

// The directory and the old file are opened before the temporary is.

TEST_F(ReplacementSteps, ANameThatIsTakenIsNotUsed)
{
    Faults const faults({{Call::kOpen, ENOENT, 2}, {Call::kOpen, EEXIST, 3, 5}});
    Replacement const file(Path("a"));
    EXPECT_EQ(file.Error(), 0);
    EXPECT_EQ(Names().size(), 1u);
}

TEST_F(ReplacementSteps, WhereAllNamesAreTakenThereIsNoTemporary)
{
    Faults const faults({{Call::kOpen, EEXIST, 3, kForEver}});
    EXPECT_EQ(Replacement(Path("a")).Error(), EEXIST);
}

TEST_F(ReplacementSteps, ALongNameIsNotCutWithinACharacter)
{
    std::string name = "n";
    while (name.size() < 253)
        name += "\u00FC";
    Replacement const file(Path(name.c_str()));
    std::string expected = ".n";
    while (expected.size() < 200)
        expected += "\u00FC";
    Set const names = Names();
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(names.begin()->substr(0, names.begin()->size() - 9), expected);
}

TEST_F(ReplacementSteps, WhatIsNoRegularFileIsRefused)
{
    fs::create_directory(Path("d"));
    fs::create_symlink("loop", Path("loop"));
    EXPECT_EQ(Replacement(Path("d")).Error(), EISDIR);
    EXPECT_EQ(Replacement(Path("d/")).Error(), EISDIR);
    EXPECT_EQ(Replacement(Path("loop")).Error(), ELOOP);
    EXPECT_EQ(Replacement("/dev/null").Error(), EPERM);
    EXPECT_EQ(Replacement(Path("none/a")).Error(), ENOENT);
    EXPECT_EQ(Names(), (Set{"d", "loop"}));
}
} // namespace
} // namespace KORVA::TESTS
