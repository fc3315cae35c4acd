// Whether damaged records make sense, by lengths and counts alone.
#include "Salvage/Skeleton.h"

#include "Records/Samples.h"
#include "Support/Laid.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
struct EndRow
{
    char const* name;
    char const* words;
    /// Where it is looked.
    int64 offset;
    int64 limit;
    /// -1 where the content makes no sense.
    int64 end;
};

class SkeletonEnd : public ::testing::TestWithParam<EndRow>
{
};

TEST_P(SkeletonEnd, IsWhereTheContentEndsWhateverTheLengthSays)
{
    for (Order const order : kOrders)
    {
        Bytes const content = Laid(order, GetParam().words);
        // What a dictionary at the start holds as its first entry.
        RECORDS::SoundRecords const sound{{32, {64, 0, 0, true}}};
        RECORDS::MisnamedRecords const misnamed;
        int64 count = 0;
        RECORDS::SkeletonOptions const options{order, {}, &sound, &misnamed, &count};
        auto const end =
            RECORDS::Skeleton(content, options).EndByContent(GetParam().offset, GetParam().limit);
        EXPECT_EQ(end.value_or(-1), GetParam().end) << RECORDS::OrderName(order);
    }
}

constexpr char kWrong[] = "Dict 999:8 1:4 1:4 Value 8:8 'UNNT 0:4 0:4 =FFFFFF";

INSTANTIATE_TEST_SUITE_P(
    Rows, SkeletonEnd,
    ::testing::Values(EndRow{"LengthTooLarge", kWrong, 0, 71, 68}, EndRow{"OneByteTooFew", kWrong, 0, 67, -1},
                      EndRow{"NoRoomForAHeader", kWrong, 64, 71, -1},
                      EndRow{"UnknownClass", "{00000009-0000-0000-0000-000000000000} 4:8 0:4", 0, 28, -1},
                      EndRow{"EntryThatIsNotSound", "Dict 999:8 1:4 1:4 Value 9:8 'UNNT 0:4 0:4", 0, 64, -1},
                      EndRow{"Texts", "Strings 0:8 1:4 2:4 \"a\" 2:4 \"b\" 0:4", 0, 44, 44},
                      EndRow{"TextTooLong", "Strings 0:8 1:4 2:4 \"a\" 9:4 \"b\" 0:4", 0, 44, -1},
                      EndRow{"NegativeText", "URI 0:8 -1:4 0:4", 0, 32, -1},
                      EndRow{"Buffer", "Value 0:8 'CHAR 2:4 =0A0B 0:4", 0, 38, 38},
                      EndRow{"NegativeAggregates", "Value 0:8 'UNNT -1:4", 0, 32, -1}),
    RowName());
} // namespace
} // namespace KORVA::TESTS
