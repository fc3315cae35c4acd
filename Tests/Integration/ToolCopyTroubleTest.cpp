// Copies under bad conditions: nothing is lost, nothing left behind.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

class ToolCopyTrouble : public ToolRun
{
protected:
    /// A file that takes longer to copy than any test, and hardly any space.
    void Endless(std::string const& name) const { fs::resize_file(directory.File(name, ""), 64ULL << 30); }

    /// Waits until a copy has begun to write beside its target. Empty when it ends before.
    fs::path TemporaryOf(Running& copy) const
    {
        while (!copy.HasEnded())
        {
            for (auto const& entry : fs::directory_iterator(directory.Path()))
            {
                std::error_code gone;
                if (entry.path().filename().string().starts_with(".t.") && entry.file_size(gone) > 0 && !gone)
                    return entry.path();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return {};
    }
};

TEST_F(ToolCopyTrouble, WhatNobodyMayIsSaidAndChangesNothing)
{
    fs::permissions(directory.File("closed", "closed\n"), fs::perms::none);
    directory.File("a", "content\n");
    fs::create_directory(Path("d"));
    directory.File("d/t", "kept\n");
    fs::permissions(Path("d"), fs::perms(0555));
    Fails({"cp", "closed", "t"}, 3, "tessio: cannot open \"closed\": permission denied\n",
          &WithoutPrivileges);
    Fails({"cat", "--async", "closed"}, 3, "tessio: cannot open \"closed\": permission denied\n",
          &WithoutPrivileges);
    Fails({"cp", "a", "d/t"}, 3,
          "tessio: cannot copy \"a\" to \"d/t\": permission denied; nothing is changed\n",
          &WithoutPrivileges);
    Fails({"cp", "a", "d/new"}, 3,
          "tessio: cannot copy \"a\" to \"d/new\": permission denied; nothing is changed\n",
          &WithoutPrivileges);
    EXPECT_EQ(Content(Path("d/t")), "kept\n");
    EXPECT_EQ(Names(), "a closed d");
    fs::permissions(Path("d"), fs::perms(0755));
}

TEST_F(ToolCopyTrouble, AFileInADirectoryThatIsClosedIsNotSaidToBeMissing)
{
    fs::create_directory(Path("d"));
    directory.File("d/a", "content\n");
    fs::permissions(Path("d"), fs::perms(0666));
    Outcome const outcome = Do({"cp", "d/a", "t"}, &WithoutPrivileges);
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("permission denied"), std::string::npos) << outcome.err;
    fs::permissions(Path("d"), fs::perms(0755));
}

TEST_F(ToolCopyTrouble, ALimitOfTheSystemIsAnErrorAndLeavesNothing)
{
    directory.File("a", Pattern(3000000));
    directory.File("t", "kept\n");
    auto const limited = [] { WithLargestFile(1000000); };
    Fails({"cp", "a", "t"}, 3,
          "tessio: cannot copy \"a\" to \"t\": writing failed, or no space left; nothing is changed\n",
          limited);
    EXPECT_EQ(Names(), "a t");
    EXPECT_EQ(Content(Path("t")), "kept\n");
}

TEST_F(ToolCopyTrouble, ALimitOfTheSystemIsAnErrorAndLeavesNothingOfAClone)
{
    directory.File("a", Pattern(3000000));
    directory.File("t", "kept\n");
    Outcome const outcome = Do({"cp", "--clone", "a", "t"}, [] { WithLargestFile(1000000); });
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(outcome.err.starts_with("tessio: cannot copy \"a\" to \"t\": ")) << outcome.err;
    EXPECT_EQ(Names(), "a t");
    EXPECT_EQ(Content(Path("t")), "kept\n");
}

TEST_F(ToolCopyTrouble, WithFewDescriptorsItIsDoneWholeOrNotAtAll)
{
    if (TESSIO_TEST_SANITIZED)
        GTEST_SKIP()
            << "checks at run time need descriptors of their own, and take a lack of them for errors";
    std::string const content = Pattern(600000);
    directory.File("a", content);
    int done = 0;
    for (unsigned count = 5; count < 24; ++count)
    {
        directory.File("t", "kept\n");
        Outcome const outcome = Do({"cp", "a", "t"}, [count] { WithDescriptors(count); });
        EXPECT_TRUE(Content(Path("t")) == (outcome.exitCode == 0 ? content : "kept\n")) << count;
        EXPECT_EQ(outcome.exitCode == 0, outcome.err.empty()) << outcome.err;
        EXPECT_EQ(Names(), "a t");
        done += outcome.exitCode == 0 ? 1 : 0;
    }
    EXPECT_GE(done, 1);
    EXPECT_LT(done, 19);
}

TEST_F(ToolCopyTrouble, ClosedStandardStreamsDoNoHarm)
{
    std::string const content = Pattern(600000);
    directory.File("a", content);
    for (int closed = 1; closed < 8; ++closed)
    {
        auto const prepare = [closed] {
            for (int i = 0; i < 3; ++i)
                if ((closed >> i) % 2 == 1)
                    close(i);
        };
        for (std::vector<std::string> const& copy :
             {std::vector<std::string>{"--verbose", "cp", "a", "t"}, {"cp", "--clone", "a", "t"}})
        {
            EXPECT_EQ(Do(copy, prepare).exitCode, 0) << closed;
            EXPECT_TRUE(Content(Path("t")) == content) << closed;
            EXPECT_EQ(Names(), "a t");
            fs::remove(Path("t"));
        }
    }
    EXPECT_TRUE(Content(Path("a")) == content);
}

struct SignalRow
{
    char const* name;
    int signal;
};

class ToolCopySignal : public ToolCopyTrouble, public ::testing::WithParamInterface<SignalRow>
{
};

TEST_P(ToolCopySignal, StopsTheCopyAndLeavesTheTarget)
{
    Endless("a");
    directory.File("t", "kept\n");
    Running copy(Command({"cp", "a", "t"}), directory.Path().string());
    ASSERT_FALSE(TemporaryOf(copy).empty());
    copy.Signal(GetParam().signal);
    Outcome const outcome = copy.Wait();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "tessio: cannot copy \"a\" to \"t\": interrupted; nothing is changed\n");
    EXPECT_EQ(Names(), "a t");
    EXPECT_EQ(Content(Path("t")), "kept\n");
}

TEST_P(ToolCopySignal, IsIgnoredWhereItWasBefore)
{
    std::string const content = Pattern(20000000);
    directory.File("a", content);
    // What is ignored here is ignored by what is started here, from its beginning.
    auto* const before = std::signal(GetParam().signal, SIG_IGN);
    Running copy(Command({"cp", "a", "t"}), directory.Path().string());
    std::signal(GetParam().signal, before);
    while (!copy.HasEnded())
    {
        copy.Signal(GetParam().signal);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    Outcome const outcome = copy.Wait();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(Content(Path("t")) == content);
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolCopySignal,
                         ::testing::Values(SignalRow{"Interrupt", SIGINT}, SignalRow{"Terminate", SIGTERM},
                                           SignalRow{"HangUp", SIGHUP}),
                         RowName());

TEST_F(ToolCopyTrouble, ASourceThatBecomesShorterIsNotCopiedInPart)
{
    Endless("a");
    directory.File("t", "kept\n");
    Running copy(Command({"cp", "a", "t"}), directory.Path().string());
    ASSERT_FALSE(TemporaryOf(copy).empty());
    fs::resize_file(Path("a"), 1000);
    Outcome const outcome = copy.Wait();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.err, "tessio: cannot copy \"a\" to \"t\": the source can't be read, or became shorter; "
                           "nothing is changed\n");
    EXPECT_EQ(Names(), "a t");
    EXPECT_EQ(Content(Path("t")), "kept\n");
}

TEST_F(ToolCopyTrouble, WhileItIsUnderWayACopyIsForItsUserAlone)
{
    for (std::vector<std::string> const& arguments :
         {std::vector<std::string>{"cp", "a", "t"}, {"cp", "--clone", "a", "t"}})
    {
        Endless("a");
        fs::permissions(Path("a"), fs::perms(0600));
        Running copy(Command(arguments), directory.Path().string(), [] { umask(0); });
        fs::path const temporary = TemporaryOf(copy);
        if (temporary.empty())
            GTEST_SKIP() << "this file system shares blocks faster than anyone can look";
        EXPECT_EQ(fs::status(temporary).permissions(), fs::perms(0600)) << arguments[1];
        copy.Signal(SIGTERM);
        EXPECT_EQ(copy.Wait().exitCode, 3);
        EXPECT_EQ(Names(), "a");
    }
}
} // namespace
} // namespace KORVA::TESTS
