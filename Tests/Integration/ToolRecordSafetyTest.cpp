// What becomes of record files when something goes wrong while the tool writes them.
#include "Integration/ToolRecord.h"
#include "Support/RowName.h"

#include <fcntl.h>
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

struct FullRow
{
    char const* name;
    std::vector<std::string> arguments;
    /// The file that can't be written.
    char const* target;
};

class ToolRecordFull : public ToolRecord, public ::testing::WithParamInterface<FullRow>
{
};

TEST_P(ToolRecordFull, LeavesWhatWasThere)
{
    Put("f", kBig, kEvery);
    directory.File("t", "tessio-dump 1 big-endian\n"
                        "record {00000009-0000-0000-0000-000000000000} {" +
                            std::string(600, '0') + "}\n");
    for (bool const isThere : {false, true})
    {
        if (isThere)
            directory.File("o", "kept\n");
        std::string const before = Names();
        Fails(GetParam().arguments, 3,
              "tessio: cannot write \"" + std::string(GetParam().target) +
                  "\": no space left; nothing is changed\n",
              [] { WithLargestFile(200); });
        EXPECT_EQ(Names(), before);
        EXPECT_TRUE(Is("f", kBig, kEvery));
        if (isThere)
        {
            EXPECT_EQ(Content(Path("o")), "kept\n");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolRecordFull,
                         ::testing::Values(FullRow{"Set", {"set", "f", "/0/1", "int8", "1", "-o", "o"}, "o"},
                                           FullRow{
                                               "SetInPlace", {"set", "f", "/0/1", "int8", "1", "-i"}, "f~"},
                                           FullRow{"Remove", {"rm", "f", "/0/1", "-o", "o"}, "o"},
                                           FullRow{"Extract", {"extract", "f", "/0", "-o", "o"}, "o"},
                                           FullRow{"Dump", {"dump", "f", "-o", "o"}, "o"},
                                           FullRow{"Build", {"build", "t", "-o", "o"}, "o"},
                                           FullRow{"Salvage", {"salvage", "f", "-o", "o"}, "o"}),
                         RowName());

using ToolRecordInPlace = ToolRecord;

TEST_F(ToolRecordInPlace, RefusesWhenTheFileChangedMeanwhile)
{
    Put("f", kBig, "Dict 8:8 0:4 0:4");
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0666), 0);
    Running set(Command({"set", "f", "/0/1", "file", "pipe", "-i"}), directory.Path().string());
    // The value is read when the file has been.
    int const pipe = open(Path("pipe").c_str(), O_WRONLY);
    ASSERT_GE(pipe, 0);
    Put("f", kBig, "URI 8:8 0:4 0:4");
    ASSERT_EQ(write(pipe, "x", 1), 1);
    close(pipe);
    Outcome const outcome = set.Wait();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "tessio: \"f\" was changed by another process; nothing is changed by this one\n");
    EXPECT_TRUE(Is("f", kBig, "URI 8:8 0:4 0:4"));
}

TEST_F(ToolRecordInPlace, KeepsPermissions)
{
    Put("f", kBig, "Dict 8:8 0:4 0:4");
    fs::permissions(Path("f"), fs::perms(0640));
    Succeeds({"set", "f", "/0/1", "int8", "1", "-i"});
    EXPECT_EQ(fs::status(Path("f")).permissions(), fs::perms(0640));
}

struct InterruptRow
{
    char const* name;
    std::vector<std::string> arguments;
};

class ToolRecordInterrupt : public ToolRecord, public ::testing::WithParamInterface<InterruptRow>
{
};

/// A record of a class that nobody knows, so large that writing it takes its time.
constexpr std::size_t kLarge = 4 << 20;

TEST_P(ToolRecordInterrupt, LeavesTheWholeFileOrNone)
{
    std::string const header =
        Text(kLittle, "{00000009-0000-0000-0000-000000000000} " + std::to_string(kLarge) + ":8");
    std::string const content = header + std::string(kLarge, 'x');
    directory.File("f", Text(kLittle, "URI 8:8 0:4 0:4") + content);
    directory.File(
        "t", "tessio-dump 1 little-endian\nURI \"\"\nrecord "
             "{00000009-0000-0000-0000-000000000000} {" +
                 [] {
                     std::string digits;
                     for (std::size_t i = 0; i < kLarge; ++i)
                         digits += "78";
                     return digits;
                 }() +
                 "}\n");
    std::string const all = Content(Path("f"));
    Outcome const whole = Do(GetParam().arguments);
    ASSERT_EQ(whole.exitCode, 0) << whole.err;
    ASSERT_TRUE(Content(Path("o")) == all);
    fs::remove(Path("o"));
    int stopped = 0;
    constexpr int kWhenItBeginsToWrite = -1;
    for (int const delay : {2, 10, 30, 60, 120, kWhenItBeginsToWrite})
    {
        Running run(Command(GetParam().arguments), directory.Path().string());
        if (delay == kWhenItBeginsToWrite)
            while (!run.HasEnded() && Names() == "f t")
                std::this_thread::yield();
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        run.Signal(SIGINT);
        Outcome const outcome = run.Wait();
        if (outcome.exitCode != 0)
            ++stopped;
        if (fs::exists(Path("o")))
        {
            EXPECT_TRUE(Content(Path("o")) == all) << delay;
        }
        fs::remove(Path("o"));
        EXPECT_EQ(Names(), "f t") << delay;
        EXPECT_TRUE(Content(Path("f")) == all);
    }
    EXPECT_GT(stopped, 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolRecordInterrupt,
                         ::testing::Values(InterruptRow{"Salvage", {"salvage", "f", "-o", "o"}},
                                           InterruptRow{"Build", {"build", "t", "-o", "o"}}),
                         RowName());

TEST_F(ToolRecordFull, AnOutputThatIsFullIsAnError)
{
    Put("f", kBig, kEvery);
    for (char const* const command :
         {"set f /0/1 int8 1 -o -", "rm f /0/1 -o -", "dump f", "hex f", "tree f", "verify f", "get f /0"})
    {
        Outcome const outcome = RunProgram(
            {"/bin/sh", "-c", std::string(TESSIO_BINARY_DIR "/bin/tessio ") + command + " > /dev/full"},
            directory.Path().string());
        EXPECT_EQ(outcome.exitCode, 3) << command;
        EXPECT_TRUE(outcome.err.starts_with("tessio: cannot write to standard output")) << outcome.err;
    }
    EXPECT_TRUE(Is("f", kBig, kEvery));
}
} // namespace
} // namespace KORVA::TESTS
