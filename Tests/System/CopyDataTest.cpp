// Copying in the kernel, and by hand where it refuses.
#include "System/CopyData.h"

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
struct CopyRow
{
    char const* name;
    std::vector<Fault> faults;
    SYSTEM::ErrorNumber error;
    /// What arrives of "0123456789".
    char const* arrives;
};

constexpr Fault kNotInTheKernel{Call::kCopyFileRange, EXDEV, 1, kForEver};
constexpr Fault kNotSent{Call::kSendFile, EINVAL, 1, kForEver};

class CopyingData : public ::testing::TestWithParam<CopyRow>
{
};

TEST_P(CopyingData, LosesNothing)
{
    TemporaryDirectory directory;
    std::string const target = directory.File("b", "").string();
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const from =
        SYSTEM::OpenFile(directory.File("a", "0123456789").string(), SYSTEM::Access::kRead, error);
    SYSTEM::Descriptor const to = SYSTEM::OpenFile(target, SYSTEM::Access::kWrite, error);
    ASSERT_EQ(error, 0);
    std::uint64_t copied = 0;
    {
        Faults const faults(GetParam().faults);
        std::uint64_t count = 0;
        do
        {
            count = 100;
            error = SYSTEM::CopySome(from.Get(), to.Get(), count);
            copied += count;
        } while (error == 0 && count > 0);
        EXPECT_EQ(count, 0u);
    }
    EXPECT_EQ(error, GetParam().error);
    EXPECT_EQ(copied, std::string(GetParam().arrives).size());
    EXPECT_EQ(Content(target), GetParam().arrives);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CopyingData,
    ::testing::Values(
        CopyRow{"AtOnce", {}, 0, "0123456789"},
        CopyRow{"InPieces", {{Call::kCopyFileRange, kShort, 1, 3}}, 0, "0123456789"},
        CopyRow{"Interrupted", {{Call::kCopyFileRange, EINTR, 1, 2}}, 0, "0123456789"},
        CopyRow{"AcrossFileSystems", {kNotInTheKernel}, 0, "0123456789"},
        CopyRow{"NotKnown", {{Call::kCopyFileRange, ENOSYS, 1, kForEver}}, 0, "0123456789"},
        CopyRow{"NotSupported", {{Call::kCopyFileRange, EOPNOTSUPP, 1, kForEver}}, 0, "0123456789"},
        CopyRow{"Forbidden", {{Call::kCopyFileRange, EPERM, 1, kForEver}}, 0, "0123456789"},
        CopyRow{"SendingInterrupted", {kNotInTheKernel, {Call::kSendFile, EINTR, 1, 2}}, 0, "0123456789"},
        CopyRow{"SendingInPieces", {kNotInTheKernel, {Call::kSendFile, kShort, 1, 2}}, 0, "0123456789"},
        CopyRow{"ByHand", {kNotInTheKernel, kNotSent}, 0, "0123456789"},
        CopyRow{"ByHandWhereSendingIsUnknown",
                {kNotInTheKernel, {Call::kSendFile, ENOSYS, 1, kForEver}},
                0,
                "0123456789"},
        CopyRow{"ReadInterrupted", {kNotInTheKernel, kNotSent, {Call::kRead, EINTR}}, 0, "0123456789"},
        CopyRow{"WriteInterrupted",
                {kNotInTheKernel, kNotSent, {Call::kWrite, kShort}, {Call::kWrite, EINTR, 2}},
                0,
                "0123456789"},
        CopyRow{"RefusedInTheMiddle",
                {{Call::kCopyFileRange, kShort}, {Call::kCopyFileRange, EXDEV, 2, kForEver}, kNotSent},
                0,
                "0123456789"},
        CopyRow{"DeviceFails", {{Call::kCopyFileRange, EIO}}, EIO, ""},
        CopyRow{"SendingFails", {kNotInTheKernel, {Call::kSendFile, ENOSPC}}, ENOSPC, ""},
        CopyRow{"ReadFails", {kNotInTheKernel, kNotSent, {Call::kRead, EIO}}, EIO, ""},
        CopyRow{"WriteFails", {kNotInTheKernel, kNotSent, {Call::kWrite, ENOSPC}}, ENOSPC, ""}),
    RowName());
} // namespace
} // namespace KORVA::TESTS
