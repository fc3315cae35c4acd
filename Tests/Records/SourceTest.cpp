// Reading from sources that are not in memory, that fail, and that somebody watches.
#include "Records/Samples.h"
#include "Support/Laid.h"
#include "Support/RowName.h"
#include <tessio/Records/Dump/Text.h>
#include <tessio/Records/Tree/Layout.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace KORVA::TESTS
{
namespace
{
/// Hands out its bytes piece by piece, and fails at one reading.
class PieceSource final : public RECORDS::Source
{
public:
    explicit PieceSource(Bytes content, int failing = -1) : mContent(std::move(content)), mFailing(failing) {}

    int64 Size() const override { return static_cast<int64>(mContent.size()); }
    std::optional<RECORDS::Error> Read(int64 offset, std::span<unsigned char> to) const override
    {
        if (mReads++ == mFailing)
            return RECORDS::Error{RECORDS::ErrorCode::kReadFailed, offset, "the disk is gone"};
        EXPECT_LE(offset + static_cast<int64>(to.size()), Size());
        mLargest = std::max(mLargest, to.size());
        std::copy_n(mContent.begin() + offset, to.size(), to.begin());
        return std::nullopt;
    }

    int Reads() const { return mReads; }
    std::size_t Largest() const { return mLargest; }

private:
    Bytes mContent;
    int mFailing;
    mutable int mReads = 0;
    mutable std::size_t mLargest = 0;
};

/// A dictionary of that many whole numbers, 52 bytes each with their keys.
Bytes Numbers(Order order, int count)
{
    std::string words = "Dict " + std::to_string(52 * count + 8) + ":8 " + std::to_string(count) + ":4 ";
    for (int i = 0; i < count; ++i)
        words += std::to_string(i) + ":4 Value 24:8 'S32V " + std::to_string(i) + ":8 0:8 0:4 ";
    return Laid(order, words + "0:4");
}

constexpr int kMany = 3000;

TEST(Source, IsReadInPiecesOfSixtyFourKiBAtMost)
{
    for (Order const order : kOrders)
    {
        Bytes const content = Numbers(order, kMany);
        PieceSource const source(content);
        RECORDS::Reader reader(source, OptionsOf(order));
        int records = 0;
        auto const end = RECORDS::Walk(reader, [&](RECORDS::Node const& node, std::string const&) {
            ++records;
            EXPECT_EQ(RECORDS::Problem(node), "");
            return true;
        });
        ASSERT_TRUE(end);
        EXPECT_EQ(*end, static_cast<int64>(content.size()));
        EXPECT_EQ(records, 1 + kMany);
        EXPECT_EQ(source.Largest(), 65536u);
        // Once for what the dictionary says itself, once for what it holds.
        EXPECT_LE(source.Reads(), 2 * (static_cast<int>(content.size()) / 65536 + 2));
    }
}

TEST(Source, ATextLongerThanAPieceIsReadWhole)
{
    std::string const text(50000, 'x');
    PieceSource const source(Laid(kLittle, "URI 100008:8 100000:4 \"" + text + "\" 0:4"));
    RECORDS::Reader reader(source, OptionsOf(kLittle));
    auto const node = reader.Find(*RECORDS::ParsePath("/0"));
    ASSERT_TRUE(node);
    EXPECT_EQ(node->text.ToUTF8(), text);
}

TEST(Source, GivesTheSameFromPiecesAsFromMemory)
{
    for (Order const order : kOrders)
        for (Sample const& sample : Samples())
        {
            Bytes const content = Laid(order, sample.words);
            auto const dump = [&](RECORDS::Source const& source) {
                RECORDS::Reader reader(source, OptionsOf(order));
                std::string text;
                EXPECT_TRUE(RECORDS::WriteText(reader, [&](std::string_view piece) { text += piece; }));
                return text;
            };
            EXPECT_EQ(dump(PieceSource(content)), dump(RECORDS::MemorySource(content))) << sample.name;
        }
}

TEST(Source, WhatCanNotBeReadIsToldAndNothingElse)
{
    Bytes const content = Numbers(kBig, kMany);
    for (int failing = 0; failing < 6; ++failing)
    {
        PieceSource const source(content, failing);
        RECORDS::Reader reader(source, OptionsOf(kBig));
        auto const end = RECORDS::Walk(reader, [](RECORDS::Node const&, std::string const&) { return true; });
        EXPECT_EQ(FailureOf(end), "read-failed the disk is gone") << failing;
    }
}

TEST(Source, ReadingEndsWhenSomebodyWantsItTo)
{
    Bytes const content = Numbers(kLittle, kMany);
    RECORDS::MemorySource const source(content);
    RECORDS::ReadOptions options = OptionsOf(kLittle);
    int64 last = -1;
    options.work.progress = [&](int64 done, int64 total) {
        EXPECT_EQ(total, static_cast<int64>(content.size()));
        EXPECT_GT(done, last);
        last = done;
        return done < 1000;
    };
    EXPECT_EQ(FailureOf(RECORDS::ReadTree(source, options)), "cancelled it was wanted to end");
    // The head of the first record behind a thousand bytes.
    EXPECT_EQ(last, 1020);
}

TEST(Source, WithoutRecordsHasNoneUnderAnyNumber)
{
    Bytes const content{1, 2, 3};
    RECORDS::MemorySource const source(content);
    RECORDS::Reader reader(source, OptionsOf(kLittle));
    EXPECT_EQ(FailureOf(reader.Find(*RECORDS::ParsePath("/0"))), "not-found has no record 0; it has 0");
    EXPECT_EQ(FailureOf(reader.Find(*RECORDS::ParsePath("/4294967295"))),
              "not-found has no record 4294967295; it has 0");
}

struct PlaceRow
{
    char const* name;
    int64 offset;
    /// Empty where the offset is in no record.
    char const* path;
};

class PlaceOfOffset : public ::testing::TestWithParam<PlaceRow>
{
};

TEST_P(PlaceOfOffset, IsTheInnermostRecordAroundIt)
{
    for (Order const order : kOrders)
    {
        Bytes const content = Laid(order, std::string("Dict 80:8 2:4 1:4 Value 8:8 'UNNT 0:4 "
                                                      "2:4 Value 8:8 'UNNT 0:4 0:4 =AABB"));
        RECORDS::MemorySource const source(content);
        RECORDS::Reader reader(source, OptionsOf(order));
        auto const path = RECORDS::PathAt(reader, GetParam().offset);
        ASSERT_TRUE(path);
        EXPECT_EQ(RECORDS::PathText(*path), GetParam().path);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, PlaceOfOffset,
                         ::testing::Values(PlaceRow{"First", 0, "/0"}, PlaceRow{"Key", 31, "/0"},
                                           PlaceRow{"Entry", 32, "/0/dict[1]"},
                                           PlaceRow{"EndOfTheEntry", 63, "/0/dict[1]"},
                                           PlaceRow{"NextKey", 64, "/0"},
                                           PlaceRow{"SecondEntry", 99, "/0/dict[2]"},
                                           PlaceRow{"Aggregates", 100, "/0"}, PlaceRow{"LeftOver", 104, ""}),
                         RowName());
} // namespace
} // namespace KORVA::TESTS
