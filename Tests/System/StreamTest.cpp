// C streams over descriptors.
#include "System/Stream.h"

#include "Support/TemporaryDirectory.h"
#include "System/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace KORVA::TESTS
{
namespace
{
class Streams : public ::testing::Test
{
protected:
    int Open(SYSTEM::Access access) const { return SYSTEM::OpenFile(path, access, error).Release(); }

    TemporaryDirectory directory;
    std::string const path = directory.File("a", "0123456789").string();
    mutable SYSTEM::ErrorNumber error = -1;
};

TEST_F(Streams, TellWhatTheyHoldBack)
{
    int const descriptor = Open(SYSTEM::Access::kReadWrite);
    std::FILE* const stream = SYSTEM::OpenStream(descriptor, "r+", error);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(SYSTEM::DescriptorOf(stream), descriptor);
    EXPECT_EQ(SYSTEM::SeekStream(stream, 4, SEEK_SET), 0);
    EXPECT_EQ(std::fwrite("abc", 1, 3, stream), 3u);
    EXPECT_EQ(SYSTEM::HeldBack(stream), 3u);
    std::int64_t position = 0;
    EXPECT_EQ(SYSTEM::ReadStreamPosition(stream, position), 0);
    EXPECT_EQ(position, 7);
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(Content(path), "0123abc789");
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1) << "the stream has closed its descriptor";
}

TEST_F(Streams, AModeThatDoesNotMatchLeavesTheDescriptorToItsOwner)
{
    SYSTEM::Descriptor const file(Open(SYSTEM::Access::kRead));
    EXPECT_EQ(SYSTEM::OpenStream(file.Get(), "w", error), nullptr);
    EXPECT_EQ(error, EINVAL);
    EXPECT_NE(fcntl(file.Get(), F_GETFD), -1);
}

TEST_F(Streams, ASeekToNowhereIsRefused)
{
    std::FILE* const stream = SYSTEM::OpenStream(Open(SYSTEM::Access::kRead), "r", error);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(SYSTEM::SeekStream(stream, -1, SEEK_SET), EINVAL);
    EXPECT_EQ(std::fclose(stream), 0);
}
} // namespace
} // namespace KORVA::TESTS
