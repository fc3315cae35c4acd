// What no source may contain.
#include "Hygiene/Source.h"

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

TEST(Words, ConditionalCompilationIsThePlatformsAlone)
{
    std::size_t files = 0;
    for (fs::path const& file : AllSources())
    {
        if (*file.begin() == "Platform")
            continue;
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

TEST(Words, NoSourceIsTooLong)
{
    for (fs::path const& file : AllSources())
        EXPECT_LE(LinesOf(file).size(), kMaxLines) << file;
}
} // namespace
} // namespace KORVA::TESTS
