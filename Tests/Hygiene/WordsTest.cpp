// What no source may contain.
#include "Hygiene/Source.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

constexpr std::size_t kMaxLines = 600;

std::vector<fs::path> AllSources()
{
    std::vector<fs::path> all;
    for (char const* const folder : {"SDK", "Core", "Platform", "System", "Companions", "Tools", "Examples",
                                     "Tests", "Fuzz", "Benchmarks"})
        for (fs::path const& file : SourcesBelow(folder))
            all.push_back(file);
    return all;
}

bool IsConditional(std::string const& line)
{
    static std::regex const kConditional(R"(^\s*#\s*(if|ifdef|ifndef|elif|else|endif)\b)");
    return std::regex_search(line, kConditional);
}

TEST(Words, NothingIsCompiledConditionally)
{
    std::size_t files = 0;
    for (fs::path const& file : AllSources())
    {
        ++files;
        for (std::string const& line : LinesOf(file))
            EXPECT_FALSE(IsConditional(line)) << file << ": " << line;
    }
    EXPECT_GE(files, 80u);
}

TEST(Words, ConditionalLinesAreKnownWhenSeen)
{
    for (char const* const line : {"#if 1", "  # ifdef X", "#ifndef X", "#elif Y", "#else", "#endif // X"})
        EXPECT_TRUE(IsConditional(line)) << line;
    for (char const* const line : {"#include \"if.h\"", "#pragma once", "if (x)", "// #if", "#define if_x"})
        EXPECT_FALSE(IsConditional(line)) << line;
}

/// What calls the system and is declared in headers that everybody may include.
bool CallsSystem(std::string const& line)
{
    static std::regex const kCalls(
        R"((^|[^\w.>])(fdopen|fileno|fseeko|ftello|popen|explicit_bzero|setenv|unsetenv|mkstemp|realpath|nanosleep)"
        R"(|clock_gettime|(std::)?(rename|raise|signal|remove|system)|pthread_\w+|sig(action|procmask))\()");
    return std::regex_search(line.substr(0, line.find("//")), kCalls);
}

TEST(Words, TheSystemIsCalledInItsOwnFolder)
{
    std::size_t files = 0;
    for (char const* const folder : {"SDK", "Core", "Platform", "Companions", "Tools"})
        for (fs::path const& file : SourcesBelow(folder))
        {
            ++files;
            for (std::string const& line : LinesOf(file))
                EXPECT_FALSE(CallsSystem(line)) << file << ": " << line;
        }
    EXPECT_GE(files, 80u);
}

TEST(Words, CallsOfTheSystemAreKnownWhenSeen)
{
    for (char const* const line : {"x = fdopen(f, m);", "std::signal(1, h)", "if (rename(a, b) != 0)",
                                   "pthread_sigmask(1, s, t);", "    explicit_bzero(a, n);"})
        EXPECT_TRUE(CallsSystem(line)) << line;
    for (char const* const line : {"// rename(a, b)", "file.Rename(", "\"rename it first\"", "OpenStream(f)",
                                   "list.remove_if(x)", "assignal(1)", "row.remove();"})
        EXPECT_FALSE(CallsSystem(line)) << line;
}

TEST(Words, ThePageOnPortingNamesEverySourceOfTheSystem)
{
    std::string const page = Content(TESSIO_SOURCE_DIR "/Docs/Porting.md");
    std::size_t sources = 0;
    for (char const* const folder : {"System/Posix", "System/Linux"})
        for (fs::path const& file : SourcesBelow(folder))
        {
            if (file.extension() != ".cpp")
                continue;
            ++sources;
            EXPECT_NE(page.find('`' + file.string() + '`'), std::string::npos) << file;
        }
    EXPECT_GE(sources, 20u);
}

TEST(Words, NoSourceIsTooLong)
{
    for (fs::path const& file : AllSources())
        EXPECT_LE(LinesOf(file).size(), kMaxLines) << file;
}
} // namespace
} // namespace KORVA::TESTS
