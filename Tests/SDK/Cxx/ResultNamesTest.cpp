// Every result code has its name.
#include <tessio/Cxx/ResultNames.h>

#include "Support/RowName.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

namespace KORVA::TESTS
{
namespace
{
struct Header
{
    char const* name;
    char const* path;
    std::size_t constants;
};

Header const kHeaders[] = {
    {"Types", "ObjectModel/Types.h", 3},
    {"ResultCodes", "TessIO/ResultCodes.h", 23},
    {"LayerCodes", "Cxx/ResultCodes.h", 21},
};

class ResultNamesOf : public ::testing::TestWithParam<Header>
{
};

TEST_P(ResultNamesOf, AreThoseOfTheHeader)
{
    std::string const text =
        Content(std::string(TESSIO_SOURCE_DIR "/SDK/Headers/Core/LibSupport/") + GetParam().path);
    static std::regex const kConstant(R"(inline constexpr ErrCode (k\w+) = (-?\d+);)");
    std::set<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), kConstant), end; at != end; ++at)
    {
        found.insert((*at)[1]);
        int rows = 0;
        for (CXX::ResultName const& row : CXX::kResultNames)
            if (row.name == (*at)[1].str())
            {
                ++rows;
                EXPECT_EQ(row.code, std::stoi((*at)[2])) << row.name;
                EXPECT_FALSE(row.meaning.empty()) << row.name;
            }
        EXPECT_EQ(rows, 1) << (*at)[1];
    }
    EXPECT_EQ(found.size(), GetParam().constants);
}

INSTANTIATE_TEST_SUITE_P(Headers, ResultNamesOf, ::testing::ValuesIn(kHeaders), RowName());

TEST(CxxResultNames, NameCodes)
{
    EXPECT_EQ(CXX::NameOfResult(40), "kLocked");
    EXPECT_EQ(CXX::NameOfResult(0), "kNoError");
    EXPECT_EQ(CXX::NameOfResult(-1004), "kIdNotFound");
    EXPECT_EQ(CXX::NameOfResult(35), "kFileSystemFailed") << "the first of those that share the value";
    EXPECT_EQ(CXX::NameOfResult(77), "error 77");
    EXPECT_EQ(CXX::NameOfResult(-7), "error -7");
}

TEST(CxxResultNames, CodesOfTheLayerAreNobodyElses)
{
    for (CXX::ResultName const& row : CXX::kResultNames)
    {
        if (row.code > 2000)
        {
            EXPECT_EQ(CXX::FindResultName(row.code), &row) << row.name;
        }
    }
}

static_assert(CXX::FindResultName(40)->name == "kLocked");
static_assert(CXX::FindResultName(77) == nullptr);
} // namespace
} // namespace KORVA::TESTS
