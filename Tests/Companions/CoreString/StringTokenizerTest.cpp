// Splitting at delimiters.
#include <tessio/CoreString/StringTokenizer.h>

#include "Support/Library.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using STRING::CoreString;
using STRING::StringTokenizer;

struct Row
{
    char const* name;
    char16_t const* text;
    char16_t const* delimiters;
    std::vector<std::u16string> tokens;
};

Row const kRows[] = {
    {"One", u"abc", u"/", {u"abc"}},
    {"Several", u"a/bc/d", u"/", {u"a", u"bc", u"d"}},
    {"EmptyAtTheStart", u"/a", u"/", {u"a"}},
    {"EmptyAtTheEnd", u"a/", u"/", {u"a"}},
    {"EmptyInTheMiddle", u"a//b", u"/", {u"a", u"b"}},
    {"SeveralDelimiters", u"a/b:c", u":/", {u"a", u"b", u"c"}},
    {"DelimitersSideBySide", u"a/:b", u":/", {u"a", u"b"}},
    {"NoDelimiters", u"a/b", u"", {u"a/b"}},
    {"DelimitersOnly", u"///", u"/", {}},
    {"EmptyText", u"", u"/", {}},
    {"BeyondAscii", u"ä€ö", u"€", {u"ä", u"ö"}},
};

class Tokens : public ::testing::TestWithParam<Row>
{
};

TEST_P(Tokens, AreTheNonEmptyPieces)
{
    Row const& row = GetParam();
    StringTokenizer const tokenizer(CoreString(row.text), CoreString(row.delimiters), 0);
    ASSERT_EQ(tokenizer.NumTokens(), static_cast<int32>(row.tokens.size()));
    for (std::size_t i = 0; i < row.tokens.size(); ++i)
        EXPECT_EQ(tokenizer.Get(static_cast<int32>(i)).view(), row.tokens[i]);
}

TEST_P(Tokens, AreEmptyOutsideTheirRange)
{
    Row const& row = GetParam();
    StringTokenizer const tokenizer(CoreString(row.text), CoreString(row.delimiters), 0);
    EXPECT_TRUE(tokenizer.Get(static_cast<int32>(row.tokens.size())).empty());
    EXPECT_TRUE(tokenizer.Get(-1).empty());
}

INSTANTIATE_TEST_SUITE_P(Texts, Tokens, ::testing::ValuesIn(kRows), RowName());
} // namespace
} // namespace KORVA::TESTS
