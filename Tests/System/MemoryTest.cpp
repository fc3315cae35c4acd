// Pages, and files in memory.
#include "System/Memory.h"

#include "Support/TemporaryDirectory.h"
#include "System/Files.h"
#include "System/Mapping.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <utility>

namespace KORVA::TESTS
{
namespace
{
using SYSTEM::Mapping;

TEST(Pages, AreWhole)
{
    std::size_t const page = SYSTEM::WholePages(1);
    EXPECT_GE(page, 4096u);
    EXPECT_EQ(SYSTEM::WholePages(0), page);
    EXPECT_EQ(SYSTEM::WholePages(page), page);
    EXPECT_EQ(SYSTEM::WholePages(page + 1), 2 * page);
}

TEST(Pages, KeepWhatIsThereAndGrowByZeros)
{
    std::size_t const page = SYSTEM::WholePages(1);
    std::byte* pages = SYSTEM::NewPages(2 * page);
    ASSERT_NE(pages, nullptr);
    EXPECT_EQ(pages[2 * page - 1], std::byte{0});
    std::memset(pages, 'x', 2 * page);
    pages = SYSTEM::ResizePages(pages, 2 * page, page);
    ASSERT_NE(pages, nullptr);
    pages = SYSTEM::ResizePages(pages, page, 3 * page);
    ASSERT_NE(pages, nullptr);
    EXPECT_EQ(pages[page - 1], std::byte{'x'});
    EXPECT_EQ(pages[page], std::byte{0});
    SYSTEM::FreePages(pages, 3 * page);
}

TEST(Pages, WithoutRoomTheBlockIsAsItWas)
{
    std::size_t const page = SYSTEM::WholePages(1);
    std::size_t const tooMany = std::numeric_limits<std::size_t>::max() / 2 / page * page;
    EXPECT_EQ(SYSTEM::NewPages(tooMany), nullptr);
    std::byte* const pages = SYSTEM::NewPages(page);
    ASSERT_NE(pages, nullptr);
    pages[0] = std::byte{7};
    EXPECT_EQ(SYSTEM::ResizePages(pages, page, tooMany), nullptr);
    EXPECT_EQ(pages[0], std::byte{7});
    SYSTEM::FreePages(pages, page);
}

TEST(Secrets, AreWiped)
{
    char secret[] = "secret";
    SYSTEM::Wipe(secret, 4);
    EXPECT_EQ(std::string(secret, sizeof secret), std::string("\0\0\0\0et", 7));
    SYSTEM::Wipe(secret, 0);
    EXPECT_EQ(secret[4], 'e');
}

class MappedFiles : public ::testing::Test
{
protected:
    std::string Path(char const* name) const { return (directory.Path() / name).string(); }

    static Mapping Of(std::string const& path, SYSTEM::ErrorNumber& error,
                      SYSTEM::Access access = SYSTEM::Access::kRead)
    {
        SYSTEM::Descriptor const file = SYSTEM::OpenFile(path, access, error);
        EXPECT_EQ(error, 0) << path;
        return Mapping::Of(file.Get(), error);
    }

    static std::string Text(Mapping const& mapping)
    {
        return {reinterpret_cast<char const*>(mapping.Bytes().data()), mapping.Bytes().size()};
    }

    TemporaryDirectory directory;
    SYSTEM::ErrorNumber error = -1;
};

TEST_F(MappedFiles, HoldTheWholeContent)
{
    std::string const content(3 * SYSTEM::WholePages(1) + 5, 'x');
    Mapping mapping = Of(directory.File("a", content).string(), error);
    EXPECT_EQ(error, 0);
    EXPECT_TRUE(Text(mapping) == content);
    Mapping const other = std::move(mapping);
    EXPECT_TRUE(Text(other) == content);
    EXPECT_TRUE(mapping.Bytes().empty());
}

TEST_F(MappedFiles, AnEmptyOneIsEmpty)
{
    EXPECT_TRUE(Of(directory.File("a", "").string(), error).Bytes().empty());
    EXPECT_EQ(error, 0);
}

TEST_F(MappedFiles, AReplacedOneStaysWhatItWas)
{
    Mapping const mapping = Of(directory.File("a", "old").string(), error);
    EXPECT_EQ(SYSTEM::RenameFile(directory.File("b", "new").string(), Path("a")), 0);
    EXPECT_EQ(Text(mapping), "old");
}

TEST_F(MappedFiles, OnesOfAnotherKindAreRefused)
{
    ASSERT_EQ(mkfifo(Path("p").c_str(), 0600), 0);
    EXPECT_TRUE(Of(Path("p"), error).Bytes().empty());
    EXPECT_EQ(error, ENODEV);
    EXPECT_TRUE(Of(directory.Path().string(), error).Bytes().empty());
    EXPECT_EQ(error, EISDIR);
    EXPECT_TRUE(Of(directory.File("a", "text").string(), error, SYSTEM::Access::kWrite).Bytes().empty());
    EXPECT_EQ(error, EACCES);
    EXPECT_TRUE(Mapping::Of(-1, error).Bytes().empty());
    EXPECT_EQ(error, EBADF);
}
} // namespace
} // namespace KORVA::TESTS
