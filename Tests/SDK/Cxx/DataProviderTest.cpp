// Data providers behind the friendly layer.
#include <tessio/Cxx/DataProvider.h>

#include "Core/Libraries/Tessaro/Source/src/WatchedProvider.h"
#include "Support/Library.h"

#include <array>
#include <string>

namespace KORVA::TESTS
{
namespace
{
using CXX::ByteOrder;
using CXX::DataProvider;

class CxxProvider : public LibraryTest
{
protected:
    static std::vector<std::byte> Some(std::initializer_list<int> values)
    {
        std::vector<std::byte> bytes;
        for (int const value : values)
            bytes.push_back(static_cast<std::byte>(value));
        return bytes;
    }
};

TEST_F(CxxProvider, MemoryIsWrittenAndRead)
{
    DataProvider memory = DataProvider::Memory().value();
    ASSERT_TRUE(memory.Write(Some({1, 2, 3, 4})));
    ASSERT_TRUE(memory.Write({}));
    EXPECT_EQ(memory.Size(), 4);
    EXPECT_EQ(memory.Position(), 4);
    EXPECT_TRUE(memory.AtEnd());
    ASSERT_TRUE(memory.Seek(1));
    std::array<std::byte, 2> two{};
    EXPECT_EQ(memory.Read(two).value(), 2u);
    EXPECT_EQ(two[1], std::byte{3});
    EXPECT_EQ(memory.Read(two).value(), 1u) << "less at the end is no failure";
    EXPECT_EQ(memory.Read(two).value(), 0u);
    EXPECT_EQ(memory.Bytes().value(), Some({1, 2, 3, 4}));
    EXPECT_EQ(memory.Position(), 4);
    log.Take();
}

TEST_F(CxxProvider, ReadsTheCallersBytes)
{
    std::vector<std::byte> const bytes = Some({5, 6, 7});
    DataProvider provider = DataProvider::Over(bytes).value();
    std::array<std::byte, 4> four{};
    EXPECT_EQ(provider.Read(four).value(), 3u);
    EXPECT_EQ(four[2], std::byte{7});
    EXPECT_EQ(provider.Write(Some({1})).error().Code(), 30);
    EXPECT_EQ(provider.SetSize(1).error().Code(), 30);
    log.Take();
    unsigned char const array[] = {8};
    EXPECT_EQ(DataProvider::Over(std::span<unsigned char const>(array))->Size(), 1);
    EXPECT_EQ(DataProvider::Over(std::span<std::byte const>()).error().Code(), -50);
    EXPECT_EQ(DataProvider::Over(std::span(bytes.data(), std::size_t{2147483648})).error().Code(), 2003);
}

TEST_F(CxxProvider, ReadsOnWhereLittleCame)
{
    TInterfacePtr<WatchedProvider> source;
    source.Adopt(new WatchedProvider);
    source->bytes = "twelve bytes";
    source->deliversAtMost = 5;
    DataProvider provider(*source);
    std::array<std::byte, 16> all{};
    EXPECT_EQ(provider.Read(std::span(all).first(12)).value(), 12u);
    EXPECT_EQ(all[11], std::byte{'s'});
    ASSERT_TRUE(provider.Seek(3));
    EXPECT_EQ(provider.Read(all).value(), 9u) << "to the end";
    source->deliversAtMost = 0;
    ASSERT_TRUE(provider.Seek(3));
    EXPECT_EQ(provider.Read(all).error().Code(), 3) << "nothing, though there is more";
    EXPECT_EQ(provider.Bytes().error().Code(), 3);
}

TEST_F(CxxProvider, GoesOnlyWhereItCan)
{
    std::vector<std::byte> const bytes = Some({5, 6, 7});
    DataProvider provider = DataProvider::Over(bytes).value();
    ASSERT_TRUE(provider.Seek(2));
    EXPECT_EQ(provider.Seek(-1).error().Code(), 13);
    EXPECT_EQ(provider.Seek(100).error().Code(), 13);
    EXPECT_EQ(provider.Position(), 2);
    log.Take();
}

TEST_F(CxxProvider, IsCutAndExtended)
{
    DataProvider memory = DataProvider::Memory().value();
    ASSERT_TRUE(memory.Write(Some({1, 2, 3, 4})));
    ASSERT_TRUE(memory.SetSize(2));
    EXPECT_EQ(memory.Bytes().value(), Some({1, 2}));
    EXPECT_EQ(memory.SetSize(-1).error().Code(), 13);
    EXPECT_EQ(memory.SetSize(0).error().Code(), 27);
    log.Take();
}

TEST_F(CxxProvider, HasAByteOrder)
{
    DataProvider memory = DataProvider::Memory(ByteOrder::kBig).value();
    EXPECT_EQ(memory.Order(), ByteOrder::kBig);
    EXPECT_FALSE(memory->IsNative());
    memory.SetOrder(ByteOrder::kNative);
    EXPECT_EQ(memory.Order(), ByteOrder::kLittle);
    EXPECT_TRUE(memory->IsNative());
}

TEST_F(CxxProvider, WithoutDataSaysSo)
{
    auto provider = CXX::Create<DataProvider>(IO::IID_IDATAPROVIDER).value();
    std::array<std::byte, 2> two{};
    EXPECT_EQ(provider.Read(two).error().Code(), 29);
    EXPECT_EQ(provider.Write(two).error().Code(), 29);
    log.Take();
}

template <class T>
concept Lends = requires(T&& bytes)
{
    DataProvider::Over(std::forward<T>(bytes));
};

static_assert(Lends<std::vector<std::byte>&> && Lends<std::vector<unsigned char> const&>);
static_assert(Lends<std::span<std::byte>>);
// A temporary would take its bytes away.
static_assert(!Lends<std::vector<std::byte>> && !Lends<std::vector<unsigned char>>);
static_assert(!Lends<std::string&> && !Lends<std::vector<int>&>);
} // namespace
} // namespace KORVA::TESTS
