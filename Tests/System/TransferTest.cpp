// Reading and writing whole, whatever the system does of it at once.
#include "System/Transfer.h"

#include "Support/RowName.h"
#include "Support/SystemCalls.h"
#include "Support/TemporaryDirectory.h"
#include "System/Files.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace KORVA::TESTS
{
namespace
{
struct TransferRow
{
    char const* name;
    std::vector<Fault> faults;
    SYSTEM::ErrorNumber error;
    /// What arrives of "0123456789".
    char const* arrives;
};

class WritingAll : public ::testing::TestWithParam<TransferRow>
{
};

TEST_P(WritingAll, WritesWhatItCan)
{
    TemporaryDirectory directory;
    std::string const path = directory.File("a", "").string();
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file = SYSTEM::OpenFile(path, SYSTEM::Access::kReadWrite, error);
    ASSERT_EQ(error, 0);
    {
        Faults const faults(GetParam().faults);
        error = SYSTEM::WriteAll(file.Get(), "0123456789", 10);
    }
    EXPECT_EQ(error, GetParam().error);
    EXPECT_EQ(Content(path), GetParam().arrives);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WritingAll,
    ::testing::Values(
        TransferRow{"AtOnce", {}, 0, "0123456789"},
        TransferRow{"InPieces", {{Call::kWrite, kShort, 1, 3}}, 0, "0123456789"},
        TransferRow{"Interrupted", {{Call::kWrite, EINTR, 1, 2}}, 0, "0123456789"},
        TransferRow{
            "InterruptedInTheMiddle", {{Call::kWrite, kShort}, {Call::kWrite, EINTR, 2}}, 0, "0123456789"},
        TransferRow{"Failing", {{Call::kWrite, kShort}, {Call::kWrite, ENOSPC, 2}}, ENOSPC, "01234"}),
    RowName());

class ReadingAll : public ::testing::TestWithParam<TransferRow>
{
};

TEST_P(ReadingAll, ReadsToTheEnd)
{
    TemporaryDirectory directory;
    std::string const path = directory.File("a", "0123456789").string();
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file = SYSTEM::OpenFile(path, SYSTEM::Access::kRead, error);
    ASSERT_EQ(error, 0);
    std::string data(20, '-');
    std::size_t count = data.size();
    {
        Faults const faults(GetParam().faults);
        error = SYSTEM::ReadAll(file.Get(), data.data(), count);
    }
    EXPECT_EQ(error, GetParam().error);
    EXPECT_EQ(data.substr(0, count), GetParam().arrives);
    EXPECT_EQ(data.substr(count), std::string(20 - count, '-'));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReadingAll,
    ::testing::Values(TransferRow{"AtOnce", {}, 0, "0123456789"},
                      TransferRow{"InPieces", {{Call::kRead, kShort, 1, 3}}, 0, "0123456789"},
                      TransferRow{"Interrupted", {{Call::kRead, EINTR, 1, 2}}, 0, "0123456789"},
                      TransferRow{"Failing", {{Call::kRead, EIO, 2}}, EIO, "0123456789"},
                      TransferRow{"FailingAtOnce", {{Call::kRead, EIO}}, EIO, ""}),
    RowName());

TEST(Flushing, AnInterruptionIsNoFailure)
{
    TemporaryDirectory directory;
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file =
        SYSTEM::OpenFile(directory.File("a", "").string(), SYSTEM::Access::kReadWrite, error);
    Faults const faults({{Call::kFlushFile, EINTR, 1, 2}, {Call::kFlushFile, EIO, 4}});
    EXPECT_EQ(SYSTEM::FlushToDevice(file.Get()), 0);
    EXPECT_EQ(SYSTEM::FlushToDevice(file.Get()), EIO);
}
} // namespace
} // namespace KORVA::TESTS
