// Results and errors.
#include <tessio/Cxx/Result.h>

#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
using CXX::Error;
using CXX::Result;

Error const kLockedError(40, "load", "\"/a\"");

struct MessageRow
{
    char const* name;
    Error error;
    char const* message;
};

MessageRow const kMessages[] = {
    {"Known", {40, "load", "\"/a\""}, "cannot load \"/a\": locked by somebody else (kLocked)"},
    {"OfTheLayer", {2001, "get", "key 7"}, "cannot get key 7: no such entry (kNoEntry)"},
    {"Unknown", {77, "save", "\"/a\""}, "cannot save \"/a\": error 77"},
    {"WithoutASubject",
     {12, "use it"},
     "cannot use it: no registry, or nothing makes such an object (kNoObject)"},
    {"WithDetail",
     {2025, "load", "\"/a\"", "its length is -5"},
     "cannot load \"/a\": the record is damaged, or holds objects of an unknown class (kDamaged): its length "
     "is "
     "-5"},
};

class CxxMessage : public ::testing::TestWithParam<MessageRow>
{
};

TEST_P(CxxMessage, SaysWhatAndWhy) { EXPECT_EQ(GetParam().error.Message(), GetParam().message); }

INSTANTIATE_TEST_SUITE_P(Errors, CxxMessage, ::testing::ValuesIn(kMessages), RowName());

TEST(CxxError, QuotesStayOnOneLine)
{
    EXPECT_EQ(CXX::Quoted("a b"), "\"a b\"");
    EXPECT_EQ(CXX::Quoted("a\nb\"c\\d\x7F"), "\"a\\x0Ab\\\"c\\\\d\\x7F\"");
    EXPECT_EQ(CXX::Quoted("Gr\xC3\xBC\xC3\x9F"
                          "e"),
              "\"Gr\xC3\xBC\xC3\x9F"
              "e\"");
}

TEST(CxxError, KeepsItsParts)
{
    EXPECT_EQ(kLockedError.Code(), 40);
    EXPECT_EQ(kLockedError.Name(), "kLocked");
    EXPECT_EQ(kLockedError.Operation(), "load");
    EXPECT_EQ(kLockedError.Subject(), "\"/a\"");
    EXPECT_EQ(kLockedError, Error(40, "load", "\"/a\""));
    EXPECT_FALSE(kLockedError == Error(40, "load", "\"/b\""));
}

TEST(CxxResult, HoldsAValue)
{
    Result<int> const seven = 7;
    EXPECT_TRUE(seven);
    EXPECT_TRUE(seven.has_value());
    EXPECT_EQ(seven.value(), 7);
    EXPECT_EQ(*seven, 7);
    EXPECT_EQ(seven.value_or(8), 7);
    EXPECT_EQ(seven.error().Code(), 0);
    EXPECT_EQ(seven.error().Name(), "kNoError");
    Result<std::string> text = "abc";
    EXPECT_EQ(text->size(), 3u);
    text->push_back('d');
    EXPECT_EQ(*text, "abcd");
}

TEST(CxxResult, HoldsAnError)
{
    Result<int> const none = kLockedError;
    EXPECT_FALSE(none);
    EXPECT_FALSE(none.has_value());
    EXPECT_EQ(none.error(), kLockedError);
    EXPECT_EQ(none.value_or(8), 8);
}

TEST(CxxResult, AskedForAValueThatIsNotThereThrows)
{
    Result<std::string> none = kLockedError;
    EXPECT_THROW(none.value(), CXX::BadResult);
    EXPECT_THROW(*none, CXX::BadResult);
    EXPECT_THROW(none->size(), CXX::BadResult);
    EXPECT_THROW(Result<std::string>(kLockedError).value(), CXX::BadResult);
    EXPECT_THROW(Result<void>(kLockedError).value(), CXX::BadResult);
    try
    {
        static_cast<void>(none.value());
    }
    catch (CXX::BadResult const& bad)
    {
        EXPECT_STREQ(bad.what(), "cannot load \"/a\": locked by somebody else (kLocked)");
        EXPECT_EQ(bad.Why(), kLockedError);
    }
}

TEST(CxxResult, MovesWhatCannotBeCopied)
{
    Result<std::unique_ptr<int>> result = std::make_unique<int>(7);
    std::unique_ptr<int> const taken = *std::move(result);
    EXPECT_EQ(*taken, 7);
    EXPECT_EQ(*Result<std::unique_ptr<int>>(std::make_unique<int>(8)).value(), 8);
}

Result<std::vector<int>> Three() { return std::vector<int>{1, 2, 3}; }

TEST(CxxResult, OfATemporaryMayBeGoneOver)
{
    int sum = 0;
    for (int const number : Three().value())
        sum += number;
    for (int const number : *Three())
        sum += number;
    EXPECT_EQ(sum, 12);
}

TEST(CxxResult, Chains)
{
    auto const half = [](int number) -> Result<int> {
        if (number % 2 != 0)
            return Error(10, "halve");
        return number / 2;
    };
    auto const text = [](int number) { return std::to_string(number); };
    Result<int> const twelve = 12;
    EXPECT_EQ(twelve.and_then(half).transform(text).value(), "6");
    EXPECT_EQ(twelve.and_then(half).and_then(half).and_then(half).error().Code(), 10);
    EXPECT_EQ(Result<int>(kLockedError).transform(text).error().Code(), 40);
    Result<void> const done;
    EXPECT_EQ(done.and_then([] { return Result<int>(5); }).value(), 5);
    EXPECT_EQ(Result<void>(kLockedError).and_then([] { return Result<int>(5); }).error().Code(), 40);
}

TEST(CxxResult, OfNothing)
{
    Result<void> const done;
    EXPECT_TRUE(done);
    EXPECT_EQ(done.error().Code(), 0);
    EXPECT_NO_THROW(done.value());
    Result<void> const failed = kLockedError;
    EXPECT_FALSE(failed);
    EXPECT_EQ(failed.error().Code(), 40);
    EXPECT_TRUE(CXX::ResultOf(0, "do"));
    EXPECT_EQ(CXX::ResultOf(3, "do", "it").error(), Error(3, "do", "it"));
}

// A result is neither its value nor a truth value that sums.
static_assert(!std::is_convertible_v<Result<int>, int>);
static_assert(!std::is_convertible_v<Result<int>, bool>);
static_assert(!std::is_convertible_v<Result<void>, bool>);
static_assert(!std::is_constructible_v<Result<std::string>, int*>);
} // namespace
} // namespace KORVA::TESTS
