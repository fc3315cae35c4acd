// Reading and writing whole, whatever the system does of it at once.
#include "System/Transfer.h"

#include "Support/RowName.h"
#include "Support/SystemCalls.h"
#include "Support/TemporaryDirectory.h"
#include "System/Files.h"

#include <gtest/gtest.h>
#include <unistd.h>

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
    ::testing::Values(TransferRow{"AtOnce", {}, 0, "0123456789"},
                      TransferRow{"InPieces", {{Call::kWrite, kShort, 1, 3}}, 0, "0123456789"},
                      TransferRow{"Interrupted", {{Call::kWrite, EINTR, 1, 2}}, 0, "0123456789"},
                      TransferRow{"InterruptedInTheMiddle",
                                  {{Call::kWrite, kShort}, {Call::kWrite, EINTR, 2}},
                                  0,
                                  "0123456789"},
                      TransferRow{"Failing", {{Call::kWrite, kShort}, {Call::kWrite, EIO, 2}}, EIO, "01234"},
                      TransferRow{"TakingNothing",
                                  {{Call::kWrite, kShort}, {Call::kWrite, kTakesNothing, 2, kForEver}},
                                  ENOSPC,
                                  "01234"}),
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

class WritingAllAt : public ::testing::TestWithParam<TransferRow>
{
};

TEST_P(WritingAllAt, WritesWhatItCan)
{
    TemporaryDirectory directory;
    std::string const path = directory.File("a", "ab").string();
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file = SYSTEM::OpenFile(path, SYSTEM::Access::kReadWrite, error);
    ASSERT_EQ(error, 0);
    std::size_t count = 10;
    {
        Faults const faults(GetParam().faults);
        error = SYSTEM::WriteAllAt(file.Get(), 2, "0123456789", count);
    }
    EXPECT_EQ(error, GetParam().error);
    EXPECT_EQ(count, std::string(GetParam().arrives).size());
    EXPECT_EQ(Content(path), "ab" + std::string(GetParam().arrives));
    std::int64_t position = -1;
    EXPECT_EQ(SYSTEM::ReadPosition(file.Get(), position), 0);
    EXPECT_EQ(position, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WritingAllAt,
    ::testing::Values(TransferRow{"AtOnce", {}, 0, "0123456789"},
                      TransferRow{"InPieces", {{Call::kWriteAt, kShort, 1, 3}}, 0, "0123456789"},
                      TransferRow{"Interrupted", {{Call::kWriteAt, EINTR, 1, 2}}, 0, "0123456789"},
                      TransferRow{"InterruptedInTheMiddle",
                                  {{Call::kWriteAt, kShort}, {Call::kWriteAt, EINTR, 2}},
                                  0,
                                  "0123456789"},
                      TransferRow{
                          "Failing", {{Call::kWriteAt, kShort}, {Call::kWriteAt, EFBIG, 2}}, EFBIG, "01234"},
                      TransferRow{"FailingAtOnce", {{Call::kWriteAt, EIO}}, EIO, ""},
                      TransferRow{"TakingNothing",
                                  {{Call::kWriteAt, kShort}, {Call::kWriteAt, kTakesNothing, 2, kForEver}},
                                  ENOSPC,
                                  "01234"}),
    RowName());

class ReadingAllAt : public ::testing::TestWithParam<TransferRow>
{
};

TEST_P(ReadingAllAt, ReadsToTheEnd)
{
    TemporaryDirectory directory;
    std::string const path = directory.File("a", "ab0123456789").string();
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file = SYSTEM::OpenFile(path, SYSTEM::Access::kRead, error);
    ASSERT_EQ(error, 0);
    std::string data(20, '-');
    std::size_t count = data.size();
    {
        Faults const faults(GetParam().faults);
        error = SYSTEM::ReadAllAt(file.Get(), 2, data.data(), count);
    }
    EXPECT_EQ(error, GetParam().error);
    EXPECT_EQ(data.substr(0, count), GetParam().arrives);
    EXPECT_EQ(data.substr(count), std::string(20 - count, '-'));
    std::int64_t position = -1;
    EXPECT_EQ(SYSTEM::ReadPosition(file.Get(), position), 0);
    EXPECT_EQ(position, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReadingAllAt,
    ::testing::Values(TransferRow{"AtOnce", {}, 0, "0123456789"},
                      TransferRow{"InPieces", {{Call::kReadAt, kShort, 1, 3}}, 0, "0123456789"},
                      TransferRow{"Interrupted", {{Call::kReadAt, EINTR, 1, 2}}, 0, "0123456789"},
                      TransferRow{"InterruptedInTheMiddle",
                                  {{Call::kReadAt, kShort}, {Call::kReadAt, EINTR, 2}},
                                  0,
                                  "0123456789"},
                      TransferRow{"FailingBehindTheEnd", {{Call::kReadAt, EIO, 2}}, EIO, "0123456789"},
                      TransferRow{"FailingAtOnce", {{Call::kReadAt, EIO}}, EIO, ""}),
    RowName());

TEST(Positions, NegativeOnesAreRefused)
{
    TemporaryDirectory directory;
    SYSTEM::ErrorNumber error = 0;
    std::string const path = directory.File("a", "text").string();
    SYSTEM::Descriptor const file = SYSTEM::OpenFile(path, SYSTEM::Access::kReadWrite, error);
    char data[4] = {};
    std::size_t count = 4;
    EXPECT_EQ(SYSTEM::ReadAllAt(file.Get(), -1, data, count), EINVAL);
    EXPECT_EQ(count, 0u);
    count = 0;
    EXPECT_EQ(SYSTEM::WriteAllAt(file.Get(), -1, data, count), EINVAL);
    EXPECT_EQ(Content(path), "text");
}

TEST(Positions, APipeHasNone)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    SYSTEM::Descriptor const out(ends[0]);
    SYSTEM::Descriptor const in(ends[1]);
    std::int64_t position = 7;
    EXPECT_EQ(SYSTEM::ReadPosition(out.Get(), position), ESPIPE);
    EXPECT_EQ(position, 7);
}

/// A call that is interrupted twice, and fails later.
struct RepeatedRow
{
    char const* name;
    Call call;
    SYSTEM::ErrorNumber (*run)(int descriptor);
};

class RepeatedCall : public ::testing::TestWithParam<RepeatedRow>
{
};

TEST_P(RepeatedCall, IsNotStoppedByAnInterruption)
{
    RepeatedRow const& row = GetParam();
    TemporaryDirectory directory;
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file =
        SYSTEM::OpenFile(directory.File("a", "text").string(), SYSTEM::Access::kReadWrite, error);
    Faults const faults({{row.call, EINTR, 1, 2}, {row.call, EIO, 4}});
    EXPECT_EQ(row.run(file.Get()), 0);
    EXPECT_EQ(row.run(file.Get()), EIO);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RepeatedCall,
    ::testing::Values(RepeatedRow{"FlushToDevice", Call::kFlushFile, &SYSTEM::FlushToDevice},
                      RepeatedRow{"FlushContent", Call::kFlushContent, &SYSTEM::FlushContent},
                      RepeatedRow{"SetSize", Call::kSetSize,
                                  [](int descriptor) { return SYSTEM::SetSize(descriptor, 2); }}),
    RowName());
} // namespace
} // namespace KORVA::TESTS
