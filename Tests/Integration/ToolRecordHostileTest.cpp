// What files that were made to cost much cost the tool: memory that grows as they do.
#include "Integration/ToolRecord.h"
#include "Support/HostileFiles.h"
#include "Support/RowName.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace KORVA::TESTS
{
namespace
{
constexpr std::size_t kKiB = 1024;
constexpr std::size_t kMiB = 1024 * kKiB;

/// What a run of the tool took.
struct Cost
{
    bool isOver = false;
    int exitCode = -1;
    /// Peak of resident memory.
    std::size_t memory = 0;
};

struct CostRow
{
    char const* name;
    /// FILE stands for the file.
    std::vector<std::string> arguments;
    /// Beyond 64 MiB, for each byte of the file.
    std::size_t perByte;
    /// Of the files; those of commands that print a path for each record are small, which takes time.
    std::size_t size;
};

class ToolRecordHostile : public ToolRecord, public ::testing::WithParamInterface<CostRow>
{
protected:
    /// With nothing kept of what it prints. It may use five minutes of a processor, which no kind comes near.
    Cost Measure(std::vector<std::string> const& arguments) const
    {
        std::vector<std::string> const command = Command(arguments);
        std::vector<char*> words;
        for (std::string const& word : command)
            words.push_back(const_cast<char*>(word.c_str()));
        words.push_back(nullptr);
        std::string const place = directory.Path().string();
        pid_t const child = fork();
        if (child < 0)
            throw std::runtime_error("cannot fork");
        if (child == 0)
        {
            rlimit const limit{300, 300};
            int const nothing = open("/dev/null", O_RDWR);
            if (chdir(place.c_str()) == 0 && setrlimit(RLIMIT_CPU, &limit) == 0 && dup2(nothing, 0) == 0 &&
                dup2(nothing, 1) == 1 && dup2(nothing, 2) == 2)
                execv(words[0], words.data());
            _exit(127);
        }
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        return {WIFEXITED(status), WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                static_cast<std::size_t>(usage.ru_maxrss) * kKiB};
    }
};

TEST_P(ToolRecordHostile, TakesMemoryAsTheFileIsLarge)
{
    if (TESSIO_TEST_SANITIZED)
        GTEST_SKIP() << "sanitizers take memory of their own";
    for (HostileKind const& kind : HostileKinds())
        for (std::size_t const size : {GetParam().size / 2, GetParam().size})
        {
            Bytes const content = kind.make(size);
            directory.File("f", std::string(content.begin(), content.end()));
            std::vector<std::string> arguments = GetParam().arguments;
            for (std::string& argument : arguments)
                argument = argument == "FILE" ? "f" : argument;
            Cost const cost = Measure(arguments);
            EXPECT_TRUE(cost.isOver && cost.exitCode != 127) << kind.name << ", " << size;
            EXPECT_LE(cost.memory, 64 * kMiB + GetParam().perByte * size) << kind.name << ", " << size;
        }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRecordHostile,
    ::testing::Values(CostRow{"Verify", {"verify", "FILE"}, 20, 256 * kKiB},
                      CostRow{"Info", {"info", "FILE"}, 20, 256 * kKiB},
                      CostRow{"Dump", {"dump", "FILE"}, 20, 256 * kKiB},
                      CostRow{"DumpJson", {"dump", "--format", "json", "FILE"}, 20, 256 * kKiB},
                      CostRow{"Hex", {"hex", "FILE"}, 20, 128 * kKiB},
                      CostRow{"Tree", {"tree", "FILE"}, 20, 128 * kKiB},
                      CostRow{"Salvage", {"salvage", "FILE", "-o", "o"}, 20, 128 * kKiB}),
    RowName());

using ToolRecordFindings = ToolRecord;

TEST_F(ToolRecordFindings, NamesAThousandFindingsOfAKind)
{
    std::string file;
    for (int i = 0; i < 1002; ++i)
        file += Text(kLittle, "Dict 0:8");
    directory.File("f", file);
    Outcome const outcome = Do({"verify", "f"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1002);
    EXPECT_TRUE(
        outcome.out.ends_with("note     /999 at 23976: empty: nothing but its class is written of it\n"
                              "2 more of empty, not named\n"
                              "f: 1002 records and 0 text entries; 0 errors, 0 warnings, 1002 notes\n"));
    Outcome const json = Do({"--json", "verify", "f"});
    EXPECT_TRUE(json.out.ends_with("  ],\n  \"notNamed\": {\n    \"empty\": 2\n  }\n}\n"));
}
} // namespace
} // namespace KORVA::TESTS
