// The reader of sources, without which the other tests here would see nothing.
#include "Hygiene/Source.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace KORVA::TESTS
{
namespace
{
/// Words as they are, texts in quotes.
std::string Joined(std::string_view code)
{
    std::string joined;
    for (Token const& token : TokensOf(code))
        joined +=
            (joined.empty() ? "" : " ") + (token.kind == Token::kText ? '"' + token.text + '"' : token.text);
    return joined;
}

TEST(Source, SplitsWordsTextsAndMarks)
{
    EXPECT_EQ(Joined("int const a1=0x2F;"), "int const a1 = 0x2F ;");
    EXPECT_EQ(Joined("f(\"a b\", 'c', 1'000)"), "f ( \"a b\" , , 1'000 )");
}

TEST(Source, JoinsNeighbouringTexts)
{
    EXPECT_EQ(Joined("\"a\"\n    \"b\" \"c\""), "\"abc\"");
    EXPECT_EQ(Joined("L\"a\" L\"b\", u\"c\""), "\"ab\" , \"c\"");
    EXPECT_EQ(Joined("\"say \\\"a\\\\\""), "\"say \"a\\\"");
}

TEST(Source, SkipsCommentsAndPreprocessorLines)
{
    EXPECT_EQ(Joined("a // b \"c\n/* d\n */ e"), "a e");
    EXPECT_EQ(Joined("#include \"x\"\n  #define y\na"), "a");
    EXPECT_EQ(Joined("\"a // b\" '\"' c"), "\"a // b\" c");
}

TEST(Source, FindsTheProjectsFiles)
{
    auto const files = SourcesBelow("SDK");
    EXPECT_NE(std::find(files.begin(), files.end(), "SDK/Headers/Core/LibSupport/ObjectModel/IObject.h"),
              files.end());
    EXPECT_TRUE(SourcesBelow("NoSuchFolder").empty());
    EXPECT_EQ(LinesOf("SDK/Headers/Core/LibSupport/ObjectModel/IObject.h").at(1), "#pragma once");
}
} // namespace
} // namespace KORVA::TESTS
