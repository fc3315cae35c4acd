// The manual page and the completions: made by the tool, of all its commands.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

namespace KORVA::TESTS
{
namespace
{
class ToolDocuments : public ToolRun
{
protected:
    std::string Document(char const* which) const
    {
        Outcome const outcome = Do({"document", which});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }
};

TEST_F(ToolDocuments, TheManualHasEveryCommand)
{
    std::string const manual = Document("man");
    for (
        char const* const command :
        {"uri",      "dirs",     "strings set", "strings get", "strings rm", "strings list", "strings import",
         "dict set", "dict get", "dict rm",     "dict list",   "tree",       "hex",          "verify",
         "info",     "classes",  "diff",        "get",         "set",        "convert",      "extract",
         "salvage",  "dump",     "build",       "stat",        "cat",        "cp",           "rm",
         "touch"})
        EXPECT_NE(manual.find("\n.SS " + std::string(command) + "\n\\fBtessio "), std::string::npos)
            << command;
    EXPECT_EQ(manual.find(".SS document"), std::string::npos);
    EXPECT_NE(manual.find(".TP\n\\fB\\-\\-color\\fR, \\fB\\-\\-colour\\fR \\fIWHEN\\fR\n"),
              std::string::npos);
    EXPECT_NE(manual.find("\n.SS salvage\n\\fBtessio salvage\\fR [\\fIOPTIONS\\fR] \\fIFILE\\fR\n"),
              std::string::npos);
}

TEST_F(ToolDocuments, TheManualIsFreeOfWarnings)
{
    std::string const file = directory.File("tessio.1", Document("man")).string();
    Outcome const outcome = RunProgram({"/usr/bin/groff", "-man", "-ww", "-Tutf8", "-z", file}, "/");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ToolDocuments, AnotherDocumentIsRefused)
{
    Fails({"document", "csh"}, 2,
          "tessio: WHICH: csh not in {man,bash,zsh,fish}\nRun it with --help for more information.\n");
}

struct CompletionRow
{
    char const* name;
    /// The words of the command line, the last one under the cursor.
    char const* words;
    char const* proposals;
};

class BashCompletion : public ToolDocuments, public ::testing::WithParamInterface<CompletionRow>
{
};

TEST_P(BashCompletion, ProposesWhatFits)
{
    directory.File("record.tess", "");
    std::string const file = directory.File("completion", Document("bash")).string();
    std::string const script = "source " + file + "; COMP_WORDS=(" + GetParam().words +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]}-1)); _tessio; echo \"${COMPREPLY[@]}\"";
    Outcome const outcome = RunProgram({"/bin/bash", "-c", script}, directory.Path().string());
    EXPECT_EQ(outcome.out, GetParam().proposals + std::string("\n"));
    EXPECT_EQ(outcome.err, "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BashCompletion,
    ::testing::Values(CompletionRow{"Commands", "tessio di", "dirs dict diff"},
                      CompletionRow{"CommandsOfACommand", "tessio dict ''", "set get rm list"},
                      CompletionRow{"BehindGlobalOptions", "tessio --json sal", "salvage"},
                      CompletionRow{"Files", "tessio tree rec", "record.tess"},
                      CompletionRow{"Options", "tessio hex --wh", "--whole"},
                      CompletionRow{"GlobalOptions", "tessio tree --plu", "--plugin"},
                      CompletionRow{"Choices", "tessio dump --format j", "json jsonl"},
                      CompletionRow{"Colours", "tessio tree --color a", "auto always"},
                      CompletionRow{"OptionsOfANestedCommand", "tessio dict get --r", "--raw"}),
    RowName());

struct ShellRow
{
    char const* name;
    char const* shell;
    char const* which;
};

class ShellSyntax : public ToolDocuments, public ::testing::WithParamInterface<ShellRow>
{
};

TEST_P(ShellSyntax, IsSound)
{
    std::string const file = directory.File("completion", Document(GetParam().which)).string();
    Outcome const outcome = RunProgram({GetParam().shell, "-n", file}, "/");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
}

INSTANTIATE_TEST_SUITE_P(Rows, ShellSyntax,
                         ::testing::Values(ShellRow{"Bash", "/bin/bash", "bash"},
                                           ShellRow{"Zsh", "/bin/zsh", "zsh"},
                                           ShellRow{"Fish", "/usr/bin/fish", "fish"}),
                         RowName());
} // namespace
} // namespace KORVA::TESTS
